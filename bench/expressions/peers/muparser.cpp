// muParser, with its variables bound by pointers. It compiles at the first calculation.

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <algorithm>
#include <cctype>
#include <cmath>

#include "expressions/expressions.h"

namespace {

using namespace expressions_bench;

struct Peer {
    Peer() {
        for (const Variable& variable : Variables()) values.push_back(variable.value);
        for (size_t i = 0; i < values.size(); ++i) parser.DefineVar(Variables()[i].name, &values[i]);
    }
    std::vector<double> values;
    mu::Parser parser;
};

// Its functions have small names.
std::string TextFor(const Expression& expression) {
    std::string text = expression.text;
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

void Compile(benchmark::State& state, const Expression& expression) {
    Peer peer;
    const std::string text = TextFor(expression);
    for (auto _ : state) {
        peer.parser.SetExpr(text);
        benchmark::DoNotOptimize(peer.parser.Eval());
    }
}

void Calculate(benchmark::State& state, const Expression& expression) {
    Peer peer;
    peer.parser.SetExpr(TextFor(expression));
    const double expected = expression.compiled(peer.values.data());
    if (std::fabs(peer.parser.Eval() - expected) > 1e-9 * std::fabs(expected)) state.SkipWithError("it is wrong");
    for (auto _ : state) benchmark::DoNotOptimize(peer.parser.Eval());
}

const bool registered = [] {
    for (const Expression& expression : Expressions()) {
        const std::string name = expression.name;
        benchmark::RegisterBenchmark(("expressions_compile/peer_muparser/" + name).c_str(), Compile, expression);
        benchmark::RegisterBenchmark(("expressions_calculate/peer_muparser/" + name).c_str(), Calculate, expression);
    }
    return true;
}();

}  // namespace
