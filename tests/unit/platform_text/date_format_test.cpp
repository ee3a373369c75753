#include "platform/text/date_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/text/clock.h"
#include "platform/text/exceptions.h"

using namespace vyn;

namespace {

const TFormatSettings& Invariant() { return InvariantFormatSettings(); }

TFormatSettings Catalan() { return FormatSettingsOfLocale("ca_ES"); }

AnsiString Dated(std::string_view mask, double days) { return FormatDateTime(mask, days, Invariant()); }

template <class Call>
std::string MessageOfDate(Call call) {
    try {
        call();
    } catch (const EConvertError& error) {
        return error.Message();
    }
    return "nothing was raised";
}

constexpr double kSample = 36959 + (10 * 3600 + 20 * 60 + 30) / 86400.0;  // 2001-03-09 10:20:30

}  // namespace

class DateParsing : public testing::Test {
  protected:
    void SetUp() override {
        SetClockForTests([] { return EncodeDate(2001, 3, 9); });
    }
    void TearDown() override { SetClockForTests({}); }
};

TEST(Dates, TheEpochIsDayZero) {
    EXPECT_EQ(0, EncodeDate(1899, 12, 30));
    EXPECT_EQ(1, EncodeDate(1899, 12, 31));
    EXPECT_EQ(-1, EncodeDate(1899, 12, 29));
    EXPECT_EQ(36959, EncodeDate(2001, 3, 9));
    EXPECT_EQ(kFirstDate, EncodeDate(1, 1, 1));
    EXPECT_EQ(kLastDate, EncodeDate(9999, 12, 31));
}

TEST(Dates, EveryDayOfTheCalendarSurvivesEncodingAndDecoding) {
    int year = 1;
    int month = 1;
    int day = 1;
    int weekDay = DayOfWeek(kFirstDate);
    for (double days = kFirstDate; days <= kLastDate; ++days) {
        Word y = 0;
        Word m = 0;
        Word d = 0;
        ASSERT_TRUE(DecodeDate(days, y, m, d));
        ASSERT_TRUE(y == year && m == month && d == day) << days;
        ASSERT_EQ(days, EncodeDate(y, m, d));
        ASSERT_EQ(weekDay, DayOfWeek(days));
        weekDay = weekDay % 7 + 1;
        if (++day > DaysInMonth(year, month)) {
            day = 1;
            if (++month > 12) month = 1, ++year;
        }
    }
    EXPECT_EQ(10000, year);
}

TEST(Dates, LeapYears) {
    EXPECT_TRUE(IsLeapYear(2000));
    EXPECT_TRUE(IsLeapYear(2004));
    EXPECT_FALSE(IsLeapYear(1900));
    EXPECT_FALSE(IsLeapYear(2001));
    EXPECT_EQ(29, DaysInMonth(2000, 2));
    EXPECT_EQ(28, DaysInMonth(1900, 2));
    EXPECT_EQ(0, DaysInMonth(2000, 13));
    EXPECT_EQ(0, DaysInMonth(2000, 0));
}

TEST(Dates, WhatIsNoDateIsRefused) {
    double days = 77;
    EXPECT_FALSE(TryEncodeDate(2001, 2, 29, days));
    EXPECT_FALSE(TryEncodeDate(0, 1, 1, days));
    EXPECT_FALSE(TryEncodeDate(10000, 1, 1, days));
    EXPECT_FALSE(TryEncodeDate(2001, 13, 1, days));
    EXPECT_FALSE(TryEncodeDate(2001, 0, 1, days));
    EXPECT_FALSE(TryEncodeDate(2001, 1, 0, days));
    EXPECT_FALSE(TryEncodeTime(24, 0, 0, 0, days));
    EXPECT_FALSE(TryEncodeTime(0, 60, 0, 0, days));
    EXPECT_FALSE(TryEncodeTime(0, 0, 60, 0, days));
    EXPECT_FALSE(TryEncodeTime(0, 0, 0, 1000, days));
    EXPECT_FALSE(TryEncodeTime(-1, 0, 0, 0, days));
    EXPECT_EQ(77, days);
    EXPECT_EQ("Invalid argument to date encode", MessageOfDate([] { EncodeDate(2001, 2, 29); }));
    EXPECT_EQ("Invalid argument to time encode", MessageOfDate([] { EncodeTime(24, 0, 0); }));
}

