// Names, transactions, datasets and the colons of times.

#include "database/sql_lines.h"
#include "database_fixtures.h"
#include "foundation/errors.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"

using namespace vyn;
using namespace database_fixtures;

TEST(DatabaseNames, DatabasesWithoutNamesAreNumbered) {
    TDataBaseVyn one(nullptr), two(nullptr), three(nullptr);
    EXPECT_EQ(one.VynDBName(), "DBDades");
    EXPECT_EQ(two.VynDBName(), "DBDades1");
    EXPECT_EQ(three.VynDBName(), "DBDades2");
    one.SetVynDBName("dbdades1");
    EXPECT_EQ(one.VynDBName(), "dbdades11");
}

TEST(DatabaseNames, AnEmptyNameIsRefused) {
    TDataBaseVyn database(nullptr);
    EXPECT_EQ(MessageOf([&] { database.SetVynDBName("  "); }), "Exception: VynDBName required");
    EXPECT_EQ(database.VynDBName(), "DBDades");
    database.SetVynDBName("DBDADES");
    EXPECT_EQ(database.VynDBName(), "DBDADES");
}

TEST(DatabaseNames, TheFirstOfANameIsFoundWithoutRegardToCase) {
    EXPECT_EQ(FindDatabaseVyn("DBDades"), nullptr);
    TDataBaseVyn one(nullptr), two(nullptr);
    EXPECT_EQ(FindDatabaseVyn("dbDADES1"), &two);
    EXPECT_EQ(GetDataBaseVyn("DBDADES"), &one);
    EXPECT_EQ(MessageOf([] { GetDataBaseVyn("Nope"); }), "Exception: Database Vyn not found (Nope)");
}

TEST(DatabaseNames, TheListsHoldEveryDatabaseInOrder) {
    TDataBaseVyn one(nullptr), two(nullptr);
    one.SetName("First");
    TStringList list{"old"};
    GetDatabasesVyn(&list);
    EXPECT_EQ(list.Text(), "First\r\n\r\n");
    EXPECT_EQ(list.GetObject(1), &two);
    GetDatabasesVynNames(&list);
    EXPECT_EQ(list.Text(), "DBDades\r\nDBDades1\r\n");
    EXPECT_EQ(list.GetObject(0), &one);
}

TEST(AbstractDatabase, EveryAbstractHookRaisesThePlatformsError) {
    TDataBaseVyn database(nullptr);
    AnsiString text;
    TStringList list;
    const std::vector<std::function<void()>> hooks = {
        [&] { database.DoGetTSQLDataSet("", nullptr, true); },
        [&] { database.DoGetTDataSet("", nullptr, true); },
        [&] { database.DoExecuteSQL(nullptr); },
        [&] { database.DoStartTransaction(); },
        [&] { database.DoCommitTransaction(); },
        [&] { database.DoRollbackTransaction(); },
        [&] { database.SetSQLToDataSet("", nullptr); },
        [&] { database.GetSQLFromDataSet(nullptr, text); },
        [&] { database.SetTableToDataSet("", nullptr); },
        [&] { database.GetTableFromDataSet(nullptr, text); },
        [&] { database.GetTableNames("", false, false, &list); },
        [&] { database.GetStoredProcNames(&list); },
        [&] { database.GetTDataSetParams(nullptr); },
        [&] { database.AssignDataSourceToDataSet(nullptr, nullptr, "", ""); },
        [&] { database.AllowParamCheck(nullptr, true); },
        [&] { database.DataSetAllowParamCheck(nullptr); },
        [&] { database.TableExists("T"); },
        [&] { database.StartTransaction(); },
    };
    for (const auto& hook : hooks) EXPECT_EQ(MessageOf(hook), "EAbstractError: Abstract Error");
    EXPECT_EQ(database.TransactionCount(), 0);
}

TEST(Transactions, AreCountedAndGoStraightToTheEngine) {
    RecordingDatabase database;
    const int one = database.StartTransaction();
    const int two = database.StartTransaction();
    EXPECT_THAT(one, testing::AllOf(testing::Ge(1), testing::Le(5000000)));
    EXPECT_EQ(database.TransactionCount(), 2);
    database.CommitTransaction(one);
    database.RollBackTransaction(two);
    EXPECT_EQ(database.TransactionCount(), 0);
    EXPECT_EQ(database.Log, "start start commit rollback ");
}

