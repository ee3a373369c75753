#include "platform/text/compare.h"

#include <gtest/gtest.h>

#include <unordered_map>

using namespace vyn;

TEST(Compare, SameTextFoldsAsciiLettersOnly) {
    EXPECT_TRUE(SameText("DbDades1", "DBDADES1"));
    EXPECT_FALSE(SameText("\xC9", "\xE9"));
    EXPECT_FALSE(SameText("[", "{"));
    EXPECT_FALSE(SameText("a", "ab"));
    EXPECT_TRUE(SameText("", ""));
}

TEST(Compare, AnsiSameTextFoldsEveryLetterOfTheCodePage) {
    EXPECT_TRUE(AnsiSameText("POSICI\xD3", "posici\xF3"));
    EXPECT_TRUE(AnsiSameText("\x9F\x8A\x8C\x8E", "\xFF\x9A\x9C\x9E"));
    EXPECT_FALSE(AnsiSameText("\xD7", "\xF7"));
    EXPECT_FALSE(AnsiSameText("\xDF", "\xFF"));
}

TEST(Compare, TheOrderGoesByFoldedBytes) {
    EXPECT_EQ(0, CompareText("abc", "ABC"));
    EXPECT_LT(CompareText("abc", "ABD"), 0);
    EXPECT_GT(CompareText("b", "A"), 0);
    EXPECT_LT(CompareText("ab", "ABC"), 0);
    EXPECT_GT(CompareText("\xE9", "z"), 0);
    EXPECT_NE(0, CompareText("\xE9", "\xC9"));
    EXPECT_EQ(0, AnsiCompareText("\xE9", "\xC9"));
    EXPECT_LT(AnsiCompareText("\xE9", "\xEA"), 0);
}

TEST(Compare, AnUnderlineStandsAfterTheLettersAsTheyAreFoldedUp) { EXPECT_LT(CompareText("a", "_"), 0); }

TEST(Compare, UpperAndLowerCase) {
    EXPECT_EQ("AB\xE9", UpperCase("aB\xE9"));
    EXPECT_EQ("ab\xC9", LowerCase("AB\xC9"));
    EXPECT_EQ("AB\xC9\x9F", AnsiUpperCase("aB\xE9\xFF"));
    EXPECT_EQ("ab\xE9\xFF", AnsiLowerCase("AB\xC9\x9F"));
}

TEST(Compare, FoldingUpAndDownAreInverseForEveryByte) {
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        EXPECT_EQ(AnsiUpperChar(c), AnsiUpperChar(AnsiLowerChar(c))) << i;
        EXPECT_EQ(AnsiLowerChar(c), AnsiLowerChar(AnsiUpperChar(c))) << i;
    }
}

TEST(Compare, SignsAndLettersWithoutAPartnerStay) {
    for (const char c : {'\xF7', '\xD7', '\xDF', '\xAA', '\xB5', '\x83', '['}) {
        EXPECT_EQ(c, AnsiUpperChar(c));
        EXPECT_EQ(c, AnsiLowerChar(c));
    }
}

TEST(Compare, TrimmingTakesBlanksAndControls) {
    EXPECT_EQ("a b", Trim(" \t\r\n\x01"
                          "a b \n"));
    EXPECT_EQ("a ", TrimLeft("  a "));
    EXPECT_EQ("  a", TrimRight("  a "));
    EXPECT_EQ("", Trim("   "));
    EXPECT_EQ("", Trim(""));
    EXPECT_EQ("\xA0", Trim("\xA0 "));
}

TEST(Compare, AMapByTextFindsKeysOfAnyCaseWithoutMakingAString) {
    std::unordered_map<AnsiString, int, TextHash, TextEqual> map;
    map["Client"] = 1;
    map["CLIENT"] = 2;
    EXPECT_EQ(1u, map.size());
    EXPECT_EQ(2, map.find(std::string_view("client"))->second);
    EXPECT_EQ(map.end(), map.find(std::string_view("clients")));
    EXPECT_EQ(TextHash()("\xC9"
                         "A"),
              TextHash()("\xC9"
                         "a"));
}
