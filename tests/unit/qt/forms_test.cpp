#include "qt/forms.h"

#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>

#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/menus.h"
#include "platform/controls/screen.h"
#include "platform/controls/scroll_boxes.h"
#include "platform/controls/timers.h"
#include "platform/system/threads.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

constexpr std::string_view kDialog = R"(object F: TForm
  BorderStyle = bsDialog
  Caption = 'Dialog'
  ClientWidth = 200
  ClientHeight = 100
  object ButtonOK: TButton
    Caption = 'OK'
    Default = True
    ModalResult = 1
  end
end
)";

constexpr std::string_view kMenuForm = R"(object F: TForm
  ClientWidth = 300
  ClientHeight = 200
  Menu = MainMenu1
  object Edit1: TEdit
    Width = 100
    Height = 21
  end
  object MainMenu1: TMainMenu
    object File1: TMenuItem
      Caption = '&File'
      object New1: TMenuItem
        Caption = '&New'
        ShortCut = 16462
      end
      object Line1: TMenuItem
        Caption = '-'
      end
      object Auto1: TMenuItem
        Caption = 'Auto'
        Checked = True
        RadioItem = True
      end
      object Gone1: TMenuItem
        Caption = 'Gone'
        Visible = False
      end
    end
  end
end
)";

QWidget* Window(const TCustomForm& form) { return qt::PeerOfControl(&form)->Widget(); }
qt::FormPeer* PeerOfForm(const TCustomForm& form) { return static_cast<qt::FormPeer*>(qt::PeerOfControl(&form)); }

}  // namespace

TEST(Forms, AFormMakesNoWindowUntilItIsShown) {
    const std::unique_ptr<TForm> form = FormFromText(kDialog);
    EXPECT_EQ(form->Peer(), nullptr);
    form->Show();
    Settle();
    ASSERT_NE(form->Peer(), nullptr);
    EXPECT_TRUE(Window(*form)->isVisible());
    EXPECT_EQ(Window(*form)->windowTitle(), QStringLiteral("Dialog"));
    EXPECT_EQ(Window(*form)->size(), QSize(200, 100));
    form->Hide();
    EXPECT_FALSE(Window(*form)->isVisible());
}

TEST(Forms, AModalResultEndsShowModal) {
    const std::unique_ptr<TForm> form = FormFromText(kDialog);
    bool modal = false;
    TThread::Queue([&] {
        modal = Window(*form)->isModal();
        Press(Find<TButton>(*form, "ButtonOK"), Qt::Key_Return);
    });
    EXPECT_EQ(form->ShowModal(), mrOk);
    EXPECT_TRUE(modal);
    EXPECT_FALSE(form->Visible());
    EXPECT_FALSE(Window(*form)->isVisible());
}

TEST(Forms, ClosingAModalWindowCancels) {
    const std::unique_ptr<TForm> form = FormFromText(kDialog);
    TThread::Queue([&] { Window(*form)->close(); });
    EXPECT_EQ(form->ShowModal(), mrCancel);
}

TEST(Forms, TheFormBelowIsActiveAgainAfterAModalOne) {
    const Shown below(kMenuForm);
    const std::unique_ptr<TForm> form = FormFromText(kDialog);
    TThread::Queue([&] { form->SetModalResult(mrOk); });
    form->ShowModal();
    Settle();
    EXPECT_EQ(Screen()->ActiveForm(), &*below);
    EXPECT_TRUE(WidgetOf(below.Get<TEdit>("Edit1"))->hasFocus());
}

TEST(Forms, OnCloseQueryKeepsTheWindow) {
    const Shown form(kDialog);
    form->OnCloseQuery = [](TObject*, bool& canClose) { canClose = false; };
    Window(*form)->close();
    EXPECT_TRUE(form->Visible());
    EXPECT_TRUE(Window(*form)->isVisible());
    form->OnCloseQuery.Clear();
    Window(*form)->close();
    EXPECT_FALSE(form->Visible());
    EXPECT_FALSE(Window(*form)->isVisible());
}

