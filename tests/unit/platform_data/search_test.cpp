#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text/format_settings.h"
#include "platform/text/windows1252.h"
#include "unit/platform_data/memory_data_set.h"

using namespace vyn;

namespace {

class Search : public testing::Test {
  protected:
    Search()
        : data({MemoryDataSet::Row(1, "Soler", 0.5),
                MemoryDataSet::Row(2,
                                   "N\xC3\xBA\xC3\xB1"
                                   "ez"),
                MemoryDataSet::Row(3, "solera"), MemoryDataSet::Row(4, nullptr), MemoryDataSet::Row(5, "Soler")}) {
        FormatSettings() = InvariantFormatSettings();
        data.Open();
    }
    int64_t Found(const AnsiString& keys, const std::vector<Variant>& values, TLocateOptions options = {}) {
        data.First();
        return data.Locate(keys, values, options) ? data.FieldByName("Id")->AsInteger() : 0;
    }
    std::vector<int64_t> Ids() {
        std::vector<int64_t> ids;
        for (data.First(); !data.Eof(); data.Next()) ids.push_back(data.FieldByName("Id")->AsInteger());
        return ids;
    }
    MemoryDataSet data;
};

}  // namespace

TEST_F(Search, LocateGoesToTheFirstRecordWithTheValue) {
    EXPECT_EQ(Found("Name", {Variant("Soler")}), 1);
    EXPECT_EQ(Found("name;id", {Variant("Soler"), Variant(5)}), 5);
    EXPECT_EQ(Found("Id", {Variant("3")}), 3);
    EXPECT_EQ(Found("Price", {Variant(4.0)}), 4);
    EXPECT_EQ(Found("Rate", {Variant(0.5)}), 1);
    EXPECT_EQ(Found("Day", {Variant(TDateTime(46000.0))}), 1);
    EXPECT_EQ(Found("Ok", {Variant(true)}), 1);
}

TEST_F(Search, LocateMindsLettersAndLengthUnlessItIsTold) {
    EXPECT_EQ(Found("Name", {Variant("SOLER")}), 0);
    EXPECT_EQ(Found("Name", {Variant("SOLERA")}, {loCaseInsensitive}), 3);
    EXPECT_EQ(Found("Name", {Variant("N\xFA")}), 0);
    EXPECT_EQ(Found("Name", {Variant("N\xFA")}, {loPartialKey}), 2);
    EXPECT_EQ(Found("Name", {Variant("n\xDA\xD1")}, {loPartialKey, loCaseInsensitive}), 2);
}

TEST_F(Search, LocateMindsAccentsUnlessItIsTold) {
    EXPECT_EQ(Found("Name", {Variant("Nunez")}, {loCaseInsensitive}), 0);
    EXPECT_EQ(Found("Name", {Variant("Nunez")}, {loAccentInsensitive}), 2);
    EXPECT_EQ(Found("Name", {Variant("nunez")}, {loAccentInsensitive}), 0);
    EXPECT_EQ(Found("Name", {Variant("nunez")}, {loAccentInsensitive, loCaseInsensitive}), 2);
    EXPECT_EQ(Found("Name", {Variant("N\xDAN")}, {loAccentInsensitive, loCaseInsensitive, loPartialKey}), 2);
    EXPECT_EQ(Found("Name", {Variant("s\xF3l")}, {loAccentInsensitive, loCaseInsensitive, loPartialKey}), 1);
    EXPECT_EQ(Found("Name;Id", {Variant("s\xF3l"), Variant(3)}, {loAccentInsensitive, loPartialKey}), 3);
    EXPECT_EQ(data.Lookup("Name", Variant("nu"), "Id", {loAccentInsensitive, loCaseInsensitive, loPartialKey}),
              Variant(2));
    EXPECT_TRUE(data.Lookup("Name", Variant("nu"), "Id").IsNull());
}

TEST_F(Search, AWholeTextComesBeforeLongerOnesWhenThatIsWanted) {
    const TLocateOptions typed{loCaseInsensitive, loPartialKey, loAccentInsensitive};
    const TLocateOptions wholeFirst = typed + TLocateOptions{loWholeFirst};
    EXPECT_EQ(Found("Name", {Variant("solera")}, wholeFirst), 3);
    EXPECT_EQ(Found("Name", {Variant("sole")}, wholeFirst), 1);
    EXPECT_EQ(Found("Name", {Variant("x")}, wholeFirst), 0);
    data.Stored = {MemoryDataSet::Row(1, "Solera"), MemoryDataSet::Row(2, "SOL\xC3\x89R"),
                   MemoryDataSet::Row(3, "Soler")};
    data.Close();
    data.Open();
    EXPECT_EQ(Found("Name", {Variant("soler")}, typed), 1);
    EXPECT_EQ(Found("Name", {Variant("soler")}, wholeFirst), 2);
    EXPECT_EQ(Found("Name", {Variant("Soler")}, {loWholeFirst, loPartialKey}), 3);
    // Without beginnings there is nothing longer.
    EXPECT_EQ(Found("Name", {Variant("sole")}, {loWholeFirst, loCaseInsensitive}), 0);
}

