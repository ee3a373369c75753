#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QRadioButton>
#include <QTabBar>

#include "platform/controls/bit_buttons.h"
#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/groups.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/controls/pages.h"
#include "platform/controls/panels.h"
#include "platform/controls/scroll_boxes.h"
#include "platform/controls/tool_bars.h"
#include "platform/controls/tree_views.h"
#include "qt/factory.h"
#include "qt/looks.h"
#include "qt/tree_widget.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

constexpr std::string_view kForm = R"(object F: TForm
  ClientWidth = 500
  ClientHeight = 400
  ShowHint = True
  object Label1: TLabel
    Left = 300
    Top = 8
    Caption = '&Month:'
    FocusControl = List1
  end
  object Check1: TCheckBox
    Left = 8
    Top = 8
    Caption = 'Check'
    Hint = 'Sends it|Sends the invoice by post'
  end
  object Radio1: TRadioButton
    Left = 8
    Top = 30
    Caption = 'One'
  end
  object Radio2: TRadioButton
    Left = 8
    Top = 50
    Caption = 'Two'
  end
  object List1: TListBox
    Left = 300
    Top = 30
    Width = 100
    Height = 80
    Items.Strings = (
      'one'
      'two'
      'three')
  end
  object Combo1: TComboBox
    Left = 8
    Top = 80
    Items.Strings = (
      'red'
      'green'
      'blue')
  end
  object Group1: TRadioGroup
    Left = 8
    Top = 120
    Items.Strings = (
      'a'
      'b')
  end
  object Speed1: TSpeedButton
    Left = 200
    Top = 8
    GroupIndex = 1
    AllowAllUp = True
  end
  object Button1: TButton
    Left = 8
    Top = 300
    Caption = 'Push'
  end
end
)";

void ClickRow(QListView& list, int row) {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier,
                      list.visualRect(list.model()->index(row, 0)).center());
}

constexpr std::string_view kPages = R"(object F: TForm
  ClientWidth = 400
  ClientHeight = 300
  object Pages1: TPageControl
    Width = 400
    Height = 300
    ActivePage = Page1
    object Page1: TTabSheet
      Caption = 'One'
      object Edit1: TEdit
        Width = 100
      end
    end
    object Page2: TTabSheet
      Caption = 'Two'
      object Edit2: TEdit
        Width = 100
      end
    end
  end
end
)";

}  // namespace

TEST(Controls, ACheckBoxGoesBothWays) {
    const Shown form(kForm);
    auto& check = form.Get<TCheckBox>("Check1");
    auto* box = static_cast<QCheckBox*>(Main(check));
    int clicks = 0;
    check.OnClick = [&](TObject*) { ++clicks; };
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(6, box->height() / 2));
    EXPECT_TRUE(check.Checked());
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(clicks, 1);
    Press(check, Qt::Key_Space);
    EXPECT_FALSE(check.Checked());
    EXPECT_FALSE(box->isChecked());
    check.SetState(cbGrayed);
    EXPECT_EQ(box->checkState(), Qt::PartiallyChecked);
    check.SetChecked(true);
    EXPECT_EQ(box->checkState(), Qt::Checked);
}

TEST(Controls, AnOnClickThatTakesTheCheckBackWins) {
    const Shown form(kForm);
    auto& check = form.Get<TCheckBox>("Check1");
    auto* box = static_cast<QCheckBox*>(Main(check));
    check.OnClick = [&](TObject*) {
        if (check.Checked()) check.SetChecked(false);
    };
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(6, box->height() / 2));
    EXPECT_FALSE(check.Checked());
    EXPECT_FALSE(box->isChecked());
}

TEST(Controls, RadioButtonsExcludeEachOther) {
    const Shown form(kForm);
    auto& one = form.Get<TRadioButton>("Radio1");
    auto& two = form.Get<TRadioButton>("Radio2");
    one.SetChecked(true);
    EXPECT_TRUE(static_cast<QRadioButton*>(Main(one))->isChecked());
    QTest::mouseClick(Main(two), Qt::LeftButton, Qt::NoModifier, QPoint(6, Main(two)->height() / 2));
    EXPECT_TRUE(two.Checked());
    EXPECT_FALSE(one.Checked());
    EXPECT_FALSE(static_cast<QRadioButton*>(Main(one))->isChecked());
}

