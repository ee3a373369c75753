// Typing into a lookup box: what is searched for, what is completed, and that the keyboard stays with the user.
#include "edit_box_fixtures.h"

using namespace edit_box_fixtures;

namespace {

using Typing = EditBoxTest;

TEST_F(Typing, ShowsWhatIsLookedUpForTheRecordsKey) {
    EXPECT_EQ(box->Text(), "García"_w);
    EXPECT_FALSE(box->Modified());
    EXPECT_FALSE(box->ReadOnly());
    EXPECT_TRUE(box->Button().Enabled());
    orders->Next();
    Settle();
    EXPECT_EQ(box->Text(), "Gasol");
}

TEST_F(Typing, GarIsCompletedToGarciaWithTheRestSelected) {
    Type(*box, "gar");
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(TakeLog(), "") << "not before the pause";
    Pause();
    EXPECT_EQ(TakeLog(), "locate Name=gar; values 1");
    EXPECT_EQ(box->Text(), "garcía"_w) << "what was typed keeps the user's case";
    EXPECT_EQ(box->SelStart(), 3);
    EXPECT_EQ(box->SelText(), "cía"_w);
    EXPECT_TRUE(box->Modified());
}

TEST_F(Typing, TheFirstCharacterOfABrowsedRecordIsTheUsersSearchToo) {
    // The record begins to be edited, which shows it anew: a search of its key waits before the user's.
    ASSERT_EQ(orders->State(), dsBrowse);
    Type(*box, "g");
    EXPECT_EQ(orders->State(), dsEdit);
    Pause();
    EXPECT_EQ(box->Text(), "garcía"_w);
    EXPECT_EQ(box->SelText(), "arcía"_w);
}

TEST_F(Typing, TypingOnReplacesTheCompletion) {
    Type(*box, "ga");
    Pause();
    EXPECT_EQ(box->Text(), "garcía"_w);
    TakeLog();
    Type(*box, "r");
    EXPECT_EQ(box->Text(), "garcía"_w) << "what was found begins with it: no search, and no wait";
    EXPECT_EQ(box->SelText(), "cía"_w);
    EXPECT_EQ(TakeLog(), "");
    Type(*box, "x");
    EXPECT_EQ(box->Text(), "garx");
    Pause();
    EXPECT_EQ(TakeLog(), "locate Name=garx");
    EXPECT_EQ(box->Text(), "garx") << "not found: what was typed stays";
    Type(*box, "y");
    Pause();
    EXPECT_EQ(box->Text(), "garxy");
    EXPECT_EQ(TakeLog(), "") << "what begins with what was not found is not looked for";
}

TEST_F(Typing, BackspaceOverACompletionRemovesTheSelectionOnlyAndSearchesNot) {
    Type(*box, "gar");
    Pause();
    TakeLog();
    Backspace(*box);
    EXPECT_EQ(box->Text(), "gar");
    Pause();
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(TakeLog(), "");
    Backspace(*box);
    EXPECT_EQ(box->Text(), "ga");
    Pause();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, DeleteOverACompletionRemovesItAndSearchesNot) {
    Type(*box, "gar");
    Pause();
    TakeLog();
    Press(*box, VK_DELETE);
    EXPECT_EQ(box->Text(), "gar");
    Pause();
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, BackspaceBeforeThePauseGivesTheCompletionUp) {
    Type(*box, "gar");
    Backspace(*box);
    Pause();
    EXPECT_EQ(box->Text(), "ga") << "the search that ran is nobody's";
}

TEST_F(Typing, WhatIsPastedIsNoCharacter) {
    Clipboard()->SetAsText("gar");
    Type(*box, "\x16");
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_TRUE(box->Modified());
    Pause();
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, WhatIsPastedByTheMenuAfterACharacterIsNone) {
    Type(*box, "g");
    Pause();
    TakeLog();
    box->ProcessTextEdit("gas", 3, 0);
    Pause();
    EXPECT_EQ(box->Text(), "gas");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, WithAutoSearchOffTypingNeverSearches) {
    box->SetAutoSearch(false);
    Type(*box, "gar");
    Pause();
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, AnEmptyTextIsNotLookedFor) {
    Type(*box, "g");
    Pause();
    TakeLog();
    box->SelectAll();
    Backspace(*box);
    EXPECT_EQ(box->Text(), "");
    Pause();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, ASecondCharacterWithinThePauseMovesTheDeadline) {
    Type(*box, "g");
    clock.Advance(900);
    Application()->ProcessMessages();
    Type(*box, "as");
    clock.Advance(900);
    Application()->ProcessMessages();
    EXPECT_EQ(TakeLog(), "");
    clock.Advance(100);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1");
    EXPECT_EQ(box->Text(), "gasol");
}

TEST_F(Typing, TheBoxThatIsTypedIntoKeepsTheKeyboardWhileItsSearchRuns) {
    Type(*box, "g");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    EXPECT_FALSE(box->ReadOnly());
    Type(*box, "as");
    EXPECT_EQ(box->Text(), "gas") << "no key is dropped";
    // Whoever has the box shown anew meanwhile takes nothing from it.
    box->Link().RecordChanged(nullptr);
    EXPECT_EQ(box->Text(), "gas");
    EXPECT_TRUE(box->Modified());
    EXPECT_TRUE(box->Link().IsModified()) << "it is still to be taken when the box is left";
}

TEST_F(Typing, ABoxWhoseValueSomebodyElseSearchesForIsEmptyAndReadOnly) {
    Record().State = vyncs_Searching;
    box->Link().RecordChanged(nullptr);
    EXPECT_TRUE(box->ReadOnly());
    EXPECT_EQ(box->Text(), "");
    Type(*box, "g");
    EXPECT_EQ(box->Text(), "");
    Record().State = vyncs_available;
    box->Link().RecordChanged(nullptr);
    EXPECT_EQ(box->Text(), "García"_w);
}

TEST_F(Typing, NothingIsCompletedInTheMiddleOfAText) {
    Type(*box, "gr");
    box->SetSelStart(1);
    Type(*box, "a");
    ASSERT_EQ(box->Text(), "gar");
    Pause();
    EXPECT_EQ(box->Text(), "gar");
    EXPECT_EQ(box->SelStart(), 2) << "the caret stays where the user is";
}

TEST_F(Typing, WhatWasFoundForAnotherTextIsNotCompleted) {
    Type(*box, "gar");
    box->Link().NotifySearchedValue("ga", "García"_w);
    EXPECT_EQ(box->Text(), "gar") << "the text is another one by now";
    box->Link().NotifySearchedValue("gar", "Abad");
    EXPECT_EQ(box->Text(), "gar") << "it does not begin so";
    box->Link().NotifySearchedValue("gar", "");
    EXPECT_EQ(box->Text(), "gar");
    box->Link().NotifySearchedValue("gar", "GAR");
    EXPECT_EQ(box->Text(), "gar") << "nothing to add";
    box->Link().NotifySearchedValue("GAR", "garcía"_w);
    EXPECT_EQ(box->Text(), "GARcía"_w) << "both without regard to case";
}

TEST_F(Typing, NothingIsCompletedThatNobodyTyped) {
    box->Link().NotifySearchedValue("García"_w, "García i fills"_w);
    EXPECT_EQ(box->Text(), "García"_w);
}

TEST_F(Typing, ACompletionIsToldAsAChangeAndBeginsNoSearch) {
    Type(*box, "gar");
    int changes = 0;
    box->OnChange = [&](TObject*) { ++changes; };
    Pause();
    EXPECT_EQ(changes, 1);
    TakeLog();
    Pause();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, ACompletionLongerThanTheTextMayBeIsLeftOut) {
    box->SetMaxLength(4);
    Type(*box, "gar");
    Pause();
    EXPECT_EQ(box->Text(), "gar");
}

TEST_F(Typing, TheWaitIsTheBoxesOwn) {
    box->SetAutoSearchWaitMiliSeconds(200);
    Type(*box, "gas");
    clock.Advance(200);
    Settle();
    EXPECT_EQ(box->Text(), "gasol");
    box->SetAutoSearchWaitMiliSeconds(0);
    Type(*box, "x");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; locate Name=gasx") << "0 does not wait";
}

TEST_F(Typing, MoreThanTenSecondsOfWaitAreRefused) {
    EXPECT_EQ(MessageOf([&] { box->SetAutoSearchWaitMiliSeconds(10001); }),
              "Exception: WaitMiliseconds must be < 10000");
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 1000u);
}