TEST_F(Search, WhatCannotBeShownIsFoundByQuestionMarks) {
    data.Stored.push_back(MemoryDataSet::Row(9,
                                             "\xC4\x8D"
                                             "apek"));
    data.Close();
    data.Open();
    EXPECT_EQ(Found("Name", {Variant("?AP")}, {loCaseInsensitive, loPartialKey}), 9);
    EXPECT_EQ(Found("Name", {Variant("cap")}, {loAccentInsensitive, loPartialKey}), 0);
    EXPECT_EQ(Found("Name", {Variant("?apek")}), 0);
    EXPECT_EQ(Found("Name", {Variant(Utf8ToWide("\xC4\x8D"
                                                "apek"))}),
              9);
}

TEST_F(Search, AnEmptyBeginningFindsTheFirstTextThatIsNotNull) {
    data.SetSort("Name");
    data.First();
    EXPECT_TRUE(data.FieldByName("Name")->IsNull());
    EXPECT_EQ(Found("Name", {Variant("")}, {loPartialKey}), 2);
    EXPECT_EQ(Found("Name", {Variant("")}, {loPartialKey, loAccentInsensitive}), 2);
    EXPECT_EQ(Found("Name", {Variant("")}, {loAccentInsensitive}), 0);
}

TEST_F(Search, ARecordInEditingIsLookedUpAsItIsTyped) {
    data.Edit();
    data.FieldByName("Name")->SetAsString("\xC0vila");
    EXPECT_EQ(data.Lookup("Name", Variant("av"), "Id", {loAccentInsensitive, loCaseInsensitive, loPartialKey}),
              Variant(1));
    EXPECT_EQ(data.Lookup("Name", Variant("Soler"), "Id"), Variant(5));
    data.Cancel();
}

TEST_F(Search, LocateThatFindsNothingStays) {
    data.Last();
    EXPECT_FALSE(data.Locate("Name", Variant("nobody")));
    EXPECT_EQ(data.RecNo(), 5);
}

TEST_F(Search, NullFindsNullAlone) {
    EXPECT_EQ(Found("Name", {Variant::Null()}), 4);
    EXPECT_EQ(Found("Name", {Variant("")}), 0);
    EXPECT_EQ(Found("Id", {Variant::Null()}), 0);
}

TEST_F(Search, KeysAndValuesMustBeAsMany) {
    EXPECT_EQ(MessageOf([&] { data.Locate("Id;Name", Variant(1)); }),
              "EDatabaseError: There are 2 key fields (Id;Name) and 1 values");
    EXPECT_EQ(MessageOf([&] { data.Locate("Nope", Variant(1)); }), "EDatabaseError: Field 'Nope' not found");
    data.Close();
    EXPECT_EQ(MessageOf([&] { data.Locate("Id", Variant(1)); }),
              "EDatabaseError: Cannot perform this operation on a closed dataset");
}

TEST_F(Search, LookupStaysAndGivesNullWhenThereIsNone) {
    EXPECT_EQ(data.Lookup("Id", Variant(2), "Name").AsString(),
              "N\xFA\xF1"
              "ez");
    EXPECT_TRUE(data.Lookup("Id", Variant(9), "Name").IsNull());
    EXPECT_EQ(data.RecNo(), 1);
}

TEST_F(Search, LookUpShowsTheRecordFoundAndStays) {
    AnsiString seen;
    data.AfterScroll = [&](TDataSet*) { seen += "scroll "; };
    const auto look = [&] { seen += data.FieldByName("Id")->AsString() + " "; };
    EXPECT_TRUE(data.LookUp("Name", Variant("n\xDA"), {loCaseInsensitive, loPartialKey}, look));
    EXPECT_FALSE(data.LookUp("Name", Variant("zz"), {loPartialKey}, look));
    EXPECT_EQ(seen, "2 ");
    EXPECT_EQ(data.RecNo(), 1);
    // Also while a record is edited, which stays as it is.
    data.Edit();
    data.FieldByName("Name")->SetAsString("Half typed");
    EXPECT_TRUE(data.LookUp("Id", Variant(2), {}, look));
    EXPECT_EQ(seen, "2 2 ");
    EXPECT_EQ(data.State(), dsEdit);
    EXPECT_EQ(data.FieldByName("Name")->AsString(), "Half typed");
    // What goes wrong while looking passes.
    EXPECT_THROW(data.LookUp("Id", Variant(2), {}, [] { throw EDatabaseError("no"); }), EDatabaseError);
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 1);
}

