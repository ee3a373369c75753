#include "qt/keys.h"

#include <QKeyEvent>
#include <QKeySequence>

#include "platform/controls/shortcuts.h"

namespace vyn::qt {

namespace key_detail {

struct NamedKey {
    int native;
    uint16_t key;
};

constexpr uint16_t kPause = 0x13;
constexpr uint16_t kCapsLock = 0x14;
constexpr uint16_t kNumLock = 0x90;
constexpr uint16_t kScrollLock = 0x91;
constexpr uint16_t kSnapshot = 0x2C;
constexpr uint16_t kSeparator = 0x6C;
constexpr uint16_t kDecimal = 0x6E;
constexpr uint16_t kPlus = 0xBB;
constexpr uint16_t kComma = 0xBC;
constexpr uint16_t kMinus = 0xBD;
constexpr uint16_t kPeriod = 0xBE;

constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Backspace, VK_BACK},  {Qt::Key_Tab, VK_TAB},
    {Qt::Key_Backtab, VK_TAB},     {Qt::Key_Return, VK_RETURN},
    {Qt::Key_Enter, VK_RETURN},    {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL}, {Qt::Key_Alt, VK_MENU},
    {Qt::Key_AltGr, VK_MENU},      {Qt::Key_Escape, VK_ESCAPE},
    {Qt::Key_Space, VK_SPACE},     {Qt::Key_PageUp, VK_PRIOR},
    {Qt::Key_PageDown, VK_NEXT},   {Qt::Key_End, VK_END},
    {Qt::Key_Home, VK_HOME},       {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},           {Qt::Key_Right, VK_RIGHT},
    {Qt::Key_Down, VK_DOWN},       {Qt::Key_Insert, VK_INSERT},
    {Qt::Key_Delete, VK_DELETE},   {Qt::Key_Menu, VK_APPS},
    {Qt::Key_Pause, kPause},       {Qt::Key_CapsLock, kCapsLock},
    {Qt::Key_NumLock, kNumLock},   {Qt::Key_ScrollLock, kScrollLock},
    {Qt::Key_Print, kSnapshot},    {Qt::Key_Plus, kPlus},
    {Qt::Key_Comma, kComma},       {Qt::Key_Minus, kMinus},
    {Qt::Key_Period, kPeriod},
};

constexpr NamedKey kKeypadKeys[] = {
    {Qt::Key_Asterisk, VK_MULTIPLY}, {Qt::Key_Plus, VK_ADD},      {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Slash, VK_DIVIDE},      {Qt::Key_Comma, kSeparator}, {Qt::Key_Period, kDecimal},
};

uint16_t Find(const NamedKey* begin, const NamedKey* end, int native) {
    for (const NamedKey* at = begin; at != end; ++at)
        if (at->native == native) return at->key;
    return 0;
}

int NativeKey(uint16_t key) {
    if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z')) return key;
    if (key >= VK_F1 && key <= VK_F24) return Qt::Key_F1 + (key - VK_F1);
    if (key >= VK_NUMPAD0 && key < VK_NUMPAD0 + 10) return Qt::Key_0 + (key - VK_NUMPAD0);
    for (const NamedKey& named : kKeypadKeys)
        if (named.key == key) return named.native;
    for (const NamedKey& named : kNamedKeys)
        if (named.key == key) return named.native;
    return 0;
}

}  // namespace key_detail

uint16_t ToVirtualKey(const QKeyEvent& event) {
    using namespace key_detail;
    const int native = event.key();
    if (event.modifiers() & Qt::KeypadModifier) {
        if (native >= Qt::Key_0 && native <= Qt::Key_9) return static_cast<uint16_t>(VK_NUMPAD0 + (native - Qt::Key_0));
        if (const uint16_t key = Find(std::begin(kKeypadKeys), std::end(kKeypadKeys), native)) return key;
    }
    if ((native >= Qt::Key_0 && native <= Qt::Key_9) || (native >= Qt::Key_A && native <= Qt::Key_Z))
        return static_cast<uint16_t>(native);
    if (native >= Qt::Key_F1 && native <= Qt::Key_F24) return static_cast<uint16_t>(VK_F1 + (native - Qt::Key_F1));
    return Find(std::begin(kNamedKeys), std::end(kNamedKeys), native);
}

TShiftState ToShiftState(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons) {
    TShiftState state;
    if (modifiers & Qt::ShiftModifier) state.Include(ssShift);
    if (modifiers & Qt::ControlModifier) state.Include(ssCtrl);
    if (modifiers & Qt::AltModifier) state.Include(ssAlt);
    if (buttons & Qt::LeftButton) state.Include(ssLeft);
    if (buttons & Qt::RightButton) state.Include(ssRight);
    if (buttons & Qt::MiddleButton) state.Include(ssMiddle);
    return state;
}

TMouseButton ToMouseButton(Qt::MouseButton button) {
    if (button == Qt::RightButton) return mbRight;
    if (button == Qt::MiddleButton) return mbMiddle;
    return mbLeft;
}

QKeySequence ToKeySequence(TShortCut shortCut) {
    uint16_t key = 0;
    TShiftState shift;
    ShortCutToKey(shortCut, key, shift);
    const int native = key_detail::NativeKey(key);
    if (native == 0) return {};
    Qt::KeyboardModifiers modifiers;
    if (shift.Contains(ssShift)) modifiers |= Qt::ShiftModifier;
    if (shift.Contains(ssCtrl)) modifiers |= Qt::ControlModifier;
    if (shift.Contains(ssAlt)) modifiers |= Qt::AltModifier;
    return QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(native)));
}

}  // namespace vyn::qt
