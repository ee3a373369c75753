// Lookup list boxes and combo boxes: what they show, the keys that choose, and lists that go.
#include "platform/controls/db_lookups.h"

#include <gtest/gtest.h>

#include "platform/controls/edits.h"
#include "platform/data/field_classes.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

// Countries by their codes; counts what is fetched.
class Countries : public TDataSet {
  public:
    explicit Countries(int64_t count, TComponent* owner = nullptr) : TDataSet(owner), count_(count) {}
    ~Countries() override { BeginDestruction(); }
    int64_t Fetched = 0;
    std::vector<std::pair<const char*, const char*>> Named = {{"AD", "Andorra"},  {"ES", "Espanya"}, {"FR", "França"},
                                                              {"PT", "Portugal"}, {"PO", "Polònia"}, {"IT", "Itàlia"}};

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        Fetched = 0;
        return {{"Code", ftString, 10}, {"Country", ftString, 20}, {"Number", ftInteger}};
    }
    bool InternalFetch(RowStore& rows, int64_t count) override {
        for (; count > 0 && Fetched < count_; --count, ++Fetched) {
            rows.BeginRow();
            const auto at = static_cast<size_t>(Fetched);
            rows.PutBytes(at < Named.size() ? std::string(Named[at].first) : "X" + std::to_string(at));
            rows.PutBytes(at < Named.size() ? std::string(Named[at].second) : "Other " + std::to_string(at));
            rows.PutInteger(Fetched);
            rows.EndRow();
        }
        return Fetched < count_;
    }
    void InternalClose() override {}

  private:
    int64_t count_;
};

// Records whose name is the code of a country.
template <class Control>
class Lookups : public testing::Test {
  protected:
    Lookups()
        : form(nullptr),
          data({MemoryDataSet::Row(1, "ES"), MemoryDataSet::Row(2, "IT"), MemoryDataSet::Row(3, "??"),
                MemoryDataSet::Row(4, nullptr)}),
          countries(std::make_unique<Countries>(kCountries)),
          source(&form),
          listSource(std::make_unique<TDataSource>(nullptr)) {
        data.Open();
        countries->Open();
        source.SetDataSet(&data);
        listSource->SetDataSet(countries.get());
        box = Put<Control>(&form, 10, 10, 200, 25);
        box->SetDataSource(&source);
        box->SetDataField("Name");
        box->SetListSource(listSource.get());
        box->SetKeyField("Code");
        box->SetListField("Country;Number");
        other = Put<TEdit>(&form, 10, 250, 80, 25);
        form.Show();
        box->SetFocus();
        box->OnClick = [this](TObject*) { ++clicks; };
        SetMessageBeepPort([this](unsigned) { ++beeps; });
    }
    ~Lookups() override { SetMessageBeepPort({}); }
    AnsiString Held() { return data.FieldByName("Name")->AsString(); }

    static constexpr int64_t kCountries = 6;
    ManualTickClock clock{1000};
    int clicks = 0;
    int beeps = 0;
    TForm form;
    MemoryDataSet data;
    std::unique_ptr<Countries> countries;
    TDataSource source;
    std::unique_ptr<TDataSource> listSource;
    Control* box;
    TEdit* other;
};

class LookupListBox : public Lookups<TDBLookupListBox> {
  protected:
    LookupListBox() { box->SetRowCount(4); }
};
class LookupComboBox : public Lookups<TDBLookupComboBox> {
  protected:
    // The record that is highlighted in the list.
    int64_t Highlighted() { return box->List() ? box->List()->HighlightedRecord() : -1; }
};

}  // namespace

// The list box.

