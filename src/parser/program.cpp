#include "parser/program.h"

#include "parser/errors.h"
#include "parser/functions.h"
#include "parser/operations.h"

namespace vyn {

// What is computed from memory, and what becomes of it together with the accumulator. Each pair is a step of its own.
#define VYN_FOR_EACH_SOURCE(X, combine)                               \
    X(combine, Place, *i->a)                                          \
    X(combine, Sum, *i->a + *i->b)                                    \
    X(combine, Difference, *i->a - *i->b)                             \
    X(combine, Product, *i->a* * i->b)                                \
    X(combine, Product3, *i->a* * i->b * *i->c)                       \
    X(combine, WholePower, WholePower(*i->a, i->exponent))            \
    X(combine, ScaledPower, *i->a* WholePower(*i->b, i->exponent))    \
    X(combine, Larger, RequireFinite(*i->a > *i->b ? *i->a : *i->b))  \
    X(combine, Smaller, RequireFinite(*i->a < *i->b ? *i->a : *i->b)) \
    X(combine, Function, RequireFinite(i->function(*i->a)))
#define VYN_FOR_EACH_COMBINATION(X)  \
    VYN_FOR_EACH_SOURCE(X, Push)     \
    VYN_FOR_EACH_SOURCE(X, Add)      \
    VYN_FOR_EACH_SOURCE(X, Subtract) \
    VYN_FOR_EACH_SOURCE(X, Multiply) \
    VYN_FOR_EACH_SOURCE(X, Divide)
#define VYN_COMBINE_Push(x) (*top++ = value, x)
#define VYN_COMBINE_Add(x) value + (x)
#define VYN_COMBINE_Subtract(x) value - (x)
#define VYN_COMBINE_Multiply(x) value*(x)
#define VYN_COMBINE_Divide(x) Quotient(value, x)
// The accumulator alone; a place on the left of it; the stack's top on the left of it.
#define VYN_FOR_EACH_OTHER(X)                       \
    X(Negate, , -value)                             \
    X(Square, , value* value)                       \
    X(Cube, , value* value* value)                  \
    X(Fourth, , FourthPower(value))                 \
    X(RaiseWhole, , WholePower(value, i->exponent)) \
    X(SubtractFrom, , *i->a - value)                \
    X(DivideInto, , Quotient(*i->a, value))         \
    X(Apply, , RequireFinite(i->function(value)))   \
    X(AddStacked, , *--top + value)                 \
    X(SubtractStacked, , *--top - value)            \
    X(MultiplyStacked, , *--top* value)             \
    X(DivideStacked, , Quotient(*--top, value))     \
    X(Store, , (*i->dest = value, *--top))          \
    X(Call, , (i->record->Operation(*i->record), value))

enum class Program::Step : uint8_t {
#define VYN_STEP(combine, source, computed) combine##source,
    VYN_FOR_EACH_COMBINATION(VYN_STEP) VYN_FOR_EACH_OTHER(VYN_STEP)
#undef VYN_STEP
        End,
};

namespace program_detail {

// Brackets nest so deep, and each level leaves at most an operand for each kind of operator waiting.
constexpr int kStackSize = 256;

}  // namespace program_detail

// Instructions hold the address of the code of their step: from one to the next it is a single jump, which a switch in
// a loop is not. Both compilers know labels as values.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
double Program::Execute(const Instruction* instructions, const void* const** codes) {
    static const void* const kCodes[] = {
#define VYN_STEP(combine, source, computed) &&combine##source,
        VYN_FOR_EACH_COMBINATION(VYN_STEP) VYN_FOR_EACH_OTHER(VYN_STEP)
#undef VYN_STEP
        && End};
    if (codes) {
        *codes = kCodes;
        return 0;
    }
    double stack[program_detail::kStackSize];
    double* top = stack;
    double value = 0;
    const Instruction* i = instructions;
    goto * i->code;
#define VYN_STEP(combine, source, computed)                    \
    combine##source : value = VYN_COMBINE_##combine(computed); \
    ++i;                                                       \
    goto * i->code;
    VYN_FOR_EACH_COMBINATION(VYN_STEP)
#undef VYN_STEP
#define VYN_STEP(name, unused, computed) \
    name:                                \
    value = computed;                    \
    ++i;                                 \
    goto * i->code;
    VYN_FOR_EACH_OTHER(VYN_STEP)
#undef VYN_STEP
End:
    return value;
}
#pragma GCC diagnostic pop

#undef VYN_FOR_EACH_OTHER
#undef VYN_FOR_EACH_COMBINATION
#undef VYN_FOR_EACH_SOURCE
#undef VYN_COMBINE_Push
#undef VYN_COMBINE_Add
#undef VYN_COMBINE_Subtract
#undef VYN_COMBINE_Multiply
#undef VYN_COMBINE_Divide

double Program::Run() const { return Execute(instructions_.data(), nullptr); }

const void* Program::CodeOf(Step step) {
    static const void* const* const codes = [] {
        const void* const* all = nullptr;
        Execute(nullptr, &all);
        return all;
    }();
    return codes[static_cast<size_t>(step)];
}

// Goes through the operations in their order and keeps what is not computed yet as the instruction that would compute
// it, as long as it fits one. Values wait in the order in which they were made; when one is computed, all before it
// are.
class ProgramBuilder {
  public:
    using Step = Program::Step;
    using PlaceKind = Program::PlaceKind;
    using Instruction = Program::Instruction;
    using Waiting = Program::Waiting;

