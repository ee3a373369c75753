#include <algorithm>

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

namespace query_shape_detail {

bool IsSymbol(const SqlToken& token, char symbol) {
    return token.Kind == SqlTokenKind::Symbol && token.Text.front() == symbol;
}
bool JoinsSelects(const SqlToken& token) {
    return IsKeyword(token, "UNION") || IsKeyword(token, "INTERSECT") || IsKeyword(token, "EXCEPT");
}

}  // namespace query_shape_detail

QueryShape ShapeOf(const AnsiString& sql) {
    using namespace query_shape_detail;
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

}  // namespace vyn