TEST_F(LookupListBox, TheRecordOfTheValueIsHighlightedAndNoDatasetMoves) {
    EXPECT_EQ(box->HighlightedRecord(), 1);
    data.Next();
    EXPECT_EQ(box->HighlightedRecord(), 5);
    EXPECT_EQ(box->TopRecord(), 2) << "it is brought into sight";
    EXPECT_EQ(countries->CurrentRecord(), 0);
    data.Next();
    EXPECT_EQ(box->HighlightedRecord(), -1) << "a key that is not in the list";
    data.Next();
    EXPECT_EQ(box->HighlightedRecord(), -1) << "no key";
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(LookupListBox, UpAndDownChooseTheRecordBeside) {
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "FR");
    EXPECT_EQ(data.State(), dsEdit);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(countries->CurrentRecord(), 2) << "handlers find the rest of the record";
    Press(box, VK_UP);
    Press(box, VK_UP);
    EXPECT_EQ(Held(), "AD");
    Press(box, VK_UP);
    EXPECT_EQ(Held(), "AD");
}

TEST_F(LookupListBox, PagesHomeAndEndChooseFurtherOn) {
    Press(box, VK_NEXT);
    EXPECT_EQ(Held(), "IT");
    Press(box, VK_PRIOR);
    EXPECT_EQ(Held(), "ES");
    Press(box, VK_END);
    EXPECT_EQ(Held(), "IT");
    Press(box, VK_HOME);
    EXPECT_EQ(Held(), "AD");
}

TEST_F(LookupListBox, WithoutAValueDownBeginsAtTheFirst) {
    data.Last();
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "AD");
}

TEST_F(LookupListBox, TypingFindsTheFirstThatBeginsSoWithoutRegardToCase) {
    Type(box, "p");
    EXPECT_EQ(Held(), "PT");
    Type(box, "OL");
    EXPECT_EQ(Held(), "PO");
    Type(box, "x");
    EXPECT_EQ(Held(), "PO");
    EXPECT_EQ(beeps, 1);
    Type(box, "\xF2");
    EXPECT_EQ(Held(), "PO") << "what was refused is not kept";
    Type(box, "\b\b");
    EXPECT_EQ(Held(), "PT");
}

TEST_F(LookupListBox, APauseBeginsAnotherSearch) {
    Type(box, "p");
    clock.Advance(2000);
    Type(box, "o");
    EXPECT_EQ(Held(), "PT");
    clock.Advance(2001);
    Type(box, "i");
    EXPECT_EQ(Held(), "IT");
    EXPECT_EQ(beeps, 0);
}

TEST_F(LookupListBox, TypingSearchesTheFieldOfListFieldIndex) {
    box->SetListFieldIndex(1);
    Type(box, "4");
    EXPECT_EQ(Held(), "PO");
    box->SetListFieldIndex(99);
    clock.Advance(3000);
    Type(box, "it");
    EXPECT_EQ(Held(), "IT") << "a place that is none is the first";
}

TEST_F(LookupListBox, EscapeBringsBackTheValueThatWasThere) {
    Press(box, VK_DOWN);
    Press(box, VK_DOWN);
    EXPECT_TRUE(box->WantsKey(VK_ESCAPE, {}));
    char escape = VK_ESCAPE;
    EXPECT_TRUE(box->ProcessKeyPress(escape));
    EXPECT_EQ(Held(), "ES");
    EXPECT_EQ(box->HighlightedRecord(), 1);
    EXPECT_FALSE(box->WantsKey(VK_ESCAPE, {})) << "the next one is the form's";
}

TEST_F(LookupListBox, WhatWasChosenBeforeLeavingOrPostingIsNotTakenBack) {
    Press(box, VK_DOWN);
    other->SetFocus();
    box->SetFocus();
    char escape = VK_ESCAPE;
    EXPECT_FALSE(box->ProcessKeyPress(escape));
    EXPECT_EQ(Held(), "FR");
    Press(box, VK_DOWN);
    data.Post();
    EXPECT_FALSE(box->WantsKey(VK_ESCAPE, {}));
    Press(box, VK_UP);
    data.Next();
    data.Prior();
    EXPECT_FALSE(box->WantsKey(VK_ESCAPE, {}));
}

