// Controls over a field, with real keys and the mouse.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>

#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/db_navigators.h"
#include "qt_tests.h"
#include "unit/platform_data/memory_data_set.h"

using namespace vyn;

namespace {

constexpr std::string_view kDataForm = R"(object F: TForm
  ClientWidth = 420
  ClientHeight = 330
  object Source: TDataSource
  end
  object Bar: TDBNavigator
    Left = 10
    Top = 10
    Width = 250
    Height = 26
    DataSource = Source
    TabStop = True
    TabOrder = 0
  end
  object Name: TDBEdit
    Left = 10
    Top = 50
    Width = 160
    DataField = 'Name'
    DataSource = Source
    TabOrder = 1
  end
  object Rate: TDBEdit
    Left = 190
    Top = 50
    Width = 80
    DataField = 'Rate'
    DataSource = Source
    TabOrder = 2
  end
  object Choice: TDBComboBox
    Left = 10
    Top = 90
    Width = 160
    DataField = 'Name'
    DataSource = Source
    Items.Strings = (
      'Puig'
      'Roig')
    TabOrder = 3
  end
  object Ok: TDBCheckBox
    Left = 190
    Top = 92
    Width = 100
    Height = 20
    Caption = 'Open'
    DataField = 'Ok'
    DataSource = Source
    TabOrder = 4
  end
  object Id: TDBText
    Left = 290
    Top = 54
    Width = 60
    Height = 17
    DataField = 'Id'
    DataSource = Source
  end
  object Group: TDBRadioGroup
    Left = 10
    Top = 130
    Width = 160
    Height = 90
    Caption = 'Who'
    DataField = 'Name'
    DataSource = Source
    Items.Strings = (
      'Soler'
      'Puig'
      'Roig')
    TabOrder = 5
  end
  object Photo: TDBImage
    Left = 190
    Top = 136
    Width = 100
    Height = 84
    AutoDisplay = False
    DataField = 'Name'
    DataSource = Source
    TabOrder = 6
  end
  object Lines: TDBListBox
    Left = 300
    Top = 136
    Width = 100
    Height = 84
    DataField = 'Name'
    DataSource = Source
    Items.Strings = (
      'Puig'
      'Soler')
    TabOrder = 7
  end
  object Notes: TDBMemo
    Left = 10
    Top = 236
    Width = 390
    Height = 80
    DataField = 'Name'
    DataSource = Source
    TabOrder = 8
  end
end
)";

struct DataForm : Shown {
    DataForm() : Shown(kDataForm), data({MemoryDataSet::Row(1, "Soler", 0.5), MemoryDataSet::Row(2, "Puig", 2)}) {
        data.Open();
        Get<TDataSource>("Source").SetDataSet(&data);
        Settle();
    }
    ~DataForm() { Get<TDataSource>("Source").SetDataSet(nullptr); }
    MemoryDataSet data;
};

constexpr std::string_view kGridForm = R"(object F: TForm
  ClientWidth = 420
  ClientHeight = 180
  object Source: TDataSource
  end
  object Grid: TDBGrid
    Left = 10
    Top = 10
    Width = 400
    Height = 160
    DataSource = Source
    TabOrder = 0
    Columns = <
      item
        FieldName = 'Name'
        Width = 150
      end
      item
        FieldName = 'Rate'
        Width = 90
      end
      item
        FieldName = 'Ok'
        Width = 90
      end>
  end
end
)";

struct GridForm : Shown {
    GridForm()
        : Shown(kGridForm),
          data({MemoryDataSet::Row(1, "Soler", 3), MemoryDataSet::Row(2, "Puig", 1), MemoryDataSet::Row(3, "Roig")}) {
        data.Open();
        Get<TDataSource>("Source").SetDataSet(&data);
        Settle();
    }
    ~GridForm() { Get<TDataSource>("Source").SetDataSet(nullptr); }
    TDBGrid& Grid() const { return Get<TDBGrid>("Grid"); }
    QWidget* Cells() const { return qt::PeerOfControl(&Grid())->ClientWidget(); }
    QPoint Middle(int column, int64_t record) const {
        const TRect cell = Grid().CellRect(column, record);
        return {cell.Left + cell.Width() / 2, cell.Top + cell.Height() / 2};
    }
    MemoryDataSet data;
};

}  // namespace

