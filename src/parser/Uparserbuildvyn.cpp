#include "parser/Uparserbuildvyn.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "parser/expression_text.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace build_detail {

using namespace expression_text;

// How tight an operator binds, the loosest first; each is a level of its own.
enum Level { Loosest = 1, AdditionLevel = 1, PowerLevel = 7, PrimaryLevel = 8 };
// Sums, products and powers are counted apart.
enum LevelClass { Sums, Products, Powers, LevelClassCount };

struct Operator {
    TOperationCode code = TOperationCode::Constant;
    int level = 0;  // 0: there is no operator here
    int length = 1;
};

// What an operation works on.
struct Operand {
    double* place = nullptr;
    TOperationCode kind = TOperationCode::Function;  // Constant: a number as it stands; Variable; else a result
    bool bracketed = false;
};

// How many operations stand beside each other inside one pair of brackets, so far.
struct Counts {
    int of[LevelClassCount] = {};
};

class Compiler {
  public:
    Compiler(const AnsiString& text, const TParametresList& variables, const TFunctionList& oneParam,
             const TFunctionList& twoParam, OperationList& operations, const VariableSearch& search)
        : text_(text),
          variables_(variables),
          oneParam_(oneParam),
          twoParam_(twoParam),
          operations_(operations),
          search_(search),
          words_(text_, [this](std::string_view word, bool called, bool ask) { return IsName(word, called, ask); }) {}

    void Compile() {
        const TextMeasure measure = Measure(text_);
        if (measure.hasBlanks) throw EExpressionHasBlanks("Expression has blanks");
        if (measure.openBrackets != 0) throw EMissMatchingBracket("Missing brackets in expression");
        operations_.Begin(measure.operations + 1, 2 * measure.operations + measure.commas + 2);
        Counts counts;
        const Operand whole = ParseOperations(Loosest, counts);
        if (at_ < text_.size()) RaiseSyntaxError();
        if (operations_.Empty()) operations_.AddOperation(whole.kind, whole.place, whole.place, whole.place);
        operations_.Finish();
    }

  private:
    char Here() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    // The syntax error at this place: the part at fault is the operand here, or else what follows the last operator.
    [[noreturn]] void RaiseSyntaxError() const {
        const std::string_view part = PartAtFault(text_, at_, lastOperator_);
        AnsiString message = "Error parsing expression:\r" + text_;
        if (part.size() < text_.size()) message += "\r" + AnsiString(part);
        throw ESyntaxError(std::move(message));
    }

    Operator PeekOperator() const {
        using enum TOperationCode;
        switch (Here()) {
            case '+':
                return {Addition, 1};
            case '-':
                return {Subtraction, 2};
            case '*':
                return {Multiplication, 3};
            case '/':
                return {Division, 6};
            case '^':
                return {Power, PowerLevel};
            default:
                break;
        }
        const Keyword keyword = KeywordAt(text_, at_);
        if (keyword == Keyword::Div) return {IntegerDivision, 4, kKeywordLength};
        if (keyword == Keyword::Mod) return {Modulo, 5, kKeywordLength};
        return {};
    }

    static void Count(Counts& counts, int level) {
        const LevelClass kind = level >= PowerLevel ? Powers : level > 2 ? Products : Sums;
        if (++counts.of[kind] > MaxOperationsPerLevel) throw EExpressionTooComplex("Expression is too complex");
        for (int tighter = kind + 1; tighter < LevelClassCount; ++tighter) counts.of[tighter] = 0;
    }

    // An operand and the operators after it that bind at least as tight as the level.
    Operand ParseOperations(int level, Counts& counts) {
        Operand left = ParseSigned(level, counts);
        for (Operator next = PeekOperator(); next.level >= level; next = PeekOperator()) {
            Count(counts, next.level);
            lastOperator_ = at_;
            at_ += static_cast<size_t>(next.length);
            const Operand right = ParseOperations(next.level + 1, counts);
            if (next.code == TOperationCode::Power)
                left = Raise(left, right);
            else
                left = Emit(next.code, left, right);
        }
        return left;
    }

    // An operand with a sign perhaps; a minus takes in the power that follows, where the level lets it.
    Operand ParseSigned(int level, Counts& counts) {
        const char sign = Here();
        if (sign != '-' && sign != '+') return ParsePrimary();
        const size_t signAt = at_;
        ++at_;
        if (const size_t end = ConstantEnd(text_, at_); end > at_) {
            const bool isNumber = IsNumberStart(text_, at_);
            // Only numbers have a plus, and -2^2 is the power's negation.
            if (sign == '+' ? isNumber : (level > PowerLevel || end == text_.size() || text_[end] != '^'))
                return ParseConstant(end, sign == '-');
        }
        if (sign == '+') {
            at_ = signAt;
            RaiseSyntaxError();
        }
        lastOperator_ = signAt;
        // A sign after a sign is no operand.
        if (Here() == '-' || Here() == '+') RaiseSyntaxError();
        const Operand positive = ParseOperations(std::max<int>(level, PowerLevel), counts);
        return Emit(TOperationCode::Negation, positive, positive);
    }

