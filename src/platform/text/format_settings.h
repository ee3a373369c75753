#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/text/ansi_string.h"

// How numbers, amounts and dates are written and read. Every formatter takes settings as its last argument; what is not
// said goes by the process-wide ones, which come from the environment's locale (LC_ALL, else LC_NUMERIC, LC_TIME,
// LC_MONETARY, else LANG) when they are first asked for. English, Spanish and Catalan are built in; another language
// is asked of the system, and where the system does not know it, or the locale is "C", the invariant settings serve.
namespace vyn {

struct TFormatSettings {
    char DecimalSeparator = '.';
    char ThousandSeparator = ',';
    char DateSeparator = '/';
    char TimeSeparator = ':';
    char ListSeparator = ',';

    AnsiString CurrencyString = "\xA4";
    std::uint8_t CurrencyFormat = 0;  // 0 $1, 1 1$, 2 $ 1, 3 1 $
    std::uint8_t NegCurrFormat = 0;   // 0 ($1), 1 -$1, 2 $-1, 3 $1-, 4 (1$), 5 -1$, 6 1-$, 7 1$-, 8 -1 $, 9 -$ 1,
                                      // 10 1 $-, 11 $ 1-, 12 $ -1, 13 1- $, 14 ($ 1), 15 (1 $)
    std::uint8_t CurrencyDecimals = 2;

    AnsiString ShortDateFormat = "mm/dd/yyyy";
    AnsiString LongDateFormat = "dddd, dd mmmm yyyy";
    AnsiString ShortTimeFormat = "hh:nn";
    AnsiString LongTimeFormat = "hh:nn:ss";
    AnsiString TimeAMString = "AM";
    AnsiString TimePMString = "PM";
    std::array<AnsiString, 12> ShortMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::array<AnsiString, 12> LongMonthNames = {"January", "February", "March",     "April",   "May",      "June",
                                                 "July",    "August",   "September", "October", "November", "December"};
    std::array<AnsiString, 7> ShortDayNames = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};  // Sunday first
    std::array<AnsiString, 7> LongDayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};

    // A year of two digits lies in the hundred years that begin this many years before the present one; 0 means that
    // it lies in the present century.
    std::uint16_t TwoDigitYearCenturyWindow = 50;
};

// The process-wide settings; to be changed on the main thread only.
TFormatSettings& FormatSettings();

// The same on every machine, for stored forms and tests.
const TFormatSettings& InvariantFormatSettings();

// The settings of one locale name ("ca_ES.UTF-8"), and of one name each for numbers, dates and amounts.
TFormatSettings FormatSettingsOfLocale(std::string_view name);
TFormatSettings FormatSettingsOfLocales(std::string_view numbers, std::string_view dates, std::string_view amounts);
TFormatSettings FormatSettingsOfEnvironment();

// The classic mask of a date format in the system's own notation ("%d/%m/%Y" gives "dd/mm/yyyy"); letters that are
// no pattern come out quoted.
AnsiString MaskOfSystemDateFormat(std::string_view format);

}  // namespace vyn
