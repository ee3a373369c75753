#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "parser/Uparservyn.h"
#include "platform/text/numbers.h"
#include "support/errors.h"

namespace parser_fixtures {

using namespace vyn;

// A parser over a set of its own; the global set exists as long as a test runs.
class ParserTest : public testing::Test {
  protected:
    ParserTest() {
        InitializeParametres();
        parser.Variables().Add(&set);
    }
    ~ParserTest() override { FinalizeParametres(); }

    double Value(const AnsiString& text) {
        parser.SetExpression(text);
        return parser.CalcValue();
    }
    AnsiString ErrorOf(const AnsiString& text) {
        return MessageOf([&] { Value(text); });
    }
    // The codes of the operations, in their order.
    std::string Codes(const AnsiString& text) {
        parser.SetExpression(text);
        std::string codes;
        for (const TOperationRecord* each = parser.FirstOperation(); each; each = each->NextOperation)
            codes += (codes.empty() ? "" : " ") + std::to_string(static_cast<int>(each->Code));
        return codes;
    }

    TParametres set{nullptr};
    TParserVyn parser{nullptr};
};

}  // namespace parser_fixtures
