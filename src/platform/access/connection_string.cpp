#include "platform/access/connection_string.h"

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace connection_string_detail {

bool IsSecret(const AnsiString& key) { return SameText(key, "Password") || SameText(key, "PWD"); }

}  // namespace connection_string_detail

ConnectionString::ConnectionString(const AnsiString& text) {
    size_t at = 0;
    while (at < text.size()) {
        const size_t equals = text.find('=', at);
        const size_t semicolon = std::min(text.find(';', at), text.size());
        if (equals == AnsiString::npos || equals > semicolon) {
            const AnsiString rest = Trim(text.substr(at, semicolon - at));
            if (!rest.empty())
                throw EDatabaseError("The connection string has a part without a value (\"=\" is missing)");
            at = semicolon + 1;
            continue;
        }
        const AnsiString key = Trim(text.substr(at, equals - at));
        if (key.empty()) throw EDatabaseError("The connection string has a value without a key before \"=\"");
        at = equals + 1;
        while (at < text.size() && text[at] == ' ') ++at;
        AnsiString value;
        if (at < text.size() && (text[at] == '"' || text[at] == '\'')) {
            const char quote = text[at++];
            for (;; ++at) {
                if (at >= text.size())
                    throw EDatabaseError("The connection string's value of " + key + " has no closing quote");
                if (text[at] == quote) {
                    if (at + 1 >= text.size() || text[at + 1] != quote) break;
                    ++at;
                }
                value += text[at];
            }
            at = std::min(text.find(';', at), text.size()) + 1;
        } else {
            const size_t end = std::min(text.find(';', at), text.size());
            value = Trim(text.substr(at, end - at));
            at = end + 1;
        }
        pairs_.emplace_back(key, value);
    }
}

AnsiString ConnectionString::Value(const AnsiString& key, const AnsiString& otherwise) const {
    for (auto pair = pairs_.rbegin(); pair != pairs_.rend(); ++pair)
        if (SameText(pair->first, key)) return pair->second;
    return otherwise;
}

AnsiString ConnectionString::Number(const AnsiString& key, int lowest, int highest) const {
    const AnsiString text = Value(key);
    int64_t number = 0;
    if (text.empty()) return {};
    if (!TryStrToInt64(text, number) || number < lowest || number > highest)
        throw EDatabaseError(key + "=" + text + ": a number from " + IntToStr(lowest) + " to " + IntToStr(highest) +
                             " is wanted");
    return text;
}

bool ConnectionString::Has(const AnsiString& key) const {
    for (const auto& pair : pairs_)
        if (SameText(pair.first, key)) return true;
    return false;
}

AnsiString ConnectionString::ForMessages() const {
    AnsiString text;
    for (const auto& [key, value] : pairs_) {
        if (!text.empty()) text += ';';
        text += key + "=" + (connection_string_detail::IsSecret(key) ? AnsiString("***") : value);
    }
    return text;
}

}  // namespace vyn
