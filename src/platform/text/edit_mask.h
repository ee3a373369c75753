#pragma once

#include <string_view>
#include <vector>

#include "platform/text/format_settings.h"

namespace vyn {

// A mask through which text is typed and shown, "!99/99/0000;1;_": the places, then whether literals belong to the
// value (1, the default, or 0), then the character that stands for an empty place ("_" by default).
//
//     L letter    A letter or digit    C any character    0 digit            required
//     l           a                    c                  9   # digit or +-  optional
//     > upper case from here on, < lower case, <> as typed; ! values shorter than the mask stand at its right end
//     / : the user's date and time separators; \x the character x itself; every other character stands for itself
//
// Shown text has one character for each place. Values have no empty places at their ends. Characters are Windows-1252.
// An empty mask means text of any kind: IsEmpty, and nothing else may be asked.
class EditMask {
  public:
    EditMask() = default;
    explicit EditMask(std::string_view mask, const TFormatSettings& settings = FormatSettings());

    bool IsEmpty() const { return places_.empty(); }
    int Length() const { return static_cast<int>(places_.size()); }
    char Blank() const { return blank_; }
    bool SavesLiterals() const { return savesLiterals_; }
    bool IsEditable(int place) const { return places_[static_cast<size_t>(place)].Kind != 0; }
    // The first place to be typed into from `place` on, or Length() beyond the last.
    int Next(int place) const;
    // The last one before `place`, or -1.
    int Previous(int place) const;
    // The character as the place holds it, in its case; 0 when it does not take it.
    char Accept(int place, char c) const;
    // What is typed over a literal: the place behind it, when the character is that literal; else -1.
    int BehindLiteral(int place, char c) const;

    // The value as shown. What a place does not take stands there as an empty place.
    AnsiString Shown(std::string_view value) const;
    // The value of a shown text; empty when no place is filled.
    AnsiString Value(std::string_view shown) const;
    // The first required place that is empty, or -1.
    int FirstMissing(std::string_view shown) const;

  private:
    struct Place {
        char Kind = 0;  // the mask's character, or 0: a literal
        char Literal = 0;
        signed char Case = 0;  // 1 upper, -1 lower
    };
    std::vector<Place> places_;
    char blank_ = '_';
    bool savesLiterals_ = true;
    bool fromRight_ = false;
};

// A value as shown through a mask, its empty places as blanks; the value itself without a mask.
AnsiString FormatMaskText(std::string_view mask, std::string_view value,
                          const TFormatSettings& settings = FormatSettings());

}  // namespace vyn