TEST(Dates, TheTimeCountsForwardBeforeTheEpochToo) {
    EXPECT_EQ("1899-12-29 06:00:00", Dated("yyyy-mm-dd hh:nn:ss", -1.25));
    EXPECT_EQ("1899-12-30 06:00:00", Dated("yyyy-mm-dd hh:nn:ss", -0.25));
    EXPECT_EQ("1899-12-30 06:00:00", Dated("yyyy-mm-dd hh:nn:ss", 0.25));
    EXPECT_EQ(-1.25, JoinDateTime(-1, 0.25));
    EXPECT_EQ(1.25, JoinDateTime(1, 0.25));
}

TEST(Dates, MillisecondsThatRoundToMidnightBelongToTheNextDay) {
    const double hair = 0.1 / 86400000;
    EXPECT_EQ("1900-01-02 00:00:00.000", Dated("yyyy-mm-dd hh:nn:ss.zzz", 3 - hair));
    EXPECT_EQ("1899-12-30 00:00:00.000", Dated("yyyy-mm-dd hh:nn:ss.zzz", -2 + hair));
    EXPECT_EQ("2001-03-10", Dated("yyyy-mm-dd", 36960 - hair));
}

TEST(Dates, TheLastMomentOfAllStaysInItsDay) {
    const double last = kLastDate + EncodeTime(23, 59, 59, 999);
    EXPECT_EQ("9999-12-31 23:59:59.999", Dated("yyyy-mm-dd hh:nn:ss.zzz", last));
    EXPECT_EQ("9999-12-31 23:59:59.999", Dated("yyyy-mm-dd hh:nn:ss.zzz", std::nextafter(kLastDate + 1, 0.0)));
}

TEST(Dates, EveryMillisecondOfATimeSurvives) {
    for (int ms = 0; ms < kMillisecondsPerDay; ms += 7919) {
        Word hour = 0;
        Word minute = 0;
        Word second = 0;
        Word millisecond = 0;
        for (const double day : {0.0, 36959.0, kLastDate, -5.0, kFirstDate}) {
            ASSERT_TRUE(DecodeTime(JoinDateTime(day, ms / 86400000.0), hour, minute, second, millisecond));
            ASSERT_EQ(ms, ((hour * 60 + minute) * 60 + second) * 1000 + millisecond) << day;
        }
    }
}

TEST(Dates, OutsideTheCalendarThereIsNothing) {
    for (const double days :
         {kLastDate + 1, kFirstDate - 1, 1e300, -1e300, std::nan(""), std::numeric_limits<double>::infinity()}) {
        Word a = 1;
        Word b = 1;
        Word c = 1;
        Word d = 1;
        EXPECT_FALSE(DecodeDate(days, a, b, c));
        EXPECT_EQ(0, a + b + c);
        EXPECT_FALSE(DecodeTime(days, a, b, c, d));
        EXPECT_EQ(0, DayOfWeek(days));
    }
    EXPECT_EQ("'1E300' is not a valid date and time", MessageOfDate([] { Dated("c", 1e300); }));
}

TEST(Dates, TheDayOfTheWeekBeginsWithSunday) {
    EXPECT_EQ(7, DayOfWeek(0));
    EXPECT_EQ(1, DayOfWeek(1));
    EXPECT_EQ(6, DayOfWeek(-1));
    EXPECT_EQ(6, DayOfWeek(36959));
}

TEST(FormatDateTime, DaysMonthsAndYears) {
    EXPECT_EQ("9 09 Fri Friday", Dated("d dd ddd dddd", kSample));
    EXPECT_EQ("3 03 Mar March", Dated("m mm mmm mmmm", kSample));
    EXPECT_EQ("01 01 2001 2001", Dated("y yy yyy yyyy", kSample));
    EXPECT_EQ("0033", Dated("yyyy", EncodeDate(33, 1, 1)));
    EXPECT_EQ("03/09/2001", Dated("ddddd", kSample));
    EXPECT_EQ("Friday, 09 March 2001", Dated("dddddd", kSample));
    EXPECT_EQ("divendres, 9 mar\xE7 de 2001", FormatDateTime("dddddd", kSample, Catalan()));
}

TEST(FormatDateTime, HoursMinutesAndSeconds) {
    const double early = EncodeTime(7, 5, 3, 9);
    EXPECT_EQ("7 07 5 05 3 03 9 009", Dated("h hh n nn s ss z zzz", early));
    EXPECT_EQ("07:05", Dated("t", early));
    EXPECT_EQ("07:05:03", Dated("tt", early));
    EXPECT_EQ("0.123", FormatDateTime("s.z", EncodeTime(0, 0, 0, 123), Invariant()));
}

