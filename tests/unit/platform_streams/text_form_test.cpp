#include <gtest/gtest.h>

#include "unit/platform_streams/fixtures.h"

using namespace stream_fixtures;

namespace {

std::string ToBinary(const std::string& text) {
    TMemoryStream stream;
    TextToBinary(text, stream);
    return std::string(stream.Bytes());
}

std::string ToText(const std::string& bytes) {
    TMemoryStream stream(bytes);
    return BinaryToText(stream);
}

std::string ErrorOf(const std::string& text) {
    return MessageOf([&] { ToBinary(text); });
}

}  // namespace

TEST(TextForm, EveryValueReadsBackToTheSameBytes) {
    const std::string text =
        "inherited Form1: TForm1 [3]\n"
        "  Small = -5\n"
        "  Middle = 1000\n"
        "  Large = 100000\n"
        "  Huge = 5000000000\n"
        "  Real = 1.5\n"
        "  Whole = 2.0\n"
        "  Tiny = 1E-30\n"
        "  Single = 0.1s\n"
        "  Smallest = 1E-45s\n"
        "  Money = -12.5c\n"
        "  Date = 46000.25d\n"
        "  Text =\n"
        "    'it''s'#13#10 +\n"
        "    'caf\xC3\xA9 \xE2\x82\xAC'\n"
        "  Empty = ''\n"
        "  Wide = w'\xCE\xA9'#9'x'\n"
        "  Word = alClient\n"
        "  Dotted.Name = Form2.Query1\n"
        "  Yes = True\n"
        "  No = False\n"
        "  Nothing = nil\n"
        "  Unknown = null\n"
        "  Set = [a, b]\n"
        "  NoSet = []\n"
        "  List = (\n"
        "    1\n"
        "    'two'\n"
        "    (\n"
        "      3.0))\n"
        "  NoList = ()\n"
        "  Items = <\n"
        "    item\n"
        "      Title = 'A'\n"
        "    end\n"
        "    item [4]\n"
        "    end>\n"
        "  NoItems = <>\n"
        "  Bytes = {\n"
        "    00FF10}\n"
        "  inline Frame1: TFrame1\n"
        "  end\n"
        "  object TNameless\n"
        "  end\n"
        "end\n";
    EXPECT_EQ(ToText(ToBinary(text)), text);
}

TEST(TextForm, AClassNameWhoseLengthLooksLikeAPrefixKeepsItsOwn) {
    const std::string text = "object N: " + std::string(0xF2, 'C') + "\nend\n";
    EXPECT_EQ(ToBinary(text).substr(4, 2), "\xF0\xF2");
    EXPECT_EQ(ToText(ToBinary(text)), text);
}

TEST(TextForm, LongStringsAreBrokenAfterLineEndsAndAtTheWidth) {
    TMemoryStream stream;
    TWriter writer(stream);
    writer.WriteSignature();
    writer.WriteName("T");
    writer.WriteName("A");
    writer.WriteName("S");
    writer.WriteString("select *\r\nfrom t\r\n" + std::string(250, 'x'));
    writer.WriteName("");
    writer.WriteListEnd();
    writer.Flush();
    const std::string text = ToText(std::string(stream.Bytes()));
    EXPECT_EQ(text, "object A: T\n  S =\n    'select *'#13#10 +\n    'from t'#13#10 +\n    '" + std::string(100, 'x') +
                        "' +\n    '" + std::string(100, 'x') + "' +\n    '" + std::string(50, 'x') + "'\nend\n");
    EXPECT_EQ(ToBinary(text), stream.Bytes());
}

TEST(TextForm, EveryByteOfAStringComesBack) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    TMemoryStream stream;
    TWriter writer(stream);
    writer.WriteSignature();
    writer.WriteName("T");
    writer.WriteName("A");
    writer.WriteName("S");
    writer.WriteString(all);
    writer.WriteName("");
    writer.WriteListEnd();
    writer.Flush();
    EXPECT_EQ(ToBinary(ToText(std::string(stream.Bytes()))), stream.Bytes());
}

