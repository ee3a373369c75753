#include "expressions/expressions.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace expressions_bench {

namespace {

enum { A, B, C, D, X, Y };
constexpr int kTerms = 40;

// "1.5TAIL+2.5TAIL+...", where a # in the tail is the term's number.
std::string Terms(const std::string& tail) {
    std::string text;
    for (int i = 1; i <= kTerms; ++i) {
        std::string term = tail;
        if (const size_t at = term.find('#'); at != std::string::npos) term.replace(at, 1, std::to_string(i));
        text += (i > 1 ? "+" : "") + std::to_string(i) + ".5" + term;
    }
    return text;
}

double SumOfProducts(const double* v) {
    double sum = 0;
    for (int i = 1; i <= kTerms; ++i) sum += (i + 0.5) * v[X] * v[Y];
    return sum;
}

double SumOfPowers(const double* v) {
    double sum = 0;
    for (int i = 1; i <= kTerms; ++i) sum += (i + 0.5) * std::pow(v[A], i);
    return sum;
}

}  // namespace

const std::vector<Variable>& Variables() {
    static const std::vector<Variable> variables = {{"a", 1.3}, {"b", 3},   {"c", 0.5},
                                                    {"d", 1.5}, {"x", 2.5}, {"y", 3.5}};
    return variables;
}

const std::vector<Expression>& Expressions() {
    static const std::vector<Expression> expressions = {
        {"sum", "a+b*2", [](const double* v) { return v[A] + v[B] * 2; }},
        {"brackets", "(a+b)*(c-d)/2", [](const double* v) { return (v[A] + v[B]) * ((v[C] - v[D]) / 2); }},
        {"functions", "MAX(a,b)+SIN(c)^2",
         [](const double* v) {
             const double sine = std::sin(v[C]);
             return std::max(v[A], v[B]) + sine * sine;
         }},
        {"40_products", Terms("*x*y"), &SumOfProducts},
        {"40_powers", Terms("*a^#"), &SumOfPowers},
        {"constants", "1.5+2.5*3-4/8+(7-2)*6", [](const double*) { return 1.5 + (2.5 * 3 - 4.0 / 8) + (7 - 2) * 6.0; }},
    };
    return expressions;
}

}  // namespace expressions_bench
