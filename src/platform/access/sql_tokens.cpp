#include "platform/access/sql_tokens.h"

#include "platform/text/compare.h"
#include "platform/text/date_literal.h"

namespace vyn {

namespace sql_tokens_detail {

constexpr unsigned char kFirstLetterBeyondAscii = 0x80;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }
bool BeginsWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= kFirstLetterBeyondAscii;
}
bool IsInWord(char c) { return BeginsWord(c) || IsDigit(c) || c == '$'; }

class Tokenizer {
  public:
    explicit Tokenizer(std::string_view sql) : sql_(sql) {}

    std::vector<SqlToken> All() {
        std::vector<SqlToken> tokens;
        while (at_ < sql_.size()) {
            const size_t start = at_;
            const SqlTokenKind kind = Next();
            tokens.push_back({kind, sql_.substr(start, at_ - start)});
        }
        return tokens;
    }

  private:
    char At(size_t ahead = 0) const { return at_ + ahead < sql_.size() ? sql_[at_ + ahead] : '\0'; }
    bool More() const { return at_ < sql_.size(); }

    SqlTokenKind Next() {
        const char c = At();
        if (IsBlank(c)) {
            while (More() && IsBlank(At())) ++at_;
            return SqlTokenKind::Blank;
        }
        if (c == '-' && At(1) == '-') {
            while (More() && At() != '\n') ++at_;
            return SqlTokenKind::Comment;
        }
        if (c == '/' && At(1) == '*') {
            const size_t end = sql_.find("*/", at_ + 2);
            at_ = end == std::string_view::npos ? sql_.size() : end + 2;
            return SqlTokenKind::Comment;
        }
        if (c == '\'' || c == '"') {
            Quoted(c);
            return SqlTokenKind::Quoted;
        }
        if (c == '[' || c == '`') return BracketedName(c == '[' ? ']' : '`');
        if (c == '#') return DateOrSymbol();
        if (c == ':') return Colon();
        if (BeginsWord(c)) {
            while (More() && IsInWord(At())) ++at_;
            return SqlTokenKind::Identifier;
        }
        if (IsDigit(c) || (c == '.' && IsDigit(At(1)))) {
            Number();
            return SqlTokenKind::Number;
        }
        ++at_;
        return SqlTokenKind::Symbol;
    }

    void Quoted(char quote) {
        for (++at_; More(); ++at_) {
            if (At() != quote) continue;
            if (At(1) != quote) {
                ++at_;
                return;
            }
            ++at_;
        }
    }

    SqlTokenKind BracketedName(char close) {
        const size_t end = sql_.find(close, at_ + 1);
        if (end == std::string_view::npos || end == at_ + 1) {
            ++at_;
            return SqlTokenKind::Symbol;
        }
        at_ = end + 1;
        return SqlTokenKind::Name;
    }

    SqlTokenKind DateOrSymbol() {
        const size_t end = sql_.find('#', at_ + 1);
        double days = 0;
        DateLiteralParts parts;
        if (end == std::string_view::npos || !ParseDateLiteral(sql_.substr(at_ + 1, end - at_ - 1), days, parts)) {
            ++at_;
            return SqlTokenKind::Symbol;
        }
        at_ = end + 1;
        return SqlTokenKind::Date;
    }

    SqlTokenKind Colon() {
        if (At(1) == ':') {
            at_ += 2;
            return SqlTokenKind::Colons;
        }
        if (At(1) == '"') {
            ++at_;
            Quoted('"');
            return SqlTokenKind::Parameter;
        }
        ++at_;
        if (!More() || !IsInWord(At())) return SqlTokenKind::Symbol;
        while (More() && IsInWord(At())) ++at_;
        return SqlTokenKind::Parameter;
    }

    void Number() {
        while (More() && IsDigit(At())) ++at_;
        if (At() == '.') {
            ++at_;
            while (More() && IsDigit(At())) ++at_;
        }
        if (At() != 'e' && At() != 'E') return;
        const size_t sign = At(1) == '+' || At(1) == '-' ? 1 : 0;
        if (!IsDigit(At(1 + sign))) return;
        at_ += 1 + sign;
        while (More() && IsDigit(At())) ++at_;
    }

    std::string_view sql_;
    size_t at_ = 0;
};

}  // namespace sql_tokens_detail

std::vector<SqlToken> TokenizeSql(std::string_view sql) { return sql_tokens_detail::Tokenizer(sql).All(); }

AnsiString NameOf(const SqlToken& token) {
    std::string_view text = token.Text;
    if (token.Kind == SqlTokenKind::Name) return AnsiString(text.substr(1, text.size() - 2));
    if (token.Kind == SqlTokenKind::Parameter) text.remove_prefix(1);
    if (text.empty() || (text.front() != '"' && text.front() != '\'')) return AnsiString(text);
    const char quote = text.front();
    AnsiString name;
    for (size_t i = 1; i < text.size(); ++i) {
        if (text[i] == quote) ++i;  // the closing one, or the first of two
        if (i < text.size()) name += text[i];
    }
    return name;
}

bool IsKeyword(const SqlToken& token, std::string_view word) {
    return token.Kind == SqlTokenKind::Identifier && SameText(token.Text, word);
}

bool JoinsSelects(const SqlToken& token) {
    return IsKeyword(token, "UNION") || IsKeyword(token, "INTERSECT") || IsKeyword(token, "EXCEPT");
}

bool IsSymbol(const SqlToken& token, char symbol) {
    return token.Kind == SqlTokenKind::Symbol && token.Text.front() == symbol;
}

bool IsFiller(const SqlToken& token) {
    return token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment;
}

bool IsName(const SqlToken& token) {
    return token.Kind == SqlTokenKind::Identifier || token.Kind == SqlTokenKind::Name ||
           (token.Kind == SqlTokenKind::Quoted && token.Text.front() == '"');
}

}  // namespace vyn
