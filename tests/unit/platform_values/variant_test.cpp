#include "platform/values/variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

template <class Call>
std::string MessageOfVariant(Call call) {
    try {
        call();
    } catch (const EVariantError& error) {
        return error.Message();
    }
    return "nothing was raised";
}

}  // namespace

// Every test starts from the invariant settings, whatever the environment says.
class VariantTest : public testing::Test {
  protected:
    void SetUp() override {
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
    }
    void TearDown() override { FormatSettings() = before_; }

  private:
    TFormatSettings before_;
};

static_assert(std::is_nothrow_move_constructible_v<Variant> && std::is_nothrow_move_assignable_v<Variant>);
static_assert(!std::is_constructible_v<Variant, int*> && !std::is_constructible_v<Variant, std::nullptr_t>);

TEST_F(VariantTest, TheTypeFollowsTheValue) {
    EXPECT_EQ(varEmpty, Variant().Type());
    EXPECT_EQ(varNull, Variant::Null().Type());
    EXPECT_EQ(varSmallint, Variant(std::int16_t{1}).Type());
    EXPECT_EQ(varInteger, Variant(1).Type());
    EXPECT_EQ(varInteger, Variant(1u).Type());
    EXPECT_EQ(varInteger, Variant(std::uint16_t{1}).Type());
    EXPECT_EQ(varSingle, Variant(1.0f).Type());
    EXPECT_EQ(varDouble, Variant(1.0).Type());
    EXPECT_EQ(varDouble, Variant(1.0L).Type());
    EXPECT_EQ(varCurrency, Variant(Currency(1)).Type());
    EXPECT_EQ(varDate, Variant(TDateTime(1)).Type());
    EXPECT_EQ(varOleStr, Variant(u"x").Type());
    EXPECT_EQ(varOleStr, Variant(WideString(u"x")).Type());
    EXPECT_EQ(varBoolean, Variant(true).Type());
    EXPECT_EQ(varByte, Variant(std::uint8_t{1}).Type());
    EXPECT_EQ(varString, Variant("x").Type());
    EXPECT_EQ(varString, Variant(AnsiString("x")).Type());
    EXPECT_EQ(varString, Variant(std::string_view("x")).Type());
    EXPECT_EQ("x", Variant('x').AsString());
    EXPECT_EQ("", Variant(static_cast<const char*>(nullptr)).AsString());
}

TEST_F(VariantTest, AWideIntegerIsAnIntegerWhenItFitsAndElseADouble) {
    EXPECT_EQ(varInteger, Variant(std::int64_t{2147483647}).Type());
    EXPECT_EQ(varDouble, Variant(std::int64_t{2147483648}).Type());
    EXPECT_EQ(varInteger, Variant(std::int64_t{-2147483648LL}).Type());
    EXPECT_EQ(varDouble, Variant(std::int64_t{-2147483649LL}).Type());
    EXPECT_EQ(varDouble, Variant(4294967295u).Type());
    EXPECT_EQ(4294967295.0, Variant(4294967295u).AsDouble());
    EXPECT_EQ(varDouble, Variant(std::numeric_limits<std::uint64_t>::max()).Type());
}

TEST_F(VariantTest, KindsOfTypes) {
    EXPECT_TRUE(Variant().IsEmpty());
    EXPECT_TRUE(Variant::Null().IsNull());
    EXPECT_TRUE(Variant(u"x").IsText());
    EXPECT_TRUE(Variant(true).IsOrdinal());
    EXPECT_TRUE(Variant(Currency(1)).IsFloat());
    EXPECT_TRUE(Variant(1).IsNumeric());
    EXPECT_FALSE(Variant(TDateTime(1)).IsNumeric());
    EXPECT_FALSE(Variant("1").IsNumeric());
    Variant value(5);
    value.Clear();
    EXPECT_TRUE(value.IsEmpty());
}

