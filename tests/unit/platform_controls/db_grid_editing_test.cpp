// Grids: editing in the cell, new and deleted records, marks, sorting, search and copies, by the keys that do them.
#include <gtest/gtest.h>

#include "platform/controls/db_grids.h"
#include "platform/controls/db_lookups.h"
#include "platform/controls/edits.h"
#include "platform/controls/lists.h"
#include "platform/controls/shortcuts.h"
#include "platform/data/field_classes.h"
#include "platform/system/clipboard.h"
#include "platform/system/message_dialogs.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

class GridEditing : public testing::Test {
  protected:
    GridEditing()
        : form(nullptr),
          data({MemoryDataSet::Row(1, "Soler", 3), MemoryDataSet::Row(2, "Puig", 1),
                MemoryDataSet::Row(3, "Solana", 2)}),
          source(&form) {
        source.SetDataSet(&data);
        grid = Put<TDBGrid>(&form, 0, 0, 600, 200);
        grid->SetDataSource(&source);
        other = Put<TEdit>(&form, 0, 250, 80, 25);
        data.Open();
        form.Show();
        grid->SetFocus();
        grid->SetSelectedIndex(kName);
    }
    ~GridEditing() override {
        SetMessageBeepPort({});
        SetMessageDialogPort({});
    }
    void With(TDBGridOption option) {
        TDBGridOptions options = grid->Options();
        options.Include(option);
        grid->SetOptions(options);
    }
    void Without(TDBGridOption option) {
        TDBGridOptions options = grid->Options();
        options.Exclude(option);
        grid->SetOptions(options);
    }
    AnsiString Name() { return data.FieldByName("Name")->AsString(); }
    TCustomEdit* Text() { return static_cast<TCustomEdit*>(grid->InplaceEditor()); }
    std::vector<AnsiString> Names() {
        std::vector<AnsiString> names;
        for (int64_t record = 0; record < data.RecordsFetched(); ++record)
            names.push_back(data.FieldByName("Name")->DisplayTextOf(record));
        return names;
    }

    static constexpr int kName = 1;
    static constexpr int kOk = 4;
    static constexpr int kRate = 5;
    TForm form;
    MemoryDataSet data;
    TDataSource source;
    TDBGrid* grid;
    TEdit* other;
};

}  // namespace

TEST_F(GridEditing, F2EditsTheCellAndEnterPutsItIntoTheField) {
    EXPECT_FALSE(grid->EditorMode());
    Press(grid, VK_F2);
    ASSERT_TRUE(grid->EditorMode());
    EXPECT_EQ(Text()->Text(), "Soler");
    EXPECT_EQ(Text()->SelLength(), 5);
    EXPECT_EQ(data.State(), dsBrowse) << "nothing is changed yet";
    const TRect cell = grid->CellRect(kName, 0);
    EXPECT_EQ(Text()->Left(), cell.Left);
    EXPECT_EQ(Text()->Top(), cell.Top);
    EXPECT_EQ(Text()->Width(), cell.Width());
    Type(Text(), "Roig");
    EXPECT_EQ(data.State(), dsEdit);
    EXPECT_EQ(Name(), "Soler");
    Press(Text(), VK_RETURN);
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_EQ(Name(), "Roig");
    EXPECT_TRUE(grid->Focused());
    EXPECT_EQ(data.State(), dsEdit) << "the record is still open";
    Press(grid, VK_DOWN);
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"update Soler to Roig"});
    EXPECT_EQ(data.RecNo(), 2);
}

TEST_F(GridEditing, ACharacterBeginsWithItself) {
    Type(grid, "R");
    ASSERT_TRUE(grid->EditorMode());
    EXPECT_EQ(Text()->Text(), "R");
    EXPECT_EQ(Text()->SelStart(), 1);
    Type(Text(), "oig");
    Press(Text(), VK_DOWN);
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"update Soler to Roig"}) << "going on writes";
    EXPECT_FALSE(grid->EditorMode());
}

