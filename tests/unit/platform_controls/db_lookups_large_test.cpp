// Lookups in large tables, of which only a window is at hand.
#include <gtest/gtest.h>

#include "platform/controls/db_lookups.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/compare.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

// Numbers with a name each, in pages; counts what is read.
class ManyNumbers : public TDataSet {
  public:
    static constexpr int64_t kCount = 50000;
    ManyNumbers() : TDataSet(nullptr) {}
    ~ManyNumbers() override { BeginDestruction(); }
    int64_t Read = 0;

    static std::string NameOf(int64_t number) { return "Number " + std::to_string(number); }

  protected:
    class Pages : public RowPages {
      public:
        explicit Pages(ManyNumbers& data) : data_(data) {}
        void ReadAfter(const Record* row, int64_t skip, int64_t count, RowStore& rows) override {
            for (int64_t at = (row ? Number(*row) + 1 : 0) + skip; at < kCount && count > 0; ++at, --count)
                Put(at, rows);
        }
        void ReadBefore(const Record* row, int64_t skip, int64_t count, RowStore& rows) override {
            for (int64_t at = (row ? Number(*row) : kCount) - 1 - skip; at >= 0 && count > 0; --at, --count)
                Put(at, rows);
        }
        bool ReadFrom(const Record& first, const Record& last, double part, int64_t count, RowStore& rows) override {
            auto at = Number(first) + static_cast<int64_t>(part * static_cast<double>(Number(last) - Number(first)));
            for (; at < kCount && count > 0; ++at, --count) Put(at, rows);
            return true;
        }
        bool ReadAgain(const Record& row, RowStore& rows) override {
            Put(Number(row), rows);
            return true;
        }
        void ReadMatching(const std::vector<PageSearch>& wanted, const Record* after, int64_t count,
                          RowStore& rows) override {
            // An engine's index: only what matches is read.
            for (int64_t at = after ? Number(*after) + 1 : 0; at < kCount && count > 0; ++at) {
                bool matches = true;
                for (const PageSearch& search : wanted) {
                    if (search.Column == 0)
                        matches = matches && search.Value == Cell::Integer(at);
                    else
                        matches = matches && NameOf(at).size() >= search.Value.AsBytes().size() &&
                                  AnsiSameText(NameOf(at).substr(0, search.Value.AsBytes().size()),
                                               std::string(search.Value.AsBytes()));
                }
                if (!matches) continue;
                Put(at, rows);
                --count;
            }
        }
        double PartOf(const Record& row, const Record& first, const Record& last) const override {
            return static_cast<double>(Number(row) - Number(first)) /
                   static_cast<double>(std::max<int64_t>(Number(last) - Number(first), 1));
        }
        bool Follows(const Record& row, const Record& other) const override { return Number(row) > Number(other); }
        int64_t Estimate() override { return kCount; }
        int64_t Count() override { return kCount; }
        Record PlaceOf(const RowStore& rows, int64_t row) const override {
            return {Cell::Integer(rows.Integer(row, 0)), Cell()};
        }
        const std::vector<size_t>& KeyColumns() const override { return keys_; }

      private:
        static int64_t Number(const Record& row) { return row[0].AsInteger(); }
        void Put(int64_t number, RowStore& rows) {
            ++data_.Read;
            rows.Append({Cell::Integer(number), Cell::Bytes(NameOf(number))});
        }
        ManyNumbers& data_;
        std::vector<size_t> keys_{0};
    };
    std::vector<FieldDefinition> InternalOpen() override {
        FieldDefinition number{"Number", ftInteger};
        number.InKey = true;
        return {number, {"Name", ftString, 20}};
    }
    bool InternalFetch(RowStore&, int64_t) override { return false; }
    std::unique_ptr<RowPages> InternalPages(const std::vector<SortPart>&) override {
        return std::make_unique<Pages>(*this);
    }
    void InternalClose() override {}
};