    ProgramBuilder(Program& program, const double* places, std::vector<PlaceKind>& kinds,
                   std::vector<Program::VariableUse>& uses)
        : instructions_(program.instructions_),
          waiting_(program.waiting_),
          uses_(uses),
          places_(places),
          kinds_(kinds) {
        instructions_.clear();
        waiting_.clear();
    }

    void Take(TOperationRecord& record) {
        using enum TOperationCode;
        switch (record.Code) {
            case Constant:
            case Variable:
                return;
            case Addition:
                return Binary(record, kAdd);
            case Subtraction:
                return Binary(record, kSubtract);
            case Multiplication:
                return Binary(record, kMultiply);
            case Division:
                return Binary(record, kDivide);
            case Negation:
                return Unary(record, Step::Negate);
            case Square:
                return Unary(record, Step::Square);
            case Cube:
                return Unary(record, Step::Cube);
            case FourthPower:
                return Unary(record, Step::Fourth);
            case IntegerPower:
                return Unary(record, Step::RaiseWhole);
            case Modulo:
            case IntegerDivision:
            case Power:
                return Call(record);
            case Function:
                return CallFunction(record);
        }
    }

    // The place of the result when that is a constant, else null.
    const double* Finish(const double* result) {
        const bool isConstant = Kind(result) == Program::ConstantPlace;
        const Waiting last = TakeOperand(result);
        if (!last.computed) Emit(last);
        Emit(Make(Step::End));
        for (Instruction& instruction : instructions_) {
            if (instruction.a) NoteUse(instruction.a);
            if (instruction.b) NoteUse(instruction.b);
        }
        for (const size_t at : threeOperands_) NoteUse(instructions_[at].c);
        return isConstant ? result : nullptr;
    }

  private:
    // The groups of steps, by what happens to the accumulator; the first is Push.
    static constexpr int kAdd = 1, kSubtract = 2, kMultiply = 3, kDivide = 4;
    static constexpr int kSourceCount = static_cast<int>(Step::AddPlace) - static_cast<int>(Step::PushPlace);

    PlaceKind& Kind(const double* place) { return kinds_[static_cast<size_t>(place - places_)]; }

    void NoteUse(const double*& operand) {
        if (const PlaceKind kind = Kind(operand); kind >= 0) uses_.push_back({&operand, kind});
    }

