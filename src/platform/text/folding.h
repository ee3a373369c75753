#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/text/compare.h"

// Texts as people look for them: without regard to letters' case, to their accents, or to both. A folded text goes by
// the capitals of its base letters; it is as long as the text. Pure functions, any thread.
namespace vyn {

enum class TextFolding : uint8_t { None, Case, Accents, CaseAndAccents };

constexpr TextFolding FoldingOf(bool ignoresCase, bool ignoresAccents) {
    return ignoresCase ? (ignoresAccents ? TextFolding::CaseAndAccents : TextFolding::Case)
                       : (ignoresAccents ? TextFolding::Accents : TextFolding::None);
}

// The letter without its accent, in its own case. A letter that is another one with a mark is its base letter too, so
// that what is typed on any keyboard finds it: Ñ is N, Ç is C, Ø is O, Ð is D, Š is S, Ž is Z, Ÿ and Ý are Y. Letters
// that are not one base letter stay as they are: Æ and Œ (which fold by case), Þ, ß, and the marks ª and º.
constexpr unsigned char BaseLetterByte(unsigned char c) {
    struct Range {
        unsigned char first, last;  // the capitals; small letters stand 32 behind
        char base;
    };
    constexpr unsigned char kFirstCapital = 0xC0, kFirstSmall = 0xE0, kBetween = 0x20;
    constexpr Range kRanges[] = {{0xC0, 0xC5, 'A'}, {0xC7, 0xC7, 'C'}, {0xC8, 0xCB, 'E'}, {0xCC, 0xCF, 'I'},
                                 {0xD0, 0xD0, 'D'}, {0xD1, 0xD1, 'N'}, {0xD2, 0xD6, 'O'}, {0xD8, 0xD8, 'O'},
                                 {0xD9, 0xDC, 'U'}, {0xDD, 0xDD, 'Y'}};
    switch (c) {
        case 0x8A:
            return 'S';
        case 0x9A:
            return 's';
        case 0x8E:
            return 'Z';
        case 0x9E:
            return 'z';
        case 0x9F:
            return 'Y';
        case 0xFF:
            return 'y';
        default:
            break;
    }
    if (c < kFirstCapital) return c;
    const bool small = c >= kFirstSmall;
    const auto capital = static_cast<unsigned char>(small ? c - kBetween : c);
    for (const Range& range : kRanges)
        if (capital >= range.first && capital <= range.last)
            return static_cast<unsigned char>(small ? range.base + kBetween : range.base);
    return c;
}

using FoldingTable = std::array<char, 256>;

constexpr FoldingTable MakeFoldingTable(TextFolding folding) {
    const bool ignoresCase = folding == TextFolding::Case || folding == TextFolding::CaseAndAccents;
    const bool ignoresAccents = folding == TextFolding::Accents || folding == TextFolding::CaseAndAccents;
    FoldingTable table{};
    for (unsigned i = 0; i < table.size(); ++i) {
        auto c = static_cast<unsigned char>(i);
        if (ignoresAccents) c = BaseLetterByte(c);
        if (ignoresCase) c = AnsiUpperByte(c);
        table[i] = static_cast<char>(c);
    }
    return table;
}

// By the folding's number.
inline constexpr std::array<FoldingTable, 4> kFoldingTables = {
    MakeFoldingTable(TextFolding::None), MakeFoldingTable(TextFolding::Case), MakeFoldingTable(TextFolding::Accents),
    MakeFoldingTable(TextFolding::CaseAndAccents)};

constexpr const FoldingTable& FoldingTableOf(TextFolding folding) {
    return kFoldingTables[static_cast<size_t>(folding)];
}

constexpr char FoldChar(char c, TextFolding folding = TextFolding::CaseAndAccents) {
    return FoldingTableOf(folding)[static_cast<unsigned char>(c)];
}

AnsiString FoldText(std::string_view text, TextFolding folding = TextFolding::CaseAndAccents);
bool SameFolded(std::string_view a, std::string_view b, TextFolding folding = TextFolding::CaseAndAccents);
bool BeginsFolded(std::string_view text, std::string_view prefix, TextFolding folding = TextFolding::CaseAndAccents);

// Looks for one text in many that are kept in UTF-8, without turning each into Windows-1252: it finds what would be the
// same there, where "?" stands for every character that the code page lacks and for each malformed byte.
class TextSearch {
  public:
    enum class Extent { Whole, Beginning };
    TextSearch(std::string_view wanted, TextFolding folding, Extent extent)
        : given_(wanted), wanted_(FoldText(wanted, folding)), folding_(folding), extent_(extent) {}
    bool FindsIn(std::string_view utf8) const;

    // As it was given, and as it is compared: letter for letter.
    const AnsiString& Given() const { return given_; }
    const AnsiString& Folded() const { return wanted_; }
    TextFolding Folding() const { return folding_; }
    Extent HowMuch() const { return extent_; }

  private:
    AnsiString given_;
    AnsiString wanted_;
    TextFolding folding_;
    Extent extent_;
};

}  // namespace vyn