TEST(Transactions, EndingTwiceIsAnError) {
    RecordingDatabase database;
    const int id = database.StartTransaction();
    database.CommitTransaction(id);
    EXPECT_EQ(MessageOf([&] { database.CommitTransaction(id); }),
              "EDataBaseVynError: Transaction not found: " + std::to_string(id));
    EXPECT_EQ(MessageOf([&] { database.RollBackTransaction(0); }), "EDataBaseVynError: Transaction not found: 0");
    EXPECT_EQ(database.Log, "start commit ");
}

TEST(Transactions, WhatTheEngineRefusesStaysOpen) {
    RecordingDatabase database;
    const int id = database.StartTransaction();
    database.Fails = true;
    EXPECT_EQ(MessageOf([&] { database.CommitTransaction(id); }), "EDatabaseError: refused");
    EXPECT_EQ(MessageOf([&] { database.StartTransaction(); }), "EDatabaseError: refused");
    EXPECT_EQ(database.TransactionCount(), 1);
}

TEST(DatabaseDataSets, AreKnownWhileTheyLive) {
    RecordingDatabase database;
    TComponent owner(nullptr);
    TDataSet* query = database.GetTSQLDataSet("SELECT 1", &owner, true);
    TDataSet* table = database.GetTDataSet("T", &owner, false);
    EXPECT_EQ(database.Log, "query(|read only) table(T|) ");
    EXPECT_EQ(static_cast<RecordingDataSet*>(query)->Statement, "SELECT 1\r\n");
    EXPECT_EQ(database.OwnedDataSets(), (std::vector<TDataSet*>{query, table}));
    delete query;
    EXPECT_EQ(database.OwnedDataSets(), std::vector<TDataSet*>{table});
}

TEST(DatabaseDataSets, ItsOwnAreNotListed) {
    RecordingDatabase database;
    database.GetTDataSet("T", &database, true);
    EXPECT_TRUE(database.OwnedDataSets().empty());
    EXPECT_EQ(database.GetTDataSet("", nullptr, true), nullptr);
    EXPECT_TRUE(database.OwnedDataSets().empty());
}

TEST(DatabaseDataSets, AreNotLeftBehindWhenTheirStatementIsRefused) {
    RecordingDatabase database;
    TComponent owner(nullptr);
    database.Fails = true;
    EXPECT_EQ(MessageOf([&] { database.GetTSQLDataSet("x", &owner, true); }), "EDatabaseError: refused");
    EXPECT_EQ(owner.ComponentCount(), 0);
}

TEST(DatabaseDataSets, AStatementIsExecutedAndItsDataSetFreed) {
    RecordingDatabase database;
    database.ExecuteSQL("DELETE FROM T WHERE H = #10:30#");
    EXPECT_EQ(database.Log, "query(|read only) execute(DELETE FROM T WHERE H = #10::30#\r\n) ");
    EXPECT_EQ(database.ComponentCount(), 0);
}

TEST(DatabaseDataSets, AreGivenTextsAndNamesWithTheirOwnColons) {
    RecordingDatabase database;
    const auto given = [&](const AnsiString& SQL) { return database.SQLForDataSet(nullptr, SQL); };
    EXPECT_EQ(given("A = '10:30'"), "A = '10:30'\r\n");
    EXPECT_EQ(given("A = '10:30' AND [b:1] = \"c:2\" AND `d:3`"), "A = '10:30' AND [b:1] = \"c:2\" AND `d:3`\r\n");
    EXPECT_EQ(given("A = '::1' AND B = 'it''s 10:30'"), "A = '::1' AND B = 'it''s 10:30'\r\n");
    EXPECT_EQ(given("H = #10:30# AND A = ':1"), "H = #10::30# AND A = ':1\r\n");
    EXPECT_EQ(given("-- it's\rH = #10:30#\nAND '\r:1'"), "-- it's\r\nH = #10::30#\r\nAND '\r:1'\r\n");
    EXPECT_EQ(given(""), "");
}

TEST(DatabaseDataSets, ATableIsFoundWithoutRegardToCase) {
    RecordingDatabase database;
    EXPECT_TRUE(database.TableExists("ORDERS"));
    EXPECT_FALSE(database.TableExists("Bills"));
    EXPECT_EQ(database.Log, "tables(ORDERS|0|0) tables(Bills|0|0) ");
}

