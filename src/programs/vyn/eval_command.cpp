#include <iostream>

#include "foundation/Uparametres.h"
#include "parser/Uparservyn.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "programs/tools/named_values.h"
#include "programs/vyn/commands.h"

namespace vyn {

int EvalCommand(const std::string& expression, const std::vector<std::string>& values) {
    TParametres set(nullptr);
    AddNamedValues(values, set);
    TParserVyn parser(nullptr);
    parser.Variables().Add(&set);
    parser.SetExpression(Utf8ToAnsi(expression));
    std::cout << ShortestDouble(parser.CalcValue()) << std::endl;
    if (!std::cout) throw EWriteError("Standard output cannot be written");
    return 0;
}

}  // namespace vyn
