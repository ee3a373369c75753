#include "platform/text/date_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace date_format_detail {

constexpr int kFirstYear = 1;
constexpr int kLastYear = 9999;
constexpr int kEpochDayNumber = 693594;  // 1899-12-30, counted from 0001-01-01 as day 1
constexpr int kDaysPer400Years = 146097;
constexpr int kDaysPer100Years = 36524;
constexpr int kDaysPer4Years = 1461;
constexpr int kMillisecondsPerHour = 3600000;
constexpr int kMillisecondsPerMinute = 60000;
constexpr int kMillisecondsPerSecond = 1000;

struct Moment {
    int days = 0;          // since 1899-12-30
    int milliseconds = 0;  // since midnight
};

// False outside the calendar. The time is rounded to the nearest millisecond first, and may so reach the next day.
bool Split(double value, Moment& moment) {
    if (!(value > kFirstDate - 1) || !(value < kLastDate + 1)) return false;
    const double whole = std::trunc(value);
    moment.days = static_cast<int>(whole);
    const double milliseconds = std::fabs(value - whole) * static_cast<double>(kMillisecondsPerDay);
    moment.milliseconds = static_cast<int>(std::llround(milliseconds));
    if (moment.milliseconds == kMillisecondsPerDay) {
        if (moment.days == static_cast<int>(kLastDate)) {
            --moment.milliseconds;
        } else {
            ++moment.days;
            moment.milliseconds = 0;
        }
    }
    return true;
}

struct CalendarDate {
    int year = 0;
    int month = 0;
    int day = 0;
};

// Year, month and day of a day that lies in the calendar.
CalendarDate CalendarOf(int days) {
    int left = days + kEpochDayNumber - 1;
    int year = 1 + 400 * (left / kDaysPer400Years);
    left %= kDaysPer400Years;
    const int centuries = std::min(left / kDaysPer100Years, 3);
    year += 100 * centuries;
    left -= centuries * kDaysPer100Years;
    year += 4 * (left / kDaysPer4Years);
    left %= kDaysPer4Years;
    const int years = std::min(left / 365, 3);
    year += years;
    left -= years * 365;
    int month = 1;
    while (left >= DaysInMonth(year, month)) left -= DaysInMonth(year, month++);
    return {year, month, left + 1};
}

int WeekDay(int days) {
    constexpr int kEpochWeekDay = 6;  // 1899-12-30 was a Saturday; 0 is Sunday
    return ((days + kEpochWeekDay) % 7 + 7) % 7;
}

void AppendNumber(AnsiString& text, int number, std::size_t width) {
    char digits[16];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    if (length < width) text.append(width - length, '0');
    text.append(digits, length);
}

bool StartsWith(std::string_view text, std::string_view start) { return SameText(text.substr(0, start.size()), start); }

// The length of the mark for the half of the day that starts here: am/pm, ampm or a/p; 0 when there is none.
std::size_t HalfDayMark(std::string_view text) {
    if (text.empty() || UpperChar(text.front()) != 'A') return 0;
    for (const std::string_view mark : {"am/pm", "ampm", "a/p"})
        if (StartsWith(text, mark)) return mark.size();
    return 0;
}

// Writes one moment by masks; a mask may call for another one (c, ddddd, t), which may not call for more.
class DateWriter {
  public:
    DateWriter(Moment moment, const TFormatSettings& settings)
        : moment_(moment), date_(CalendarOf(moment.days)), settings_(settings) {}

    void Write(std::string_view mask) {
        constexpr int kMostLevels = 3;  // a short date format that asks for a short date ends here
        if (level_ == kMostLevels) return;
        ++level_;
        std::size_t at = 0;
        while (at < mask.size()) WriteOne(mask, at);
        --level_;
    }

    AnsiString Take() { return std::move(text_); }

