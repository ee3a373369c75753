#include "parser/functions.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

void TFunctionList::Add(std::string_view name, TMathRoutine routine) {
    Entry entry{UpperCase(name), routine};
    if (Find(name)) throw EStringListError("String list does not allow duplicates");
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), entry,
                                     [](const Entry& a, const Entry& b) { return a.name < b.name; });
    entries_.insert(at, std::move(entry));
    Reindex();
}

bool TFunctionList::Remove(std::string_view name) {
    const auto removed = std::erase_if(entries_, [&](const Entry& entry) { return SameText(entry.name, name); });
    Reindex();
    return removed > 0;
}

TMathRoutine TFunctionList::Find(std::string_view name) const {
    const uint32_t at = index_.Find(name);
    return at == NameIndex::NotFound ? nullptr : entries_[at].routine;
}

void TFunctionList::Reindex() {
    index_.Clear();
    for (size_t i = 0; i < entries_.size(); ++i) index_.Insert(entries_[i].name, static_cast<uint32_t>(i));
}

namespace functions_detail {

constexpr double kPesetasPerEuro = 166.386;
constexpr char kTwoDecimals[] = "0.00";

// Wraps a function of doubles as a routine.
template <double (*Compute)(double)>
void One(const TOperationRecord& o) {
    *o.Dest = RequireFinite(Compute(*o.Arg1));
}
template <double (*Compute)(double, double)>
void Two(const TOperationRecord& o) {
    *o.Dest = RequireFinite(Compute(*o.Arg1, *o.Arg2));
}

double Reciprocal(double a) {
    if (a == 0) RaiseZeroDivide();
    return 1 / a;
}

// Logarithms have no value at 0: the processor takes it for a division by zero.
double RequireLogarithm(double a) {
    if (a == 0) RaiseZeroDivide();
    return a;
}

double Tan(double a) { return std::tan(a); }
double Sin(double a) { return std::sin(a); }
double Cos(double a) { return std::cos(a); }
double Sinh(double a) { return std::sinh(a); }
double Cosh(double a) { return std::cosh(a); }
double ArcTan(double a) { return std::atan(a); }
double Cotan(double a) { return Reciprocal(std::tan(a)); }
double Arg(double a) { return a < 0 ? std::numbers::pi : 0; }
double Exp(double a) { return std::exp(a); }
double Ln(double a) { return std::log(RequireLogarithm(a)); }
double Log10(double a) { return std::log10(RequireLogarithm(a)); }
double Log2(double a) { return std::log2(RequireLogarithm(a)); }
double Sqr(double a) { return a * a; }
double Sqrt(double a) { return std::sqrt(a); }
double Abs(double a) { return std::fabs(a); }
double Trunc(double a) { return std::trunc(a); }
double Ceil(double a) { return std::ceil(a); }
double Floor(double a) { return std::floor(a); }
double Round(double a) {
    // To even at ties, whatever the processor's rounding mode is.
    const double floor = std::floor(a), rest = a - floor;
    if (rest != 0.5) return rest < 0.5 ? floor : floor + 1;
    return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}
double Heaviside(double a) { return a < 0 ? 0 : 1; }
double Sign(double a) { return a > 0 ? 1 : a < 0 ? -1 : 0; }
double Zero(double a) { return a == 0 ? 1 : 0; }

// Below 1, with 53 random bits.
double RandomFraction() {
    static std::mt19937_64 generator{std::random_device{}()};
    return static_cast<double>(generator() >> 11) * 0x1p-53;
}
double Rnd(double a) { return a * RandomFraction(); }
double Random(double a) {
    const double count = std::trunc(a);
    return count < 1 ? 0 : std::floor(count * RandomFraction());
}

double Max(double a, double b) { return a > b ? a : b; }
double Min(double a, double b) { return a < b ? a : b; }
double LogN(double base, double a) {
    const double divisor = Ln(base);
    if (divisor == 0) RaiseZeroDivide();
    return Ln(a) / divisor;
}

bool IsZeroFlag(double flag) { return Round(flag) == 0; }
double TwoDecimals(double amount) { return StrToFloat(FormatFloat(kTwoDecimals, RequireFinite(amount))); }
double Euros(double flag, double amount) { return IsZeroFlag(flag) ? amount / kPesetasPerEuro : amount; }
double Pesetas(double flag, double amount) { return IsZeroFlag(flag) ? amount * kPesetasPerEuro : amount; }
double CounterEuros(double flag, double amount) {
    return IsZeroFlag(flag) ? TwoDecimals(amount / kPesetasPerEuro) : Round(amount * kPesetasPerEuro);
}
double CounterPesetas(double flag, double amount) {
    return IsZeroFlag(flag) ? Round(amount * kPesetasPerEuro) : TwoDecimals(amount / kPesetasPerEuro);
}

struct BuiltIn {
    const char* name;
    TMathRoutine routine;
    double (*function)(double) = nullptr;  // of one argument
};

template <double (*Compute)(double)>
constexpr BuiltIn OfOne(const char* name) {
    return {name, &One<Compute>, Compute};
}

constexpr BuiltIn kOneParam[] = {
    OfOne<Tan>("TAN"),        OfOne<Sin>("SIN"),     OfOne<Cos>("COS"),   OfOne<Sinh>("SINH"),   OfOne<Cosh>("COSH"),
    OfOne<ArcTan>("ARCTAN"),  OfOne<Cotan>("COTAN"), OfOne<Arg>("ARG"),   OfOne<Exp>("EXP"),     OfOne<Ln>("LN"),
    OfOne<Log10>("LOG10"),    OfOne<Log2>("LOG2"),   OfOne<Sqr>("SQR"),   OfOne<Sqrt>("SQRT"),   OfOne<Abs>("ABS"),
    OfOne<Trunc>("TRUNC"),    OfOne<Trunc>("INT"),   OfOne<Ceil>("CEIL"), OfOne<Floor>("FLOOR"), OfOne<Round>("ROUND"),
    OfOne<Heaviside>("HEAV"), OfOne<Sign>("SIGN"),   OfOne<Zero>("ZERO"), OfOne<Arg>("PH"),      OfOne<Rnd>("RND"),
    OfOne<Random>("RANDOM"),
};
constexpr BuiltIn kTwoParam[] = {
    {"MAX", &Two<Max>},
    {"MIN", &Two<Min>},
    {"EUROS", &Two<Euros>},
    {"PTES", &Two<Pesetas>},
    {"CONTRAVALOR_PTES", &Two<CounterPesetas>},
    {"CONTRAVALOR_EUROS", &Two<CounterEuros>},
    {"POWER", &Two<vyn::Power>},
    {"INTPOWER", &Two<vyn::IntPower>},
    {"LOGN", &Two<LogN>},
};

template <size_t N>
std::shared_ptr<const TFunctionList> ListOf(const BuiltIn (&functions)[N]) {
    auto list = std::make_shared<TFunctionList>();
    for (const BuiltIn& function : functions) list->Add(function.name, function.routine);
    return list;
}

}  // namespace functions_detail

const std::shared_ptr<const TFunctionList>& BuiltInOneParam() {
    static const auto list = functions_detail::ListOf(functions_detail::kOneParam);
    return list;
}

const std::shared_ptr<const TFunctionList>& BuiltInTwoParam() {
    static const auto list = functions_detail::ListOf(functions_detail::kTwoParam);
    return list;
}

double (*PlainFunctionOf(TMathRoutine routine))(double) {
    for (const auto& function : functions_detail::kOneParam)
        if (function.routine == routine) return function.function;
    return nullptr;
}

bool IsMax(TMathRoutine routine) { return routine == &functions_detail::Two<functions_detail::Max>; }
bool IsMin(TMathRoutine routine) { return routine == &functions_detail::Two<functions_detail::Min>; }

}  // namespace vyn
