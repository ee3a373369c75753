#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

// How the text of an expression falls into numbers, names and the words DIV and MOD. For the compiler.
namespace vyn::expression_text {

inline constexpr char kPi[] = "PI";
inline constexpr int kKeywordLength = 3;

enum class Keyword : uint8_t { None, Div, Mod };
// DIV or MOD that begins at this place.
Keyword WholeKeywordAt(std::string_view text, size_t at);
inline Keyword KeywordAt(std::string_view text, size_t at) {
    constexpr char kSmall = 0x20;
    const char first = at < text.size() ? static_cast<char>(text[at] | kSmall) : '\0';
    return first == 'd' || first == 'm' ? WholeKeywordAt(text, at) : Keyword::None;
}

// A letter or "_".
constexpr bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
// A letter, digit or "_".
constexpr bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9'); }
// A digit, or a point and a digit.
bool IsNumberStart(std::string_view text, size_t at);
// Where the unsigned number that begins here ends; `at` when none does.
size_t NumberEnd(std::string_view text, size_t at);
// The same for a number or the name PI that no further letter follows.
size_t ConstantEnd(std::string_view text, size_t at);
// Its value; false when it is beyond the type's range.
bool ReadNumber(std::string_view number, double& value);

// What is known of a text before it is taken apart.
struct TextMeasure {
    bool hasBlanks = false;
    int64_t openBrackets = 0;  // "(" less ")"
    size_t operations = 0;     // there are not more than these
    size_t commas = 0;
};
TextMeasure Measure(std::string_view text);

// What to show of a text that is wrong at a place: up to the next sign, or from the last operator on when a sign
// stands there.
std::string_view PartAtFault(std::string_view text, size_t at, size_t lastOperator);

// Tells where an operand ends in a run of letters, digits and "_", which may be one name or names around DIV and MOD
// (aDIVb). The run is taken for one name where there is such; else it is cut at the last DIV that leaves operands on
// both sides, else at the last such MOD, and so its parts.
class WordRuns {
  public:
    // Whether a word is an operand's name: of a function when it is called (a bracket follows), else of a variable or
    // constant. `ask`: a name that nobody knows may be asked for.
    using IsName = std::function<bool(std::string_view word, bool called, bool ask)>;
    WordRuns(std::string_view text, IsName isName) : text_(text), isName_(std::move(isName)) {}

    // The end of the operand that begins here with a letter or "_"; 0 when no reading makes sense. A run without the
    // two words is one name, known or not. Raises EExpressionTooComplex. Asked from left to right.
    size_t OperandEnd(size_t at);

  private:
    struct Cut {
        size_t at;
        Keyword keyword;
    };
    enum class Known : uint8_t { Unasked, No, Yes };

    bool FindCuts(size_t begin, bool ask);
    bool IsOperand(size_t first, size_t last, bool ask);
    bool FallsApart(size_t first, size_t last, bool ask);
    void Choose(size_t first, size_t last, bool ask);
    bool ChooseAt(Keyword keyword, size_t first, size_t last, bool ask);
    size_t StartOf(size_t piece) const;
    size_t EndOf(size_t piece) const;
    Known& OperandKnown(size_t first, size_t last) { return operands_[first * (cuts_.size() + 1) + last]; }
    Known& ApartKnown(size_t first, size_t last) { return apart_[first * (cuts_.size() + 1) + last]; }

    const std::string_view text_;
    const IsName isName_;
    // The run that was looked at last: every DIV and MOD in it, and where it is really cut.
    size_t runBegin_ = 0;
    size_t runEnd_ = 0;
    bool called_ = false;
    std::vector<Cut> cuts_;
    std::vector<size_t> chosen_;
    std::vector<Known> operands_;
    std::vector<Known> apart_;
};

}  // namespace vyn::expression_text
