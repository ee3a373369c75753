#include <gtest/gtest.h>

#include "platform/text/edit_mask.h"
#include "platform/text/windows1252.h"

using namespace vyn;

namespace {

EditMask Mask(std::string_view text) { return EditMask(text, InvariantFormatSettings()); }
AnsiString Formatted(std::string_view mask, std::string_view value) {
    return FormatMaskText(mask, value, InvariantFormatSettings());
}

}  // namespace

TEST(EditMask, WithoutAMaskTextIsAsItIs) {
    EXPECT_TRUE(Mask("").IsEmpty());
    EXPECT_TRUE(Mask(";1;_").IsEmpty());
    EXPECT_EQ(Formatted("", "any text"), "any text");
}

TEST(EditMask, EachPlaceTakesItsKind) {
    const auto takes = [](const char* mask, char c) { return Mask(mask).Accept(0, c) != 0; };
    for (const char* letters : {"L", "l"}) {
        EXPECT_TRUE(takes(letters, 'x') && takes(letters, "é"_w[0]) && takes(letters, "Ç"_w[0])) << letters;
        EXPECT_FALSE(takes(letters, '5') || takes(letters, ' ') || takes(letters, '-')) << letters;
    }
    for (const char* both : {"A", "a"}) {
        EXPECT_TRUE(takes(both, 'x') && takes(both, '5')) << both;
        EXPECT_FALSE(takes(both, '-')) << both;
    }
    for (const char* any : {"C", "c"}) {
        EXPECT_TRUE(takes(any, 'x') && takes(any, '-') && takes(any, ' ')) << any;
        EXPECT_FALSE(takes(any, '\t')) << any;
    }
    for (const char* digits : {"0", "9"}) {
        EXPECT_TRUE(takes(digits, '0') && takes(digits, '9')) << digits;
        EXPECT_FALSE(takes(digits, 'x') || takes(digits, '-')) << digits;
    }
    EXPECT_TRUE(takes("#", '-') && takes("#", '+') && takes("#", '7'));
    EXPECT_FALSE(takes("#", 'x'));
    EXPECT_FALSE(takes("/", '/')) << "a literal is not typed into";
}

TEST(EditMask, CasesHoldUntilTheNext) {
    const EditMask mask = Mask(">LL<LL<>LL");
    EXPECT_EQ(mask.Length(), 6);
    EXPECT_EQ(mask.Shown("aBcDeF"), "ABcdeF");
    EXPECT_EQ(Mask(">L").Accept(0, "é"_w[0]), "É"_w[0]);
}

TEST(EditMask, LiteralsStandForThemselvesAndSeparatorsAreTheUsers) {
    EXPECT_EQ(Mask("99/99/0000").Shown("05/11/2026"), "05/11/2026");
    TFormatSettings settings = InvariantFormatSettings();
    settings.DateSeparator = '-';
    settings.TimeSeparator = '.';
    EXPECT_EQ(EditMask("00/00 00:00", settings).Shown(""), "__-__ __.__");
    EXPECT_EQ(Mask("\\L\\0-0").Shown("L0-7"), "L0-7");
    EXPECT_EQ(Mask("0\\;0;0").Value("1;2"), "12");
    EXPECT_EQ(Mask("0\\").Length(), 2) << "a last backslash is one itself";
}

TEST(EditMask, TheSecondFieldSaysWhetherLiteralsBelongToTheValue) {
    EXPECT_EQ(Mask("(000) 000;1").Value("(123) 456"), "(123) 456");
    EXPECT_EQ(Mask("(000) 000").Value("(123) 456"), "(123) 456");
    EXPECT_EQ(Mask("(000) 000;0").Value("(123) 456"), "123456");
    EXPECT_EQ(Mask("(000) 000;0").Shown("123456"), "(123) 456");
    EXPECT_EQ(Mask("(000) 000;0").Shown("12"), "(12_) ___");
}

TEST(EditMask, TheThirdFieldIsTheEmptyPlace) {
    EXPECT_EQ(Mask("000;1;*").Shown("1"), "1**");
    EXPECT_EQ(Mask("000;1; ").Shown("1"), "1  ");
    EXPECT_EQ(Mask("000;1;").Shown("1"), "1__");
}

TEST(EditMask, EmptyPlacesInsideAValueAreBlanksAndThoseAtItsEndGo) {
    EXPECT_EQ(Mask("ccccc;0").Value("a_b__"), "a b");
    EXPECT_EQ(Mask("!ccccc;0").Value("__a_b"), "a b");
    EXPECT_EQ(Mask("99/99").Value("__/__"), "") << "nothing was typed";
    EXPECT_EQ(Mask("99/99").Value("5_/__"), "5 /");
    EXPECT_EQ(Mask("ccccc;0").Shown("a b"), "a_b__");
}

TEST(EditMask, AnExclamationMarkSetsValuesToTheRight) {
    EXPECT_EQ(Mask("!99999;0").Shown("42"), "___42");
    EXPECT_EQ(Mask("!99/99").Shown("5/11"), "_5/11");
    EXPECT_EQ(Mask("!99/99").Value("_5/11"), "5/11");
}

TEST(EditMask, WhatAPlaceDoesNotTakeIsLeftOut) {
    EXPECT_EQ(Mask("000").Shown("1x3"), "1_3");
    EXPECT_EQ(Mask("000").Shown("12345"), "123") << "what is too long is cut";
}

TEST(EditMask, RequiredPlacesAreMissed) {
    EXPECT_EQ(Mask("99/00").FirstMissing("__/__"), 3);
    EXPECT_EQ(Mask("99/00").FirstMissing("__/1_"), 4);
    EXPECT_EQ(Mask("99/00").FirstMissing("__/12"), -1);
    EXPECT_EQ(Mask("La").FirstMissing("x_"), -1);
    EXPECT_EQ(Mask("AC").FirstMissing("x"), 1) << "a text that is too short";
}

TEST(EditMask, PlacesAreFoundInBothDirections) {
    const EditMask mask = Mask("(00) 0");
    EXPECT_EQ(mask.Next(0), 1);
    EXPECT_EQ(mask.Next(3), 5);
    EXPECT_EQ(mask.Next(6), 6);
    EXPECT_EQ(mask.Previous(5), 2);
    EXPECT_EQ(mask.Previous(1), -1);
    EXPECT_EQ(Mask("99/99").BehindLiteral(1, '/'), 3);
    EXPECT_EQ(Mask("99/99").BehindLiteral(1, '-'), -1);
    EXPECT_EQ(Mask("99/99").BehindLiteral(4, '/'), -1);
}

TEST(EditMask, AValueIsFormattedWithBlanks) {
    EXPECT_EQ(Formatted("000-000;0;_", "12345"), "123-45 ");
    EXPECT_EQ(Formatted("!999-999;0;_", "12345"), " 12-345");
}
