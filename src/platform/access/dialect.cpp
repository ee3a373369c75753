#include "platform/access/dialect.h"

#include <algorithm>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/date_literal.h"
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

AnsiString DateLiteral(const SqlToken& token, const EngineDialect& dialect) {
    double days = 0;
    DateLiteralParts parts = DateLiteralParts::Both;
    ParseDateLiteral(token.Text.substr(1, token.Text.size() - 2), days, parts);
    if (parts == DateLiteralParts::Both && dialect.MidnightIsDateAlone && days == static_cast<int64_t>(days))
        parts = DateLiteralParts::Date;
    Word hour, minute, second, millisecond;
    DecodeTime(days, hour, minute, second, millisecond);
    const bool dateAlone = parts == DateLiteralParts::Date, timeAlone = parts == DateLiteralParts::Time;
    const AnsiString& before = dateAlone ? dialect.DateBefore : timeAlone ? dialect.TimeBefore : dialect.DateTimeBefore;
    AnsiString mask = dateAlone ? dialect.DateMask : timeAlone ? dialect.TimeMask : dialect.DateTimeMask;
    if (millisecond != 0) mask += ".zzz";
    return before + FormatDateTime(mask, days, InvariantFormatSettings()) + dialect.DateAfter;
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

// The pattern of a LIKE, with its quotes, as engines take it: "*" and "?" are wild as "%" and "_" are; a character
// alone in brackets is itself.
AnsiString Pattern(std::string_view quoted) {
    constexpr char kEscape = '\\';
    const std::string_view inside = quoted.substr(1, quoted.size() - 2);
    AnsiString text;
    bool escaped = false;
    for (size_t i = 0; i < inside.size(); ++i) {
        char c = inside[i];
        const bool itself = c == '[' && i + 2 < inside.size() && inside[i + 2] == ']';
        if (itself) c = inside[i += 1];
        if (itself) ++i;
        const bool wild = c == '%' || c == '_';
        if (c == kEscape || (itself && wild)) {
            text += kEscape;
            escaped = true;
        }
        text += itself ? c : c == '*' ? '%' : c == '?' ? '_' : c;
    }
    const AnsiString pattern = quoted.front() + text + quoted.back();
    return escaped ? pattern + " ESCAPE '" + kEscape + "'" : pattern;
}

// Whether an operand of "&" ends before such a word.
bool EndsOperand(const SqlToken& token) {
    if (token.Kind != SqlTokenKind::Identifier) return false;
    for (const char* word :
         {"SELECT", "DISTINCT", "ALL",    "DISTINCTROW", "FROM",   "WHERE",     "GROUP",  "ORDER", "BY",
          "HAVING", "UNION",    "EXCEPT", "INTERSECT",   "LIMIT",  "OFFSET",    "FETCH",  "AS",    "ON",
          "JOIN",   "INNER",    "LEFT",   "RIGHT",       "FULL",   "CROSS",     "AND",    "OR",    "NOT",
          "LIKE",   "IN",       "IS",     "BETWEEN",     "ESCAPE", "ASC",       "DESC",   "WHEN",  "THEN",
          "ELSE",   "CASE",     "END",    "SET",         "VALUES", "RETURNING", "COLLATE"})
        if (SameText(token.Text, word)) return true;
    return false;
}
bool EndsOperandSymbol(const SqlToken& token) {
    return token.Kind == SqlTokenKind::Symbol && AnsiString(",;=<>&").find(token.Text.front()) != AnsiString::npos;
}

// Writes tokens for an engine. First walks find what is said otherwise, and which tokens say it.
class Translator {
  public:
    Translator(const AnsiString& sql, const EngineDialect& dialect, ParameterParsing parsing)
        : dialect_(dialect), parsing_(parsing), tokens_(TokenizeSql(sql)), pieces_(tokens_.size() + 1) {
        FindLimits();
        FindWords();
        FindJoinedTexts();
        FindMemos();
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
        bool dropped = false;  // what is written instead stands in `before`
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

    bool HasSymbol(size_t at, char symbol) const { return at < tokens_.size() && IsSymbol(tokens_[at], symbol); }
    void Say(size_t at, const AnsiString& text) {
        pieces_[at].before += text;
        pieces_[at].dropped = true;
    }

    // Functions and words that engines call otherwise.
    void FindWords() {
        bool afterDot = false;
        for (size_t i = 0; i < tokens_.size(); ++i) {
            if (IsFiller(tokens_[i])) continue;
            const bool qualified = afterDot;
            afterDot = IsSymbol(tokens_[i], '.');
            if (tokens_[i].Kind != SqlTokenKind::Identifier || qualified) continue;
            const size_t next = NextToken(i);
            const bool called = HasSymbol(next, '(');
            if (called && HasSymbol(NextToken(next), ')')) {
                const AnsiString* function = HasKeyword(i, "NOW")    ? &dialect_.Now
                                             : HasKeyword(i, "DATE") ? &dialect_.Today
                                             : HasKeyword(i, "TIME") ? &dialect_.TimeNow
                                                                     : nullptr;
                if (!function) continue;
                Say(i, *function);
                for (size_t each = i + 1; each <= NextToken(next); ++each) pieces_[each].dropped = true;
            } else if (called) {
                if (HasKeyword(i, "IIF") && !dialect_.HasIif) WriteCase(i, next);
            } else if (HasKeyword(i, "LIKE")) {
                Say(i, dialect_.Like);
                const bool literal = next < tokens_.size() && tokens_[next].Kind == SqlTokenKind::Quoted &&
                                     tokens_[next].Text.size() >= 2 &&
                                     tokens_[next].Text.front() == tokens_[next].Text.back();
                // Who says how wild characters are meant knows what the engine takes.
                if (literal && !HasKeyword(NextToken(next), "ESCAPE")) Say(next, Pattern(tokens_[next].Text));
            } else if (!HasSymbol(next, '.')) {
                if (HasKeyword(i, "TRUE") && dialect_.True != "TRUE") Say(i, dialect_.True);
                if (HasKeyword(i, "FALSE") && dialect_.False != "FALSE") Say(i, dialect_.False);
                // Records are told apart by what is shown of them.
                if (HasKeyword(i, "DISTINCTROW")) Say(i, "DISTINCT");
            }
        }
    }

    // IIF(a, b, c) is (CASE WHEN a THEN b ELSE c END); other numbers of arguments are left to the engine.
    void WriteCase(size_t iif, size_t open) {
        std::vector<size_t> commas;
        int depth = 0;
        for (size_t i = open; i < tokens_.size(); ++i) {
            if (IsSymbol(tokens_[i], '(')) ++depth;
            if (depth == 1 && IsSymbol(tokens_[i], ',')) commas.push_back(i);
            if (!IsSymbol(tokens_[i], ')') || --depth > 0) continue;
            if (commas.size() != 2) return;
            for (size_t each = iif; each < open; ++each) pieces_[each].dropped = true;
            Say(open, "(CASE WHEN ");
            Say(commas[0], " THEN");
            Say(commas[1], " ELSE");
            Say(i, " END)");
            return;
        }
    }

    // Chains of texts: "a & b & c".
    void FindJoinedTexts() {
        std::vector<std::vector<size_t>> open(1);  // tokens of the operands of this level, so far
        std::vector<std::vector<size_t>> joins(1);
        const auto end = [&] {
            if (!joins.back().empty() && !open.back().empty()) JoinTexts(open.back(), joins.back());
            open.back().clear();
            joins.back().clear();
        };
        for (size_t i = 0; i < tokens_.size(); ++i) {
            const SqlToken& token = tokens_[i];
            if (IsFiller(token)) continue;
            if (IsSymbol(token, '(')) {
                open.back().push_back(i);
                open.emplace_back();
                joins.emplace_back();
            } else if (IsSymbol(token, ')')) {
                end();
                if (open.size() > 1) {
                    open.pop_back();
                    joins.pop_back();
                }
                open.back().push_back(i);
            } else if (IsSymbol(token, '&')) {
                joins.back().push_back(i);
            } else if (EndsOperand(token) || EndsOperandSymbol(token)) {
                end();
            } else {
                open.back().push_back(i);
            }
        }
        while (!open.empty()) {
            end();
            open.pop_back();
            joins.pop_back();
        }
    }

    // MEMO as the type of a column that is made.
    void FindMemos() {
        if (dialect_.Memo.empty()) return;
        constexpr size_t kNoColumn = 2;
        // Tokens into a column's definition, whose second is its type.
        size_t place = kNoColumn;
        int depth = 0;
        bool creates = false, alters = false, first = true;
        for (size_t i = 0; i < tokens_.size(); ++i) {
            const SqlToken& token = tokens_[i];
            if (IsFiller(token)) continue;
            if (IsSymbol(token, ';')) {
                depth = 0;
                place = kNoColumn;
                first = true;
                continue;
            }
            if (first) {
                const size_t next = NextToken(i);
                const bool aside = HasKeyword(next, "TEMP") || HasKeyword(next, "TEMPORARY");
                creates = IsKeyword(token, "CREATE") && HasKeyword(aside ? NextToken(next) : next, "TABLE");
                alters = IsKeyword(token, "ALTER") && HasKeyword(next, "TABLE");
                first = false;
            }
            if (IsSymbol(token, '(')) ++depth;
            if (IsSymbol(token, ')')) --depth;
            const bool begins = (creates && depth == 1 && (IsSymbol(token, '(') || IsSymbol(token, ','))) ||
                                (alters && depth == 0 && (IsKeyword(token, "ADD") || IsKeyword(token, "COLUMN")));
            if (begins) {
                place = 0;
                continue;
            }
            if (place == 1 && IsKeyword(token, "MEMO") && !HasKeyword(NextToken(i), "TEXT")) Say(i, dialect_.Memo);
            if (place < kNoColumn) place = IsKeyword(token, "CONSTRAINT") ? kNoColumn : place + 1;
        }
    }

    // `tokens` of the operands, between which stand the tokens `joins`; each must have something on both sides.
    void JoinTexts(const std::vector<size_t>& tokens, const std::vector<size_t>& joins) {
        std::vector<std::pair<size_t, size_t>> operands;
        size_t at = 0;
        for (size_t i = 0; i <= joins.size(); ++i) {
            const size_t from = at;
            while (at < tokens.size() && (i == joins.size() || tokens[at] < joins[i])) ++at;
            if (at == from) return;
            operands.emplace_back(tokens[from], tokens[at - 1]);
        }
        for (size_t i = 0; i < operands.size(); ++i) {
            const auto [first, last] = operands[i];
            pieces_[first].before =
                (i == 0 ? dialect_.JoinOpen : AnsiString()) + dialect_.JoinedOpen + pieces_[first].before;
            pieces_[last].after = dialect_.JoinedClose +
                                  (i + 1 == operands.size() ? dialect_.JoinClose : AnsiString()) + pieces_[last].after;
        }
        for (size_t join : joins) Say(join, dialect_.JoinBetween);
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
        pieces_[last].after += clause + (now.inCompound ? ") AS first_rows" : "");
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

}  // namespace vyn
