#include "parser/expression_text.h"

#include <algorithm>
#include <limits>

#include "parser/Uparserbuildvyn.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn::expression_text {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

char At(std::string_view text, size_t at) { return at < text.size() ? text[at] : '\0'; }

size_t SkipDigits(std::string_view text, size_t at) {
    while (at < text.size() && IsDigit(text[at])) ++at;
    return at;
}

// Signs that end an operand.
bool IsSign(char c) {
    switch (c) {
        case '+':
        case '-':
        case '*':
        case '/':
        case '^':
        case '(':
        case ')':
        case ',':
            return true;
        default:
            return false;
    }
}

// Powers of ten that doubles hold exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

}  // namespace

Keyword WholeKeywordAt(std::string_view text, size_t at) {
    if (at + kKeywordLength > text.size()) return Keyword::None;
    const char first = UpperChar(text[at]);
    if (first == 'D')
        return UpperChar(text[at + 1]) == 'I' && UpperChar(text[at + 2]) == 'V' ? Keyword::Div : Keyword::None;
    if (first == 'M')
        return UpperChar(text[at + 1]) == 'O' && UpperChar(text[at + 2]) == 'D' ? Keyword::Mod : Keyword::None;
    return Keyword::None;
}

bool IsNumberStart(std::string_view text, size_t at) {
    const char first = At(text, at);
    return IsDigit(first) || (first == '.' && IsDigit(At(text, at + 1)));
}

size_t NumberEnd(std::string_view text, size_t at) {
    if (!IsNumberStart(text, at)) return at;
    size_t end = SkipDigits(text, at);
    if (At(text, end) == '.') end = SkipDigits(text, end + 1);
    if (UpperChar(At(text, end)) == 'E') {
        const char sign = At(text, end + 1);
        const size_t digits = end + (sign == '-' || sign == '+' ? 2 : 1);
        if (IsDigit(At(text, digits))) end = SkipDigits(text, digits);
    }
    return end;
}

size_t ConstantEnd(std::string_view text, size_t at) {
    if (UpperChar(At(text, at)) != 'P') return NumberEnd(text, at);
    const size_t end = at + 2;
    return UpperChar(At(text, at + 1)) == 'I' && !IsNameChar(At(text, end)) && At(text, end) != '(' ? end : at;
}

bool ReadNumber(std::string_view number, double& value) {
    // Few digits and a small power of ten, as people write: one exact operation on two exact numbers is exact.
    constexpr int kExactDigits = 15;
    uint64_t mantissa = 0;
    int digits = 0, decimals = 0;
    bool afterPoint = false, plain = true;
    for (const char c : number) {
        if (c == '.') {
            afterPoint = true;
        } else if (IsDigit(c) && digits < kExactDigits) {
            mantissa = mantissa * 10 + static_cast<uint64_t>(c - '0');
            if (mantissa != 0) ++digits;
            decimals += afterPoint;
        } else {
            plain = false;
            break;
        }
    }
    if (plain && decimals < static_cast<int>(std::size(kExactPowers))) {
        value = static_cast<double>(mantissa) / kExactPowers[decimals];
        return true;
    }
    return TryParseDouble(number, value);
}

TextMeasure Measure(std::string_view text) {
    TextMeasure measure;
    for (const char c : text) {
        switch (c) {
            case ' ':
                measure.hasBlanks = true;
                break;
            case '(':
                ++measure.openBrackets;
                ++measure.operations;
                break;
            case ')':
                --measure.openBrackets;
                break;
            case ',':
                ++measure.commas;
                break;
            case '+':
            case '-':
            case '*':
            case '/':
            case '^':
            case 'D':  // of DIV and MOD
            case 'd':
                ++measure.operations;
                break;
            default:
                break;
        }
    }
    return measure;
}

std::string_view PartAtFault(std::string_view text, size_t at, size_t lastOperator) {
    size_t end = at;
    while (end < text.size() && !IsSign(text[end])) ++end;
    if (end > at && At(text, end) != '(') return text.substr(at, end - at);
    if (end == at && At(text, at) != '(' && At(text, at) != ',') at = end = lastOperator;
    // To the end of the brackets that begin here, or else of those that this place is in.
    size_t open = 0;
    for (; end < text.size(); ++end) {
        if (text[end] == '(') ++open;
        if (text[end] != ')') continue;
        if (open <= 1) {
            end += open;
            break;
        }
        --open;
    }
    return end > at ? text.substr(at, end - at) : text;
}

