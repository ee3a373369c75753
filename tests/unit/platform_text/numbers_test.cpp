#include "platform/text/numbers.h"
#include "platform/text/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

const TFormatSettings& Plain() { return InvariantFormatSettings(); }

TFormatSettings Spanish() { return FormatSettingsOfLocale("es_ES"); }

template <class Call>
std::string MessageOfConversion(Call call) {
    try {
        call();
    } catch (const EConvertError& error) {
        return error.Message();
    }
    return "nothing was raised";
}

AnsiString Masked(const char* mask, long double value) { return FormatFloat(mask, value, Plain()); }

}  // namespace

TEST(Numbers, IntegersAsText) {
    EXPECT_EQ("0", IntToStr(0));
    EXPECT_EQ("-7", IntToStr(-7));
    EXPECT_EQ("-9223372036854775808", IntToStr(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ("9223372036854775807", IntToStr(std::numeric_limits<std::int64_t>::max()));
}

TEST(Numbers, HexadecimalHasTheWidthOfItsType) {
    EXPECT_EQ("FF", IntToHex(255, 2));
    EXPECT_EQ("00FF", IntToHex(255, 4));
    EXPECT_EQ("1FF", IntToHex(0x1FF, 2));
    EXPECT_EQ("FFFFFFFF", IntToHex(-1, 8));
    EXPECT_EQ("FFFFFFFFFFFFFFFF", IntToHex(std::int64_t{-1}, 1));
    EXPECT_EQ("0", IntToHex(0, -5));
}

TEST(Numbers, TextsAsIntegers) {
    EXPECT_EQ(42, StrToInt("42"));
    EXPECT_EQ(42, StrToInt("  +42"));
    EXPECT_EQ(-42, StrToInt("-42"));
    EXPECT_EQ(255, StrToInt("$FF"));
    EXPECT_EQ(255, StrToInt("0xff"));
    EXPECT_EQ(-16, StrToInt("-$10"));
    EXPECT_EQ(-1, StrToInt("$FFFFFFFF"));
    EXPECT_EQ(2147483647, StrToInt("2147483647"));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), StrToInt("-2147483648"));
    EXPECT_EQ(4294967295, StrToInt64("$FFFFFFFF"));
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), StrToInt64("-9223372036854775808"));
}

TEST(Numbers, WhatIsNoInteger) {
    for (const char* text : {"", " ", "-", "$", "0x", "abc", "1 ", "1.5", "2147483648", "-2147483649", "$100000000",
                             "--1", "1a", "$-1", "+-1"}) {
        std::int32_t value = 77;
        EXPECT_FALSE(TryStrToInt(text, value)) << text;
        EXPECT_EQ(77, value) << text;
        EXPECT_EQ(5, StrToIntDef(text, 5)) << text;
    }
    std::int64_t wide = 0;
    EXPECT_FALSE(TryStrToInt64("9223372036854775808", wide));
    EXPECT_EQ(6, StrToInt64Def("x", 6));
    EXPECT_EQ(7, StrToInt64Def("7", 6));
    EXPECT_EQ(7, StrToIntDef("7", 6));
}

TEST(Numbers, TheErrorNamesTheTextThatIsNoInteger) {
    EXPECT_EQ("'abc' is not a valid integer value", MessageOfConversion([] { StrToInt("abc"); }));
    EXPECT_EQ("'' is not a valid integer value", MessageOfConversion([] { StrToInt64(""); }));
}

TEST(Numbers, GeneralFormatHasFifteenDigits) {
    EXPECT_EQ("0", FloatToStr(0.0, Plain()));
    EXPECT_EQ("0", FloatToStr(-0.0, Plain()));
    EXPECT_EQ("0.1", FloatToStr(0.1, Plain()));
    EXPECT_EQ("0.3", FloatToStr(0.1 + 0.2, Plain()));
    EXPECT_EQ("-1234.5", FloatToStr(-1234.5, Plain()));
    EXPECT_EQ("1234,5", FloatToStr(1234.5, Spanish()));
    EXPECT_EQ("0.333333333333333", FloatToStr(1.0 / 3, Plain()));
    EXPECT_EQ("123456789012345", FloatToStr(123456789012345.0, Plain()));
}