TEST_F(GridEditing, EscapeTakesBackTheCellThenTheEditorThenTheRecord) {
    Type(grid, "R");
    Press(Text(), VK_ESCAPE);
    ASSERT_TRUE(grid->EditorMode());
    EXPECT_EQ(Text()->Text(), "Soler");
    Press(Text(), VK_ESCAPE);
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_EQ(data.State(), dsEdit);
    Press(grid, VK_ESCAPE);
    EXPECT_EQ(data.State(), dsBrowse);
    EXPECT_EQ(Name(), "Soler");
}

TEST_F(GridEditing, WhatTheFieldRefusesStaysInTheEditor) {
    grid->SetSelectedIndex(kRate);
    Press(grid, VK_F2);
    Text()->SelectAll();
    Type(Text(), "1-2");
    EXPECT_NE(MessageOf([&] { Press(Text(), VK_RETURN); }), "no error");
    ASSERT_TRUE(grid->EditorMode());
    EXPECT_EQ(Text()->Text(), "1-2") << "nothing typed is lost";
    EXPECT_NE(MessageOf([&] { data.Post(); }), "no error") << "nor is a record written without it";
    EXPECT_NE(MessageOf([&] { other->SetFocus(); }), "no error");
    EXPECT_TRUE(Text()->Focused());
    EXPECT_NE(MessageOf([&] { data.Next(); }), "no error");
    EXPECT_EQ(data.RecNo(), 1);
}

TEST_F(GridEditing, LeavingTheGridPutsTheCellIntoTheField) {
    Type(grid, "R");
    other->SetFocus();
    EXPECT_EQ(Name(), "R");
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_TRUE(other->Focused());
}

TEST_F(GridEditing, TabGoesToTheColumnBesideAndThenOn) {
    Type(grid, "R");
    Press(Text(), VK_TAB);
    EXPECT_EQ(Name(), "R");
    EXPECT_EQ(grid->SelectedIndex(), 2);
    EXPECT_TRUE(grid->Focused());
    grid->SetSelectedIndex(kRate);
    Press(grid, VK_F2);
    Press(Text(), VK_TAB);
    EXPECT_TRUE(other->Focused());
}

TEST_F(GridEditing, CellsThatMayNotBeChangedAreNotEdited) {
    const auto edits = [&] {
        grid->ShowEditor();
        const bool shown = grid->EditorMode();
        grid->HideEditor();
        return shown;
    };
    EXPECT_TRUE(edits());
    grid->ReadOnly = true;
    EXPECT_FALSE(edits()) << "by the grid";
    grid->ReadOnly = false;
    Without(dgEditing);
    EXPECT_FALSE(edits()) << "by its options";
    With(dgEditing);
    With(dgRowSelect);
    EXPECT_FALSE(edits()) << "rows are chosen, no cells";
    Without(dgRowSelect);
    data.FieldByName("Name")->ReadOnly = true;
    EXPECT_FALSE(edits()) << "by the field";
    data.FieldByName("Name")->ReadOnly = false;
    data.Reason = "Not today";
    EXPECT_FALSE(edits()) << "by the dataset";
    data.Reason.clear();
    source.AutoEdit = false;
    EXPECT_FALSE(edits()) << "by the source";
    data.Edit();
    EXPECT_TRUE(edits()) << "until somebody edits the record";
    data.Cancel();
    source.AutoEdit = true;
    grid->Columns()->Add()->SetFieldName("Name");
    grid->SetSelectedIndex(0);
    EXPECT_TRUE(edits());
    grid->Columns()->Items(0)->SetReadOnly(true);
    EXPECT_FALSE(edits()) << "by the column";
}

