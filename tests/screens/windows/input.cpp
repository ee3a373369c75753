#include "screens/input.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include "platform/system/application.h"
#include "platform/system/clipboard.h"
#include "platform/text/windows1252.h"
#include "qt/application.h"
#include "screens/window_of.h"

namespace vyn::screens {

namespace {

// As the window system says it: with the control character.
void PressControl(const TControl& control, Qt::Key key, char16_t character) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier, QString(QChar(character)));
    QCoreApplication::sendEvent(WidgetOf(control), &press);
}

}  // namespace

void TypeInto(TCustomEdit& edit, const AnsiString& text) {
    // Coming to it comes first: a field may be edited as another text than it is shown.
    if (edit.CanFocus()) edit.SetFocus();
    PressControl(edit, Qt::Key_A, 1);
    if (text.empty()) QTest::keyClick(WidgetOf(edit), Qt::Key_Delete);
    TypeOn(edit, text);
}

void TypeOn(TCustomEdit& edit, const AnsiString& text) {
    for (const QChar each : QString::fromStdString(AnsiToUtf8(text))) {
        const bool plain = each.isLetterOrNumber() && each.unicode() < 128;
        QKeyEvent press(QEvent::KeyPress, plain ? each.toUpper().unicode() : 0, Qt::NoModifier, QString(each));
        QCoreApplication::sendEvent(WidgetOf(edit), &press);
    }
}

void PasteInto(TCustomEdit& edit, const AnsiString& text) {
    Clipboard()->SetAsText(text);
    PressControl(edit, Qt::Key_V, 22);
}

void PressKey(TWinControl& control, Key key) {
    QTest::keyClick(WidgetOf(control), key == Key::Backspace ? Qt::Key_Backspace
                                       : key == Key::Tab     ? Qt::Key_Tab
                                                             : Qt::Key_Escape);
}

void ChooseIn(TWinControl& box, const AnsiString& text) {
    // The list that drops at the first letter hands its keys to the box.
    for (const QChar each : QString::fromStdString(AnsiToUtf8(text))) {
        QKeyEvent press(QEvent::KeyPress, each.isSpace() ? Qt::Key_Space : 0, Qt::NoModifier, QString(each));
        QCoreApplication::sendEvent(WidgetOf(box), &press);
    }
    QTest::keyClick(WidgetOf(box), Qt::Key_Return);
}

void ClickOn(TWinControl& button) {
    const auto [widget, place] = MiddleOf(button);
    QTest::mouseClick(widget, Qt::LeftButton, {}, place);
}

void PressDown(TWinControl& control) { QTest::keyClick(WidgetOf(control), Qt::Key_Down); }

void Settle() {
    for (int turn = 0; turn < 5; ++turn) Application()->ProcessMessages();
}

}  // namespace vyn::screens

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    return vyn::qt::RunQtApplication(argc, argv, [] { return RUN_ALL_TESTS(); });
}
