#include "parser/operations.h"

#include <cmath>
#include <limits>

#include "parser/errors.h"

namespace vyn {

namespace operations_detail {

int64_t Truncated(double value) {
    constexpr double kBound = 9223372036854775808.0;  // 2 to the power 63
    if (!(value >= -kBound && value < kBound)) RaiseInvalidOperation();
    return static_cast<int64_t>(value);
}

void Nothing(const TOperationRecord&) {}
void Negate(const TOperationRecord& o) { *o.Dest = -*o.Arg1; }
void Add(const TOperationRecord& o) { *o.Dest = *o.Arg1 + *o.Arg2; }
void Subtract(const TOperationRecord& o) { *o.Dest = *o.Arg1 - *o.Arg2; }
void Multiply(const TOperationRecord& o) { *o.Dest = *o.Arg1 * *o.Arg2; }
void DivideRoutine(const TOperationRecord& o) { *o.Dest = Quotient(*o.Arg1, *o.Arg2); }
void Modulo(const TOperationRecord& o) { *o.Dest = IntegerModulo(*o.Arg1, *o.Arg2); }
void IntegerDivide(const TOperationRecord& o) { *o.Dest = IntegerQuotient(*o.Arg1, *o.Arg2); }
void IntegerPowerRoutine(const TOperationRecord& o) { *o.Dest = IntPower(*o.Arg1, *o.Arg2); }
void PowerRoutine(const TOperationRecord& o) { *o.Dest = Power(*o.Arg1, *o.Arg2); }
void Square(const TOperationRecord& o) { *o.Dest = *o.Arg1 * *o.Arg1; }
void Cube(const TOperationRecord& o) { *o.Dest = *o.Arg1 * *o.Arg1 * *o.Arg1; }
void FourthRoutine(const TOperationRecord& o) { *o.Dest = FourthPower(*o.Arg1); }

}  // namespace operations_detail

void RaiseInvalidOperation() { throw EInvalidOp("Invalid floating point operation"); }
void RaiseZeroDivide() { throw EZeroDivide("Floating point division by zero"); }

void RaiseNotFinite(double value) {
    if (std::isnan(value)) RaiseInvalidOperation();
    throw EOverflow("Floating point overflow");
}

double IntegerModulo(double a, double b) {
    const int64_t dividend = operations_detail::Truncated(a), divisor = operations_detail::Truncated(b);
    if (divisor == 0) throw EDivByZero("Division by zero");
    // The remainder of every number by -1 is 0; the processor's division has no quotient for the smallest one.
    return divisor == -1 ? 0 : static_cast<double>(dividend % divisor);
}

double IntegerQuotient(double a, double b) {
    const int64_t dividend = operations_detail::Truncated(a), divisor = operations_detail::Truncated(b);
    if (divisor == 0) throw EDivByZero("Division by zero");
    if (divisor == -1 && dividend == std::numeric_limits<int64_t>::min()) throw EIntOverflow("Integer overflow");
    return static_cast<double>(dividend / divisor);
}

double IntPower(double base, double exponent) { return WholePower(base, operations_detail::Truncated(exponent)); }

double Power(double base, double exponent) {
    if (base == 0 && exponent < 0) RaiseZeroDivide();
    return RequireFinite(std::pow(base, exponent));
}

TMathRoutine RoutineOf(TOperationCode code) {
    using namespace operations_detail;
    static constexpr TMathRoutine kRoutines[OperationCodeCount] = {
        &Nothing,      &Nothing,       &Negate, &Add,           &Subtract,
        &Multiply,     &DivideRoutine, &Modulo, &IntegerDivide, &IntegerPowerRoutine,
        &PowerRoutine, &Square,        &Cube,   &FourthRoutine, nullptr};
    return kRoutines[static_cast<size_t>(code)];
}

void OperationList::Begin(size_t operations, size_t places) {
    Clear();
    operations_.reserve(operations);
    places_.reserve(places);
}

void OperationList::Clear() {
    // What one huge expression took is not kept for the small ones that follow.
    constexpr size_t kKeptOperations = 1024;
    if (operations_.capacity() > kKeptOperations) {
        operations_ = {};
        places_ = {};
        kinds_ = {};
        variables_ = {};
        uses_ = {};
        program_ = {};
    }
    operations_.clear();
    places_.clear();
    kinds_.clear();
    variables_.clear();
    uses_.clear();
    program_.Clear();
    hasProgram_ = false;
}

double* OperationList::AddPlace(double value, Program::PlaceKind kind) {
    if (places_.size() == places_.capacity()) throw EParserInternalError("TParser internal error");
    kinds_.push_back(kind);
    return &places_.emplace_back(value);
}

double* OperationList::AddVariable(OperationVariable variable) {
    variable.Place = AddPlace(0, static_cast<Program::PlaceKind>(variables_.size()));
    return variables_.emplace_back(std::move(variable)).Place;
}

void OperationList::AddOperation(TOperationCode code, const double* arg1, const double* arg2, double* dest,
                                 TMathRoutine routine) {
    if (operations_.size() == operations_.capacity()) throw EParserInternalError("TParser internal error");
    operations_.push_back({arg1, arg2, dest, nullptr, routine, code});
}

void OperationList::Finish() {
    for (size_t i = 1; i < operations_.size(); ++i) operations_[i - 1].NextOperation = &operations_[i];
}

void OperationList::FixRoutines() {
    for (TOperationRecord& operation : operations_)
        if (operation.Code != TOperationCode::Function) operation.Operation = RoutineOf(operation.Code);
}

void OperationList::BuildProgram() {
    if (hasProgram_ || Empty()) return;
    hasProgram_ = true;
    program_.Build(operations_, places_.data(), kinds_, uses_);
    for (TOperationRecord& operation : operations_) {
        for (const double** operand : {&operation.Arg1, &operation.Arg2}) {
            const Program::PlaceKind kind = kinds_[static_cast<size_t>(*operand - places_.data())];
            if (kind >= 0) uses_.push_back({operand, kind});
        }
    }
}

double OperationList::RunList() const {
    for (const TOperationRecord& operation : operations_) operation.Operation(operation);
    return RequireFinite(*operations_.back().Dest);
}

double OperationList::Run() const { return RequireFinite(program_.Run()); }

}  // namespace vyn