TEST(Numbers, PlainNotationEndsAfterFifteenDigitsAndFourZeros) {
    EXPECT_EQ("999999999999999", FloatToStr(999999999999999.0, Plain()));
    EXPECT_EQ("1E15", FloatToStr(1e15, Plain()));
    EXPECT_EQ("1E15", FloatToStr(999999999999999.9, Plain()));
    EXPECT_EQ("1E20", FloatToStr(1e20, Plain()));
    EXPECT_EQ("1.5E20", FloatToStr(1.5e20, Plain()));
    EXPECT_EQ("0.0001", FloatToStr(0.0001, Plain()));
    EXPECT_EQ("1E-5", FloatToStr(0.00001, Plain()));
    EXPECT_EQ("-1.23E-10", FloatToStr(-1.23e-10, Plain()));
}

TEST(Numbers, TheLimitsOfTheTypeAreWritten) {
    EXPECT_EQ("1.79769313486232E308", FloatToStr(std::numeric_limits<double>::max(), Plain()));
    EXPECT_EQ("4.94065645841247E-324", FloatToStr(std::numeric_limits<double>::denorm_min(), Plain()));
    EXPECT_EQ("NAN", FloatToStr(std::nan(""), Plain()));
    EXPECT_EQ("INF", FloatToStr(std::numeric_limits<double>::infinity(), Plain()));
    EXPECT_EQ("-INF", FloatToStr(-std::numeric_limits<double>::infinity(), Plain()));
    EXPECT_EQ("NAN", Masked("0.00", std::nan("")));
}

TEST(Numbers, FixedFormatRoundsHalvesAwayFromZero) {
    EXPECT_EQ("0.13", FloatToStrF(0.125, ffFixed, 15, 2, Plain()));
    EXPECT_EQ("-0.13", FloatToStrF(-0.125, ffFixed, 15, 2, Plain()));
    EXPECT_EQ("3", FloatToStrF(2.5, ffFixed, 15, 0, Plain()));
    EXPECT_EQ("1.00", FloatToStrF(0.999, ffFixed, 15, 2, Plain()));
    EXPECT_EQ("1234.50", FloatToStrF(1234.5, ffFixed, 15, 2, Plain()));
    EXPECT_EQ("0.00", FloatToStrF(-0.001, ffFixed, 15, 2, Plain()));
    EXPECT_EQ("0.001", FloatToStrF(0.0005, ffFixed, 15, 3, Plain()));
}

TEST(Numbers, FixedFormatFallsBackWhenTheDigitsDoNotSuffice) {
    EXPECT_EQ("1.235E4", FloatToStrF(12345.0, ffFixed, 4, 2, Plain()));
    EXPECT_EQ("1.5E20", FloatToStrF(1.5e20, ffNumber, 15, 2, Plain()));
}

TEST(Numbers, NumberFormatGroupsThousands) {
    EXPECT_EQ("1,234,567.89", FloatToStrF(1234567.891, ffNumber, 15, 2, Plain()));
    EXPECT_EQ("-1.234,50", FloatToStrF(-1234.5, ffNumber, 15, 2, Spanish()));
    EXPECT_EQ("999", FloatToStrF(999, ffNumber, 15, 0, Plain()));
    EXPECT_EQ("1,000", FloatToStrF(999.5, ffNumber, 15, 0, Plain()));
}

TEST(Numbers, ExponentFormatKeepsItsDigits) {
    EXPECT_EQ("1.23400E+003", FloatToStrF(1234, ffExponent, 6, 3, Plain()));
    EXPECT_EQ("-1.2E-5", FloatToStrF(-0.0000123, ffExponent, 2, 0, Plain()));
    EXPECT_EQ("0.00E+00", FloatToStrF(0, ffExponent, 3, 2, Plain()));
    EXPECT_EQ("1E+1", FloatToStrF(9.6, ffExponent, 1, 0, Plain()));
}

TEST(Numbers, GeneralFormatPadsTheExponentAndRoundsToItsPrecision) {
    EXPECT_EQ("1E020", FloatToStrF(1e20, ffGeneral, 15, 3, Plain()));
    EXPECT_EQ("1.235E4", FloatToStrF(12345, ffGeneral, 4, 0, Plain()));
    EXPECT_EQ("0.1", FloatToStrF(0.1f, ffGeneral, 7, 0, Plain()));
    EXPECT_EQ("1", FloatToStrF(1.4, ffGeneral, -3, 0, Plain()));
}