TEST(Controls, AListSelectsBothWays) {
    const Shown form(kForm);
    auto& list = form.Get<TListBox>("List1");
    auto* view = static_cast<QListView*>(Main(list));
    int clicks = 0;
    list.OnClick = [&](TObject*) { ++clicks; };
    ClickRow(*view, 1);
    EXPECT_EQ(list.ItemIndex(), 1);
    EXPECT_EQ(clicks, 1);
    Press(list, Qt::Key_Down);
    EXPECT_EQ(list.ItemIndex(), 2);
    EXPECT_EQ(clicks, 2);
    list.SetItemIndex(0);
    EXPECT_EQ(view->currentIndex().row(), 0);
    EXPECT_EQ(clicks, 2);
    list.Items()->Insert(0, "zero");
    EXPECT_EQ(view->model()->rowCount(), 4);
    EXPECT_EQ(view->model()->index(0, 0).data().toString(), QStringLiteral("zero"));
}

TEST(Controls, AListOfSeveralTellsAllThatIsSelected) {
    const Shown form(kForm);
    auto& list = form.Get<TListBox>("List1");
    list.SetMultiSelect(true);
    auto* view = static_cast<QListView*>(Main(list));
    ClickRow(*view, 0);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      view->visualRect(view->model()->index(2, 0)).center());
    EXPECT_TRUE(list.Selected(0));
    EXPECT_FALSE(list.Selected(1));
    EXPECT_TRUE(list.Selected(2));
    EXPECT_EQ(list.SelCount(), 2);
    list.SetSelected(1, true);
    EXPECT_EQ(view->selectionModel()->selectedRows().size(), 3);
}

TEST(Controls, AListIsLookedThroughByTyping) {
    const Shown form(kForm);
    auto& list = form.Get<TListBox>("List1");
    list.SetFocus();
    Type(list, QStringLiteral("t"));
    EXPECT_EQ(list.ItemIndex(), 1);
}

TEST(Controls, AComboBoxChoosesBothWays) {
    const Shown form(kForm);
    auto& combo = form.Get<TComboBox>("Combo1");
    auto* widget = static_cast<QComboBox*>(Main(combo));
    int clicks = 0, changes = 0;
    combo.OnClick = [&](TObject*) { ++clicks; };
    combo.OnChange = [&](TObject*) { ++changes; };
    Press(combo, Qt::Key_Down);
    EXPECT_EQ(combo.ItemIndex(), 0);
    EXPECT_EQ(combo.Text(), "red");
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(changes, 1);
    combo.SetItemIndex(2);
    EXPECT_EQ(widget->currentIndex(), 2);
    EXPECT_EQ(widget->currentText(), QStringLiteral("blue"));
    EXPECT_EQ(clicks, 1);
}

TEST(Controls, TypingIntoAComboBoxIsAnEditAndChoosesNoLine) {
    const Shown form(kForm);
    auto& combo = form.Get<TComboBox>("Combo1");
    int clicks = 0, changes = 0;
    combo.OnClick = [&](TObject*) { ++clicks; };
    combo.OnChange = [&](TObject*) { ++changes; };
    combo.SetFocus();
    Type(combo, QStringLiteral("red"));
    EXPECT_EQ(combo.Text(), "red");
    EXPECT_EQ(combo.ItemIndex(), -1);
    EXPECT_EQ(changes, 3);
    form.Get<TButton>("Button1").SetFocus();
    Settle();
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(changes, 3);
    EXPECT_EQ(combo.Text(), "red");
}

TEST(Controls, ADropDownListFiresOnDropDownBeforeItShows) {
    const Shown form(kForm);
    auto& combo = form.Get<TComboBox>("Combo1");
    combo.SetStyle(csDropDownList);
    combo.OnDropDown = [&](TObject*) { combo.Items()->Add("late"); };
    auto* widget = static_cast<QComboBox*>(Main(combo));
    widget->showPopup();
    EXPECT_TRUE(combo.DroppedDown());
    EXPECT_EQ(widget->model()->rowCount(), 4);
    widget->hidePopup();
    EXPECT_FALSE(combo.DroppedDown());
    Press(combo, Qt::Key_G);
    EXPECT_EQ(combo.Text(), "green");
}

