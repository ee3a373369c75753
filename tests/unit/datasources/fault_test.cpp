// What may go wrong in the middle of a lookup: each time the link ends in a state, nothing leaks, no thread stays.
#include "lookup_fixtures.h"
#include "platform/system/threads.h"

using namespace lookup_fixtures;

namespace {

class LookupFaults : public LookupTest {
  protected:
    // A search that waits for its deadline.
    void BeginSearch() {
        Ready();
        link->ThreadSearchNewValue(5000, "gas");
        UntilChecked(1);
        EXPECT_EQ(Record().State, vyncs_Searching);
    }
};

TEST_F(LookupFaults, ALinkThatGoesDuringItsSearchEndsIt) {
    const int before = RunningThreads();
    BeginSearch();
    link.reset();
    EXPECT_EQ(source->ComponentList()->Count(), 0);
    clock.Advance(5000);
    while (RunningThreads() > before) Application()->HandleQueue();
    Application()->ProcessMessages();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupFaults, ALinkThatCannotSayWhetherItWaitsDoesNot) {
    Ready();
    link->Unsure = true;
    link->ThreadSearchNewValue(1000, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
    expectedErrors = "unsure;";
}

TEST_F(LookupFaults, ALinkThatGoesBeforeItsSearchHasLookedEndsIt) {
    Ready();
    link->ThreadSearchNewValue(0, "gas");
    SendMessage(source->ComponentList()->Handle(), VYN_POST_SEARCHVALUE, reinterpret_cast<intptr_t>(link.get()), 1);
    link.reset();
    Settle();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupFaults, ASourceThatGoesBeforeItsSearchHasLookedTakesItAlong) {
    Ready();
    link->ThreadSearchNewValue(0, "gas");
    SendMessage(source->ComponentList()->Handle(), VYN_POST_SEARCHVALUE, reinterpret_cast<intptr_t>(link.get()), 1);
    delete source;
    source = nullptr;
    Application()->ProcessMessages();
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupFaults, TheOtherLinksOfARecordGoOnWhenTheSearchingOneGoes) {
    BeginSearch();
    auto second = MakeLink();
    link.reset();
    Settle();
    EXPECT_EQ(second->VynComponentState(), vyncs_available);
    EXPECT_EQ(second->GetDisplayText(), "García"_w);
}

TEST_F(LookupFaults, ASourceThatGoesDuringASearchWaitsForItsThread) {
    const int before = RunningThreads();
    BeginSearch();
    delete source;
    source = nullptr;
    EXPECT_EQ(RunningThreads(), before) << "no thread survives its list";
    Application()->ProcessMessages();
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupFaults, AFormThatClosesDuringASearchTakesAllWithIt) {
    const int before = RunningThreads();
    BeginSearch();
    link.reset();
    form.reset();
    source = nullptr;
    EXPECT_EQ(RunningThreads(), before);
    Application()->ProcessMessages();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupFaults, AComponentThatIsFreedWhileItsRecordSearchesIsMadeAgain) {
    BeginSearch();
    delete Record().Component;
    EXPECT_EQ(Record().State, vyncs_Nil);
    clock.Advance(5000);
    Settle();
    EXPECT_EQ(Record().State, vyncs_Nil) << "a search without a component is none";
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(Shown(), "NIL");
    Settle();
    EXPECT_EQ(Record().State, vyncs_available);
    EXPECT_EQ(Shown(), "García"_w);
}

TEST_F(LookupFaults, AComponentThatFreesItselfInsideItsAnswerIsMadeAgain) {
    Ready();
    customers.Inside = [&] { TThread::Queue([screen = Record().Component] { delete screen; }); };
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(Record().State, vyncs_Nil);
    link->HasComponent();
    Settle();
    EXPECT_EQ(Shown(), "García"_w);
}

TEST_F(LookupFaults, ALinkMayGoInsideTheAnswerToItsOwnSearch) {
    for (int answer = 0; answer < 2; ++answer) {
        Ready();
        customers.Inside = [&, answer] {
            if (answer == 0)
                link.reset();
            else
                customers.Inside = [&] { link.reset(); };
        };
        link->ThreadSearchNewValue(0, "gas");
        while (link) Application()->HandleQueue();
        Settle();
        EXPECT_EQ(source->ComponentList()->Count(), 0);
        customers.Log.clear();
    }
}

TEST_F(LookupFaults, AListMayGoInsideTheAnswerToItsSearch) {
    Ready();
    customers.Inside = [&] {
        delete source;
        source = nullptr;
    };
    link->ThreadSearchNewValue(0, "gas");
    while (source) Application()->HandleQueue();
    Application()->ProcessMessages();
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
}

TEST_F(LookupFaults, ALinkMayGoInsideItsModalSearch) {
    Ready();
    customers.Chosen = 3;
    customers.Inside = [&] { link.reset(); };
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3);
    EXPECT_EQ(source->ComponentList()->Count(), 0);
}

TEST_F(LookupFaults, AnAnswerThatFailsIsToldOnceAndTheTextFindsNothing) {
    Ready();
    customers.Inside = [] { throw EDatabaseError("The server is gone"); };
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; told gas>");
    EXPECT_EQ(Record().State, vyncs_available);
    EXPECT_TRUE(Record().FoundValue.IsNull());
    link->ThreadSearchNewValue(0, "gaso");
    Settle();
    EXPECT_EQ(TakeLog(), "told gaso>") << "typing on does not ask the broken server for each letter";
    link->RecordChanged(nullptr);
    Settle();
    EXPECT_EQ(Shown(), "García"_w) << "the next record is looked up again";
    expectedErrors = "The server is gone;";
}

TEST_F(LookupFaults, ValuesThatCannotBeFetchedAreNone) {
    Ready();
    customers.Inside = [&] { customers.Inside = [] { throw EDatabaseError("The server is gone"); }; };
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>");
    EXPECT_EQ(Shown(), "");
    expectedErrors = "The server is gone;";
}

TEST_F(LookupFaults, AFailureWhileATextIsLeftIsTheCallers) {
    Ready();
    orders->Edit();
    customers.Inside = [] { throw EDatabaseError("The server is gone"); };
    EXPECT_EQ(MessageOf([&] { link->SetDisplayText("Gasol"); }), "EDatabaseError: The server is gone");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3);
    EXPECT_EQ(Record().State, vyncs_available);
    link->SetDisplayText("Gasol");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4) << "the next attempt asks again";
    Settle();
}

