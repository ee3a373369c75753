// Controls over a field: what they show, how they begin to edit, what they put into the field, and when.
#include <gtest/gtest.h>

#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
#include "platform/system/message_dialogs.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

// A form with a source over some records, and another control to go to.
class DataControls : public testing::Test {
  protected:
    DataControls()
        : form(nullptr), data({MemoryDataSet::Row(1, "Soler", 0.5), MemoryDataSet::Row(2, "Puig", 2)}), source(&form) {
        source.SetDataSet(&data);
        other = Put<TEdit>(&form, 0, 300, 80, 25);
    }
    void Open() {
        data.Open();
        form.Show();
    }
    template <class T>
    T* PutBound(const char* field) {
        T* control = Put<T>(&form, 10, 10, 100, 25);
        control->SetDataField(field);
        control->SetDataSource(&source);
        return control;
    }
    AnsiString Name() { return data.FieldByName("Name")->AsString(); }

    TForm form;
    MemoryDataSet data;
    TDataSource source;
    TEdit* other;
};

}  // namespace

TEST_F(DataControls, ATextShowsItsField) {
    auto* text = PutBound<TDBText>("Name");
    EXPECT_EQ(text->GetLabelText(), "") << "before the dataset is open";
    Open();
    EXPECT_EQ(text->GetLabelText(), "Soler");
    data.Next();
    EXPECT_EQ(text->GetLabelText(), "Puig");
    text->SetDataField("Rate");
    static_cast<TFloatField*>(data.FieldByName("Rate"))->SetDisplayFormat("0.00");
    EXPECT_EQ(text->GetLabelText(), "2.00");
    data.Close();
    EXPECT_EQ(text->GetLabelText(), "");
}

TEST_F(DataControls, ALabelNamesNoMnemonicsInItsData) {
    auto* text = PutBound<TDBText>("Name");
    EXPECT_FALSE(text->ShowAccelChar()) << "a firm called A & B is shown as it is called";
}

TEST_F(DataControls, TypingBeginsToEditAndLeavingPutsItIntoTheField) {
    auto* edit = PutBound<TDBEdit>("Name");
    Open();
    EXPECT_EQ(edit->Text(), "Soler");
    edit->SetFocus();
    EXPECT_EQ(data.State(), dsBrowse) << "nothing is changed yet";
    edit->SelectAll();
    Type(edit, "Roig");
    EXPECT_EQ(data.State(), dsEdit);
    EXPECT_EQ(Name(), "Soler") << "not before the control is left";
    other->SetFocus();
    EXPECT_EQ(Name(), "Roig");
    data.Post();
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"update Soler to Roig"});
}

TEST_F(DataControls, PostingTakesWhatIsTyped) {
    auto* edit = PutBound<TDBEdit>("Name");
    Open();
    edit->SetFocus();
    Type(edit, "Roig");
    data.Post();
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"update Soler to Roig"});
    EXPECT_EQ(edit->Text(), "Roig");
}

TEST_F(DataControls, EscapeTakesBackWhatWasTyped) {
    auto* edit = PutBound<TDBEdit>("Name");
    Open();
    edit->SetFocus();
    EXPECT_FALSE(edit->WantsKey(VK_ESCAPE, {})) << "with nothing typed, the form may close";
    Type(edit, "Roig");
    EXPECT_TRUE(edit->WantsKey(VK_ESCAPE, {}));
    Type(edit, "\x1B");
    EXPECT_EQ(edit->Text(), "Soler");
    EXPECT_EQ(edit->SelLength(), 5);
    other->SetFocus();
    EXPECT_EQ(Name(), "Soler");
}

