#include "programs/tools/named_values.h"

#include <gtest/gtest.h>

#include "foundation/Uparametres.h"
#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

Variant ValueOf(const std::string& text) { return ParseNamedValue("A=" + text).Value; }

AnsiString ErrorOf(const std::string& text) {
    try {
        ParseNamedValue(text);
    } catch (const Exception& error) {
        return AnsiString(error.ClassName()) + ": " + error.Message();
    }
    return "no error";
}

}  // namespace

TEST(NamedValues, TheNameEndsAtTheFirstEqualsSign) {
    const NamedValue named = ParseNamedValue("Client=a=b");
    EXPECT_EQ(named.Name, "Client");
    EXPECT_EQ(named.Value, Variant("a=b"));
}

TEST(NamedValues, WholeNumbersAreIntegers) {
    for (const auto& [text, value] :
         {std::pair{"123", 123}, {"-7", -7}, {"+5", 5}, {"0", 0}, {"-2147483648", INT32_MIN}}) {
        EXPECT_EQ(ValueOf(text).Type(), varInteger) << text;
        EXPECT_EQ(ValueOf(text).AsInteger(), value) << text;
    }
}

TEST(NamedValues, WholeNumbersBeyond32BitsAreDoubles) {
    EXPECT_EQ(ValueOf("2147483648").Type(), varDouble);
    EXPECT_EQ(ValueOf("2147483648").AsDouble(), 2147483648.0);
    EXPECT_EQ(ValueOf("123456789012345678901234567890").AsDouble(), 123456789012345678901234567890.0);
}

TEST(NamedValues, NumbersWithAPointOrAnExponentAreDoubles) {
    for (const auto& [text, value] :
         {std::pair{"1.5", 1.5}, {"-.5", -0.5}, {"2.", 2.0}, {"2E3", 2000.0}, {"1e-3", 0.001}}) {
        EXPECT_EQ(ValueOf(text).Type(), varDouble) << text;
        EXPECT_EQ(ValueOf(text).AsDouble(), value) << text;
    }
}

TEST(NamedValues, ANumberOutOfRangeIsAnError) {
    EXPECT_EQ(ErrorOf("A=1E999"), "EConvertError: '1E999' is not a valid floating point value");
}

TEST(NamedValues, BooleansAndNullAreSpelledSmall) {
    EXPECT_EQ(ValueOf("true"), Variant(true));
    EXPECT_EQ(ValueOf("false"), Variant(false));
    EXPECT_TRUE(ValueOf("null").IsNull());
    EXPECT_EQ(ValueOf("True").Type(), varString);
    EXPECT_EQ(ValueOf("NULL").Type(), varString);
}

TEST(NamedValues, DatesAreSpelledInFull) {
    EXPECT_EQ(ValueOf("2026-11-21").Type(), varDate);
    EXPECT_EQ(ValueOf("2026-11-21").AsDateTime().Val, 46347.0);
    EXPECT_EQ(ValueOf("2026-11-21T12:00:00").AsDateTime().Val, 46347.5);
    EXPECT_EQ(ValueOf("2026-13-21").Type(), varString);
    EXPECT_EQ(ValueOf("2026-11-21 12:00:00").Type(), varString);
    EXPECT_EQ(ValueOf("21/11/2026").Type(), varString);
}

TEST(NamedValues, QuotesMakeAnythingAString) {
    EXPECT_EQ(ValueOf("'123'"), Variant("123"));
    EXPECT_EQ(ValueOf("'123'").Type(), varString);
    EXPECT_EQ(ValueOf("''"), Variant(""));
    EXPECT_EQ(ValueOf("'it''s'"), Variant("it's"));
    EXPECT_EQ(ValueOf("'it's'"), Variant("it's"));
    EXPECT_EQ(ValueOf("'"), Variant("'"));
}

TEST(NamedValues, TheRestIsAStringAsItStands) {
    for (const char* text : {"", "abc", " 1", "1 ", "1.2.3", ".", "-", "1e", "e5", "0x10", "$FF", "INF", "NAN"}) {
        EXPECT_EQ(ValueOf(text).Type(), varString) << text;
        EXPECT_EQ(ValueOf(text).AsString(), text);
    }
    EXPECT_EQ(ValueOf("caf\xC3\xA9").AsString(), "caf\xE9");
}

TEST(NamedValues, WhatHasNoNameIsRefused) {
    EXPECT_EQ(ErrorOf("5"), "EConvertError: NAME=VALUE was expected instead of '5'");
    EXPECT_EQ(ErrorOf("=5"), "EConvertError: NAME=VALUE was expected instead of '=5'");
    EXPECT_FALSE(IsNamedValue("=5"));
    EXPECT_FALSE(IsNamedValue("A"));
    EXPECT_TRUE(IsNamedValue("A="));
}

TEST(NamedValues, CharactersOutsideTheCodePageAreRefused) {
    EXPECT_EQ(ErrorOf("A=\xE2\x88\x9E").substr(0, 14), "EConvertError:");
}

TEST(NamedValues, LaterValuesLieOverEarlierOnes) {
    TParametres set(nullptr);
    AddNamedValues({"A=1", "b=x", "a=2"}, set);
    EXPECT_EQ(set.Count(false), 2);
    EXPECT_EQ(set.GetParametreValue("A").AsInteger(), 2);
    EXPECT_THROW(AddNamedValues({"9a=1"}, set), EParametresError);
}
