// What a link stores and gives: values, texts, related fields, the modal search, rules.
#include "lookup_fixtures.h"

using namespace lookup_fixtures;

namespace {

TEST_F(LookupTest, AFieldsLinkIsAFieldsLink) {
    link = MakeLink("Town");
    link->SetVynDataLinkType(dlt_Field);
    EXPECT_EQ(link->VynComponentState(), vyncs_available);
    EXPECT_TRUE(link->HasNeededComponent());
    EXPECT_FALSE(link->HasComponent());
    EXPECT_EQ(Shown(), "none");
    orders->FieldByName("Town")->SetEditMask("LLL;0;_");
    EXPECT_EQ(link->FieldEditMask(), "LLL;0;_");
    EXPECT_EQ(link->GetImageList(), nullptr);
    orders->Edit();
    link->SetDisplayText("Vic");
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "Vic");
    link->SetFieldName("Unknown");
    EXPECT_EQ(link->VynComponentState(), vyncs_Nil);
    EXPECT_EQ(Shown(), "");
    EXPECT_FALSE(link->IsValidChar('a')) << "no field takes no character";
    link->SetFieldName("Id");
    EXPECT_FALSE(link->IsValidChar('a'));
    EXPECT_TRUE(link->IsValidChar('7'));
    link->SetVynDataLinkType(dlt_Search);
    EXPECT_TRUE(link->IsValidChar('a')) << "what is looked up may be any text";
    link->SetFieldName("");
    EXPECT_FALSE(link->IsValidChar('a'));
}

TEST_F(LookupTest, ButtonsShowThePictureOfWhatIsLookedUp) {
    link = MakeLink();
    EXPECT_EQ(link->GetImageList(), VynDataSource_FindImageList("SEARCH"));
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Customers");
    EXPECT_EQ(link->GetImageList(), VynDataSource_FindImageList("Customers"));
    EXPECT_NE(link->GetImageList(), nullptr);
}

TEST_F(LookupTest, TheKeysNameIsTheShownOnesWhenThereIsNone) {
    link = MakeLink();
    EXPECT_EQ(link->ChildDataKeyFieldName(), "Code");
    EXPECT_TRUE(link->NeedSynchronizeChild());
    link->SetChildDataKey("");
    EXPECT_EQ(link->ChildDataKeyFieldName(), "Name");
    EXPECT_FALSE(link->NeedSynchronizeChild());
}

TEST_F(LookupTest, ChangesAreAllowedWhereTheFieldAllowsThemOrThereIsNone) {
    link = MakeLink();
    EXPECT_TRUE(link->CanModify());
    link->SetReadOnly(true);
    EXPECT_FALSE(link->CanModify());
    link->SetReadOnly(false);
    link->SetFieldName("Unknown");
    EXPECT_FALSE(link->CanModify());
    link->SetFieldName("");
    EXPECT_TRUE(link->CanModify());
}

TEST_F(LookupTest, AValueWithoutAFieldIsKeptInTheRecord) {
    link = MakeLink("");
    link->HasComponent();
    Settle();
    Variant value = 5;
    link->GetFieldValue(value);
    EXPECT_TRUE(value.IsEmpty() || value.IsNull());
    AnsiString told;
    source->OnVynDataLinkNewValue = [&](TVynDataLink* sender, const Variant& given) {
        EXPECT_EQ(sender, link.get());
        told += VarToStr(given) + ";";
    };
    link->SetFieldValue(4);
    link->GetFieldValue(value);
    EXPECT_EQ(VarToStr(value), "4");
    EXPECT_EQ(told, "4;");
    Settle();
    EXPECT_EQ(Shown(), "Gasol") << "the shown value is looked up";
    int updates = 0;
    link->OnUpdateData = [&](TObject*) { ++updates; };
    link->UpdateRecord();
    EXPECT_EQ(updates, 1) << "asked for its value without a field too";
    link->OnUpdateData.Clear();
}

TEST_F(LookupTest, AStoredValueEditsTheRecordAndIsTold) {
    Ready();
    AnsiString told;
    source->OnVynDataLinkNewValue = [&](TVynDataLink*, const Variant& given) { told += VarToStr(given) + ";"; };
    link->SetFieldValue(4);
    EXPECT_TRUE(orders->IsEditing());
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4);
    EXPECT_EQ(told, "4;");
    Settle();
    EXPECT_EQ(Shown(), "Gasol");
}