class TimeColonsTest : public testing::Test {
  protected:
    AnsiString Lines(std::initializer_list<AnsiString> lines) {
        TStringList list(lines);
        database.CorrectParamCheckOnDateTime(nullptr, &list);
        return list.Text();
    }
    AnsiString Text(AnsiString text) {
        database.CorrectParamCheckOnDateTime(nullptr, text);
        return text;
    }
    RecordingDatabase database;
};

TEST_F(TimeColonsTest, AreDoubledBeforeADigit) {
    EXPECT_EQ(Lines({"WHERE H = #10:30#"}), "WHERE H = #10::30#\r\n");
    EXPECT_EQ(Lines({"WHERE H = #10:30:15#"}), "WHERE H = #10::30::15#\r\n");
    EXPECT_EQ(Lines({"WHERE A = :param AND H = #1:2#"}), "WHERE A = :param AND H = #1::2#\r\n");
}

TEST_F(TimeColonsTest, AreNotDoubledTwice) { EXPECT_EQ(Lines({"#10::30#"}), "#10::30#\r\n"); }

TEST_F(TimeColonsTest, AreLeftAloneBetweenQuotesAfterTheFirstColon) {
    EXPECT_EQ(Lines({"A = :p AND B = '10:30' AND C = #10:30#"}), "A = :p AND B = '10:30' AND C = #10::30#\r\n");
    EXPECT_EQ(Lines({"A = :p AND B = \"1:2\" AND C = `1:2`"}), "A = :p AND B = \"1:2\" AND C = `1:2`\r\n");
}

TEST_F(TimeColonsTest, QuotesBeforeTheFirstColonAreNotSeen) {
    EXPECT_EQ(Lines({"B = '10:30' AND C = #10:30#"}), "B = '10::30' AND C = #10:30#\r\n");
}

TEST_F(TimeColonsTest, AnOpenQuoteCarriesOverToTheNextLines) {
    EXPECT_EQ(Lines({"A = :p AND B = 'x ", "no colon here '", "#10:30#"}),
              "A = :p AND B = 'x \r\nno colon here '\r\n#10:30#\r\n");
}

TEST_F(TimeColonsTest, TheLastCharacterOfALineIsNotLookedAt) {
    EXPECT_EQ(Lines({"A = :p '", "#1:2#"}), "A = :p '\r\n#1::2#\r\n");
    EXPECT_EQ(Lines({"1:"}), "1:\r\n");
    EXPECT_EQ(Lines({":"}), ":\r\n");
    EXPECT_EQ(Lines({""}), "\r\n");
}

TEST_F(TimeColonsTest, StayWhenDatesStandBetweenQuotes) {
    for (const char* quote : {"'", "\"", "`"}) {
        database.SQLDateTimeStart = database.SQLDateTimeEnd = quote;
        EXPECT_EQ(Lines({"#10:30#"}), "#10:30#\r\n");
        EXPECT_EQ(Text("#10:30#"), "#10:30#\r\n");
    }
    database.SQLDateTimeEnd = "#";
    EXPECT_EQ(Lines({"#10:30#"}), "#10::30#\r\n");
    database.SQLDateTimeStart = database.SQLDateTimeEnd = "''";
    EXPECT_EQ(Lines({"#10:30#"}), "#10::30#\r\n");
}

TEST_F(TimeColonsTest, StayForADataSetThatLooksForNoParameters) {
    RecordingDataSet dataSet(nullptr);
    AnsiString text = "#10:30#";
    dataSet.ParamCheck = false;
    database.CorrectParamCheckOnDateTime(&dataSet, text);
    EXPECT_EQ(text, "#10:30#\r\n");
    dataSet.ParamCheck = true;
    database.CorrectParamCheckOnDateTime(&dataSet, text);
    EXPECT_EQ(text, "#10::30#\r\n");
}

TEST_F(TimeColonsTest, ATextComesBackLineByLine) {
    EXPECT_EQ(Text("A\nB\rC\r\nD"), "A\r\nB\r\nC\r\nD\r\n");
    EXPECT_EQ(Text("A\r\n\r\nB\r\n"), "A\r\n\r\nB\r\n");
    EXPECT_EQ(Text(""), "");
}

