// Expressions: what compiles is calculated again to the same bits, and as the routines of its list do it.

#include <cstring>

#include "parser/Uparservyn.h"
#include "platform/text/compare.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace vyn;
    const AnsiString text(fuzzing::Bytes(data, size));
    // What gives another number each time cannot be compared.
    const AnsiString upper = UpperCase(text);
    if (upper.find("RND") != AnsiString::npos || upper.find("RANDOM") != AnsiString::npos) return 0;
    TParametres set(nullptr);
    for (const auto& [name, value] :
         {std::pair<const char*, Variant>{"a", 2.0}, {"b", -3.5}, {"DIVA", 7}, {"t", "2.5"}})
        set.AddParam(name, value);
    TParserVyn parser(nullptr);
    parser.Variables().Add(&set);
    double first = 0, second = 0;
    if (!fuzzing::Succeeds([&] { parser.SetExpression(text); })) {
        fuzzing::Require(!parser.FirstOperation() && parser.CalcValue() == 0, "a failure leaves nothing");
        return 0;
    }
    const auto errorOf = [&](double& result) -> AnsiString {
        try {
            result = parser.CalcValue();
            return {};
        } catch (const Exception& error) {
            return error.Message();
        }
    };
    fuzzing::Require(errorOf(first) == errorOf(second), "the list and its program raise alike");
    fuzzing::Require(std::memcmp(&first, &second, sizeof first) == 0, "the list and its program agree");
    fuzzing::Succeeds([&] {
        second = parser.CalcValue();
        fuzzing::Require(std::memcmp(&first, &second, sizeof first) == 0, "a program gives the same again");
    });
    return 0;
}