TEST_F(Typing, TenSecondsOfWaitAreTakenWhateverTheMessageSays) {
    box->SetAutoSearchWaitMiliSeconds(10000);
    EXPECT_EQ(box->AutoSearchWaitMiliSeconds(), 10000u);
}

TEST_F(Typing, ReadOnlyDropsEveryKeyAndOpensNoSearch) {
    box->SetReadOnly(true);
    EXPECT_TRUE(box->ReadOnly());
    EXPECT_FALSE(box->Button().Enabled());
    for (const char each : {'g', '\x1b', '\b', '\x03', '\x16', '\x18'}) {
        char key = each;
        box->KeyPress(key);
        EXPECT_EQ(key, 0) << static_cast<int>(each);
    }
    Press(*box, VK_DELETE);
    Press(*box, VK_F2);
    box->ButtonClick();
    EXPECT_EQ(box->Text(), "García"_w);
    EXPECT_EQ(orders->State(), dsBrowse);
    EXPECT_EQ(TakeLog(), "");
    box->SetReadOnly(false);
    EXPECT_TRUE(box->Button().Enabled());
}

TEST_F(Typing, ARecordThatIsNotToBeEditedByTypingIsReadOnly) {
    source->AutoEdit = false;
    EXPECT_TRUE(box->ReadOnly());
    orders->Edit();
    EXPECT_FALSE(box->ReadOnly());
}