TEST_F(Search, BookmarksSurviveInsertionsAndDeletions) {
    data.Last();
    const TBookmark last = data.GetBookmark();
    data.First();
    const TBookmark first = data.GetBookmark();
    data.Next();
    data.Delete();
    data.First();
    data.Insert();
    data.FieldByName("Name")->SetAsString("new");
    data.Post();
    data.GotoBookmark(last);
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 5);
    data.GotoBookmark(first);
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 1);
    data.Delete();
    EXPECT_FALSE(data.BookmarkValid(first));
    EXPECT_EQ(MessageOf([&] { data.GotoBookmark(first); }), "EDatabaseError: Record not found");
    data.Close();
    data.Open();
    EXPECT_FALSE(data.BookmarkValid(last));
}

TEST_F(Search, AFilterShowsTheRecordsThatItTakes) {
    data.OnFilterRecord = [&](TDataSet*, bool& accept) { accept = data.FieldByName("Id")->AsInteger() % 2 == 1; };
    data.Last();
    data.SetFiltered(true);
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 5);
    EXPECT_THAT(Ids(), testing::ElementsAre(1, 3, 5));
    data.First();
    data.Next();
    data.Delete();
    EXPECT_THAT(Ids(), testing::ElementsAre(1, 5));
    data.Append();
    data.FieldByName("Id")->SetAsInteger(7);
    data.FieldByName("Name")->SetAsString("seven");
    data.Post();
    EXPECT_THAT(Ids(), testing::ElementsAre(1, 5, 7));
    data.SetFiltered(false);
    EXPECT_THAT(Ids(), testing::ElementsAre(1, 2, 4, 5, 7));
}

TEST_F(Search, SortingOrdersByFieldsAndKeepsTheCurrentRecord) {
    data.Last();
    data.SetSort("Name, Id DESC");
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 5);
    EXPECT_THAT(Ids(), testing::ElementsAre(4, 2, 5, 1, 3));
    EXPECT_EQ(MessageOf([&] { data.SetSort("Nope"); }), "EDatabaseError: Field 'Nope' not found");
    data.SetSort("");
    EXPECT_THAT(Ids(), testing::ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(Search, CalculatedAndLookupFieldsFollowTheirRecord) {
    MemoryDataSet names({MemoryDataSet::Row(1, "one"), MemoryDataSet::Row(3, "three")});
    names.Open();
    MemoryDataSet with(data.Stored);
    auto* twice = new TFloatField(&with);
    twice->SetFieldName("Twice");
    twice->SetFieldKind(fkCalculated);
    twice->SetDataSet(&with);
    auto* word = new TStringField(&with);
    word->SetFieldName("Word");
    word->SetFieldKind(fkLookup);
    word->KeyFields = "Id";
    word->SetLookupDataSet(&names);
    word->LookupKeyFields = "Id";
    word->LookupResultField = "Name";
    word->SetDataSet(&with);
    with.OnCalcFields = [&](TDataSet* d) {
        twice->SetAsFloat(2.0 * static_cast<double>(d->FieldByName("Id")->AsInteger()));
    };
    with.Open();
    EXPECT_EQ(with.FieldCount(), 8);
    EXPECT_EQ(twice->AsFloat(), 2.0);
    EXPECT_EQ(word->AsString(), "one");
    EXPECT_EQ(twice->DisplayTextOf(3), "8");
    EXPECT_TRUE(word->IsNullIn(3));
    with.MoveBy(2);
    EXPECT_EQ(word->AsString(), "three");
    with.Edit();
    EXPECT_EQ(MessageOf([&] { twice->SetAsFloat(1); }), "EDatabaseError: Field 'Twice' cannot be modified");
    with.FieldByName("Id")->SetAsInteger(1);
    EXPECT_EQ(word->AsString(), "one");
    EXPECT_EQ(twice->AsFloat(), 2.0);
}

TEST_F(Search, ControlsAreTellableAfterAnError) {
    const AnsiString message = MessageOf([&] {
        const DisabledControls quiet(data);
        data.FieldByName("Nope");
    });
    EXPECT_EQ(message, "EDatabaseError: Field 'Nope' not found");
    EXPECT_FALSE(data.ControlsDisabled());
}

TEST(FieldClasses, SayWhetherTheyAreNumbersOrDates) {
    const auto kind = [](TFieldType type) {
        const std::unique_ptr<TObject> made(FieldClassOf(type)->Create(nullptr));
        const auto* field = ObjectCast<TField>(made.get());
        return field->IsNumeric() ? 'n' : field->IsDateTime() ? 'd' : '-';
    };
    for (TFieldType type : {ftSmallint, ftInteger, ftWord, ftFloat, ftCurrency, ftBCD, ftAutoInc, ftLargeint})
        EXPECT_EQ(kind(type), 'n') << static_cast<int>(type);
    for (TFieldType type : {ftDate, ftTime, ftDateTime}) EXPECT_EQ(kind(type), 'd') << static_cast<int>(type);
    for (TFieldType type : {ftString, ftBoolean, ftMemo, ftBlob, ftWideString, ftGraphic}) EXPECT_EQ(kind(type), '-');
}
