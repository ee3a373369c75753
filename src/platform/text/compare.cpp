#include "platform/text/compare.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace vyn {

namespace compare_detail {

using FoldTable = std::array<char, 256>;

constexpr FoldTable MakeUpper() {
    FoldTable table{};
    for (unsigned i = 0; i < table.size(); ++i)
        table[i] = static_cast<char>(AnsiUpperByte(static_cast<unsigned char>(i)));
    return table;
}

constexpr FoldTable MakeLower() {
    FoldTable table{};
    for (unsigned i = 0; i < table.size(); ++i) table[i] = static_cast<char>(i);
    for (unsigned i = 0; i < table.size(); ++i) {
        const unsigned char upper = AnsiUpperByte(static_cast<unsigned char>(i));
        if (upper != i) table[upper] = static_cast<char>(i);
    }
    return table;
}

constexpr FoldTable kUpper = MakeUpper();
constexpr FoldTable kLower = MakeLower();

template <class Fold>
int Compare(std::string_view a, std::string_view b, Fold fold) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = static_cast<unsigned char>(fold(a[i])) - static_cast<unsigned char>(fold(b[i]));
        if (difference != 0) return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

template <class Fold>
bool Same(std::string_view a, std::string_view b, Fold fold) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && fold(a[i]) != fold(b[i])) return false;
    return true;
}

template <class Fold>
AnsiString Folded(std::string_view text, Fold fold) {
    AnsiString result(text);
    std::transform(result.begin(), result.end(), result.begin(), fold);
    return result;
}

constexpr bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

}  // namespace compare_detail

char AnsiUpperChar(char c) { return compare_detail::kUpper[static_cast<unsigned char>(c)]; }
char AnsiLowerChar(char c) { return compare_detail::kLower[static_cast<unsigned char>(c)]; }

bool SameText(std::string_view a, std::string_view b) { return compare_detail::Same(a, b, UpperChar); }
int CompareText(std::string_view a, std::string_view b) { return compare_detail::Compare(a, b, UpperChar); }
bool AnsiSameText(std::string_view a, std::string_view b) { return compare_detail::Same(a, b, AnsiUpperChar); }
int AnsiCompareText(std::string_view a, std::string_view b) { return compare_detail::Compare(a, b, AnsiUpperChar); }

AnsiString UpperCase(std::string_view text) { return compare_detail::Folded(text, UpperChar); }
AnsiString LowerCase(std::string_view text) { return compare_detail::Folded(text, LowerChar); }
AnsiString AnsiUpperCase(std::string_view text) { return compare_detail::Folded(text, AnsiUpperChar); }
AnsiString AnsiLowerCase(std::string_view text) { return compare_detail::Folded(text, AnsiLowerChar); }

AnsiString Trim(std::string_view text) { return TrimLeft(TrimRight(text)); }

AnsiString TrimLeft(std::string_view text) {
    while (!text.empty() && compare_detail::IsBlank(text.front())) text.remove_prefix(1);
    return AnsiString(text);
}

AnsiString TrimRight(std::string_view text) {
    while (!text.empty() && compare_detail::IsBlank(text.back())) text.remove_suffix(1);
    return AnsiString(text);
}

std::size_t TextHash::operator()(std::string_view text) const noexcept {
    std::uint64_t hash = 0xCBF29CE484222325u;  // FNV-1a, 64 bits: offset basis and prime
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(UpperChar(c))) * 0x100000001B3u;
    return static_cast<std::size_t>(hash);
}

}  // namespace vyn
