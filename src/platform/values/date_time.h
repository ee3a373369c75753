#pragma once

#include <compare>
#include <string_view>

#include "platform/text/clock.h"
#include "platform/text/date_format.h"

// A point in time: days since 1899-12-30 in Val, the fraction being the time of day (platform/text/date_format.h says
// how values before the epoch count). A type of its own, so that a date is never mistaken for a number: conversions
// from and to double are written out.
namespace vyn {

struct TDateTime {
    double Val = 0;

    constexpr TDateTime() = default;
    constexpr explicit TDateTime(double days) : Val(days) {}
    constexpr explicit operator double() const { return Val; }

    friend constexpr bool operator==(TDateTime a, TDateTime b) { return a.Val == b.Val; }
    friend constexpr std::partial_ordering operator<=>(TDateTime a, TDateTime b) { return a.Val <=> b.Val; }
    friend constexpr TDateTime operator+(TDateTime a, double days) { return TDateTime(a.Val + days); }
    friend constexpr TDateTime operator-(TDateTime a, double days) { return TDateTime(a.Val - days); }
    friend constexpr double operator-(TDateTime a, TDateTime b) { return a.Val - b.Val; }
};

// By the clock of platform/text/clock.h, which tests may set.
TDateTime Now();
TDateTime Date();  // today at midnight
TDateTime Time();  // the time of day alone

inline AnsiString DateToStr(TDateTime value, const TFormatSettings& settings = FormatSettings()) {
    return DateToStr(value.Val, settings);
}
inline AnsiString TimeToStr(TDateTime value, const TFormatSettings& settings = FormatSettings()) {
    return TimeToStr(value.Val, settings);
}
inline AnsiString DateTimeToStr(TDateTime value, const TFormatSettings& settings = FormatSettings()) {
    return DateTimeToStr(value.Val, settings);
}
inline AnsiString FormatDateTime(std::string_view mask, TDateTime value,
                                 const TFormatSettings& settings = FormatSettings()) {
    return FormatDateTime(mask, value.Val, settings);
}

// 2001-03-09 at midnight, else 2001-03-09T10:20:30, with .123 when there are milliseconds. Raises EConvertError outside
// the calendar.
AnsiString ToIso8601(TDateTime value);

// Reads a date, and perhaps T or a blank and a time (seconds and any number of their decimals may be missing; a final Z
// is accepted and moves nothing). Raises EConvertError "'x' is not a valid date and time".
TDateTime FromIso8601(std::string_view text);
bool TryFromIso8601(std::string_view text, TDateTime& value);

}  // namespace vyn
