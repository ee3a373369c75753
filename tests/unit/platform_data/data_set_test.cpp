#include "platform/data/data_set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "support/errors.h"

using namespace vyn;

namespace {

// Rows made by the test, given a few at a time.
class TestDataSet : public TDataSet {
  public:
    explicit TestDataSet(int rows, TComponent* owner = nullptr) : TDataSet(owner), rows_(rows) {}
    ~TestDataSet() override { BeginDestruction(); }
    int Fetches = 0;

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        next_ = 0;
        return {{"Id", ftInteger, 0, 0, true},
                {"Name", ftString, 30},
                {"Price", ftCurrency},
                {"Day", ftDate},
                {"Ok", ftBoolean}};
    }
    bool InternalFetch(RowStore& rows, int64_t count) override {
        ++Fetches;
        for (; count > 0 && next_ < rows_; --count, ++next_) {
            rows.BeginRow();
            rows.PutInteger(next_);
            if (next_ % 2 == 1)
                rows.PutNull();
            else
                rows.PutBytes("n\xC3\xBAm " + std::to_string(next_));
            rows.PutInteger(next_ * 12345);
            rows.PutReal(46000.0 + next_);
            rows.PutInteger(next_ % 3 == 0);
            rows.EndRow();
        }
        return next_ < rows_;
    }
    void InternalClose() override {}

  private:
    int rows_;
    int next_ = 0;
};

class Ear : public TDataLink {
  public:
    ~Ear() override = default;
    std::vector<DataEvent> heard;

  protected:
    void Changed(DataEvent event, TField*) override {
        // Asking for what is typed is no news.
        if (event != DataEvent::CheckBrowse && event != DataEvent::UpdateRecord) heard.push_back(event);
    }
};

}  // namespace

TEST(RowStore, EveryValueComesBack) {
    RowStore rows({ColumnKind::Integer, ColumnKind::Text, ColumnKind::Real, ColumnKind::Bytes});
    const std::string large(300000, 'x');
    for (int64_t number : {int64_t{0}, int64_t{-1}, int64_t{127}, INT64_MAX, INT64_MIN}) {
        rows.BeginRow();
        rows.PutInteger(number);
        rows.PutBytes(number == 127 ? large : "t");
        rows.PutReal(static_cast<double>(number) / 3);
        rows.PutNull();
        rows.EndRow();
    }
    ASSERT_EQ(rows.Count(), 5);
    EXPECT_EQ(rows.Integer(3, 0), INT64_MAX);
    EXPECT_EQ(rows.Integer(4, 0), INT64_MIN);
    EXPECT_EQ(rows.Integer(1, 0), -1);
    EXPECT_EQ(rows.Bytes(2, 1), large);
    EXPECT_EQ(rows.Bytes(4, 1), "t");
    EXPECT_EQ(rows.Real(2, 2), 127.0 / 3);
    EXPECT_TRUE(rows.IsNull(0, 3));
    EXPECT_EQ(rows.Bytes(0, 3), "");
}

TEST(RowStore, ValuesAreFoundInAnyOrderOfAsking) {
    RowStore rows({ColumnKind::Text, ColumnKind::Integer, ColumnKind::Text, ColumnKind::Real});
    for (int i = 0; i < 3; ++i)
        rows.Append({i == 1 ? Cell::Null() : Cell::Bytes("a" + std::to_string(i)), Cell::Integer(i * 1000),
                     Cell::Bytes("b" + std::to_string(i)), Cell::Real(i + 0.5)});
    for (const auto& [row, column] :
         {std::pair{0, 3}, {0, 1}, {0, 2}, {1, 2}, {1, 0}, {1, 3}, {2, 0}, {0, 0}, {2, 3}}) {
        const Cell cell = rows.CellAt(row, column);
        if (column == 0) EXPECT_EQ(cell.AsBytes(), row == 1 ? "" : "a" + std::to_string(row));
        if (column == 1) EXPECT_EQ(cell.AsInteger(), row * 1000);
        if (column == 2) EXPECT_EQ(cell.AsBytes(), "b" + std::to_string(row));
        if (column == 3) EXPECT_EQ(cell.AsReal(), row + 0.5);
    }
    // Also after the row is another one.
    EXPECT_EQ(rows.Bytes(2, 2), "b2");
    rows.Replace(2, {Cell::Null(), Cell::Null(), Cell::Bytes("c"), Cell::Real(1)});
    EXPECT_EQ(rows.Bytes(2, 2), "c");
    EXPECT_EQ(rows.Real(2, 3), 1);
}