TEST_F(LookupListBox, TheNullValueKeyClears) {
    Press(box, VK_DELETE);
    EXPECT_EQ(Held(), "ES") << "there is none until it is named";
    box->NullValueKey = ShortCut(VK_DELETE, {});
    Press(box, VK_DELETE);
    EXPECT_TRUE(data.FieldByName("Name")->IsNull());
    EXPECT_EQ(box->HighlightedRecord(), -1);
    EXPECT_EQ(clicks, 1);
    Press(box, VK_DELETE);
    EXPECT_EQ(clicks, 1) << "there is nothing left to clear";
}

TEST_F(LookupListBox, AClickChooses) {
    box->ProcessCellClick(3, 0, {});
    EXPECT_EQ(Held(), "PT");
    box->ProcessCellClick(77, 0, {});
    EXPECT_EQ(Held(), "PT");
    EXPECT_EQ(clicks, 1);
}

TEST_F(LookupListBox, AReadOnlyOneShowsAndScrollsButDoesNotChange) {
    box->SetRowCount(2);
    box->SetTopRecord(0);
    box->SetDataReadOnly(true);
    EXPECT_EQ(box->HighlightedRecord(), 1);
    Press(box, VK_DOWN);
    box->ProcessCellClick(3, 0, {});
    Type(box, "p");
    EXPECT_EQ(Held(), "ES");
    EXPECT_EQ(data.State(), dsBrowse);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(box->TopRecord(), 1);
    Press(box, VK_END);
    EXPECT_EQ(box->TopRecord(), 4);
    Press(box, VK_HOME);
    EXPECT_EQ(box->TopRecord(), 0);
}

TEST_F(LookupListBox, NothingChangesWhereTheRecordMayNotBeEdited) {
    source.AutoEdit = false;
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES");
    data.Edit();
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "FR");
    data.Cancel();
    source.AutoEdit = true;
    data.Reason = "Not today";
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupListBox, ListsThatCloseAndGoAreSurvived) {
    countries->Close();
    EXPECT_EQ(box->HighlightedRecord(), -1);
    Press(box, VK_DOWN);
    Type(box, "p");
    EXPECT_EQ(Held(), "ES");
    countries->Open();
    EXPECT_EQ(box->HighlightedRecord(), 1);
    countries.reset();
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES");
    countries = std::make_unique<Countries>(3);
    listSource->SetDataSet(countries.get());
    EXPECT_EQ(box->HighlightedRecord(), -1);
    countries->Open();
    EXPECT_EQ(box->HighlightedRecord(), 1);
    listSource.reset();
    EXPECT_EQ(box->ListSource(), nullptr);
    EXPECT_EQ(box->HighlightedRecord(), -1);
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupListBox, WithoutAFieldItKeepsAValueOfItsOwn) {
    box->SetDataSource(nullptr);
    box->SetKeyValue("PT");
    EXPECT_EQ(box->HighlightedRecord(), 3);
    Press(box, VK_DOWN);
    EXPECT_EQ(VarToStr(box->KeyValue()), "PO");
    char escape = VK_ESCAPE;
    box->ProcessKeyPress(escape);
    EXPECT_EQ(VarToStr(box->KeyValue()), "PT");
}

TEST_F(LookupListBox, FieldsThatAreNotThereMakeNoList) {
    box->SetKeyField("Nowhere");
    EXPECT_EQ(box->HighlightedRecord(), -1);
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES");
    box->SetKeyField("Code");
    box->SetListField("Nowhere");
    EXPECT_EQ(box->HighlightedRecord(), 1);
    Type(box, "p");
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupListBox, TheColumnsFillTheWidth) {
    ASSERT_EQ(box->ShownColumns().size(), 2u);
    EXPECT_EQ(box->ShownColumns()[0]->FieldName(), "Country");
    EXPECT_EQ(box->ShownColumns()[0]->Width() + box->ShownColumns()[1]->Width(),
              box->Width() - 4 - CurrentTextMetrics().ScrollBarSize());
    box->SetListField("");
    ASSERT_EQ(box->ShownColumns().size(), 1u);
    EXPECT_EQ(box->ShownColumns()[0]->FieldName(), "Code") << "without list fields the key is shown";
    const int before = box->ShownColumns()[0]->Width();
    box->SetWidth(box->Width() + 50);
    EXPECT_EQ(box->ShownColumns()[0]->Width(), before + 50);
}

