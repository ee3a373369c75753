#pragma once

#include <cstdint>
#include <string_view>

#include "platform/text/format_settings.h"

// Dates and times as days since 1899-12-30 in a double: the integral part counts days, the fraction is the time of day
// and counts forward in absolute value, before the epoch too (-1.25 is 1899-12-29 06:00). Years 1 to 9999 of the
// proleptic Gregorian calendar. Times are taken to the nearest millisecond; one that rounds to midnight belongs to the
// next day (the last day of all keeps 23:59:59.999). Pure functions; any thread that leaves the settings alone.
namespace vyn {

using Word = std::uint16_t;

inline constexpr double kFirstDate = -693593.0;  // 0001-01-01
inline constexpr double kLastDate = 2958465.0;   // 9999-12-31
inline constexpr std::int64_t kMillisecondsPerDay = 86400000;

bool IsLeapYear(int year);
int DaysInMonth(int year, int month);

// Raise EConvertError "Invalid argument to date encode" and "Invalid argument to time encode".
double EncodeDate(int year, int month, int day);
double EncodeTime(int hour, int minute, int second, int millisecond = 0);
bool TryEncodeDate(int year, int month, int day, double& days);
bool TryEncodeTime(int hour, int minute, int second, int millisecond, double& days);
double JoinDateTime(double date, double time);  // minds the sign: the time moves away from zero

// False, and all zeros, for what lies outside the calendar or is no number.
bool DecodeDate(double days, Word& year, Word& month, Word& day);
bool DecodeTime(double days, Word& hour, Word& minute, Word& second, Word& millisecond);
int DayOfWeek(double days);  // 1 Sunday to 7 Saturday; 0 outside the calendar

// The classic mask, letters in either case: d dd ddd dddd, ddddd short date, dddddd long date; m mm mmm mmmm (minutes
// when the letter before was h); y yy yyyy; h hh; n nn; s ss; z zzz; t short time, tt long time; c short date, and long
// time unless midnight; am/pm, a/p, ampm (and h then counts to 12); / and : the settings' separators; 'x' "x" literal.
// An empty mask is c. Raises EConvertError for what lies outside the calendar.
AnsiString FormatDateTime(std::string_view mask, double days, const TFormatSettings& settings = FormatSettings());
AnsiString DateToStr(double days, const TFormatSettings& settings = FormatSettings());
AnsiString TimeToStr(double days, const TFormatSettings& settings = FormatSettings());
AnsiString DateTimeToStr(double days, const TFormatSettings& settings = FormatSettings());

// Reading. A date is numbers with the settings' separator in the order of ShortDateFormat; two numbers are day and
// month of the present year; a year of one or two digits goes by TwoDigitYearCenturyWindow. A time is h[:n[:s[.zzz]]]
// and an AM or PM mark before or after it. A date and time may lack either half. Errors are EConvertError: "'x' is not
// a valid date", "'x' is not a valid time", "'x' is not a valid date and time".
double StrToDate(std::string_view text, const TFormatSettings& settings = FormatSettings());
double StrToTime(std::string_view text, const TFormatSettings& settings = FormatSettings());
double StrToDateTime(std::string_view text, const TFormatSettings& settings = FormatSettings());
bool TryStrToDate(std::string_view text, double& days, const TFormatSettings& settings = FormatSettings());
bool TryStrToTime(std::string_view text, double& days, const TFormatSettings& settings = FormatSettings());
bool TryStrToDateTime(std::string_view text, double& days, const TFormatSettings& settings = FormatSettings());

}  // namespace vyn
