#include "foundation/Umathround.h"

#include <cmath>

namespace vyn {

namespace rounding_detail {

struct Parts {
    long double integral;
    long double fractional;
};

Parts Split(long double x) {
    Parts parts{};
    parts.fractional = std::modf(x, &parts.integral);
    return parts;
}

}  // namespace rounding_detail

int Sgn(long double x) {
    if (x > 0) return 1;
    return x == 0 ? 0 : -1;
}

long double Round_Down(long double x) { return rounding_detail::Split(x).integral; }

long double Round_Up(long double x) {
    const auto [integral, fractional] = rounding_detail::Split(x);
    return integral + Sgn(fractional);
}

long double RoundN(long double x) {
    const auto [integral, fractional] = rounding_detail::Split(x);
    return integral + Round_Down(fractional * 2);
}

long double Fix(long double x) {
    const auto [integral, fractional] = rounding_detail::Split(x);
    return fractional < 0 ? integral - 1 : integral;
}

long double RoundDnX(long double x) { return Fix(x); }

long double RoundUpX(long double x) {
    const int sign = Sgn(rounding_detail::Split(x).fractional);
    return Fix(x) + (sign < 0 ? -sign : sign);
}

long double RoundX(long double x) { return Fix(x + 0.5L); }

long double RoundD(long double x, int digits) {
    const long double factor = std::pow(10.0L, static_cast<long double>(digits));
    return RoundN(x * factor) / factor;
}

}  // namespace vyn