TEST(TextForm, ErrorsNameTheLineAndWhatWasExpected) {
    EXPECT_EQ(ErrorOf(""), "EParserError: line 1: \"object\" was expected, the end of the text was found");
    EXPECT_EQ(ErrorOf("object A: T\n  X = \nend"), "EParserError: line 3: a value was expected, \"end\" was found");
    EXPECT_EQ(ErrorOf("object A: T\n  X = )\nend"), "EParserError: line 2: a value was expected, \")\" was found");
    EXPECT_EQ(ErrorOf("object A: T\n  X = 'abc\nend"), "EParserError: line 2: the closing quote is missing");
    EXPECT_EQ(ErrorOf("object A: T\n  X = 12ab\nend"), "EParserError: line 2: \"12...\" is no number");
    EXPECT_EQ(ErrorOf("object A: T\n  X = 99999999999999999999\nend"),
              "EParserError: line 2: the integer 99999999999999999999 is too large");
    EXPECT_EQ(ErrorOf("object A: T\n  X = {0G}\nend"), "EParserError: line 2: a hexadecimal digit was expected");
    EXPECT_EQ(ErrorOf("object A: T\n  X = {0}\nend"), "EParserError: line 2: a hexadecimal digit is missing");
    EXPECT_EQ(ErrorOf("object A: T\n  X = #300\nend"),
              "EParserError: line 2: the number of a character (at most 255) was expected after \"#\"");
    EXPECT_EQ(ErrorOf("object A: T\nend\nend"),
              "EParserError: line 3: the end of the text was expected, \"end\" was found");
}

TEST(TextForm, ACharacterThatTextCannotHoldIsNamedWithItsLine) {
    const std::string error = ErrorOf("object A: T\n  X = '\xCE\xA9'\nend");
    EXPECT_EQ(error.substr(0, 21), "EParserError: line 2:");
}

TEST(TextForm, WhatTextCannotHoldIsRefused) {
    const auto refuse = [](const std::function<void(TWriter&)>& value) {
        TMemoryStream stream;
        TWriter writer(stream);
        writer.WriteSignature();
        writer.WriteName("T");
        writer.WriteName("A");
        writer.WriteName("P");
        value(writer);
        writer.WriteName("");
        writer.WriteListEnd();
        writer.Flush();
        stream.SetPosition(0);
        return MessageOf([&] { BinaryToText(stream); });
    };
    EXPECT_EQ(refuse([](TWriter& w) { w.WriteFloat(1.0L / 0.0L); }),
              "EConvertError: The text form cannot hold a number that is not finite");
    EXPECT_EQ(refuse([](TWriter& w) { w.WriteIdent("a b"); }),
              "EConvertError: The text form cannot hold the identifier \"a b\"");
    EXPECT_EQ(refuse([](TWriter& w) { w.WriteIdent("True"); }),
              "EConvertError: The text form cannot hold the identifier \"True\"");
}

TEST(TextForm, DeepNestingIsAnErrorBothWays) {
    std::string text = "object A: T\n  X = ";
    text += std::string(10000, '(');
    EXPECT_EQ(ErrorOf(text), "EParserError: line 2: more than 1000 levels");
    std::string objects;
    for (int i = 0; i < 10000; ++i) objects += "object A: T\n";
    EXPECT_EQ(ErrorOf(objects), "EParserError: line 1001: more than 1000 levels");
}

TEST(TextForm, LayoutDoesNotMatter) {
    EXPECT_EQ(ToBinary("object A:T X=(1 2)Y='a'+ 'b' end"),
              ToBinary("\xEF\xBB\xBFobject A : T\r\n X = (\r\n1\r\n2)\r\n Y = 'ab'\r\nend\r\n"));
}