TEST_F(VariantTest, ValuesAsText) {
    EXPECT_EQ("", Variant().AsString());
    EXPECT_EQ("-5", Variant(std::int16_t{-5}).AsString());
    EXPECT_EQ("70000", Variant(70000).AsString());
    EXPECT_EQ("200", Variant(std::uint8_t{200}).AsString());
    EXPECT_EQ("0.1", Variant(0.1f).AsString());
    EXPECT_EQ("0.3", Variant(0.1 + 0.2).AsString());
    EXPECT_EQ("1E20", Variant(1e20).AsString());
    EXPECT_EQ("1234.5678", Variant(Currency(1234.5678)).AsString());
    EXPECT_EQ("True", Variant(true).AsString());
    EXPECT_EQ("False", Variant(false).AsString());
    EXPECT_EQ("03/09/2001", Variant(TDateTime(36959)).AsString());
    EXPECT_EQ("03/09/2001 06:00:00", Variant(TDateTime(36959.25)).AsString());
    EXPECT_EQ("posici\xF3?", Variant(u"posició中").AsString());
    EXPECT_EQ(u"posici\u00F3", Variant("posici\xF3").AsWideString());
    EXPECT_EQ(u"中", Variant(u"中").AsWideString());
}

TEST_F(VariantTest, TextFollowsTheProcessWideSettings) {
    FormatSettings() = FormatSettingsOfLocale("es_ES");
    EXPECT_EQ("1234,5", Variant(1234.5).AsString());
    EXPECT_EQ(1234.5, Variant("1234,5").AsDouble());
    EXPECT_EQ("09/03/2001", Variant(TDateTime(36959)).AsString());
}

