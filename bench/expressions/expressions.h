#pragma once

#include <string>
#include <vector>

// The expressions that every subject of the bench calculates, and their variables.
namespace expressions_bench {

struct Expression {
    const char* name;
    std::string text;                          // with function names in capitals
    double (*compiled)(const double* values);  // the same in C++
};

struct Variable {
    const char* name;
    double value;
};

const std::vector<Expression>& Expressions();
const std::vector<Variable>& Variables();

}  // namespace expressions_bench
