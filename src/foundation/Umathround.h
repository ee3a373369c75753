#pragma once

// Rounding with a chosen behaviour at signs and ties, whatever the processor's rounding mode is.
//
// All work in the widest floating-point type and correct no binary representation error: RoundD(1.005L, 2) is what the
// steps on it give. "Integral part" and "fractional part" are the truncating split, both with the sign of x: -2.5 is -2
// and -0.5. Pure functions, any thread; they raise nothing: what is infinite stays so, not-a-number stays so.
namespace vyn {

// 1, 0 (for -0.0 too) or -1; -1 for what does not compare (not-a-number).
int Sgn(long double x);

long double Round_Down(long double x);  // toward zero
long double Round_Up(long double x);    // away from zero
long double RoundN(long double x);      // to nearest, ties away from zero
long double Fix(long double x);         // toward minus infinity
long double RoundDnX(long double x);    // toward minus infinity
long double RoundUpX(long double x);    // toward plus infinity
long double RoundX(long double x);      // to nearest, ties toward plus infinity: Fix(x + 0.5)

// RoundN at 10 to the power `digits`; negative digits round to tens, hundreds and so on. Digits that take the value out
// of the type's range give what the steps give, not-a-number among it.
long double RoundD(long double x, int digits);

}  // namespace vyn
