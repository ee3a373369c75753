// What becomes of what was typed when the box is left, plain fields, the search screen, the button.
#include "edit_box_fixtures.h"
#include "platform/controls/db_ctrl_grid.h"

using namespace edit_box_fixtures;

namespace {

using Leaving = EditBoxTest;

TEST_F(Leaving, StoresTheKeyOfWhatWasTyped) {
    Type(*box, "gas");
    other->SetFocus();
    EXPECT_EQ(Stored().AsInteger(), 4);
    Settle();
    EXPECT_EQ(box->Text(), "Gasol");
    EXPECT_FALSE(box->Modified());
}

TEST_F(Leaving, WaitsForTheSearchThatTypingBegan) {
    Type(*box, "gas");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    other->SetFocus();
    EXPECT_EQ(Stored().AsInteger(), 4);
    EXPECT_EQ(TakeLog().find("locate Name=gas; values 1"), 0u) << "without its pause";
}

TEST_F(Leaving, StoresTheKeyOfACompletion) {
    Type(*box, "gas");
    Pause();
    other->SetFocus();
    EXPECT_EQ(Stored().AsInteger(), 4);
}

TEST_F(Leaving, WhatWasNotTouchedIsLeftAsItIs) {
    TakeLog();
    other->SetFocus();
    Settle();
    EXPECT_EQ(orders->State(), dsBrowse);
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(box->Text(), "García"_w);
}

TEST_F(Leaving, ATextThatIsNotFoundKeepsTheKeyboardAndTheText) {
    Type(*box, "xyz");
    EXPECT_EQ(MessageOf([&] { other->SetFocus(); }),
              "EDatabaseError: \"xyz\" was not found.\nPress F2 to choose from the list, or Escape to take it back");
    EXPECT_TRUE(box->Focused());
    EXPECT_EQ(box->Text(), "xyz");
    EXPECT_EQ(Selected(), 3);
    EXPECT_EQ(Stored().AsInteger(), 3);
    EXPECT_EQ(MessageOf([&] { other->SetFocus(); }).substr(0, 14), "EDatabaseError") << "as often as it is tried";
    Type(*box, "\x1b");
    Settle();
    EXPECT_EQ(box->Text(), "García"_w);
    other->SetFocus();
    EXPECT_TRUE(other->Focused());
}

TEST_F(Leaving, ATextThatIsNotFoundKeepsTheRecordFromBeingPosted) {
    Type(*box, "xyz");
    EXPECT_EQ(MessageOf([&] { orders->Post(); }).substr(0, 14), "EDatabaseError");
    EXPECT_EQ(orders->State(), dsEdit);
    EXPECT_EQ(box->Text(), "xyz");
    Type(*box, "\x1b");
    Settle();
    orders->Cancel();
}

TEST_F(Leaving, PostingStoresWhatIsBeingTyped) {
    Type(*box, "gas");
    orders->Post();
    EXPECT_EQ(Stored().AsInteger(), 4);
}

TEST_F(Leaving, AnEmptyTextStoresNull) {
    box->SelectAll();
    Backspace(*box);
    other->SetFocus();
    EXPECT_TRUE(Stored().IsNull());
    Settle();
    EXPECT_EQ(box->Text(), "");
}

TEST_F(Leaving, WithoutAKeyAnyTextIsTaken) {
    auto* town = MakeBox("Town", "Town");
    town->SetChildDataKey("");
    town->SetFocus();
    Settle();
    EXPECT_EQ(town->Text(), "none");
    town->SelectAll();
    Type(*town, "xyz");
    other->SetFocus();
    EXPECT_EQ(orders->FindField("Town")->AsString(), "xyz");
    town->SetFocus();
    town->SelectAll();
    Type(*town, "abad");
    other->SetFocus();
    EXPECT_EQ(orders->FindField("Town")->AsString(), "Abad") << "what is there is taken as it is spelt there";
}

TEST_F(Leaving, ABoxWithoutAFieldKeepsItsValueItself) {
    auto* free = MakeBox("FreeBox", "");
    free->SetFocus();
    Settle();
    EXPECT_FALSE(free->ReadOnly());
    Type(*free, "gas");
    other->SetFocus();
    Settle();
    EXPECT_EQ(VarToStr(free->FieldValue()), "4");
    EXPECT_EQ(free->Text(), "Gasol");
    free->SetFocus();
    other->SetFocus();
    Settle();
    EXPECT_EQ(VarToStr(free->FieldValue()), "4") << "only what was typed is taken";
}

TEST_F(Leaving, TheFormsRuleAndTheRelatedFieldsFollowANewValue) {
    box->RelationedFields()->Add("City > Town");
    Variant told;
    source->OnVynDataLinkNewValue = [&](TVynDataLink* sender, const Variant& value) {
        EXPECT_EQ(sender, &box->Link());
        told = value;
    };
    Type(*box, "gas");
    other->SetFocus();
    EXPECT_EQ(VarToStr(told), "4");
    EXPECT_EQ(orders->FindField("Town")->AsString(), "Olot");
}

// Plain fields.

using PlainField = EditBoxTest;

TEST_F(PlainField, IsEditedAsADataEditDoes) {
    auto* title = MakeBox("TitleBox", "Title", dlt_Field);
    title->SetFocus();
    EXPECT_EQ(title->Text(), "none");
    EXPECT_TRUE(title->Button().Enabled()) << "it needs no component";
    EXPECT_EQ(title->ButtonImages(), nullptr);
    Type(*title, "x");
    EXPECT_EQ(orders->State(), dsEdit);
    Type(*title, "\x1b");
    EXPECT_EQ(title->Text(), "none");
    EXPECT_EQ(title->SelLength(), 4);
    title->SelectAll();
    Type(*title, "new");
    other->SetFocus();
    EXPECT_EQ(orders->FindField("Title")->AsString(), "new");
    EXPECT_EQ(TakeLog(), "") << "nothing is looked up";
}

TEST_F(PlainField, ShowsTheFormattedTextAndEditsThePlainOne) {
    auto* amount = MakeBox("Amount", "Customer", dlt_Field);
    static_cast<TNumericField*>(orders->FindField("Customer"))->SetDisplayFormat("0.00");
    Settle();
    EXPECT_EQ(amount->Text(), "3.00");
    EXPECT_EQ(amount->Alignment(), taRightJustify);
    amount->SetFocus();
    EXPECT_EQ(amount->Text(), "3");
    amount->SelectAll();
    Type(*amount, "12");
    other->SetFocus();
    EXPECT_EQ(amount->Text(), "12.00");
}

TEST_F(PlainField, ACharacterThatTheFieldDoesNotTakeBeepsAndIsDropped) {
    auto* amount = MakeBox("Amount", "Customer", dlt_Field);
    amount->SetFocus();
    unsigned sound = 0;
    SetMessageBeepPort([&](unsigned type) { sound = type; });
    char key = 'x';
    amount->KeyPress(key);
    EXPECT_EQ(key, 0);
    EXPECT_EQ(sound, 0x40u) << "the asterisk";
    EXPECT_EQ(amount->Text(), "3");
    sound = 0;
    box->SetFocus();
    Type(*box, "x");
    EXPECT_EQ(sound, 0u) << "what is looked up takes every character";
    Type(*box, "\x1b");
    Settle();
}

TEST_F(PlainField, GoesThroughTheFieldsMask) {
    auto* title = MakeBox("TitleBox", "Title", dlt_Field);
    orders->FindField("Title")->SetEditMask("00-00;0;_");
    orders->Edit();
    orders->FindField("Title")->SetAsString("1234");
    title->SetFocus();
    EXPECT_EQ(title->EditMask(), "00-00;0;_");
    EXPECT_EQ(title->EditText(), "12-34");
    title->SelectAll();
    Backspace(*title);
    Type(*title, "5");
    EXPECT_EQ(MessageOf([&] { other->SetFocus(); }).substr(0, 12), "EDBEditError") << "not complete";
    EXPECT_TRUE(title->Focused());
    EXPECT_EQ(title->SelLength(), 5);
    Type(*title, "5678");
    other->SetFocus();
    EXPECT_EQ(orders->FindField("Title")->AsString(), "5678");
}

// The dataset's text fields with a size bound what is typed.
TEST_F(PlainField, AStringFieldGivesItsSizeAsMaxLengthWhenNoneIsSet) {
    orders->Close();
    Run("CREATE TABLE sized (Id INTEGER PRIMARY KEY, Title VARCHAR(10), Customer INTEGER)");
    orders->SQL()->SetText("SELECT * FROM sized");
    auto* title = MakeBox("TitleBox", "Title", dlt_Field);
    auto* bounded = MakeBox("Bounded", "Title", dlt_Field);
    bounded->SetMaxLength(5);
    orders->Open();
    EXPECT_EQ(title->MaxLength(), 10);
    EXPECT_FALSE(title->IsMaxLengthStored()) << "it is the field's";
    EXPECT_EQ(bounded->MaxLength(), 5);
    EXPECT_TRUE(bounded->IsMaxLengthStored());
    title->SetDataField("Customer");
    EXPECT_EQ(title->MaxLength(), 0) << "another field brings its own";
    title->SetDataField("Title");
    EXPECT_EQ(title->MaxLength(), 10);
    title->SetDataLinkType(dlt_Search);
    EXPECT_EQ(title->MaxLength(), 0) << "what is looked up is as long as it is";
    bounded->SetDataLinkType(dlt_Search);
    EXPECT_EQ(bounded->MaxLength(), 5);
}

TEST_F(PlainField, AFieldThatIsNotThereShowsNothingAndIsReadOnly) {
    auto* title = MakeBox("TitleBox", "Title", dlt_Field);
    EXPECT_EQ(title->Text(), "none");
    orders->Close();
    EXPECT_EQ(title->Text(), "");
    EXPECT_TRUE(title->ReadOnly());
    TVynEditBox alone(nullptr);
    EXPECT_TRUE(alone.ReadOnly());
}

// The search screen.

using SearchScreen = EditBoxTest;

TEST_F(SearchScreen, F2OpensItOnTheTextAndTakesWhatIsChosen) {
    customers.Chosen = 1;
    Press(*box, VK_F2);
    EXPECT_EQ(TakeLog().substr(0, 23), "modal Name=García; valu"_w);
    Settle();
    EXPECT_EQ(Stored().AsInteger(), 2);
    EXPECT_EQ(box->Text(), "ABC");
    EXPECT_EQ(Selected(), 3);
    EXPECT_FALSE(box->Modified());
}

TEST_F(SearchScreen, TellsWhetherTheTextWasTyped) {
    Type(*box, "gas");
    Pause();
    TakeLog();
    Press(*box, VK_F2);
    EXPECT_EQ(TakeLog(), "modal Name=gasol modified");
    Settle();
    EXPECT_EQ(box->Text(), "García"_w) << "nothing was chosen: the record's value is shown again";
}

TEST_F(SearchScreen, OpensInTheMiddleOfTyping) {
    customers.Chosen = 0;
    Type(*box, "gas");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    Press(*box, VK_F2);
    Settle();
    EXPECT_EQ(Stored().AsInteger(), 1);
    EXPECT_EQ(box->Text(), "Abad");
}

TEST_F(SearchScreen, ThePressedButtonGivesTheKeyboardFirstThenTellsThenOpens) {
    other->SetFocus();
    Settle();
    TakeLog();
    box->OnButtonClick = [&](TObject* sender) {
        EXPECT_EQ(sender, box);
        EXPECT_TRUE(box->Focused());
        customers.Log.push_back("pressed");
    };
    TVynEditBoxSpeedButton& button = box->Button();
    button.ProcessMouseDown(mbLeft, {ssLeft}, 2, 2);
    EXPECT_EQ(button.CurrentState(), TVynEditBoxSpeedButton::State::Pressed);
    button.ProcessMouseUp(mbLeft, {}, 2, 2);
    EXPECT_EQ(TakeLog(), "pressed; modal Name=García"_w);
    EXPECT_TRUE(box->Focused());
}

TEST_F(SearchScreen, AButtonLetGoElsewhereIsNotPressed) {
    TVynEditBoxSpeedButton& button = box->Button();
    button.ProcessMouseDown(mbLeft, {ssLeft}, 2, 2);
    button.ProcessMouseMove({ssLeft}, -20, 2);
    EXPECT_EQ(button.CurrentState(), TVynEditBoxSpeedButton::State::Hot);
    button.ProcessMouseUp(mbLeft, {}, -20, 2);
    EXPECT_EQ(button.CurrentState(), TVynEditBoxSpeedButton::State::Normal);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(SearchScreen, AHandlerOfTheButtonMayFreeTheBox) {
    box->OnButtonClick = [&](TObject*) { delete box; };
    box->Button().Click();
    EXPECT_EQ(form->FindComponent("Box"), nullptr);
}

TEST_F(SearchScreen, WithoutItsComponentTheButtonIsDisabled) {
    box->SetNChild(99);
    Settle();
    EXPECT_FALSE(box->Button().Enabled());
    EXPECT_EQ(box->Button().CurrentState(), TVynEditBoxSpeedButton::State::Disabled);
    EXPECT_TRUE(box->ReadOnly());
    EXPECT_EQ(box->Text(), "");
    box->SetNChild(10);
    Settle();
    EXPECT_TRUE(box->Button().Enabled());
    EXPECT_EQ(box->Text(), "García"_w);
}

TEST_F(SearchScreen, AComponentOfAClassIsSearchedThroughItsMask) {
    auto* coded = MakeBox("Coded", "Other", dlt_Class);
    coded->SetChildDataKey("Name");
    coded->SetChildDataShow("Code");
    orders->Edit();
    orders->FindField("Other")->SetAsInteger(0);
    orders->Cancel();
    coded->SetFocus();
    Settle();
    EXPECT_EQ(coded->EditMask(), "000;0;_");
}

TEST_F(SearchScreen, ABoxOverAClassFindsStoresAndOpensToo) {
    auto* coded = MakeBox("Coded", "Other", dlt_Class);
    coded->SetFocus();
    Settle();
    EXPECT_EQ(coded->Text(), "Abad");
    Type(*coded, "gas");
    Pause();
    EXPECT_EQ(coded->Text(), "gasol");
    other->SetFocus();
    EXPECT_EQ(orders->FindField("Other")->AsInteger(), 4);
    coded->SetFocus();
    Type(*coded, "xyz");
    EXPECT_EQ(MessageOf([&] { other->SetFocus(); }).substr(0, 14), "EDatabaseError");
    Type(*coded, "\x1b");
    Settle();
    EXPECT_EQ(coded->Text(), "Gasol");
}

// Boxes inside a grid that repeats them.

TEST_F(PlainField, IsRepeatedInAControlGridAndALookupIsLeftEmptyThere) {
    auto* grid = Make<TDBCtrlGrid>("Grid");
    grid->SetParent(form.get());
    grid->SetDataSource(source);
    auto* title = MakeBox("TitleBox", "Customer", dlt_Field);
    auto* looked = MakeBox("Looked", "Customer");
    for (TVynEditBox* each : {title, looked}) each->SetParent(grid->Panel());
    Settle();
    const int records = source->ComponentList()->Count();
    for (int turn = 0; turn < 2; ++turn) {
        grid->PrepareCopies();
        ASSERT_EQ(grid->CopyPanel()->ControlCount(), 2);
        auto* plain = ObjectCast<TVynEditBox>(grid->CopyPanel()->Controls(0));
        auto* empty = ObjectCast<TVynEditBox>(grid->CopyPanel()->Controls(1));
        grid->ShowCopy(1, [&] {
            EXPECT_EQ(plain->Text(), "4") << "the second record's";
            EXPECT_EQ(empty->Text(), "");
        });
    }
    EXPECT_EQ(title->Text(), "3");
    EXPECT_EQ(looked->Text(), "García"_w);
    EXPECT_EQ(source->ComponentList()->Count(), records) << "copies look nothing up";
}

}  // namespace