TEST(FormatDateTime, TheLetterAfterHoursMeansMinutes) {
    EXPECT_EQ("10:20:30", Dated("hh:mm:ss", kSample));
    EXPECT_EQ("03 10:20 09", Dated("mm hh:mm dd", kSample));
    EXPECT_EQ("10 'x' 20", Dated("hh \"'x'\" mm", kSample));
    EXPECT_EQ("10:30 03", Dated("hh:ss mm", kSample));
}

TEST(FormatDateTime, HalvesOfTheDay) {
    const double afternoon = EncodeTime(13, 5, 0);
    EXPECT_EQ("1:05 pm", Dated("h:nn am/pm", afternoon));
    EXPECT_EQ("1:05 PM", Dated("h:nn AM/PM", afternoon));
    EXPECT_EQ("1:05 p", Dated("h:nn a/p", afternoon));
    EXPECT_EQ("1:05 PM", Dated("h:nn ampm", afternoon));
    EXPECT_EQ("12 am", Dated("h am/pm", 0));
    EXPECT_EQ("12 pm", Dated("h am/pm", 0.5));
    EXPECT_EQ("01 PM 13", Dated("hh AM/PM hh", afternoon));
    EXPECT_EQ("13 am/pm", Dated("hh 'am/pm'", afternoon));
    TFormatSettings settings = Invariant();
    settings.TimePMString = "tarda";
    EXPECT_EQ("1 tarda", FormatDateTime("h ampm", afternoon, settings));
}

TEST(FormatDateTime, SeparatorsAndQuotes) {
    TFormatSettings settings = Invariant();
    settings.DateSeparator = '-';
    settings.TimeSeparator = '.';
    EXPECT_EQ("09-03 10.20", FormatDateTime("dd/mm hh:nn", kSample, settings));
    EXPECT_EQ("d9 of m3", Dated("'d'd\" of \"'m'm", kSample));
    EXPECT_EQ("03/09/2001 10::20::30", Dated("mm/dd/yyyy hh::nn::ss", kSample));
    EXPECT_EQ("9open d", Dated("d'open d", kSample));
    EXPECT_EQ("x9", Dated("xd", kSample));
}

TEST(FormatDateTime, LettersInUpperCaseMeanTheSame) {
    EXPECT_EQ("2001-03-09 10:20:30", Dated("YYYY-MM-DD HH:NN:SS", kSample));
}

TEST(FormatDateTime, TheWholeMomentLeavesMidnightOut) {
    EXPECT_EQ("03/09/2001 10:20:30", Dated("c", kSample));
    EXPECT_EQ("03/09/2001", Dated("c", 36959));
    EXPECT_EQ("03/09/2001", Dated("", 36959));
    EXPECT_EQ("12/30/1899 06:00:00", Dated("c", 0.25));
}

TEST(FormatDateTime, AFormatThatCallsForItselfEnds) {
    TFormatSettings settings = Invariant();
    settings.ShortDateFormat = "dddddx";
    EXPECT_EQ("xx", FormatDateTime("ddddd", 1, settings));
}

TEST(Dates, TextsOfDateAndTime) {
    EXPECT_EQ("03/09/2001", DateToStr(kSample, Invariant()));
    EXPECT_EQ("10:20:30", TimeToStr(kSample, Invariant()));
    EXPECT_EQ("03/09/2001 10:20:30", DateTimeToStr(kSample, Invariant()));
    EXPECT_EQ("09/03/2001 10:20:30", DateTimeToStr(kSample, Catalan()));
    EXPECT_EQ("00:00:00", TimeToStr(36959, Invariant()));
}

TEST_F(DateParsing, DatesInTheOrderOfTheShortFormat) {
    EXPECT_EQ(36959, StrToDate("03/09/2001", Invariant()));
    EXPECT_EQ(36959, StrToDate(" 9/3/2001 ", Catalan()));
    TFormatSettings settings = Invariant();
    settings.ShortDateFormat = "'d'yyyy-mm-dd";
    settings.DateSeparator = '-';
    EXPECT_EQ(36959, StrToDate("2001-3-9", settings));
}

TEST_F(DateParsing, AMissingYearIsThePresentOne) {
    EXPECT_EQ(36959, StrToDate("3/9", Invariant()));
    EXPECT_EQ(36959, StrToDate("9/3", Catalan()));
}

