#include <algorithm>
#include <map>

#include "platform/access/dialect.h"
#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"

// What can be told of a statement without running it.
namespace vyn {

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

AnsiString SpellNames(const AnsiString& sql, const std::vector<AnsiString>& names, const EngineDialect& dialect) {
    std::map<AnsiString, std::vector<AnsiString>> spellings;
    for (const AnsiString& name : names) spellings[AnsiLowerCase(name)].push_back(name);
    const std::vector<SqlToken> tokens = TokenizeSql(sql);
    AnsiString text;
    for (size_t i = 0; i < tokens.size(); ++i) {
        const SqlToken& token = tokens[i];
        const bool quoted = token.Kind == SqlTokenKind::Quoted && token.Text.front() == '"';
        const bool called = i + 1 < tokens.size() && tokens[i + 1].Text == "(";
        const bool isName = quoted || (token.Kind == SqlTokenKind::Identifier && !called);
        const auto found = isName ? spellings.find(AnsiLowerCase(NameOf(token))) : spellings.end();
        // Without quotes a name means its small letters.
        const AnsiString meant = quoted ? NameOf(token) : AnsiLowerCase(NameOf(token));
        const bool isRight = found == spellings.end() ||
                             std::find(found->second.begin(), found->second.end(), meant) != found->second.end();
        text += isRight ? AnsiString(token.Text) : dialect.QuotedName(found->second.front());
    }
    return text;
}

bool ReadsOnly(const AnsiString& sql) {
    bool reads = false, first = true, holding = false;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment) continue;
        if (first)
            for (const char* word : {"SELECT", "VALUES", "TABLE", "WITH", "SHOW"})
                reads = reads || IsKeyword(token, word) || token.Text == "(";
        first = false;
        for (const char* word : {"INSERT", "DELETE", "MERGE", "INTO"})
            if (IsKeyword(token, word)) reads = false;
        // FOR UPDATE and FOR NO KEY UPDATE only hold records.
        if (IsKeyword(token, "UPDATE") && !holding) reads = false;
        holding = IsKeyword(token, "FOR") || (holding && (IsKeyword(token, "NO") || IsKeyword(token, "KEY")));
    }
    return reads;
}

QueryShape ShapeOf(const AnsiString& sql) {
    QueryShape shape;
    int depth = 0;
    bool first = true, inFrom = false, wantsSource = false, afterDot = false;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment) continue;
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

namespace query_shape_detail {

// [schema.] [table.] column [[AS] alias]
AnsiString ColumnOf(const std::vector<SqlToken>& item) {
    size_t at = 0;
    if (item.empty() || !IsName(item[0])) return {};
    while (at + 2 < item.size() && IsSymbol(item[at + 1], '.') && IsName(item[at + 2])) at += 2;
    const AnsiString name = NameOf(item[at]);
    const size_t rest = item.size() - at - 1;
    const bool called = rest == 0 || (rest == 1 && IsName(item[at + 1])) ||
                        (rest == 2 && IsKeyword(item[at + 1], "AS") && IsName(item[at + 2]));
    return called ? name : AnsiString();
}

}  // namespace query_shape_detail

std::vector<AnsiString> SelectedColumns(const AnsiString& sql) {
    using namespace query_shape_detail;
    std::vector<AnsiString> names;
    std::vector<SqlToken> item;
    int depth = 0;
    bool first = true;
    for (const SqlToken& token : TokenizeSql(sql)) {
        if (token.Kind == SqlTokenKind::Blank || token.Kind == SqlTokenKind::Comment) continue;
        if (first) {
            if (!IsKeyword(token, "SELECT")) return {};
            first = false;
            continue;
        }
        if (item.empty() && names.empty() && (IsKeyword(token, "DISTINCT") || IsKeyword(token, "ALL"))) continue;
        if (IsSymbol(token, '(')) ++depth;
        if (IsSymbol(token, ')')) --depth;
        if (depth == 0 && IsSymbol(token, '*') && (item.empty() || IsSymbol(item.back(), '.'))) return {};
        const bool ends = depth == 0 && (IsSymbol(token, ',') || IsSymbol(token, ';') || IsKeyword(token, "FROM"));
        if (!ends) {
            item.push_back(token);
            continue;
        }
        names.push_back(ColumnOf(item));
        item.clear();
        if (!IsSymbol(token, ',')) return names;
    }
    if (!item.empty()) names.push_back(ColumnOf(item));
    return names;
}

}  // namespace vyn
