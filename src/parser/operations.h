#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "foundation/Uparametres.h"
#include "parser/program.h"

// What an expression is compiled to: a list of operations over doubles, in the order in which they run.
namespace vyn {

struct TOperationRecord;
// Computes *Dest from *Arg1 and *Arg2.
using TMathRoutine = void (*)(const TOperationRecord& operation);

// Codes of operations (a: first operand, b: second). They are compared by number in stored traces: they never change.
enum class TOperationCode : uint8_t {
    Constant = 0,  // nothing: the value is in place
    Variable = 1,  // nothing: the value is in place
    Negation = 2,
    Addition = 3,
    Subtraction = 4,
    Multiplication = 5,
    Division = 6,
    Modulo = 7,           // Trunc(a) mod Trunc(b), 64-bit integers
    IntegerDivision = 8,  // Trunc(a) div Trunc(b), 64-bit integers
    IntegerPower = 9,     // IntPower(a, Trunc(b))
    Power = 10,           // Power(a, b)
    Square = 11,
    Cube = 12,         // a*a*a
    FourthPower = 13,  // (a*a)*(a*a)
    Function = 14,     // a registered routine
};
constexpr int OperationCodeCount = 15;

// One operation. The operands point at a constant's place, at a variable's place or at an earlier result.
struct TOperationRecord {
    const double* Arg1;
    const double* Arg2;  // not read by operations of one operand
    double* Dest;
    TOperationRecord* NextOperation;  // in the order of execution; null at the end
    TMathRoutine Operation;           // null until FixRoutines
    TOperationCode Code;
};
using TPOperation = TOperationRecord*;

// The routine of a code; null for functions, whose routine is the registered one.
TMathRoutine RoutineOf(TOperationCode code);

// The arithmetic of the codes 7 to 10, also for functions. Errors as Run.
double IntegerModulo(double a, double b);
double IntegerQuotient(double a, double b);
double IntPower(double base, double exponent);  // the exponent is truncated
double Power(double base, double exponent);
[[noreturn]] void RaiseInvalidOperation();
[[noreturn]] void RaiseZeroDivide();
[[noreturn]] void RaiseNotFinite(double value);

// The value, when it is a finite number; else raises EInvalidOp (not-a-number) or EOverflow.
VYN_IN_PLACE inline double RequireFinite(double value) {
    if (std::isfinite(value)) [[likely]]
        return value;
    RaiseNotFinite(value);
}

VYN_IN_PLACE inline double Quotient(double a, double b) {
    if (b == 0) [[unlikely]] {
        if (a == 0 || std::isnan(a)) RaiseInvalidOperation();
        RaiseZeroDivide();
    }
    return a / b;
}

VYN_IN_PLACE inline double FourthPower(double a) {
    const double square = a * a;
    return square * square;
}

// By squaring.
VYN_IN_PLACE inline double WholePower(double base, int64_t exponent) {
    uint64_t left = exponent < 0 ? 0 - static_cast<uint64_t>(exponent) : static_cast<uint64_t>(exponent);
    if (exponent < 0 && base == 0) [[unlikely]]
        RaiseZeroDivide();
    double result = 1;
    for (double square = base;; square *= square) {
        if (left & 1) result *= square;
        left >>= 1;
        if (left == 0) break;
    }
    return exponent < 0 ? 1 / result : result;
}

// A variable of the expression: a parameter, and the place that its value is put into before a calculation.
struct OperationVariable {
    AnsiString Name;
    double* Place;
    const TParametres* Params;  // the set that holds it, when the list was made
    const Variant* Stored;      // the parameter's own storage; null when it must be read by name
};

// A list of operations with the places of its values: owns both. The records stand one behind the other in memory, so
// a calculation walks through them without chasing NextOperation. Clear keeps the memory for the next expression.
class OperationList {
  public:
    OperationList() = default;
    OperationList(const OperationList&) = delete;
    OperationList& operator=(const OperationList&) = delete;

    // Empties the list and makes room for so many; nothing may be added beyond it (EParserInternalError), because
    // operands point into the list.
    void Begin(size_t operations, size_t places);
    void Clear();

    // A constant's place when it has a value; else a result's.
    double* AddConstant(double value) { return AddPlace(value, Program::ConstantPlace); }
    double* AddResult() { return AddPlace(0, Program::ResultPlace); }
    void AddOperation(TOperationCode code, const double* arg1, const double* arg2, double* dest,
                      TMathRoutine routine = nullptr);
    // The variable's place, which is also its record's.
    double* AddVariable(OperationVariable variable);
    // Links the records to a list.
    void Finish();
    // Fills in the routine of every operation from its code; the list can run then.
    void FixRoutines();

    bool Empty() const { return operations_.empty(); }
    size_t Count() const { return operations_.size(); }
    // The head of the list, or null.
    TPOperation First() { return operations_.empty() ? nullptr : operations_.data(); }
    std::vector<OperationVariable>& Variables() { return variables_; }
    // Makes ready for many calculations, with fixed routines.
    void BuildProgram();
    bool HasProgram() const { return hasProgram_; }
    // Lets every operand that is a variable read the places given, one for each of Variables. Needs the program.
    void BindVariables(const std::vector<const double*>& places) {
        for (const Program::VariableUse& use : uses_) *use.operand = places[static_cast<size_t>(use.variable)];
    }

    // Runs every operation in order; the last result. A result that is no finite number raises EOverflow or EInvalidOp;
    // a division by zero raises where it happens (EZeroDivide, for integers EDivByZero).
    double RunList() const;
    // The same to the bit by the program.
    VYN_LOCAL double Run() const;
    // The result that no variable and no function has a part in; null when there is none. Needs the program.
    const double* ConstantResult() const { return program_.ConstantResult(); }

  private:
    double* AddPlace(double value, Program::PlaceKind kind);

    std::vector<TOperationRecord> operations_;
    std::vector<double> places_;
    std::vector<Program::PlaceKind> kinds_;
    std::vector<Program::VariableUse> uses_;
    Program program_;
    bool hasProgram_ = false;
    std::vector<OperationVariable> variables_;
};

}  // namespace vyn