// Texts that users leave.

TEST_F(LookupTest, ATextThatIsThereStoresItsKey) {
    Ready();
    orders->Edit();
    link->SetDisplayText("Gasol");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4);
    EXPECT_EQ(TakeLog(), "locate Name=Gasol; values 1");
    Settle();
    EXPECT_EQ(Shown(), "Gasol");
}

TEST_F(LookupTest, WhatTheSearchHasFoundIsNotLookedForAgain) {
    Ready();
    orders->Edit();
    link->ThreadSearchNewValue(5000, "gas");
    UntilChecked(1);
    link->SetDisplayText("gasol");
    EXPECT_EQ(TakeLog(), "locate Name=gas; values 1; told gas>Gasol") << "the running search is waited for";
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4);
    Settle();
}

TEST_F(LookupTest, ABeginningStoresTheFirstThatBeginsSo) {
    Ready();
    orders->Edit();
    link->SetDisplayText("ab");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 1);
    Settle();
    EXPECT_EQ(Shown(), "Abad");
}

TEST_F(LookupTest, AClassThatAnswersWithoutAValueHasNotFoundTheText) {
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Customers");
    EXPECT_FALSE(link->HasComponent());
    Settle();
    EXPECT_EQ(Shown(), "García"_w);
    orders->Edit();
    EXPECT_EQ(MessageOf([&] { link->SetDisplayText("Zola"); }).substr(0, 14), "EDatabaseError");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3);
}

TEST_F(LookupTest, ATextThatIsNotThereIsRefusedAndChangesNothing) {
    Ready();
    orders->Edit();
    EXPECT_EQ(MessageOf([&] { link->SetDisplayText("Zola"); }),
              "EDatabaseError: \"Zola\" was not found.\nPress F2 to choose from the list, or Escape to take it back");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3);
    link->Reset();
    Settle();
    EXPECT_EQ(Shown(), "García"_w);
}

TEST_F(LookupTest, WithoutAKeyAnyTextIsTakenAndKnownOnesAsTheyAreSpelt) {
    link = MakeLink("Free");
    link->SetChildDataKey("");
    link->SetRelationedFields([] {
        static TStringList list{"City>Town"};
        return &list;
    }());
    link->HasComponent();
    Settle();
    orders->Edit();
    link->SetDisplayText("Zola");
    EXPECT_EQ(orders->FieldByName("Free")->AsString(), "Zola");
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "none") << "nothing goes with it";
    link->SetDisplayText("gas");
    EXPECT_EQ(orders->FieldByName("Free")->AsString(), "gas") << "nobody is made to choose";
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "none");
    link->SetDisplayText("gasol");
    EXPECT_EQ(orders->FieldByName("Free")->AsString(), "Gasol");
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "Olot");
    Settle();
}

TEST_F(LookupTest, AnEmptyTextStoresNullAndEmptiesWhatGoesWithIt) {
    Ready();
    const TStringList related{"City>Town"};
    link->SetRelationedFields(&related);
    link->SetFieldValue(4);
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "Olot");
    link->SetDisplayText("");
    EXPECT_TRUE(orders->FieldByName("Customer")->IsNull());
    EXPECT_TRUE(orders->FieldByName("Town")->IsNull());
    Settle();
    EXPECT_EQ(Shown(), "");
}

// Related fields.

TEST_F(LookupTest, RelatedFieldsAreCopiedInTheirOrder) {
    Ready();
    const TStringList related{"City > Town", "no arrow", "Name>Title", "Missing>Title", "City>Nowhere", "City>Title>x"};
    link->SetRelationedFields(&related);
    link->SetFieldValue(4);
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "Olot") << "both sides are trimmed";
    EXPECT_EQ(orders->FieldByName("Title")->AsString(), "Gasol") << "what one side lacks leaves the field as it is";
    link->SetRelationedFields(nullptr);
    EXPECT_EQ(link->RelationedFields().Count(), 0);
    Settle();
}

TEST_F(LookupTest, RelatedFieldsAreThoseOfTheNewValueWhoeverSetsIt) {
    Ready();
    const TStringList related{"City>Town"};
    link->SetRelationedFields(&related);
    link->SetFieldValue(1);
    EXPECT_EQ(orders->FieldByName("Town")->AsString(), "Vic") << "not of the record that was looked at before";
    Settle();
}

