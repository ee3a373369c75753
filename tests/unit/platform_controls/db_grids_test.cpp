// Grids: columns and titles, moving through records and columns, and what handlers draw.
#include "platform/controls/db_grids.h"

#include <gtest/gtest.h>

#include "platform/controls/shortcuts.h"
#include "unit/platform_controls/control_support.h"
#include "unit/platform_data/memory_data_set.h"

using namespace control_test;

namespace {

class Grids : public testing::Test {
  protected:
    Grids() {
        std::vector<Record> rows;
        for (int64_t i = 1; i <= 40; ++i) rows.push_back(MemoryDataSet::Row(i, ("Name " + std::to_string(i)).c_str()));
        data = std::make_unique<MemoryDataSet>(rows);
        data->Open();
        source.SetDataSet(data.get());
        grid = Put<TDBGrid>(&form, 0, 0, 600, 200);
        grid->SetDataSource(&source);
        form.Show();
        grid->SetFocus();
    }
    std::vector<AnsiString> Names() const {
        std::vector<AnsiString> names;
        for (const TColumn* column : grid->ShownColumns()) names.push_back(column->FieldName());
        return names;
    }
    std::unique_ptr<MemoryDataSet> data;
    TForm form{nullptr};
    TDataSource source{&form};
    TDBGrid* grid;
};

}  // namespace

TEST_F(Grids, WithoutColumnsOfItsOwnItShowsTheVisibleFields) {
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Id", "Name", "Price", "Day", "Ok", "Rate"}));
    data->FieldByName("Price")->SetVisible(false);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Id", "Name", "Day", "Ok", "Rate"}));
    EXPECT_FALSE(grid->HasOwnColumns());
    data->Close();
    EXPECT_TRUE(Names().empty());
}

TEST_F(Grids, ItsOwnColumnsAreShownWhereTheyAreVisible) {
    grid->Columns()->Add()->SetFieldName("Rate");
    TColumn* name = grid->Columns()->Add();
    name->SetFieldName("Name");
    grid->Columns()->Add()->SetFieldName("Nowhere");
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Rate", "Name", "Nowhere"}));
    EXPECT_EQ(grid->CellText(1, *name), "Name 2");
    EXPECT_EQ(grid->CellText(0, *grid->Columns()->Items(2)), "");
    EXPECT_EQ(grid->CellText(1000, *name), "");
    name->SetVisible(false);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Rate", "Nowhere"}));
}

TEST_F(Grids, TitlesAndColumnsFollowTheFieldUntilTheyAreSet) {
    TColumn* column = grid->Columns()->Add();
    column->SetFieldName("Rate");
    TField* rate = data->FieldByName("Rate");
    EXPECT_EQ(column->Title()->Caption(), "Rate");
    rate->SetDisplayLabel("The rate");
    EXPECT_EQ(column->Title()->Caption(), "The rate");
    EXPECT_EQ(column->Alignment(), taRightJustify);
    EXPECT_EQ(column->Title()->Alignment(), taLeftJustify);
    const int narrow = column->Width();
    rate->SetDisplayWidth(40);
    EXPECT_GT(column->Width(), narrow);
    EXPECT_EQ(column->Color(), grid->TControl::Color());
    EXPECT_EQ(column->Title()->Color(), grid->FixedColor());
    column->Title()->SetCaption("Mine");
    column->Title()->SetAlignment(taCenter);
    column->Title()->SetColor(clInfoBk);
    column->SetAlignment(taLeftJustify);
    column->SetColor(clAqua);
    column->SetWidth(33);
    rate->SetDisplayLabel("Another");
    EXPECT_EQ(column->Title()->Caption(), "Mine");
    EXPECT_EQ(column->Title()->Alignment(), taCenter);
    EXPECT_EQ(column->Title()->Color(), clInfoBk);
    EXPECT_EQ(column->Alignment(), taLeftJustify);
    EXPECT_EQ(column->Color(), clAqua);
    EXPECT_EQ(column->Width(), 33);
    column->SetWidth(0);
    EXPECT_GT(column->Width(), 33) << "no width is the field's again";
}

