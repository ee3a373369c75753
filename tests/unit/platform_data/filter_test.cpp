#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/streams/stream.h"
#include "platform/text/clock.h"
#include "platform/text/format_settings.h"
#include "unit/platform_data/memory_data_set.h"

using namespace vyn;

namespace {

// Expressions over records: filters, defaults, constraints; and what fields do beyond their columns.
class Rows : public testing::Test {
  protected:
    Rows()
        : data({MemoryDataSet::Row(1, "Soler", 0.5),
                MemoryDataSet::Row(2,
                                   "N\xC3\xBA\xC3\xB1"
                                   "ez"),
                MemoryDataSet::Row(3, "solera"), MemoryDataSet::Row(4, nullptr), MemoryDataSet::Row(5, "a*b", -2)}) {
        FormatSettings() = InvariantFormatSettings();
        data.Stored[1][3] = Cell::Real(46001.25);
        data.Stored[2][3] = Cell::Null();
        data.Stored[3][4] = Cell::Integer(0);
        data.Open();
    }
    std::vector<int64_t> Taken(const AnsiString& filter) {
        data.SetFilter(filter);
        data.SetFiltered(true);
        std::vector<int64_t> ids;
        for (data.First(); !data.Eof(); data.Next()) ids.push_back(data.FieldByName("Id")->AsInteger());
        data.SetFiltered(false);
        return ids;
    }
    AnsiString Value(const AnsiString& expression) {
        return VarToStr(
            RowExpression(expression, [&](const AnsiString& name) { return data.FindField(name); }).Value());
    }
    MemoryDataSet data;
};

using testing::ElementsAre;

}  // namespace

TEST_F(Rows, FiltersCompareNumbersTextsDatesAndTruth) {
    EXPECT_THAT(Taken("Id > 3"), ElementsAre(4, 5));
    EXPECT_THAT(Taken("Id<=2 AND Id<>1"), ElementsAre(2));
    EXPECT_THAT(Taken("id = 1 or ID = 5"), ElementsAre(1, 5));
    EXPECT_THAT(Taken("Name = 'Soler'"), ElementsAre(1));
    EXPECT_THAT(Taken("[Name] >= 'a' AND NOT (Name = 'solera')"), ElementsAre(5));
    EXPECT_THAT(Taken("Rate = 0.5"), ElementsAre(1));
    EXPECT_THAT(Taken("Price = 3"), ElementsAre(3));
    EXPECT_THAT(Taken("Price = '2'"), ElementsAre(2));
    EXPECT_THAT(Taken("Day = #12/09/2025# AND Id < 4"), ElementsAre(1));
    EXPECT_THAT(Taken("Day > #12/10/2025 05:59:59#"), ElementsAre(2));
    EXPECT_THAT(Taken("Day = '12/10/2025 06:00:00'"), ElementsAre(2));
    EXPECT_THAT(Taken("Ok = FALSE"), ElementsAre(4));
    EXPECT_THAT(Taken("NOT Ok"), ElementsAre(4));
}

TEST_F(Rows, FiltersKnowNothingOfNulls) {
    EXPECT_THAT(Taken("Name <> 'Soler'"), ElementsAre(2, 3, 5));
    EXPECT_THAT(Taken("NOT Name = 'Soler'"), ElementsAre(2, 3, 5));
    EXPECT_THAT(Taken("Name = 'x' OR Id = 4"), ElementsAre(4));
    EXPECT_THAT(Taken("Name IS NULL"), ElementsAre(4));
    EXPECT_THAT(Taken("Name = NULL"), ElementsAre(4));
    EXPECT_THAT(Taken("Name IS NOT NULL AND Day <> NULL"), ElementsAre(1, 2, 5));
    EXPECT_THAT(Taken("Name NOT IN ('Soler', NULL)"), ElementsAre());
    EXPECT_THAT(Taken("NULL"), ElementsAre());
}

TEST_F(Rows, FiltersMatchPatternsListsAndRanges) {
    EXPECT_THAT(Taken("Name LIKE 's%'"), ElementsAre(3));
    EXPECT_THAT(Taken("Name LIKE '?o*r*'"), ElementsAre(1, 3));
    EXPECT_THAT(Taken("Name NOT LIKE '%o%'"), ElementsAre(2, 5));
    EXPECT_THAT(Taken("Id IN (1, 3, 9)"), ElementsAre(1, 3));
    EXPECT_THAT(Taken("Id NOT IN (1, 3)"), ElementsAre(2, 4, 5));
    EXPECT_THAT(Taken("Id BETWEEN 2 AND 3"), ElementsAre(2, 3));
    EXPECT_THAT(Taken("Id NOT BETWEEN 2 AND 4 AND Id > 0"), ElementsAre(1, 5));
}