TEST_F(Typing, EscapeTakesBackWhatWasTypedAndSelectsAll) {
    Type(*box, "gas");
    EXPECT_TRUE(box->WantsKey(VK_ESCAPE, {}));
    Type(*box, "\x1b");
    Settle();
    EXPECT_EQ(box->Text(), "García"_w);
    EXPECT_EQ(Selected(), 6);
    EXPECT_FALSE(box->Modified());
    EXPECT_EQ(Stored().AsInteger(), 3);
    EXPECT_FALSE(box->WantsKey(VK_ESCAPE, {})) << "the next one is the form's";
}

TEST_F(Typing, EscapeWhileItsSearchRunsShowsTheRecordsValueWhenItEnds) {
    Type(*box, "gas");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    Type(*box, "\x1b");
    Settle();
    EXPECT_EQ(box->Text(), "García"_w);
    EXPECT_EQ(Selected(), 6);
    EXPECT_FALSE(box->ReadOnly());
}

TEST_F(Typing, CancellingTheRecordWhileItsSearchRunsTakesTheTextBack) {
    Type(*box, "gas");
    Application()->ProcessMessages();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    orders->Cancel();
    EXPECT_FALSE(box->Modified());
    EXPECT_EQ(box->Text(), "");
    Pause();
    EXPECT_EQ(box->Text(), "García"_w);
    other->SetFocus();
    EXPECT_EQ(orders->State(), dsBrowse);
    EXPECT_EQ(Stored().AsInteger(), 3);
}

TEST_F(Typing, AnotherRecordTakesWhatIsTypedAlong) {
    Type(*box, "gas");
    Application()->ProcessMessages();
    orders->Next();
    Settle();
    EXPECT_EQ(box->Text(), "Gasol") << "the second record's own";
    orders->Prior();
    Settle();
    EXPECT_EQ(Stored().AsInteger(), 4) << "what was typed was taken when the record was left";
    EXPECT_EQ(box->Text(), "Gasol");
}

TEST_F(Typing, EscapeAfterACompletionShowsTheRecordsValue) {
    Type(*box, "gas");
    Pause();
    ASSERT_EQ(box->Text(), "gasol");
    Type(*box, "\x1b");
    Settle();
    EXPECT_EQ(box->Text(), "García"_w);
    EXPECT_EQ(Selected(), 6);
}

TEST_F(Typing, KeysThatChangeTheTextBeginToEditTheRecord) {
    const auto begins = [&](const std::function<void()>& press) {
        orders->Cancel();
        Settle();
        box->SelectAll();
        press();
        const bool editing = orders->State() == dsEdit;
        return editing;
    };
    Clipboard()->SetAsText("x");
    EXPECT_TRUE(begins([&] { Type(*box, "x"); }));
    EXPECT_TRUE(begins([&] { Type(*box, "\b"); }));
    EXPECT_TRUE(begins([&] { Type(*box, "\x16"); }));
    EXPECT_TRUE(begins([&] { Type(*box, "\x18"); }));
    EXPECT_TRUE(begins([&] { Press(*box, VK_DELETE); }));
    EXPECT_TRUE(begins([&] { Press(*box, VK_INSERT, {ssShift}); }));
    EXPECT_FALSE(begins([&] { Type(*box, "\x03"); })) << "copying changes nothing";
    EXPECT_FALSE(begins([&] { Press(*box, VK_INSERT, {ssCtrl}); }));
    EXPECT_FALSE(begins([&] { Press(*box, VK_LEFT); }));
    orders->Cancel();
}

TEST_F(Typing, ABoxThatIsBeingDesignedSearchesNotAndLeavesItsKeysAlone) {
    class Designed : public TVynEditBox {
      public:
        using TVynEditBox::SetDesigning;
        using TVynEditBox::TVynEditBox;
    };
    Designed designed(nullptr);
    designed.SetDesigning(true);
    uint16_t key = VK_F2;
    designed.KeyDown(key, {});
    EXPECT_EQ(key, VK_F2);
    designed.ShowModalSearch(true, false);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(Typing, AHandlerOfOnChangeMayFreeTheBox) {
    box->OnChange = [&](TObject*) { delete box; };
    Type(*box, "g");
    EXPECT_EQ(form->FindComponent("Box"), nullptr);
    box = nullptr;
}

TEST_F(EditBoxTest, AKeyThatComesWhileTheRecordIsLookedUpIsNotLost) {
    orders->Next();
    while (!Searching()) Application()->HandleQueue();
    ASSERT_EQ(box->Link().VynComponentState(), vyncs_Searching);
    EXPECT_TRUE(box->ReadOnly());
    Type(*box, "x");
    EXPECT_FALSE(box->ReadOnly());
    EXPECT_NE(box->Text().find('x'), AnsiString::npos);
    EXPECT_TRUE(box->Modified());
    Pause();
}

}  // namespace