TEST(Controls, ARadioGroupIsChosenByItsButtons) {
    const Shown form(kForm);
    auto& group = form.Get<TRadioGroup>("Group1");
    QWidget* second = Main(*group.Buttons(1));
    QTest::mouseClick(second, Qt::LeftButton, Qt::NoModifier, QPoint(6, second->height() / 2));
    EXPECT_EQ(group.ItemIndex(), 1);
    group.SetItemIndex(0);
    EXPECT_TRUE(static_cast<QRadioButton*>(Main(*group.Buttons(0)))->isChecked());
}

TEST(Controls, AButtonClicksOnceAPressAndTwiceOnTwoQuickOnes) {
    const Shown form(kForm);
    auto& button = form.Get<TButton>("Button1");
    std::string order;
    button.OnClick = [&](TObject*) { order += 'c'; };
    button.OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { order += 'd'; };
    button.OnMouseUp = [&](TObject*, TMouseButton, TShiftState, int, int) { order += 'u'; };
    QTest::mouseClick(Main(button), Qt::LeftButton);
    EXPECT_EQ(order, "dcu");
    // The toolkit's second press of two quick ones is an event of its own.
    QTest::mouseClick(Main(button), Qt::LeftButton);
    QTest::mouseDClick(Main(button), Qt::LeftButton);
    QTest::mouseRelease(Main(button), Qt::LeftButton);
    EXPECT_EQ(order, "dcudcudcu");
}

TEST(Controls, AssistiveTechnologyMayPressAButton) {
    const Shown form(kForm);
    auto& button = form.Get<TButton>("Button1");
    int clicks = 0;
    button.OnClick = [&](TObject*) { ++clicks; };
    static_cast<QAbstractButton*>(Main(button))->click();
    EXPECT_EQ(clicks, 1);
}

TEST(Controls, ASpeedButtonGoesDownInItsGroup) {
    const Shown form(kForm);
    auto& speed = form.Get<TSpeedButton>("Speed1");
    int clicks = 0;
    speed.OnClick = [&](TObject*) { ++clicks; };
    QTest::mouseClick(Main(speed), Qt::LeftButton);
    EXPECT_TRUE(speed.Down());
    EXPECT_EQ(clicks, 1);
}

TEST(Controls, StateReachesTheWidgets) {
    const Shown form(kForm);
    auto& check = form.Get<TCheckBox>("Check1");
    QWidget* widget = Main(check);
    check.SetEnabled(false);
    EXPECT_FALSE(widget->isEnabled());
    check.SetVisible(false);
    EXPECT_FALSE(widget->isVisible());
    check.SetVisible(true);
    EXPECT_TRUE(widget->isVisible());
    check.SetBounds(40, 41, 101, 22);
    EXPECT_EQ(widget->geometry(), QRect(40, 41, 101, 22));
    check.SetCursor(crHandPoint);
    EXPECT_EQ(widget->cursor().shape(), Qt::PointingHandCursor);
    check.SetCaption("Other");
    EXPECT_EQ(static_cast<QCheckBox*>(widget)->text(), QStringLiteral("Other"));
}

TEST(Controls, FontsAndColoursReachTheWidgetsAndGoBack) {
    const Shown form(kForm);
    auto& combo = form.Get<TComboBox>("Combo1");
    QWidget* widget = Main(combo);
    EXPECT_FALSE(widget->testAttribute(Qt::WA_SetPalette));
    EXPECT_FALSE(widget->testAttribute(Qt::WA_SetFont));
    combo.SetColor(clYellow);
    EXPECT_EQ(widget->palette().color(QPalette::Base), QColor(Qt::yellow));
    combo.SetColor(clWindow);
    EXPECT_EQ(widget->palette().color(QPalette::Base), QApplication::palette().color(QPalette::Base));
    combo.Font()->SetColor(clRed);
    combo.Font()->SetStyle({fsBold});
    EXPECT_EQ(widget->palette().color(QPalette::Text), QColor(Qt::red));
    EXPECT_TRUE(widget->font().bold());
    combo.SetParentFont(true);
    EXPECT_FALSE(widget->font().bold());
}