TEST_F(DateParsing, YearsOfTwoDigitsGoByTheWindow) {
    EXPECT_EQ(EncodeDate(1951, 1, 1), StrToDate("1/1/51", Invariant()));
    EXPECT_EQ(EncodeDate(2050, 1, 1), StrToDate("1/1/50", Invariant()));
    EXPECT_EQ(EncodeDate(2005, 1, 1), StrToDate("1/1/5", Invariant()));
    EXPECT_EQ(EncodeDate(51, 1, 1), StrToDate("1/1/0051", Invariant()));
    TFormatSettings settings = Invariant();
    settings.TwoDigitYearCenturyWindow = 0;
    EXPECT_EQ(EncodeDate(2099, 1, 1), StrToDate("1/1/99", settings));
}

TEST_F(DateParsing, Times) {
    EXPECT_EQ(EncodeTime(10, 0, 0), StrToTime("10", Invariant()));
    EXPECT_EQ(EncodeTime(10, 20, 0), StrToTime(" 10:20 ", Invariant()));
    EXPECT_EQ(EncodeTime(10, 20, 30, 5), StrToTime("10:20:30.005", Invariant()));
    EXPECT_EQ(EncodeTime(10, 20, 30, 500), StrToTime("10:20:30,5", Catalan()));
    EXPECT_EQ(EncodeTime(10, 20, 30, 123), StrToTime("10:20:30.1239", Invariant()));
    EXPECT_EQ(EncodeTime(13, 5, 0), StrToTime("1:05 PM", Invariant()));
    EXPECT_EQ(EncodeTime(13, 5, 0), StrToTime("pm 1:05", Invariant()));
    EXPECT_EQ(0, StrToTime("12 am", Invariant()));
    EXPECT_EQ(0.5, StrToTime("12 pm", Invariant()));
}

TEST_F(DateParsing, DatesWithTimes) {
    EXPECT_EQ(kSample, StrToDateTime("3/9/2001 10:20:30", Invariant()));
    EXPECT_EQ(36959, StrToDateTime("3/9/2001", Invariant()));
    EXPECT_EQ(0.5, StrToDateTime("12:00", Invariant()));
    EXPECT_EQ(-1.25, StrToDateTime("12/29/1899 6:00", Invariant()));
}

TEST_F(DateParsing, EveryMomentReadsBack) {
    for (const double days : {0.0, kSample, -1.25, kFirstDate, kLastDate, 0.75})
        EXPECT_EQ(days, StrToDateTime(DateTimeToStr(days, Invariant()), Invariant())) << days;
}

TEST_F(DateParsing, WhatIsNoDateAndNoTime) {
    double days = 77;
    for (const char* text : {"", "x", "3", "3/", "13/1/2001", "2/29/2001", "3/9/2001x", "3/9/2001/1", "3-9-2001",
                             "3/9/20011", "3/9/0000"}) {
        EXPECT_FALSE(TryStrToDate(text, days, Invariant())) << text;
    }
    for (const char* text :
         {"", "x", "24:00", "10:60", "10:20:60", "10:", "10:20:", "10:20:30.", "13 pm", "0 am", "123:00", "10:20x"})
        EXPECT_FALSE(TryStrToTime(text, days, Invariant())) << text;
    for (const char* text : {"", "3/9/2001 x", "3/9/2001 25:00", "x 10:00", "3/9/2001 10:00 x"})
        EXPECT_FALSE(TryStrToDateTime(text, days, Invariant())) << text;
    EXPECT_EQ(77, days);
}

TEST_F(DateParsing, TheErrorsNameTheText) {
    EXPECT_EQ("'x' is not a valid date", MessageOfDate([] { StrToDate("x", Invariant()); }));
    EXPECT_EQ("'x' is not a valid time", MessageOfDate([] { StrToTime("x", Invariant()); }));
    EXPECT_EQ("'x' is not a valid date and time", MessageOfDate([] { StrToDateTime("x", Invariant()); }));
}

TEST(Clock, TheMachinesClockIsWithinTheCalendar) {
    EXPECT_GT(CurrentDays(), EncodeDate(2024, 1, 1));
    EXPECT_LT(CurrentDays(), kLastDate);
}

TEST(Clock, ATestsClockTakesItsPlaceUntilItIsPutBack) {
    SetClockForTests([] { return 5.5; });
    EXPECT_EQ(5.5, CurrentDays());
    SetClockForTests({});
    EXPECT_GT(CurrentDays(), 45000);
}