TEST_F(LookupListBox, AListOfTheFieldsOwnDatasetIsNone) {
    box->SetListSource(&source);
    box->SetKeyField("Name");
    Press(box, VK_DOWN);
    EXPECT_EQ(data.RecNo(), 1);
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupListBox, RowCountSetsTheHeight) {
    box->SetRowCount(3);
    EXPECT_EQ(box->RowCount(), 3);
    box->SetRowCount(0);
    EXPECT_EQ(box->RowCount(), 1);
}

// Fields that are looked up themselves.

namespace {

class LookedUpField : public LookupComboBox {
  protected:
    LookedUpField() {
        data.Close();
        const auto add = [&](const char* name, auto* field, TFieldKind kind) {
            field->SetFieldName(name);
            field->SetFieldKind(kind);
            field->SetDataSet(&data);
            return field;
        };
        add("Id", new TIntegerField(&form), fkData);
        code = add("Name", new TStringField(&form), fkData);
        TField* country = add("Country", new TStringField(&form), fkLookup);
        country->SetLookupDataSet(countries.get());
        country->KeyFields = "Name";
        country->LookupKeyFields = "Code";
        country->LookupResultField = "Country";
        data.Open();
        box->SetListSource(nullptr);
        box->SetListField("");
        box->SetKeyField("");
        box->SetDataField("Country");
    }
    TField* code;
};

}  // namespace

TEST_F(LookedUpField, NamesListKeyAndResultItself) {
    EXPECT_EQ(box->Text(), "Espanya");
    Press(box, VK_DOWN);
    EXPECT_EQ(code->AsString(), "FR");
    EXPECT_EQ(box->Text(), "Fran\xE7\x61");
    code->SetAsString("IT");
    EXPECT_EQ(box->Text(), "It\xE0lia") << "the key field is followed";
    char escape = VK_ESCAPE;
    box->ProcessKeyPress(escape);
    EXPECT_EQ(code->AsString(), "ES");
}

TEST_F(LookedUpField, TheResultIsAlwaysAmongWhatIsShown) {
    box->SetListField("Number;Code");
    box->DropDown();
    ASSERT_EQ(box->List()->ShownColumns().size(), 3u);
    EXPECT_EQ(box->List()->ShownColumns()[0]->FieldName(), "Country");
    EXPECT_EQ(box->Text(), "Espanya");
    box->SetListField("Number;Country");
    EXPECT_EQ(box->List()->ShownColumns().size(), 2u);
    box->SetListFieldIndex(1);
    EXPECT_EQ(box->Text(), "Espanya");
}

TEST_F(LookedUpField, ItsKeyFieldsDecideWhatMayChange) {
    code->ReadOnly = true;
    Press(box, VK_DOWN);
    EXPECT_EQ(code->AsString(), "ES");
    code->ReadOnly = false;
    data.FieldByName("Country")->ReadOnly = true;
    Press(box, VK_DOWN);
    EXPECT_EQ(code->AsString(), "ES");
    data.FieldByName("Country")->ReadOnly = false;
    data.FieldByName("Country")->KeyFields = "Nowhere";
    box->TheLookup().Refresh();
    Press(box, VK_DOWN);
    EXPECT_EQ(code->AsString(), "ES");
}

TEST_F(LookedUpField, AListThatGoesIsSurvived) {
    countries->Close();
    EXPECT_EQ(box->Text(), "");
    Press(box, VK_DOWN);
    countries.reset();
    Press(box, VK_DOWN);
    data.Next();
    EXPECT_EQ(code->AsString(), "IT");
    data.Close();
    EXPECT_EQ(box->Text(), "");
}

// The combo box.

