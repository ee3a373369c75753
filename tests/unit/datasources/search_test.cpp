// The road of a search: records, creation, the wait, the shortcut, what the ends are told.
#include "lookup_fixtures.h"
#include "platform/system/threads.h"

using namespace lookup_fixtures;

namespace {

// Records.

TEST_F(LookupTest, ALinkIsInTheRecordOfItsKey) {
    TVynComponentList& list = *source->ComponentList();
    link = MakeLink();
    auto same = MakeLink("CUSTOMER");
    auto otherField = MakeLink("Other");
    auto otherChild = MakeLink("Customer", 20);
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.RecordOf(link.get()), list.RecordOf(same.get())) << "without regard to case";
    int record = 5, at = 5;
    EXPECT_TRUE(list.GetIndexOfDataLink(same.get(), record, at));
    EXPECT_EQ(at, 1);
    EXPECT_EQ(record, list.IndexOf(10, dlt_Search, "", "code", "customer"));
    EXPECT_EQ(list.IndexOf(10, dlt_Search, "whatever class", "Code", "Customer"), record) << "a search has no class";
    EXPECT_EQ(list.IndexOf(11, dlt_Search, "", "Code", "Customer"), -1);
    TVynDataLink none;
    EXPECT_FALSE(list.GetIndexOfDataLink(&none, record, at));
    EXPECT_EQ(record, -1);
    EXPECT_EQ(at, -1);
}

TEST_F(LookupTest, ClassesAreToldApartByNameAndNotByTheKeysName) {
    auto a = MakeLink(), b = MakeLink();
    for (auto* each : {a.get(), b.get()}) {
        each->SetVynDataLinkType(dlt_Class);
        each->SetChildClassName(each == a.get() ? "Customers" : "CUSTOMERS");
    }
    b->SetChildDataKey("Name");
    EXPECT_EQ(source->ComponentList()->RecordOf(a.get()), source->ComponentList()->RecordOf(b.get()));
    b->SetChildClassName("Others");
    EXPECT_NE(source->ComponentList()->RecordOf(a.get()), source->ComponentList()->RecordOf(b.get()));
}

TEST_F(LookupTest, ALinkWhoseKeyChangesMovesAndEmptyRecordsGo) {
    TVynComponentList& list = *source->ComponentList();
    link = MakeLink();
    EXPECT_EQ(list.Count(), 1) << "the records that it passed through are gone";
    link->SetNChild(20);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.IndexOf(20, dlt_Search, "", "Code", "Customer"), 0);
    link->SetVynDataLinkType(dlt_Field);
    EXPECT_EQ(list.Count(), 0) << "fields have none";
}

TEST_F(LookupTest, WhatALinkShowsByItsState) {
    link = MakeLink();
    EXPECT_EQ(Shown(), "NIL") << "to be created";
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
    Settle();
    EXPECT_EQ(link->VynComponentState(), vyncs_available);
    EXPECT_EQ(Shown(), "García"_w);
    Record().State = vyncs_Creating;
    EXPECT_EQ(Shown(), "(processing...)");
    Record().State = vyncs_Searching;
    EXPECT_EQ(Shown(), "(searching...)");
    Record().State = vyncs_Nil;
    EXPECT_EQ(Shown(), "(Nil)");
    Record().State = vyncs_available;
    link->SetChildDataShow("Nothing");
    EXPECT_EQ(Shown(), "");
    link->SetChildDataKey("");
    EXPECT_EQ(Shown(), "3") << "without a key the field's own text";
    link->SetFieldName("");
    EXPECT_EQ(Shown(), "");
    TVynDataLink none;
    AnsiString text;
    source->ComponentList()->GetShowValue(&none, text);
    EXPECT_EQ(text, "(No link)");
    link->SetDataSource(nullptr);
    EXPECT_EQ(Shown(), "");
}

// Creation.

