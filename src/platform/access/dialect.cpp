#include "platform/access/dialect.h"

#include <algorithm>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"

namespace vyn {

AnsiString EngineDialect::QuotedName(const AnsiString& name) const {
    AnsiString quoted(1, NameOpen);
    for (char c : name) {
        quoted += c;
        if (c == NameClose) quoted += c;
    }
    return quoted + NameClose;
}

namespace dialect_detail {

bool IsFiller(const SqlToken& token) {
    return token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment;
}
bool IsSymbol(const SqlToken& token, char symbol) {
    return token.Kind == SqlTokenKind::Symbol && token.Text.front() == symbol;
}
bool JoinsSelects(const SqlToken& token) {
    return IsKeyword(token, "UNION") || IsKeyword(token, "INTERSECT") || IsKeyword(token, "EXCEPT");
}

AnsiString DateLiteral(const SqlToken& token, const EngineDialect& dialect) {
    double days = 0;
    DateLiteralParts parts = DateLiteralParts::Both;
    ParseDateLiteral(token.Text.substr(1, token.Text.size() - 2), days, parts);
    if (parts == DateLiteralParts::Both && dialect.MidnightIsDateAlone && days == static_cast<int64_t>(days))
        parts = DateLiteralParts::Date;
    const AnsiString& mask = parts == DateLiteralParts::Date   ? dialect.DateMask
                             : parts == DateLiteralParts::Time ? dialect.TimeMask
                                                               : dialect.DateTimeMask;
    return dialect.DateBefore + FormatDateTime(mask, days, InvariantFormatSettings()) + dialect.DateAfter;
}

AnsiString TextWithNul(std::string_view literal, const EngineDialect& dialect) {
    const char quote = literal.front();
    const bool closed = literal.size() > 1 && literal.back() == quote;
    if (quote != '\'' || !closed || !dialect.TextWithNul)
        throw EDatabaseError("The database cannot hold a NUL character in a text or name");
    literal = literal.substr(1, literal.size() - 2);
    AnsiString text;
    for (size_t i = 0; i < literal.size(); ++i) {
        text += literal[i];
        if (literal[i] == quote) ++i;  // it stands twice
    }
    return dialect.TextWithNul(text);
}

// Writes tokens for an engine. A first walk finds the limits of rows: which tokens say them, and where they go.
class Translator {
  public:
    Translator(const AnsiString& sql, const EngineDialect& dialect, ParameterParsing parsing)
        : dialect_(dialect), parsing_(parsing), tokens_(TokenizeSql(sql)), pieces_(tokens_.size() + 1) {
        FindLimits();
    }

    EngineSql Write() {
        EngineSql result;
        for (size_t i = 0; i <= tokens_.size(); ++i) {
            result.Text += pieces_[i].before;
            if (i < tokens_.size() && !pieces_[i].dropped) WriteToken(tokens_[i], result);
            if (i < tokens_.size()) result.Text += pieces_[i].after;
        }
        return result;
    }

  private:
    struct Piece {
        AnsiString before;
        AnsiString after;
        bool dropped = false;
    };
    // A SELECT whose end is not reached yet.
    struct Open {
        size_t select = 0;
        size_t beforeTop = 0;  // the token that TOP stood behind
        AnsiString limit;      // rows, when there is one
        bool inCompound = false;
        bool isSelect = false;
    };

    void WriteToken(const SqlToken& token, EngineSql& result) const {
        switch (token.Kind) {
            case SqlTokenKind::Name:
                result.Text += dialect_.QuotedName(NameOf(token));
                return;
            case SqlTokenKind::Date:
                result.Text += DateLiteral(token, dialect_);
                return;
            case SqlTokenKind::Parameter:
                if (parsing_ == ParameterParsing::Off) break;
                result.Text += '?';
                result.ParameterNames.push_back(NameOf(token));
                return;
            case SqlTokenKind::Colons:
                result.Text += parsing_ == ParameterParsing::Off ? "::" : ":";
                return;
            case SqlTokenKind::Quoted:
                if (token.Text.find('\0') == std::string_view::npos) break;
                result.Text += TextWithNul(token.Text, dialect_);
                return;
            case SqlTokenKind::Blank:
            case SqlTokenKind::Comment:
            case SqlTokenKind::Identifier:
            case SqlTokenKind::Number:
            case SqlTokenKind::Symbol:
                break;
        }
        // Engines would take it for the statement's end, in silence.
        if (token.Text.find('\0') != std::string_view::npos)
            throw EDatabaseError("The statement holds a NUL character outside its texts");
        result.Text += token.Text;
    }

    size_t NextToken(size_t at) const {
        do ++at;
        while (at < tokens_.size() && IsFiller(tokens_[at]));
        return at;
    }
    bool HasKeyword(size_t at, std::string_view word) const {
        return at < tokens_.size() && IsKeyword(tokens_[at], word);
    }

