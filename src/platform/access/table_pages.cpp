#include "platform/access/table_pages.h"

#include <algorithm>
#include <cmath>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace table_pages_detail {

// Of a text, how many characters say where it stands between others.
constexpr size_t kTellingBytes = 6;

// What stands behind a query's conditions, or makes it another kind of query.
bool EndsPaging(const SqlToken& token) {
    for (const char* word : {"LIMIT", "OFFSET", "FETCH", "TOP", "FOR", "INTO", "GROUP", "HAVING", "DISTINCT", "WINDOW"})
        if (IsKeyword(token, word)) return true;
    return JoinsSelects(token);
}

bool HoldsAsShown(TFieldType type) {
    switch (type) {
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftAutoInc:
        case ftLargeint:
        case ftFloat:
            return true;
        default:
            return ColumnKindOf(type) == ColumnKind::Text;
    }
}

std::optional<double> NumberOf(const Cell& cell) {
    if (cell.IsInteger()) return static_cast<double>(cell.AsInteger());
    if (cell.IsReal()) return cell.AsReal();
    return std::nullopt;
}

// A number that grows with the text, from its characters behind what `first` and `last` have in common.
double TellingNumber(std::string_view text, size_t from) {
    double number = 0;
    for (size_t i = 0; i < kTellingBytes; ++i) {
        constexpr double kBytes = 256;
        number = number * kBytes + (from + i < text.size() ? static_cast<unsigned char>(text[from + i]) : 0);
    }
    return number;
}

}  // namespace table_pages_detail