template <class Control>
class LargeList : public testing::Test {
  protected:
    LargeList()
        : data({MemoryDataSet::Row(40000, "one"), MemoryDataSet::Row(3, "two"), MemoryDataSet::Row(-1, "none")}) {
        data.Open();
        numbers.Open();
        source.SetDataSet(&data);
        listSource.SetDataSet(&numbers);
        box = Put<Control>(&form, 10, 10, 200, 100);
        box->SetDataSource(&source);
        box->SetDataField("Id");
        box->SetKeyField("Number");
        box->SetListField("Name");
        box->SetListSource(&listSource);
        form.Show();
        box->SetFocus();
    }
    int64_t Held() { return data.FieldByName("Id")->AsInteger(); }
    MemoryDataSet data;
    ManyNumbers numbers;
    TForm form{nullptr};
    TDataSource source{&form};
    TDataSource listSource{&form};
    Control* box;
};
using LargeListInAComboBox = LargeList<TDBLookupComboBox>;
using LargeListInAListBox = LargeList<TDBLookupListBox>;

}  // namespace

TEST_F(LargeListInAComboBox, IsFoundInByTheEngineAndNeverReadThrough) {
    ASSERT_TRUE(numbers.IsPaged());
    EXPECT_EQ(box->Text(), "Number 40000");
    EXPECT_EQ(numbers.CurrentRecord(), 0) << "showing a value moves nothing";
    data.Next();
    EXPECT_EQ(box->Text(), "Number 3");
    data.Next();
    EXPECT_EQ(box->Text(), "");
    data.First();
    Press(box, VK_F4);
    EXPECT_EQ(numbers.FieldByName("Number")->AsInteger(), 40000);
    EXPECT_EQ(box->List()->HighlightedRecord(), numbers.CurrentRecord());
    Press(box, VK_DOWN);
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), 40001);
    EXPECT_EQ(box->Text(), "Number 40001");
    Type(box, "number 777");
    Press(box, VK_TAB);
    EXPECT_EQ(Held(), 777);
    Press(box, VK_UP);
    EXPECT_EQ(Held(), 776);
    Press(box, VK_F4);
    Press(box, VK_END);
    Press(box, VK_PRIOR);
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), ManyNumbers::kCount - 1 - box->List()->VisibleRows());
    Press(box, VK_F4);
    Press(box, VK_HOME);
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), 0);
    EXPECT_LT(numbers.Read, 5000);
}

TEST_F(LargeListInAComboBox, TheMouseChoosesInIt) {
    Press(box, VK_F4);
    const int64_t below = box->List()->HighlightedRecord() - 1;
    box->List()->ProcessRecordHover(below);
    EXPECT_EQ(box->List()->HighlightedRecord(), below);
    box->List()->ProcessRecordRelease(below);
    EXPECT_EQ(Held(), 39999);
}

TEST_F(LargeListInAListBox, GoesToTheRecordOfTheValue) {
    EXPECT_EQ(numbers.FieldByName("Number")->AsInteger(), 40000);
    EXPECT_EQ(box->HighlightedRecord(), numbers.CurrentRecord());
    EXPECT_GE(box->HighlightedRecord(), box->TopRecord());
    Press(box, VK_NEXT);
    EXPECT_EQ(Held(), 40000 + box->VisibleRows());
    data.Cancel();
    data.Next();
    EXPECT_EQ(numbers.FieldByName("Number")->AsInteger(), 3);
    data.Next();
    EXPECT_EQ(box->HighlightedRecord(), -1);
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), 0);
    Type(box, "number 5");
    EXPECT_EQ(Held(), 5);
    EXPECT_LT(numbers.Read, 5000);
}

TEST_F(LargeListInAListBox, AReadOnlyOneScrollsWithoutGoingThere) {
    box->SetDataReadOnly(true);
    Press(box, VK_HOME);
    EXPECT_EQ(box->TopRecord(), numbers.FirstRecord());
    Press(box, VK_NEXT);
    EXPECT_EQ(numbers.FieldByName("Number")->AsInteger(), 40000);
    EXPECT_EQ(Held(), 40000);
}

TEST_F(LargeListInAListBox, WhatIsNoNumberIsNotFoundAmongNumbers) {
    int beeps = 0;
    SetMessageBeepPort([&](unsigned) { ++beeps; });
    box->SetListField("Number");
    Type(box, "x");
    EXPECT_EQ(beeps, 1);
    Type(box, "7");
    EXPECT_EQ(Held(), 7);
    SetMessageBeepPort({});
}
