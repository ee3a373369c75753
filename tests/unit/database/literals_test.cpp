// How values become SQL text.

#include "database_fixtures.h"
#include "foundation/Uparametres.h"
#include "foundation/errors.h"
#include "platform/text/format_settings.h"

using namespace vyn;
using database_fixtures::MessageOf;

class Literals : public testing::Test {
  protected:
    void SetUp() override {
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
    }
    void TearDown() override { FormatSettings() = before_; }
    AnsiString Of(TFieldType type, const Variant& value) { return database.ConvertToSqlString(type, value); }

    TDataBaseVyn database{nullptr};

  private:
    TFormatSettings before_;
};

TEST_F(Literals, AQuoteInsideAStringIsDoubled) {
    EXPECT_EQ(Of(ftString, "O'Brien"), "'O''Brien'");
    EXPECT_EQ(database.GetStringSQL("O'Brien", false), "O''Brien");
    EXPECT_EQ(database.GetStringSQL("''", true), "''''''");
    EXPECT_EQ(database.GetStringSQL("", true), "''");
    EXPECT_EQ(database.GetStringSQL("", false), "");
    EXPECT_EQ(database.GetStringSQL("a'", true), "'a'''");
}

TEST_F(Literals, OnlyTheSeparatorIsEscaped) {
    const AnsiString text(
        "a\"b`c\\d:e\xA1"
        "f\r\n\0g",
        14);
    EXPECT_EQ(Of(ftString, text), "'" + text + "'");
    database.SQLStringSeparator = '"';
    EXPECT_EQ(Of(ftString, "a\"b'c"), "\"a\"\"b'c\"");
}

TEST_F(Literals, EveryTextTypeIsQuoted) {
    for (const TFieldType type : {ftString, ftBoolean, ftFixedChar, ftWideString}) EXPECT_EQ(Of(type, "a"), "'a'");
}

TEST_F(Literals, ABooleanIsItsQuotedWord) {
    EXPECT_EQ(Of(ftBoolean, true), "'True'");
    EXPECT_EQ(Of(ftBoolean, false), "'False'");
}

TEST_F(Literals, ANullTextIsTwoSeparators) { EXPECT_EQ(Of(ftString, Variant::Null()), "''"); }

TEST_F(Literals, IntegersStandInDecimal) {
    for (const TFieldType type : {ftSmallint, ftInteger, ftWord, ftAutoInc}) EXPECT_EQ(Of(type, -70000), "-70000");
    EXPECT_EQ(Of(ftInteger, "12"), "12");
}

TEST_F(Literals, ADecimalOfFixedPrecisionLosesItsFraction) { EXPECT_EQ(Of(ftBCD, Currency(12.25)), "12"); }

TEST_F(Literals, WhatIsNoNumberIsTheConversionsError) {
    EXPECT_EQ(MessageOf([&] { Of(ftInteger, "abc"); }),
              "EVariantError: Could not convert variant of type (String) into type (Integer)");
    EXPECT_EQ(MessageOf([&] { Of(ftFloat, Variant::Null()); }), "EVariantError: Invalid variant type conversion");
    EXPECT_EQ(MessageOf([&] { Of(ftDate, "abc"); }).substr(0, 13), "EVariantError");
}

TEST_F(Literals, RealNumbersHaveNoNeedlessZeros) {
    EXPECT_EQ(Of(ftFloat, 1234.5), "1234.5");
    EXPECT_EQ(Of(ftFloat, 2.0), "2");
    EXPECT_EQ(Of(ftFloat, 0.1), "0.1");
    EXPECT_EQ(Of(ftFloat, -0.25), "-0.25");
    EXPECT_EQ(Of(ftFloat, 1234567.25), "1234567.25");
    EXPECT_EQ(Of(ftCurrency, Currency(7.5)), "7.5");
    EXPECT_EQ(Of(ftFloat, 0.0), "0");
}

TEST_F(Literals, TheDecimalSeparatorIsTheDatabasesAndNotTheLocales) {
    FormatSettings().DecimalSeparator = ',';
    EXPECT_EQ(Of(ftFloat, 1234.5), "1234.5");
    database.SQLDecimalSeparator = ';';
    EXPECT_EQ(Of(ftFloat, 1234.5), "1234;5");
    EXPECT_EQ(FormatSettings().DecimalSeparator, ',');
}

TEST_F(Literals, DatesStandBetweenTheirMarks) {
    const TDateTime date(EncodeDate(2001, 3, 9));
    EXPECT_EQ(Of(ftDate, date), "#03/09/2001#");
    database.SQLDateTimeStart = "{d '";
    database.SQLDateTimeEnd = "'}";
    database.SQLFormatDate = "yyyy/mm/dd";
    database.SQLDateSeparator = '-';
    EXPECT_EQ(Of(ftDate, date), "{d '2001-03-09'}");
}