    static Waiting Make(Step step, const double* a = nullptr, const double* b = nullptr, const double* c = nullptr) {
        Waiting made{false, step, {nullptr, a, b, {}}};
        made.push.c = c;
        return made;
    }

    static Waiting MakePower(Step step, const double* a, const double* b, int64_t exponent) {
        Waiting made = Make(step, a, b);
        made.push.exponent = exponent;
        return made;
    }

    void Emit(const Waiting& made, int group = 0) {
        const Step step = static_cast<Step>(static_cast<int>(made.step) + group * kSourceCount);
        if (made.step == Step::PushProduct3) threeOperands_.push_back(instructions_.size());
        instructions_.push_back(made.push);
        instructions_.back().code = Program::CodeOf(step);
    }

    // Results wait in the order of the list; constants and variables are where they are.
    Waiting TakeOperand(const double* place) {
        if (Kind(place) != Program::ResultPlace) return Make(Step::PushPlace, place);
        if (waiting_.empty()) throw EParserInternalError("TParser internal error");
        const Waiting waiting = waiting_.back();
        waiting_.pop_back();
        return waiting;
    }

    // There is more room on the stack than texts can nest.
    void Wait(const Waiting& waiting) {
        if (waiting_.size() + 2 >= program_detail::kStackSize) throw EParserInternalError("TParser internal error");
        waiting_.push_back(waiting);
    }

    void WaitComputed() {
        Waiting result = Make(Step::End);
        result.computed = true;
        Wait(result);
    }

    void ComputeAllWaiting() {
        size_t from = waiting_.size();
        while (from > 0 && !waiting_[from - 1].computed) --from;
        for (; from < waiting_.size(); ++from) {
            Emit(waiting_[from]);
            waiting_[from].computed = true;
        }
    }

    // Operations on constants are done at once, unless they raise: that is for the calculation to tell.
    bool TryFold(const TOperationRecord& record) {
        if (Kind(record.Arg1) != Program::ConstantPlace || Kind(record.Arg2) != Program::ConstantPlace) return false;
        if (record.Code == TOperationCode::Function) return false;  // may give another value each time
        if (record.Code == TOperationCode::Division && *record.Arg2 == 0) return false;
        try {
            record.Operation(record);
        } catch (const Exception&) {
            return false;
        }
        Kind(record.Dest) = Program::ConstantPlace;
        return true;
    }

    void Unary(const TOperationRecord& record, Step step) {
        if (TryFold(record)) return;
        const int64_t exponent = step == Step::RaiseWhole ? static_cast<int64_t>(*record.Arg2) : 0;
        const Waiting operand = TakeOperand(record.Arg1);
        if (!operand.computed && operand.step == Step::PushPlace) {
            const double* place = operand.push.a;
            if (step == Step::Square) return Wait(Make(Step::PushProduct, place, place));
            if (step == Step::Cube) return Wait(Make(Step::PushProduct3, place, place, place));
            if (step == Step::RaiseWhole) return Wait(MakePower(Step::PushWholePower, place, nullptr, exponent));
        }
        Wait(operand);
        ComputeAllWaiting();
        Emit(MakePower(step, nullptr, nullptr, exponent));
    }

    // Two operands that are not computed may fit one instruction.
    static bool Fuse(int group, const Waiting& left, const Waiting& right, Waiting& fused) {
        const bool leftIsPlace = left.step == Step::PushPlace, rightIsPlace = right.step == Step::PushPlace;
        if (leftIsPlace && rightIsPlace) {
            if (group == kDivide) return false;
            const Step step = group == kAdd        ? Step::PushSum
                              : group == kSubtract ? Step::PushDifference
                                                   : Step::PushProduct;
            fused = Make(step, left.push.a, right.push.a);
            return true;
        }
        if (group != kMultiply) return false;
        if (left.step == Step::PushProduct && rightIsPlace) {
            fused = Make(Step::PushProduct3, left.push.a, left.push.b, right.push.a);
            return true;
        }
        if (leftIsPlace && right.step == Step::PushWholePower) {
            fused = MakePower(Step::PushScaledPower, left.push.a, right.push.a, right.push.exponent);
            return true;
        }
        return false;
    }

