// Control grids: panels, what stands on them, the keys that go from record to record, and copies that show the others.
#include "platform/controls/db_ctrl_grid.h"

#include <gtest/gtest.h>

#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/panels.h"
#include "platform/controls/shortcuts.h"
#include "platform/system/message_dialogs.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

class ControlGrid : public testing::Test {
  protected:
    ControlGrid() {
        std::vector<Record> rows;
        for (int64_t i = 1; i <= 10; ++i) rows.push_back(MemoryDataSet::Row(i, ("Name " + std::to_string(i)).c_str()));
        data = std::make_unique<MemoryDataSet>(rows);
        data->Open();
        source.SetDataSet(data.get());
        before = Put<TEdit>(&form, 0, 300, 80, 25);
        grid = Put<TDBCtrlGrid>(&form, 0, 0, 200, 216);
        grid->SetDataSource(&source);
        name = Put<TDBEdit>(grid, 10, 10, 100, 25);
        name->SetDataField("Name");
        day = Put<TDBEdit>(grid, 10, 40, 100, 25);
        day->SetDataField("Id");
        after = Put<TEdit>(&form, 0, 330, 80, 25);
        form.Show();
        grid->SetFocus();
    }
    ~ControlGrid() override { SetMessageDialogPort({}); }
    AnsiString Shown() { return name->Text(); }

    std::unique_ptr<MemoryDataSet> data;
    TForm form{nullptr};
    TDataSource source{&form};
    TEdit* before;
    TDBCtrlGrid* grid;
    TDBEdit* name;
    TDBEdit* day;
    TEdit* after;
};

}  // namespace

TEST_F(ControlGrid, WhatIsPutIntoItStandsOnThePanelOfTheSelectedRecord) {
    EXPECT_EQ(name->Parent(), grid->Panel());
    EXPECT_EQ(name->DataSource(), &source) << "it has the grid's source";
    EXPECT_EQ(Shown(), "Name 1");
    EXPECT_EQ(grid->Panel()->BoundsRect(), grid->PanelRect(0));
    data->MoveBy(2);
    EXPECT_EQ(Shown(), "Name 3");
    EXPECT_EQ(grid->Panel()->BoundsRect(), grid->PanelRect(2));
    data->Next();
    EXPECT_EQ(grid->TopRecord(), 1) << "it is brought into sight";
    EXPECT_EQ(grid->Panel()->BoundsRect(), grid->PanelRect(2));
}

TEST_F(ControlGrid, ControlsInsideOthersGetItsSourceAndThoseThatHaveOneKeepIt) {
    TDataSource another(nullptr);
    auto* own = Put<TDBEdit>(&form, 0, 0, 10, 10);
    own->SetDataSource(&another);
    own->SetParent(grid);
    EXPECT_EQ(own->DataSource(), &another);
    auto* box = new TPanel(&form);
    auto* inner = Put<TDBText>(box, 0, 0, 10, 10);
    inner->SetDataField("Name");
    box->SetParent(grid);
    EXPECT_EQ(inner->DataSource(), &source);
    EXPECT_EQ(inner->GetLabelText(), "Name 1");
    grid->SetDataSource(&another);
    EXPECT_EQ(inner->DataSource(), &another);
    EXPECT_EQ(name->DataSource(), &another);
}

TEST_F(ControlGrid, SizesOfPanelsAndGridGoTogether) {
    const int bar = CurrentTextMetrics().ScrollBarSize();
    grid->SetBounds(0, 0, 200 + bar, 300);
    EXPECT_EQ(grid->PanelWidth(), 200);
    EXPECT_EQ(grid->PanelHeight(), 100);
    grid->SetColCount(2);
    EXPECT_EQ(grid->Width(), 400 + bar);
    EXPECT_EQ(grid->PanelWidth(), 200);
    grid->SetRowCount(2);
    EXPECT_EQ(grid->Height(), 200);
    grid->SetPanelWidth(150);
    EXPECT_EQ(grid->Width(), 300 + bar);
    grid->SetPanelHeight(50);
    EXPECT_EQ(grid->Height(), 100);
    EXPECT_EQ(grid->PanelRect(1), Bounds(150, 0, 150, 50));
    EXPECT_EQ(grid->PanelRect(2), Bounds(0, 50, 150, 50));
    grid->SetOrientation(goHorizontal);
    EXPECT_EQ(grid->Width(), 300);
    EXPECT_EQ(grid->Height(), 100 + bar);
    EXPECT_EQ(grid->PanelRect(1), Bounds(0, 50, 150, 50));
    EXPECT_EQ(grid->PanelRect(2), Bounds(150, 0, 150, 50));
    grid->SetColCount(0);
    EXPECT_EQ(grid->ColCount(), 1);
    grid->SetRowCount(1000);
    EXPECT_EQ(grid->RowCount(), 100);
}