TEST_F(Literals, TheColonsOfTimesAreDoubled) {
    const TDateTime moment(JoinDateTime(EncodeDate(2001, 3, 9), EncodeTime(10, 20, 30)));
    EXPECT_EQ(Of(ftDateTime, moment), "#03/09/2001 10::20::30#");
    EXPECT_EQ(Of(ftTime, moment), "#10::20::30#");
    database.SQLTimeSeparator = '.';
    EXPECT_EQ(Of(ftTime, moment), "#10..20..30#");
}

TEST_F(Literals, TheLocalesSeparatorsChangeNoDate) {
    FormatSettings().DateSeparator = '-';
    FormatSettings().TimeSeparator = '.';
    const TDateTime moment(JoinDateTime(EncodeDate(2001, 3, 9), EncodeTime(10, 20, 30)));
    EXPECT_EQ(Of(ftDateTime, moment), "#03/09/2001 10::20::30#");
    EXPECT_EQ(FormatSettings().DateSeparator, '-');
    EXPECT_EQ(FormatSettings().TimeSeparator, '.');
}

TEST_F(Literals, ADateOutsideTheCalendarIsAnErrorAndChangesNoSetting) {
    EXPECT_EQ(MessageOf([&] { Of(ftDate, TDateTime(1e9)); }).substr(0, 13), "EConvertError");
    EXPECT_EQ(FormatSettings().DateSeparator, '/');
}

TEST_F(Literals, TypesWithoutALiteralAreEmpty) {
    for (const TFieldType type :
         {ftUnknown, ftBytes, ftVarBytes, ftBlob, ftMemo, ftGraphic, ftFmtMemo, ftCursor, ftLargeint})
        EXPECT_EQ(Of(type, 7), "") << static_cast<int>(type);
}

TEST_F(Literals, AMomentTakesTheFormatThatSuitsIt) {
    const double day = EncodeDate(2001, 3, 9);
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(0.25)), "#06::00::00#");
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(day)), "#03/09/2001#");
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(day + 0.25)), "#03/09/2001 06::00::00#");
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(0)), "#00::00::00#");
}

TEST_F(Literals, ATimeAfterNoonIsWrittenWithItsDate) {
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(0.75)), "#12/30/1899 18::00::00#");
    // Half a day rounds to the even number, 0.
    EXPECT_EQ(database.GetSQLDateTime(TDateTime(0.5)), "#12::00::00#");
}

TEST_F(Literals, TheApplicationsLiteralGoesFirst) {
    database.OnConvertToSqlString = [&](TDataBaseVyn* DBVyn, TFieldType ValueType, const Variant& Value,
                                        AnsiString& Result) {
        EXPECT_EQ(DBVyn, &database);
        EXPECT_EQ(Result, "");
        if (ValueType == ftBoolean) Result = Value.AsBoolean() ? "1" : "";
    };
    EXPECT_EQ(Of(ftBoolean, true), "1");
    EXPECT_EQ(Of(ftBoolean, false), "'False'");  // an empty answer is none
    EXPECT_EQ(Of(ftInteger, 3), "3");
}

class ParameterLiterals : public Literals {
  protected:
    AnsiString OfParameter(const Variant& value) {
        TParametres set(nullptr);
        set.AddParam("P", value);
        return database.ConvertParametreToSql(&set, "p");
    }
};

TEST_F(ParameterLiterals, EachTypeOfValueHasItsLiteral) {
    EXPECT_EQ(OfParameter(Variant::Null()), "NULL");
    EXPECT_EQ(OfParameter(static_cast<int16_t>(-3)), "-3");
    EXPECT_EQ(OfParameter(70000), "70000");
    EXPECT_EQ(OfParameter(0.5f), "0.5");
    EXPECT_EQ(OfParameter(1.25), "1.25");
    EXPECT_EQ(OfParameter(Currency(2.5)), "2.5");
    EXPECT_EQ(OfParameter(true), "'True'");
    EXPECT_EQ(OfParameter(static_cast<unsigned char>(200)), "200");
    EXPECT_EQ(OfParameter("it's"), "'it''s'");
}

TEST_F(ParameterLiterals, ADateIsAlwaysWrittenWithItsTime) {
    EXPECT_EQ(OfParameter(TDateTime(EncodeDate(2001, 3, 9))), "#03/09/2001 00::00::00#");
}

TEST_F(ParameterLiterals, AnUnassignedValueIsNoGoodType) {
    TParametres set(nullptr);
    set.AddParam("P", 1);
    set.SetParametreValue("P", Variant());
    EXPECT_EQ(MessageOf([&] { database.ConvertParametreToSql(&set, "P"); }),
              "EDataBaseVynError: TDataBaseVyn ERROR:\nBad PRM type");
    EXPECT_EQ(MessageOf([&] { OfParameter(u"wide"); }), "EDataBaseVynError: TDataBaseVyn ERROR:\nBad PRM type");
}

TEST_F(ParameterLiterals, TheParametersGetEventsFire) {
    TParametres set(nullptr);
    set.AddParam("P", 1);
    set.OnGetValorPRM = [](TParametres*, const AnsiString&, Variant& Value) { Value = "other"; };
    EXPECT_EQ(database.ConvertParametreToSql(&set, "P"), "'other'");
}
