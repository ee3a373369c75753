#include <QLineEdit>

#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/labels.h"
#include "platform/controls/menus.h"
#include "platform/controls/screen.h"
#include "qt_tests.h"

using namespace vyn;

namespace {

constexpr std::string_view kEntryForm = R"(object F: TForm
  ClientWidth = 400
  ClientHeight = 300
  object LabelCity: TLabel
    Left = 8
    Top = 44
    Caption = '&City'
    FocusControl = EditCity
  end
  object EditName: TEdit
    Left = 80
    Top = 8
    Width = 120
    Height = 21
    TabOrder = 0
  end
  object EditCity: TEdit
    Left = 80
    Top = 40
    Width = 120
    Height = 21
    TabOrder = 2
  end
  object EditLast: TEdit
    Left = 80
    Top = 70
    Width = 120
    Height = 21
    TabOrder = 1
  end
  object ButtonOK: TButton
    Left = 8
    Top = 200
    Caption = '&Accept'
    Default = True
    ModalResult = 1
    TabOrder = 3
  end
  object ButtonCancel: TButton
    Left = 100
    Top = 200
    Caption = 'Cancel'
    Cancel = True
    ModalResult = 2
    TabOrder = 4
  end
end
)";

int Count(TNotifyEvent& event, const std::shared_ptr<int>& counter) {
    event = [counter](TObject*) { ++*counter; };
    return 0;
}

struct Clicks {
    explicit Clicks(TNotifyEvent& event) : count(std::make_shared<int>(0)) { Count(event, count); }
    int operator*() const { return *count; }
    std::shared_ptr<int> count;
};

}  // namespace

TEST(Keyboard, TypingReachesTheTextAndOnChange) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    const Clicks changes(edit.OnChange);
    Type(edit, QStringLiteral("abc"));
    EXPECT_EQ(edit.Text(), "abc");
    EXPECT_EQ(*changes, 3);
    EXPECT_EQ(edit.SelStart(), 3);
    EXPECT_TRUE(edit.Modified());
}

TEST(Keyboard, AccentedLettersAndWhatTheCodePageLacks) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    Type(edit, QStringLiteral("ñé€"));
    EXPECT_EQ(edit.Text(), "ñé€"_w);
    Type(edit, QString(QChar(0x4E2D)));
    EXPECT_EQ(edit.Text(), "ñé€?"_w);
    EXPECT_EQ(static_cast<QLineEdit*>(WidgetOf(edit))->text(), QStringLiteral("ñé€?"));
}

TEST(Keyboard, ComposedTextIsOfferedToo) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    std::string keys;
    edit.OnKeyPress = [&](TObject*, char& key) { keys += key; };
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("à"));
    QCoreApplication::sendEvent(WidgetOf(edit), &event);
    EXPECT_EQ(keys, "à"_w);
    EXPECT_EQ(edit.Text(), "à"_w);
}

TEST(Keyboard, OnKeyPressChangesAndRefusesCharacters) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    edit.OnKeyPress = [](TObject*, char& key) {
        if (key == 'x') key = 0;
        if (key == '.') key = ',';
    };
    Type(edit, QStringLiteral("1x.5"));
    EXPECT_EQ(edit.Text(), "1,5");
}

TEST(Keyboard, OnKeyDownSeesKeysWithModifiersAndRefusesThem) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    edit.SetText("abc");
    edit.SelectAll();
    uint16_t seen = 0;
    edit.OnKeyDown = [&](TObject*, uint16_t& key, TShiftState shift) {
        if (!shift.Contains(ssCtrl)) return;
        seen = key;
        key = 0;
    };
    Press(edit, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(seen, 'X');
    EXPECT_EQ(edit.Text(), "abc");
}

TEST(Keyboard, DeletingIsTheWidgets) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    Type(edit, QStringLiteral("abc"));
    Press(edit, Qt::Key_Backspace);
    EXPECT_EQ(edit.Text(), "ab");
    Press(edit, Qt::Key_Home);
    EXPECT_EQ(edit.SelStart(), 0);
    Press(edit, Qt::Key_Delete);
    EXPECT_EQ(edit.Text(), "b");
}

TEST(Keyboard, UpperCaseAndLengthHold) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    edit.SetCharCase(ecUpperCase);
    edit.SetMaxLength(3);
    Type(edit, QStringLiteral("abcd"));
    EXPECT_EQ(edit.Text(), "ABC");
    EXPECT_EQ(static_cast<QLineEdit*>(WidgetOf(edit))->text(), QStringLiteral("ABC"));
    EXPECT_EQ(edit.SelStart(), 3);
}