TEST_F(DataControls, AnEditShowsTheDisplayTextUntilItIsEntered) {
    auto* edit = PutBound<TDBEdit>("Rate");
    Open();
    static_cast<TFloatField*>(data.FieldByName("Rate"))->SetDisplayFormat("0.00 kg");
    EXPECT_EQ(edit->Text(), "0.50 kg");
    EXPECT_EQ(edit->Alignment(), taRightJustify) << "as its field";
    edit->SetFocus();
    EXPECT_EQ(edit->Text(), "0.5");
    other->SetFocus();
    EXPECT_EQ(edit->Text(), "0.50 kg");
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(DataControls, WhatTheFieldRefusesKeepsTheKeyboard) {
    auto* edit = PutBound<TDBEdit>("Day");
    Open();
    edit->SetFocus();
    edit->SelectAll();
    Type(edit, "32/32/2026");
    EXPECT_NE(MessageOf([&] { other->SetFocus(); }), "no error");
    EXPECT_TRUE(edit->Focused());
    EXPECT_EQ(edit->SelLength(), 10) << "ready to be typed over";
    EXPECT_EQ(edit->Text(), "32/32/2026") << "nothing typed is lost";
    Type(edit, "\x1B");
    other->SetFocus();
    EXPECT_TRUE(other->Focused());
}

TEST_F(DataControls, CharactersThatTheFieldDoesNotTakeBeep) {
    auto* edit = PutBound<TDBEdit>("Rate");
    Open();
    edit->SetFocus();
    edit->SelectAll();
    int beeps = 0;
    SetMessageBeepPort([&](unsigned) { ++beeps; });
    Type(edit, "1x.5");
    SetMessageBeepPort({});
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(edit->Text(), "1.5");
}

TEST_F(DataControls, MaskedFieldsAreTypedThroughTheirMask) {
    auto* edit = PutBound<TDBEdit>("Name");
    Open();
    data.FieldByName("Name")->SetEditMask("000-aa;0;_");
    data.Edit();
    data.FieldByName("Name")->SetAsString("123xy");
    EXPECT_EQ(edit->EditText(), "123-xy");
    edit->SetFocus();
    edit->SetSelStart(0);
    Type(edit, "456");
    EXPECT_EQ(edit->EditText(), "456-xy");
    other->SetFocus();
    EXPECT_EQ(Name(), "456xy") << "literals are not stored";
    EXPECT_EQ(edit->EditText(), "456-xy") << "and shown";
    edit->SetFocus();
    edit->SetSelStart(1);
    Type(edit, "\b");
    EXPECT_NE(MessageOf([&] { other->SetFocus(); }).find("EDBEditError: \"_56-xy\" is not complete"), AnsiString::npos);
    EXPECT_TRUE(edit->Focused());
    EXPECT_EQ(edit->SelLength(), 6);
}

TEST_F(DataControls, AnEditTakesNoMoreThanItsField) {
    auto* edit = PutBound<TDBEdit>("Name");
    Open();
    EXPECT_EQ(edit->MostCharacters(), 10);
    EXPECT_EQ(edit->MaxLength(), 0) << "which is not stored";
    edit->SetFocus();
    edit->SelectAll();
    Type(edit, "123456789012");
    EXPECT_EQ(edit->Text(), "1234567890");
    edit->SetMaxLength(3);
    EXPECT_EQ(edit->MostCharacters(), 3);
}

TEST_F(DataControls, NothingIsTypedWhereNothingMayBeChanged) {
    auto* edit = PutBound<TDBEdit>("Name");
    EXPECT_TRUE(edit->ReadOnly()) << "no record";
    Open();
    EXPECT_FALSE(edit->ReadOnly());
    const auto unchanged = [&] {
        edit->SetFocus();
        edit->SelectAll();
        Type(edit, "x");
        edit->ProcessTextEdit("pasted", 6, 0);
        return edit->ReadOnly() && edit->Text() == "Soler" && data.State() == dsBrowse;
    };
    edit->SetDataReadOnly(true);
    EXPECT_TRUE(unchanged()) << "by the control";
    edit->SetDataReadOnly(false);
    data.FieldByName("Name")->ReadOnly = true;
    EXPECT_TRUE(unchanged()) << "by the field";
    data.FieldByName("Name")->ReadOnly = false;
    data.Reason = "Not today";
    EXPECT_TRUE(unchanged()) << "by the dataset";
    data.Reason.clear();
    source.AutoEdit = false;
    EXPECT_TRUE(unchanged()) << "by the source";
    data.Edit();
    EXPECT_FALSE(edit->ReadOnly()) << "once the record is edited by somebody";
    data.Cancel();
    source.AutoEdit = true;
    source.SetEnabled(false);
    EXPECT_TRUE(edit->ReadOnly());
    EXPECT_EQ(edit->Text(), "") << "a source that is switched off shows nothing";
}

TEST_F(DataControls, ASourceThatIsFreedLeavesAnEmptyControl) {
    auto* edit = PutBound<TDBEdit>("Name");
    auto second = std::make_unique<TDataSource>(nullptr);
    Open();
    second->SetDataSet(&data);
    edit->SetDataSource(second.get());
    EXPECT_EQ(edit->Text(), "Soler");
    second.reset();
    EXPECT_EQ(edit->DataSource(), nullptr);
    EXPECT_EQ(edit->Text(), "");
}

TEST_F(DataControls, AMemoEditsItsField) {
    auto* memo = PutBound<TDBMemo>("Name");
    Open();
    EXPECT_EQ(memo->Lines()->Get(0), "Soler");
    memo->SetFocus();
    memo->SelectAll();
    Type(memo, "a\rb");
    EXPECT_EQ(data.State(), dsEdit);
    other->SetFocus();
    EXPECT_EQ(Name(), "a\r\nb");
}

TEST_F(DataControls, AListBoxChoosesTheFieldsText) {
    auto* list = PutBound<TDBListBox>("Name");
    list->Items()->SetText("Puig\nSoler\nRoig");
    Open();
    EXPECT_EQ(list->ItemIndex(), 1);
    int clicks = 0;
    list->OnClick = [&](TObject*) { ++clicks; };
    data.Next();
    EXPECT_EQ(list->ItemIndex(), 0);
    EXPECT_EQ(clicks, 0) << "nobody clicked";
    list->SetFocus();
    Press(list, VK_END);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(data.State(), dsEdit);
    other->SetFocus();
    EXPECT_EQ(Name(), "Roig");
    data.Cancel();
    EXPECT_EQ(list->ItemIndex(), 0);
    data.Reason = "Not today";
    list->SetFocus();
    Press(list, VK_END);
    EXPECT_EQ(list->ItemIndex(), 0) << "what may not be changed stays";
}

TEST_F(DataControls, AListWithoutTheFieldsTextChoosesNone) {
    auto* list = PutBound<TDBListBox>("Name");
    list->Items()->SetText("Roig\nVila");
    Open();
    EXPECT_EQ(list->ItemIndex(), -1);
}

TEST_F(DataControls, AComboBoxTakesTextsAndLines) {
    auto* combo = PutBound<TDBComboBox>("Name");
    combo->Items()->SetText("Puig\nRoig");
    Open();
    EXPECT_EQ(combo->Text(), "Soler") << "also one that is no line";
    EXPECT_EQ(combo->ItemIndex(), -1);
    combo->SetFocus();
    combo->ProcessTextEdit("Vila", 4, 0);
    EXPECT_EQ(data.State(), dsEdit);
    other->SetFocus();
    EXPECT_EQ(Name(), "Vila");
    combo->SetFocus();
    combo->ProcessSelect(1);
    other->SetFocus();
    EXPECT_EQ(Name(), "Roig");
    data.Next();
    EXPECT_EQ(combo->ItemIndex(), 0);
    data.Reason = "Not today";
    combo->ProcessTextEdit("x", 1, 0);
    combo->ProcessSelect(1);
    EXPECT_EQ(combo->Text(), "Puig");
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(DataControls, ACheckBoxIsGrayedForNulls) {
    auto* box = PutBound<TDBCheckBox>("Ok");
    Open();
    EXPECT_EQ(box->State(), cbChecked);
    int clicks = 0;
    box->OnClick = [&](TObject*) { ++clicks; };
    box->ProcessPress();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(data.State(), dsEdit);
    data.UpdateRecord();
    EXPECT_FALSE(data.FieldByName("Ok")->AsBoolean());
    data.FieldByName("Ok")->Clear();
    EXPECT_EQ(box->State(), cbGrayed);
    EXPECT_EQ(clicks, 1) << "nobody clicked";
    data.Cancel();
    data.Reason = "Not today";
    box->ProcessPress();
    EXPECT_EQ(box->State(), cbChecked);
}

TEST_F(DataControls, ACheckBoxReadsAndWritesWords) {
    auto* box = PutBound<TDBCheckBox>("Name");
    box->SetValueChecked("Yes;Soler");
    box->SetValueUnchecked("No;puig");
    Open();
    EXPECT_EQ(box->State(), cbChecked);
    data.Next();
    EXPECT_EQ(box->State(), cbUnchecked) << "without regard to case";
    box->ProcessPress();
    data.UpdateRecord();
    EXPECT_EQ(Name(), "Yes") << "the first of them";
    data.FieldByName("Name")->SetAsString("Perhaps");
    EXPECT_EQ(box->State(), cbGrayed);
}

TEST_F(DataControls, ARadioGroupStandsForValues) {
    auto* group = PutBound<TDBRadioGroup>("Name");
    group->Items()->SetText("The first\nPuig\nRoig");
    group->Values()->SetText("Soler");
    Open();
    EXPECT_EQ(group->ItemIndex(), 0);
    EXPECT_EQ(group->Value(), "Soler");
    data.Next();
    EXPECT_EQ(group->ItemIndex(), 1) << "an item without a value is its own";
    int changes = 0;
    group->OnChange = [&](TObject*) { ++changes; };
    group->Buttons(0)->ProcessPress();
    EXPECT_EQ(changes, 1);
    group->OnChange = nullptr;  // the group outlives this test's counter
    EXPECT_EQ(data.State(), dsEdit);
    data.UpdateRecord();
    EXPECT_EQ(Name(), "Soler");
    data.FieldByName("Name")->SetAsString("Vila");
    EXPECT_EQ(group->ItemIndex(), -1);
    EXPECT_EQ(group->Value(), "Vila");
    data.Cancel();
    data.Reason = "Not today";
    group->Buttons(2)->ProcessPress();
    EXPECT_EQ(group->ItemIndex(), 1);
    EXPECT_TRUE(group->Buttons(1)->Checked());
}

TEST_F(DataControls, StoredFormsKeepThem) {
    auto* edit = PutBound<TDBEdit>("Name");
    edit->SetName("Edit1");
    source.SetName("Source1");
    const auto again = Restored(Stored(form));
    auto* read = ObjectCast<TDBEdit>(again->FindComponent("Edit1"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->DataField(), "Name");
    EXPECT_EQ(read->DataSource(), again->FindComponent("Source1"));
}

namespace {

// One record with a long text and a picture.
class LongDataSet : public MemoryDataSet {
  public:
    explicit LongDataSet(std::string picture)
        : MemoryDataSet({{Cell::Bytes("long text"), Cell::Bytes(picture)}, {Cell::Bytes("other"), Cell::Bytes("no")}}) {
    }

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        MemoryDataSet::InternalOpen();
        return {{"Notes", ftMemo}, {"Photo", ftGraphic}};
    }
};

// Two by one pixels.
std::string SmallBitmap() {
    TBitmap bitmap;
    bitmap.SetSize(2, 1);
    TMemoryStream stream;
    bitmap.SaveToStream(stream);
    return std::string(stream.Bytes());
}

class LongFields : public testing::Test {
  protected:
    LongFields() : form(nullptr), data(SmallBitmap()), source(&form) { source.SetDataSet(&data); }
    template <class T>
    T* PutBound(const char* field) {
        T* control = Put<T>(&form, 10, 10, 100, 60);
        control->SetDataField(field);
        control->SetDataSource(&source);
        return control;
    }
    TForm form;
    LongDataSet data;
    TDataSource source;
};

}  // namespace

TEST_F(LongFields, AMemoCanWaitToBeAskedForItsText) {
    auto* memo = PutBound<TDBMemo>("Notes");
    memo->SetAutoDisplay(false);
    data.Open();
    form.Show();
    EXPECT_EQ(memo->Caption(), "(Notes)");
    EXPECT_TRUE(memo->ReadOnly());
    memo->SetFocus();
    Type(memo, "x");
    EXPECT_EQ(memo->Caption(), "(Notes)") << "its name is no text to be changed";
    Type(memo, "\r");
    EXPECT_EQ(memo->Caption(), "long text");
    EXPECT_FALSE(memo->ReadOnly());
    memo->SelectAll();
    Type(memo, "new");
    data.Post();
    EXPECT_EQ(data.FieldByName("Notes")->AsString(), "new");
    data.Next();
    EXPECT_EQ(memo->Caption(), "(Notes)") << "another record, another question";
    memo->DblClick();
    EXPECT_EQ(memo->Caption(), "other");
}

TEST_F(LongFields, APictureIsShownAndDeleted) {
    auto* image = PutBound<TDBImage>("Photo");
    data.Open();
    form.Show();
    EXPECT_EQ(image->PictureRef().Width(), 2);
    EXPECT_EQ(image->Placeholder(), "");
    image->SetFocus();
    Press(image, VK_DELETE);
    EXPECT_EQ(data.State(), dsEdit);
    EXPECT_TRUE(image->PictureRef().Empty());
    Type(image, "\x1B");
    EXPECT_EQ(image->PictureRef().Width(), 2) << "Escape takes it back";
    Press(image, VK_DELETE);
    data.Post();
    EXPECT_TRUE(data.FieldByName("Photo")->IsNull());
    data.Next();
    EXPECT_TRUE(image->PictureRef().Empty()) << "bytes that are no picture";
    EXPECT_EQ(data.State(), dsBrowse);
    EXPECT_EQ(data.FieldByName("Photo")->RawBytes(), "no") << "stay as they are";
}

TEST_F(LongFields, APictureOfTheProgramsGoesIntoTheField) {
    auto* image = PutBound<TDBImage>("Photo");
    data.Open();
    form.Show();
    TPicture picture;
    picture.Bitmap()->SetSize(5, 4);
    image->Picture()->Assign(&picture);
    EXPECT_EQ(data.State(), dsEdit);
    data.Post();
    TPicture stored;
    stored.LoadFromBytes(data.FieldByName("Photo")->RawBytes());
    EXPECT_EQ(stored.Width(), 5);
}

TEST_F(LongFields, APictureKeepsItsProportionsInItsFrame) {
    auto* image = PutBound<TDBImage>("Photo");
    image->SetBounds(0, 0, 104, 54);
    EXPECT_EQ(image->DestRect(20, 10), Bounds(42, 22, 20, 10));
    image->SetStretch(true);
    EXPECT_EQ(image->DestRect(20, 20), Bounds(27, 2, 50, 50));
    image->SetCenter(false);
    EXPECT_EQ(image->DestRect(20, 20), Bounds(2, 2, 50, 50));
    image->SetAutoDisplay(false);
    data.Open();
    EXPECT_EQ(image->Placeholder(), "(Photo)");
    image->DblClick();
    EXPECT_EQ(image->Placeholder(), "");
    EXPECT_EQ(image->PictureRef().Width(), 2);
}