TEST(Forms, OnCloseMayFreeTheForm) {
    Shown shown(kDialog);
    QPointer<QWidget> window(Window(*shown));
    TForm* form = shown.Release();
    bool destroyed = false;
    form->OnClose = [](TObject*, TCloseAction& action) { action = caFree; };
    form->OnDestroy = [&](TObject*) { destroyed = true; };
    window->close();
    Settle();
    EXPECT_TRUE(destroyed);
    EXPECT_TRUE(window.isNull());
}

TEST(Forms, ResizingTheWindowResizesTheForm) {
    const Shown form(kMenuForm);
    int resized = 0;
    form->OnResize = [&](TObject*) { ++resized; };
    const int extra = PeerOfForm(*form)->MenuBarHeight();
    Window(*form)->resize(500, 300 + extra);
    Settle();
    EXPECT_EQ(form->ClientWidth(), 500);
    EXPECT_EQ(form->ClientHeight(), 300);
    EXPECT_GE(resized, 1);
}

TEST(Forms, BorderStylesAndIconsAreTheWindows) {
    const Shown form(kDialog);
    EXPECT_EQ(Window(*form)->minimumSize(), Window(*form)->maximumSize());
    EXPECT_FALSE(Window(*form)->windowFlags() & Qt::WindowMaximizeButtonHint);
    form->SetBorderStyle(bsSizeable);
    EXPECT_TRUE(Window(*form)->windowFlags() & Qt::WindowMaximizeButtonHint);
    EXPECT_NE(Window(*form)->minimumSize(), Window(*form)->maximumSize());
    EXPECT_TRUE(Window(*form)->isVisible());
    form->SetFormStyle(fsStayOnTop);
    EXPECT_TRUE(Window(*form)->windowFlags() & Qt::WindowStaysOnTopHint);
    form->SetWindowState(wsMaximized);
    EXPECT_TRUE(Window(*form)->isMaximized());
}

TEST(Forms, AMenuClickFiresOnClick) {
    const Shown form(kMenuForm);
    int clicks = 0, opened = 0;
    form.Get<TMenuItem>("New1").OnClick = [&](TObject*) { ++clicks; };
    form.Get<TMenuItem>("File1").OnClick = [&](TObject*) { ++opened; };
    QMenu* menu = PeerOfForm(*form)->MenuBar()->actions().at(0)->menu();
    ASSERT_NE(menu, nullptr);
    menu->popup(QPoint(10, 10));
    EXPECT_EQ(opened, 1);
    ASSERT_EQ(menu->actions().size(), 3);
    EXPECT_TRUE(menu->actions().at(1)->isSeparator());
    EXPECT_TRUE(menu->actions().at(2)->isChecked());
    EXPECT_EQ(menu->actions().at(0)->shortcut(), QKeySequence(QStringLiteral("Ctrl+N")));
    menu->actions().at(0)->trigger();
    menu->close();
    EXPECT_EQ(clicks, 1);
}

TEST(Forms, AMenuShowsTheStateOfTheMomentWhenItOpens) {
    const Shown form(kMenuForm);
    form.Get<TMenuItem>("File1").OnClick = [&](TObject*) { form.Get<TMenuItem>("New1").SetEnabled(false); };
    QMenu* menu = PeerOfForm(*form)->MenuBar()->actions().at(0)->menu();
    menu->popup(QPoint(10, 10));
    menu = PeerOfForm(*form)->MenuBar()->actions().at(0)->menu();
    EXPECT_FALSE(menu->actions().at(0)->isEnabled());
    menu->close();
}

TEST(Forms, AShortCutClicksItsItemOnce) {
    const Shown form(kMenuForm);
    int clicks = 0;
    form.Get<TMenuItem>("New1").OnClick = [&](TObject*) { ++clicks; };
    Press(form.Get<TEdit>("Edit1"), Qt::Key_N, Qt::ControlModifier);
    Settle();
    EXPECT_EQ(clicks, 1);
}

