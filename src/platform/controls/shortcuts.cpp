#include "platform/controls/shortcuts.h"

#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace shortcut_detail {

struct NamedKey {
    uint16_t key;
    const char* name;
};

constexpr NamedKey kNamedKeys[] = {
    {VK_BACK, "BkSp"},      {VK_TAB, "Tab"},     {VK_ESCAPE, "Esc"},     {VK_RETURN, "Enter"}, {VK_SPACE, "Space"},
    {VK_PRIOR, "PgUp"},     {VK_NEXT, "PgDn"},   {VK_END, "End"},        {VK_HOME, "Home"},    {VK_LEFT, "Left"},
    {VK_UP, "Up"},          {VK_RIGHT, "Right"}, {VK_DOWN, "Down"},      {VK_INSERT, "Ins"},   {VK_DELETE, "Del"},
    {VK_MULTIPLY, "Num *"}, {VK_ADD, "Num +"},   {VK_SUBTRACT, "Num -"}, {VK_DIVIDE, "Num /"},
};

constexpr const char kShiftText[] = "Shift+";
constexpr const char kCtrlText[] = "Ctrl+";
constexpr const char kAltText[] = "Alt+";

AnsiString KeyName(uint16_t key) {
    for (const NamedKey& named : kNamedKeys)
        if (named.key == key) return named.name;
    if (key >= VK_F1 && key <= VK_F24) return "F" + IntToStr(key - VK_F1 + 1);
    if (key >= VK_NUMPAD0 && key < VK_NUMPAD0 + 10) return "Num " + IntToStr(key - VK_NUMPAD0);
    if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z')) return AnsiString(1, static_cast<char>(key));
    return {};
}

constexpr TShortCut kKeyMask = 0xFF;
constexpr uint16_t kLastKey = 0xFF;

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (text.size() <= prefix.size() || !SameText(text.substr(0, prefix.size()), prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

}  // namespace shortcut_detail

TShortCut ShortCut(uint16_t key, TShiftState shift) {
    if (key == 0 || key > shortcut_detail::kLastKey) return scNone;
    TShortCut shortCut = key;
    if (shift.Contains(ssShift)) shortCut |= scShift;
    if (shift.Contains(ssCtrl)) shortCut |= scCtrl;
    if (shift.Contains(ssAlt)) shortCut |= scAlt;
    return shortCut;
}

void ShortCutToKey(TShortCut shortCut, uint16_t& key, TShiftState& shift) {
    key = static_cast<uint16_t>(shortCut & shortcut_detail::kKeyMask);
    shift = {};
    if (shortCut & scShift) shift.Include(ssShift);
    if (shortCut & scCtrl) shift.Include(ssCtrl);
    if (shortCut & scAlt) shift.Include(ssAlt);
}

AnsiString ShortCutToText(TShortCut shortCut) {
    const AnsiString name = shortcut_detail::KeyName(static_cast<uint16_t>(shortCut & shortcut_detail::kKeyMask));
    if (name.empty()) return {};
    AnsiString text;
    if (shortCut & scShift) text += shortcut_detail::kShiftText;
    if (shortCut & scCtrl) text += shortcut_detail::kCtrlText;
    if (shortCut & scAlt) text += shortcut_detail::kAltText;
    return text + name;
}

TShortCut TextToShortCut(const AnsiString& text) {
    std::string_view rest = text;
    TShortCut modifiers = 0;
    for (;;) {
        if (shortcut_detail::TakePrefix(rest, shortcut_detail::kShiftText))
            modifiers |= scShift;
        else if (shortcut_detail::TakePrefix(rest, shortcut_detail::kCtrlText))
            modifiers |= scCtrl;
        else if (shortcut_detail::TakePrefix(rest, shortcut_detail::kAltText))
            modifiers |= scAlt;
        else if (shortcut_detail::TakePrefix(rest, "^"))
            modifiers |= scCtrl;
        else
            break;
    }
    if (rest.empty()) return scNone;
    for (uint16_t key = 1; key <= shortcut_detail::kLastKey; ++key) {
        const AnsiString name = shortcut_detail::KeyName(key);
        if (!name.empty() && SameText(name, rest)) return modifiers | key;
    }
    return scNone;
}

char MnemonicOf(const AnsiString& caption) {
    for (size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != '&') continue;
        if (caption[i + 1] != '&') return AnsiUpperChar(caption[i + 1]);
        ++i;
    }
    return 0;
}

bool IsAccel(uint16_t key, const AnsiString& caption) {
    const char mnemonic = MnemonicOf(caption);
    return mnemonic != 0 && key <= shortcut_detail::kLastKey && mnemonic == AnsiUpperChar(static_cast<char>(key));
}

AnsiString StripHotkey(const AnsiString& caption) {
    AnsiString stripped;
    stripped.reserve(caption.size());
    for (size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&') {
            if (i + 1 < caption.size() && caption[i + 1] == '&') {
                stripped += '&';
                ++i;
            }
            continue;
        }
        stripped += caption[i];
    }
    return stripped;
}

}  // namespace vyn
