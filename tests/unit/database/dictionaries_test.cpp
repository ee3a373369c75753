#include "database/dictionaries.h"

#include "database_fixtures.h"
#include "platform/streams/writer.h"

using namespace vyn;
using namespace database_fixtures;

namespace {

const TSQLField kField{"ID", "a", "b", "c", "d", "e", 300, "f", -1};

template <class T>
std::string Saved(T& object) {
    TMemoryStream stream;
    object.SaveToStream(&stream);
    return std::string(stream.Bytes());
}
template <class T>
void Load(T& object, std::string_view bytes) {
    TMemoryStream stream(bytes);
    object.LoadFromStream(&stream);
}
AnsiString TableNames(const TDataBaseVynDict& dict) {
    AnsiString names;
    for (int i = 0; i < dict.Count(); ++i) names += dict.GetDataSetDictItem(i)->TableName() + " ";
    return names;
}
AnsiString QueryNames(const TQuerySQLDict& dict) {
    AnsiString names;
    for (int i = 0; i < dict.Count(); ++i)
        names += dict.GetQuerySQLItem(i)->QuerySQLName() + "=" +
                 AnsiString(dict.GetQuerySQLItem(i)->QuerySQLStream().Bytes()) + " ";
    return names;
}
void AddQuery(TQuerySQLDict& dict, const AnsiString& name, std::string_view image) {
    TQuerySQLItem* item = dict.Add();
    item->SetQuerySQLName(name);
    item->QuerySQLStream().SetBytes(image);
}

}  // namespace

TEST(TableFields, AreListedInOrderAndCopied) {
    TDataSetDict fields;
    EXPECT_EQ(fields.IndexOfFieldName("ID"), -1);
    fields.Add(kField);
    fields.Add({"NAME", "first", "", "", "", "", 0, "", 0});
    fields.Add({"name", "second", "", "", "", "", 0, "", 0});
    EXPECT_EQ(fields.Count(), 3);
    EXPECT_EQ(fields.IndexOfFieldName("nAmE"), 1);
    EXPECT_EQ(fields.GetSQLField(0), kField);
    fields.SetSQLField(0, SQLField_NULL());
    EXPECT_EQ(fields.GetSQLField(0).FieldName, "");
    fields.MovePos(1, 2);
    EXPECT_EQ(fields.GetSQLField(1).FieldText1, "second");
    fields.MovePos(1, 1);
    EXPECT_EQ(fields.GetSQLField(1).FieldText1, "second");
    fields.Delete(0);
    EXPECT_EQ(fields.Count(), 2);
    fields.Clear();
    EXPECT_EQ(fields.Count(), 0);
    EXPECT_EQ(MessageOf([&] { fields.GetSQLField(0); }), "EListError: List index out of bounds (0)");
    EXPECT_EQ(MessageOf([&] { fields.MovePos(0, 0); }), "EListError: List index out of bounds (0)");
    EXPECT_EQ(MessageOf([&] { fields.Delete(-1); }), "EListError: List index out of bounds (-1)");
}

TEST(TableFields, AreStoredByteForByte) {
    TDataSetDict fields;
    EXPECT_EQ(Saved(fields), std::string("\x01\x00", 2));
    fields.Add(kField);
    const std::string bytes(
        "\x01\x01\x06\x02ID\x06\x01"
        "a\x06\x01"
        "b\x06\x01"
        "c\x06\x01"
        "d\x06\x01"
        "e\x03\x2C\x01\x06\x01"
        "f\x02\xFF\x00\x00",
        31);
    EXPECT_EQ(Saved(fields), bytes);
    TDataSetDict again;
    again.Add(SQLField_NULL());
    Load(again, bytes);
    ASSERT_EQ(again.Count(), 1);
    EXPECT_EQ(again.GetSQLField(0), kField);
}

TEST(TableFields, LongTextsAndLargeNumbersComeBack) {
    TDataSetDict fields, again;
    TSQLField field = kField;
    field.FieldText6 = AnsiString(300, 'x');
    field.FieldValue1 = INT32_MIN;
    fields.Add(field);
    Load(again, Saved(fields));
    EXPECT_EQ(again.GetSQLField(0), field);
}