TEST(RowStore, TheLastRowsAreForgottenAndTheirMemoryIsUsedAgain) {
    RowStore rows({ColumnKind::Integer, ColumnKind::Bytes});
    rows.Append({Cell::Integer(1), Cell::Bytes("first")});
    const size_t before = rows.MemoryUsed();
    for (int i = 0; i < 1000; ++i) {
        // A few at a time, and more than a block of memory holds.
        const int count = i % 100 == 0 ? 10000 : 100;
        for (int j = 0; j < count; ++j) rows.Append({Cell::Integer(j), Cell::Bytes(std::string(100, 'x'))});
        EXPECT_EQ(rows.Bytes(count, 1).size(), 100u);
        rows.Truncate(1);
    }
    EXPECT_EQ(rows.Count(), 1);
    EXPECT_LT(rows.MemoryUsed(), before * 2);
    rows.Append({Cell::Integer(2), Cell::Bytes("second")});
    EXPECT_EQ(rows.Bytes(0, 1), "first");
    EXPECT_EQ(rows.Bytes(1, 1), "second");
    EXPECT_EQ(rows.Integer(1, 0), 2);
}

TEST(RowStore, SmallRowsTakeLittleMemory) {
    RowStore rows({ColumnKind::Integer, ColumnKind::Text});
    for (int i = 0; i < 100000; ++i) {
        rows.BeginRow();
        rows.PutInteger(i % 100);
        rows.PutBytes("abcdefgh");
        rows.EndRow();
    }
    EXPECT_LT(rows.MemoryUsed() / 100000, 32u);
}

TEST(DataSet, ReadsTheCurrentRecordsFields) {
    TestDataSet data(10);
    data.Open();
    EXPECT_EQ(data.FieldByName("NAME")->AsString(), "n\xFAm 0");
    EXPECT_EQ(data.MoveBy(3), 3);
    EXPECT_TRUE(data.FieldByName("Name")->IsNull());
    EXPECT_EQ(data.FieldByName("Name")->AsString(), "");
    EXPECT_EQ(data.FieldByName("Id")->AsInteger(), 3);
    EXPECT_EQ(data.FieldByName("Price")->AsCurrency().Val, 3 * 12345);
    EXPECT_EQ(data.FieldByName("Day")->AsDateTime().Val, 46003.0);
    EXPECT_TRUE(data.FieldByName("Ok")->AsBoolean());
}

TEST(DataSet, FetchesNoMoreThanIsAskedFor) {
    TestDataSet data(100000);
    data.Open();
    EXPECT_LT(data.RecordsFetched(), 1000);
    EXPECT_EQ(data.Fetches, 1);
    data.MoveBy(5000);
    EXPECT_EQ(data.CurrentRecord(), 5000);
    EXPECT_LT(data.RecordsFetched(), 10000);
    data.Last();
    EXPECT_EQ(data.CurrentRecord(), 99999);
    EXPECT_TRUE(data.Eof());
    EXPECT_EQ(data.RecordCount(), 100000);
}

TEST(DataSet, MovesUpToItsEndsAndSaysSo) {
    TestDataSet data(3);
    data.Open();
    EXPECT_TRUE(data.Bof());
    EXPECT_FALSE(data.Eof());
    EXPECT_EQ(data.MoveBy(5), 2);
    EXPECT_TRUE(data.Eof());
    data.Next();
    EXPECT_EQ(data.RecNo(), 3);
    data.Prior();
    EXPECT_FALSE(data.Eof());
    EXPECT_EQ(data.MoveBy(-9), -1);
    EXPECT_TRUE(data.Bof());
    int count = 0;
    for (data.First(); !data.Eof(); data.Next()) ++count;
    EXPECT_EQ(count, 3);
}