TEST_F(GridEditing, DownBehindTheLastRecordBeginsANewOne) {
    data.Last();
    Press(grid, VK_DOWN);
    EXPECT_EQ(data.State(), dsInsert);
    EXPECT_EQ(data.RecNo(), 4);
    Press(grid, VK_DOWN);
    EXPECT_EQ(data.RecNo(), 4) << "one that nobody filled is enough";
    Press(grid, VK_UP);
    EXPECT_EQ(data.State(), dsBrowse);
    EXPECT_EQ(data.RecordCount(), 3);
    EXPECT_EQ(data.RecNo(), 3);
    Press(grid, VK_DOWN);
    Type(grid, "n");
    Type(Text(), "ew");
    Press(Text(), VK_DOWN);
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"insert new"});
    EXPECT_EQ(data.State(), dsInsert) << "and the next one";
    other->SetFocus();
    EXPECT_EQ(data.State(), dsBrowse) << "an empty one goes when the grid is left";
    EXPECT_EQ(data.RecordCount(), 4);
}

TEST_F(GridEditing, InsertPutsARecordBeforeThisOne) {
    data.Next();
    Press(grid, VK_INSERT);
    EXPECT_EQ(data.State(), dsInsert);
    EXPECT_EQ(data.RecNo(), 2);
    EXPECT_TRUE(grid->EditorMode());
}

TEST_F(GridEditing, CtrlDeleteDeletesWhenTheUserAgrees) {
    TModalResult answer = mrCancel;
    std::vector<AnsiString> asked;
    SetMessageDialogPort([&](const MessageDialogRequest& request) {
        asked.push_back(request.Text);
        return answer;
    });
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(data.RecordCount(), 3);
    answer = mrOk;
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(data.Written, std::vector<AnsiString>{"delete Soler"});
    Without(dgConfirmDelete);
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(asked, (std::vector<AnsiString>{"Delete record?", "Delete record?"}));
    EXPECT_EQ(data.RecordCount(), 1);
    grid->ReadOnly = true;
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(data.RecordCount(), 1);
}

TEST_F(GridEditing, AColumnsLinesAreChosenFrom) {
    TColumn* column = grid->Columns()->Add();
    column->SetFieldName("Name");
    column->PickList()->SetText("Puig\nRoig");
    column->DropDownRows = 5;
    grid->SetSelectedIndex(0);
    Press(grid, VK_F4);
    auto* combo = ObjectCast<TCustomComboBox>(static_cast<TComponent*>(grid->InplaceEditor()));
    ASSERT_NE(combo, nullptr);
    EXPECT_TRUE(combo->DroppedDown());
    EXPECT_EQ(combo->DropDownCount(), 5);
    EXPECT_EQ(combo->Text(), "Soler") << "also what is none of them";
    combo->ProcessSelect(1);
    combo->SetDroppedDown(false);
    EXPECT_EQ(data.State(), dsEdit);
    Press(combo, VK_RETURN);
    EXPECT_EQ(Name(), "Roig");
    EXPECT_FALSE(grid->EditorMode());
}

TEST_F(GridEditing, TrueAndFalseAreChosenFromTheirWords) {
    data.FieldByName("Ok")->DisplayValues = "Yes;No";
    grid->SetSelectedIndex(kOk);
    Press(grid, VK_F2);
    auto* combo = ObjectCast<TCustomComboBox>(static_cast<TComponent*>(grid->InplaceEditor()));
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(combo->Items()->Get(1), "No");
    EXPECT_EQ(combo->ItemIndex(), 0);
    combo->ProcessSelect(1);
    Press(combo, VK_RETURN);
    EXPECT_FALSE(data.FieldByName("Ok")->AsBoolean());
}

TEST_F(GridEditing, CtrlEnterIsTheEditButton) {
    int presses = 0;
    grid->OnEditButtonClick = [&](TObject*) { ++presses; };
    Press(grid, VK_RETURN, {ssCtrl});
    EXPECT_EQ(presses, 1);
    TColumn* column = grid->Columns()->Add();
    column->SetFieldName("Name");
    column->ButtonStyle = cbsEllipsis;
    grid->SetSelectedIndex(0);
    Press(grid, VK_F2);
    Press(Text(), VK_RETURN, {ssCtrl});
    EXPECT_EQ(presses, 2);
    EXPECT_LT(Text()->Width(), column->Width()) << "the button stands beside the text";
}