    void Binary(const TOperationRecord& record, int group) {
        if (TryFold(record)) return;
        const Waiting right = TakeOperand(record.Arg2);
        const Waiting left = TakeOperand(record.Arg1);
        if (right.computed) {
            constexpr Step kStacked[] = {Step::End, Step::AddStacked, Step::SubtractStacked, Step::MultiplyStacked,
                                         Step::DivideStacked};
            constexpr Step kReversed[] = {Step::End, Step::AddPlace, Step::SubtractFrom, Step::MultiplyPlace,
                                          Step::DivideInto};
            Emit(left.computed ? Make(kStacked[group]) : Make(kReversed[group], left.push.a));
            return WaitComputed();
        }
        if (Waiting fused; !left.computed && Fuse(group, left, right, fused)) return Wait(fused);
        Wait(left);
        ComputeAllWaiting();
        Emit(right, group);
    }

    // Puts an operand into its place.
    void StoreOperand(const Waiting& operand, const double* place) {
        if (!operand.computed) {
            if (operand.step == Step::PushPlace) return;
            Emit(operand);
        }
        Waiting store = Make(Step::Store);
        store.push.dest = const_cast<double*>(place);  // a result's place, which records lend out to be read only
        Emit(store);
    }

    void CallFunction(const TOperationRecord& record) {
        if (auto* function = PlainFunctionOf(record.Operation)) return CallPlain(record, function);
        const bool isMax = IsMax(record.Operation);
        if (!isMax && !IsMin(record.Operation)) return Call(record);
        if (Kind(record.Arg1) == Program::ResultPlace || Kind(record.Arg2) == Program::ResultPlace) return Call(record);
        Wait(Make(isMax ? Step::PushLarger : Step::PushSmaller, record.Arg1, record.Arg2));
    }

    void CallPlain(const TOperationRecord& record, double (*function)(double)) {
        const Waiting operand = TakeOperand(record.Arg1);
        const bool isPlace = !operand.computed && operand.step == Step::PushPlace;
        Waiting call = Make(isPlace ? Step::PushFunction : Step::Apply, isPlace ? operand.push.a : nullptr);
        call.push.function = function;
        if (isPlace) return Wait(call);
        Wait(operand);
        ComputeAllWaiting();
        Emit(call);
    }

    void Call(const TOperationRecord& record) {
        if (TryFold(record)) return;
        const bool hasSecond = record.Arg2 != record.Arg1;
        const Waiting right = hasSecond ? TakeOperand(record.Arg2) : Waiting{};
        const Waiting left = TakeOperand(record.Arg1);
        // What is on the way may raise first. The accumulator is the last that was computed: the right one, where it
        // is.
        if (!left.computed) ComputeAllWaiting();
        if (hasSecond && right.computed) StoreOperand(right, record.Arg2);
        StoreOperand(left, record.Arg1);
        if (hasSecond && !right.computed) StoreOperand(right, record.Arg2);
        Waiting call = Make(Step::Call);
        call.push.record = &record;
        Emit(call);
        Wait(Make(Step::PushPlace, record.Dest));
    }

    std::vector<Instruction>& instructions_;
    std::vector<Waiting>& waiting_;
    std::vector<Program::VariableUse>& uses_;
    std::vector<size_t> threeOperands_;
    const double* places_;
    std::vector<PlaceKind>& kinds_;
};

void Program::Build(std::vector<TOperationRecord>& operations, const double* places, std::vector<PlaceKind>& kinds,
                    std::vector<VariableUse>& uses) {
    ProgramBuilder builder(*this, places, kinds, uses);
    for (TOperationRecord& record : operations) builder.Take(record);
    constant_ = builder.Finish(operations.back().Dest);
}

}  // namespace vyn