TEST(TableFields, AListCutShortIsTheStreamsError) {
    TDataSetDict fields;
    fields.Add(kField);
    fields.Add(kField);
    const std::string bytes = Saved(fields);
    for (size_t length = 0; length < bytes.size(); ++length) {
        TDataSetDict again;
        EXPECT_EQ(MessageOf([&] { Load(again, bytes.substr(0, length)); }).substr(0, 10), "EReadError") << length;
    }
}

TEST(TableFields, AreAssigned) {
    TDataSetDict fields, other;
    fields.Add(kField);
    other.Assign(&fields);
    EXPECT_EQ(other.GetSQLField(0), kField);
    other.Assign(&other);
    EXPECT_EQ(other.Count(), 1);
    TStringList strings;
    EXPECT_EQ(MessageOf([&] { other.Assign(&strings); }),
              "EConvertError: Cannot assign a TStringList to a TDataSetDict");
}

TEST(TableFields, WithoutRecordsNoPropertyIsWritten) {
    TDataBaseVyn database(nullptr);
    database.DataBaseVynDict()->Add();
    TMemoryStream stream;
    WriteComponentToStream(stream, database);
    EXPECT_THAT(std::string(stream.Bytes()), testing::Not(testing::HasSubstr("SQLFields")));
    database.DataBaseVynDict()->GetDataSetDictItem(0)->DataSetDict()->Add(kField);
    TMemoryStream filled;
    WriteComponentToStream(filled, database);
    EXPECT_THAT(std::string(filled.Bytes()), testing::HasSubstr("SQLFields"));
}

TEST(TableFields, AvailabilityHasItsNames) {
    const EnumType& type = TypeInfoOf(TypeTag<TSQLFieldAvailable>{});
    EXPECT_EQ(type.NameOf(0), "sfa_Allways");
    EXPECT_EQ(type.NameOf(1), "sfa_IfNeeded");
    EXPECT_EQ(type.NameOf(static_cast<int>(sfa_Explicit)), "sfa_Explicit");
}

TEST(TableDictionary, NewTablesTakeTheLowestFreeNumber) {
    TDataBaseVynDict dict(nullptr);
    dict.Add();
    dict.Add();
    dict.Add();
    EXPECT_EQ(TableNames(dict), "TBL_1 TBL_2 TBL_3 ");
    dict.Delete(0);
    EXPECT_EQ(dict.NewTableName(), "TBL_1");
    dict.Add();
    EXPECT_EQ(TableNames(dict), "TBL_2 TBL_3 TBL_1 ");
    dict.GetDataSetDictItem(0)->SetTableName("Other");
    EXPECT_EQ(dict.NewTableName(), "TBL_2");
    dict.GetDataSetDictItem(0)->SetTableName("tbl_4");
    EXPECT_EQ(dict.NewTableName(), "TBL_2");
    dict.Add();
    EXPECT_EQ(dict.NewTableName(), "TBL_5");
}

TEST(TableDictionary, TablesAreFoundWithoutRegardToCase) {
    TDataBaseVynDict dict(nullptr);
    dict.Add();
    dict.Add()->SetTableName("Orders");
    EXPECT_EQ(dict.IndexOfTable("ORDERS"), 1);
    EXPECT_EQ(dict.IndexOfTable("Bills"), -1);
}

TEST(TableDictionary, ATakenNameIsRefused) {
    TDataBaseVynDict dict(nullptr);
    dict.Add();
    dict.Add();
    EXPECT_EQ(MessageOf([&] { dict.GetDataSetDictItem(1)->SetTableName("TBL_1"); }),
              "Exception: Table name found \"TBL_1\"");
    dict.GetDataSetDictItem(1)->SetTableName("TBL_2");
    EXPECT_EQ(TableNames(dict), "TBL_1 TBL_2 ");
}

TEST(TableDictionary, AChangeOfLetterCaseAloneIsRefused) {
    TDataBaseVynDict dict(nullptr);
    dict.Add();
    EXPECT_EQ(MessageOf([&] { dict.GetDataSetDictItem(0)->SetTableName("tbl_1"); }),
              "Exception: Table name found \"tbl_1\"");
}

