#pragma once

#include <cstdint>

#include "platform/controls/control_types.h"
#include "platform/text/ansi_string.h"

namespace vyn {

// Keys by their customary numbers. Letters and digits are their upper-case characters.
constexpr uint16_t VK_BACK = 0x08;
constexpr uint16_t VK_TAB = 0x09;
constexpr uint16_t VK_RETURN = 0x0D;
constexpr uint16_t VK_SHIFT = 0x10;
constexpr uint16_t VK_CONTROL = 0x11;
constexpr uint16_t VK_MENU = 0x12;
constexpr uint16_t VK_ESCAPE = 0x1B;
constexpr uint16_t VK_SPACE = 0x20;
constexpr uint16_t VK_PRIOR = 0x21;
constexpr uint16_t VK_NEXT = 0x22;
constexpr uint16_t VK_END = 0x23;
constexpr uint16_t VK_HOME = 0x24;
constexpr uint16_t VK_LEFT = 0x25;
constexpr uint16_t VK_UP = 0x26;
constexpr uint16_t VK_RIGHT = 0x27;
constexpr uint16_t VK_DOWN = 0x28;
constexpr uint16_t VK_INSERT = 0x2D;
constexpr uint16_t VK_DELETE = 0x2E;
constexpr uint16_t VK_APPS = 0x5D;
constexpr uint16_t VK_NUMPAD0 = 0x60;
constexpr uint16_t VK_MULTIPLY = 0x6A;
constexpr uint16_t VK_ADD = 0x6B;
constexpr uint16_t VK_SUBTRACT = 0x6D;
constexpr uint16_t VK_DIVIDE = 0x6F;
constexpr uint16_t VK_F1 = 0x70;
constexpr uint16_t VK_F2 = 0x71;
constexpr uint16_t VK_F3 = 0x72;
constexpr uint16_t VK_F4 = 0x73;
constexpr uint16_t VK_F5 = 0x74;
constexpr uint16_t VK_F6 = 0x75;
constexpr uint16_t VK_F7 = 0x76;
constexpr uint16_t VK_F8 = 0x77;
constexpr uint16_t VK_F9 = 0x78;
constexpr uint16_t VK_F10 = 0x79;
constexpr uint16_t VK_F11 = 0x7A;
constexpr uint16_t VK_F12 = 0x7B;
constexpr uint16_t VK_F24 = 0x87;

// A short cut is the key plus these.
constexpr TShortCut scShift = 0x2000;
constexpr TShortCut scCtrl = 0x4000;
constexpr TShortCut scAlt = 0x8000;
constexpr TShortCut scNone = 0;

TShortCut ShortCut(uint16_t key, TShiftState shift);
void ShortCutToKey(TShortCut shortCut, uint16_t& key, TShiftState& shift);
// "Ctrl+Shift+F5", "Del", "Alt+BkSp"; empty for a key without a name.
AnsiString ShortCutToText(TShortCut shortCut);
// Letter case does not count; 0 for what is no short cut.
TShortCut TextToShortCut(const AnsiString& text);

// The character behind the first single "&" of a caption, upper case; 0 when there is none ("&&" stands for "&").
char MnemonicOf(const AnsiString& caption);
bool IsAccel(uint16_t key, const AnsiString& caption);
// The caption as it is read: "&" signs taken away, "&&" made one.
AnsiString StripHotkey(const AnsiString& caption);

}  // namespace vyn