TEST_F(ControlGrid, ArrowsGoToThePanelBeside) {
    grid->SetColCount(2);
    Press(grid, VK_RIGHT);
    EXPECT_EQ(data->RecNo(), 2);
    Press(grid, VK_DOWN);
    EXPECT_EQ(data->RecNo(), 4);
    Press(grid, VK_LEFT);
    EXPECT_EQ(data->RecNo(), 3);
    Press(grid, VK_UP);
    EXPECT_EQ(data->RecNo(), 1);
    grid->SetOrientation(goHorizontal);
    Press(grid, VK_DOWN);
    EXPECT_EQ(data->RecNo(), 2);
    Press(grid, VK_RIGHT);
    EXPECT_EQ(data->RecNo(), 5) << "three panels stand below each other";
    Press(grid, VK_UP);
    EXPECT_EQ(data->RecNo(), 4);
    Press(grid, VK_LEFT);
    EXPECT_EQ(data->RecNo(), 1);
}

TEST_F(ControlGrid, PagesHomeAndEndGoFurther) {
    Press(grid, VK_NEXT);
    EXPECT_EQ(data->RecNo(), 4);
    EXPECT_EQ(grid->TopRecord(), 1);
    Press(grid, VK_END);
    EXPECT_EQ(data->RecNo(), 10);
    EXPECT_EQ(grid->TopRecord(), 7);
    Press(grid, VK_PRIOR);
    EXPECT_EQ(data->RecNo(), 7);
    Press(grid, VK_HOME);
    EXPECT_EQ(data->RecNo(), 1);
    EXPECT_EQ(grid->TopRecord(), 0);
}

TEST_F(ControlGrid, WholeLinesAreScrolled) {
    grid->SetColCount(3);
    grid->SetTopRecord(4);
    EXPECT_EQ(grid->TopRecord(), 3);
    EXPECT_EQ(grid->EndRecord(), 10);
    grid->SetTopRecord(9);
    EXPECT_EQ(grid->TopRecord(), 3) << "the last line stands last";
    EXPECT_EQ(data->RecNo(), 1) << "scrolling selects nothing";
    EXPECT_GE(grid->Panel()->Top(), grid->Height()) << "the selected panel is out of sight";
    grid->DoMouseWheel({}, 120, {});
    EXPECT_EQ(grid->TopRecord(), 0);
    EXPECT_EQ(grid->Panel()->BoundsRect(), grid->PanelRect(0));
}

TEST_F(ControlGrid, EnterAndF2GoIntoThePanelAndF2AndEscapeOut) {
    Press(grid, VK_RETURN);
    EXPECT_TRUE(name->Focused());
    Press(name, VK_F2);
    EXPECT_TRUE(grid->Focused());
    Press(grid, VK_F2);
    EXPECT_TRUE(name->Focused());
    Press(name, VK_ESCAPE);
    EXPECT_TRUE(grid->Focused());
}

TEST_F(ControlGrid, EscapeForgetsWhatWasChangedInTheRecordFirst) {
    Press(grid, VK_F2);
    name->SelectAll();
    Type(name, "Changed");
    EXPECT_EQ(data->State(), dsEdit);
    char escape = VK_ESCAPE;
    uint16_t key = VK_ESCAPE;
    EXPECT_FALSE(name->ProcessKeyDown(key, {})) << "the control's own comes first";
    name->ProcessKeyPress(escape);
    EXPECT_EQ(Shown(), "Name 1");
    Press(name, VK_ESCAPE);
    EXPECT_EQ(data->State(), dsBrowse);
    EXPECT_TRUE(name->Focused());
    data->Edit();
    grid->SetFocus();
    Press(grid, VK_ESCAPE);
    EXPECT_EQ(data->State(), dsBrowse);
}

