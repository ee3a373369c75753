// Lookup controls with real keys and the mouse, and what assistive technology sees of them and of grids.
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QScrollBar>

#include "platform/controls/db_grids.h"
#include "platform/controls/db_lookups.h"
#include "platform/controls/labels.h"
#include "platform/controls/text_metrics.h"
#include "platform/data/field_classes.h"
#include "qt_tests.h"
#include "unit/platform_data/memory_data_set.h"

using namespace vyn;

namespace {

constexpr std::string_view kLookupForm = R"(object F: TForm
  ClientWidth = 420
  ClientHeight = 260
  object Source: TDataSource
  end
  object People: TDataSource
  end
  object Label: TLabel
    Left = 10
    Top = 8
    Caption = '&Person:'
    FocusControl = Combo
  end
  object Combo: TDBLookupComboBox
    Left = 10
    Top = 24
    Width = 180
    DataField = 'Id'
    DataSource = Source
    KeyField = 'Id'
    ListField = 'Name;Rate'
    ListSource = People
    TabOrder = 0
  end
  object List: TDBLookupListBox
    Left = 210
    Top = 24
    Width = 180
    Height = 110
    DataField = 'Id'
    DataSource = Source
    KeyField = 'Id'
    ListField = 'Name'
    ListSource = People
    TabOrder = 1
  end
end
)";

std::vector<Record> SomePeople() {
    std::vector<Record> rows;
    const char* const names[] = {"Soler", "Puig", "Roig", "Vila", "Serra", "Ferrer", "Pons", "Mas", "Bosch", "Font"};
    for (int i = 0; i < 10; ++i) rows.push_back(MemoryDataSet::Row(i + 1, names[i], i / 2.0));
    return rows;
}

struct LookupForm : Shown {
    LookupForm()
        : Shown(kLookupForm), data({MemoryDataSet::Row(2, "one"), MemoryDataSet::Row(9, "two")}), people(SomePeople()) {
        data.Open();
        people.Open();
        Get<TDataSource>("Source").SetDataSet(&data);
        Get<TDataSource>("People").SetDataSet(&people);
        Settle();
    }
    ~LookupForm() {
        Get<TDataSource>("Source").SetDataSet(nullptr);
        Get<TDataSource>("People").SetDataSet(nullptr);
    }
    TDBLookupComboBox& Combo() const { return Get<TDBLookupComboBox>("Combo"); }
    TDBLookupListBox& List() const { return Get<TDBLookupListBox>("List"); }
    QWidget* DropDown() const { return Main(*Combo().List()); }
    QWidget* Rows() const { return static_cast<QAbstractScrollArea*>(DropDown())->viewport(); }
    QPoint Middle(int row) const {
        const int height = Combo().List()->RowHeight();
        return {20, row * height + height / 2};
    }
    int64_t Id() const { return data.FieldByName("Id")->AsInteger(); }
    MemoryDataSet data;
    MemoryDataSet people;
};

}  // namespace

TEST(Lookups, RealKeysDropSearchAndTake) {
    LookupForm form;
    form.Combo().SetFocus();
    Settle();
    EXPECT_EQ(form.Combo().Text(), "Puig");
    Type(form.Combo(), QStringLiteral("fo"));
    ASSERT_TRUE(form.Combo().DroppedDown());
    EXPECT_TRUE(form.DropDown()->isVisible());
    EXPECT_EQ(form.Combo().List()->HighlightedRecord(), 9);
    QTest::keyClick(form.DropDown(), Qt::Key_Up);
    EXPECT_EQ(form.Combo().List()->HighlightedRecord(), 8) << "the toolkit gives keys to the open list";
    QTest::keyClick(form.DropDown(), Qt::Key_Return);
    EXPECT_FALSE(form.DropDown()->isVisible());
    EXPECT_EQ(form.Id(), 9);
    EXPECT_EQ(form.Combo().Text(), "Bosch");
    EXPECT_TRUE(form.Combo().Focused());
}

TEST(Lookups, TabInTheOpenListTakesAndGoesOn) {
    LookupForm form;
    form.Combo().SetFocus();
    Press(form.Combo(), Qt::Key_F4);
    QTest::keyClick(form.DropDown(), Qt::Key_Down);
    QTest::keyClick(form.DropDown(), Qt::Key_Tab);
    EXPECT_EQ(form.Id(), 3);
    EXPECT_TRUE(form.List().Focused());
}

