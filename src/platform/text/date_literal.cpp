#include "platform/text/date_literal.h"

#include <utility>

#include "platform/text/compare.h"
#include "platform/text/date_format.h"

namespace vyn {

namespace date_literal_detail {

constexpr size_t kLongestDate = 48;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads numbers and separators of a date literal from the left.
class DateReader {
  public:
    explicit DateReader(std::string_view text) : text_(text) {}

    bool AtEnd() const { return at_ == text_.size(); }
    char Peek() const { return AtEnd() ? '\0' : text_[at_]; }
    void SkipBlanks() {
        while (!AtEnd() && text_[at_] == ' ') ++at_;
    }
    bool Number(int& value, size_t& digits) {
        const size_t start = at_;
        value = 0;
        for (; !AtEnd() && IsDigit(text_[at_]) && at_ - start < 4; ++at_) value = value * 10 + (text_[at_] - '0');
        digits = at_ - start;
        return digits > 0;
    }
    bool Take(char c) {
        if (Peek() != c) return false;
        ++at_;
        return true;
    }
    // One colon, or two.
    bool Colon() {
        if (!Take(':')) return false;
        Take(':');
        return true;
    }
    bool Word(std::string_view word) {
        if (!SameText(text_.substr(at_, word.size()), word)) return false;
        at_ += word.size();
        return true;
    }
    size_t Position() const { return at_; }
    void GoTo(size_t position) { at_ = position; }

  private:
    std::string_view text_;
    size_t at_ = 0;
};

bool ReadDate(DateReader& reader, double& days) {
    int first = 0, second = 0, third = 0;
    size_t firstDigits = 0, digits = 0, thirdDigits = 0;
    if (!reader.Number(first, firstDigits)) return false;
    const char separator = reader.Peek();
    if (separator != '/' && separator != '-' && separator != '.') return false;
    if (!reader.Take(separator) || !reader.Number(second, digits) || !reader.Take(separator) ||
        !reader.Number(third, thirdDigits))
        return false;
    if (firstDigits > 2) return TryEncodeDate(first, second, third, days);
    // Two digits of a year are of the years 1930 to 2029.
    constexpr int kCentury = 100, kPivot = 30, kThisCentury = 2000;
    if (thirdDigits <= 2) third += third < kPivot ? kThisCentury : kThisCentury - kCentury;
    if (first > 12) std::swap(first, second);
    return TryEncodeDate(third, first, second, days);
}

bool ReadTime(DateReader& reader, double& time) {
    int hour = 0, minute = 0, second = 0, fraction = 0;
    size_t digits = 0;
    if (!reader.Number(hour, digits) || !reader.Colon() || !reader.Number(minute, digits)) return false;
    if (reader.Colon()) {
        if (!reader.Number(second, digits)) return false;
        if (reader.Take('.')) {
            if (!reader.Number(fraction, digits) || digits > 3) return false;
            for (; digits < 3; ++digits) fraction *= 10;
        }
    }
    reader.SkipBlanks();
    constexpr int kHalfDay = 12;
    const bool after = reader.Word("PM");
    if (after || reader.Word("AM")) {
        if (hour < 1 || hour > kHalfDay) return false;
        hour = hour % kHalfDay + (after ? kHalfDay : 0);
    }
    return TryEncodeTime(hour, minute, second, fraction, time);
}

}  // namespace date_literal_detail

bool ParseDateLiteral(std::string_view text, double& days, DateLiteralParts& parts) {
    using namespace date_literal_detail;
    if (text.size() > kLongestDate) return false;
    DateReader reader(text);
    reader.SkipBlanks();
    double date = 0, time = 0;
    parts = DateLiteralParts::Date;
    const size_t start = reader.Position();
    if (ReadDate(reader, date)) {
        reader.SkipBlanks();
        if (!reader.AtEnd()) {
            parts = DateLiteralParts::Both;
            if (!ReadTime(reader, time)) return false;
        }
    } else {
        reader.GoTo(start);
        parts = DateLiteralParts::Time;
        if (!ReadTime(reader, time)) return false;
    }
    reader.SkipBlanks();
    days = JoinDateTime(date, time);
    return reader.AtEnd();
}

}  // namespace vyn