TEST_F(ControlGrid, TabGoesOnToTheNextRecordAndBack) {
    Press(grid, VK_F2);
    Press(name, VK_TAB);
    EXPECT_TRUE(day->Focused());
    Press(day, VK_TAB);
    EXPECT_TRUE(name->Focused());
    EXPECT_EQ(data->RecNo(), 2);
    Press(name, VK_TAB, {ssShift});
    EXPECT_TRUE(day->Focused());
    EXPECT_EQ(data->RecNo(), 1);
    data->Last();
    Press(day, VK_TAB);
    EXPECT_TRUE(after->Focused()) << "beyond the last record the form goes on";
}

TEST_F(ControlGrid, CtrlTabLeavesTheGrid) {
    Press(grid, VK_F2);
    Press(name, VK_TAB, {ssCtrl});
    EXPECT_TRUE(after->Focused());
    name->SetFocus();
    Press(name, VK_TAB, {ssCtrl, ssShift});
    EXPECT_TRUE(before->Focused());
}

TEST_F(ControlGrid, CtrlPageKeysGoToTheSameControlOfAnotherPanel) {
    Press(grid, VK_F2);
    Press(name, VK_NEXT, {ssCtrl});
    EXPECT_EQ(data->RecNo(), 2);
    EXPECT_TRUE(name->Focused());
    Press(name, VK_PRIOR, {ssCtrl});
    EXPECT_EQ(data->RecNo(), 1);
    Press(name, VK_NEXT);
    EXPECT_EQ(data->RecNo(), 1) << "without Ctrl they are for lists and long texts";
}

TEST_F(ControlGrid, GoingOnWritesTheRecord) {
    Press(grid, VK_F2);
    name->SelectAll();
    Type(name, "Puig");
    Press(name, VK_NEXT, {ssCtrl});
    EXPECT_EQ(data->Written, std::vector<AnsiString>{"update Name 1 to Puig"});
}

TEST_F(ControlGrid, InsertKeysBeginRecordsWhereThatIsAllowed) {
    Press(grid, VK_DOWN);
    Press(grid, VK_INSERT);
    EXPECT_EQ(data->State(), dsInsert);
    EXPECT_EQ(data->RecNo(), 2);
    EXPECT_EQ(Shown(), "");
    Press(grid, VK_ESCAPE);
    EXPECT_EQ(Shown(), "Name 2");
    Press(grid, VK_INSERT, {ssCtrl});
    EXPECT_EQ(data->RecNo(), 11);
    EXPECT_TRUE(grid->Panel()->Visible());
    Press(grid, VK_ESCAPE);
    grid->AllowInsert = false;
    Press(grid, VK_INSERT);
    EXPECT_EQ(data->State(), dsBrowse);
    grid->AllowInsert = true;
    data->Reason = "Not today";
    Press(grid, VK_INSERT);
    EXPECT_EQ(data->State(), dsBrowse);
}

TEST_F(ControlGrid, CtrlDeleteAsksAndDeletes) {
    int asked = 0;
    TModalResult answer = mrCancel;
    SetMessageDialogPort([&](const MessageDialogRequest& request) {
        EXPECT_EQ(request.Text, "Delete record?");
        ++asked;
        return answer;
    });
    Press(grid, VK_DELETE);
    EXPECT_EQ(asked, 0);
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(data->Written.empty());
    answer = mrOk;
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(data->Written, std::vector<AnsiString>{"delete Name 1"});
    EXPECT_EQ(Shown(), "Name 2");
    grid->AllowDelete = false;
    Press(grid, VK_DELETE, {ssCtrl});
    EXPECT_EQ(asked, 2);
}

TEST_F(ControlGrid, AClickSelectsThePanel) {
    grid->ProcessPanelClick(2);
    EXPECT_EQ(data->RecNo(), 3);
    grid->SetTopRecord(7);
    grid->ProcessPanelClick(5);
    EXPECT_EQ(data->RecNo(), 3) << "there is no panel";
    grid->ProcessPanelClick(1);
    EXPECT_EQ(data->RecNo(), 9);
}