TEST_F(LookupFaults, TheApplicationEndsDuringASearch) {
    BeginSearch();
    Application()->Terminate();
    clock.Advance(5000);
    while (Searching()) Application()->HandleQueue();
    EXPECT_EQ(Record().State, vyncs_available);
    EXPECT_EQ(TakeLog(), "");
    link->WaitUntilThreadFinished();
    Application()->Restart();
}

TEST_F(LookupFaults, ACreateMethodThatFailsIsToldAndNotTriedForEver) {
    VynDataSource_RegisterClassName("Broken", [](TVynApp*, const AnsiString&, TComponent*, TComponent*&, HWND&) {
        throw Exception("cannot be made");
    });
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Broken");
    auto second = MakeLink("Other", 20);
    link->HasComponent();
    Settle();
    EXPECT_EQ(Shown(), "(Nil)");
    EXPECT_EQ(second->GetDisplayText(), "Abad") << "the others are made";
    for (int i = 0; i < 3; ++i) link->HasComponent();
    Settle();
    expectedErrors = "cannot be made;";
}

TEST_F(LookupFaults, WhatCouldNotBeMadeIsMadeWhenItIsTriedAgain) {
    static bool broken = true;
    broken = true;
    VynDataSource_RegisterClassName(
        "Sometimes", [](TVynApp*, const AnsiString& name, TComponent* owner, TComponent*& component, HWND& handle) {
            if (broken) throw Exception("cannot be made");
            TCustomerClass::Create(nullptr, name, owner, component, handle);
        });
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Sometimes");
    link->HasComponent();
    Settle();
    EXPECT_EQ(Shown(), "(Nil)");
    EXPECT_EQ(link->Failure(), "cannot be made");
    link->TryAgain();
    Settle();
    EXPECT_EQ(link->Failure(), "cannot be made");
    broken = false;
    // As the screen is refreshed.
    source->AutoRefresh();
    Settle();
    EXPECT_EQ(link->VynComponentState(), vyncs_available);
    EXPECT_EQ(link->Failure(), "");
    link->TryAgain();
    Settle();
    expectedErrors = "cannot be made;";
}