TEST(DataSet, AnEmptyResultIsAtBothEnds) {
    TestDataSet data(0);
    data.Open();
    EXPECT_TRUE(data.Bof() && data.Eof() && data.IsEmpty());
    EXPECT_EQ(data.RecNo(), 0);
    EXPECT_TRUE(data.FieldByName("Name")->IsNull());
    EXPECT_EQ(data.FieldByName("Name")->DisplayText(), "");
}

TEST(DataSet, AFieldThatIsNotThereIsNamed) {
    TestDataSet data(1);
    data.SetName("Customers");
    data.Open();
    EXPECT_EQ(MessageOf([&] { data.FieldByName("Nope"); }), "EDatabaseError: Customers: Field 'Nope' not found");
    EXPECT_EQ(data.FindField("Nope"), nullptr);
}

TEST(DataSet, AClosedDataSetCannotBeRead) {
    TestDataSet data(1);
    EXPECT_EQ(MessageOf([&] { data.Next(); }), "EDatabaseError: Cannot perform this operation on a closed dataset");
    EXPECT_EQ(data.FieldCount(), 0);
}

TEST(DataSet, FieldsOfTheFormAreBoundByNameAndStay) {
    TComponent form(nullptr);
    TestDataSet data(2, &form);
    auto* price = new TCurrencyField(&form);
    price->SetFieldName("price");
    price->SetDataSet(&data);
    data.Open();
    EXPECT_EQ(data.FieldCount(), 1);
    data.Next();
    EXPECT_EQ(price->AsCurrency().Val, 12345);
    data.Close();
    EXPECT_EQ(data.FieldCount(), 1);
    price->SetFieldName("Other");
    EXPECT_EQ(MessageOf([&] { data.Open(); }), "EDatabaseError: Field 'Other' not found");
    EXPECT_FALSE(data.Active());
    price->SetFieldName("Name");
    EXPECT_EQ(MessageOf([&] { data.Open(); }),
              "EDatabaseError: Type mismatch for field 'Name', expecting: Currency actual: String");
}

TEST(DataSet, EventsComeInOrder) {
    TestDataSet data(2);
    std::vector<AnsiString> events;
    data.BeforeOpen = [&](TDataSet*) { events.push_back("BeforeOpen"); };
    data.AfterOpen = [&](TDataSet*) { events.push_back("AfterOpen"); };
    data.BeforeScroll = [&](TDataSet*) { events.push_back("BeforeScroll"); };
    data.AfterScroll = [&](TDataSet*) { events.push_back("AfterScroll"); };
    data.BeforeClose = [&](TDataSet*) { events.push_back("BeforeClose"); };
    data.AfterClose = [&](TDataSet*) { events.push_back("AfterClose"); };
    data.Open();
    data.Next();
    data.Close();
    EXPECT_THAT(events, testing::ElementsAre("BeforeOpen", "AfterOpen", "AfterScroll", "BeforeScroll", "AfterScroll",
                                             "BeforeClose", "AfterClose"));
}

TEST(DataSource, LinksHearOfWhatHappens) {
    TestDataSet data(5);
    TDataSource source(nullptr);
    Ear ear;
    ear.SetDataSource(&source);
    source.SetDataSet(&data);
    ear.heard.clear();
    data.Open();
    data.Next();
    data.FieldByName("Name")->SetDisplayLabel("Nom");
    data.Close();
    EXPECT_THAT(ear.heard, testing::ElementsAre(DataEvent::ActiveChanged, DataEvent::Scrolled, DataEvent::LayoutChanged,
                                                DataEvent::ActiveChanged));
}