TEST_F(GridEditing, TheSecondClickOnACellEditsIt) {
    grid->ProcessCellClick(1, kName);
    EXPECT_FALSE(grid->EditorMode());
    grid->ProcessCellClick(1, kName);
    EXPECT_TRUE(grid->EditorMode());
    grid->ProcessCellClick(0, kName);
    EXPECT_FALSE(grid->EditorMode());
    grid->ProcessCellDblClick(0, kName);
    EXPECT_TRUE(grid->EditorMode());
}

TEST_F(GridEditing, TheEditorFollowsItsCell) {
    Press(grid, VK_F2);
    const int left = Text()->Left();
    grid->ProcessLeftOffset(30);
    EXPECT_EQ(Text()->Left(), left - 30);
}

TEST_F(GridEditing, AClickOnATitleSortsAndTheNextOneTurnsRound) {
    grid->ProcessTitleClick(kName);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Puig", "Solana", "Soler"}));
    EXPECT_EQ(Name(), "Soler") << "the current record stays the current one";
    EXPECT_EQ(grid->SortDirection(*grid->ShownColumns()[kName]), 1);
    grid->ProcessTitleClick(kName);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Soler", "Solana", "Puig"}));
    EXPECT_EQ(grid->SortDirection(*grid->ShownColumns()[kName]), -1);
    grid->ProcessTitleClick(kRate);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Puig", "Solana", "Soler"}));
    EXPECT_EQ(grid->SortDirection(*grid->ShownColumns()[kName]), 0);
    int clicks = 0;
    grid->OnTitleClick = [&](TColumn*) { ++clicks; };
    grid->ProcessTitleClick(kName);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(grid->SortDirection(*grid->ShownColumns()[kRate]), 1) << "a handler does as it likes";
}

TEST_F(GridEditing, TypingInAGridThatIsOnlyLookedAtSearches) {
    Without(dgEditing);
    int beeps = 0;
    SetMessageBeepPort([&](unsigned) { ++beeps; });
    data.Next();
    Type(grid, "so");
    EXPECT_EQ(Name(), "Soler");
    Type(grid, "la");
    EXPECT_EQ(Name(), "Solana");
    Type(grid, "x");
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(Name(), "Solana");
    Type(grid, "\b");
    Type(grid, "e");
    EXPECT_EQ(Name(), "Soler") << "Backspace shortens what is searched for";
    grid->SetSelectedIndex(0);
    Type(grid, "x");
    EXPECT_EQ(beeps, 2) << "which is no number";
    Type(grid, "2");
    EXPECT_EQ(Name(), "Puig");
    EXPECT_EQ(data.State(), dsBrowse);
}

TEST_F(GridEditing, RecordsAreMarkedCopiedAndDeleted) {
    With(dgMultiSelect);
    Without(dgConfirmDelete);
    grid->ProcessCellClick(0, kName);
    EXPECT_EQ(grid->SelectedRows().Count(), 1);
    grid->ProcessCellClick(2, kName, {ssCtrl});
    EXPECT_EQ(grid->SelectedRows().Count(), 2);
    EXPECT_TRUE(grid->SelectedRows().Contains(2));
    EXPECT_FALSE(grid->SelectedRows().Contains(1));
    Press(grid, 'C', {ssCtrl});
    const AnsiString copied = Clipboard()->AsText();
    EXPECT_EQ(copied.find("1\tSoler\t"), 0u);
    EXPECT_NE(copied.find("\r\n3\tSolana\t"), AnsiString::npos);
    EXPECT_EQ(copied.find("Puig"), AnsiString::npos);
    grid->ProcessCellClick(0, kName);
    grid->ProcessCellClick(1, kName, {ssShift});
    EXPECT_EQ(grid->SelectedRows().Count(), 2);
    Press(grid, VK_SPACE, {ssCtrl});
    EXPECT_EQ(grid->SelectedRows().Count(), 1);
    Press(grid, VK_SPACE, {ssCtrl});
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(Names(), std::vector<AnsiString>{"Solana"});
    EXPECT_EQ(grid->SelectedRows().Count(), 0);
}

