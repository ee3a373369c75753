#include "screens/input.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include "platform/system/application.h"
#include "platform/text/windows1252.h"
#include "qt/application.h"
#include "screens/window_of.h"

namespace vyn::screens {

void TypeInto(TCustomEdit& edit, const AnsiString& text) {
    // Coming to it comes first: a field may be edited as another text than it is shown.
    if (edit.CanFocus()) edit.SetFocus();
    // As the window system says it: with the control character.
    QKeyEvent all(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier, QString(QChar(1)));
    QCoreApplication::sendEvent(WidgetOf(edit), &all);
    if (text.empty()) QTest::keyClick(WidgetOf(edit), Qt::Key_Delete);
    for (const QChar each : QString::fromStdString(AnsiToUtf8(text))) {
        const bool plain = each.isLetterOrNumber() && each.unicode() < 128;
        QKeyEvent press(QEvent::KeyPress, plain ? each.toUpper().unicode() : 0, Qt::NoModifier, QString(each));
        QCoreApplication::sendEvent(WidgetOf(edit), &press);
    }
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