TEST_F(Rows, AStarAtTheEndStandsForAnyEndUnlessItIsTold) {
    EXPECT_THAT(Taken("Name = 'Sol*'"), ElementsAre(1));
    EXPECT_THAT(Taken("Name = 'a*'"), ElementsAre(5));
    data.SetFilterOptions({foCaseInsensitive});
    EXPECT_THAT(Taken("Name = 'SOL*'"), ElementsAre(1, 3));
    EXPECT_THAT(Taken("Name LIKE 'n\xFA%'"), ElementsAre(2));
    EXPECT_THAT(Taken("Name = 'N\xDA\xD1"
                      "EZ'"),
                ElementsAre(2));
    data.SetFilterOptions({foNoPartialCompare});
    EXPECT_THAT(Taken("Name = 'a*'"), ElementsAre());
    EXPECT_THAT(Taken("Name = 'a*b'"), ElementsAre(5));
}

TEST_F(Rows, ExpressionsCalculate) {
    EXPECT_EQ(Value("1 + 2 * 3 - 4 / 2"), "5");
    EXPECT_EQ(Value("(1 + 2) * -3"), "-9");
    EXPECT_EQ(Value("1 / 0"), "");
    EXPECT_EQ(Value("1 + NULL"), "");
    EXPECT_EQ(Value("'a' + 'b' & 3 & NULL"), "ab3");
    EXPECT_EQ(Value("UPPER('\xE9') & LOWER('AB') & TRIM(' x ') & LENGTH('four')"),
              "\xC9"
              "abx4");
    EXPECT_EQ(Value("SUBSTRING('abcdef', 2, 3) & SUBSTRING('abc', 3) & SUBSTRING('abc', 9)"), "bcdc");
    EXPECT_EQ(Value("ABS(-2.5) + ROUND(1.256, 2) + ROUND(0.5)"), "4.76");
    EXPECT_EQ(Value("YEAR(#2/29/2400#) + MONTH(#2/29/2400#) + DAY('02/29/2400')"), "2431");
    EXPECT_EQ(Value("HOUR(#10:20:30#) * 10000 + MINUTE(#10:20:30#) * 100 + SECOND(#10:20:30#)"), "102030");
    EXPECT_EQ(Value("#2/28/2001# + 1"), "03/01/2001");
    EXPECT_EQ(Value("#3/1/2001# - #2/28/2001#"), "1");
    EXPECT_EQ(Value("UPPER(NULL)"), "");
    EXPECT_EQ(Value("1.5e1 + .5"), "15.5");
    EXPECT_EQ(Value("'it''s' = \"it's\""), "True");
}

TEST_F(Rows, ExpressionsThatAreWrongSayWhere) {
    const auto wrong = [&](const AnsiString& text) { return MessageOf([&] { data.SetFilter(text); }); };
    EXPECT_EQ(wrong("Nope = 1"),
              "EDatabaseError: The expression \"Nope = 1\" is wrong at character 1: Field 'Nope' not found");
    EXPECT_EQ(wrong("Id = "), "EDatabaseError: The expression \"Id = \" is wrong at character 6: a value is missing");
    EXPECT_EQ(wrong("(Id = 1"), "EDatabaseError: The expression \"(Id = 1\" is wrong at character 8: \")\" is missing");
    EXPECT_EQ(wrong("Id 1"), "EDatabaseError: The expression \"Id 1\" is wrong at character 4: something is left over");
    EXPECT_EQ(wrong("Name = 'x"),
              "EDatabaseError: The expression \"Name = 'x\" is wrong at character 8: the closing quote is missing");
    EXPECT_EQ(wrong("[Id = 1"), "EDatabaseError: The expression \"[Id = 1\" is wrong at character 1: \"]\" is missing");
    EXPECT_EQ(wrong("Day = #x#"),
              "EDatabaseError: The expression \"Day = #x#\" is wrong at character 7: this is no date");
    EXPECT_EQ(wrong("1.2.3"), "EDatabaseError: The expression \"1.2.3\" is wrong at character 1: '1.2.3' is no number");
    EXPECT_EQ(wrong("Nope(1)"),
              "EDatabaseError: The expression \"Nope(1)\" is wrong at character 1: there is no function Nope");
    EXPECT_EQ(wrong("Id IS 1"), "EDatabaseError: The expression \"Id IS 1\" is wrong at character 7: NULL is missing");
    EXPECT_EQ(wrong("Id BETWEEN 1"),
              "EDatabaseError: The expression \"Id BETWEEN 1\" is wrong at character 13: AND is missing");
    EXPECT_EQ(wrong("Id NOT 1"),
              "EDatabaseError: The expression \"Id NOT 1\" is wrong at character 4: NOT stands before nothing that it "
              "could change");
    EXPECT_EQ(wrong("UPPER(1, 2)"),
              "EDatabaseError: The expression \"UPPER(1, 2)\" is wrong at character 1: UPPER takes another number of "
              "arguments");
    EXPECT_NE(wrong(AnsiString(5000, '(')).find("it is nested too deep"), AnsiString::npos);
    AnsiString sum = "1";
    for (int i = 0; i < 5000; ++i) sum += "+1";
    EXPECT_NE(wrong(sum).find("it is too long"), AnsiString::npos);
    // The filter before stays.
    EXPECT_EQ(data.Filter(), "");
    EXPECT_EQ(MessageOf([&] { Value("'x' * 2"); }),
              "EDatabaseError: Could not convert variant of type (String) into type (Double)");
}

