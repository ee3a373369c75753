// Control grids with real keys and the mouse, and the pictures of the records that are not selected.
#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QLineEdit>
#include <QScrollBar>

#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/db_ctrl_grid.h"
#include "qt_tests.h"
#include "unit/platform_data/memory_data_set.h"

using namespace vyn;

namespace {

constexpr std::string_view kPanelForm = R"(object F: TForm
  ClientWidth = 420
  ClientHeight = 320
  object Source: TDataSource
  end
  object Panels: TDBCtrlGrid
    Left = 10
    Top = 10
    Width = 396
    Height = 300
    ColCount = 2
    DataSource = Source
    PanelHeight = 100
    PanelWidth = 190
    RowCount = 3
    TabOrder = 0
    object Caption: TLabel
      Left = 10
      Top = 8
      Caption = 'Name'
    end
    object Name: TDBEdit
      Left = 10
      Top = 26
      Width = 120
      DataField = 'Name'
      TabOrder = 0
    end
    object Ok: TDBCheckBox
      Left = 10
      Top = 60
      Width = 90
      Height = 20
      Caption = 'Open'
      DataField = 'Ok'
      TabOrder = 1
    end
    object Number: TDBText
      Left = 140
      Top = 30
      Width = 30
      Height = 17
      DataField = 'Id'
    end
  end
end
)";

struct PanelForm : Shown {
    PanelForm() : Shown(kPanelForm), data(SomeRows()) {
        data.Open();
        Get<TDataSource>("Source").SetDataSet(&data);
        Settle();
    }
    ~PanelForm() { Get<TDataSource>("Source").SetDataSet(nullptr); }
    static std::vector<Record> SomeRows() {
        std::vector<Record> rows;
        const char* const names[] = {"Soler", "Puig", "Roig", "Vila", "Serra", "Ferrer", "Pons", "Mas", "Bosch"};
        for (int i = 0; i < 9; ++i) {
            rows.push_back(MemoryDataSet::Row(i + 1, names[i]));
            rows.back()[4] = Cell::Integer(i % 2);
        }
        return rows;
    }
    TDBCtrlGrid& Panels() const { return Get<TDBCtrlGrid>("Panels"); }
    TDBEdit& Name() const { return Get<TDBEdit>("Name"); }
    QAbstractScrollArea* Area() const { return static_cast<QAbstractScrollArea*>(Main(Panels())); }
    // A panel as it is seen, without its left edge, where the selected one has its mark.
    QImage Picture(int index) const {
        const TRect place = Panels().PanelRect(index);
        return Area()
            ->viewport()
            ->grab(QRect(place.Left + 5, place.Top, place.Width() - 7, place.Height() - 2))
            .toImage();
    }
    QPoint OnPanel(int index, const TControl& control) const {
        const TRect place = Panels().PanelRect(index);
        return {place.Left + control.Left() + 8, place.Top + control.Top() + control.Height() / 2};
    }
    MemoryDataSet data;
};

}  // namespace

TEST(ControlGrids, EachRecordIsShownWithTheControls) {
    PanelForm form;
    form.Panels().SetSelectedColor(form.Panels().Color());
    form.Panels().SetShowFocus(false);
    Settle();
    std::vector<QImage> pictures;
    for (int i = 0; i < 6; ++i) pictures.push_back(form.Picture(i));
    for (int i = 0; i < 6; ++i)
        for (int j = 0; j < i; ++j) EXPECT_NE(pictures[static_cast<size_t>(i)], pictures[static_cast<size_t>(j)]);
    // The picture of a record is what the controls themselves look like there.
    form.data.MoveBy(4);
    Settle();
    EXPECT_EQ(form.Picture(4), pictures[4]);
    EXPECT_EQ(form.Picture(0), pictures[0]);
}