TEST(Forms, APopupMenuReturnsWhenItHasGone) {
    const Shown form(kDialog);
    TPopupMenu popup(nullptr);
    auto* item = new TMenuItem(&popup);
    item->SetCaption("Copy");
    popup.Items()->Add(item);
    int clicks = 0;
    item->OnClick = [&](TObject*) { ++clicks; };
    TThread::Queue([] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(menu->actions().at(0)).center());
    });
    popup.Popup(20, 20);
    EXPECT_EQ(clicks, 1);
}

TEST(Forms, ScrollBarsMoveTheControlsAndTheControlsTheBars) {
    const Shown form(R"(object F: TForm
  ClientWidth = 200
  ClientHeight = 100
  object Far1: TButton
    Left = 8
    Top = 300
  end
end
)");
    auto& far = form.Get<TButton>("Far1");
    const auto bars = Window(*form)->findChildren<QScrollBar*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(bars.size(), 1);
    EXPECT_TRUE(bars[0]->isVisible());
    bars[0]->setValue(50);
    EXPECT_EQ(form->VertScrollBar()->Position(), 50);
    EXPECT_EQ(far.Top(), 250);
    form->VertScrollBar()->SetPosition(10);
    EXPECT_EQ(bars[0]->value(), 10);
}

TEST(Forms, AControlMayFreeItselfInItsClick) {
    const Shown form(kDialog);
    auto& button = form.Get<TButton>("ButtonOK");
    QPointer<QWidget> widget(WidgetOf(button));
    button.OnClick = [&](TObject* sender) { delete static_cast<TButton*>(sender); };
    QTest::mouseClick(widget, Qt::LeftButton);
    Settle();
    EXPECT_TRUE(widget.isNull());
    EXPECT_EQ(form->FindComponent("ButtonOK"), nullptr);
}

TEST(Forms, AFormMayBeFreedInAControlsClick) {
    Shown shown(kDialog);
    QPointer<QWidget> window(Window(*shown));
    QWidget* button = WidgetOf(shown.Get<TButton>("ButtonOK"));
    shown.Get<TButton>("ButtonOK").OnClick = [](TObject* sender) {
        delete GetParentForm(static_cast<TButton*>(sender));
    };
    shown.Release();
    QTest::mouseClick(button, Qt::LeftButton);
    Settle();
    EXPECT_TRUE(window.isNull());
}

TEST(Forms, AnEditMayFreeItselfWhileItIsTypedInto) {
    const Shown form(kMenuForm);
    auto& edit = form.Get<TEdit>("Edit1");
    QPointer<QWidget> widget(WidgetOf(edit));
    edit.OnChange = [&](TObject* sender) { delete static_cast<TEdit*>(sender); };
    QTest::keyClick(widget, Qt::Key_A);
    Settle();
    EXPECT_TRUE(widget.isNull());
}

TEST(Forms, ErrorsOfHandlersGoToTheApplication) {
    const Shown form(kDialog);
    AnsiString message;
    Application()->OnException = [&](TObject*, const Exception& error) { message = error.Message(); };
    form.Get<TButton>("ButtonOK").OnClick = [](TObject*) { throw EInvalidOperation("refused"); };
    QTest::mouseClick(WidgetOf(form.Get<TButton>("ButtonOK")), Qt::LeftButton);
    Application()->OnException.Clear();
    EXPECT_EQ(message, "refused");
}

TEST(Forms, TimersAndPostedCallsRunInTheToolkitsLoop) {
    TTimer timer(nullptr);
    int ticks = 0;
    timer.SetOnTimer([&](TObject*) {
        if (++ticks == 2) Application()->Terminate();
    });
    timer.SetInterval(1);
    Application()->Run();
    Application()->Restart();
    EXPECT_EQ(ticks, 2);
}