TEST(DataSource, WhatHasChangedIsToldToAllWhoeverFailsOfIt) {
    // As a detail does whose database is away.
    class FailingEar : public TDataLink {
      public:
        bool Asked = false;  // fails of what asks, else of what tells
        bool Fails = false;

      protected:
        void Changed(DataEvent event, TField*) override {
            const bool asks = event == DataEvent::CheckBrowse || event == DataEvent::UpdateRecord;
            if (Fails && asks == Asked) throw EDatabaseError(asks ? "refused" : "away");
        }
    };
    TestDataSet data(5);
    TDataSource source(nullptr), other(nullptr);
    Ear before, after, elsewhere;
    FailingEar failing;
    before.SetDataSource(&source);
    failing.SetDataSource(&source);
    after.SetDataSource(&source);
    elsewhere.SetDataSource(&other);
    other.SetDataSet(&data);
    source.SetDataSet(&data);
    data.Open();
    int handled = 0;
    source.OnDataChange = [&](TObject*, TField*) { ++handled; };
    for (Ear* ear : {&before, &after, &elsewhere}) ear->heard.clear();
    failing.Fails = true;
    EXPECT_EQ(MessageOf([&] { data.Next(); }), "EDatabaseError: away");
    EXPECT_EQ(data.RecNo(), 2);
    EXPECT_EQ(handled, 1);
    for (Ear* ear : {&before, &after, &elsewhere}) EXPECT_THAT(ear->heard, testing::ElementsAre(DataEvent::Scrolled));
    // Who is asked may refuse, and then nothing changes.
    failing.Asked = true;
    EXPECT_EQ(MessageOf([&] { data.Next(); }), "EDatabaseError: refused");
    EXPECT_EQ(data.RecNo(), 2);
    EXPECT_EQ(handled, 1);
    failing.Fails = false;
}

TEST(DataSource, DisabledControlsHearOnceAtTheEnd) {
    TestDataSet data(5);
    TDataSource source(nullptr);
    Ear ear;
    ear.SetDataSource(&source);
    source.SetDataSet(&data);
    data.Open();
    ear.heard.clear();
    data.DisableControls();
    data.DisableControls();
    data.Next();
    data.Next();
    data.EnableControls();
    EXPECT_TRUE(ear.heard.empty());
    data.EnableControls();
    EXPECT_THAT(ear.heard, testing::ElementsAre(DataEvent::RecordsChanged));
}

TEST(DataSource, GivesNoDataSetWhileDisabledOrClosed) {
    TestDataSet data(5);
    TDataSource source(nullptr);
    Ear ear;
    ear.SetDataSource(&source);
    source.SetDataSet(&data);
    EXPECT_EQ(ear.ActiveDataSet(), nullptr);
    data.Open();
    EXPECT_EQ(ear.ActiveDataSet(), &data);
    source.SetEnabled(false);
    EXPECT_EQ(ear.ActiveDataSet(), nullptr);
    EXPECT_EQ(source.State(), dsInactive);
}

TEST(DataSource, WhateverGoesFirstTheOthersLetGo) {
    auto* source = new TDataSource(nullptr);
    Ear ear;
    ear.SetDataSource(source);
    {
        TestDataSet data(1);
        source->SetDataSet(&data);
        data.Open();
    }
    EXPECT_EQ(source->DataSet(), nullptr);
    delete source;
    EXPECT_EQ(ear.DataSource(), nullptr);
}

TEST(Field, ShowsValuesAsItsFormatsSay) {
    FormatSettings() = InvariantFormatSettings();
    TestDataSet data(4);
    data.Open();
    data.MoveBy(1);
    TField* price = data.FieldByName("Price");
    price->SetDisplayFormat("0.0");
    EXPECT_EQ(price->DisplayText(), "1.2");
    TField* day = data.FieldByName("Day");
    day->SetDisplayFormat("yyyy-mm-dd");
    EXPECT_EQ(day->DisplayText(), "2025-12-10");
    TField* ok = data.FieldByName("Ok");
    EXPECT_EQ(ok->DisplayText(), "False");
    ok->DisplayValues = "S\xED;No";
    EXPECT_EQ(ok->DisplayText(), "No");
    EXPECT_EQ(ok->DisplayTextOf(0), "S\xED");
    price->OnGetText = [](TField*, AnsiString& text, bool) { text = "own"; };
    EXPECT_EQ(price->DisplayText(), "own");
}

TEST(Field, AlignmentFollowsTheTypeUntilItIsSet) {
    TestDataSet data(1);
    data.Open();
    TField* price = data.FieldByName("Price");
    EXPECT_EQ(price->Alignment(), taRightJustify);
    EXPECT_EQ(data.FieldByName("Name")->Alignment(), taLeftJustify);
    EXPECT_FALSE(price->IsAlignmentStored());
    price->SetAlignment(taCenter);
    EXPECT_EQ(price->Alignment(), taCenter);
    EXPECT_TRUE(price->IsAlignmentStored());
}