TEST_F(Grids, SizingAndMovingColumnsMakesThemItsOwn) {
    std::vector<AnsiString> moved;
    grid->OnColumnMoved = [&](TObject*, int from, int to) {
        moved.push_back(std::to_string(from) + " to " + std::to_string(to));
    };
    grid->ProcessColumnResize(1, 222);
    ASSERT_TRUE(grid->HasOwnColumns());
    EXPECT_EQ(grid->ShownColumns()[1]->Width(), 222);
    grid->ProcessColumnResize(1, -5);
    EXPECT_EQ(grid->ShownColumns()[1]->Width(), 16) << "a column can still be taken hold of";
    grid->ProcessColumnMove(0, 2);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Name", "Price", "Id", "Day", "Ok", "Rate"}));
    grid->ProcessColumnMove(5, 0);
    EXPECT_EQ(Names(), (std::vector<AnsiString>{"Rate", "Name", "Price", "Id", "Day", "Ok"}));
    grid->ProcessColumnMove(0, 77);
    grid->ProcessColumnMove(1, 1);
    EXPECT_EQ(moved, (std::vector<AnsiString>{"0 to 2", "5 to 0"}));
    grid->SetOptions({dgTitles});
    grid->ProcessColumnMove(0, 1);
    grid->ProcessColumnResize(0, 99);
    EXPECT_EQ(Names()[0], "Rate") << "the form allows neither";
    EXPECT_NE(grid->ShownColumns()[0]->Width(), 99);
}

TEST_F(Grids, ArrowsHomeAndEndGoThroughColumns) {
    std::vector<AnsiString> heard;
    grid->OnColExit = [&](TObject*) { heard.push_back("exit " + std::to_string(grid->SelectedIndex())); };
    grid->OnColEnter = [&](TObject*) { heard.push_back("enter " + std::to_string(grid->SelectedIndex())); };
    Press(grid, VK_RIGHT);
    EXPECT_EQ(grid->SelectedField(), data->FieldByName("Name"));
    Press(grid, VK_LEFT);
    Press(grid, VK_LEFT);
    EXPECT_EQ(grid->SelectedIndex(), 0);
    EXPECT_EQ(heard, (std::vector<AnsiString>{"exit 0", "enter 1", "exit 1", "enter 0"}));
    Press(grid, VK_END);
    EXPECT_EQ(grid->SelectedIndex(), 5);
    Press(grid, VK_HOME);
    EXPECT_EQ(grid->SelectedIndex(), 0);
    EXPECT_TRUE(grid->WantsKey(VK_TAB, {}));
    EXPECT_FALSE(grid->WantsKey(VK_TAB, {ssShift})) << "there is none before: the form goes on";
    Press(grid, VK_TAB);
    EXPECT_EQ(grid->SelectedIndex(), 1);
    Press(grid, VK_TAB, {ssShift});
    EXPECT_EQ(grid->SelectedIndex(), 0);
}

TEST_F(Grids, PageKeysAndCtrlGoThroughRecords) {
    const int rows = grid->VisibleRows();
    Press(grid, VK_NEXT);
    EXPECT_EQ(data->CurrentRecord(), rows);
    EXPECT_EQ(grid->TopRecord(), 1);
    Press(grid, VK_PRIOR);
    EXPECT_EQ(data->CurrentRecord(), 0);
    Press(grid, VK_DOWN, {ssCtrl});
    EXPECT_EQ(data->CurrentRecord(), 39);
    EXPECT_EQ(grid->TopRecord(), 40 - rows);
    Press(grid, VK_UP, {ssCtrl});
    EXPECT_EQ(data->CurrentRecord(), 0);
    Press(grid, VK_END, {ssCtrl});
    EXPECT_EQ(data->CurrentRecord(), 39);
    Press(grid, VK_HOME, {ssCtrl});
    EXPECT_EQ(data->CurrentRecord(), 0);
    grid->SetOptions({dgRowSelect});
    Press(grid, VK_END);
    EXPECT_EQ(data->CurrentRecord(), 39);
    Press(grid, VK_HOME);
    EXPECT_EQ(data->CurrentRecord(), 0);
}

TEST_F(Grids, TheWheelScrollsWithoutGoingAnywhere) {
    grid->DoMouseWheel({}, -120, {});
    EXPECT_EQ(grid->TopRecord(), 3);
    EXPECT_EQ(data->CurrentRecord(), 0);
    grid->DoMouseWheel({}, 240, {});
    EXPECT_EQ(grid->TopRecord(), 0);
    grid->SetTopRecord(1000);
    EXPECT_EQ(grid->TopRecord(), 40 - grid->VisibleRows()) << "the last record stands last";
}

