#include <algorithm>

#include "platform/text/clock.h"
#include "platform/text/compare.h"
#include "platform/text/date_format.h"
#include "platform/text/exceptions.h"

namespace vyn {

namespace date_parse_detail {

enum class DateOrder { MonthDayYear, DayMonthYear, YearMonthDay };

// The order of the first letters of year, month and day in the mask, quoted text aside.
DateOrder OrderOf(std::string_view mask) {
    char quote = '\0';
    for (const char c : mask) {
        if (quote != '\0') {
            if (c == quote) quote = '\0';
            continue;
        }
        switch (UpperChar(c)) {
            case '\'':
            case '"':
                quote = c;
                break;
            case 'Y':
                return DateOrder::YearMonthDay;
            case 'M':
                return DateOrder::MonthDayYear;
            case 'D':
                return DateOrder::DayMonthYear;
            default:
                break;
        }
    }
    return DateOrder::MonthDayYear;
}

int PresentYear() {
    Word year = 0;
    Word month = 0;
    Word day = 0;
    DecodeDate(CurrentDays(), year, month, day);
    return year;
}

int FullYear(int twoDigits, const TFormatSettings& settings) {
    const int present = PresentYear();
    const int window = settings.TwoDigitYearCenturyWindow;
    const int first = window == 0 ? present - present % 100 : present - window;
    const int year = first - first % 100 + twoDigits;
    return year < first ? year + 100 : year;
}

// Reads from the front of a text; what fails leaves the place where it was.
class DateScanner {
  public:
    DateScanner(std::string_view text, const TFormatSettings& settings) : text_(text), settings_(settings) {}

    bool AtEnd() {
        SkipBlanks();
        return at_ == text_.size();
    }

    bool Date(double& days) {
        const std::size_t start = at_;
        if (ReadDate(days)) return true;
        at_ = start;
        return false;
    }

    bool Time(double& days) {
        const std::size_t start = at_;
        if (ReadTime(days)) return true;
        at_ = start;
        return false;
    }

  private:
    struct Number {
        int value = 0;
        int digits = 0;
    };

    void SkipBlanks() {
        while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    }

    bool ReadNumber(Number& number, int mostDigits) {
        SkipBlanks();
        number = {};
        for (; at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; ++at_) {
            if (++number.digits > mostDigits) return false;
            number.value = number.value * 10 + (text_[at_] - '0');
        }
        return number.digits > 0;
    }

