#include "platform/values/currency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

constexpr auto kMostAmount = Currency::FromScaled(std::numeric_limits<std::int64_t>::max());
constexpr auto kLeastAmount = Currency::FromScaled(std::numeric_limits<std::int64_t>::min());

}  // namespace

TEST(Currency, HalvesRoundAwayFromZero) {
    EXPECT_EQ(1, Currency(0.00005).Val);
    EXPECT_EQ(-1, Currency(-0.00005).Val);
    EXPECT_EQ(0, Currency(0.00004999).Val);
    EXPECT_EQ(10002, Currency(1.00015).Val);
    EXPECT_EQ(12345, Currency(1.2345).Val);
    EXPECT_EQ(10000, Currency(1).Val);
    EXPECT_EQ(15000, Currency(1.5f).Val);
}

TEST(Currency, WhatDoesNotFitRaises) {
    EXPECT_THROW(Currency(1e15), EOverflow);
    EXPECT_THROW(Currency(-1e15), EOverflow);
    EXPECT_THROW(Currency(std::nan("")), EOverflow);
    EXPECT_THROW(Currency(std::numeric_limits<double>::infinity()), EOverflow);
    EXPECT_THROW(kMostAmount + Currency(1), EOverflow);
    EXPECT_THROW(kLeastAmount - Currency(1), EOverflow);
    EXPECT_THROW(-kLeastAmount, EOverflow);
    EXPECT_THROW(kMostAmount * Currency(2), EOverflow);
    EXPECT_THROW(kMostAmount * 2.0, EOverflow);
    EXPECT_THROW(kMostAmount / Currency(0.5), EOverflow);
    try {
        Currency(1e15);
    } catch (const EOverflow& error) {
        EXPECT_EQ("Floating point overflow", error.Message());
    }
}

TEST(Currency, ArithmeticIsExactInTenThousandths) {
    EXPECT_EQ(Currency(0.3), Currency(0.1) + Currency(0.2));
    EXPECT_EQ(Currency(-0.1), Currency(0.1) - Currency(0.2));
    EXPECT_EQ(Currency(-1.5), -Currency(1.5));
    EXPECT_EQ(Currency(3), Currency(1.5) * Currency(2));
    EXPECT_EQ(Currency(3), Currency(1.5) * 2.0);
    EXPECT_EQ(33333, (Currency(10) / Currency(3)).Val);
    EXPECT_EQ(-66667, (Currency(-20) / Currency(3)).Val);
    EXPECT_EQ(33333, (Currency(10) / 3.0).Val);
    EXPECT_EQ(1, (Currency::FromScaled(1) * Currency(0.5)).Val);
    EXPECT_EQ(kMostAmount, kMostAmount * Currency(1));
}

TEST(Currency, DivisionByZeroRaises) {
    EXPECT_THROW(Currency(1) / Currency(), EZeroDivide);
    try {
        Currency(1) / 0.0;
        FAIL();
    } catch (const EZeroDivide& error) {
        EXPECT_EQ("Floating point division by zero", error.Message());
    }
}

TEST(Currency, ComparesAndConverts) {
    EXPECT_LT(Currency(1), Currency(1.0001));
    EXPECT_EQ(1.2345, Currency(1.2345).ToDouble());
    EXPECT_EQ(922337203685477.5807L, kMostAmount.ToExtended());
}

TEST(Currency, TextsBothWays) {
    const TFormatSettings& settings = InvariantFormatSettings();
    EXPECT_EQ("1234.5", CurrToStr(Currency(1234.5), settings));
    EXPECT_EQ("922337203685477.5807", CurrToStr(kMostAmount, settings));
    EXPECT_EQ("1,234.50", CurrToStrF(Currency(1234.5), ffNumber, 2, settings));
    EXPECT_EQ(Currency(-1234.5678), StrToCurr("-1234.5678", settings));
    EXPECT_EQ(kLeastAmount, StrToCurr("-922337203685477.5808", settings));
    Currency value(7);
    EXPECT_FALSE(TryStrToCurr("1,5", value, settings));
    EXPECT_EQ(Currency(7), value);
    try {
        StrToCurr("abc", settings);
        FAIL();
    } catch (const EConvertError& error) {
        EXPECT_EQ("'abc' is not a valid currency value", error.Message());
    }
}