  private:
    void WriteOne(std::string_view mask, std::size_t& at) {
        const char c = mask[at];
        const char letter = UpperChar(c);
        if (c == '\'' || c == '"') {
            for (++at; at < mask.size() && mask[at] != c; ++at) text_ += mask[at];
            if (at < mask.size()) ++at;
            return;
        }
        if (const std::size_t length = HalfDayMark(mask.substr(at))) {
            WriteHalfDay(mask.substr(at, length));
            at += length;
            lastLetter_ = letter;
            return;
        }
        std::size_t count = 1;
        while (at + count < mask.size() && UpperChar(mask[at + count]) == letter) ++count;
        if (!WriteLetter(letter == 'M' && lastLetter_ == 'H' ? 'N' : letter, count, mask.substr(at + count))) {
            WriteOther(c);
            count = 1;
        }
        if (letter >= 'A' && letter <= 'Z') lastLetter_ = letter;
        at += count;
    }

    void WriteOther(char c) {
        if (c == '/')
            AppendSeparator(settings_.DateSeparator);
        else if (c == ':')
            AppendSeparator(settings_.TimeSeparator);
        else
            text_ += c;
    }

    void AppendSeparator(char separator) {
        if (separator != '\0') text_ += separator;
    }

    // False when the letter is no pattern.
    bool WriteLetter(char letter, std::size_t count, std::string_view rest) {
        switch (letter) {
            case 'Y':
                count <= 2 ? AppendNumber(text_, date_.year % 100, 2) : AppendNumber(text_, date_.year, 4);
                break;
            case 'M':
                WriteMonth(count);
                break;
            case 'D':
                WriteDay(count);
                break;
            case 'H':
                WriteHour(count, rest);
                break;
            case 'N':
                Number(moment_.milliseconds / kMillisecondsPerMinute % 60, count);
                break;
            case 'S':
                Number(moment_.milliseconds / kMillisecondsPerSecond % 60, count);
                break;
            case 'Z':
                AppendNumber(text_, moment_.milliseconds % kMillisecondsPerSecond, count == 1 ? 1 : 3);
                break;
            case 'T':
                Write(count == 1 ? settings_.ShortTimeFormat : settings_.LongTimeFormat);
                break;
            case 'C':
                WriteWhole();
                break;
            default:
                return false;
        }
        return true;
    }

    void Number(int number, std::size_t count) { AppendNumber(text_, number, count == 1 ? 1 : 2); }

    void WriteMonth(std::size_t count) {
        const auto index = static_cast<std::size_t>(date_.month - 1);
        if (count <= 2)
            Number(date_.month, count);
        else
            text_ += count == 3 ? settings_.ShortMonthNames[index] : settings_.LongMonthNames[index];
    }

    void WriteDay(std::size_t count) {
        const auto weekDay = static_cast<std::size_t>(WeekDay(moment_.days));
        switch (count) {
            case 1:
            case 2:
                Number(date_.day, count);
                break;
            case 3:
                text_ += settings_.ShortDayNames[weekDay];
                break;
            case 4:
                text_ += settings_.LongDayNames[weekDay];
                break;
            case 5:
                Write(settings_.ShortDateFormat);
                break;
            default:
                Write(settings_.LongDateFormat);
        }
    }

    // The hour counts to 12 when a mark for the half of the day follows before the next hour.
    void WriteHour(std::size_t count, std::string_view rest) {
        int hour = moment_.milliseconds / kMillisecondsPerHour;
        char quote = '\0';
        for (std::size_t i = 0; i < rest.size(); ++i) {
            if (quote != '\0') {
                if (rest[i] == quote) quote = '\0';
            } else if (rest[i] == '\'' || rest[i] == '"') {
                quote = rest[i];
            } else if (UpperChar(rest[i]) == 'H') {
                break;
            } else if (HalfDayMark(rest.substr(i)) != 0) {
                hour = hour % 12 == 0 ? 12 : hour % 12;
                break;
            }
        }
        Number(hour, count);
    }

    void WriteHalfDay(std::string_view mark) {
        constexpr int kHoursOfHalf = 12;
        const bool morning = moment_.milliseconds / kMillisecondsPerHour < kHoursOfHalf;
        if (SameText(mark, "ampm")) {
            text_ += morning ? settings_.TimeAMString : settings_.TimePMString;
            return;
        }
        const std::size_t slash = mark.find('/');
        text_ += morning ? mark.substr(0, slash) : mark.substr(slash + 1);
    }