TEST_F(Grids, ColumnsAreStoredWithTheirTitlesAndLines) {
    TForm stored(nullptr);
    auto* kept = Put<TDBGrid>(&stored, 0, 0, 100, 100);
    kept->SetName("Kept");
    TColumn* column = kept->Columns()->Add();
    column->SetFieldName("Name");
    column->SetWidth(77);
    column->Title()->SetCaption("Title");
    column->PickList()->Add("one");
    column->ButtonStyle = cbsEllipsis;
    kept->TitleFont()->SetStyle({fsBold});
    const auto restored = Restored(Stored(stored));
    auto* read = ObjectCast<TDBGrid>(restored->FindComponent("Kept"));
    ASSERT_NE(read, nullptr);
    ASSERT_EQ(read->Columns()->Count(), 1);
    EXPECT_EQ(read->Columns()->Items(0)->FieldName(), "Name");
    EXPECT_EQ(read->Columns()->Items(0)->Width(), 77);
    EXPECT_EQ(read->Columns()->Items(0)->Title()->Caption(), "Title");
    EXPECT_EQ(read->Columns()->Items(0)->PickList()->Count(), 1);
    EXPECT_EQ(read->Columns()->Items(0)->ButtonStyle, cbsEllipsis);
    EXPECT_EQ(read->EffectiveTitleFont().Style(), (TFontStyles{fsBold}));
    EXPECT_EQ(Stored(*restored), Stored(stored));
}

TEST_F(Grids, HandlersDrawWithTheRecordsValues) {
    std::vector<AnsiString> heard;
    grid->OnDrawColumnCell = [&](TObject* sender, TRect rect, int dataCol, TColumn* column, TGridDrawState state) {
        EXPECT_EQ(sender, grid);
        heard.push_back(column->FieldName() + " " + std::to_string(dataCol) + " " + column->Field()->AsString() +
                        (state.Contains(gdSelected) ? " selected" : ""));
        grid->Canvas()->Font()->SetColor(clRed);
        grid->DefaultDrawColumnCell(rect, dataCol, column, state);
        grid->Canvas()->Pen()->SetColor(clBlue);
        grid->Canvas()->Pen()->SetWidth(2);
        grid->Canvas()->MoveTo(1, 2);
        grid->Canvas()->LineTo(3, 4);
    };
    EXPECT_TRUE(grid->DrawnByHandlers());
    grid->DrawCell(4, 1, Bounds(10, 20, 30, 40), {});
    EXPECT_EQ(heard, std::vector<AnsiString>{"Name 1 Name 5"});
    EXPECT_EQ(data->CurrentRecord(), 0);
    const auto& shapes = grid->Canvas()->Shapes();
    ASSERT_EQ(shapes.size(), 3u);
    EXPECT_EQ(shapes[0].What, TCanvas::Shape::Kind::Fill);
    EXPECT_EQ(shapes[0].Color, clWindow);
    EXPECT_EQ(shapes[0].Place, Bounds(10, 20, 30, 40));
    EXPECT_EQ(shapes[1].What, TCanvas::Shape::Kind::Text);
    EXPECT_EQ(shapes[1].Text, "Name 5");
    EXPECT_EQ(shapes[1].Color, clRed);
    EXPECT_EQ(shapes[2].What, TCanvas::Shape::Kind::Line);
    EXPECT_EQ(shapes[2].Place, (TRect{1, 2, 3, 4}));
    EXPECT_EQ(shapes[2].Width, 2);
    grid->DrawCell(0, 1, Bounds(0, 0, 10, 10), {gdSelected});
    EXPECT_EQ(heard.back(), "Name 1 Name 1 selected");
    EXPECT_EQ(grid->Canvas()->Shapes()[0].Color, clHighlight) << "it begins with the cell's own colours";
    EXPECT_EQ(grid->EffectiveFont().Color(), clWindowText) << "the grid's font stays";
}

TEST_F(Grids, TheOlderDrawingEventNamesTheField) {
    std::vector<AnsiString> heard;
    grid->OnDrawDataCell = [&](TObject*, TRect, TField* field, TGridDrawState) {
        heard.push_back(field ? field->FieldName() : AnsiString("none"));
    };
    grid->DrawCell(2, 5, {}, {});
    grid->DrawCell(2, 99, {}, {});
    data->Close();
    grid->DrawCell(0, 0, {}, {});
    EXPECT_EQ(heard, std::vector<AnsiString>{"Rate"});
}

TEST_F(Grids, AClearBrushAndPenDrawNothing) {
    TCanvas canvas;
    canvas.Brush()->SetStyle(TBrushStyle::bsClear);
    canvas.Pen()->SetStyle(TPenStyle::psClear);
    canvas.FillRect(Bounds(0, 0, 5, 5));
    canvas.LineTo(5, 5);
    EXPECT_TRUE(canvas.Shapes().empty());
    canvas.TextRect(Bounds(0, 0, 5, 5), "x", taCenter);
    ASSERT_EQ(canvas.Shapes().size(), 1u);
    EXPECT_EQ(canvas.Shapes()[0].Alignment, taCenter);
    canvas.Clear();
    EXPECT_TRUE(canvas.Shapes().empty());
}