// The modal search.

TEST_F(LookupTest, AChoiceInTheSearchScreenIsStored) {
    Ready();
    customers.Chosen = 3;
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(TakeLog(), "modal Name=ga modified; values 1");
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4);
    Settle();
    TakeLog();
    link->ShowModalSearch("x", false, true);
    EXPECT_EQ(TakeLog(), "modal Name=x extra; values 1");
    Settle();
}

TEST_F(LookupTest, NoChoiceShowsTheLinkAnew) {
    Ready();
    int shown = 0;
    link->OnDataChange = [&](TObject*) { ++shown; };
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(TakeLog(), "modal Name=ga modified");
    EXPECT_EQ(shown, 1);
    EXPECT_FALSE(orders->IsEditing());
    link->OnDataChange.Clear();
    Settle();
}

TEST_F(LookupTest, AComponentWithoutTheKeyLeavesTheValueAsItIs) {
    Ready();
    link->SetChildDataKey("Missing");
    link->HasComponent();
    Settle();
    TakeLog();
    customers.Chosen = 3;
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 3);
    Settle();
}

TEST_F(LookupTest, TheSearchScreenNeedsAComponentAndAName) {
    link = MakeLink();
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(TakeLog(), "") << "there is none yet";
    link->HasComponent();
    Settle();
    TakeLog();
    link->SetChildDataKey("");
    link->SetChildDataShow("");
    link->ShowModalSearch("ga", true, false);
    Settle();
    EXPECT_EQ(TakeLog().find("modal"), AnsiString::npos);
    TVynDataLink lonely;
    lonely.ShowModalSearch("ga", true, false);
}

TEST_F(LookupTest, TheSearchScreenOpensInTheMiddleOfTyping) {
    Ready();
    link->ThreadSearchNewValue(5000, "ga");
    UntilChecked(1);
    customers.Chosen = 3;
    link->ShowModalSearch("ga", true, false);
    EXPECT_EQ(TakeLog(), "locate Name=ga; values 1; told ga>García; modal Name=ga modified; values 1"_w);
    Settle();
}

TEST_F(LookupTest, AClassShowsItsOwnSearch) {
    link = MakeLink();
    link->SetVynDataLinkType(dlt_Class);
    link->SetChildClassName("Customers");
    link->HasComponent();
    Settle();
    TakeLog();
    customers.Chosen = 0;
    link->ShowModalSearch("a", false, false);
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 1);
    Settle();
}

TEST_F(LookupTest, TheParametersOfTheLookedUpComponentAreListed) {
    link = MakeLink();
    TStringList names{"stale"};
    EXPECT_FALSE(link->GetChildParams(names));
    EXPECT_EQ(names.Count(), 0);
    link->HasComponent();
    Settle();
    EXPECT_TRUE(link->GetChildParams(names));
    ASSERT_EQ(names.Count(), 3);
    EXPECT_EQ(names[0] + names[1] + names[2], "CodeNameCity");
}

// Rules.

TEST_F(LookupTest, ATakenValueRunsItsRule) {
    Ready();
    auto* rules = Make<TEventsVyn>("Rules");
    auto* edit = Make<TEdit>("Box");
    link->Control = edit;
    AnsiString told;
    rules->Add({"Taken", {}});
    rules->Add({"Fails", {{{tdcPropietat, "Nobody.Text"}, {tdcValorDirecte, "1"}}}});
    rules->OnExecutaEvent = [&](TComponent*, const AnsiString& name) {
        told += name + " with " + orders->FieldByName("Town")->AsString() + ";";
    };
    link->SetFieldValue(4);
    EXPECT_EQ(told, "") << "no rule, none runs";
    const TStringList related{"City>Town"};
    link->SetRelationedFields(&related);
    link->ExecuteEventName = "TAKEN";
    link->SetFieldValue(1);
    EXPECT_EQ(told, "Taken with Vic;") << "when everything that goes with the value is there";
    link->ExecuteEventName = "Fails";
    link->SetFieldValue(4);
    EXPECT_EQ(orders->FieldByName("Customer")->AsInteger(), 4) << "the value stays taken";
    EXPECT_NE(errors, "");
    errors.clear();
    link->ExecuteEventName = "none";
    link->SetFieldValue(1);
    expectedErrors = "The event none is not among the rules of the form Order;";
    link->Control = nullptr;
    Settle();
}

}  // namespace
