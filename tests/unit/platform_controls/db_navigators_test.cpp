// The navigator: what can be pressed when, and what it does.
#include <gtest/gtest.h>

#include "platform/controls/db_navigators.h"
#include "platform/system/message_dialogs.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

class Navigators : public testing::Test {
  protected:
    Navigators()
        : form(nullptr),
          data({MemoryDataSet::Row(1, "one"), MemoryDataSet::Row(2, "two"), MemoryDataSet::Row(3, "three")}),
          source(&form) {
        source.SetDataSet(&data);
        navigator = Put<TDBNavigator>(&form, 0, 0, 203, 25);
        navigator->SetDataSource(&source);
        form.Show();
    }
    // The buttons that can be pressed, by their names' letters.
    std::string Enabled() const {
        static constexpr char kLetters[] = "FPNLidepcr";
        std::string enabled;
        for (int i = 0; i < kNavigateButtons; ++i)
            if (navigator->Buttons(static_cast<TNavigateBtn>(i))->Enabled()) enabled += kLetters[i];
        return enabled;
    }

    TForm form;
    MemoryDataSet data;
    TDataSource source;
    TDBNavigator* navigator;
};

}  // namespace

TEST_F(Navigators, EachButtonCanBePressedWhenItWouldComeToSomething) {
    EXPECT_EQ(Enabled(), "") << "closed";
    data.Open();
    EXPECT_EQ(Enabled(), "NLider") << "at the first record";
    navigator->BtnClick(nbNext);
    EXPECT_EQ(Enabled(), "FPNLider");
    navigator->BtnClick(nbLast);
    EXPECT_EQ(Enabled(), "FPider");
    EXPECT_EQ(data.RecNo(), 3);
    navigator->BtnClick(nbPrior);
    EXPECT_EQ(data.RecNo(), 2);
    navigator->BtnClick(nbFirst);
    EXPECT_EQ(data.RecNo(), 1);
    navigator->BtnClick(nbEdit);
    EXPECT_EQ(Enabled(), "NLidpcr") << "editing";
    navigator->BtnClick(nbCancel);
    EXPECT_EQ(data.State(), dsBrowse);
    data.Reason = "Not today";
    navigator->BtnClick(nbRefresh);
    EXPECT_EQ(Enabled(), "FPNLr") << "nothing may be changed; whether it is the first is asked when going there";
    navigator->SetEnabled(false);
    EXPECT_EQ(Enabled(), "");
    navigator->SetEnabled(true);
    source.SetEnabled(false);
    EXPECT_EQ(Enabled(), "");
}

TEST_F(Navigators, RecordsAreInsertedPostedAndDeleted) {
    data.Open();
    navigator->BtnClick(nbInsert);
    data.FieldByName("Name")->SetAsString("new");
    navigator->BtnClick(nbPost);
    navigator->ConfirmDelete = false;
    navigator->BtnClick(nbDelete);
    EXPECT_EQ(data.Written, (std::vector<AnsiString>{"insert new", "delete new"}));
}

TEST_F(Navigators, DeletingIsAskedFor) {
    data.Open();
    std::vector<AnsiString> asked;
    TModalResult answer = mrCancel;
    SetMessageDialogPort([&](const MessageDialogRequest& request) {
        asked.push_back(request.Text);
        return answer;
    });
    navigator->BtnClick(nbDelete);
    EXPECT_TRUE(data.Written.empty());
    answer = mrOk;
    navigator->BtnClick(nbDelete);
    SetMessageDialogPort({});
    EXPECT_EQ(asked, (std::vector<AnsiString>{"Delete record?", "Delete record?"}));
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"delete one"});
}

TEST_F(Navigators, HandlersRunBeforeAndAfter) {
    data.Open();
    std::string order;
    navigator->BeforeAction = [&](TObject*, TNavigateBtn button) {
        order += "before " + std::to_string(static_cast<int>(button)) + " at " + std::to_string(data.RecNo());
    };
    navigator->OnClick = [&](TObject*, TNavigateBtn) { order += ", after at " + std::to_string(data.RecNo()); };
    navigator->Buttons(nbNext)->ProcessPress();
    EXPECT_EQ(order, "before 2 at 1, after at 2");
    order.clear();
    navigator->BeforeAction = [](TObject*, TNavigateBtn) { throw EAbort("No"); };
    EXPECT_THROW(navigator->BtnClick(nbNext), EAbort);
    EXPECT_EQ(data.RecNo(), 2) << "a handler that raises stops the action";
}

TEST_F(Navigators, TheButtonsShareTheWidth) {
    EXPECT_EQ(navigator->Buttons(nbFirst)->Width(), 21) << "203 is 3 more than ten times 20";
    EXPECT_EQ(navigator->Buttons(nbLast)->Left(), 63);
    EXPECT_EQ(navigator->Buttons(nbRefresh)->Left() + navigator->Buttons(nbRefresh)->Width(), 203);
    navigator->SetVisibleButtons({nbPrior, nbNext});
    EXPECT_FALSE(navigator->Buttons(nbFirst)->Visible());
    EXPECT_EQ(navigator->Buttons(nbPrior)->Width(), 102);
    EXPECT_EQ(navigator->Buttons(nbNext)->Left(), 102);
    navigator->SetBounds(0, 0, 60, 30);
    EXPECT_EQ(navigator->Buttons(nbNext)->Width(), 30);
    EXPECT_EQ(navigator->Buttons(nbNext)->Height(), 30);
}

TEST_F(Navigators, HintsAreTheFormsOrBuiltIn) {
    EXPECT_EQ(navigator->Buttons(nbPost)->Hint(), "Post edit");
    navigator->Hints()->SetText(
        "Primer\n\nSeg\xFC"
        "ent");
    EXPECT_EQ(navigator->Buttons(nbFirst)->Hint(), "Primer");
    EXPECT_EQ(navigator->Buttons(nbPrior)->Hint(), "Prior record");
    EXPECT_EQ(navigator->Buttons(nbNext)->Hint(),
              "Seg\xFC"
              "ent");
}

TEST_F(Navigators, TheKeyboardGoesFromButtonToButton) {
    data.Open();
    navigator->SetTabStop(true);
    navigator->SetVisibleButtons({nbFirst, nbNext, nbLast});
    navigator->SetFocus();
    EXPECT_TRUE(navigator->Buttons(nbFirst)->HasKeyboard());
    EXPECT_TRUE(navigator->WantsKey(VK_RIGHT, {}));
    Press(navigator, VK_RIGHT);
    EXPECT_EQ(navigator->FocusedButton(), nbNext) << "what is not visible is stepped over";
    Press(navigator, VK_SPACE);
    EXPECT_EQ(data.RecNo(), 2);
    Press(navigator, VK_RIGHT);
    Press(navigator, VK_RIGHT);
    EXPECT_EQ(navigator->FocusedButton(), nbLast);
    Press(navigator, VK_LEFT);
    EXPECT_EQ(navigator->FocusedButton(), nbNext);
}

TEST_F(Navigators, AStoredFormKeepsTheNavigatorAndNotItsButtons) {
    navigator->SetName("Navigator1");
    source.SetName("Source1");
    navigator->SetVisibleButtons({nbNext});
    const auto again = Restored(Stored(form));
    auto* read = ObjectCast<TDBNavigator>(again->FindComponent("Navigator1"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->ControlCount(), kNavigateButtons);
    EXPECT_EQ(read->DataSource(), again->FindComponent("Source1"));
    EXPECT_TRUE(read->Buttons(nbNext)->Visible());
    EXPECT_FALSE(read->Buttons(nbFirst)->Visible());
}