size_t WordRuns::StartOf(size_t piece) const { return piece == 0 ? runBegin_ : cuts_[piece - 1].at + kKeywordLength; }

size_t WordRuns::EndOf(size_t piece) const { return piece == cuts_.size() ? runEnd_ : cuts_[piece].at; }

// Is the text from the start of one piece to the end of another an operand?
bool WordRuns::IsOperand(size_t first, size_t last, bool ask) {
    Known& known = OperandKnown(first, last);
    if (known != Known::Unasked) return known == Known::Yes;
    const size_t begin = StartOf(first), end = EndOf(last);
    const bool atEnd = last == cuts_.size();
    bool is = false;
    if (begin > end) {
        is = false;  // the two words share a letter
    } else if (begin == end) {
        // A word at the end of the run: an operand of another kind follows.
        const char next = At(text_, end);
        is = atEnd && (next == '(' || next == '-' || IsNumberStart(text_, end) ||
                       (next == '+' && IsNumberStart(text_, end + 1)));
    } else if (IsDigit(text_[begin])) {
        const size_t numberEnd = NumberEnd(text_, begin);
        is = atEnd ? numberEnd >= end : numberEnd == end;
    } else {
        is = isName_(text_.substr(begin, end - begin), atEnd && called_, ask && first == last);
    }
    known = is ? Known::Yes : Known::No;
    return is;
}

bool WordRuns::FallsApart(size_t first, size_t last, bool ask) {
    Known& known = ApartKnown(first, last);
    if (known != Known::Unasked) return known == Known::Yes;
    bool apart = IsOperand(first, last, ask);
    for (size_t cut = first; !apart && cut < last; ++cut)
        apart = IsOperand(first, cut, ask) && FallsApart(cut + 1, last, ask);
    ApartKnown(first, last) = apart ? Known::Yes : Known::No;
    return apart;
}

bool WordRuns::ChooseAt(Keyword keyword, size_t first, size_t last, bool ask) {
    for (size_t cut = last; cut > first; --cut) {
        if (cuts_[cut - 1].keyword != keyword) continue;
        if (!FallsApart(first, cut - 1, ask) || !FallsApart(cut, last, ask)) continue;
        Choose(first, cut - 1, ask);
        chosen_.push_back(cuts_[cut - 1].at);
        Choose(cut, last, ask);
        return true;
    }
    return false;
}

void WordRuns::Choose(size_t first, size_t last, bool ask) {
    if (IsOperand(first, last, ask)) return;
    if (!ChooseAt(Keyword::Div, first, last, ask)) ChooseAt(Keyword::Mod, first, last, ask);
}

bool WordRuns::FindCuts(size_t begin, bool ask) {
    const size_t pieces = cuts_.size() + 1;
    operands_.assign(pieces * pieces, Known::Unasked);
    apart_.assign(pieces * pieces, Known::Unasked);
    if (!FallsApart(0, cuts_.size(), ask)) return false;
    Choose(0, cuts_.size(), ask);
    return true;
}

size_t WordRuns::OperandEnd(size_t at) {
    if (at >= runEnd_) {
        runBegin_ = runEnd_ = at;
        bool hasKeyword = false;
        for (; runEnd_ < text_.size() && IsNameChar(text_[runEnd_]); ++runEnd_)
            hasKeyword = hasKeyword || (runEnd_ > at && KeywordAt(text_, runEnd_) != Keyword::None);
        called_ = At(text_, runEnd_) == '(';
        chosen_.clear();
        const std::string_view run = text_.substr(at, runEnd_ - at);
        if (!hasKeyword) return runEnd_;
        if (isName_(run, called_, false)) return runEnd_;
        cuts_.clear();
        for (size_t i = at + 1; i + kKeywordLength <= runEnd_; ++i)
            if (const Keyword keyword = KeywordAt(text_, i); keyword != Keyword::None) cuts_.push_back({i, keyword});
        if (cuts_.size() > static_cast<size_t>(MaxKeywordsPerRun))
            throw EExpressionTooComplex("Expression is too complex");
        if (!FindCuts(at, false)) {
            // Nobody knows it so: the whole may be asked for, then its parts.
            if (!called_ && isName_(run, false, true)) return runEnd_;
            if (!FindCuts(at, true)) return 0;
        }
    }
    const auto next = std::upper_bound(chosen_.begin(), chosen_.end(), at);
    return next == chosen_.end() ? runEnd_ : *next;
}

}  // namespace vyn::expression_text