TEST_F(ControlGrid, WithoutRecordsThereIsNoPanel) {
    while (!data->IsEmpty()) data->Delete();
    EXPECT_FALSE(grid->Panel()->Visible());
    Press(grid, VK_DOWN);
    Press(grid, VK_F2);
    EXPECT_TRUE(grid->Focused());
    Press(grid, VK_INSERT);
    EXPECT_TRUE(grid->Panel()->Visible());
    Press(grid, VK_ESCAPE);
    EXPECT_FALSE(grid->Panel()->Visible());
    data->Close();
    Press(grid, VK_DOWN);
    Press(grid, VK_F2);
    EXPECT_FALSE(grid->Panel()->Visible());
}

TEST_F(ControlGrid, DatasetsAndSourcesThatGoAreSurvived) {
    data.reset();
    EXPECT_FALSE(grid->Panel()->Visible());
    grid->PrepareCopies();
    grid->ShowCopy(1, [] { FAIL() << "there is nothing to show"; });
    Press(grid, VK_NEXT);
    auto* own = new TDataSource(nullptr);
    grid->SetDataSource(own);
    EXPECT_EQ(name->DataSource(), own);
    delete own;
    EXPECT_EQ(grid->DataSource(), nullptr);
    EXPECT_EQ(name->DataSource(), nullptr);
    grid->SetDataSource(&source);
    EXPECT_EQ(name->DataSource(), &source);
}

// Copies.

TEST_F(ControlGrid, CopiesShowOtherRecordsAndNobodyHearsOfIt) {
    int changes = 0, scrolls = 0;
    name->OnChange = [&](TObject*) { ++changes; };
    data->AfterScroll = [&](TDataSet*) { ++scrolls; };
    source.OnDataChange = [&](TObject*, TField*) { ++changes; };
    std::vector<int> painted;
    grid->OnPaintPanel = [&](TObject*, int index) { painted.push_back(index); };
    grid->PrepareCopies();
    ASSERT_EQ(grid->CopyPanel()->ControlCount(), 2);
    auto* copy = ObjectCast<TDBEdit>(grid->CopyPanel()->Controls(0));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->BoundsRect(), name->BoundsRect());
    EXPECT_EQ(copy->Name(), "");
    std::vector<AnsiString> shown;
    for (int64_t record = 0; record < grid->EndRecord(); ++record)
        grid->ShowCopy(record, [&] {
            shown.push_back(copy->Text());
            EXPECT_EQ(data->FieldByName("Id")->AsInteger(), record + 1);
        });
    EXPECT_EQ(shown, (std::vector<AnsiString>{"Name 1", "Name 2", "Name 3"}));
    EXPECT_EQ(painted, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Shown(), "Name 1");
    EXPECT_EQ(data->FieldByName("Id")->AsInteger(), 1);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(scrolls, 0);
    // What counts here goes before what is listened to.
    name->OnChange = nullptr;
    source.OnDataChange = nullptr;
    data->AfterScroll = nullptr;
    grid->OnPaintPanel = nullptr;
}

TEST_F(ControlGrid, CopiesFollowWhatChangesInTheOriginals) {
    grid->PrepareCopies();
    auto* copy = ObjectCast<TDBEdit>(grid->CopyPanel()->Controls(0));
    name->SetLeft(33);
    name->SetColor(clInfoBk);
    name->Font()->SetHeight(-20);
    name->SetDataField("Id");
    grid->PrepareCopies();
    EXPECT_EQ(ObjectCast<TDBEdit>(grid->CopyPanel()->Controls(0)), copy) << "it is no other one";
    EXPECT_EQ(copy->Left(), 33);
    EXPECT_EQ(copy->TControl::Color(), clInfoBk);
    EXPECT_EQ(copy->EffectiveFont().Height(), -20);
    grid->ShowCopy(4, [&] { EXPECT_EQ(copy->Text(), "5"); });
    delete day;
    grid->PrepareCopies();
    EXPECT_EQ(grid->CopyPanel()->ControlCount(), 1);
}