TEST_F(Rows, AFilterIsCheckedWhenTheDatasetOpens) {
    data.Close();
    data.SetFilter("Nope = 1");
    EXPECT_NE(MessageOf([&] { data.Open(); }), "no error");
    EXPECT_FALSE(data.Active());
    data.SetFilter("Id = 2");
    data.SetFiltered(true);
    data.Open();
    EXPECT_EQ(data.RecordCount(), 1);
}

TEST_F(Rows, FilterAndEventBothDecide) {
    data.OnFilterRecord = [&](TDataSet*, bool& accept) { accept = data.FieldByName("Id")->AsInteger() % 2 == 1; };
    EXPECT_THAT(Taken("Id > 1"), ElementsAre(3, 5));
}

TEST_F(Rows, RecordsOfTheFilterAreFoundWhileAllAreShown) {
    data.SetFilter("Id IN (2, 4)");
    EXPECT_TRUE(data.FindFirst());
    EXPECT_EQ(data.RecNo(), 2);
    EXPECT_TRUE(data.FindNext());
    EXPECT_EQ(data.RecNo(), 4);
    EXPECT_FALSE(data.FindNext());
    EXPECT_EQ(data.RecNo(), 4);
    EXPECT_TRUE(data.FindPrior());
    EXPECT_FALSE(data.FindPrior());
    EXPECT_TRUE(data.FindLast());
    EXPECT_EQ(data.RecNo(), 4);
    EXPECT_EQ(data.RecordCount(), 5);
}

TEST_F(Rows, NewRecordsBeginWithTheirDefaults) {
    data.FieldByName("Name")->DefaultExpression = "'nou'";
    data.FieldByName("Price")->DefaultExpression = "2.5 * 2";
    data.FieldByName("Day")->DefaultExpression = "#3/9/2001#";
    data.FieldByName("Ok")->DefaultExpression = "TRUE";
    data.Append();
    EXPECT_EQ(data.FieldByName("Name")->AsString(), "nou");
    EXPECT_EQ(data.FieldByName("Price")->AsCurrency().Val, 50000);
    EXPECT_EQ(data.FieldByName("Day")->DisplayText(), "03/09/2001");
    EXPECT_TRUE(data.FieldByName("Ok")->AsBoolean());
    EXPECT_FALSE(data.Modified());
    data.Cancel();
    EXPECT_EQ(data.RecordCount(), 5);
    data.FieldByName("Name")->DefaultExpression = "Id";
    EXPECT_EQ(MessageOf([&] { data.Append(); }),
              "EDatabaseError: The expression \"Id\" is wrong at character 1: Field 'Id' not found");
    EXPECT_EQ(data.State(), dsBrowse);
    EXPECT_EQ(data.RecordCount(), 5);
}

TEST_F(Rows, ConstraintsKeepRecordsFromBeingPosted) {
    data.FieldByName("Rate")->CustomConstraint = "x >= 0 AND x <= Id";
    data.Edit();
    data.FieldByName("Rate")->SetAsFloat(2);
    EXPECT_EQ(MessageOf([&] { data.Post(); }), "EDatabaseError: Field 'Rate' must satisfy: x >= 0 AND x <= Id");
    data.FieldByName("Rate")->ConstraintErrorMessage = "The rate is too high.";
    EXPECT_EQ(MessageOf([&] { data.Post(); }), "EDatabaseError: The rate is too high.");
    EXPECT_EQ(data.State(), dsEdit);
    data.FieldByName("Rate")->Clear();
    data.Post();
    data.Edit();
    data.FieldByName("Rate")->SetAsFloat(1);
    data.Post();
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(Rows, WholeRecordsAreAppendedAndInserted) {
    data.AppendRecord({Variant(), Variant("sis"), Variant(6)});
    EXPECT_EQ(data.RecNo(), 6);
    EXPECT_EQ(data.FieldByName("Name")->AsString(), "sis");
    EXPECT_EQ(data.FieldByName("Price")->AsCurrency().Val, 60000);
    data.First();
    data.InsertRecord({Variant(7), Variant("set")});
    EXPECT_EQ(data.RecNo(), 1);
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 7);
    EXPECT_EQ(MessageOf([&] { data.AppendRecord(std::vector<Variant>(9)); }), "EDatabaseError: Too many field values");
    data.Cancel();
    EXPECT_EQ(MessageOf([&] { data.SetFields({}); }), "EDatabaseError: Dataset not in edit or insert mode");
}