    Operand ParsePrimary() {
        const char first = Here();
        if (first == '(') return ParseBrackets();
        if (const size_t end = ConstantEnd(text_, at_); end > at_) return ParseConstant(end, false);
        if (!IsNameStart(first)) RaiseSyntaxError();
        const size_t end = words_.OperandEnd(at_);
        if (end == 0) RaiseSyntaxError();
        const std::string_view name = std::string_view(text_).substr(at_, end - at_);
        if (end < text_.size() && text_[end] == '(') return ParseCall(name);
        // Cut out of a longer run of letters, it may be a number's name here.
        if (SameText(name, kPi)) return ParseConstant(end, false);
        double* place = FindVariable(name);
        if (!place && search_ && search_(AnsiString(name))) place = FindVariable(name);
        if (!place) RaiseSyntaxError();
        at_ = end;
        return {place, TOperationCode::Variable};
    }

    Operand ParseConstant(size_t end, bool negative) {
        double value = std::numbers::pi;
        if (IsNumberStart(text_, at_) && !ReadNumber(std::string_view(text_).substr(at_, end - at_), value))
            RaiseSyntaxError();
        at_ = end;
        return {operations_.AddConstant(negative ? -value : value), TOperationCode::Constant};
    }

    void Enter() {
        if (++nestings_ > MaxNestings) throw ETooManyNestings("Expression contains too many nestings");
        lastOperator_ = at_;
        ++at_;
    }

    void Leave() {
        if (Here() != ')') RaiseSyntaxError();
        ++at_;
        --nestings_;
    }

    Operand ParseBrackets() {
        Enter();
        Counts counts;
        Operand inside = ParseOperations(Loosest, counts);
        Leave();
        inside.bracketed = true;
        return inside;
    }

    Operand ParseCall(std::string_view name) {
        const size_t nameAt = at_;
        const TMathRoutine two = twoParam_.Find(name), one = oneParam_.Find(name);
        if (!two && !one) RaiseSyntaxError();
        at_ += name.size();
        Enter();
        Counts counts;
        const Operand first = ParseOperations(Loosest, counts);
        const bool hasSecond = Here() == ',';
        if (!(hasSecond ? two : one)) {
            at_ = nameAt;
            RaiseSyntaxError();
        }
        Operand second = first;
        if (hasSecond) {
            lastOperator_ = at_;
            ++at_;
            Counts secondCounts;
            second = ParseOperations(Loosest, secondCounts);
        }
        Leave();
        return Emit(TOperationCode::Function, first, second, hasSecond ? two : one);
    }

    Operand Emit(TOperationCode code, const Operand& left, const Operand& right, TMathRoutine routine = nullptr) {
        double* dest = operations_.AddResult();
        operations_.AddOperation(code, left.place, right.place, dest, routine);
        return {dest};
    }

    // A whole number as exponent has operations of its own; not so in brackets.
    Operand Raise(const Operand& base, const Operand& exponent) {
        using enum TOperationCode;
        if (exponent.kind != Constant || exponent.bracketed) return Emit(Power, base, exponent);
        constexpr double kHighestWhole = 2147483647;
        const double value = *exponent.place;
        if (value != std::trunc(value) || std::fabs(value) > kHighestWhole) return Emit(Power, base, exponent);
        if (value == 2) return Emit(Square, base, exponent);
        if (value == 3) return Emit(Cube, base, exponent);
        if (value == 4) return Emit(FourthPower, base, exponent);
        return Emit(IntegerPower, base, exponent);
    }

    // Is the word an operand's name (a function's when it is called)?
    bool IsName(std::string_view word, bool called, bool ask) const {
        if (called) return oneParam_.Find(word) || twoParam_.Find(word);
        if (SameText(word, kPi) || variables_.ParamByName(word)) return true;
        return ask && search_ && search_(AnsiString(word));
    }

    // The place of a variable's value, or null when there is none of that name.
    double* FindVariable(std::string_view name) {
        int index = -1;
        TParametres* params = variables_.ParamByName(name, index);
        if (!params) return nullptr;
        const Variant* stored = &params->StoredValue(index);
        // Many variables are looked through only so far: one that stands twice costs a place, not an error.
        constexpr size_t kLookedThrough = 32;
        std::vector<OperationVariable>& known = operations_.Variables();
        for (size_t i = known.size(); i > 0 && known.size() - i < kLookedThrough; --i)
            if (known[i - 1].Stored == stored && SameText(known[i - 1].Name, name)) return known[i - 1].Place;
        const bool isNull =
            params->ReadsAreWatched() ? params->GetParametreValue(AnsiString(name)).IsNull() : stored->IsNull();
        if (isNull) throw EVarIsNull("Can't Build Variable " + AnsiString(name) + " because is null");
        return operations_.AddVariable({AnsiString(name), nullptr, params, stored});
    }

    const AnsiString& text_;
    const TParametresList& variables_;
    const TFunctionList& oneParam_;
    const TFunctionList& twoParam_;
    OperationList& operations_;
    const VariableSearch& search_;
    WordRuns words_;
    size_t at_ = 0;
    size_t lastOperator_ = 0;
    int nestings_ = 0;
};

}  // namespace build_detail

void ParseFunction(const AnsiString& text, const TParametresList& variables, const TFunctionList& oneParam,
                   const TFunctionList& twoParam, OperationList& operations, bool& failed,
                   const VariableSearch& search) {
    operations.Clear();
    failed = false;
    if (text.empty()) return;
    try {
        build_detail::Compiler(text, variables, oneParam, twoParam, operations, search).Compile();
    } catch (...) {
        operations.Clear();
        failed = true;
        throw;
    }
}

}  // namespace vyn
