// Controls over a field, with real keys and the mouse.
#include <QCheckBox>
#include <QLineEdit>

#include "platform/controls/db_choices.h"
#include "platform/controls/db_controls.h"
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

}  // namespace

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