TEST_F(GridEditing, ShiftAndArrowsMarkFromWhereTheyBegan) {
    With(dgMultiSelect);
    Press(grid, VK_DOWN, {ssShift});
    Press(grid, VK_DOWN, {ssShift});
    EXPECT_EQ(grid->SelectedRows().Count(), 3);
    Press(grid, VK_UP, {ssShift});
    EXPECT_EQ(grid->SelectedRows().Count(), 2);
    EXPECT_FALSE(grid->SelectedRows().Contains(2));
    EXPECT_EQ(grid->SelectedRows().Items(1), data.BookmarkOf(1));
    EXPECT_THROW(grid->SelectedRows().Items(2), EListError);
}

TEST_F(GridEditing, MarksFollowTheirRecords) {
    With(dgMultiSelect);
    grid->ProcessCellClick(0, kName);
    grid->ProcessTitleClick(kName);
    EXPECT_TRUE(grid->SelectedRows().Contains(2)) << "Soler is the last one now";
    EXPECT_FALSE(grid->SelectedRows().Contains(0));
    data.Close();
    EXPECT_EQ(grid->SelectedRows().Count(), 0);
}

TEST_F(GridEditing, CtrlCCopiesTheCellOrTheRow) {
    Press(grid, 'C', {ssCtrl});
    EXPECT_EQ(Clipboard()->AsText(), "Soler");
    With(dgRowSelect);
    Press(grid, VK_INSERT, {ssCtrl});
    EXPECT_EQ(Clipboard()->AsText().find("1\tSoler\t"), 0u);
}

TEST_F(GridEditing, ALookedUpFieldIsChosenInItsList) {
    MemoryDataSet list({MemoryDataSet::Row(1, "one"), MemoryDataSet::Row(2, "two"), MemoryDataSet::Row(3, "three")});
    list.Open();
    data.Close();
    const auto add = [&](const char* name, auto* field, TFieldKind kind) {
        field->SetFieldName(name);
        field->SetFieldKind(kind);
        field->SetDataSet(&data);
        return field;
    };
    TField* id = add("Id", new TIntegerField(&form), fkData);
    add("Name", new TStringField(&form), fkData);
    TField* word = add("Word", new TStringField(&form), fkLookup);
    word->SetLookupDataSet(&list);
    word->KeyFields = "Id";
    word->LookupKeyFields = "Id";
    word->LookupResultField = "Name";
    data.Open();
    grid->SetSelectedIndex(2);
    Press(grid, VK_F2);
    auto* box = ObjectCast<TDBLookupComboBox>(grid->InplaceEditor());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->Text(), "one");
    EXPECT_TRUE(box->Focused());
    Press(box, VK_DOWN, {ssAlt});
    ASSERT_TRUE(box->DroppedDown());
    Press(box, VK_DOWN);
    Press(box, VK_RETURN);
    EXPECT_EQ(id->AsInteger(), 2);
    EXPECT_TRUE(grid->EditorMode());
    Press(box, VK_ESCAPE);
    EXPECT_EQ(id->AsInteger(), 1) << "the value that was there";
    Press(box, VK_ESCAPE);
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_TRUE(grid->Focused());
    Type(grid, "th");
    ASSERT_TRUE(box->DroppedDown()) << "typing searches in the list";
    Press(box, VK_TAB, {ssShift});
    EXPECT_EQ(id->AsInteger(), 3);
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_EQ(grid->SelectedIndex(), 1) << "and goes on";
    grid->SetSelectedIndex(2);
    Press(grid, VK_F2);
    Press(box, VK_DOWN);
    EXPECT_EQ(data.RecNo(), 2) << "without a list the arrows go to other records";
    EXPECT_EQ(id->AsInteger(), 2);
    id->ReadOnly = true;
    EXPECT_FALSE(grid->CanEditShow());
    id->ReadOnly = false;
    list.Close();
    EXPECT_FALSE(grid->CanEditShow());
    data.Close();
}