TEST(TableDictionary, ItsOwnerIsTheDatabase) {
    TDataBaseVyn database(nullptr);
    EXPECT_EQ(database.DataBaseVynDict()->GetOwner(), &database);
    EXPECT_EQ(database.QuerySQLDict()->GetOwner(), &database);
}

TEST(TableDictionary, ChangesAreTold) {
    TDataBaseVynDict dict(nullptr);
    int calls = 0;
    dict.OnChange = [&](TDataBaseVynDict* Sender, TDataBaseVynDictItem* Item) {
        EXPECT_EQ(Sender, &dict);
        EXPECT_EQ(Item, nullptr);
        ++calls;
    };
    dict.Add();
    EXPECT_EQ(calls, 1);
    dict.BeginUpdate();
    dict.Add();
    dict.Clear();
    EXPECT_EQ(calls, 1);
    dict.EndUpdate();
    EXPECT_EQ(calls, 2);
}

TEST(TableDictionary, AnItemForAnotherCollectionIsAnInvalidCast) {
    TQuerySQLDict queries(nullptr);
    TDataBaseVynDict tables(nullptr);
    EXPECT_EQ(MessageOf([&] { TDataBaseVynDictItem item(&queries); }),
              "EInvalidCast: Invalid class typecast: a TQuerySQLDict is no TDataBaseVynDict");
    EXPECT_EQ(MessageOf([&] { TQuerySQLItem item(&tables); }),
              "EInvalidCast: Invalid class typecast: a TDataBaseVynDict is no TQuerySQLDict");
    EXPECT_EQ(queries.Count() + tables.Count(), 0);
}

TEST(TableDictionary, ItemsMoveBetweenDictionaries) {
    TDataBaseVynDict one(nullptr), two(nullptr);
    TDataBaseVynDictItem* item = one.Add();
    item->SetCollection(&two);
    EXPECT_EQ(one.NewTableName(), "TBL_1");
    EXPECT_EQ(two.NewTableName(), "TBL_2");
    EXPECT_EQ(two.IndexOfTable("tbl_1"), 0);
}

TEST(TableDictionary, IsStoredByteForByte) {
    TDataBaseVynDict dict(nullptr);
    EXPECT_EQ(Saved(dict), std::string("\x01\x00", 2));
    dict.Add()->TableDisplayString = "T";
    const std::string bytes("\x01\x07\x05TBL_1\x06\x01T\x01\x00\x00", 14);
    EXPECT_EQ(Saved(dict), bytes);
    TDataBaseVynDict again(nullptr);
    again.Add();
    again.Add();
    Load(again, bytes);
    EXPECT_EQ(TableNames(again), "TBL_1 ");
    EXPECT_EQ(again.GetDataSetDictItem(0)->TableDisplayString, "T");
}

TEST(TableDictionary, ComesBackWithItsFieldsAndStandsBehindWhatItRead) {
    TDataBaseVynDict dict(nullptr);
    dict.Add()->DataSetDict()->Add(kField);
    dict.Add()->SetTableName("tbl_b");
    dict.GetDataSetDictItem(0)->SetTableName("tbl_1x");
    TMemoryStream stream;
    dict.SaveToStream(&stream);
    const int64_t end = stream.Size();
    stream.WriteBuffer("more", 4);
    stream.SetPosition(0);
    TDataBaseVynDict again(nullptr);
    again.LoadFromStream(&stream);
    EXPECT_EQ(stream.Position(), end);
    EXPECT_EQ(TableNames(again), "tbl_1x tbl_b ");
    EXPECT_EQ(again.GetDataSetDictItem(0)->DataSetDict()->GetSQLField(0), kField);
}

TEST(TableDictionary, ANameOfOtherLetterCaseThanANewOneIsRead) {
    TDataBaseVynDict dict(nullptr);
    dict.Add()->SetTableName("x");
    dict.GetDataSetDictItem(0)->SetTableName("tbl_1");
    TDataBaseVynDict again(nullptr);
    Load(again, Saved(dict));
    EXPECT_EQ(TableNames(again), "tbl_1 ");
}

