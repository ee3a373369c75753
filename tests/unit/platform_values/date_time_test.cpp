#include "platform/values/date_time.h"

#include <gtest/gtest.h>

#include "platform/text/exceptions.h"

using namespace vyn;

TEST(DateTime, TheClockOfATestDecidesNowDateAndTime) {
    SetClockForTests([] { return 36959.75; });
    EXPECT_EQ(TDateTime(36959.75), Now());
    EXPECT_EQ(TDateTime(36959), Date());
    EXPECT_EQ(TDateTime(0.75), Time());
    SetClockForTests([] { return -1.25; });
    EXPECT_EQ(TDateTime(-1), Date());
    EXPECT_EQ(TDateTime(0.25), Time());
    SetClockForTests({});
    EXPECT_GT(Now(), TDateTime(45000));
}

TEST(DateTime, ComparesAndMovesByDays) {
    EXPECT_LT(TDateTime(1), TDateTime(2));
    EXPECT_EQ(TDateTime(3), TDateTime(1) + 2);
    EXPECT_EQ(TDateTime(-1), TDateTime(1) - 2);
    EXPECT_EQ(1.5, TDateTime(2.5) - TDateTime(1));
    EXPECT_EQ(0, TDateTime().Val);
    EXPECT_EQ(2.5, static_cast<double>(TDateTime(2.5)));
}

TEST(DateTime, IsWrittenByTheSettings) {
    const TFormatSettings& settings = InvariantFormatSettings();
    EXPECT_EQ("03/09/2001", DateToStr(TDateTime(36959), settings));
    EXPECT_EQ("06:00:00", TimeToStr(TDateTime(0.25), settings));
    EXPECT_EQ("03/09/2001 06:00:00", DateTimeToStr(TDateTime(36959.25), settings));
    EXPECT_EQ("2001", FormatDateTime("yyyy", TDateTime(36959), settings));
}

TEST(DateTime, IsoTextShowsWhatThereIs) {
    EXPECT_EQ("2001-03-09", ToIso8601(TDateTime(36959)));
    EXPECT_EQ("2001-03-09T06:00:00", ToIso8601(TDateTime(36959.25)));
    EXPECT_EQ("1899-12-29T06:00:00", ToIso8601(TDateTime(-1.25)));
    EXPECT_EQ("9999-12-31T23:59:59.999", ToIso8601(TDateTime(EncodeDate(9999, 12, 31) + EncodeTime(23, 59, 59, 999))));
    EXPECT_THROW(ToIso8601(TDateTime(1e10)), EConvertError);
}

TEST(DateTime, IsoTextReadsBack) {
    for (const double days : {0.0, 36959.25, -1.25, kFirstDate, kLastDate})
        EXPECT_EQ(TDateTime(days), FromIso8601(ToIso8601(TDateTime(days))));
    EXPECT_EQ(TDateTime(36959.25), FromIso8601("2001-03-09 06:00"));
    EXPECT_EQ(TDateTime(36959.25), FromIso8601("2001-03-09T06:00:00.0009Z"));
}

TEST(DateTime, WhatIsNoIsoTextIsNamed) {
    TDateTime value(77);
    for (const char* text : {"", "2001", "2001-3-9", "2001-02-29", "2001-03-09T", "2001-03-09T24:00",
                             "2001-03-09T10:20:30.", "2001-03-09x", "2001-03-09T10:20:30x", "0000-01-01"})
        EXPECT_FALSE(TryFromIso8601(text, value)) << text;
    EXPECT_EQ(TDateTime(77), value);
    try {
        FromIso8601("x");
        FAIL();
    } catch (const EConvertError& error) {
        EXPECT_EQ("'x' is not a valid date and time", error.Message());
    }
}