TEST_F(VariantTest, NullConvertsToNothingButHasAnEmptyText) {
    const Variant null = Variant::Null();
    const std::string text = "Invalid variant type conversion";
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsString(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsWideString(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsInteger(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsDouble(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsCurrency(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsDateTime(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.AsBoolean(); }));
    EXPECT_EQ(text, MessageOfVariant([&] { null.ChangeType(varString); }));
    EXPECT_EQ("", null.AsText());
    EXPECT_EQ("", VarToStr(null));
    EXPECT_EQ(u"", VarToWideStr(null));
    EXPECT_EQ("", VarToStr(Variant()));
    EXPECT_EQ("5", VarToStr(5));
    EXPECT_EQ(u"5", VarToWideStr(5));
}

TEST_F(VariantTest, EmptyIsZeroFalseAndTheEmptyText) {
    const Variant empty;
    EXPECT_EQ(0, empty.AsInteger());
    EXPECT_EQ(0.0, empty.AsDouble());
    EXPECT_EQ(Currency(), empty.AsCurrency());
    EXPECT_EQ(TDateTime(), empty.AsDateTime());
    EXPECT_FALSE(empty.AsBoolean());
}

TEST_F(VariantTest, FractionsRoundHalfToEven) {
    EXPECT_EQ(2, Variant(2.5).AsInteger());
    EXPECT_EQ(4, Variant(3.5).AsInteger());
    EXPECT_EQ(-2, Variant(-2.5).AsInteger());
    EXPECT_EQ(-4, Variant(-3.5).AsInteger());
    EXPECT_EQ(3, Variant(2.51).AsInteger());
    EXPECT_EQ(13, Variant("12.6").AsInteger());
    EXPECT_EQ(2, Variant(Currency(2.5)).AsInteger());
    EXPECT_EQ(36960, Variant(TDateTime(36959.75)).AsInteger());
}

TEST_F(VariantTest, IntegersFromTextAndBoolean) {
    EXPECT_EQ(-1, Variant(true).AsInteger());
    EXPECT_EQ(0, Variant(false).AsInteger());
    EXPECT_EQ(12, Variant(" 12 ").AsInteger());
    EXPECT_EQ(255, Variant("$FF").AsInteger());
    EXPECT_EQ(12, Variant(u"12").AsInteger());
    EXPECT_EQ(9007199254740993, Variant("9007199254740993").AsInt64());
    EXPECT_EQ(-5, Variant("-5").AsSmallint());
    EXPECT_EQ(255, Variant(true).AsByte());
    EXPECT_EQ(0, Variant(false).AsByte());
}

TEST_F(VariantTest, ATextThatSaysNoSuchValueIsNamedByTypes) {
    EXPECT_EQ("Could not convert variant of type (String) into type (Integer)",
              MessageOfVariant([] { Variant("abc").AsInteger(); }));
    EXPECT_EQ("Could not convert variant of type (String) into type (Double)",
              MessageOfVariant([] { Variant("").AsDouble(); }));
    EXPECT_EQ("Could not convert variant of type (OleStr) into type (Currency)",
              MessageOfVariant([] { Variant(u"x").AsCurrency(); }));
    EXPECT_EQ("Could not convert variant of type (String) into type (Date)",
              MessageOfVariant([] { Variant("x").AsDateTime(); }));
    EXPECT_EQ("Could not convert variant of type (String) into type (Boolean)",
              MessageOfVariant([] { Variant("yes").AsBoolean(); }));
    EXPECT_EQ("Could not convert variant of type (Integer) into type (Unknown)",
              MessageOfVariant([] { Variant(1).ChangeType(static_cast<VarType>(99)); }));
}

TEST_F(VariantTest, AValueOutOfTheRangeIsAnOverflow) {
    EXPECT_EQ("Overflow while converting variant of type (Double) into type (Integer)",
              MessageOfVariant([] { Variant(3e9).AsInteger(); }));
    EXPECT_EQ("Overflow while converting variant of type (Integer) into type (Smallint)",
              MessageOfVariant([] { Variant(40000).AsSmallint(); }));
    EXPECT_EQ("Overflow while converting variant of type (Integer) into type (Byte)",
              MessageOfVariant([] { Variant(-1).AsByte(); }));
    EXPECT_EQ("Overflow while converting variant of type (Double) into type (Currency)",
              MessageOfVariant([] { Variant(1e20).AsCurrency(); }));
    EXPECT_EQ("Overflow while converting variant of type (Double) into type (Single)",
              MessageOfVariant([] { Variant(1e300).AsSingle(); }));
    EXPECT_EQ("Overflow while converting variant of type (Date) into type (String)",
              MessageOfVariant([] { Variant(TDateTime(1e10)).AsString(); }));
    EXPECT_THROW(Variant(std::nan("")).AsInteger(), EVariantError);
    EXPECT_THROW(Variant(9.3e18).AsInt64(), EVariantError);
    EXPECT_EQ(2147483647, Variant(2147483647.4).AsInteger());
    EXPECT_THROW(Variant(2147483647.5).AsInteger(), EVariantError);
}

TEST_F(VariantTest, Booleans) {
    EXPECT_TRUE(Variant("True").AsBoolean());
    EXPECT_TRUE(Variant("tRUE ").AsBoolean());
    EXPECT_FALSE(Variant(u"false").AsBoolean());
    EXPECT_TRUE(Variant("-1").AsBoolean());
    EXPECT_FALSE(Variant("0").AsBoolean());
    EXPECT_TRUE(Variant(0.1).AsBoolean());
    EXPECT_FALSE(Variant(TDateTime(0)).AsBoolean());
    EXPECT_TRUE(Variant(Currency(0.0001)).AsBoolean());
}

TEST_F(VariantTest, DatesAndAmounts) {
    EXPECT_EQ(TDateTime(36959.25), Variant("3/9/2001 6:00").AsDateTime());
    EXPECT_EQ(TDateTime(0.25), Variant("6:00").AsDateTime());
    EXPECT_EQ(TDateTime(36959.5), Variant("36959.5").AsDateTime());
    EXPECT_EQ(TDateTime(2), Variant(2).AsDateTime());
    EXPECT_EQ(36959.5, Variant(TDateTime(36959.5)).AsDouble());
    EXPECT_EQ(Currency::FromScaled(std::numeric_limits<std::int64_t>::max()),
              Variant("922337203685477.5807").AsCurrency());
    EXPECT_EQ(Currency(255), Variant("$FF").AsCurrency());
    EXPECT_EQ(Currency(1.5), Variant(1.5).AsCurrency());
    EXPECT_EQ(1.5f, Variant("1.5").AsSingle());
}

TEST_F(VariantTest, ChangingTheTypeKeepsTheValue) {
    const Variant value("12");
    for (const VarType type :
         {varSmallint, varInteger, varSingle, varDouble, varCurrency, varDate, varOleStr, varByte, varString}) {
        const Variant changed = value.ChangeType(type);
        EXPECT_EQ(type, changed.Type());
        if (type != varDate) {
            EXPECT_EQ("12", changed.AsString());
        }
    }
    EXPECT_TRUE(value.ChangeType(varBoolean).AsBoolean());
    EXPECT_TRUE(value.ChangeType(varEmpty).IsEmpty());
    EXPECT_TRUE(value.ChangeType(varNull).IsNull());
    EXPECT_TRUE(Variant::Null().ChangeType(varNull).IsNull());
}

TEST_F(VariantTest, EmptyAndNullEqualThemselvesOnly) {
    EXPECT_TRUE(VarSameValue(Variant(), Variant()));
    EXPECT_TRUE(VarSameValue(Variant::Null(), Variant::Null()));
    EXPECT_FALSE(VarSameValue(Variant(), Variant::Null()));
    EXPECT_FALSE(VarSameValue(Variant::Null(), ""));
    EXPECT_FALSE(VarSameValue(Variant(), 0));
    EXPECT_EQ(vrNotEqual, VarCompareValue(Variant::Null(), 1));
}

TEST_F(VariantTest, NumbersAndTextsCompareByConversion) {
    EXPECT_EQ(Variant(1), Variant("1"));
    EXPECT_EQ(Variant("1.0"), Variant(1));
    EXPECT_NE(Variant("x"), Variant(1));
    EXPECT_EQ(Variant("$10"), Variant(16.0));
    EXPECT_EQ(Variant("0.1"), Variant(0.1));
    EXPECT_EQ(Variant("0.1"), Variant(0.1f));
    EXPECT_EQ(Variant("true"), Variant(true));
    EXPECT_EQ(Variant(true), Variant("-1"));
    EXPECT_EQ(Variant("3/9/2001"), Variant(TDateTime(36959)));
    EXPECT_EQ(Variant(Currency(0.1)), Variant("0.1"));
    EXPECT_EQ(vrLessThan, VarCompareValue("2", 10));
    EXPECT_EQ(vrGreaterThan, VarCompareValue(10, "2"));
    EXPECT_EQ(vrNotEqual, VarCompareValue(10, "x"));
}

TEST_F(VariantTest, NumbersCompareAmongEachOther) {
    EXPECT_EQ(Variant(1), Variant(1.0));
    EXPECT_EQ(Variant(true), Variant(-1));
    EXPECT_EQ(Variant(Currency(0.1)), Variant(0.1));
    EXPECT_EQ(Variant(Currency(0.1)), Variant(Currency(0.1)));
    EXPECT_EQ(Variant(TDateTime(2)), Variant(2));
    EXPECT_EQ(vrLessThan, VarCompareValue(1, 2));
    EXPECT_EQ(vrNotEqual, VarCompareValue(std::nan(""), 1));
    EXPECT_EQ(vrLessThan, VarCompareValue(Currency::FromScaled(std::numeric_limits<std::int64_t>::max() - 1),
                                          Currency::FromScaled(std::numeric_limits<std::int64_t>::max())));
}

TEST_F(VariantTest, TextsCompareByteForByte) {
    EXPECT_EQ(Variant("a"), Variant(u"a"));
    EXPECT_NE(Variant("a"), Variant("A"));
    EXPECT_NE(Variant("1"), Variant("1.0"));
    EXPECT_NE(Variant(u"中"), Variant("?"));
    EXPECT_EQ(vrLessThan, VarCompareValue("a", "b"));
    EXPECT_EQ(vrGreaterThan, VarCompareValue("\xE9", "z"));
}

TEST_F(VariantTest, TypeNames) {
    const VarType types[] = {varEmpty,    varNull, varSmallint, varInteger, varSingle, varDouble,
                             varCurrency, varDate, varOleStr,   varBoolean, varByte,   varString};
    const char* const names[] = {"Empty",    "Null", "Smallint", "Integer", "Single", "Double",
                                 "Currency", "Date", "OleStr",   "Boolean", "Byte",   "String"};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(names[i], VarTypeName(types[i]));
    EXPECT_EQ("Unknown", VarTypeName(static_cast<VarType>(3000)));
}