TEST(Controls, TextOnAFixedColourCanBeReadOnEveryDesktop) {
    const QPalette before = QApplication::palette();
    QPalette dark;
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Base, Qt::black);
    QApplication::setPalette(dark);
    {
        const Shown form(kForm);
        form.Get<TComboBox>("Combo1").SetColor(clCream);
        EXPECT_EQ(Main(form.Get<TComboBox>("Combo1"))->palette().color(QPalette::Text), QColor(Qt::black));
        form.Get<TListBox>("List1").SetColor(clNavy);
        EXPECT_EQ(Main(form.Get<TListBox>("List1"))->palette().color(QPalette::Text), QColor(Qt::white));
    }
    QApplication::setPalette(before);
}

TEST(Controls, TheFormsFontGoesDownToWhatHasNone) {
    const Shown form(kForm);
    form->Font()->SetHeight(-16);
    EXPECT_EQ(Main(form.Get<TCheckBox>("Check1"))->font().pixelSize(), 16);
}

TEST(Controls, NamesForAssistiveTechnology) {
    const Shown form(kForm);
    QAccessible::setActive(true);
    const auto nameOf = [&](const TControl& control, QAccessible::Text kind) {
        return QAccessible::queryAccessibleInterface(Main(control))->text(kind);
    };
    EXPECT_EQ(nameOf(form.Get<TListBox>("List1"), QAccessible::Name), QStringLiteral("Month"));
    EXPECT_EQ(nameOf(form.Get<TLabel>("Label1"), QAccessible::Name), QStringLiteral("Month:"));
    EXPECT_EQ(nameOf(form.Get<TCheckBox>("Check1"), QAccessible::Description), QStringLiteral("Sends it"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(Main(form.Get<TLabel>("Label1")))->role(), QAccessible::StaticText);
}

TEST(Controls, TheLongHintGoesToTheApplication) {
    const Shown form(kForm);
    QWidget* widget = Main(form.Get<TCheckBox>("Check1"));
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QCoreApplication::sendEvent(widget, &enter);
    EXPECT_EQ(Application()->Hint(), "Sends the invoice by post");
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(widget, &leave);
    EXPECT_EQ(Application()->Hint(), "");
}

TEST(Controls, AControlThatComesLateIsShownAndOneThatGoesIsNot) {
    const Shown form(kForm);
    auto* edit = new TEdit(&*form);
    edit->SetParent(&*form);
    ASSERT_NE(edit->Peer(), nullptr);
    QPointer<QWidget> widget(Main(*edit));
    EXPECT_TRUE(widget->isVisible());
    delete edit;
    EXPECT_TRUE(widget.isNull());
}

TEST(Controls, AClassOfOneselfTakesItsAncestorsPeer) {
    class TOwnEdit : public TEdit {
      public:
        using TEdit::TEdit;
        const ClassInfo& GetClassInfo() const override { return Own(); }
        static const ClassInfo& Own() {
            static const ClassInfo info("TOwnEdit", &TEdit::StaticClass(), nullptr, {}, {});
            return info;
        }
    };
    const Shown form(kForm);
    auto* edit = new TOwnEdit(&*form);
    edit->SetParent(&*form);
    EXPECT_NE(dynamic_cast<QLineEdit*>(Main(*edit)), nullptr);
}

TEST(Controls, ThePageChangesByItsTabAndMayRefuse) {
    const Shown form(kPages);
    auto& pages = form.Get<TPageControl>("Pages1");
    auto* bar = static_cast<QTabBar*>(WidgetOf(pages));
    int changes = 0;
    pages.OnChange = [&](TObject*) { ++changes; };
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(1).center());
    EXPECT_EQ(pages.ActivePage()->Name(), "Page2");
    EXPECT_TRUE(Main(form.Get<TEdit>("Edit2"))->isVisible());
    EXPECT_FALSE(Main(form.Get<TEdit>("Edit1"))->isVisible());
    EXPECT_EQ(changes, 1);
    pages.OnChanging = [](TObject*, bool& allow) { allow = false; };
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(0).center());
    EXPECT_EQ(pages.ActivePage()->Name(), "Page2");
    EXPECT_EQ(bar->currentIndex(), 1);
    pages.SetActivePage(&form.Get<TTabSheet>("Page1"));
    EXPECT_EQ(bar->currentIndex(), 0);
    EXPECT_EQ(changes, 1);
}