TEST_F(LookupFaults, WhatNobodyTypedIsToldOnceUntilValuesAreFoundAgain) {
    Ready();
    customers.Inside = [&] { throw EDatabaseError("away"); };
    for (int i = 0; i < 3; ++i) {
        orders->Next();
        customers.Inside = [&] { throw EDatabaseError("away"); };
        Settle();
        EXPECT_EQ(Shown(), "");
        EXPECT_EQ(link->Failure(), "away");
    }
    customers.Inside = nullptr;
    orders->First();
    Settle();
    EXPECT_EQ(link->Failure(), "");
    customers.Inside = [&] { throw EDatabaseError("away again"); };
    orders->Next();
    Settle();
    expectedErrors = "away;away again;";
}

TEST_F(LookupFaults, ACreateMethodThatGivesHalfAComponentGivesNone) {
    VynDataSource_RegisterClassName("Half", [](TVynApp*, const AnsiString&, TComponent* owner, TComponent*& component,
                                               HWND&) { component = new TComponent(owner); });
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Half");
    link->HasComponent();
    Settle();
    EXPECT_EQ(Shown(), "(Nil)");
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
}

TEST_F(LookupFaults, AFormMayCloseInsideTheCreationOfItsComponent) {
    VynDataSource_RegisterClassName(
        "Closing", [](TVynApp*, const AnsiString&, TComponent* owner, TComponent*& component, HWND& handle) {
            TCustomerClass::Create(nullptr, "", nullptr, component, handle);
            delete owner->FindComponent("Source");
        });
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Closing");
    link->HasComponent();
    Application()->ProcessMessages();
    source = nullptr;
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
}

TEST_F(LookupFaults, AWindowThatAnswersNonsenseIsAnsweredToCalmly) {
    // -1 alone is found; values that are missing are none.
    static WindowHandle* odd = nullptr;
    WindowHandle window([](TMessage& message) { message.Result = 77; });
    odd = &window;
    VynDataSource_RegisterClassName(
        "Odd", [](TVynApp*, const AnsiString&, TComponent* owner, TComponent*& component, HWND& handle) {
            component = new TComponent(owner);
            handle = odd->Handle();
        });
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Odd");
    link->HasComponent();
    Settle();
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "told gas>");
    EXPECT_EQ(Record().State, vyncs_available);
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(link->FieldEditMask(), "");
    link->ShowModalSearch("gas", true, false);
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3) << "a choice without a key changes nothing";
    Settle();
}

TEST_F(LookupFaults, AWindowThatIsGoneAnswersNothing) {
    Ready();
    Record().Handle = 0x7FFFFFF0;
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "told gas>");
    EXPECT_EQ(Record().State, vyncs_available);
}

TEST_F(LookupFaults, ManySearchesInARowLeaveNoThread) {
    Ready();
    const int before = RunningThreads();
    for (int i = 0; i < 200; ++i) {
        link->ThreadSearchNewValue(0, i % 2 ? "gas" : "ab");
        Settle();
    }
    EXPECT_EQ(customers.Log.size(), 600u);
    while (RunningThreads() > before) Application()->HandleQueue();
}

}  // namespace