TEST(Lookups, EscapeInTheOpenListLeavesTheValue) {
    LookupForm form;
    form.Combo().SetFocus();
    Press(form.Combo(), Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(form.Combo().DroppedDown());
    QTest::keyClick(form.DropDown(), Qt::Key_Down);
    QTest::keyClick(form.DropDown(), Qt::Key_Escape);
    EXPECT_FALSE(form.Combo().DroppedDown());
    EXPECT_EQ(form.Id(), 2);
}

TEST(Lookups, TheMouseOpensAndChooses) {
    LookupForm form;
    QTest::mouseClick(Main(form.Combo()), Qt::LeftButton);
    ASSERT_TRUE(form.Combo().DroppedDown());
    QTest::mouseMove(form.Rows(), form.Middle(3));
    EXPECT_EQ(form.Combo().List()->HighlightedRecord(), 3);
    QTest::mouseClick(form.Rows(), Qt::LeftButton, {}, form.Middle(4));
    EXPECT_FALSE(form.Combo().DroppedDown());
    EXPECT_EQ(form.Id(), 5);
}

TEST(Lookups, AClickOutsideCloses) {
    LookupForm form;
    QTest::mouseClick(Main(form.Combo()), Qt::LeftButton);
    ASSERT_TRUE(form.Combo().DroppedDown());
    // As the toolkit does it: an open popup hears of presses elsewhere.
    QTest::mousePress(form.DropDown(), Qt::LeftButton, {}, QPoint(-30, -60));
    EXPECT_FALSE(form.Combo().DroppedDown());
    EXPECT_EQ(form.Id(), 2);
    QTest::mouseClick(Main(form.Combo()), Qt::LeftButton);
    form.DropDown()->close();
    EXPECT_FALSE(form.Combo().DroppedDown()) << "the toolkit may close it too";
}

TEST(Lookups, TheListStandsBelowTheComboBoxOrAboveIt) {
    LookupForm form;
    form.Combo().DropDown();
    const QWidget* box = Main(form.Combo());
    EXPECT_EQ(form.DropDown()->geometry().top(), box->mapToGlobal(QPoint(0, box->height())).y());
    form.Combo().CloseUp(TDBLookupComboBox::Close::Leave);
    form->SetTop(CurrentTextMetrics().ScreenSize().cy - 90);
    Settle();
    form.Combo().DropDown();
    EXPECT_EQ(form.DropDown()->geometry().bottom() + 1, box->mapToGlobal(QPoint(0, 0)).y());
}

TEST(Lookups, TheListBoxIsChosenFromByKeysAndMouse) {
    LookupForm form;
    form.List().SetFocus();
    Settle();
    Press(form.List(), Qt::Key_Down);
    EXPECT_EQ(form.Id(), 3);
    EXPECT_EQ(form.Combo().Text(), "Roig") << "who shows the same field follows";
    Type(form.List(), QStringLiteral("m"));
    EXPECT_EQ(form.Id(), 8);
    EXPECT_GT(form.List().TopRecord(), 0);
    auto* area = static_cast<QAbstractScrollArea*>(Main(form.List()));
    EXPECT_EQ(area->verticalScrollBar()->value(), form.List().TopRecord());
    QTest::mouseClick(area->viewport(), Qt::LeftButton, {}, {20, form.List().RowHeight() / 2});
    EXPECT_EQ(form.Id(), form.List().TopRecord() + 1);
    Press(form.List(), Qt::Key_Escape);
    EXPECT_EQ(form.Id(), 2);
}

TEST(Lookups, TheHighlightedRowIsDrawn) {
    LookupForm form;
    const QImage before = Main(form.List())->grab().toImage();
    const QImage comboBefore = Main(form.Combo())->grab().toImage();
    form.data.Next();
    EXPECT_NE(Main(form.List())->grab().toImage(), before);
    EXPECT_NE(Main(form.Combo())->grab().toImage(), comboBefore);
}

TEST(Lookups, AGridIsCalledAsItsLabelOrWhatItsWindowIsCalledAfter) {
    const Shown form(R"(object F: TForm
  Caption = 'Orders'
  object Source: TDataSource
  end
  object Orders: TDBGrid
    DataSource = Source
  end
  object Panel: TPanel
    object Label: TLabel
      Caption = '&Lines:'
      FocusControl = Lines
    end
    object Lines: TDBGrid
      DataSource = Source
    end
  end
end
)");
    MemoryDataSet data(SomePeople());
    data.SetName("Query");
    form.Get<TDataSource>("Source").SetDataSet(&data);
    const auto nameOf = [&](const char* grid) {
        return qt::PeerOfControl(&form.Get<TDBGrid>(grid))->AccessibleName().toStdString();
    };
    EXPECT_EQ(nameOf("Lines"), "Lines");
    EXPECT_EQ(nameOf("Orders"), "Orders") << "the other one has a label";
    form.Get<TLabel>("Label").SetFocusControl(nullptr);
    EXPECT_EQ(nameOf("Orders"), "Query") << "which of the two would not be said";
    EXPECT_EQ(nameOf("Lines"), "Query");
    form->SetCaption("");
    form.Get<TLabel>("Label").SetFocusControl(&form.Get<TDBGrid>("Lines"));
    EXPECT_EQ(nameOf("Orders"), "Query") << "the window is called nothing";
    form.Get<TDataSource>("Source").SetDataSet(nullptr);
    EXPECT_EQ(nameOf("Orders"), "");
}

TEST(Lookups, WindowsThatOpenWhileSomebodyListensAreHeardToo) {
    QAccessible::setActive(true);
    {
        LookupForm form;
        QAccessibleInterface* combo = QAccessible::queryAccessibleInterface(Main(form.Combo()));
        ASSERT_NE(combo, nullptr);
        EXPECT_EQ(combo->text(QAccessible::Name), QStringLiteral("Person"));
        EXPECT_EQ(combo->text(QAccessible::Value), QStringLiteral("Puig"));
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(Main(form.List()));
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->role(), QAccessible::Table);
    }
    QAccessible::setActive(false);
}