TEST(Controls, ArrowsGoFromTabToTab) {
    const Shown form(kPages);
    auto& pages = form.Get<TPageControl>("Pages1");
    pages.SetFocus();
    Press(pages, Qt::Key_Right);
    EXPECT_EQ(pages.ActivePage()->Name(), "Page2");
    EXPECT_TRUE(WidgetOf(pages)->hasFocus());
    Press(pages, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(pages.ActivePage()->Name(), "Page1");
}

TEST(Controls, TabsFollowThePages) {
    const Shown form(kPages);
    auto& pages = form.Get<TPageControl>("Pages1");
    auto* bar = static_cast<QTabBar*>(WidgetOf(pages));
    form.Get<TTabSheet>("Page1").SetTabVisible(false);
    EXPECT_EQ(bar->count(), 1);
    form.Get<TTabSheet>("Page2").SetCaption("New & old");
    EXPECT_EQ(bar->tabText(0), QStringLiteral("New  old"));
    auto* page = new TTabSheet(&*form);
    page->SetPageControl(&pages);
    page->SetCaption("Three");
    EXPECT_EQ(bar->count(), 2);
    delete page;
    EXPECT_EQ(bar->count(), 1);
}

TEST(Controls, ASplitterIsDragged) {
    const Shown form(R"(object F: TForm
  ClientWidth = 400
  ClientHeight = 300
  object Left1: TPanel
    Width = 100
    Align = alLeft
  end
  object Splitter1: TSplitter
    Left = 100
    Width = 5
  end
  object Rest1: TPanel
    Align = alClient
  end
end
)");
    auto& splitter = form.Get<TSplitter>("Splitter1");
    int moved = 0;
    splitter.OnMoved = [&](TObject*) { ++moved; };
    QWidget* widget = Main(splitter);
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, QPoint(2, 50));
    QMouseEvent move(QEvent::MouseMove, QPointF(52, 50), widget->mapToGlobal(QPointF(52, 50)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &move);
    QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, QPoint(52, 50));
    EXPECT_EQ(form.Get<TPanel>("Left1").Width(), 150);
    EXPECT_EQ(Main(form.Get<TPanel>("Rest1"))->x(), 155);
    EXPECT_EQ(moved, 1);
}

TEST(Controls, AToolButtonClicks) {
    const Shown form(R"(object F: TForm
  object Bar1: TToolBar
    Height = 29
    object Tool1: TToolButton
      Caption = 'One'
      Style = tbsCheck
    end
  end
end
)");
    auto& tool = form.Get<TToolButton>("Tool1");
    int clicks = 0;
    tool.OnClick = [&](TObject*) { ++clicks; };
    QTest::mouseClick(Main(tool), Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(tool.Down());
}

TEST(Trees, ExpandingAndSelectingFeedTheEvents) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    TTreeNode* root = tree.Items()->Add(nullptr, "root");
    root->SetHasChildren(true);
    auto* widget = static_cast<qt::TreeWidget*>(Main(tree));
    EXPECT_EQ(widget->RowCount(), 1);
    int expanding = 0;
    tree.OnExpanding = [&](TObject*, TTreeNode* node, bool&) {
        ++expanding;
        if (node->Count() == 0) tree.Items()->AddChild(node, "child");
    };
    TTreeNode* changed = nullptr;
    tree.OnChange = [&](TObject*, TTreeNode* node) { changed = node; };
    QTest::mouseClick(widget->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(8, 6));
    EXPECT_EQ(expanding, 1);
    EXPECT_EQ(widget->RowCount(), 2);
    QTest::mouseClick(widget->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 6));
    EXPECT_EQ(changed, root);
    Press(tree, Qt::Key_Down);
    EXPECT_EQ(tree.Selected(), root->GetFirstChild());
    Press(tree, Qt::Key_Left);
    EXPECT_EQ(tree.Selected(), root);
    tree.OnCollapsing = [](TObject*, TTreeNode*, bool& allow) { allow = false; };
    Press(tree, Qt::Key_Left);
    EXPECT_TRUE(root->Expanded());
}

