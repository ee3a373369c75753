#pragma once

#include <cstdint>
#include <vector>

// Called inside the library alone: directly, not through its table of symbols.
#define VYN_LOCAL [[gnu::visibility("hidden")]]
// In each step of a program: a call would cost more than the work.
#define VYN_IN_PLACE [[gnu::always_inline]]

namespace vyn {

struct TOperationRecord;

// The same work as a list of operations, laid out for running: one accumulator, a short stack, and instructions that
// take whole products and sums of two from memory, so that an expression runs in few steps. Operations on constants
// alone are done once, when the program is built. Functions of an application, and what is rare, run through their
// records.
//
// Every value is computed by the operations of the list, on the same operands, and what may raise in the same order:
// results are the same to the bit, and so are errors.
class Program {
  public:
    // What is known of a place of the list before the program runs: a constant, a result, or the variable of a number.
    using PlaceKind = int32_t;
    static constexpr PlaceKind ConstantPlace = -1;
    static constexpr PlaceKind ResultPlace = -2;

    // An operand that reads a variable, wherever its value is.
    struct VariableUse {
        const double** operand;
        PlaceKind variable;
    };

    void Clear() {
        instructions_.clear();
        constant_ = nullptr;
    }
    // Records and places stay where they are as long as the program is used, and their routines are known. `places` is
    // the first place, `kinds` tells of each. Adds the uses of variables.
    void Build(std::vector<TOperationRecord>& operations, const double* places, std::vector<PlaceKind>& kinds,
               std::vector<VariableUse>& uses);

    // The last result, whatever it is. Raises what the operations raise.
    VYN_LOCAL double Run() const;
    // The result, when it was known to the builder; else null.
    const double* ConstantResult() const { return constant_; }

  private:
    friend class ProgramBuilder;
    enum class Step : uint8_t;
    struct Instruction {
        const void* code;  // of its step
        const double* a;
        const double* b;
        union {
            const double* c;
            int64_t exponent;
            double* dest;
            double (*function)(double);
            const TOperationRecord* record;
        };
    };
    // A value on the way: computed (in the accumulator when it is the last, else on the stack), or the instruction that
    // would push it.
    struct Waiting {
        bool computed;
        Step step;
        Instruction push;
    };
    // Runs instructions; without any, gives the code of each step.
    VYN_LOCAL static double Execute(const Instruction* instructions, const void* const** codes);
    VYN_LOCAL static const void* CodeOf(Step step);

    std::vector<Instruction> instructions_;
    std::vector<Waiting> waiting_;  // the builder's; kept for its memory
    const double* constant_ = nullptr;
};

}  // namespace vyn