TEST(TableDictionary, AStoredNameThatIsTakenIsRefused) {
    TDataBaseVynDict again(nullptr);
    EXPECT_EQ(MessageOf([&] {
                  Load(again, std::string("\x01\x07\x01"
                                          "A\x06\x00\x01\x00\x07\x01"
                                          "a\x06\x00\x01\x00\x00",
                                          16));
              }),
              "Exception: Table name found \"a\"");
}

TEST(TableDictionary, WordsOfTheEncodingAreStoredInTheirCodes) {
    TDataBaseVynDict dict(nullptr);
    TDataBaseVynDictItem* item = dict.Add();
    const std::pair<const char*, int> words[] = {{"FALSE", 8}, {"true", 9}, {"NIL", 13}, {"null", 0}};
    const char* const readBack[] = {"False", "True", "nil", "Null"};
    for (int i = 0; i < 4; ++i) {
        item->SetTableName(words[i].first);
        const std::string bytes = Saved(*item);
        EXPECT_EQ(bytes[0], words[i].second);
        TDataBaseVynDictItem free(nullptr);
        Load(free, bytes);
        EXPECT_EQ(free.TableName(), readBack[i]);
    }
}

TEST(TableDictionary, ATableNamedNullEndsTheStoredList) {
    // Its code is also the end of a list.
    TDataBaseVynDict dict(nullptr), again(nullptr);
    dict.Add()->SetTableName("Null");
    Load(again, Saved(dict));
    EXPECT_EQ(again.Count(), 0);
}

TEST(TableDictionary, IsAssigned) {
    TDataBaseVyn one(nullptr), two(nullptr);
    one.DataBaseVynDict()->Add()->DataSetDict()->Add(kField);
    one.DataBaseVynDict()->GetDataSetDictItem(0)->TableDisplayString = "T";
    two.DataBaseVynDict()->Add();
    two.SetDataBaseVynDict(one.DataBaseVynDict());
    ASSERT_EQ(two.DataBaseVynDict()->Count(), 1);
    EXPECT_EQ(two.DataBaseVynDict()->GetDataSetDictItem(0)->TableDisplayString, "T");
    EXPECT_EQ(two.DataBaseVynDict()->GetDataSetDictItem(0)->DataSetDict()->GetSQLField(0), kField);
    two.SetDataBaseVynDict(two.DataBaseVynDict());
    EXPECT_EQ(two.DataBaseVynDict()->Count(), 1);
    TStringList strings;
    EXPECT_EQ(MessageOf([&] { two.DataBaseVynDict()->Assign(&strings); }),
              "EConvertError: Cannot assign a TStringList to a TDataBaseVynDict");
    EXPECT_EQ(MessageOf([&] { two.DataBaseVynDict()->GetDataSetDictItem(0)->Assign(&strings); }),
              "EConvertError: Cannot assign a TStringList to a TDataBaseVynDictItem");
}

TEST(TableDictionary, AnItemsFieldsAreAssigned) {
    TDataBaseVynDict dict(nullptr);
    TDataSetDict fields;
    fields.Add(kField);
    TDataBaseVynDictItem* item = dict.Add();
    item->SetDataSetDict(&fields);
    item->SetDataSetDict(item->DataSetDict());
    EXPECT_EQ(item->DataSetDict()->Count(), 1);
    dict.Add();
    dict.GetDataSetDictItem(0)->TableDisplayString = "T";
    TDataBaseVynDictItem free(nullptr);
    free.Assign(item);
    free.SetTableName("Z");
    dict.SetDataSetDictItem(1, &free);
    EXPECT_EQ(TableNames(dict), "TBL_1 Z ");
    EXPECT_EQ(dict.GetDataSetDictItem(1)->TableDisplayString, "T");
    EXPECT_EQ(dict.GetDataSetDictItem(1)->DataSetDict()->Count(), 1);
}

TEST(QueryDictionary, NewNamesAndLookUps) {
    TQuerySQLDict dict(nullptr);
    EXPECT_EQ(dict.NewQuerySQLName(), "QUERYSQL1");
    AddQuery(dict, "querysql1", "");
    EXPECT_EQ(dict.NewQuerySQLName(), "QUERYSQL2");
    EXPECT_EQ(dict.IndexOfQuery("QUERYSQL1"), 0);
    EXPECT_EQ(dict.IndexOfQuery("x"), -1);
    EXPECT_EQ(dict.Add()->QuerySQLName(), "");
}

