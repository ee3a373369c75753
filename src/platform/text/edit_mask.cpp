#include "platform/text/edit_mask.h"

#include <algorithm>

#include "platform/text/compare.h"

namespace vyn {

namespace mask_detail {

constexpr std::string_view kKinds = "LlAaCc09#";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) {
    const AnsiString text(1, c);
    return AnsiUpperCase(text) != AnsiLowerCase(text) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool Takes(char kind, char c) {
    switch (kind) {
        case 'L':
        case 'l':
            return IsLetter(c);
        case 'A':
        case 'a':
            return IsLetter(c) || IsDigit(c);
        case '0':
        case '9':
            return IsDigit(c);
        case '#':
            return IsDigit(c) || c == '+' || c == '-';
        default:
            return static_cast<unsigned char>(c) >= ' ';
    }
}

// Cuts the fields ";literals;blank" off the mask's end: a semicolon is part of the mask only behind a backslash.
std::string_view CutFields(std::string_view& mask) {
    for (size_t i = 0; i < mask.size(); ++i) {
        if (mask[i] == '\\') {
            ++i;
        } else if (mask[i] == ';') {
            const std::string_view fields = mask.substr(i + 1);
            mask = mask.substr(0, i);
            return fields;
        }
    }
    return {};
}

}  // namespace mask_detail

EditMask::EditMask(std::string_view mask, const TFormatSettings& settings) {
    const std::string_view fields = mask_detail::CutFields(mask);
    if (!fields.empty()) savesLiterals_ = fields.front() != '0';
    if (const size_t second = fields.find(';'); second != std::string_view::npos && second + 1 < fields.size())
        blank_ = fields[second + 1];
    signed char letterCase = 0;
    for (size_t i = 0; i < mask.size(); ++i) {
        const char c = mask[i];
        if (c == '!') {
            fromRight_ = true;
        } else if (c == '>') {
            letterCase = 1;
        } else if (c == '<') {
            const bool both = i + 1 < mask.size() && mask[i + 1] == '>';
            letterCase = both ? 0 : -1;
            i += both;
        } else if (mask_detail::kKinds.find(c) != std::string_view::npos) {
            places_.push_back({c, 0, letterCase});
        } else {
            char literal = c;
            if (c == '\\' && i + 1 < mask.size())
                literal = mask[++i];
            else if (c == '/')
                literal = settings.DateSeparator;
            else if (c == ':')
                literal = settings.TimeSeparator;
            places_.push_back({0, literal, 0});
        }
    }
}

int EditMask::Next(int place) const {
    place = std::max(place, 0);
    while (place < Length() && !IsEditable(place)) ++place;
    return std::min(place, Length());
}

int EditMask::Previous(int place) const {
    place = std::min(place, Length()) - 1;
    while (place >= 0 && !IsEditable(place)) --place;
    return place;
}

char EditMask::Accept(int place, char c) const {
    if (place < 0 || place >= Length() || !IsEditable(place)) return 0;
    const Place& at = places_[static_cast<size_t>(place)];
    if (!mask_detail::Takes(at.Kind, c)) return 0;
    if (at.Case > 0) return AnsiUpperCase(AnsiString(1, c)).front();
    if (at.Case < 0) return AnsiLowerCase(AnsiString(1, c)).front();
    return c;
}

int EditMask::BehindLiteral(int place, char c) const {
    // Also from inside the group before it: "5/" goes on to the month of 99/99.
    for (int at = std::max(place, 0); at < Length(); ++at)
        if (!IsEditable(at)) return places_[static_cast<size_t>(at)].Literal == c ? at + 1 : -1;
    return -1;
}

AnsiString EditMask::Shown(std::string_view value) const {
    AnsiString shown(places_.size(), blank_);
    const int step = fromRight_ ? -1 : 1;
    size_t left = value.size();
    // Characters are taken from the end at which the value stands.
    const auto peek = [&] { return fromRight_ ? value[left - 1] : value[value.size() - left]; };
    int place = fromRight_ ? Length() - 1 : 0;
    for (int i = 0; i < Length(); ++i, place += step) {
        const auto at = static_cast<size_t>(place);
        if (!IsEditable(place)) {
            shown[at] = places_[at].Literal;
            if (savesLiterals_ && left > 0 && peek() == places_[at].Literal) --left;
            continue;
        }
        if (left == 0) continue;
        if (const char taken = Accept(place, peek()); taken && taken != ' ') shown[at] = taken;
        --left;
    }
    return shown;
}

AnsiString EditMask::Value(std::string_view shown) const {
    AnsiString value;
    bool filled = false;
    for (int place = 0; place < Length() && place < static_cast<int>(shown.size()); ++place) {
        const char c = shown[static_cast<size_t>(place)];
        if (!IsEditable(place)) {
            if (savesLiterals_) value += c;
        } else if (c == blank_) {
            value += ' ';
        } else {
            value += c;
            filled = filled || c != ' ';
        }
    }
    if (!filled) return {};
    const size_t first = fromRight_ ? value.find_first_not_of(' ') : 0;
    return value.substr(first, value.find_last_not_of(' ') + 1 - first);
}

int EditMask::FirstMissing(std::string_view shown) const {
    for (int place = 0; place < Length(); ++place) {
        const char kind = places_[static_cast<size_t>(place)].Kind;
        const bool required = kind == 'L' || kind == 'A' || kind == 'C' || kind == '0';
        if (!required) continue;
        const char c = place < static_cast<int>(shown.size()) ? shown[static_cast<size_t>(place)] : blank_;
        if (c == blank_ || (c == ' ' && kind != 'C')) return place;
    }
    return -1;
}

AnsiString FormatMaskText(std::string_view mask, std::string_view value, const TFormatSettings& settings) {
    const EditMask parsed(mask, settings);
    if (parsed.IsEmpty()) return AnsiString(value);
    AnsiString shown = parsed.Shown(value);
    for (int place = 0; place < parsed.Length(); ++place)
        if (char& c = shown[static_cast<size_t>(place)]; parsed.IsEditable(place) && c == parsed.Blank()) c = ' ';
    return shown;
}

}  // namespace vyn