    bool Accept(char c) {
        SkipBlanks();
        if (c == '\0' || at_ == text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    bool AcceptWord(std::string_view word) {
        SkipBlanks();
        if (word.empty() || !AnsiSameText(text_.substr(at_, word.size()), word)) return false;
        at_ += word.size();
        return true;
    }

    bool ReadDate(double& days) {
        constexpr int kYearDigits = 4;
        Number first;
        Number second;
        Number third;
        if (!ReadNumber(first, kYearDigits) || !Accept(settings_.DateSeparator)) return false;
        if (!ReadNumber(second, kYearDigits)) return false;
        const DateOrder order = OrderOf(settings_.ShortDateFormat);
        if (!Accept(settings_.DateSeparator)) {
            const bool dayFirst = order == DateOrder::DayMonthYear;
            const Number& month = dayFirst ? second : first;
            const Number& day = dayFirst ? first : second;
            return TryEncodeDate(PresentYear(), month.value, day.value, days);
        }
        if (!ReadNumber(third, kYearDigits)) return false;
        switch (order) {
            case DateOrder::MonthDayYear:
                return Encode(third, first, second, days);
            case DateOrder::DayMonthYear:
                return Encode(third, second, first, days);
            case DateOrder::YearMonthDay:
                return Encode(first, second, third, days);
        }
        return false;
    }

    bool Encode(Number year, Number month, Number day, double& days) const {
        constexpr int kShortYearDigits = 2;
        const int full = year.digits <= kShortYearDigits ? FullYear(year.value, settings_) : year.value;
        return TryEncodeDate(full, month.value, day.value, days);
    }

    enum class HalfDay { None, Morning, Afternoon };

    HalfDay ReadHalfDay() {
        if (AcceptWord(settings_.TimeAMString) || AcceptWord("AM")) return HalfDay::Morning;
        if (AcceptWord(settings_.TimePMString) || AcceptWord("PM")) return HalfDay::Afternoon;
        return HalfDay::None;
    }

    bool ReadTime(double& days) {
        constexpr int kTimeDigits = 2;
        constexpr int kNoon = 12;
        HalfDay half = ReadHalfDay();
        Number hour;
        Number minute;
        Number second;
        int millisecond = 0;
        if (!ReadNumber(hour, kTimeDigits)) return false;
        if (Accept(settings_.TimeSeparator)) {
            if (!ReadNumber(minute, kTimeDigits)) return false;
            if (Accept(settings_.TimeSeparator)) {
                if (!ReadNumber(second, kTimeDigits)) return false;
                if ((Accept(settings_.DecimalSeparator) || Accept('.')) && !ReadMilliseconds(millisecond)) return false;
            }
        }
        if (half == HalfDay::None) half = ReadHalfDay();
        if (half != HalfDay::None) {
            if (hour.value < 1 || hour.value > kNoon) return false;
            hour.value = hour.value % kNoon + (half == HalfDay::Afternoon ? kNoon : 0);
        }
        return TryEncodeTime(hour.value, minute.value, second.value, millisecond, days);
    }

    // The digits are decimals of a second; those beyond the third are dropped.
    bool ReadMilliseconds(int& millisecond) {
        int scale = 100;
        const std::size_t start = at_;
        for (; at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; ++at_, scale /= 10)
            millisecond += (text_[at_] - '0') * scale;
        return at_ > start;
    }

    std::string_view text_;
    const TFormatSettings& settings_;
    std::size_t at_ = 0;
};

[[noreturn]] void RaiseNoMoment(std::string_view text, const char* kind) {
    throw EConvertError("'" + AnsiString(text) + "' is not a valid " + kind);
}

}  // namespace date_parse_detail

bool TryStrToDate(std::string_view text, double& days, const TFormatSettings& settings) {
    date_parse_detail::DateScanner scanner(text, settings);
    double date = 0;
    if (!scanner.Date(date) || !scanner.AtEnd()) return false;
    days = date;
    return true;
}

bool TryStrToTime(std::string_view text, double& days, const TFormatSettings& settings) {
    date_parse_detail::DateScanner scanner(text, settings);
    double time = 0;
    if (!scanner.Time(time) || !scanner.AtEnd()) return false;
    days = time;
    return true;
}

bool TryStrToDateTime(std::string_view text, double& days, const TFormatSettings& settings) {
    date_parse_detail::DateScanner scanner(text, settings);
    double date = 0;
    double time = 0;
    if (!scanner.Date(date)) return TryStrToTime(text, days, settings);
    if (!scanner.AtEnd() && (!scanner.Time(time) || !scanner.AtEnd())) return TryStrToTime(text, days, settings);
    days = JoinDateTime(date, time);
    return true;
}

double StrToDate(std::string_view text, const TFormatSettings& settings) {
    double days = 0;
    if (!TryStrToDate(text, days, settings)) date_parse_detail::RaiseNoMoment(text, "date");
    return days;
}

double StrToTime(std::string_view text, const TFormatSettings& settings) {
    double days = 0;
    if (!TryStrToTime(text, days, settings)) date_parse_detail::RaiseNoMoment(text, "time");
    return days;
}

double StrToDateTime(std::string_view text, const TFormatSettings& settings) {
    double days = 0;
    if (!TryStrToDateTime(text, days, settings)) date_parse_detail::RaiseNoMoment(text, "date and time");
    return days;
}

}  // namespace vyn
