#include "programs/tools/json_text.h"

#include <cmath>

#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace json_detail {

// Feeds a text to the parser and counts its lines.
class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, int* line) : at_(at), line_(line) {}
    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        if (line_ && *at_ == '\n') ++*line_;
        ++at_;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator old = *this;
        ++*this;
        return old;
    }
    friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at_ == b.at_; }
    friend bool operator!=(const CountingIterator& a, const CountingIterator& b) { return a.at_ != b.at_; }

  private:
    const char* at_;
    int* line_;
};

// Notes the line of each object in document order.
class LineNoter : public nlohmann::json_sax<Json> {
  public:
    LineNoter(const int& line, std::vector<int>& lines) : line_(line), lines_(lines) {}
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override {
        open_.push_back(lines_.size());
        lines_.push_back(line_);
        fresh_ = true;
        return true;
    }
    bool key(string_t&) override {
        if (fresh_) lines_[open_.back()] = line_;
        fresh_ = false;
        return true;
    }
    bool end_object() override {
        open_.pop_back();
        fresh_ = false;
        return true;
    }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
        message = error.what();
        return false;
    }
    std::string message;

  private:
    const int& line_;
    std::vector<int>& lines_;
    std::vector<size_t> open_;
    bool fresh_ = false;
};

// Deeper documents are refused before the recursive parts meet them.
constexpr int kMaxDepth = 3000;

bool IsTooDeep(const std::string& text) {
    int depth = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                quoted = false;
        } else if (c == '"') {
            quoted = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kMaxDepth) return true;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

}  // namespace json_detail

JsonDocument::JsonDocument(const std::string& text) {
    if (json_detail::IsTooDeep(text))
        throw EParserError("line 1: more than " + IntToStr(json_detail::kMaxDepth) + " levels");
    int line = 1;
    json_detail::LineNoter noter(line, linesInOrder_);
    const char* begin = text.data();
    const bool read = Json::sax_parse(json_detail::CountingIterator(begin, &line),
                                      json_detail::CountingIterator(begin + text.size(), nullptr), &noter);
    if (!read) {
        // The library's text begins with its own error number in brackets.
        std::string message = noter.message;
        const size_t bracket = message.find("] ");
        if (bracket != std::string::npos) message.erase(0, bracket + 2);
        throw EParserError("line " + IntToStr(line) + ": " + Utf8ToAnsiLossy(message));
    }
    root_ = Json::parse(text);
    size_t next = 0;
    NumberObjects(root_, next);
}

void JsonDocument::NumberObjects(const Json& value, size_t& next) {
    if (value.is_object() && next < linesInOrder_.size()) lines_[&value] = linesInOrder_[next++];
    if (value.is_structured())
        for (const Json& inner : value) NumberObjects(inner, next);
}

int JsonDocument::LineOf(const Json& object) const {
    const auto found = lines_.find(&object);
    return found == lines_.end() ? 1 : found->second;
}

Json JsonOf(std::string_view text) { return Json(AnsiToUtf8(text)); }

std::string JsonString(std::string_view text) { return JsonOf(text).dump(); }

Json JsonNumber(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

std::string DateText(TDateTime value) {
    // What is no number has no spelling; the file's own bytes are kept beside (source_folder.h).
    if (!std::isfinite(value.Val)) return "0.0";
    try {
        AnsiString iso = ToIso8601(value);
        if (iso.find('T') == AnsiString::npos) iso += "T00:00:00";
        TDateTime back;
        const bool wholeSecond = iso.find('.') == AnsiString::npos;
        if (wholeSecond && TryFromIso8601(iso, back) && back.Val == value.Val &&
            std::signbit(back.Val) == std::signbit(value.Val))
            return "\"" + iso + "\"";
    } catch (const EConvertError&) {
        // Outside the calendar: a number of days.
    }
    AnsiString days = ShortestDouble(value.Val);
    if (days.find_first_of(".eE") == AnsiString::npos) days += ".0";
    return days;
}

std::optional<TDateTime> DateOf(const Json& value) {
    if (value.is_number()) return TDateTime(value.get<double>());
    TDateTime date;
    if (value.is_string() && TryFromIso8601(value.get<std::string>(), date)) return date;
    return std::nullopt;
}

}  // namespace vyn