TEST_F(LookupTest, ComponentsOpenWhenTheyAreFirstAskedFor) {
    link = MakeLink();
    EXPECT_EQ(customers.Opened, 0);
    EXPECT_FALSE(link->HasComponent()) << "nothing opens inside the caller";
    EXPECT_EQ(customers.Opened, 0);
    EXPECT_EQ(source->ComponentList()->GetHandle(link.get()), 0u);
    Settle();
    EXPECT_EQ(customers.Opened, 1);
    EXPECT_TRUE(link->HasComponent());
    EXPECT_EQ(source->ComponentList()->GetHandle(link.get()), Record().Handle);
    EXPECT_EQ(source->ComponentList()->Component(0), Record().Component);
    EXPECT_EQ(source->ComponentList()->IndexOfComponent(Record().Component), 0);
    EXPECT_EQ(Record().Component->Owner(), form.get()) << "the data source's owner, unless said otherwise";
    EXPECT_EQ(TakeLog(), "locate Code=3; values 1");
}

TEST_F(LookupTest, NewComponentsHaveTheOwnerThatTheSourceSays) {
    TForm other(nullptr);
    source->SetNewComponentsOwner(&other);
    Ready();
    EXPECT_EQ(Record().Component->Owner(), &other);
    link.reset();
    EXPECT_EQ(other.ComponentCount(), 0) << "a record takes its component with it";
}

TEST_F(LookupTest, WithoutAnApplicationNothingIsMadeNorSearched) {
    source->SetVynApp(nullptr);
    link = MakeLink();
    Settle();
    EXPECT_EQ(Shown(), "NIL");
    link->ThreadSearchNewValue(0, "gar");
    Settle();
    EXPECT_EQ(Shown(), "NIL");
    EXPECT_EQ(TakeLog(), "");
    source->SetVynApp(app.get());
    EXPECT_EQ(Shown(), "NIL") << "setting it refreshes nothing, asking does";
    Settle();
    EXPECT_EQ(Shown(), "García"_w);
}