TEST(Numbers, EveryAmountFormat) {
    TFormatSettings settings = Plain();
    settings.CurrencyString = "$";
    const char* const positive[] = {"$1.50", "1.50$", "$ 1.50", "1.50 $"};
    for (int i = 0; i < 4; ++i) {
        settings.CurrencyFormat = static_cast<std::uint8_t>(i);
        EXPECT_EQ(positive[i], FloatToStrF(1.5, ffCurrency, 15, 2, settings));
    }
    const char* const negative[] = {"($1.50)", "-$1.50",  "$-1.50",   "$1.50-",  "(1.50$)", "-1.50$",
                                    "1.50-$",  "1.50$-",  "-1.50 $",  "-$ 1.50", "1.50 $-", "$ 1.50-",
                                    "$ -1.50", "1.50- $", "($ 1.50)", "(1.50 $)"};
    for (int i = 0; i < 16; ++i) {
        settings.NegCurrFormat = static_cast<std::uint8_t>(i);
        EXPECT_EQ(negative[i], FloatToStrF(-1.5, ffCurrency, 15, 2, settings));
    }
    EXPECT_EQ("1.234,50 \x80", FloatToStrF(1234.5, ffCurrency, 15, 2, Spanish()));
}

TEST(FormatFloat, ZeroAndHashPlaces) {
    EXPECT_EQ("1234.50", Masked("0.00", 1234.5));
    EXPECT_EQ("1234.5", Masked("#.##", 1234.5));
    EXPECT_EQ(".5", Masked("#.##", 0.5));
    EXPECT_EQ("0.5", Masked("0.##", 0.5));
    EXPECT_EQ("00042", Masked("00000", 42));
    EXPECT_EQ("5", Masked("0.##", 5));
    EXPECT_EQ("", Masked("#", 0));
    EXPECT_EQ("02", Masked("#0#", 2));
    EXPECT_EQ("12.50", Masked(".00", 12.5));
    EXPECT_EQ("0.050", Masked("0.0##0", 0.05).substr(0, 5));
}

TEST(FormatFloat, TheMaskOfNumericLiterals) {
    const char* const mask = "0.###################";
    EXPECT_EQ("1234.5", Masked(mask, 1234.5));
    EXPECT_EQ("2", Masked(mask, 2.0));
    EXPECT_EQ("0.1", Masked(mask, 0.1));
    EXPECT_EQ("-0.3", Masked(mask, -(0.1 + 0.2)));
    EXPECT_EQ("0", Masked(mask, 0));
}

TEST(FormatFloat, ACommaAnywhereGroupsThousands) {
    EXPECT_EQ("1,234,567.89", Masked("#,##0.00", 1234567.891));
    EXPECT_EQ("1,234", Masked("0,", 1234));
    EXPECT_EQ("0,005", Masked("0,000", 5));
    EXPECT_EQ("1.234,5", FormatFloat("#,##0.##", 1234.5, Spanish()));
}

TEST(FormatFloat, RoundsToItsDecimals) {
    EXPECT_EQ("0.13", Masked("0.00", 0.125));
    EXPECT_EQ("10", Masked("0", 9.5));
    EXPECT_EQ("1,000", Masked("#,##0", 999.9));
}

TEST(FormatFloat, SectionsForNegativeAndZero) {
    const char* const mask = "0.0;(0.0);\"none\"";
    EXPECT_EQ("1.5", Masked(mask, 1.5));
    EXPECT_EQ("(1.5)", Masked(mask, -1.5));
    EXPECT_EQ("none", Masked(mask, 0));
    EXPECT_EQ("none", Masked(mask, -0.01));
    EXPECT_EQ("(2)", Masked("0;(0)", -2));
    EXPECT_EQ("0", Masked("0;(0)", -0.1));
    EXPECT_EQ("-2", Masked("0;;'zero'", -2));
    EXPECT_EQ("zero", Masked("0;;'zero'", 0));
}

TEST(FormatFloat, EmptySectionsFallBack) {
    EXPECT_EQ("1.25", Masked("", 1.25));
    EXPECT_EQ("1.25", Masked(";(0)", 1.25));
    EXPECT_EQ("0", Masked("0;(0);", 0));
}

TEST(FormatFloat, LiteralsAndQuotes) {
    EXPECT_EQ("n 5 kg", Masked("n 0 kg", 5));
    EXPECT_EQ("0;5#", Masked("\"0;\"0'#'", 5));
    EXPECT_EQ("5 open", Masked("0' open", 5));
    EXPECT_EQ("-a1", Masked("\"a\"0", -1));
    EXPECT_EQ("1E", Masked("0E", 1));
    EXPECT_EQ("12-34", Masked("00-00", 1234));
    EXPECT_EQ("123-45", Masked("00-00", 12345));
}

