#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QString>
#include <QTest>
#include <QWidget>
#include <memory>
#include <string>
#include <string_view>

#include "platform/controls/forms.h"
#include "platform/system/application.h"
#include "qt/widget_peer.h"

// What the tests of windows share.
namespace vyn {

// A form read from its text; every component of the form is found by name.
std::unique_ptr<TForm> FormFromText(std::string_view text);
std::string ReadTestFile(const std::string& name);

// Handles what waits until nothing more comes.
inline void Settle() {
    for (int turn = 0; turn < 5; ++turn) Application()->ProcessMessages();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

inline QWidget* WidgetOf(const TControl& control) {
    qt::WidgetPeer* peer = qt::PeerOfControl(&control);
    return peer ? peer->FocusTarget() : nullptr;
}

// The control's own widget; one that had none so far gets it.
inline QWidget* Main(const TControl& control) { return static_cast<QWidget*>(control.Peer()->NativeHandle()); }

template <class T>
T& Find(TComponent& form, std::string_view name) {
    auto* found = ObjectCast<T>(form.FindComponent(name));
    if (!found) throw EComponentError("No component of that name in the test's form");
    return *found;
}

// Types text as a keyboard would, accented letters too.
inline void Type(const TControl& control, const QString& text) {
    for (const QChar each : text) {
        if (!WidgetOf(control)) return;
        QKeyEvent press(QEvent::KeyPress,
                        each.isLetterOrNumber() && each.unicode() < 128 ? each.toUpper().unicode() : 0, Qt::NoModifier,
                        QString(each));
        QCoreApplication::sendEvent(WidgetOf(control), &press);
    }
}

inline void Press(const TControl& control, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(WidgetOf(control), key, modifiers);
}

// The same for whatever has the keyboard.
inline void TypeText(const QString& text) {
    for (const QChar each : text) QTest::keyClicks(QApplication::focusWidget(), each);
}
inline void PressKey(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

// A form that is shown for the length of a test.
class Shown {
  public:
    explicit Shown(std::string_view text) : form_(FormFromText(text)) {
        form_->Show();
        Settle();
    }
    explicit Shown(std::unique_ptr<TForm> form) : form_(std::move(form)) {
        form_->Show();
        Settle();
    }
    TForm* operator->() const { return form_.get(); }
    TForm& operator*() const { return *form_; }
    template <class T>
    T& Get(std::string_view name) const {
        return Find<T>(*form_, name);
    }
    TForm* Release() { return form_.release(); }

  private:
    std::unique_ptr<TForm> form_;
};

}  // namespace vyn