TEST(QueryDictionary, ATakenNameIsRefused) {
    TQuerySQLDict dict(nullptr);
    AddQuery(dict, "Q", "");
    EXPECT_EQ(MessageOf([&] { AddQuery(dict, "q", ""); }), "Exception: Name exists: \"q\"");
    EXPECT_EQ(MessageOf([&] { dict.GetQuerySQLItem(0)->SetQuerySQLName("q"); }), "Exception: Name exists: \"q\"");
    dict.GetQuerySQLItem(0)->SetQuerySQLName("Q");
}

TEST(QueryDictionary, ARenamedQueryIsTold) {
    TQuerySQLDict dict(nullptr);
    AddQuery(dict, "Q", "");
    TQuerySQLItem* told = nullptr;
    dict.OnChange = [&](TQuerySQLDict*, TQuerySQLItem* Item) { told = Item; };
    dict.GetQuerySQLItem(0)->SetQuerySQLName("R");
    EXPECT_EQ(told, dict.GetQuerySQLItem(0));
}

TEST(QueryDictionary, AnImageIsItsCountAndItsBytes) {
    TQuerySQLItem item(nullptr);
    item.QuerySQLStream().SetBytes("abc");
    item.QuerySQLStream().SetPosition(2);
    TMemoryStream stream;
    item.WriteQuerySQLStream(&stream);
    EXPECT_EQ(stream.Bytes(), std::string_view("\x03\x00\x00\x00"
                                               "abc",
                                               7));
    EXPECT_EQ(item.QuerySQLStream().Position(), 0);
    stream.WriteBuffer("rest", 4);
    stream.SetPosition(0);
    TQuerySQLItem again(nullptr);
    again.QuerySQLStream().SetBytes("longer than that");
    again.ReadQuerySQLStream(&stream);
    EXPECT_EQ(again.QuerySQLStream().Bytes(), "abc");
    EXPECT_EQ(again.QuerySQLStream().Position(), 0);
    EXPECT_EQ(stream.Position(), 7);
}

TEST(QueryDictionary, AnImageLongerThanTheStreamIsRefusedBeforeItIsTaken) {
    TQuerySQLItem item(nullptr);
    TMemoryStream stream(
        std::string_view("\xFF\xFF\xFF\xFF"
                         "abc",
                         7));
    EXPECT_EQ(MessageOf([&] { item.ReadQuerySQLStream(&stream); }), "EReadError: Stream read error");
    TMemoryStream cut(std::string_view("\x01", 1));
    EXPECT_EQ(MessageOf([&] { item.ReadQuerySQLStream(&cut); }), "EReadError: Stream read error");
}

TEST(QueryDictionary, IsStoredByteForByte) {
    TQuerySQLDict dict(nullptr);
    AddQuery(dict, "Q", "ab");
    EXPECT_EQ(Saved(dict), std::string("\x07\x0DTQuerySQLDict\x02\x36\x02\x01\x06\x01Q\x02\x00\x00\x00"
                                       "ab",
                                       28));
}

TEST(QueryDictionary, LoadingReadsOneQueryMoreThanTheStoredCount) {
    TQuerySQLDict dict(nullptr);
    AddQuery(dict, "Q", "ab");
    AddQuery(dict, "R", "");
    const std::string bytes = Saved(dict);
    TQuerySQLDict again(nullptr);
    AddQuery(again, "old", "");
    EXPECT_EQ(MessageOf([&] { Load(again, bytes); }).substr(0, 10), "EReadError");
    EXPECT_EQ(QueryNames(again), "Q=ab R= = ");

    // With the further query there is no error.
    TQuerySQLDict whole(nullptr);
    Load(whole, bytes + std::string("\x06\x01S\x01\x00\x00\x00x", 8));
    EXPECT_EQ(QueryNames(whole), "Q=ab R= S=x ");
}