TEST(FormatFloat, Scientific) {
    EXPECT_EQ("1.23E+03", Masked("0.00E+00", 1234));
    EXPECT_EQ("1.23E03", Masked("0.00E-00", 1234));
    EXPECT_EQ("1.5e-4", Masked("0.0##e-0", 0.00015));
    EXPECT_EQ("12.3E+2", Masked("00.0E+0", 1230));
    EXPECT_EQ("0.0E+0", Masked("0.0E+0", 0));
    EXPECT_EQ("1.0E+1", Masked("0.0E+0", 9.99));
    EXPECT_EQ("-1E20", Masked("0E-0", -1e20));
}

TEST(FormatFloat, HugeValuesAreWrittenInGeneralFormat) {
    EXPECT_EQ("1E18", Masked("0.00", 1e18));
    EXPECT_EQ("999999999999999000.00", Masked("0.00", 999999999999999000.0));
}

TEST(Numbers, TextsAsFloats) {
    EXPECT_EQ(1234.5, StrToFloat("1234.5", Plain()));
    EXPECT_EQ(1234.5, StrToFloat("1234,5", Spanish()));
    EXPECT_EQ(-1500.0, StrToFloat("  -1.5E+3 ", Plain()));
    EXPECT_EQ(0.5, StrToFloat(".5", Plain()));
    EXPECT_EQ(5.0, StrToFloat("+5.", Plain()));
    EXPECT_EQ(0.1, StrToFloat("0.1", Plain()));
    EXPECT_EQ(3.0, StrToFloatDef("x", 3.0, Plain()));
    EXPECT_EQ(4.0, StrToFloatDef("4", 3.0, Plain()));
}

TEST(Numbers, WhatIsNoFloat) {
    for (const char* text : {"", " ", "-", ".", "abc", "1,234.5", "1e", "1e+", "1.2.3", "1 2", "INF", "NAN", "0x10",
                             "1e400", "-1e5000", "1e99999999999"}) {
        double value = 77;
        EXPECT_FALSE(TryStrToFloat(text, value, Plain())) << text;
        EXPECT_EQ(77, value) << text;
    }
    EXPECT_EQ("'abc' is not a valid floating point value", MessageOfConversion([] { StrToFloat("abc", Plain()); }));
    EXPECT_EQ("'1.5' is not a valid floating point value", MessageOfConversion([] { StrToFloat("1.5", Spanish()); }));
}

TEST(Numbers, WhatIsTooSmallIsZeroAndDenormalsAreRead) {
    EXPECT_EQ(0.0, StrToFloat("1e-400", Plain()));
    EXPECT_EQ(0.0, StrToFloat("1e-99999", Plain()));
    EXPECT_EQ(std::numeric_limits<double>::denorm_min(), StrToFloat("5e-324", Plain()));
    long double wide = 0;
    EXPECT_TRUE(TryStrToFloat("1e400", wide, Plain()));
    EXPECT_EQ(1e400L, wide);
}

TEST(Numbers, ShortestDoubleIsReadable) {
    EXPECT_EQ("0.1", ShortestDouble(0.1));
    EXPECT_EQ("0.30000000000000004", ShortestDouble(0.1 + 0.2));
    EXPECT_EQ("0", ShortestDouble(0));
    EXPECT_EQ("-0", ShortestDouble(-0.0));
    EXPECT_EQ("100", ShortestDouble(100));
    EXPECT_EQ("100000000000000000", ShortestDouble(1e17));
    EXPECT_EQ("1E18", ShortestDouble(1e18));
    EXPECT_EQ("0.0001", ShortestDouble(0.0001));
    EXPECT_EQ("1.5E-5", ShortestDouble(0.000015));
    EXPECT_EQ("5E-324", ShortestDouble(std::numeric_limits<double>::denorm_min()));
    EXPECT_EQ("NAN", ShortestDouble(std::nan("")));
    EXPECT_EQ("-INF", ShortestDouble(-std::numeric_limits<double>::infinity()));
    EXPECT_EQ("0.1", ShortestExtended(0.1L));
}

TEST(Numbers, ShortestDoubleReadsBackToTheSameValue) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isnan(value)) continue;
        EXPECT_EQ(value, ParseDouble(ShortestDouble(value))) << ShortestDouble(value);
    }
}