TEST(ControlGrids, RealKeysGoThroughRecordsAndIntoControls) {
    PanelForm form;
    form.Panels().SetFocus();
    Settle();
    Press(form.Panels(), Qt::Key_Right);
    Press(form.Panels(), Qt::Key_Down);
    EXPECT_EQ(form.data.RecNo(), 4);
    Press(form.Panels(), Qt::Key_F2);
    EXPECT_TRUE(form.Name().Focused());
    auto* line = static_cast<QLineEdit*>(Main(form.Name()));
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Riera"));
    QTest::keyClick(line, Qt::Key_Tab);
    EXPECT_TRUE(form.Get<TDBCheckBox>("Ok").Focused());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(form.data.Written, std::vector<AnsiString>{"update Vila to Riera"});
    EXPECT_EQ(form.data.RecNo(), 5);
    EXPECT_TRUE(form.Name().Focused());
    QTest::keyClick(line, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(form.data.RecNo(), 3);
    QTest::keyClick(line, Qt::Key_F2);
    EXPECT_TRUE(form.Panels().Focused());
}

TEST(ControlGrids, AClickOnAnotherPanelIsItsControls) {
    PanelForm form;
    QTest::mouseClick(form.Area()->viewport(), Qt::LeftButton, {}, form.OnPanel(3, form.Name()));
    EXPECT_EQ(form.data.RecNo(), 4);
    EXPECT_TRUE(form.Name().Focused());
    EXPECT_EQ(static_cast<QLineEdit*>(Main(form.Name()))->text(), QStringLiteral("Vila"));
    auto& box = form.Get<TDBCheckBox>("Ok");
    EXPECT_FALSE(form.data.FieldByName("Ok")->IsNull());
    QTest::mouseClick(form.Area()->viewport(), Qt::LeftButton, {}, form.OnPanel(2, box));
    EXPECT_EQ(form.data.RecNo(), 3);
    EXPECT_EQ(form.data.State(), dsEdit);
    EXPECT_TRUE(box.Checked()) << "it was not, and was clicked";
    QTest::mouseClick(form.Area()->viewport(), Qt::LeftButton, {}, {form.Panels().PanelRect(5).Right - 4, 295});
    EXPECT_EQ(form.data.RecNo(), 6);
    EXPECT_TRUE(form.Panels().Focused());
}

TEST(ControlGrids, TheBarScrollsLinesOfPanels) {
    PanelForm form;
    QScrollBar* bar = form.Area()->verticalScrollBar();
    EXPECT_EQ(bar->maximum(), 2) << "five lines, of which three are shown";
    bar->setValue(2);
    Settle();
    EXPECT_EQ(form.Panels().TopRecord(), 4);
    EXPECT_EQ(form.data.RecNo(), 1);
    EXPECT_FALSE(Main(*form.Panels().Panel())->geometry().intersects(form.Area()->viewport()->rect()));
    const QImage before = form.Picture(0);
    bar->setValue(1);
    EXPECT_NE(form.Picture(0), before);
    EXPECT_EQ(form.Picture(2), before);
    form.data.Last();
    EXPECT_EQ(bar->value(), 2);
}

TEST(ControlGrids, WhatIsTypedIsSeenOnItsPanelWhenAnotherIsSelected) {
    PanelForm form;
    const QImage before = form.Picture(0);
    form.Name().SetFocus();
    auto* line = static_cast<QLineEdit*>(Main(form.Name()));
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Another"));
    form.data.Next();
    Settle();
    EXPECT_NE(form.Picture(0), before);
}

TEST(ControlGrids, AFrameShowsThatTheGridItselfHasTheKeyboard) {
    PanelForm form;
    form.Panels().SetFocus();
    Settle();
    const QImage framed = form.Picture(0);
    form.Panels().SetShowFocus(false);
    Settle();
    const QImage plain = form.Picture(0);
    EXPECT_NE(framed, plain);
    form.Panels().SetShowFocus(true);
    Settle();
    EXPECT_EQ(form.Picture(0), framed);
    form.Name().SetFocus();
    Settle();
    EXPECT_NE(form.Picture(0), framed);
}