TEST_F(TimeColonsTest, LineBreaksInsideALiteralStay) {
    EXPECT_EQ(Text("A = 'x\ny\rz''\n' AND\nB = 1"), "A = 'x\ny\rz''\n' AND\r\nB = 1\r\n");
    EXPECT_EQ(Text("A -- it's\nB"), "A -- it's\r\nB\r\n");
    EXPECT_EQ(Text("A /* it's\n*/ B 'x\ny'"), "A /* it's\r\n*/ B 'x\ny'\r\n");
    EXPECT_EQ(Text("[it's]\n\"a'b\"\n'c\nd'"), "[it's]\r\n\"a'b\"\r\n'c\nd'\r\n");
    EXPECT_EQ(Text("'never closed\n"), "'never closed\n");
}

TEST_F(TimeColonsTest, LinesAreAssignedWithTheBreaksOfTheirLiterals) {
    TStringList lines{"old"};
    AssignSqlLines(lines, "A = 'x\ny\r' AND\nB", '\'');
    EXPECT_EQ(lines.Count(), 2);
    EXPECT_EQ(lines.At(0), "A = 'x\ny\r' AND");
    EXPECT_EQ(lines.Text(), "A = 'x\ny\r' AND\r\nB\r\n");
    AssignSqlLines(lines, "'open\n", '\'');
    EXPECT_EQ(lines.Text(), "'open\n\r\n");
    AssignSqlLines(lines, "", '\'');
    EXPECT_EQ(lines.Count(), 0);
}

TEST(DatabaseStreams, PropertiesStandInTheirOrder) {
    std::vector<AnsiString> names;
    for (const PropertyInfo& property : TDataBaseVyn::StaticClass().Properties()) names.push_back(property.Name);
    names.erase(names.begin(), names.begin() + static_cast<long>(TComponent::StaticClass().Properties().size()));
    EXPECT_THAT(names, testing::ElementsAre("DBFileName", "OnConvertToSqlString", "SQLFormatDate", "SQLFormatTime",
                                            "SQLFormatDateTime", "SQLStringSeparator", "SQLUndefinedChar",
                                            "SQLUndefinedChars", "SQLDateTimeStart", "SQLDateTimeEnd",
                                            "SQLTimeSeparator", "SQLDateSeparator", "SQLDecimalSeparator", "IsBDEBased",
                                            "VynDBName", "DataBaseVynDict", "QuerySQLDict"));
}

TEST(DatabaseStreams, ADatabaseComesBackWithItsDictionaries) {
    TMemoryStream stream;
    {
        TDataBaseVyn database(nullptr);
        database.SetName("Data");
        database.SQLStringSeparator = '"';
        database.DataBaseVynDict()->Add()->DataSetDict()->Add({"NAME", "Name", "", "", "", "", 3, "", -1});
        database.DataBaseVynDict()->GetDataSetDictItem(0)->TableDisplayString = "Clients";
        TQuerySQLItem* query = database.QuerySQLDict()->Add();
        query->SetQuerySQLName("Q");
        query->QuerySQLStream().SetBytes("image");
        WriteComponentToStream(stream, database);
    }
    for (const char* name : {"DataSetDict.SQLFields", "QUERYSQLSTREAM"})
        EXPECT_THAT(std::string(stream.Bytes()), testing::HasSubstr(name));
    stream.SetPosition(0);
    TDataBaseVyn again(nullptr);
    again.SetVynDBName("Other");
    ReadComponentFromStream(stream, &again);
    EXPECT_EQ(again.VynDBName(), "DBDades");
    EXPECT_EQ(again.SQLStringSeparator, '"');
    ASSERT_EQ(again.DataBaseVynDict()->Count(), 1);
    EXPECT_EQ(again.DataBaseVynDict()->GetDataSetDictItem(0)->TableName(), "TBL_1");
    EXPECT_EQ(again.DataBaseVynDict()->GetDataSetDictItem(0)->DataSetDict()->GetSQLField(0).FieldValue2, -1);
    ASSERT_EQ(again.QuerySQLDict()->IndexOfQuery("q"), 0);
    EXPECT_EQ(again.QuerySQLDict()->GetQuerySQLItem(0)->QuerySQLStream().Bytes(), "image");
    TMemoryStream written;
    WriteComponentToStream(written, again);
    EXPECT_EQ(written.Bytes(), stream.Bytes());
}