TEST_F(ControlGrid, CopiesOfControlsWithOthersInsideAreWhole) {
    auto* box = Put<TPanel>(grid, 120, 0, 60, 60);
    box->SetCaption("Box");
    auto* inner = Put<TDBText>(box, 1, 2, 40, 15);
    inner->SetDataField("Name");
    inner->SetDataSource(&source);
    auto* choice = Put<TDBComboBox>(grid, 5, 65, 60, 25);
    choice->SetDataField("Name");
    choice->Items()->Add("Name 2");
    grid->PrepareCopies();
    ASSERT_EQ(grid->CopyPanel()->ControlCount(), 4);
    TPanel* boxCopy = nullptr;
    TDBComboBox* choiceCopy = nullptr;
    for (int i = 0; i < 4; ++i) {
        if (auto* each = ObjectCast<TPanel>(grid->CopyPanel()->Controls(i))) boxCopy = each;
        if (auto* each = ObjectCast<TDBComboBox>(grid->CopyPanel()->Controls(i))) choiceCopy = each;
    }
    ASSERT_NE(boxCopy, nullptr);
    ASSERT_NE(choiceCopy, nullptr);
    EXPECT_EQ(boxCopy->Caption(), "Box");
    ASSERT_EQ(boxCopy->ControlCount(), 1);
    auto* innerCopy = ObjectCast<TDBText>(boxCopy->Controls(0));
    ASSERT_NE(innerCopy, nullptr);
    grid->ShowCopy(1, [&] {
        EXPECT_EQ(innerCopy->GetLabelText(), "Name 2");
        EXPECT_EQ(choiceCopy->ItemIndex(), 0);
    });
    choice->Items()->Add("Name 3");
    delete inner;
    grid->PrepareCopies();
    boxCopy = nullptr;
    for (int i = 0; i < 4; ++i) {
        if (auto* each = ObjectCast<TPanel>(grid->CopyPanel()->Controls(i))) boxCopy = each;
        if (auto* each = ObjectCast<TDBComboBox>(grid->CopyPanel()->Controls(i))) choiceCopy = each;
    }
    EXPECT_EQ(boxCopy->ControlCount(), 0);
    EXPECT_EQ(choiceCopy->Items()->Count(), 2);
}

TEST_F(ControlGrid, TheEditedRecordIsShownAsItIsEdited) {
    Press(grid, VK_F2);
    name->SelectAll();
    Type(name, "Roig");
    data->UpdateRecord();
    grid->PrepareCopies();
    auto* copy = ObjectCast<TDBEdit>(grid->CopyPanel()->Controls(0));
    grid->ShowCopy(0, [&] { EXPECT_EQ(copy->Text(), "Roig"); });
    grid->ShowCopy(1, [&] { EXPECT_EQ(copy->Text(), "Name 2"); });
    EXPECT_EQ(data->State(), dsEdit);
    EXPECT_EQ(Shown(), "Roig");
}

TEST_F(ControlGrid, StoredFormsKeepTheControlsAndNoCopies) {
    TForm stored(nullptr);
    auto* place = new TDataSource(&stored);
    place->SetName("Place");
    auto* panels = Put<TDBCtrlGrid>(&stored, 3, 4, 300, 200);
    panels->SetName("Panels");
    panels->SetDataSource(place);
    panels->SetColCount(2);
    panels->SetPanelWidth(111);
    panels->SetPanelHeight(55);
    auto* inside = Put<TDBEdit>(panels, 7, 8, 50, 25);
    inside->SetName("Inside");
    inside->SetAnchors({akLeft, akTop, akRight});
    panels->PrepareCopies();
    const std::string bytes = Stored(stored);
    const auto restored = Restored(bytes);
    auto* read = ObjectCast<TDBCtrlGrid>(restored->FindComponent("Panels"));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->BoundsRect(), panels->BoundsRect());
    EXPECT_EQ(read->PanelWidth(), 111);
    EXPECT_EQ(read->PanelHeight(), 55);
    auto* readInside = ObjectCast<TDBEdit>(restored->FindComponent("Inside"));
    ASSERT_NE(readInside, nullptr);
    EXPECT_EQ(readInside->Parent(), read->Panel());
    EXPECT_EQ(readInside->DataSource(), restored->FindComponent("Place"));
    EXPECT_EQ(readInside->BoundsRect(), inside->BoundsRect());
    EXPECT_EQ(Stored(*restored), bytes);
}
