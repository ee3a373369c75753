#include "screens/input.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <map>
#include <utility>

#include "platform/system/application.h"
#include "platform/system/clipboard.h"
#include "platform/text/windows1252.h"
#include "qt/application.h"
#include "qt/typing.h"
#include "screens/window_of.h"

namespace vyn::screens {

namespace {

// As the window system says it: with the control character.
void PressControl(const TControl& control, Qt::Key key, char16_t character) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::ControlModifier, QString(QChar(character)));
    QCoreApplication::sendEvent(WidgetOf(control), &press);
}

}  // namespace

void TypeInto(TCustomEdit& edit, const AnsiString& text) { qt::TypeInto(edit, text); }
void TypeOn(TCustomEdit& edit, const AnsiString& text) { qt::TypeOn(edit, text); }

void PasteInto(TCustomEdit& edit, const AnsiString& text) {
    Clipboard()->SetAsText(text);
    PressControl(edit, Qt::Key_V, 22);
}

void PressKey(TWinControl& control, Key key) {
    static const std::map<Key, std::pair<Qt::Key, Qt::KeyboardModifiers>> keys = {
        {Key::Backspace, {Qt::Key_Backspace, Qt::NoModifier}},
        {Key::Tab, {Qt::Key_Tab, Qt::NoModifier}},
        {Key::Escape, {Qt::Key_Escape, Qt::NoModifier}},
        {Key::CtrlF2, {Qt::Key_F2, Qt::ControlModifier}}};
    QTest::keyClick(WidgetOf(control), keys.at(key).first, keys.at(key).second);
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
