// Expressions: compiling (with the first calculation, at which the peer compiles) and calculating again and again, with
// variables that are read from where they are.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "expressions/expressions.h"
#include "parser/Uparservyn.h"

namespace {

using namespace expressions_bench;

// A parser whose variables are parameters of a set.
struct Ours {
    Ours() {
        for (const Variable& variable : Variables()) set.AddParam(variable.name, variable.value);
        parser.Variables().Add(&set);
    }
    vyn::TParametres set{nullptr};
    vyn::TParserVyn parser{nullptr};
};

std::vector<double> Values() {
    std::vector<double> values;
    for (const Variable& variable : Variables()) values.push_back(variable.value);
    return values;
}

void Compile(benchmark::State& state, const Expression& expression) {
    Ours ours;
    for (auto _ : state) {
        ours.parser.SetExpression(expression.text);
        benchmark::DoNotOptimize(ours.parser.CalcValue());
    }
}

void Calculate(benchmark::State& state, const Expression& expression) {
    Ours ours;
    ours.parser.SetExpression(expression.text);
    const double expected = expression.compiled(Values().data());
    for (int i = 0; i < 3; ++i)
        if (std::fabs(ours.parser.CalcValue() - expected) > 1e-9 * std::fabs(expected))
            state.SkipWithError("it is wrong");
    for (auto _ : state) benchmark::DoNotOptimize(ours.parser.CalcValue());
}

// The same in compiled C++, with the variables in memory.
void Compiled(benchmark::State& state, const Expression& expression) {
    std::vector<double> values = Values();
    for (auto _ : state) {
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
        benchmark::DoNotOptimize(expression.compiled(values.data()));
    }
}

const bool registered = [] {
    for (const Expression& expression : Expressions()) {
        const std::string name = expression.name;
        benchmark::RegisterBenchmark(("expressions_compile/ours/" + name).c_str(), Compile, expression);
        benchmark::RegisterBenchmark(("expressions_calculate/ours/" + name).c_str(), Calculate, expression);
        benchmark::RegisterBenchmark(("expressions_calculate/limit_compiled/" + name).c_str(), Compiled, expression);
    }
    return true;
}();

}  // namespace