TEST(DataControls, ACellIsEditedWithRealKeys) {
    GridForm form;
    TDBGrid& grid = form.Grid();
    grid.SetFocus();
    Settle();
    TypeText(QStringLiteral("Vila"));
    ASSERT_TRUE(grid.EditorMode());
    auto* line = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), QStringLiteral("Vila"));
    EXPECT_EQ(line->parentWidget(), form.Cells());
    const TRect cell = grid.CellRect(0, 0);
    EXPECT_EQ(line->geometry(), QRect(cell.Left, cell.Top, cell.Width(), cell.Height()));
    PressKey(Qt::Key_Down);
    EXPECT_EQ(form.data.Written, std::vector<AnsiString>{"update Soler to Vila"});
    EXPECT_FALSE(line->isVisible());
    EXPECT_TRUE(grid.Focused());
    TypeText(QStringLiteral("x"));
    PressKey(Qt::Key_Escape);
    PressKey(Qt::Key_Escape);
    PressKey(Qt::Key_Escape);
    EXPECT_EQ(form.data.State(), dsBrowse);
    EXPECT_EQ(form.data.FieldByName("Name")->AsString(), "Puig");
}

TEST(DataControls, ClicksChooseEditAndSort) {
    GridForm form;
    TDBGrid& grid = form.Grid();
    QTest::mouseClick(form.Cells(), Qt::LeftButton, {}, form.Middle(1, 1));
    EXPECT_EQ(form.data.RecNo(), 2);
    EXPECT_EQ(grid.SelectedIndex(), 1);
    EXPECT_FALSE(grid.EditorMode());
    QTest::mouseClick(form.Cells(), Qt::LeftButton, {}, form.Middle(1, 1));
    ASSERT_TRUE(grid.EditorMode());
    EXPECT_TRUE(qobject_cast<QLineEdit*>(QApplication::focusWidget()));
    const QImage unsorted = Main(grid)->grab().toImage();
    QTest::mouseClick(form.Cells(), Qt::LeftButton, {}, {form.Middle(0, 0).x(), 5});
    EXPECT_FALSE(grid.EditorMode());
    EXPECT_EQ(form.data.Sort(), "[Name]");
    EXPECT_NE(Main(grid)->grab().toImage(), unsorted);
}

TEST(DataControls, HandlersDrawCells) {
    GridForm form;
    TDBGrid& grid = form.Grid();
    const auto color = [&](int column, int64_t record) {
        const TRect cell = grid.CellRect(column, record);
        return form.Cells()->grab().toImage().pixelColor(cell.Left + 2, cell.Top + 2);
    };
    form.data.Last();  // what is looked at is not selected
    const QColor before = color(1, 0);
    const QImage plain = form.Cells()->grab().toImage();
    grid.OnDrawColumnCell = [&](TObject*, TRect rect, int dataCol, TColumn* column, TGridDrawState state) {
        if (form.data.FieldByName("Id")->AsInteger() != 1 || dataCol != 1) return;
        grid.Canvas()->Brush()->SetColor(clRed);
        grid.Canvas()->Font()->SetColor(clWhite);
        grid.DefaultDrawColumnCell(rect, dataCol, column, state);
    };
    EXPECT_EQ(color(1, 0), QColor(Qt::red));
    EXPECT_EQ(color(1, 1), before);
    EXPECT_EQ(color(0, 0), before);
    grid.DefaultDrawing = false;
    grid.OnDrawColumnCell = [&](TObject*, TRect rect, int dataCol, TColumn* column, TGridDrawState state) {
        if (dataCol == 0) grid.DefaultDrawColumnCell(rect, dataCol, column, state);
    };
    EXPECT_NE(form.Cells()->grab().toImage(), plain) << "the other columns are empty";
    grid.OnDrawColumnCell = [&](TObject*, TRect rect, int dataCol, TColumn* column, TGridDrawState state) {
        grid.DefaultDrawColumnCell(rect, dataCol, column, state);
    };
    EXPECT_EQ(color(1, 0), before);
    grid.OnDrawColumnCell = [&](TObject*, TRect, int, TColumn*, TGridDrawState) { form.data.Close(); };
    form.Cells()->grab();
    EXPECT_FALSE(form.data.Active()) << "a handler may do that";
}

