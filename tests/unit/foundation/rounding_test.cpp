#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "foundation/Umathround.h"

using namespace vyn;

namespace {

constexpr long double kInfinity = std::numeric_limits<long double>::infinity();
constexpr long double kNotANumber = std::numeric_limits<long double>::quiet_NaN();

}  // namespace

TEST(Rounding, SignsOfNumbers) {
    EXPECT_EQ(Sgn(0.25L), 1);
    EXPECT_EQ(Sgn(-3.0L), -1);
    EXPECT_EQ(Sgn(kInfinity), 1);
    EXPECT_EQ(Sgn(std::numeric_limits<long double>::denorm_min()), 1);
}

TEST(Rounding, BothZerosHaveTheSignZero) {
    EXPECT_EQ(Sgn(0.0L), 0);
    EXPECT_EQ(Sgn(-0.0L), 0);
}

TEST(Rounding, WhatDoesNotCompareHasTheSignMinusOne) { EXPECT_EQ(Sgn(kNotANumber), -1); }

TEST(Rounding, DownIsTowardZero) {
    EXPECT_EQ(Round_Down(-2.9L), -2.0L);
    EXPECT_EQ(Round_Down(2.9L), 2.0L);
    EXPECT_EQ(Round_Down(-3.0L), -3.0L);
    EXPECT_EQ(Round_Down(0.0L), 0.0L);
}

TEST(Rounding, UpIsAwayFromZeroWheneverThereIsAFraction) {
    EXPECT_EQ(Round_Up(-2.1L), -3.0L);
    EXPECT_EQ(Round_Up(2.1L), 3.0L);
    EXPECT_EQ(Round_Up(2.0L), 2.0L);
    EXPECT_EQ(Round_Up(-2.0L), -2.0L);
    EXPECT_EQ(Round_Up(1e-18L), 1.0L);
}

TEST(Rounding, NearestWithTiesAwayFromZero) {
    EXPECT_EQ(RoundN(2.5L), 3.0L);
    EXPECT_EQ(RoundN(-2.5L), -3.0L);
    EXPECT_EQ(RoundN(2.4999L), 2.0L);
    EXPECT_EQ(RoundN(-2.4999L), -2.0L);
    EXPECT_EQ(RoundN(3.5L), 4.0L);
    EXPECT_EQ(RoundN(0.5L), 1.0L);
}

TEST(Rounding, FixIsTheFloor) {
    EXPECT_EQ(Fix(-2.9L), -3.0L);
    EXPECT_EQ(RoundDnX(-2.9L), -3.0L);
    EXPECT_EQ(Fix(-3.0L), -3.0L);
    EXPECT_EQ(Fix(2.9L), 2.0L);
    EXPECT_EQ(RoundDnX(2.9L), 2.0L);
    EXPECT_EQ(Fix(-0.5L), -1.0L);
}

TEST(Rounding, UpXIsTheCeiling) {
    EXPECT_EQ(RoundUpX(-2.1L), -2.0L);
    EXPECT_EQ(RoundUpX(2.1L), 3.0L);
    EXPECT_EQ(RoundUpX(2.0L), 2.0L);
    EXPECT_EQ(RoundUpX(-2.0L), -2.0L);
    EXPECT_EQ(RoundUpX(-0.5L), 0.0L);
}

TEST(Rounding, XIsNearestWithTiesTowardPlusInfinity) {
    EXPECT_EQ(RoundX(-2.5L), -2.0L);
    EXPECT_EQ(RoundX(2.5L), 3.0L);
    EXPECT_EQ(RoundX(-2.6L), -3.0L);
    EXPECT_EQ(RoundX(2.4L), 2.0L);
}

TEST(Rounding, DigitsRoundAtAPowerOfTen) {
    EXPECT_EQ(RoundD(1234.5678L, 2), 123457.0L / 100.0L);
    EXPECT_EQ(RoundD(7.25L, 0), 7.0L);
}

TEST(Rounding, NegativeDigitsRoundToTensAndHundreds) {
    // A hundredth has no exact value: the quotient is 1300 to the precision of a double, one bit less beyond it.
    EXPECT_EQ(static_cast<double>(RoundD(1250.0L, -2)), 1300.0);
    EXPECT_EQ(static_cast<double>(RoundD(1249.0L, -2)), 1200.0);
    EXPECT_EQ(static_cast<double>(RoundD(-1250.0L, -2)), -1300.0);
    EXPECT_EQ(static_cast<double>(RoundD(44.0L, -1)), 40.0);
}

TEST(Rounding, AnExactTieOfTheProductRoundsAwayFromZero) {
    ASSERT_EQ(-0.125L * 100.0L, -12.5L);
    EXPECT_EQ(RoundD(-0.125L, 2), -13.0L / 100.0L);
}

TEST(Rounding, DigitsCorrectNoRepresentationError) {
    // The double 1.005 lies below the decimal 1.005, and so does its product with 100: no tie, no correction.
    const long double below = static_cast<long double>(1.005);
    ASSERT_LT(below * 100.0L, 100.5L);
    EXPECT_EQ(RoundD(below, 2), 1.0L);
}

TEST(Rounding, TheWidthOfTheTypeIsKept) {
    const long double wide = 9007199254740993.5L;  // more digits than a double holds
    EXPECT_EQ(Round_Down(wide), 9007199254740993.0L);
    EXPECT_EQ(RoundN(wide), 9007199254740994.0L);
}

TEST(Rounding, WhatIsNoFiniteNumberRaisesNothing) {
    EXPECT_EQ(RoundN(kInfinity), kInfinity);
    EXPECT_EQ(Fix(-kInfinity), -kInfinity);
    EXPECT_TRUE(std::isnan(RoundUpX(kNotANumber)));
    EXPECT_TRUE(std::isnan(RoundD(1.0L, INT_MAX)));
    EXPECT_TRUE(std::isnan(RoundD(1.0L, INT_MIN)));
}
