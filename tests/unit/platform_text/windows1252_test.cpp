#include "platform/text/windows1252.h"

#include <gtest/gtest.h>

#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

std::string MessageOfUtf8(std::string_view text) {
    try {
        Utf8ToAnsi(text);
    } catch (const EConvertError& error) {
        return error.Message();
    }
    return "nothing was raised";
}

AnsiString AllBytes() {
    AnsiString all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    return all;
}

}  // namespace

TEST(AnsiString, ALiteralHoldsWindows1252Bytes) {
    EXPECT_EQ("posici\xF3", "posició"_w);
    EXPECT_EQ("\x80 \xB7 \x9F", "€ · Ÿ"_w);
    EXPECT_EQ("plain", "plain"_w);
    EXPECT_EQ("", ""_w);
}

TEST(AnsiString, ALiteralKeepsTheZeroByteInside) { EXPECT_EQ(AnsiString("a\0b", 3), "a\0b"_w); }

TEST(Windows1252, EveryByteSurvivesTheTripThroughUtf8) { EXPECT_EQ(AllBytes(), Utf8ToAnsi(AnsiToUtf8(AllBytes()))); }

TEST(Windows1252, EveryByteSurvivesTheTripThroughWideText) {
    EXPECT_EQ(AllBytes(), WideToAnsi(AnsiToWide(AllBytes())));
}

TEST(Windows1252, TheFiveUndefinedBytesAreTheControlsOfTheirNumber) {
    for (const int byte : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        const WideString wide = AnsiToWide(std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(static_cast<char16_t>(byte), wide[0]);
        EXPECT_EQ(static_cast<char>(byte), WideToAnsi(wide)[0]);
    }
}

TEST(Windows1252, AControlWhoseByteIsALetterDoesNotFit) { EXPECT_EQ("?", WideToAnsi(u"\u0080")); }

TEST(Windows1252, LettersBecomeTheirUtf8) {
    EXPECT_EQ("posició €", AnsiToUtf8("posici\xF3 \x80"));
    EXPECT_EQ("posici\xF3 \x80", Utf8ToAnsi("posició €"));
}

TEST(Windows1252, ACharacterThatDoesNotFitIsNamedWithItsBytePosition) {
    EXPECT_EQ("Character U+4E2D at position 4 does not exist in Windows-1252", MessageOfUtf8("aé中"));
    EXPECT_EQ("Character U+1F600 at position 1 does not exist in Windows-1252", MessageOfUtf8("😀"));
}

TEST(Windows1252, MalformedUtf8IsNamedWithItsBytePosition) {
    EXPECT_EQ("Malformed UTF-8: byte FF at position 2", MessageOfUtf8("a\xFF"));
    EXPECT_EQ("Malformed UTF-8: byte C3 at position 3", MessageOfUtf8("ab\xC3"));
    EXPECT_EQ("Malformed UTF-8: byte 80 at position 1", MessageOfUtf8("\x80"));
}

TEST(Windows1252, OverlongFormsSurrogatesAndTooLargeNumbersAreMalformed) {
    EXPECT_EQ("Malformed UTF-8: byte C0 at position 1", MessageOfUtf8("\xC0\x80"));
    EXPECT_EQ("Malformed UTF-8: byte E0 at position 1", MessageOfUtf8("\xE0\x80\x80"));
    EXPECT_EQ("Malformed UTF-8: byte ED at position 1", MessageOfUtf8("\xED\xA0\x80"));
    EXPECT_EQ("Malformed UTF-8: byte F4 at position 1", MessageOfUtf8("\xF4\x90\x80\x80"));
    EXPECT_EQ("Malformed UTF-8: byte F0 at position 1", MessageOfUtf8("\xF0\x80\x80\x80"));
}

TEST(Windows1252, TryingLeavesTheResultAloneOnFailure) {
    AnsiString result = "before";
    std::size_t position = 99;
    EXPECT_FALSE(TryUtf8ToAnsi("ab中", result, position));
    EXPECT_EQ("before", result);
    EXPECT_EQ(3u, position);
    EXPECT_TRUE(TryUtf8ToAnsi("é", result, position));
    EXPECT_EQ("\xE9", result);
    EXPECT_EQ(0u, position);
}

TEST(Windows1252, TheLossyConversionPutsAQuestionMarkForEachCharacter) {
    EXPECT_EQ("a?b?\xE9?", Utf8ToAnsiLossy("a中b\xFFé😀"));
}

TEST(Windows1252, WideTextThatDoesNotFitGivesOneQuestionMarkPerCharacter) {
    EXPECT_EQ("a?b?", WideToAnsi(u"a\U0001F600b\u4E2D"));
    EXPECT_EQ("?", WideToAnsi(std::u16string(1, char16_t{0xD800})));
}

TEST(Windows1252, WideTextAndUtf8ConvertIntoEachOther) {
    EXPECT_EQ("a€😀", WideToUtf8(u"a€😀"));
    EXPECT_EQ(u"a€😀", Utf8ToWide("a€😀"));
    EXPECT_EQ("\xEF\xBF\xBD", WideToUtf8(std::u16string(1, char16_t{0xDC00})));
    EXPECT_THROW(Utf8ToWide("\xFF"), EConvertError);
}