TEST(Trees, ASelectionMayBeRefused) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    TTreeNode* one = tree.Items()->Add(nullptr, "one");
    tree.Items()->Add(nullptr, "two");
    tree.SetSelected(one);
    tree.OnChanging = [](TObject*, TTreeNode*, bool& allow) { allow = false; };
    Press(tree, Qt::Key_Down);
    EXPECT_EQ(tree.Selected(), one);
}

TEST(Trees, ANodeIsEditedInPlace) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    TTreeNode* node = tree.Items()->Add(nullptr, "old");
    tree.SetSelected(node);
    node->EditText();
    auto* editor = Main(tree)->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("new"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(node->Text(), "new");
    EXPECT_FALSE(tree.IsEditing());
    Press(tree, Qt::Key_F2);
    editor = static_cast<qt::TreeWidget*>(Main(tree))->viewport()->findChildren<QLineEdit*>().last();
    editor->setText(QStringLiteral("other"));
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_EQ(node->Text(), "new");
}

TEST(Trees, DeletingANodeInItsOwnEventIsSafe) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    tree.Items()->Add(nullptr, "one");
    tree.Items()->Add(nullptr, "two");
    tree.OnChange = [&](TObject*, TTreeNode* node) {
        if (node) node->Delete();
    };
    auto* widget = static_cast<qt::TreeWidget*>(Main(tree));
    QTest::mouseClick(widget->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(30, 6));
    Settle();
    EXPECT_EQ(widget->RowCount(), 1);
    EXPECT_EQ(widget->RowText(0), QStringLiteral("two"));
}

TEST(Trees, RowsAreThereForAssistiveTechnology) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    TTreeNode* root = tree.Items()->Add(nullptr, "root");
    tree.Items()->AddChild(root, "child");
    QAccessibleInterface* rows = QAccessible::queryAccessibleInterface(Main(tree));
    ASSERT_EQ(rows->childCount(), 1);
    EXPECT_EQ(rows->child(0)->text(QAccessible::Name), QStringLiteral("root"));
    EXPECT_TRUE(rows->child(0)->state().collapsed);
    root->Expand(false);
    EXPECT_EQ(rows->childCount(), 2);
}

TEST(Trees, ManyThousandNodesShowWhatIsInSight) {
    const Shown form("object F: TForm\n  object Tree1: TTreeView\n    Width = 200\n    Height = 200\n  end\nend\n");
    auto& tree = form.Get<TTreeView>("Tree1");
    constexpr int kMany = 20000;
    tree.Items()->BeginUpdate();
    for (int i = 0; i < kMany; ++i) tree.Items()->Add(nullptr, "node " + std::to_string(i));
    tree.Items()->EndUpdate();
    auto* widget = static_cast<qt::TreeWidget*>(Main(tree));
    EXPECT_EQ(widget->RowCount(), kMany);
    int drawn = 0;
    tree.OnGetImageIndex = [&](TObject*, TTreeNode*) { ++drawn; };
    widget->grab();
    EXPECT_GT(drawn, 5);
    EXPECT_LT(drawn, 20);  // the rows in sight, not the tree's
    tree.SetSelected(tree.Items()->Item(kMany - 1));
    EXPECT_FALSE(widget->RowRect(kMany - 1).isEmpty());
}

TEST(Looks, ClassicFontNamesAreTheDesktopsFont) {
    TFont font;
    for (const char* name : {"MS Sans Serif", "Tahoma", "MS Shell Dlg 2"}) {
        font.SetName(name);
        EXPECT_EQ(qt::ToQFont(font).family(), QApplication::font().family()) << name;
    }
    font.SetName("Courier New");
    EXPECT_EQ(qt::ToQFont(font).family(), QStringLiteral("Courier New"));
    font.SetHeight(-20);
    EXPECT_EQ(qt::ToQFont(font).pixelSize(), 20);
}

TEST(Looks, DesktopColoursComeFromThePalette) {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(1, 2, 3));
    EXPECT_EQ(qt::ToQColor(clBtnFace, palette), QColor(1, 2, 3));
    EXPECT_EQ(qt::ToQColor(clRed, palette), QColor(255, 0, 0));
    EXPECT_EQ(qt::ToQColor(clNavy, palette), QColor(0, 0, 128));
}