    void FindLimits() {
        std::vector<Open> open(1);
        size_t last = 0;  // the last token that is no filler
        for (size_t i = 0; i < tokens_.size(); ++i) {
            const SqlToken& token = tokens_[i];
            if (IsFiller(token)) continue;
            Open& now = open.back();
            if (IsSymbol(token, '(')) {
                open.emplace_back();
            } else if (IsSymbol(token, ')')) {
                End(now, last);
                if (open.size() > 1) open.pop_back();
            } else if (IsSymbol(token, ';')) {
                while (open.size() > 1) {
                    End(open.back(), last);
                    open.pop_back();
                }
                End(open.back(), last);
                open.back() = Open();
            } else if (JoinsSelects(token)) {
                now.inCompound = true;
                End(now, last);
                now = Open();
                now.inCompound = true;
            } else if (IsKeyword(token, "ORDER") && now.inCompound) {
                // The order is the whole's, not the last part's.
                End(now, last);
            } else if (IsKeyword(token, "SELECT") && !now.isSelect) {
                now.isSelect = true;
                now.select = i;
                TakeTop(now, i);
            }
            last = i;
        }
        while (!open.empty()) {
            End(open.back(), last);
            open.pop_back();
        }
    }

    // "TOP n" and its comma leave their place.
    void TakeTop(Open& now, size_t select) {
        now.beforeTop = select;
        size_t top = NextToken(select);
        for (; HasKeyword(top, "DISTINCT") || HasKeyword(top, "ALL") || HasKeyword(top, "DISTINCTROW");
             top = NextToken(top))
            now.beforeTop = top;
        if (!HasKeyword(top, "TOP")) return;
        const size_t number = NextToken(top);
        if (number >= tokens_.size() || tokens_[number].Kind != SqlTokenKind::Number) return;
        size_t end = NextToken(number);
        if (HasKeyword(end, "PERCENT")) throw EDatabaseError("SELECT TOP n PERCENT is not supported");
        if (end < tokens_.size() && IsSymbol(tokens_[end], ',')) end = NextToken(end);
        now.limit = AnsiString(tokens_[number].Text);
        for (size_t i = top; i < end; ++i)
            if (tokens_[i].Kind != SqlTokenKind::Comment) pieces_[i].dropped = true;
    }

    void End(Open& now, size_t last) {
        if (now.limit.empty()) return;
        if (dialect_.Limit == EngineDialect::RowLimit::TopAtBeginning) {
            pieces_[now.beforeTop].after = " TOP " + now.limit;
            now.limit.clear();
            return;
        }
        const AnsiString clause = dialect_.Limit == EngineDialect::RowLimit::LimitAtEnd
                                      ? " LIMIT " + now.limit
                                      : " FETCH FIRST " + now.limit + " ROWS ONLY";
        now.limit.clear();
        // The part of a compound that is limited by itself becomes a table.
        if (now.inCompound) pieces_[now.select].before += "SELECT * FROM (";
        pieces_[last].after += clause + (now.inCompound ? ")" : "");
    }

    const EngineDialect& dialect_;
    ParameterParsing parsing_;
    std::vector<SqlToken> tokens_;
    std::vector<Piece> pieces_;
};

}  // namespace dialect_detail

EngineSql TranslateSql(const AnsiString& sql, const EngineDialect& dialect, ParameterParsing parsing) {
    return dialect_detail::Translator(sql, dialect, parsing).Write();
}

std::vector<AnsiString> ParameterNamesOf(const AnsiString& sql) {
    std::vector<AnsiString> names;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (token.Kind != SqlTokenKind::Parameter) continue;
        const AnsiString name = NameOf(token);
        if (std::none_of(names.begin(), names.end(), [&](const AnsiString& each) { return AnsiSameText(each, name); }))
            names.push_back(name);
    }
    return names;
}

QueryShape ShapeOf(const AnsiString& sql) {
    using namespace dialect_detail;
    QueryShape shape;
    int depth = 0;
    bool first = true, inFrom = false, wantsSource = false, afterDot = false;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (IsFiller(token)) continue;
        if (first) shape.IsSelect = IsKeyword(token, "SELECT") || IsKeyword(token, "WITH");
        first = false;
        if (IsSymbol(token, '(')) ++depth;
        if (IsSymbol(token, ')')) --depth;
        if (depth > 0) {
            wantsSource = false;
            continue;
        }
        if (wantsSource && !IsSymbol(token, '.')) {
            // A name with a dot behind it was a schema's.
            const bool named = shape.Source.empty() || afterDot;
            if (named) shape.Source = NameOf(token);
            wantsSource = named;
        }
        afterDot = IsSymbol(token, '.');
        if (JoinsSelects(token)) shape.IsCompound = true;
        if (IsKeyword(token, "GROUP") || IsKeyword(token, "DISTINCT") || IsKeyword(token, "DISTINCTROW"))
            shape.IsGrouped = true;
        if (IsKeyword(token, "FROM")) {
            inFrom = wantsSource = true;
        } else if (inFrom && (IsKeyword(token, "JOIN") || IsSymbol(token, ','))) {
            shape.IsJoined = true;
        } else if (IsKeyword(token, "WHERE") || IsKeyword(token, "ORDER") || IsKeyword(token, "GROUP") ||
                   IsKeyword(token, "HAVING") || IsKeyword(token, "LIMIT")) {
            inFrom = false;
        }
    }
    return shape;
}

}  // namespace vyn