TEST(Keyboard, TabGoesThroughTheTabOrderBothWays) {
    const Shown form(kEntryForm);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditName");
    Press(*form->ActiveControl(), Qt::Key_Tab);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditLast");
    EXPECT_TRUE(WidgetOf(form.Get<TEdit>("EditLast"))->hasFocus());
    Press(*form->ActiveControl(), Qt::Key_Tab);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditCity");
    Press(*form->ActiveControl(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditLast");
}

TEST(Keyboard, EnteringAndLeavingFireOnce) {
    const Shown form(kEntryForm);
    const Clicks exits(form.Get<TEdit>("EditName").OnExit);
    const Clicks enters(form.Get<TEdit>("EditLast").OnEnter);
    Press(*form->ActiveControl(), Qt::Key_Tab);
    Settle();
    EXPECT_EQ(*exits, 1);
    EXPECT_EQ(*enters, 1);
}

TEST(Keyboard, AClickGivesTheKeyboard) {
    const Shown form(kEntryForm);
    const Clicks enters(form.Get<TEdit>("EditCity").OnEnter);
    QTest::mouseClick(WidgetOf(form.Get<TEdit>("EditCity")), Qt::LeftButton);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditCity");
    EXPECT_EQ(Screen()->ActiveControl()->Name(), "EditCity");
    EXPECT_EQ(*enters, 1);
}

TEST(Keyboard, EnterPressesTheDefaultButtonAndEscapeTheCancelOne) {
    const Shown form(kEntryForm);
    const Clicks accepted(form.Get<TButton>("ButtonOK").OnClick);
    const Clicks cancelled(form.Get<TButton>("ButtonCancel").OnClick);
    Press(*form->ActiveControl(), Qt::Key_Return);
    EXPECT_EQ(*accepted, 1);
    Press(*form->ActiveControl(), Qt::Key_Escape);
    EXPECT_EQ(*cancelled, 1);
    EXPECT_EQ(*accepted, 1);
}

TEST(Keyboard, AButtonWithTheKeyboardTakesEnterAndSpace) {
    const Shown form(kEntryForm);
    auto& cancel = form.Get<TButton>("ButtonCancel");
    cancel.SetFocus();
    const Clicks accepted(form.Get<TButton>("ButtonOK").OnClick);
    const Clicks cancelled(cancel.OnClick);
    Press(cancel, Qt::Key_Return);
    Press(cancel, Qt::Key_Space);
    EXPECT_EQ(*cancelled, 2);
    EXPECT_EQ(*accepted, 0);
}

TEST(Keyboard, AMnemonicOfALabelLeadsToItsControl) {
    const Shown form(kEntryForm);
    Press(*form->ActiveControl(), Qt::Key_C, Qt::AltModifier);
    EXPECT_EQ(form->ActiveControl()->Name(), "EditCity");
}

TEST(Keyboard, AMnemonicOfAButtonClicksOnce) {
    const Shown form(kEntryForm);
    const Clicks accepted(form.Get<TButton>("ButtonOK").OnClick);
    Press(*form->ActiveControl(), Qt::Key_A, Qt::AltModifier);
    Settle();
    EXPECT_EQ(*accepted, 1);
}

TEST(Keyboard, KeyPreviewSeesKeysFirst) {
    const Shown form(kEntryForm);
    form->KeyPreview = true;
    std::string seen;
    form->OnKeyPress = [&](TObject*, char& key) {
        seen += key;
        if (key == 'b') key = 0;
    };
    Type(*form->ActiveControl(), QStringLiteral("abc"));
    EXPECT_EQ(seen, "abc");
    EXPECT_EQ(form.Get<TEdit>("EditName").Text(), "ac");
}

TEST(Keyboard, AShortCutOfTheFormKeepsItsKey) {
    const Shown form(kEntryForm);
    uint16_t seen = 0;
    form->OnShortCut = [&](uint16_t key, TShiftState, bool& handled) {
        seen = key;
        handled = key == VK_F2;
    };
    Press(*form->ActiveControl(), Qt::Key_F2);
    EXPECT_EQ(seen, VK_F2);
}

TEST(Keyboard, TextAndSelectionOfTheProgramReachTheWidget) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    const Clicks changes(edit.OnChange);
    edit.SetText("hello");
    EXPECT_EQ(*changes, 1);
    edit.SetSelStart(1);
    edit.SetSelLength(3);
    auto* widget = static_cast<QLineEdit*>(WidgetOf(edit));
    EXPECT_EQ(widget->selectedText(), QStringLiteral("ell"));
    edit.SetReadOnly(true);
    EXPECT_TRUE(widget->isReadOnly());
    Type(edit, QStringLiteral("x"));
    EXPECT_EQ(edit.Text(), "hello");
}

TEST(Keyboard, ATextThatItsOwnOnChangeReplacesStays) {
    const Shown form(kEntryForm);
    auto& edit = form.Get<TEdit>("EditName");
    edit.OnChange = [&](TObject*) {
        if (edit.Text() == "ab") edit.SetText("replaced");
    };
    Type(edit, QStringLiteral("ab"));
    EXPECT_EQ(edit.Text(), "replaced");
    EXPECT_EQ(static_cast<QLineEdit*>(WidgetOf(edit))->text(), QStringLiteral("replaced"));
}

TEST(Keyboard, AMemoEditsLines) {
    const Shown form(R"(object F: TForm
  object Memo1: TMemo
    Lines.Strings = (
      'one')
  end
end
)");
    auto& memo = form.Get<TMemo>("Memo1");
    memo.SetSelStart(static_cast<int>(memo.Text().size()));
    Press(memo, Qt::Key_End, Qt::ControlModifier);
    Type(memo, QStringLiteral("\r"));
    Type(memo, QStringLiteral("two"));
    EXPECT_EQ(memo.Lines()->Count(), 2);
    EXPECT_EQ(memo.Lines()->Get(memo.Lines()->Count() - 1), "two");
    EXPECT_EQ(memo.CaretPos().x, 3);
}
