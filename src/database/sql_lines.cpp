#include "database/sql_lines.h"

#include <algorithm>
#include <vector>

#include "platform/access/sql_tokens.h"

namespace vyn {

namespace sql_lines_detail {

constexpr std::string_view kBreak = "\r\n";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::vector<std::string_view> TextsIn(std::string_view sql) {
    std::vector<std::string_view> texts;
    for (const SqlToken& token : TokenizeSql(sql))
        if (token.Kind == SqlTokenKind::Quoted || token.Kind == SqlTokenKind::Name) texts.push_back(token.Text);
    return texts;
}

}  // namespace sql_lines_detail

bool SqlLines::Next() {
    if (at_ >= text_.size()) return false;
    const size_t end = std::min(text_.find_first_of(sql_lines_detail::kBreak, at_), text_.size());
    size_t next = end;
    if (next < text_.size()) next += text_.substr(next, 2) == sql_lines_detail::kBreak ? 2 : 1;
    line_ = text_.substr(at_, end - at_);
    Follow(line_);
    break_ = inside_ == Inside::Literal && next > end ? text_.substr(end, next - end) : sql_lines_detail::kBreak;
    if (inside_ == Inside::Comment) inside_ = Inside::Nothing;
    at_ = next;
    return true;
}

// Literals, quoted names and comments, so that a quote in a comment opens nothing.
void SqlLines::Follow(std::string_view text) {
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        switch (inside_) {
            case Inside::Nothing:
                if (c == stringSeparator_) {
                    inside_ = Inside::Literal;
                } else if (IsSqlQuote(c) || c == '[') {
                    inside_ = Inside::Name;
                    closing_ = c == '[' ? ']' : c;
                } else if (c == '-' && next == '-') {
                    inside_ = Inside::Comment;
                } else if (c == '/' && next == '*') {
                    inside_ = Inside::BlockComment;
                    ++i;
                }
                break;
            case Inside::Literal:
                if (c == stringSeparator_) inside_ = Inside::Nothing;
                break;
            case Inside::Name:
                if (c == closing_) inside_ = Inside::Nothing;
                break;
            case Inside::Comment:
                return;
            case Inside::BlockComment:
                if (c == '*' && next == '/') {
                    inside_ = Inside::Nothing;
                    ++i;
                }
                break;
        }
    }
}

void AssignSqlLines(TStrings& lines, std::string_view text, char stringSeparator) {
    lines.BeginUpdate();
    lines.Clear();
    AnsiString line;
    for (SqlLines each(text, stringSeparator); each.Next();) {
        line += each.Line();
        if (each.Break() != sql_lines_detail::kBreak) {
            line += each.Break();
            continue;
        }
        lines.Add(line);
        line.clear();
    }
    if (!line.empty()) lines.Add(line);
    lines.EndUpdate();
}

AnsiString WithOwnTexts(const AnsiString& statement, const AnsiString& doubled) {
    if (doubled.size() == statement.size()) return doubled;
    const auto own = sql_lines_detail::TextsIn(statement);
    const auto changed = sql_lines_detail::TextsIn(doubled);
    if (own.size() != changed.size()) return doubled;
    AnsiString result;
    result.reserve(doubled.size());
    size_t at = 0;
    for (size_t i = 0; i < own.size(); ++i) {
        const auto start = static_cast<size_t>(changed[i].data() - doubled.data());
        result.append(doubled, at, start - at);
        result += own[i];
        at = start + changed[i].size();
    }
    return result.append(doubled, at, AnsiString::npos);
}

bool TimeColons::Double(AnsiString& line) {
    const size_t first = line.find(':');
    if (first == AnsiString::npos) return false;
    AnsiString result = line.substr(0, first);
    char previous = '\0';
    // The last character is left out: nothing could follow a colon there.
    for (size_t i = first; i + 1 < line.size(); ++i) {
        const char c = line[i];
        result += c;
        if (c == ':' && previous != ':' && !quoted_) {
            if (sql_lines_detail::IsDigit(line[i + 1])) result += ':';
        } else if (IsSqlQuote(c)) {
            quoted_ = !quoted_;
        }
        previous = c;
    }
    result += line.back();
    const bool changed = result.size() != line.size();
    line = std::move(result);
    return changed;
}

}  // namespace vyn