TEST_F(LookupTest, AnApplicationThatGoesIsForgottenAndItsLinkNeverSearches) {
    Ready();
    app->CloseApp();
    app.reset();
    EXPECT_EQ(source->VynApp(), nullptr);
    EXPECT_EQ(Shown(), "NIL");
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(LookupTest, AChildThatTheNodeLacksIsNotAskedForAgain) {
    link = MakeLink("Customer", 30);
    EXPECT_EQ(Shown(), "NIL");
    Settle();
    EXPECT_EQ(Shown(), "(Nil)");
    EXPECT_EQ(customers.Opened, 0);
}

TEST_F(LookupTest, AComponentThatIsFreedElsewhereIsMadeAgain) {
    Ready();
    delete Record().Component;
    EXPECT_EQ(Record().Component, nullptr);
    EXPECT_EQ(Record().Handle, 0u);
    EXPECT_EQ(Shown(), "NIL");
    Settle();
    EXPECT_EQ(customers.Opened, 2);
    EXPECT_EQ(Shown(), "García"_w);
}

TEST_F(LookupTest, TwoRecordsMayShareOneScreen) {
    Ready();
    auto other = MakeLink("Other");
    other->HasComponent();
    Settle();
    EXPECT_EQ(customers.Opened, 1) << "an open node is opened once";
    EXPECT_EQ(other->GetDisplayText(), "Abad");
    EXPECT_EQ(Shown(), "García"_w) << "each keeps its own values";
    const TComponent* screen = Record().Component;
    other.reset();
    EXPECT_EQ(Record().Component, screen) << "one of them leaves it to the other";
    Settle();
    EXPECT_EQ(Record().State, vyncs_available);
}

TEST_F(LookupTest, AScreenThatWasOpenBeforeOutlivesTheLookup) {
    TComponent* open = app->ObreComponent(2, nullptr);
    Ready();
    EXPECT_EQ(Record().Component, open);
    link.reset();
    EXPECT_EQ(app->ObreComponent(2, nullptr), open);
}

TEST_F(LookupTest, AClassMakesItsComponentByItsMethod) {
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("customers");
    link->HasComponent();
    Settle();
    EXPECT_EQ(customers.Opened, 1);
    EXPECT_EQ(Shown(), "García"_w);
    EXPECT_EQ(TakeLog(), "set Code=3");
    EXPECT_EQ(link->FieldEditMask(), "") << "the mask of what is shown";
    link->SetChildDataShow("Code");
    EXPECT_EQ(link->FieldEditMask(), "000;0;_");
    link->SetChildClassName("unknown");
    link->HasComponent();
    Settle();
    EXPECT_EQ(Shown(), "(Nil)");
}

// Typing.

TEST_F(LookupTest, ASearchWaitsForThePauseAndRunsOnceForTheLastText) {
    Ready();
    link->ThreadSearchNewValue(1000, "a");
    UntilChecked(1);
    EXPECT_EQ(Record().State, vyncs_Searching);
    clock.Advance(600);
    link->ThreadSearchNewValue(1000, "ab");
    EXPECT_EQ(link->SearchDeadline(), 2600u);
    Application()->ProcessMessages();
    EXPECT_EQ(link->Checks, 1) << "a deadline that moves away wakes nobody";
    clock.Advance(400);
    UntilChecked(2);
    EXPECT_EQ(TakeLog(), "") << "at the first deadline it sees the second";
    clock.Advance(599);
    Application()->ProcessMessages();
    EXPECT_EQ(TakeLog(), "");
    clock.Advance(1);
    Settle();
    EXPECT_EQ(link->Checks, 3);
    EXPECT_EQ(TakeLog(), "locate Name=ab; values 1; told ab>Abad");
    EXPECT_EQ(Record().State, vyncs_available);
}

TEST_F(LookupTest, NoWaitSearchesAtOnce) {
    Ready();
    link->ThreadSearchNewValue(0, "gas");
    EXPECT_EQ(link->SearchDeadline(), 0u);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
}

TEST_F(LookupTest, OnlyAWaitTakesAThreadOfTheSystem) {
    Ready();
    const int before = RunningThreads();
    int searching = -1;
    const auto count = [&] { searching = RunningThreads() - before; };
    customers.Inside = count;
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(searching, 0);
    customers.Inside = count;
    link->ThreadSearchNewValue(1000, "ab");
    UntilChecked(2);
    EXPECT_EQ(RunningThreads() - before, 1);
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
    clock.Advance(1000);
    Settle();
    EXPECT_EQ(searching, 1);
    EXPECT_EQ(TakeLog(), "locate Name=ab; values 1; told ab>Abad");
}

TEST_F(LookupTest, ADeadlineThatMovesAwayBeforeTheFirstLookIsWaitedFor) {
    Ready();
    link->ThreadSearchNewValue(0, "g");
    // The request is taken, and the search has not looked yet.
    SendMessage(source->ComponentList()->Handle(), VYN_POST_SEARCHVALUE, reinterpret_cast<intptr_t>(link.get()), 1);
    EXPECT_EQ(Record().State, vyncs_Searching);
    link->ThreadSearchNewValue(1000, "gas");
    UntilChecked(1);
    EXPECT_EQ(TakeLog(), "");
    clock.Advance(1000);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
}

TEST_F(LookupTest, ALongerBeginningOfWhatWasFoundIsKnown) {
    Ready();
    customers.Rows = {{2, "ABC", "Reus"}};
    link->ThreadSearchNewValue(0, "A");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=A; values 1; told A>ABC");
    link->ThreadSearchNewValue(1000, "AB");
    EXPECT_EQ(TakeLog(), "told AB>ABC") << "at once, without a search";
    link->ThreadSearchNewValue(1000, "abc");
    EXPECT_EQ(TakeLog(), "told abc>ABC");
    link->ThreadSearchNewValue(0, "abd");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=abd; told abd>") << "what was found does not begin so";
}

TEST_F(LookupTest, WhatWasFoundBeginsWithoutItsAccentsToo) {
    Ready();
    link->ThreadSearchNewValue(0, "ga");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=ga; values 1; told ga>García"_w);
    link->ThreadSearchNewValue(1000, "GARCI");
    EXPECT_EQ(TakeLog(), "told GARCI>García"_w) << "at once, without a search";
}

TEST_F(LookupTest, WhatExtendsATextThatWasNotFoundIsNotSearched) {
    Ready();
    link->ThreadSearchNewValue(0, "x");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=x; told x>");
    link->ThreadSearchNewValue(0, "xy");
    Settle();
    EXPECT_EQ(TakeLog(), "told xy>");
    link->ThreadSearchNewValue(0, "y");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=y; told y>");
}

TEST_F(LookupTest, TheSameTextTwiceIsSearchedOnce) {
    Ready();
    link->ThreadSearchNewValue(0, "gas");
    link->ThreadSearchNewValue(0, "gas");
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
}

TEST_F(LookupTest, NothingToSearchForTakesTheDeadlineAway) {
    Ready();
    link->ThreadSearchNewValue(1000, "gas");
    EXPECT_EQ(link->SearchDeadline(), 2000u);
    link->ThreadSearchNewValue(1000, "");
    EXPECT_EQ(link->SearchDeadline(), 0u);
    Settle();
    link->ThreadSearchNewValue(1000, "gas");
    link->SetChildDataShow("  ");
    link->ThreadSearchNewValue(1000, "gas");
    EXPECT_EQ(link->SearchDeadline(), 0u);
    TVynDataLink lonely;
    lonely.SetChildDataShow("Name");
    lonely.ThreadSearchNewValue(1000, "gas");
    EXPECT_EQ(lonely.SearchDeadline(), 0u);
    Settle();
}

TEST_F(LookupTest, ADeadlineNeverIsTheNumberThatStandsForNone) {
    Ready();
    clock.Advance(0xFFFFFFFFull - 1000);  // the tick count begins again one millisecond from now
    link->ThreadSearchNewValue(1, "gas");
    EXPECT_EQ(link->SearchDeadline(), 1u);
    UntilChecked(1);
    EXPECT_EQ(Record().State, vyncs_Searching) << "it waits over the end of the count";
    clock.Advance(2);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
}

TEST_F(LookupTest, WaitingForASearchTakesItsWaitAway) {
    Ready();
    link->ThreadSearchNewValue(10000, "gas");
    UntilChecked(1);
    EXPECT_EQ(TakeLog(), "");
    link->WaitUntilThreadFinished();
    EXPECT_EQ(Record().State, vyncs_available);
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol");
}

TEST_F(LookupTest, TwoLinksOfOneRecordShareItsSearch) {
    Ready();
    auto city = MakeLink();
    city->SetChildDataShow("City");
    Settle();
    TakeLog();
    EXPECT_EQ(city->GetDisplayText(), "Lleida");
    orders->Next();
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=4; values 1");
    EXPECT_EQ(city->GetDisplayText(), "Olot");
    EXPECT_EQ(Shown(), "Gasol");
}

TEST_F(LookupTest, WhoAskedLastIsTold) {
    Ready();
    AnsiString told;
    auto second = MakeLink();
    second->OnAutoSearched = [&](TVynDataLink*, const AnsiString& searched, const AnsiString& found) {
        told += searched + ">" + found + ";";
    };
    Settle();
    TakeLog();
    link->ThreadSearchNewValue(1000, "gas");
    UntilChecked(1);
    second->ThreadSearchNewValue(0, "ab");
    clock.Advance(1000);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Name=ab; values 1") << "the running search takes the latest text";
    EXPECT_EQ(told, "ab>Abad;");
}

// Following the record.

TEST_F(LookupTest, TheNextRecordCostsOneLocateForEachComponentWhoseKeyChanged) {
    Ready();
    std::vector<std::unique_ptr<TCountedLink>> many;
    for (int i = 0; i < 10; ++i) many.push_back(MakeLink());
    for (int i = 0; i < 10; ++i) many.push_back(MakeLink("Other", 20));
    many.back()->HasComponent();
    Settle();
    TakeLog();
    orders->Next();
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=4; values 1") << "the other one's key is the same";
    orders->Prior();
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=3; values 1");
}

TEST_F(LookupTest, WhatIsTypedWhileTheRecordIsLookedUpStays) {
    Ready();
    auto second = MakeLink();
    Settle();
    orders->Next();
    // The search of the record's key is under way when the first key comes.
    while (!Searching()) Application()->HandleQueue();
    link->Modified();
    int shown = 0, others = 0;
    link->OnDataChange = [&](TObject*) { ++shown; };
    second->OnDataChange = [&](TObject*) { ++others; };
    Settle();
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(others, 1) << "those that nobody types into follow";
    link->OnDataChange.Clear();
    second->OnDataChange.Clear();
}

TEST_F(LookupTest, ANullKeyFindsNothingAndEmptiesTheValues) {
    Ready();
    orders->Edit();
    orders->FieldByName("Customer")->SetValue(Variant::Null());
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=; values 1");
    EXPECT_EQ(Shown(), "");
    EXPECT_TRUE(Record().FoundValue.IsNull());
    EXPECT_TRUE(Record().Values.GetParametreValue("City").IsNull());
}

TEST_F(LookupTest, AKeyThatIsNotThereEmptiesTheValuesWithoutFetchingThem) {
    Ready();
    orders->Edit();
    orders->FieldByName("Customer")->SetValue(99);
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=99");
    EXPECT_EQ(Shown(), "");
    EXPECT_TRUE(Record().FoundValue.IsNull());
    EXPECT_TRUE(Record().FieldValue.IsNull());
}

TEST_F(LookupTest, LinksThatAskForItAreLookedUpAnew) {
    Ready();
    auto calm = MakeLink("Other", 20);
    calm->HasComponent();
    Settle();
    TakeLog();
    link->AutoRefresh = true;
    source->AutoRefresh();
    EXPECT_TRUE(Record().RefreshPending);
    EXPECT_TRUE(Record().LastSearchedValue.IsEmpty());
    customers.Rows[2].Name = "Garriga";
    link->RecordChanged(link->Field());
    calm->RecordChanged(calm->Field());
    Settle();
    EXPECT_EQ(TakeLog(), "locate Code=3 anew; values 1") << "said once, and only for those that ask";
    EXPECT_FALSE(Record().RefreshPending);
    EXPECT_EQ(Shown(), "Garriga");
}

TEST_F(LookupTest, ARecordThatChangesTakesTheWaitAwayAndTellsAtTheEnd) {
    Ready();
    link->ThreadSearchNewValue(5000, "gas");
    int told = 0, data = 0;
    link->OnDataChange = [&](TObject*) {
        EXPECT_EQ(told, 0);
        ++data;
    };
    link->OnRecordChanged = [&](TVynDataLink* sender) {
        EXPECT_EQ(sender, link.get());
        EXPECT_EQ(link->SearchDeadline(), 0u);
        ++told;
    };
    link->RecordChanged(nullptr);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(data, 1);
    link->OnDataChange.Clear();
    Settle();
}

TEST_F(LookupTest, ChangedSettingsTell) {
    Ready();
    int told = 0;
    link->OnValuesChanged = [&](TVynDataLink*) { ++told; };
    link->SetChildDataShow("City");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(Shown(), "Lleida") << "another value of the same record needs no search";
    link->SetChildDataShow("City");
    link->SetChildDataKey("Code");
    link->SetNChild(10);
    link->SetChildClassName("");
    link->SetVynDataLinkType(dlt_Search);
    EXPECT_EQ(told, 1) << "the same again is nothing";
    link->SetChildClassName("x");
    EXPECT_EQ(told, 2);
    Settle();
}

TEST_F(LookupTest, LinksAndSourcesMayGoInAnyOrder) {
    Ready();
    TVynDataSource other(nullptr);
    link->SetDataSource(&other);
    EXPECT_EQ(source->ComponentList()->Count(), 0);
    EXPECT_EQ(other.ComponentList()->Count(), 1);
    link->SetDataSource(source);
    auto second = MakeLink();
    delete source;
    source = nullptr;
    EXPECT_EQ(link->DataSource(), nullptr);
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
    EXPECT_EQ(Shown(), "");
    second.reset();
    TDataSource plain(nullptr);
    link->SetDataSource(&plain);
    EXPECT_EQ(link->ComponentList(), nullptr) << "a plain data source has no components";
    EXPECT_EQ(Shown(), "");
    link->SetDataSource(nullptr);
}

}  // namespace
