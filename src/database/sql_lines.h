#pragma once

#include <string_view>

#include "platform/objects/strings.h"

namespace vyn {

// Looking at SQL text line by line. Pure text; main thread or not.

constexpr bool IsSqlQuote(char c) { return c == '"' || c == '\'' || c == '`'; }

// The lines of a statement, each with the break that follows it: CR LF, also after the last line, but inside a string
// literal, where a line break is part of the value, the break that the text has.
class SqlLines {
  public:
    SqlLines(std::string_view text, char stringSeparator) : text_(text), stringSeparator_(stringSeparator) {}
    // Goes to the next line (the first one at the first call); false when there is none.
    bool Next();
    std::string_view Line() const { return line_; }
    std::string_view Break() const { return break_; }

  private:
    enum class Inside { Nothing, Literal, Name, Comment, BlockComment };
    void Follow(std::string_view text);

    std::string_view text_;
    char stringSeparator_;
    size_t at_ = 0;
    std::string_view line_;
    std::string_view break_;
    Inside inside_ = Inside::Nothing;
    char closing_ = 0;  // of the name that is open
};

// Replaces the lines by those of a text; a line break inside a literal stays where it is, within its line, so that the
// lines' text is the text again.
void AssignSqlLines(TStrings& lines, std::string_view text, char stringSeparator);

// A statement whose colons were doubled, with its texts and quoted names as they were: no dataset looks for parameters
// there, and two colons would be another value.
AnsiString WithOwnTexts(const AnsiString& statement, const AnsiString& doubled);

// Doubles the colons of times in the lines of one statement, which are given in order.
class TimeColons {
  public:
    // True when the line was changed.
    bool Double(AnsiString& line);

  private:
    bool quoted_ = false;  // carries over from line to line
};

}  // namespace vyn