TEST(Lookups, AssistiveTechnologyHearsNameValueAndCells) {
    LookupForm form;
    QAccessible::setActive(true);
    QAccessibleInterface* combo = QAccessible::queryAccessibleInterface(Main(form.Combo()));
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(combo->role(), QAccessible::ComboBox);
    EXPECT_EQ(combo->text(QAccessible::Name), QStringLiteral("Person"));
    EXPECT_EQ(combo->text(QAccessible::Value), QStringLiteral("Puig"));
    EXPECT_TRUE(combo->state().collapsed);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(Main(form.List()));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::Table);
    QAccessibleTableInterface* table = list->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->rowCount(), 10);
    EXPECT_EQ(table->columnCount(), 1);
    QAccessibleInterface* cell = table->cellAt(1, 0);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->text(QAccessible::Name), QStringLiteral("Puig"));
    EXPECT_TRUE(cell->state().selected);
    EXPECT_EQ(table->selectedRows(), QList<int>{1});
    EXPECT_EQ(list->child(1), cell);
    EXPECT_EQ(list->indexOfChild(cell), 1);
    EXPECT_EQ(list->childAt(cell->rect().center().x(), cell->rect().center().y()), cell);
    EXPECT_TRUE(table->cellAt(9, 0)->state().offscreen);
    EXPECT_EQ(table->cellAt(10, 0), nullptr);
    EXPECT_TRUE(table->selectRow(2));
    EXPECT_EQ(form.Id(), 3);
    form.people.Close();
    EXPECT_FALSE(cell->isValid());
    EXPECT_EQ(table->rowCount(), 0);
    QAccessible::setActive(false);
}

TEST(Lookups, AGridsCellDropsItsListToo) {
    LookupForm form;
    form.data.Close();
    const auto add = [&](const char* name, auto* field, TFieldKind kind) {
        field->SetFieldName(name);
        field->SetFieldKind(kind);
        field->SetDataSet(&form.data);
        return field;
    };
    add("Id", new TIntegerField(&*form), fkData);
    TField* who = add("Who", new TStringField(&*form), fkLookup);
    who->SetLookupDataSet(&form.people);
    who->KeyFields = who->LookupKeyFields = "Id";
    who->LookupResultField = "Name";
    auto* grid = new TDBGrid(&*form);
    grid->SetParent(&*form);
    grid->SetBounds(10, 150, 300, 100);
    grid->SetDataSource(&form.Get<TDataSource>("Source"));
    form.data.Open();
    grid->SetSelectedIndex(1);
    grid->SetFocus();
    Settle();
    PressKey(Qt::Key_F2);
    Settle();
    auto* box = ObjectCast<TDBLookupComboBox>(grid->InplaceEditor());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(QApplication::focusWidget(), Main(*box));
    const TRect cell = grid->CellRect(1, 0);
    EXPECT_EQ(Main(*box)->geometry().topLeft(), QPoint(cell.Left, cell.Top));
    Type(*box, QStringLiteral("se"));
    ASSERT_TRUE(box->DroppedDown());
    QTest::keyClick(Main(*box->List()), Qt::Key_Return);
    EXPECT_EQ(form.Id(), 5);
    PressKey(Qt::Key_Return);
    EXPECT_FALSE(grid->EditorMode());
    EXPECT_EQ(QApplication::focusWidget(), Main(*grid));
    form.data.Close();
}