TEST_F(LookupComboBox, ShowsTheTextOfTheValuesRecord) {
    EXPECT_EQ(box->Text(), "Espanya");
    data.Next();
    EXPECT_EQ(box->Text(), "It\xE0lia");
    data.Next();
    EXPECT_EQ(box->Text(), "") << "a key that is not in the list";
    data.Next();
    EXPECT_EQ(box->Text(), "");
    EXPECT_EQ(countries->CurrentRecord(), 0);
    countries->Close();
    data.First();
    EXPECT_EQ(box->Text(), "");
}

TEST_F(LookupComboBox, F4AndAltDownDropTheListAtTheValue) {
    int drops = 0, closes = 0;
    box->OnDropDown = [&](TObject*) { ++drops; };
    box->OnCloseUp = [&](TObject*) { ++closes; };
    Press(box, VK_F4);
    ASSERT_TRUE(box->DroppedDown());
    EXPECT_TRUE(box->List()->Visible());
    EXPECT_EQ(Highlighted(), 1);
    Press(box, VK_F4);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_FALSE(box->List()->Visible());
    Press(box, VK_DOWN, {ssAlt});
    EXPECT_TRUE(box->DroppedDown());
    Press(box, VK_UP, {ssAlt});
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(drops, 2);
    EXPECT_EQ(closes, 2);
    EXPECT_EQ(clicks, 0) << "nothing else was chosen";
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(LookupComboBox, EnterTakesTheHighlightedRecordAndEscapeLeavesIt) {
    Press(box, VK_F4);
    Press(box, VK_DOWN);
    EXPECT_EQ(Highlighted(), 2);
    EXPECT_EQ(Held(), "ES");
    Press(box, VK_ESCAPE);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(Held(), "ES");
    Press(box, VK_F4);
    Press(box, VK_END);
    Press(box, VK_PRIOR);
    EXPECT_EQ(Highlighted(), 0);
    Press(box, VK_NEXT);
    EXPECT_EQ(Highlighted(), 5);
    Press(box, VK_HOME);
    Press(box, VK_DOWN);
    Press(box, VK_DOWN);
    Press(box, VK_RETURN);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(Held(), "FR");
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(countries->CurrentRecord(), 2);
}

TEST_F(LookupComboBox, TabTakesAndGoesOn) {
    Press(box, VK_F4);
    Press(box, VK_DOWN);
    Press(box, VK_TAB);
    EXPECT_EQ(Held(), "FR");
    EXPECT_TRUE(other->Focused());
}

TEST_F(LookupComboBox, LeavingItAnotherWayLeavesTheValue) {
    Press(box, VK_F4);
    Press(box, VK_DOWN);
    other->SetFocus();
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupComboBox, TypingDropsTheListAndSearches) {
    Type(box, "po");
    ASSERT_TRUE(box->DroppedDown());
    EXPECT_EQ(Highlighted(), 3);
    Type(box, "L");
    EXPECT_EQ(Highlighted(), 4);
    Type(box, "?");
    EXPECT_EQ(beeps, 1);
    Type(box, "\b");
    EXPECT_EQ(Highlighted(), 3);
    clock.Advance(2001);
    Type(box, "a");
    EXPECT_EQ(Highlighted(), 0);
    EXPECT_EQ(Held(), "ES");
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), "AD");
    Type(box, "\b");
    EXPECT_FALSE(box->DroppedDown());
}

TEST_F(LookupComboBox, UpAndDownChooseTheRecordBesideWhileTheListIsClosed) {
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "FR");
    Press(box, VK_UP);
    Press(box, VK_UP);
    Press(box, VK_UP);
    EXPECT_EQ(Held(), "AD");
    EXPECT_FALSE(box->DroppedDown());
    char escape = VK_ESCAPE;
    box->ProcessKeyPress(escape);
    EXPECT_EQ(Held(), "ES");
}

TEST_F(LookupComboBox, TheNullValueKeyClearsAndClosesTheList) {
    box->NullValueKey = ShortCut(VK_DELETE, {ssCtrl});
    Press(box, VK_F4);
    Press(box, VK_DELETE, {ssCtrl});
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_TRUE(data.FieldByName("Name")->IsNull());
    EXPECT_EQ(box->Text(), "");
}