TEST_F(Rows, TextsAreShownThroughTheirMask) {
    TField* name = data.FieldByName("Name");
    name->SetEditMask("LL-cccc;0;_");
    EXPECT_EQ(name->DisplayText(), "So-ler ");
    EXPECT_EQ(name->AsString(), "Soler");
    EXPECT_EQ(name->Text(), "Soler");
}

TEST_F(Rows, LookupsReadTheOtherDatasetOnceWhenTheyKeepAList) {
    MemoryDataSet names({MemoryDataSet::Row(1, "one"), MemoryDataSet::Row(3, "three"), MemoryDataSet::Row(3, "again")});
    names.Open();
    data.Close();
    auto* word = new TStringField(&data);
    word->SetFieldName("Word");
    word->SetFieldKind(fkLookup);
    word->KeyFields = "Id";
    word->SetLookupDataSet(&names);
    word->LookupKeyFields = "Id";
    word->LookupResultField = "Name";
    word->LookupCache = true;
    word->SetDataSet(&data);
    data.Open();
    EXPECT_EQ(word->AsString(), "one");
    EXPECT_EQ(word->DisplayTextOf(2), "three");
    EXPECT_TRUE(word->IsNullIn(1));
    names.Edit();
    names.FieldByName("Name")->SetAsString("changed");
    names.Post();
    data.Refresh();
    EXPECT_EQ(word->AsString(), "one");
    word->RefreshLookupList();
    data.Refresh();
    EXPECT_EQ(word->AsString(), "changed");
    names.Close();
    names.Open();
    data.Refresh();
    EXPECT_EQ(word->AsString(), "one");
}

TEST_F(Rows, InternallyCalculatedFieldsAreCalculatedToo) {
    data.Close();
    auto* twice = new TFloatField(&data);
    twice->SetFieldName("Twice");
    twice->SetFieldKind(fkInternalCalc);
    twice->SetDataSet(&data);
    data.OnCalcFields = [&](TDataSet* d) {
        twice->SetAsFloat(2.0 * static_cast<double>(d->FieldByName("Id")->AsInteger()));
    };
    data.Open();
    EXPECT_EQ(twice->AsFloat(), 2.0);
    EXPECT_THAT(Taken("Twice > 6"), ElementsAre(4, 5));
    EXPECT_FALSE(twice->CanModify());
}

namespace {

// One record with long values.
class LongValues : public TDataSet {
  public:
    LongValues() : TDataSet(nullptr) {}
    ~LongValues() override { BeginDestruction(); }

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        given_ = false;
        return {{"Notes", ftMemo}, {"Picture", ftBlob}};
    }
    bool InternalFetch(RowStore& rows, int64_t) override {
        if (!given_) rows.Append({Cell::Bytes("caf\xC3\xA9"), Cell::Bytes(std::string("\0\1\2", 3))});
        given_ = true;
        return false;
    }
    void InternalClose() override {}
    AnsiString ReasonNotToModify() const override { return {}; }

  private:
    bool given_ = false;
};

}  // namespace

TEST(BlobFields, AreStreamedInAndOut) {
    LongValues data;
    data.Open();
    auto* notes = ObjectCast<TBlobField>(data.FieldByName("Notes"));
    auto* picture = ObjectCast<TBlobField>(data.FieldByName("Picture"));
    ASSERT_TRUE(notes && picture);
    EXPECT_EQ(notes->BlobSize(), 4);
    EXPECT_EQ(picture->BlobSize(), 3);
    TMemoryStream stream;
    notes->SaveToStream(stream);
    EXPECT_EQ(stream.MemoryView(), "caf\xE9");
    EXPECT_EQ(picture->CreateBlobStream()->MemoryView(), std::string_view("\0\1\2", 3));
    data.Edit();
    stream.SetPosition(1);
    notes->LoadFromStream(stream);
    picture->LoadFromStream(stream);
    EXPECT_EQ(notes->AsString(), "af\xE9");
    EXPECT_EQ(picture->BlobSize(), 0);
    const AnsiString file = testing::TempDir() + "vyn-blob.bin";
    notes->SaveToFile(file);
    picture->LoadFromFile(file);
    EXPECT_EQ(picture->RawBytes(), "af\xE9");
    EXPECT_NE(MessageOf([&] { picture->LoadFromFile(file + ".nowhere"); }), "no error");
    EXPECT_EQ(picture->RawBytes(), "af\xE9");
}
