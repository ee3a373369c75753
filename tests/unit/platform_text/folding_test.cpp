#include "platform/text/folding.h"

#include <gtest/gtest.h>

#include "platform/text/windows1252.h"

using namespace vyn;

namespace {

constexpr TextFolding kFoldings[] = {TextFolding::None, TextFolding::Case, TextFolding::Accents,
                                     TextFolding::CaseAndAccents};

AnsiString Every() {
    AnsiString text;
    for (int i = 0; i < 256; ++i) text += static_cast<char>(i);
    return text;
}

}  // namespace

TEST(Folding, EveryByteHasItsBaseLetter) {
    const AnsiString accented = "ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝŠŽŸàáâãäåçèéêëìíîïðñòóôõöøùúûüýÿšž"_w;
    const AnsiString base = "AAAAAACEEEEIIIIDNOOOOOOUUUUYSZYaaaaaaceeeeiiiidnoooooouuuuyysz";
    ASSERT_EQ(accented.size(), base.size());
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const size_t at = accented.find(c);
        EXPECT_EQ(FoldChar(c, TextFolding::Accents), at == AnsiString::npos ? c : base[at]) << i;
        EXPECT_EQ(FoldChar(c, TextFolding::None), c) << i;
        EXPECT_EQ(FoldChar(c, TextFolding::Case), AnsiUpperChar(c)) << i;
        EXPECT_EQ(FoldChar(c), AnsiUpperChar(at == AnsiString::npos ? c : base[at])) << i;
    }
}

TEST(Folding, FoldingTwiceIsFoldingOnceAndSmallLettersFoldAsTheirCapitals) {
    for (const TextFolding folding : kFoldings)
        for (const char c : Every()) EXPECT_EQ(FoldChar(FoldChar(c, folding), folding), FoldChar(c, folding));
    for (const char c : Every()) EXPECT_EQ(FoldChar(c), FoldChar(AnsiUpperChar(c)));
    for (const char c : Every()) EXPECT_EQ(FoldChar(c), FoldChar(AnsiLowerChar(c)));
}

TEST(Folding, LettersThatAreNoBaseLetterStay) {
    for (const char c : "ÆŒÞßªºµƒ×÷"_w) EXPECT_EQ(FoldChar(c, TextFolding::Accents), c);
    EXPECT_EQ(FoldText("æœþß"_w), "ÆŒÞß"_w);
    EXPECT_FALSE(SameFolded("ß"_w, "s"));
    EXPECT_FALSE(BeginsFolded("Æsir"_w, "a"));
}

TEST(Folding, TablesAreThereWhileCompiling) {
    static_assert(FoldChar('\xE9') == 'E');
    static_assert(FoldChar('\xE9', TextFolding::Accents) == 'e');
    static_assert(FoldingOf(true, false) == TextFolding::Case && FoldingOf(false, true) == TextFolding::Accents);
    static_assert(FoldingOf(true, true) == TextFolding::CaseAndAccents && FoldingOf(false, false) == TextFolding::None);
    EXPECT_EQ(FoldText("Núñez Ÿ š"_w), "NUNEZ Y S");
}

TEST(Folding, BeginningsAndWholesAreCompared) {
    EXPECT_TRUE(BeginsFolded("Núñez"_w, "nun"));
    EXPECT_TRUE(BeginsFolded("Nunez", "NÚÑ"_w));
    EXPECT_TRUE(BeginsFolded("x", ""));
    EXPECT_FALSE(BeginsFolded("Nu", "nun"));
    EXPECT_FALSE(BeginsFolded("Núñez"_w, "nun", TextFolding::Accents));
    EXPECT_TRUE(BeginsFolded("Núñez"_w, "Nun", TextFolding::Accents));
    EXPECT_FALSE(BeginsFolded("Núñez"_w, "nun", TextFolding::Case));
    EXPECT_TRUE(BeginsFolded("Núñez"_w, "nÚÑ"_w, TextFolding::Case));
    EXPECT_TRUE(SameFolded("Núñez"_w, "nunez"));
    EXPECT_FALSE(SameFolded("Núñez"_w, "nune"));
    EXPECT_FALSE(SameFolded("Nune", "nunez"));
}

TEST(TextSearch, FindsInUtf8WhatItWouldFindInWindows1252) {
    const std::string held[] = {"",
                                "Garc\xC3\xAD"
                                "a",
                                "GARCIA",
                                "garcia lopez",
                                "gar",
                                "\xC5\xA0koda",  // Š
                                "\xC4\x8D"
                                "apek",            // a letter that the code page lacks
                                "\xE2\x82\xAC 5",  // €
                                "c\xCC\xA7",       // a mark of its own
                                "bad \xFF\xC3",    // malformed
                                "\xF0\x9F\x98\x80 smile",
                                AnsiToUtf8(Every())};
    const AnsiString wanted[] = {"",
                                 "g",
                                 "garcia",
                                 "GARC\xCD"
                                 "A",
                                 "Garc\xED"
                                 "a",
                                 "skoda",
                                 "?",
                                 "?apek",
                                 "?APEK",
                                 "€"_w,
                                 "c?",
                                 "bad ??",
                                 "bad ???",
                                 "? smile",
                                 "\x80",
                                 "garcia lopez de",
                                 Every()};
    for (const std::string& text : held)
        for (const AnsiString& each : wanted)
            for (const TextFolding folding : kFoldings) {
                const AnsiString shown = Utf8ToAnsiLossy(text);
                SCOPED_TRACE(shown + " / " + each);
                EXPECT_EQ(TextSearch(each, folding, TextSearch::Extent::Beginning).FindsIn(text),
                          BeginsFolded(shown, each, folding));
                EXPECT_EQ(TextSearch(each, folding, TextSearch::Extent::Whole).FindsIn(text),
                          SameFolded(shown, each, folding));
            }
}