TEST(QueryDictionary, ANegativeCountReadsNothing) {
    TQuerySQLDict dict(nullptr);
    Load(dict, std::string("\x07\x0DTQuerySQLDict\x02\x36\x02\xFF", 19));
    EXPECT_EQ(dict.Count(), 0);
}

TEST(QueryDictionary, OtherStreamsAreRefused) {
    TQuerySQLDict dict(nullptr);
    EXPECT_EQ(MessageOf([&] { Load(dict, std::string("\x07\x01X\x02\x36\x02\x00", 7)); }),
              "Exception: Invalid Stream format");
    EXPECT_EQ(MessageOf([&] { Load(dict, std::string("\x07\x0DtQUERYsqlDICT\x02\x35\x02\x00", 19)); }),
              "Exception: No valid version");
    EXPECT_EQ(MessageOf([&] { Load(dict, ""); }).substr(0, 10), "EReadError");
}

TEST(QueryDictionary, TheSameNameTwiceIsRefused) {
    TQuerySQLDict dict(nullptr);
    EXPECT_EQ(MessageOf([&] {
                  Load(dict, std::string("\x07\x0DTQuerySQLDict\x02\x36\x02\x01\x06\x01Q\x00\x00\x00\x00\x06\x01q\x00"
                                         "\x00\x00\x00",
                                         33));
              }),
              "Exception: Name exists: \"q\"");
}

TEST(QueryDictionary, ChangesAreHeldBackWhileItLoads) {
    TQuerySQLDict dict(nullptr);
    int calls = 0;
    dict.OnChange = [&](TQuerySQLDict*, TQuerySQLItem*) { ++calls; };
    MessageOf([&] { Load(dict, std::string("\x07\x0DTQuerySQLDict\x02\x36\x02\x05\x06\x01Q\x00\x00\x00\x00", 26)); });
    EXPECT_EQ(calls, 1);  // at the end, also after an error
    dict.Add();
    EXPECT_EQ(calls, 2);
}

TEST(QueryDictionary, ModifiedIsClearedBySavingAndLoading) {
    TQuerySQLDict dict(nullptr);
    EXPECT_FALSE(dict.Modified());
    AddQuery(dict, "Q", "");
    EXPECT_FALSE(dict.Modified());
    dict.SetModified(true);
    const std::string bytes = Saved(dict);
    EXPECT_FALSE(dict.Modified());
    dict.SetModified(true);
    Load(dict, bytes + std::string("\x06\x01S\x00\x00\x00\x00", 7));
    EXPECT_FALSE(dict.Modified());
    dict.SetModified(true);
    dict.SetModified(false);
    EXPECT_FALSE(dict.Modified());
}

TEST(QueryDictionary, AssigningEndsAsLoadingDoes) {
    TDataBaseVyn one(nullptr), two(nullptr);
    AddQuery(*one.QuerySQLDict(), "Q", "ab");
    EXPECT_EQ(MessageOf([&] { two.SetQuerySQLDict(one.QuerySQLDict()); }).substr(0, 10), "EReadError");
    EXPECT_EQ(QueryNames(*two.QuerySQLDict()), "Q=ab = ");
    two.SetQuerySQLDict(two.QuerySQLDict());
    EXPECT_EQ(two.QuerySQLDict()->Count(), 2);
    TStringList strings;
    EXPECT_EQ(MessageOf([&] { two.QuerySQLDict()->Assign(&strings); }),
              "EConvertError: Cannot assign a TStringList to a TQuerySQLDict");
}

TEST(QueryDictionary, AnItemIsAssigned) {
    TQuerySQLDict dict(nullptr);
    AddQuery(dict, "A", "1");
    AddQuery(dict, "B", "2");
    TQuerySQLItem free(nullptr);
    free.SetQuerySQLName("C");
    free.QuerySQLStream().SetBytes("3");
    dict.SetQuerySQLItem(0, &free);
    EXPECT_EQ(QueryNames(dict), "C=3 B=2 ");
    EXPECT_EQ(MessageOf([&] { dict.SetQuerySQLItem(0, dict.GetQuerySQLItem(1)); }), "Exception: Name exists: \"B\"");
}
