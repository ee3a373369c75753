// Every line of tests/golden/expressions.txt: what is calculated, and what goes wrong.

#include <cmath>
#include <fstream>
#include <set>

#include "unit/parser/fixtures.h"

using namespace parser_fixtures;

namespace {

constexpr char kGoldenFile[] = VYN_SOURCE_DIR "/tests/golden/expressions.txt";
constexpr size_t kFewestLines = 300;

struct GoldenLine {
    AnsiString expression;
    char kind = ' ';  // '=', '~' or '!'
    AnsiString expected;
};

AnsiString Unescaped(AnsiString text) {
    for (const auto& [escape, character] : {std::pair{"\\r", '\r'}, {"\\t", '\t'}})
        for (size_t at = text.find(escape); at != AnsiString::npos; at = text.find(escape, at))
            text.replace(at, 2, 1, character);
    return text;
}

std::vector<GoldenLine> GoldenLines() {
    std::vector<GoldenLine> lines;
    std::ifstream file(kGoldenFile);
    for (AnsiString line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        size_t at = AnsiString::npos;
        for (const char* mark : {" = ", " ~ ", " ! "}) at = std::min(at, line.find(mark));
        if (at == AnsiString::npos) {
            ADD_FAILURE() << "no mark in: " << line;
            continue;
        }
        lines.push_back({Unescaped(line.substr(0, at)), line[at + 1], Unescaped(line.substr(at + 3))});
    }
    return lines;
}

class GoldenExpressions : public ParserTest {
  protected:
    GoldenExpressions() {
        for (const auto& [name, value] : {std::pair<const char*, Variant>{"a", 2.0},
                                          {"b", 3.0},
                                          {"c", 0.5},
                                          {"d", 1.5},
                                          {"x", -4.0},
                                          {"z", 0.0},
                                          {"big", 1E300},
                                          {"_u", 0.25},
                                          {"e1", 11.0},
                                          {"model", 10.0},
                                          {"dividend", 20.0},
                                          {"individual", 30.0},
                                          {"n", 7},
                                          {"t", "2.5"},
                                          {"word", "abc"},
                                          {"empty", ""},
                                          {"nul", Variant::Null()}})
            set.AddParam(name, value);
    }

    void Check(const GoldenLine& line, const std::function<double()>& calculate) {
        double value = 0;
        const AnsiString error = MessageOf([&] { value = calculate(); });
        if (line.kind == '!') {
            EXPECT_EQ(error, line.expected) << line.expression;
            return;
        }
        const double expected = ParseDouble(line.expected);
        EXPECT_EQ(error, "no error") << line.expression;
        if (line.kind == '=') {
            EXPECT_EQ(ShortestDouble(value), line.expected) << line.expression;
        } else {
            EXPECT_LE(std::fabs(value - expected), 4 * std::fabs(expected) * std::numeric_limits<double>::epsilon())
                << line.expression << " is " << ShortestDouble(value);
        }
    }
};

}  // namespace

TEST_F(GoldenExpressions, AreCalculatedAsTheFileSays) {
    const auto lines = GoldenLines();
    EXPECT_GE(lines.size(), kFewestLines);
    std::set<AnsiString> seen;
    for (const GoldenLine& line : lines) {
        EXPECT_TRUE(seen.insert(line.expression).second) << "twice: " << line.expression;
        Check(line, [&] { return Value(line.expression); });
        // The second time the operations run as a program, the third time too.
        for (int i = 0; i < 2; ++i)
            if (line.kind != '!') Check(line, [&] { return parser.CalcValue(); });
    }
}

TEST_F(GoldenExpressions, AreTheSameEachTimeAndByEitherWay) {
    for (const GoldenLine& line : GoldenLines()) {
        if (line.kind == '!') continue;
        const double first = Value(line.expression), second = parser.CalcValue(), third = parser.CalcValue();
        EXPECT_EQ(first, second) << line.expression;
        EXPECT_EQ(second, third) << line.expression;
        // Through the routines of the list, as whoever walks it would.
        const TOperationRecord* last = nullptr;
        for (const TOperationRecord* each = parser.FirstOperation(); each; each = each->NextOperation) {
            each->Operation(*each);
            last = each;
        }
        ASSERT_NE(last, nullptr) << line.expression;
        EXPECT_EQ(*last->Dest, first) << line.expression;
    }
}

TEST_F(GoldenExpressions, RaiseTheSameErrorsAsAProgram) {
    for (const GoldenLine& line : GoldenLines()) {
        if (line.kind != '!' || line.expected.rfind("E", 0) != 0) continue;
        if (MessageOf([&] { parser.SetExpression(line.expression); }) != "no error") {
            EXPECT_TRUE(parser.ParseFailed()) << line.expression;
            EXPECT_EQ(parser.FirstOperation(), nullptr) << line.expression;
            EXPECT_EQ(parser.CalcValue(), 0) << line.expression;
            continue;
        }
        for (int i = 0; i < 3; ++i) Check(line, [&] { return parser.CalcValue(); });
    }
}