TEST(Numbers, ShortestExtendedReadsBackToTheSameValue) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 5000; ++i) {
        const auto mantissa = static_cast<long double>(random() | 1);
        const int exponent = static_cast<int>(random() % 32000) - 16400;
        const long double value = std::ldexp(mantissa, exponent);
        if (!std::isfinite(value)) continue;
        EXPECT_EQ(value, ParseExtended(ShortestExtended(value))) << ShortestExtended(value);
    }
    using Limits = std::numeric_limits<long double>;
    for (const long double value : {Limits::max(), Limits::min(), Limits::denorm_min(), 0.1L, -1.0L / 3})
        EXPECT_EQ(value, ParseExtended(ShortestExtended(value)));
}

TEST(Numbers, ParsingKnowsTheValuesThatAreNoNumber) {
    EXPECT_TRUE(std::isnan(ParseExtended("NAN")));
    EXPECT_EQ(std::numeric_limits<long double>::infinity(), ParseExtended("inf"));
    EXPECT_EQ(-std::numeric_limits<double>::infinity(), ParseDouble(" -INF "));
    EXPECT_TRUE(std::signbit(ParseExtended("-0")));
    long double value = 0;
    EXPECT_FALSE(TryParseExtended("1,5", value));
    EXPECT_EQ("'x' is not a valid floating point value", MessageOfConversion([] { ParseExtended("x"); }));
    EXPECT_EQ("'' is not a valid floating point value", MessageOfConversion([] { ParseDouble(""); }));
}

TEST(Numbers, AmountsAsText) {
    EXPECT_EQ("0", ScaledCurrencyToStr(0, Plain()));
    EXPECT_EQ("1.5", ScaledCurrencyToStr(15000, Plain()));
    EXPECT_EQ("-0,0001", ScaledCurrencyToStr(-1, Spanish()));
    EXPECT_EQ("-922337203685477.5808", ScaledCurrencyToStr(std::numeric_limits<std::int64_t>::min(), Plain()));
}

// Plain numbers go a shorter way than all others: it gives the same.
TEST(FloatToStrF, TheShortWayOfPlainNumbersGivesWhatTheDigitsSay) {
    std::mt19937_64 random(3);
    const auto said = [](double value, int precision) {
        Decimal decimal = DecimalOf(value);
        RoundAt(decimal, precision);
        if (decimal.point > precision || decimal.point < -3) return AnsiString();
        return (value < 0 && !decimal.IsZero() ? "-" : "") + PlainText(decimal, '.', '\0', -1);
    };
    const auto check = [&](double value) {
        for (const int precision : {1, 2, 7, 14, 15, 16, 17, 18}) {
            const AnsiString expected = said(value, precision);
            if (!expected.empty()) ASSERT_EQ(FloatToStrF(value, ffGeneral, precision, 0, Plain()), expected) << value;
        }
    };
    for (const double value : {0.0, -0.0, 1.0, -1.0, 0.1, 0.5, 9.5, 99.5, 0.95, 0.0995, 0.00995, 0.999999999999999944,
                               99999999999999.5, 999999999999999.9, 123456789.0, 1e14, 1e15, 0.001, 0.0009999999})
        check(value);
    for (int i = 0; i < 20000; ++i) {
        check(static_cast<double>(static_cast<int64_t>(random() % 2000000000) - 1000000000) / 1000);
        check(std::ldexp(static_cast<double>(random() % 1000000007), static_cast<int>(random() % 60) - 40));
    }
}

TEST(Numbers, TextsAsAmountsAreExact) {
    const auto read = [](const char* text) {
        std::int64_t value = 0;
        return TryStrToScaledCurrency(text, value, Plain()) ? value : 777;
    };
    EXPECT_EQ(15000, read("1.5"));
    EXPECT_EQ(-1, read(" -0.0001 "));
    EXPECT_EQ(1, read("0.00005"));
    EXPECT_EQ(0, read("0.00004999"));
    EXPECT_EQ(-1, read("-0.00005"));
    EXPECT_EQ(15000000, read("1.5e3"));
    EXPECT_EQ(0, read("0"));
    EXPECT_EQ(0, read("1e-50"));
    EXPECT_EQ(std::numeric_limits<std::int64_t>::max(), read("922337203685477.5807"));
    EXPECT_EQ(std::numeric_limits<std::int64_t>::min(), read("-922337203685477.5808"));
    for (const char* text : {"922337203685477.5808", "1e30", "1e999999", "", "x", "1.2.3", "10000000000000000"})
        EXPECT_EQ(777, read(text)) << text;
}
