// Blocks of a version resource, made by hand.
#include <gtest/gtest.h>

#include "platform/system/version_resource.h"

using namespace vyn;

namespace {

AnsiString Number(size_t value) { return {static_cast<char>(value), static_cast<char>(value >> 8)}; }
AnsiString Wide(std::string_view text) {
    AnsiString wide;
    for (char c : text) wide += AnsiString{c, '\0'};
    return wide;
}
AnsiString Aligned(AnsiString bytes) {
    while (bytes.size() % 4) bytes += '\0';
    return bytes;
}
// A block whose length counts itself; what follows stands behind it uncounted.
AnsiString Block(std::string_view key, const AnsiString& value, size_t valueLength, int type,
                 const AnsiString& children = {}) {
    AnsiString body = Aligned(AnsiString(6, '\0') + Wide(key) + AnsiString(2, '\0')) + value;
    if (!children.empty()) body = Aligned(body) + children;
    return Number(body.size()) + Number(valueLength) + Number(static_cast<size_t>(type)) + body.substr(6);
}
AnsiString TextBlock(std::string_view key, std::string_view text) {
    return Block(key, Wide(text) + AnsiString(2, '\0'), text.size() + 1, 1);
}
VersionResource Root(const AnsiString& value, const AnsiString& children = {}) {
    return VersionResource(Block("VS_VERSION_INFO", value, value.size(), 0, children));
}

}  // namespace

TEST(VersionResource, ValuesAreFoundByTheirPath) {
    const VersionResource resource =
        Root("root", Aligned(Block("A", "", 0, 1, Aligned(TextBlock("x", "one")) + TextBlock("y", "two"))) +
                         Block("B", "bytes", 5, 0));
    EXPECT_EQ(resource.Query("\\"), "root");
    EXPECT_EQ(resource.Query(""), "root");
    EXPECT_EQ(resource.Query("\\B"), "bytes");
    EXPECT_EQ(resource.QueryText("\\A\\x"), "one");
    EXPECT_EQ(resource.QueryText("\\A\\y"), "two");
    EXPECT_EQ(resource.QueryText("a\\Y"), "two") << "letter case aside";
    EXPECT_EQ(resource.Query("\\A"), "") << "a block without a value";
    EXPECT_EQ(resource.Query("\\A\\z"), std::nullopt);
    EXPECT_EQ(resource.Query("\\C"), std::nullopt);
    EXPECT_EQ(resource.Query("\\B\\x"), std::nullopt);
    EXPECT_EQ(resource.QueryText("\\C"), std::nullopt);
}

TEST(VersionResource, OfTwoBlocksOfANameTheFirstCounts) {
    EXPECT_EQ(Root("", Aligned(TextBlock("A", "one")) + TextBlock("a", "two")).QueryText("\\A"), "one");
}

TEST(VersionResource, ATextEndsAtItsMark) {
    EXPECT_EQ(Root("", TextBlock("A", std::string_view("one\0two", 7))).QueryText("\\A"), "one");
    EXPECT_EQ(Root("", TextBlock("A", "")).QueryText("\\A"), "");
    EXPECT_EQ(Root("", Block("A", Wide("one"), 3, 1)).QueryText("\\A"), "one") << "or with its block";
}

TEST(VersionResource, ATextMayBeCountedInBytes) {
    EXPECT_EQ(Root("", Block("A", Wide("one") + AnsiString(2, '\0'), 8, 1)).QueryText("\\A"), "one");
}

TEST(VersionResource, CharactersThatDoNotFitBecomeQuestionMarks) {
    EXPECT_EQ(Root("", Block("A", AnsiString("\xAC\x20\x92\x21\xE7\0\0\0", 8), 4, 1)).QueryText("\\A"), "\x80?\xE7");
}

TEST(VersionResource, AValueThatDoesNotFitItsBlockIsNone) {
    EXPECT_EQ(Root("", Block("A", "bytes", 6, 0)).Query("\\A"), std::nullopt);
    EXPECT_EQ(Root("", Block("A", "bytes", 5, 0)).Query("\\A"), "bytes");
}

TEST(VersionResource, ABlockThatDoesNotFitIsNone) {
    AnsiString child = TextBlock("A", "one");
    child[0] = static_cast<char>(child.size() + 4);
    EXPECT_EQ(Root("", child).Query("\\A"), std::nullopt);
    child[0] = 5;
    EXPECT_EQ(Root("", child).Query("\\A"), std::nullopt) << "shorter than its own header";
    child[0] = 0;
    EXPECT_EQ(Root("", Aligned(child) + TextBlock("B", "two")).Query("\\B"), std::nullopt) << "nothing follows it";
    const AnsiString root = Block("VS_VERSION_INFO", "root", 4, 0);
    EXPECT_EQ(VersionResource(root).Query("\\"), "root");
    EXPECT_EQ(VersionResource(root.substr(0, root.size() - 1)).Query("\\"), std::nullopt);
    EXPECT_EQ(VersionResource(root + "more").Query("\\"), "root") << "what follows is not its own";
}

TEST(VersionResource, AnotherRootIsNone) {
    EXPECT_EQ(VersionResource(Block("VS_VERSION", "root", 4, 0)).Query("\\"), std::nullopt);
    EXPECT_EQ(VersionResource(AnsiString()).Query("\\"), std::nullopt);
    EXPECT_EQ(VersionResource(AnsiString(5, '\0')).Query("\\"), std::nullopt);
    EXPECT_EQ(VersionResource(AnsiString("\6\0\0\0\0\0", 6)).Query("\\"), std::nullopt) << "a key without any room";
}

TEST(VersionResource, AKeyWithoutItsMarkEndsWithItsBlock) {
    EXPECT_EQ(Root("", AnsiString("\x08\0\0\0\1\0A\0", 8)).QueryText("\\A"), "");
    EXPECT_EQ(Root("", AnsiString("\x07\0\0\0\1\0A", 7)).QueryText("\\A"), std::nullopt) << "half a character is none";
}
