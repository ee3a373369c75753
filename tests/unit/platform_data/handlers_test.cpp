// Handlers of a dataset's events that close it, move it or edit it themselves.
#include <gtest/gtest.h>

#include <functional>

#include "memory_data_set.h"
#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

AnsiString WhatIsRaised(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}

// Three open records, the second is current.
class DataSetHandlers : public testing::Test {
  protected:
    DataSetHandlers() {
        data.SetName("Rows");
        data.Open();
        data.Next();
    }
    static void Close(TDataSet* dataSet) { dataSet->Close(); }
    static void Empty(TDataSet* dataSet) {
        dataSet->OnFilterRecord = [](TDataSet*, bool& accept) { accept = false; };
        dataSet->SetFiltered(true);
    }

    MemoryDataSet data{{MemoryDataSet::Row(1, "Anna"), MemoryDataSet::Row(2, "Biel"), MemoryDataSet::Row(3, "Carla")}};
    const AnsiString closed = "EDatabaseError: Rows: Cannot perform this operation on a closed dataset";
    const AnsiString empty = "EDatabaseError: Rows: Cannot perform this operation on an empty dataset";
};

}  // namespace

TEST_F(DataSetHandlers, MayCloseBeforeItIsEdited) {
    data.BeforeEdit = &Close;
    EXPECT_EQ(WhatIsRaised([&] { data.Edit(); }), closed);
    EXPECT_FALSE(data.Active());
}

TEST_F(DataSetHandlers, MayEmptyItBeforeItIsEdited) {
    data.BeforeEdit = &Empty;
    EXPECT_EQ(WhatIsRaised([&] { data.Edit(); }), empty);
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(DataSetHandlers, MayBeginToEditThemselves) {
    int calls = 0;
    data.BeforeEdit = [&](TDataSet* dataSet) {
        if (++calls == 1) dataSet->Edit();
    };
    data.Edit();
    EXPECT_EQ(data.State(), dsEdit);
    data.Cancel();
    EXPECT_EQ(data.FieldByName("Name")->AsString(), "Biel");
}

TEST_F(DataSetHandlers, MayCloseBeforeARecordIsBegun) {
    data.BeforeInsert = &Close;
    EXPECT_EQ(WhatIsRaised([&] { data.Insert(); }), closed);
    data.BeforeInsert = nullptr;
    data.BeforeScroll = &Close;
    data.Open();
    EXPECT_EQ(WhatIsRaised([&] { data.Append(); }), closed);
}

TEST_F(DataSetHandlers, MayNotEditWhileARecordIsBegun) {
    data.BeforeInsert = [](TDataSet* dataSet) { dataSet->Edit(); };
    EXPECT_EQ(WhatIsRaised([&] { data.Insert(); }), "EDatabaseError: Rows: A handler began to edit another record");
    EXPECT_EQ(data.State(), dsEdit);
    data.Cancel();
    EXPECT_EQ(data.RecordCount(), 3);
}

TEST_F(DataSetHandlers, MayHideRecordsBeforeOneIsBegun) {
    data.Last();
    data.BeforeInsert = &Empty;
    data.Insert();
    EXPECT_EQ(data.State(), dsInsert);
    data.Cancel();
    EXPECT_EQ(data.RecordsFetched(), 0);
}

TEST_F(DataSetHandlers, MayCloseOrCancelBeforeARecordIsPosted) {
    data.Edit();
    data.FieldByName("Name")->SetAsString("Berta");
    data.BeforePost = [](TDataSet* dataSet) { dataSet->Cancel(); };
    data.Post();
    EXPECT_EQ(data.State(), dsBrowse);
    data.Edit();
    data.FieldByName("Name")->SetAsString("Berta");
    data.BeforePost = [](TDataSet* dataSet) {
        dataSet->BeforePost = nullptr;
        dataSet->Close();
    };
    EXPECT_EQ(WhatIsRaised([&] { data.Post(); }), closed);
    EXPECT_TRUE(data.Written.empty());
}

TEST_F(DataSetHandlers, MayCloseBeforeARecordIsGivenUp) {
    data.Edit();
    data.BeforeCancel = &Close;
    data.Cancel();
    EXPECT_FALSE(data.Active());
}

TEST_F(DataSetHandlers, MayCloseOrEmptyItBeforeARecordIsDeleted) {
    data.BeforeDelete = &Empty;
    EXPECT_EQ(WhatIsRaised([&] { data.Delete(); }), empty);
    data.SetFiltered(false);
    data.BeforeDelete = &Close;
    EXPECT_EQ(WhatIsRaised([&] { data.Delete(); }), closed);
    EXPECT_TRUE(data.Written.empty());
}

TEST_F(DataSetHandlers, MayCloseBeforeItScrolls) {
    data.BeforeScroll = &Close;
    EXPECT_EQ(WhatIsRaised([&] { data.Next(); }), closed);
    EXPECT_EQ(data.CurrentRecord(), -1);
}

TEST_F(DataSetHandlers, MayHideRecordsBeforeItScrolls) {
    data.BeforeScroll = [](TDataSet* dataSet) {
        dataSet->BeforeScroll = nullptr;
        Empty(dataSet);
    };
    data.Last();
    EXPECT_EQ(data.CurrentRecord(), -1);
}

TEST_F(DataSetHandlers, MayOpenAndCloseItThemselves) {
    data.BeforeClose = [](TDataSet* dataSet) {
        dataSet->BeforeClose = nullptr;
        dataSet->Close();
    };
    data.Close();
    EXPECT_FALSE(data.Active());
    data.BeforeOpen = [](TDataSet* dataSet) {
        dataSet->BeforeOpen = nullptr;
        dataSet->Open();
        dataSet->Last();
    };
    data.Open();
    EXPECT_EQ(data.CurrentRecord(), 2) << "it is open already";
}
