#include "qt/typing.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>

#include "platform/controls/win_control.h"
#include "platform/text/exceptions.h"
#include "qt/text.h"
#include "qt/widget_peer.h"

namespace vyn::qt {

namespace typing_detail {

QWidget& TargetOf(const TControl& control) {
    WidgetPeer* peer = PeerOfControl(&control);
    QWidget* widget = peer ? peer->FocusTarget() : nullptr;
    if (!widget) throw EInvalidOperation("The control " + control.TComponent::Name() + " takes no keys");
    return *widget;
}

void Press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    const QPointer<QWidget> alive(&widget);
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QCoreApplication::sendEvent(&widget, &press);
    if (!alive) return;
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QCoreApplication::sendEvent(&widget, &release);
}

}  // namespace typing_detail

void TypeOn(TControl& control, const AnsiString& text) {
    constexpr char16_t kFirstBeyondAscii = 128;
    for (const QChar each : ToQt(text)) {
        const bool plain = each.isLetterOrNumber() && each.unicode() < kFirstBeyondAscii;
        typing_detail::Press(typing_detail::TargetOf(control), plain ? each.toUpper().unicode() : 0, Qt::NoModifier,
                             QString(each));
    }
}

void TypeInto(TControl& control, const AnsiString& text) {
    // Coming to it comes first: a field may be edited as another text than it is shown.
    auto* window = ObjectCast<TWinControl>(&control);
    if (window && window->CanFocus()) window->SetFocus();
    // As the window system says it: with the control character.
    constexpr char16_t kCtrlA = 1;
    typing_detail::Press(typing_detail::TargetOf(control), Qt::Key_A, Qt::ControlModifier, QString(QChar(kCtrlA)));
    if (text.empty()) typing_detail::Press(typing_detail::TargetOf(control), Qt::Key_Delete, Qt::NoModifier, {});
    TypeOn(control, text);
}

}  // namespace vyn::qt