TEST(DataControls, TheMouseSizesAndMovesColumns) {
    GridForm form;
    TDBGrid& grid = form.Grid();
    const int y = grid.TitleHeight() / 2;
    const TRect first = grid.CellRect(0, 0);
    QTest::mousePress(form.Cells(), Qt::LeftButton, {}, {first.Right, y});
    QTest::mouseMove(form.Cells(), {first.Right + 30, y});
    QMouseEvent move(QEvent::MouseMove, QPointF(first.Right + 30, y),
                     form.Cells()->mapToGlobal(QPointF(first.Right + 30, y)), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(form.Cells(), &move);
    QTest::mouseRelease(form.Cells(), Qt::LeftButton, {}, {first.Right + 30, y});
    EXPECT_EQ(grid.ShownColumns()[0]->Width(), 180);
    const QPoint from(form.Middle(0, 0).x(), y), to(form.Middle(1, 0).x(), y);
    QTest::mousePress(form.Cells(), Qt::LeftButton, {}, from);
    QMouseEvent drag(QEvent::MouseMove, QPointF(to), form.Cells()->mapToGlobal(QPointF(to)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(form.Cells(), &drag);
    QTest::mouseRelease(form.Cells(), Qt::LeftButton, {}, to);
    EXPECT_EQ(grid.ShownColumns()[0]->FieldName(), "Rate");
    EXPECT_EQ(form.data.Sort(), "") << "a title that is moved is not clicked";
}

TEST(DataControls, TrueAndFalseDropDownInTheirCell) {
    GridForm form;
    TDBGrid& grid = form.Grid();
    grid.SetFocus();
    grid.SetSelectedIndex(2);
    Settle();
    PressKey(Qt::Key_F2);
    Settle();
    ASSERT_TRUE(grid.EditorMode());
    auto* combo = static_cast<QComboBox*>(Main(*grid.InplaceEditor()));
    EXPECT_TRUE(combo->isVisible());
    EXPECT_EQ(combo->count(), 2);
    combo->setCurrentIndex(1);
    Q_EMIT combo->activated(1);
    PressKey(Qt::Key_Return);
    EXPECT_FALSE(grid.EditorMode());
    EXPECT_FALSE(form.data.FieldByName("Ok")->AsBoolean());
}

TEST(DataControls, RealKeysEditTheRecord) {
    DataForm form;
    auto& edit = form.Get<TDBEdit>("Name");
    auto* line = static_cast<QLineEdit*>(Main(edit));
    EXPECT_EQ(line->text(), QStringLiteral("Soler"));
    EXPECT_FALSE(line->isReadOnly());
    edit.SetFocus();
    Settle();
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Roig"));
    EXPECT_EQ(form.data.State(), dsEdit);
    EXPECT_EQ(line->text(), QStringLiteral("Roig"));
    QTest::keyClick(line, Qt::Key_Tab);
    EXPECT_EQ(form.data.FieldByName("Name")->AsString(), "Roig");
    EXPECT_EQ(static_cast<QCheckBox*>(Main(form.Get<TDBCheckBox>("Ok")))->checkState(), Qt::Checked);
    QTest::mouseClick(Main(*form.Get<TDBNavigator>("Bar").Buttons(nbPost)), Qt::LeftButton);
    EXPECT_EQ(form.data.Written, std::vector<AnsiString>{"update Soler to Roig"});
    form.data.Reason = "Not today";
    form.data.Next();
    Settle();
    EXPECT_TRUE(line->isReadOnly() || edit.ReadOnly());
}

TEST(DataControls, ARecordThatMayNotBeChangedIsNotPastedOver) {
    DataForm form;
    auto& edit = form.Get<TDBEdit>("Name");
    auto* line = static_cast<QLineEdit*>(Main(edit));
    form.Get<TDataSource>("Source").AutoEdit = false;
    line->selectAll();
    line->insert(QStringLiteral("pasted"));
    QTest::keyClicks(line, QStringLiteral("x"));
    EXPECT_EQ(form.data.State(), dsBrowse);
    EXPECT_EQ(edit.Text(), "Soler");
    EXPECT_EQ(line->text(), QStringLiteral("Soler"));
}

TEST(DataControls, AMaskIsTypedThroughTheWidget) {
    DataForm form;
    auto& edit = form.Get<TDBEdit>("Name");
    form.data.FieldByName("Name")->SetEditMask("00-00;0;_");
    form.data.Edit();
    form.data.FieldByName("Name")->Clear();
    auto* line = static_cast<QLineEdit*>(Main(edit));
    edit.SetFocus();
    Settle();
    line->setCursorPosition(0);
    QTest::keyClicks(line, QStringLiteral("12x3"));
    EXPECT_EQ(line->text(), QStringLiteral("12-3_"));
    QTest::keyClick(line, Qt::Key_Backspace);
    EXPECT_EQ(line->text(), QStringLiteral("12-__"));
    line->paste();
    EXPECT_EQ(edit.Text(), "12");
}

TEST(DataControls, TheNavigatorsButtonsAreDrawnAndNamed) {
    DataForm form;
    auto& bar = form.Get<TDBNavigator>("Bar");
    const QImage first = Main(*bar.Buttons(nbFirst))->grab().toImage();
    const QImage next = Main(*bar.Buttons(nbNext))->grab().toImage();
    EXPECT_NE(first, next);
    EXPECT_FALSE(Main(*bar.Buttons(nbFirst))->isEnabled());
    EXPECT_TRUE(Main(*bar.Buttons(nbNext))->isEnabled());
    EXPECT_EQ(qt::PeerOfControl(bar.Buttons(nbNext))->AccessibleName(), QStringLiteral("Next record"));
}