    void WriteWhole() {
        Write(settings_.ShortDateFormat);
        if (moment_.milliseconds == 0) return;
        text_ += ' ';
        Write(settings_.LongTimeFormat);
    }

    Moment moment_;
    CalendarDate date_;
    const TFormatSettings& settings_;
    AnsiString text_;
    char lastLetter_ = ' ';
    int level_ = 0;
};

}  // namespace date_format_detail

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(int year, int month) {
    constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

bool TryEncodeDate(int year, int month, int day, double& days) {
    namespace own = date_format_detail;
    if (year < own::kFirstYear || year > own::kLastYear || day < 1 || day > DaysInMonth(year, month)) return false;
    int dayOfYear = day;
    for (int i = 1; i < month; ++i) dayOfYear += DaysInMonth(year, i);
    const int before = year - 1;
    days = before * 365 + before / 4 - before / 100 + before / 400 + dayOfYear - own::kEpochDayNumber;
    return true;
}

bool TryEncodeTime(int hour, int minute, int second, int millisecond, double& days) {
    namespace own = date_format_detail;
    const auto within = [](int value, int count) { return value >= 0 && value < count; };
    if (!within(hour, 24) || !within(minute, 60) || !within(second, 60) || !within(millisecond, 1000)) return false;
    const int total = hour * own::kMillisecondsPerHour + minute * own::kMillisecondsPerMinute +
                      second * own::kMillisecondsPerSecond + millisecond;
    days = static_cast<double>(total) / static_cast<double>(kMillisecondsPerDay);
    return true;
}

double EncodeDate(int year, int month, int day) {
    double days = 0;
    if (!TryEncodeDate(year, month, day, days)) throw EConvertError("Invalid argument to date encode");
    return days;
}

double EncodeTime(int hour, int minute, int second, int millisecond) {
    double days = 0;
    if (!TryEncodeTime(hour, minute, second, millisecond, days)) throw EConvertError("Invalid argument to time encode");
    return days;
}

double JoinDateTime(double date, double time) { return date < 0 ? date - time : date + time; }

bool DecodeDate(double days, Word& year, Word& month, Word& day) {
    namespace own = date_format_detail;
    own::Moment moment;
    year = month = day = 0;
    if (!own::Split(days, moment)) return false;
    const own::CalendarDate date = own::CalendarOf(moment.days);
    year = static_cast<Word>(date.year);
    month = static_cast<Word>(date.month);
    day = static_cast<Word>(date.day);
    return true;
}

bool DecodeTime(double days, Word& hour, Word& minute, Word& second, Word& millisecond) {
    namespace own = date_format_detail;
    own::Moment moment;
    hour = minute = second = millisecond = 0;
    if (!own::Split(days, moment)) return false;
    hour = static_cast<Word>(moment.milliseconds / own::kMillisecondsPerHour);
    minute = static_cast<Word>(moment.milliseconds / own::kMillisecondsPerMinute % 60);
    second = static_cast<Word>(moment.milliseconds / own::kMillisecondsPerSecond % 60);
    millisecond = static_cast<Word>(moment.milliseconds % own::kMillisecondsPerSecond);
    return true;
}

int DayOfWeek(double days) {
    date_format_detail::Moment moment;
    return date_format_detail::Split(days, moment) ? date_format_detail::WeekDay(moment.days) + 1 : 0;
}

AnsiString FormatDateTime(std::string_view mask, double days, const TFormatSettings& settings) {
    namespace own = date_format_detail;
    own::Moment moment;
    if (!own::Split(days, moment))
        throw EConvertError("'" + FloatToStr(days, settings) + "' is not a valid date and time");
    own::DateWriter writer(moment, settings);
    writer.Write(mask.empty() ? "c" : mask);
    return writer.Take();
}

AnsiString DateToStr(double days, const TFormatSettings& settings) {
    return FormatDateTime(settings.ShortDateFormat, days, settings);
}

AnsiString TimeToStr(double days, const TFormatSettings& settings) {
    return FormatDateTime(settings.LongTimeFormat, days, settings);
}

AnsiString DateTimeToStr(double days, const TFormatSettings& settings) { return FormatDateTime("c", days, settings); }

}  // namespace vyn