std::unique_ptr<TablePages> TablePages::Of(ProviderConnection& connection, Query query,
                                           const std::vector<OrderPart>& order, int64_t from) {
    // Columns are asked for by their names.
    for (size_t i = 0; i < query.Columns.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            if (AnsiSameText(query.Columns[i].Name, query.Columns[j].Name)) return nullptr;
    std::unique_ptr<TablePages> pages(new TablePages(connection, std::move(query)));
    if (!pages->FindOrder(order) || pages->Estimate() < std::max<int64_t>(from, 0)) return nullptr;
    return pages;
}

std::optional<size_t> TablePages::ColumnCalled(const AnsiString& name) const {
    const auto& columns = query_.Columns;
    for (size_t i = 0; i < columns.size(); ++i)
        if (AnsiSameText(columns[i].Name, name)) return i;
    for (size_t i = 0; i < columns.size(); ++i)
        if (AnsiSameText(columns[i].OriginColumn, name)) return i;
    return std::nullopt;
}

// The statement's own order, which is taken out of it; nothing when it cannot be said by its columns.
std::optional<std::vector<TablePages::OrderPart>> TablePages::TakeStatementOrder() {
    using namespace table_pages_detail;
    const AnsiString sql = query_.Sql;
    const std::vector<SqlToken> tokens = TokenizeSql(sql);
    AnsiString before;
    std::vector<std::vector<SqlToken>> items;
    int depth = 0;
    bool first = true, ordered = false;
    for (const SqlToken& token : tokens) {
        if (IsSymbol(token, '(')) ++depth;
        if (IsSymbol(token, ')')) --depth;
        const bool filler = IsFiller(token);
        if (first && !filler) {
            if (!IsKeyword(token, "SELECT")) return std::nullopt;
            first = false;
        }
        if (depth == 0 && EndsPaging(token)) return std::nullopt;
        if (depth == 0 && IsKeyword(token, "WHERE")) conditional_ = true;
        if (depth == 0 && IsKeyword(token, "ORDER")) {
            ordered = true;
            items.emplace_back();
        } else if (!ordered) {
            if (depth > 0 || !IsSymbol(token, ';')) before += token.Text;
        } else if (IsSymbol(token, ',') && depth == 0) {
            items.emplace_back();
        } else if (!filler && !IsKeyword(token, "BY") && !IsSymbol(token, ';')) {
            items.back().push_back(token);
        }
    }
    std::vector<OrderPart> parts;
    for (std::vector<SqlToken>& item : items) {
        OrderPart part{0, false};
        if (!item.empty() && (IsKeyword(item.back(), "DESC") || IsKeyword(item.back(), "ASC"))) {
            part.Descending = IsKeyword(item.back(), "DESC");
            item.pop_back();
        }
        if (item.size() == 1 && item[0].Kind == SqlTokenKind::Number) {
            int64_t number = 0;
            if (!TryStrToInt64(AnsiString(item[0].Text), number) || number < 1 ||
                number > static_cast<int64_t>(query_.Columns.size()))
                return std::nullopt;
            part.Column = static_cast<size_t>(number - 1);
        } else {
            // [table.]column
            const bool plain = item.size() == 1 || (item.size() == 3 && IsSymbol(item[1], '.') && IsName(item[0]));
            if (!plain || !IsName(item.back())) return std::nullopt;
            const auto column = ColumnCalled(NameOf(item.back()));
            if (!column) return std::nullopt;
            part.Column = *column;
        }
        parts.push_back(part);
    }
    query_.Sql = before;
    return parts;
}

bool TablePages::FindOrder(const std::vector<OrderPart>& order) {
    using namespace table_pages_detail;
    const auto own = TakeStatementOrder();
    if (!own) return false;
    std::vector<OrderPart> parts = order;
    parts.insert(parts.end(), own->begin(), own->end());
    const auto& columns = query_.Columns;
    // Without an order asked for, records come as they were made where the engine keeps that: as numbered keys count.
    const bool counted = query_.Key.size() == 1 && columns[query_.Key[0]].Automatic &&
                         ColumnKindOf(columns[query_.Key[0]].DataType) == ColumnKind::Integer;
    if (parts.empty() && connection_.Dialect().KeepsOrder && !counted) return false;
    const bool falls = !parts.empty() && parts.back().Descending;
    for (const size_t key : query_.Key) parts.push_back({key, falls && parts.size() == 1});
    for (const OrderPart& part : parts) {
        const FieldDefinition& column = columns[part.Column];
        const bool isKey = std::find(query_.Key.begin(), query_.Key.end(), part.Column) != query_.Key.end();
        const bool known =
            std::any_of(order_.begin(), order_.end(), [&](const Part& each) { return each.column == part.Column; });
        if (known) continue;
        const bool exact = HoldsAsShown(column.DataType);
        if (column.OriginTable.empty() || ColumnKindOf(column.DataType) == ColumnKind::Bytes || (isKey && !exact))
            return false;
        order_.push_back({part.Column, part.Descending, !column.Required && !isKey, exact});
    }
    return true;
}

TablePages::Statement TablePages::Begin() const {
    // A comment at the end ends with its line.
    return {"SELECT * FROM (" + query_.Sql + "\n) AS vyn_page", query_.Values};
}

AnsiString TablePages::ColumnName(const Part& part) const {
    return connection_.Dialect().QuotedName(query_.Columns[part.column].Name);
}

bool TablePages::NullsLead(const Part& part, Direction direction) const {
    return connection_.Dialect().NullsAreLow != Falls(part, direction);
}

void TablePages::AddKey(Statement& statement, const Record& place, bool byOrigin) const {
    const EngineDialect& dialect = connection_.Dialect();
    bool first = true;
    for (const size_t key : query_.Key) {
        const FieldDefinition& column = query_.Columns[key];
        statement.text +=
            (first ? " WHERE " : " AND ") + dialect.QuotedName(byOrigin ? column.OriginColumn : column.Name) + " = ?";
        statement.values.push_back({column.DataType, place[key]});
        first = false;
    }
}

void TablePages::AddValue(Statement& statement, const Part& part, const Record& place) const {
    const FieldDefinition& column = query_.Columns[part.column];
    if (part.exact) {
        statement.text += "?";
        statement.values.push_back({column.DataType, place[part.column]});
        return;
    }
    const EngineDialect& dialect = connection_.Dialect();
    statement.text +=
        "(SELECT " + dialect.QuotedName(column.OriginColumn) + " FROM " + dialect.QuotedName(query_.Table);
    AddKey(statement, place, true);
    statement.text += ")";
}

void TablePages::AddBeyond(Statement& statement, const Record& place, Direction direction) const {
    const bool plain = std::all_of(order_.begin(), order_.end(), [&](const Part& part) {
        return !part.nullable && part.descending == order_[0].descending;
    });
    statement.text += " WHERE ";
    if (!plain) return AddBeyondStepwise(statement, place, direction);
    // All at once, which engines find by an index.
    const bool several = order_.size() > 1;
    AnsiString names;
    for (const Part& part : order_) names += (names.empty() ? "" : ", ") + ColumnName(part);
    statement.text += (several ? "(" + names + ")" : names) + (Falls(order_[0], direction) ? " < " : " > ");
    if (several) statement.text += "(";
    for (size_t i = 0; i < order_.size(); ++i) {
        if (i > 0) statement.text += ", ";
        AddValue(statement, order_[i], place);
    }
    if (several) statement.text += ")";
}

// Column by column: the first ones are the same, and the next stands behind.
void TablePages::AddBeyondStepwise(Statement& statement, const Record& place, Direction direction) const {
    const auto isNull = [&](const Part& part) { return place[part.column].IsNull(); };
    const auto addComparison = [&](const Part& part, const char* comparison) {
        statement.text += ColumnName(part) + comparison;
        AddValue(statement, part, place);
    };
    const auto beyond = [&](const Part& part) { return Falls(part, direction) ? " < " : " > "; };
    const Part& lead = order_[0];
    // What the engine can find by an index: no row before this one.
    const bool bounded = !isNull(lead) && (!lead.nullable || NullsLead(lead, direction));
    if (bounded) {
        addComparison(lead, Falls(lead, direction) ? " <= " : " >= ");
        statement.text += " AND ";
    }
    statement.text += "(";
    bool any = false;
    for (size_t i = 0; i < order_.size(); ++i) {
        const Part& part = order_[i];
        // Nothing stands behind the nulls at the end.
        if (isNull(part) && !NullsLead(part, direction)) continue;
        if (any) statement.text += " OR ";
        any = true;
        statement.text += "(";
        for (size_t j = 0; j < i; ++j) {
            if (isNull(order_[j]))
                statement.text += ColumnName(order_[j]) + " IS NULL";
            else
                addComparison(order_[j], " = ");
            statement.text += " AND ";
        }
        if (isNull(part)) {
            statement.text += ColumnName(part) + " IS NOT NULL";
        } else if (part.nullable && !NullsLead(part, direction)) {
            statement.text += "(" + ColumnName(part) + " IS NULL OR ";
            addComparison(part, beyond(part));
            statement.text += ")";
        } else {
            addComparison(part, beyond(part));
        }
        statement.text += ")";
    }
    statement.text += any ? ")" : "1 = 0)";
}

void TablePages::AddOrder(Statement& statement, Direction direction) const {
    AnsiString order;
    for (const Part& part : order_)
        order += (order.empty() ? " ORDER BY " : ", ") + ColumnName(part) + (Falls(part, direction) ? " DESC" : "");
    statement.text += order;
}

void TablePages::Run(Statement& statement, int64_t skip, int64_t count, RowStore& rows) {
    if (count <= 0) return;
    if (count < INT64_MAX) statement.text += " LIMIT " + IntToStr(count);
    if (skip > 0) statement.text += " OFFSET " + IntToStr(skip);
    RunStatement(statement.text, query_.Columns, statement.values, rows);
}

void TablePages::RunStatement(const AnsiString& text, const std::vector<FieldDefinition>& columns,
                              const std::vector<ProviderValue>& values, RowStore& rows) {
    query_.Ready();
    ProviderStatement& prepared = prepared_.Get(text, columns);
    prepared.Bind(values);
    // To the end, so that the engine is done with it.
    while (prepared.Fetch(rows, INT64_MAX)) {
    }
}

void TablePages::Read(const Record* place, int64_t skip, int64_t count, Direction direction, RowStore& rows) {
    Statement statement = Begin();
    if (place) AddBeyond(statement, *place, direction);
    AddOrder(statement, direction);
    Run(statement, skip, count, rows);
}

void TablePages::ReadAfter(const Record* row, int64_t skip, int64_t count, RowStore& rows) {
    Read(row, skip, count, Direction::Forward, rows);
}

void TablePages::ReadBefore(const Record* row, int64_t skip, int64_t count, RowStore& rows) {
    Read(row, skip, count, Direction::Backward, rows);
}

bool TablePages::ReadFrom(const Record& first, const Record& last, double part, int64_t count, RowStore& rows) {
    const Part& lead = order_[0];
    const auto low = table_pages_detail::NumberOf(first[lead.column]);
    const auto high = table_pages_detail::NumberOf(last[lead.column]);
    if (!low || !high) return false;
    const double wanted = *low + (*high - *low) * part;
    const bool whole = first[lead.column].IsInteger();
    Statement statement = Begin();
    statement.text += " WHERE " + ColumnName(lead) + (lead.descending ? " <= ?" : " >= ?");
    statement.values.push_back(
        {query_.Columns[lead.column].DataType, whole ? Cell::Integer(std::llround(wanted)) : Cell::Real(wanted)});
    AddOrder(statement, Direction::Forward);
    Run(statement, 0, count, rows);
    return true;
}

bool TablePages::ReadAgain(const Record& row, RowStore& rows) {
    const int64_t before = rows.Count();
    Statement statement = Begin();
    AddKey(statement, row, false);
    Run(statement, 0, INT64_MAX, rows);
    return rows.Count() > before;
}

double TablePages::PartOf(const Record& row, const Record& first, const Record& last) const {
    using namespace table_pages_detail;
    const size_t column = order_[0].column;
    double low = 0, high = 0, here = 0;
    if (row[column].IsBytes() && first[column].IsBytes() && last[column].IsBytes()) {
        const std::string_view a = first[column].AsBytes(), b = last[column].AsBytes();
        const auto common =
            static_cast<size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
        low = TellingNumber(a, common);
        high = TellingNumber(b, common);
        here = TellingNumber(row[column].AsBytes(), common);
    } else if (const auto number = NumberOf(row[column])) {
        low = NumberOf(first[column]).value_or(*number);
        high = NumberOf(last[column]).value_or(*number);
        here = *number;
    }
    return high == low ? 0 : std::clamp((here - low) / (high - low), 0.0, 1.0);
}

bool TablePages::Follows(const Record& row, const Record& other) const {
    const Part& lead = order_[0];
    const Cell& a = row[lead.column];
    const Cell& b = other[lead.column];
    if (order_.size() > 1 || !a.IsInteger() || !b.IsInteger()) return false;
    return lead.descending ? a.AsInteger() < b.AsInteger() : a.AsInteger() > b.AsInteger();
}

int64_t TablePages::Estimate() {
    if (!estimate_) estimate_ = connection_.EstimatedRows(query_.Table);
    return *estimate_;
}

int64_t TablePages::Count() {
    query_.Ready();
    ProviderStatement& prepared =
        prepared_.Get("SELECT COUNT(*) FROM (" + query_.Sql + "\n) AS vyn_page", {{"count", ftLargeint}});
    prepared.Bind(query_.Values);
    RowStore rows({ColumnKind::Integer});
    while (prepared.Fetch(rows, INT64_MAX)) {
    }
    return rows.Count() > 0 ? rows.Integer(0, 0) : 0;
}

Record TablePages::PlaceOf(const RowStore& rows, int64_t row) const {
    Record place(query_.Columns.size());
    for (const Part& part : order_) place[part.column] = rows.CellAt(row, static_cast<int>(part.column));
    return place;
}

}  // namespace vyn
