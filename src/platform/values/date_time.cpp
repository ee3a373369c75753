#include "platform/values/date_time.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace date_time_detail {

constexpr bool IsIsoDigit(char c) { return c >= '0' && c <= '9'; }

// Reads fixed-width numbers from the front of a text.
class IsoScanner {
  public:
    explicit IsoScanner(std::string_view text) : text_(text) {}

    bool AtEnd() const { return text_.empty(); }

    bool Number(std::size_t digits, int& number) {
        if (text_.size() < digits) return false;
        number = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            if (!IsIsoDigit(text_[i])) return false;
            number = number * 10 + (text_[i] - '0');
        }
        text_.remove_prefix(digits);
        return true;
    }

    bool Accept(char c) {
        if (text_.empty() || text_.front() != c) return false;
        text_.remove_prefix(1);
        return true;
    }

    // Decimals of a second as milliseconds; those beyond the third are dropped.
    bool Milliseconds(int& milliseconds) {
        std::size_t count = 0;
        milliseconds = 0;
        for (int scale = 100; count < text_.size() && IsIsoDigit(text_[count]); ++count, scale /= 10)
            milliseconds += (text_[count] - '0') * scale;
        text_.remove_prefix(count);
        return count > 0;
    }

  private:
    std::string_view text_;
};

bool ReadTime(IsoScanner& scanner, double& time) {
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    if (!scanner.Number(2, hour) || !scanner.Accept(':') || !scanner.Number(2, minute)) return false;
    if (scanner.Accept(':')) {
        if (!scanner.Number(2, second)) return false;
        if (scanner.Accept('.') && !scanner.Milliseconds(millisecond)) return false;
    }
    scanner.Accept('Z');
    return TryEncodeTime(hour, minute, second, millisecond, time);
}

}  // namespace date_time_detail

TDateTime Now() { return TDateTime(CurrentDays()); }

TDateTime Date() { return TDateTime(std::trunc(CurrentDays())); }

TDateTime Time() {
    const double now = CurrentDays();
    return TDateTime(std::fabs(now - std::trunc(now)));
}

AnsiString ToIso8601(TDateTime value) {
    Word year = 0;
    Word month = 0;
    Word day = 0;
    Word hour = 0;
    Word minute = 0;
    Word second = 0;
    Word millisecond = 0;
    if (!DecodeDate(value.Val, year, month, day) || !DecodeTime(value.Val, hour, minute, second, millisecond))
        throw EConvertError("'" + FloatToStr(value.Val) + "' is not a valid date and time");
    AnsiString text = fmt::format("{:04}-{:02}-{:02}", year, month, day);
    if (hour == 0 && minute == 0 && second == 0 && millisecond == 0) return text;
    text += fmt::format("T{:02}:{:02}:{:02}", hour, minute, second);
    if (millisecond != 0) text += fmt::format(".{:03}", millisecond);
    return text;
}

bool TryFromIso8601(std::string_view text, TDateTime& value) {
    date_time_detail::IsoScanner scanner(text);
    int year = 0;
    int month = 0;
    int day = 0;
    double date = 0;
    double time = 0;
    if (!scanner.Number(4, year) || !scanner.Accept('-') || !scanner.Number(2, month) || !scanner.Accept('-') ||
        !scanner.Number(2, day) || !TryEncodeDate(year, month, day, date))
        return false;
    if ((scanner.Accept('T') || scanner.Accept(' ')) && !date_time_detail::ReadTime(scanner, time)) return false;
    if (!scanner.AtEnd()) return false;
    value.Val = JoinDateTime(date, time);
    return true;
}

TDateTime FromIso8601(std::string_view text) {
    TDateTime value;
    if (!TryFromIso8601(text, value)) throw EConvertError("'" + AnsiString(text) + "' is not a valid date and time");
    return value;
}

}  // namespace vyn