TEST_F(LookupComboBox, AReadOnlyOneCanBeLookedAt) {
    box->SetDataReadOnly(true);
    Press(box, VK_DOWN);
    Press(box, VK_F4);
    Press(box, VK_DOWN);
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), "ES");
    EXPECT_EQ(box->Text(), "Espanya");
    EXPECT_EQ(clicks, 0);
    box->SetEnabled(false);
    Press(box, VK_F4);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(box->Text(), "Espanya");
}

TEST_F(LookupComboBox, TheMouseChoosesInTheList) {
    box->ProcessButton();
    ASSERT_TRUE(box->DroppedDown());
    box->List()->ProcessRecordRelease(1 + kCountries);
    EXPECT_TRUE(box->DroppedDown()) << "the button comes up beside the list";
    box->List()->ProcessRecordHover(3);
    EXPECT_EQ(Highlighted(), 3);
    box->List()->ProcessRecordHover(kCountries);
    EXPECT_EQ(Highlighted(), 3);
    box->List()->ProcessCellClick(4, 0, {});
    box->List()->ProcessRecordRelease(4);
    EXPECT_FALSE(box->DroppedDown());
    EXPECT_EQ(Held(), "PO");
    box->ProcessButton();
    box->ProcessButton();
    EXPECT_FALSE(box->DroppedDown());
}

TEST_F(LookupComboBox, TheListIsAsLargeAsItMust) {
    box->SetListField("Country");
    box->DropDown();
    EXPECT_EQ(box->List()->Width(), box->Width());
    EXPECT_EQ(box->List()->Top(), box->Height());
    EXPECT_EQ(box->List()->VisibleRows(), kCountries) << "there are no more";
    box->CloseUp(TDBLookupComboBox::Close::Leave);
    box->SetDropDownRows(3);
    box->SetDropDownWidth(300);
    box->DropDownAlign = daRight;
    box->DropDown();
    EXPECT_EQ(box->List()->VisibleRows(), 3);
    EXPECT_EQ(box->List()->Left(), box->Width() - 300);
    box->CloseUp(TDBLookupComboBox::Close::Leave);
    box->DropDownAlign = daCenter;
    box->DropDown();
    EXPECT_EQ(box->List()->Left(), (box->Width() - 300) / 2);
    box->CloseUp(TDBLookupComboBox::Close::Leave);
    box->SetDropDownWidth(0);
    box->SetListField("Country;Code;Number");
    box->DropDown();
    EXPECT_GT(box->List()->Width(), box->Width()) << "several fields need more";
}

TEST_F(LookupComboBox, AListThatGoesWhileItIsDroppedCloses) {
    Press(box, VK_F4);
    countries->Close();
    EXPECT_FALSE(box->DroppedDown());
    Press(box, VK_F4);
    EXPECT_FALSE(box->DroppedDown()) << "there is nothing to show";
    box->OnDropDown = [this](TObject*) { countries->Open(); };
    Press(box, VK_F4);
    EXPECT_TRUE(box->DroppedDown()) << "it may be opened when it is needed";
    countries.reset();
    EXPECT_FALSE(box->DroppedDown());
    delete box;
    box = nullptr;
}

TEST_F(LookupComboBox, ARecordThatIsChosenInAHandlerThatClosesTheListIsSurvived) {
    box->OnClick = [this](TObject*) { countries->Close(); };
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "FR");
    EXPECT_EQ(box->Text(), "");
}

