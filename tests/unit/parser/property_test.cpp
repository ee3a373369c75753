// Random expressions against an evaluator of the same decomposition that looks at nothing but the text: it cuts at the
// last sign that leaves two operands, tries everything, and shares no code with the compiler.

#include <cmath>
#include <optional>
#include <random>

#include "unit/parser/fixtures.h"

using namespace parser_fixtures;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int kExpressions = 100000;
#else
constexpr int kExpressions = 1000000;
#endif
constexpr int kVariables = 4;
constexpr double kVariableValues[kVariables] = {2.5, -3.25, 0.1, 1000.0};

// A division by zero; the expression has no value then.
struct NoValue {};

class Decomposition {
  public:
    static std::optional<double> Evaluate(std::string_view text) {
        if (const auto number = Number(text)) return number;
        if (text.size() == 1 && text[0] >= 'a' && text[0] < 'a' + kVariables) return kVariableValues[text[0] - 'a'];
        if (!text.empty() && text[0] == '-')
            if (const auto rest = Primary(text.substr(1))) return -*rest;
        for (const char sign : {'+', '-', '*', '/'}) {
            int depth = 0;
            for (size_t at = text.size(); at-- > 1;) {
                if (text[at] == ')') ++depth;
                if (text[at] == '(') --depth;
                if (depth != 0 || text[at] != sign) continue;
                const auto left = Evaluate(text.substr(0, at));
                if (!left) continue;
                const auto right = Evaluate(text.substr(at + 1));
                if (right) return Apply(sign, *left, *right);
            }
        }
        return Bracketed(text);
    }

  private:
    static double Apply(char sign, double left, double right) {
        switch (sign) {
            case '+':
                return left + right;
            case '-':
                return left - right;
            case '*':
                return left * right;
            default:
                if (right == 0) throw NoValue();
                return left / right;
        }
    }
    static std::optional<double> Number(std::string_view text) {
        size_t digits = 0, points = 0;
        for (size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '.')
                ++points;
            else if (text[i] >= '0' && text[i] <= '9')
                ++digits;
            else if (i > 0 || text[i] != '-')
                return std::nullopt;
        }
        if (digits == 0 || points > 1) return std::nullopt;
        return std::strtod(std::string(text).c_str(), nullptr);
    }
    static std::optional<double> Primary(std::string_view text) {
        if (text.size() == 1 && text[0] >= 'a') return Evaluate(text);
        return Bracketed(text);
    }
    static std::optional<double> Bracketed(std::string_view text) {
        if (text.size() < 3 || text.front() != '(' || text.back() != ')') return std::nullopt;
        int depth = 0;
        for (size_t i = 0; i + 1 < text.size(); ++i) {
            depth += text[i] == '(' ? 1 : text[i] == ')' ? -1 : 0;
            if (depth == 0) return std::nullopt;
        }
        return Evaluate(text.substr(1, text.size() - 2));
    }
};

class Writer {
  public:
    explicit Writer(unsigned seed) : random_(seed) {}

    std::string Expression(int depth) {
        std::string text = Operand(depth);
        for (int left = static_cast<int>(random_() % 4); left > 0; --left)
            text += "+-*/"[random_() % 4] + Operand(depth);
        return text;
    }

  private:
    std::string Operand(int depth) {
        const char* sign = random_() % 8 == 0 ? "-" : "";
        switch (random_() % (depth > 0 ? 5 : 4)) {
            case 0:
                return sign + std::to_string(random_() % 100);
            case 1:
                return sign + std::to_string(random_() % 1000) + "." + std::to_string(random_() % 1000);
            case 2:
            case 3:
                return std::string(sign) + static_cast<char>('a' + random_() % kVariables);
            default:
                return sign + ("(" + Expression(depth - 1) + ")");
        }
    }
    std::minstd_rand random_;
};

}  // namespace

TEST_F(ParserTest, RandomExpressionsAgreeWithTheirDecompositionToTheLastBit) {
    for (int i = 0; i < kVariables; ++i) set.AddParam(AnsiString(1, static_cast<char>('a' + i)), kVariableValues[i]);
    Writer writer(54);
    int withoutValue = 0;
    for (int i = 0; i < kExpressions; ++i) {
        const std::string text = writer.Expression(2);
        std::optional<double> expected;
        bool hasValue = true;
        try {
            expected = Decomposition::Evaluate(text);
        } catch (const NoValue&) {
            hasValue = false;
        }
        if (!hasValue || !std::isfinite(*expected)) {
            ++withoutValue;
            ASSERT_THROW(Value(text), EExternal) << text;
            continue;
        }
        ASSERT_TRUE(expected) << text;
        const double first = Value(text), second = parser.CalcValue();
        ASSERT_EQ(std::signbit(first), std::signbit(*expected)) << text;
        ASSERT_EQ(first, *expected) << text;
        ASSERT_EQ(second, *expected) << text;
    }
    EXPECT_LT(withoutValue, kExpressions / 10);
}
