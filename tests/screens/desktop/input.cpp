#include "screens/input.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <map>

#include "display.h"
#include "platform/system/application.h"
#include "platform/system/clipboard.h"
#include "platform/text/windows1252.h"
#include "qt/application.h"
#include "screens/window_of.h"

namespace vyn::screens {

namespace {

constexpr int kLongestWait = 20000;  // milliseconds, before a window that does not come is an error

// Does something from outside, and lets everything that the server has made of it happen.
void Outside(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    RunProgram(words);
    QGuiApplication::sync();
    Settle();
}

void BringToFront(QWidget* widget) {
    QWidget* window = widget->window();
    window->activateWindow();
    if (!QTest::qWaitForWindowExposed(window, kLongestWait) || !QTest::qWaitForWindowActive(window, kLongestWait))
        throw Exception("the window did not come to the front");
    // The toolkit takes a modal window for the active one before the server gives it the keyboard.
    RunProgram({"xdotool", "windowfocus", "--sync", std::to_string(window->winId())});
}

// The keys of a Spanish keyboard for a character: letters with accents have dead keys before them.
void AddKeys(QChar character, std::vector<std::string>& keys) {
    static const std::map<ushort, const char*> dead = {
        {0x300, "dead_grave"}, {0x301, "dead_acute"}, {0x308, "dead_diaeresis"}};
    static const std::map<ushort, const char*> named = {{' ', "space"},     {'.', "period"},   {',', "comma"},
                                                        {'&', "ampersand"}, {'-', "minus"},    {'/', "slash"},
                                                        {0xF1, "ntilde"},   {0xE7, "ccedilla"}};
    const QString parts = character.decomposition();
    const auto accent = dead.find(parts.size() == 2 ? parts.at(1).unicode() : ushort{0});
    const auto name = named.find(character.unicode());
    if (name != named.end()) {
        keys.emplace_back(name->second);
    } else if (accent != dead.end()) {
        keys.emplace_back(accent->second);
        keys.emplace_back(1, parts.at(0).toLatin1());
    } else {
        keys.emplace_back(1, character.toLatin1());
    }
}

// The toolkit hears of a composed letter before the keys that still wait in its queue, so those are let through first;
// nobody types that fast.
void Press(TWinControl& control, const std::vector<std::string>& keys) {
    BringToFront(WidgetOf(control));
    if (control.CanFocus() && !control.Focused()) control.SetFocus();
    const std::vector<std::string> press = {"key", "--delay", "0"};
    std::vector<std::string> words = press;
    for (const std::string& key : keys) {
        if (key.starts_with("dead_") && words != press) {
            Outside(words);
            words = press;
        }
        words.push_back(key);
    }
    Outside(words);
}

std::vector<std::string> KeysOf(const AnsiString& text) {
    std::vector<std::string> keys;
    for (const QChar each : QString::fromStdString(AnsiToUtf8(text))) AddKeys(each, keys);
    return keys;
}

}  // namespace

void TypeInto(TCustomEdit& edit, const AnsiString& text) {
    std::vector<std::string> keys = KeysOf(text);
    if (text.empty()) keys.emplace_back("Delete");
    keys.insert(keys.begin(), "ctrl+a");
    Press(edit, keys);
}

void TypeOn(TCustomEdit& edit, const AnsiString& text) { Press(edit, KeysOf(text)); }

void PasteInto(TCustomEdit& edit, const AnsiString& text) {
    Clipboard()->SetAsText(text);
    Press(edit, {"ctrl+v"});
}

void PressKey(TWinControl& control, Key key) {
    static const std::map<Key, const char*> keys = {
        {Key::Backspace, "BackSpace"}, {Key::Tab, "Tab"}, {Key::Escape, "Escape"}, {Key::CtrlF2, "ctrl+F2"}};
    Press(control, {keys.at(key)});
}

void ChooseIn(TWinControl& box, const AnsiString& text) {
    std::vector<std::string> keys = KeysOf(text);
    keys.emplace_back("Return");
    Press(box, keys);
}

void ClickOn(TWinControl& button) {
    const auto [widget, place] = MiddleOf(button);
    BringToFront(widget);
    const QPoint at = widget->mapToGlobal(place);
    Outside({"mousemove", std::to_string(at.x()), std::to_string(at.y()), "click", "1"});
}

void PressDown(TWinControl& control) { Press(control, {"Down"}); }

void Settle() {
    for (int turn = 0; turn < 5; ++turn) Application()->ProcessMessages();
}

}  // namespace vyn::screens

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const vyn::screens::VirtualDisplay display;
    qputenv("QT_QPA_PLATFORM", "xcb");
    return vyn::qt::RunQtApplication(argc, argv, [] { return RUN_ALL_TESTS(); });
}
