#include "platform/text/folding.h"

#include <algorithm>

#include "platform/text/windows1252_table.h"

namespace vyn {

AnsiString FoldText(std::string_view text, TextFolding folding) {
    AnsiString folded(text);
    for (char& c : folded) c = FoldChar(c, folding);
    return folded;
}

bool SameFolded(std::string_view a, std::string_view b, TextFolding folding) {
    return a.size() == b.size() && BeginsFolded(a, b, folding);
}

bool BeginsFolded(std::string_view text, std::string_view prefix, TextFolding folding) {
    return text.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), text.begin(), [&](char a, char b) {
               return FoldChar(a, folding) == FoldChar(b, folding);
           });
}

bool TextSearch::FindsIn(std::string_view utf8) const {
    constexpr unsigned char kAscii = 0x80;
    const FoldingTable& table = FoldingTableOf(folding_);
    const char* at = utf8.data();
    const char* const end = at + utf8.size();
    for (const char wanted : wanted_) {
        if (at == end) return false;
        const auto byte = static_cast<unsigned char>(*at);
        if (byte < kAscii) {
            if (table[byte] != wanted) return false;
            ++at;
            continue;
        }
        const Utf8Character character = DecodeUtf8(at, static_cast<size_t>(end - at));
        const int held = character.length > 0 ? CodePointToAnsi(character.codePoint) : -1;
        if ((held < 0 ? '?' : table[static_cast<size_t>(held)]) != wanted) return false;
        at += std::max<size_t>(character.length, 1);
    }
    return extent_ == Extent::Beginning || at == end;
}

}  // namespace vyn