TEST_F(LookupComboBox, SeveralKeyFieldsAreOneValue) {
    MemoryDataSet prices({MemoryDataSet::Row(1, "ES", 10), MemoryDataSet::Row(2, "ES", 20)});
    prices.Open();
    listSource->SetDataSet(&prices);
    box->SetDataSource(nullptr);
    box->SetKeyField("Name; Id");
    box->SetListField("Rate");
    EXPECT_TRUE(box->KeyValue().IsNull());
    box->TheLookup().ShowKey({Variant("ES"), Variant(2)});
    EXPECT_EQ(box->Text(), "20");
    Press(box, VK_UP);
    EXPECT_EQ(box->Text(), "10");
    ASSERT_EQ(box->TheLookup().Key().size(), 2u);
    EXPECT_EQ(VarToStr(box->TheLookup().Key()[1]), "1");
    listSource->SetDataSet(nullptr);
}

TEST_F(LookupComboBox, ALargeListOpensAtOnce) {
    Countries many(100000);
    many.Open();
    listSource->SetDataSet(&many);
    EXPECT_EQ(box->Text(), "Espanya");
    Press(box, VK_F4);
    EXPECT_EQ(Highlighted(), 1);
    EXPECT_LT(many.Fetched, 1000) << "only what is shown is read";
    Press(box, VK_END);
    EXPECT_EQ(Highlighted(), 99999);
    Press(box, VK_RETURN);
    EXPECT_EQ(Held(), "X99999");
    EXPECT_EQ(box->Text(), "Other 99999");
    listSource->SetDataSet(nullptr);
}

TEST_F(LookupComboBox, WhatIsLookedForAgainIsFoundAlthoughTheListChanged) {
    MemoryDataSet list({MemoryDataSet::Row(1, "AD"), MemoryDataSet::Row(2, "ES"), MemoryDataSet::Row(3, "IT")});
    list.Open();
    listSource->SetDataSet(&list);
    box->SetKeyField("Name");
    box->SetListField("Id");
    EXPECT_EQ(box->Text(), "2");
    list.Delete();
    EXPECT_EQ(box->Text(), "2");
    data.Next();
    EXPECT_EQ(box->Text(), "3");
    list.SetSort("[Id] DESC");
    data.Prior();
    EXPECT_EQ(box->Text(), "2");
    Press(box, VK_DOWN);
    EXPECT_EQ(Held(), "ES") << "it is the last one now";
    Press(box, VK_UP);
    EXPECT_EQ(Held(), "IT");
    listSource->SetDataSet(nullptr);
}

TEST_F(LookupComboBox, StoredFormsKeepWhatIsSet) {
    TForm stored(nullptr);
    auto* combo = Put<TDBLookupComboBox>(&stored, 1, 2, 100, 25);
    combo->SetName("Combo");
    auto* list = Put<TDBLookupListBox>(&stored, 1, 40, 100, 90);
    list->SetName("List");
    auto* place = new TDataSource(&stored);
    place->SetName("Place");
    for (auto* each : {combo}) {
        each->SetListSource(place);
        each->SetKeyField("Code");
        each->SetListField("A;B");
        each->SetListFieldIndex(1);
        each->NullValueKey = ShortCut(VK_DELETE, {ssCtrl});
        each->DropDownAlign = daCenter;
        each->SetDropDownRows(12);
    }
    list->SetListSource(place);
    const auto restored = Restored(Stored(stored));
    auto* read = ObjectCast<TDBLookupComboBox>(restored->FindComponent("Combo"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->ListSource(), restored->FindComponent("Place"));
    EXPECT_EQ(read->KeyField(), "Code");
    EXPECT_EQ(read->ListField(), "A;B");
    EXPECT_EQ(read->ListFieldIndex(), 1);
    EXPECT_EQ(read->NullValueKey, ShortCut(VK_DELETE, {ssCtrl}));
    EXPECT_EQ(read->DropDownAlign, daCenter);
    EXPECT_EQ(read->DropDownRows(), 12);
    auto* readList = ObjectCast<TDBLookupListBox>(restored->FindComponent("List"));
    ASSERT_NE(readList, nullptr);
    EXPECT_EQ(readList->ListSource(), restored->FindComponent("Place"));
    EXPECT_EQ(readList->Height(), list->Height());
    EXPECT_EQ(Stored(*restored), Stored(stored));
}
