#include <algorithm>
#include <map>

#include "platform/access/sql_tokens.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "providers/postgresql/connection.h"

// What the server's catalog says of tables.
namespace vyn::postgresql_provider {

constexpr char kCatalogFailed[] = "The catalog cannot be read";

// The number of the table that a name means: the one spelt like it, else one that differs in case.
constexpr char kTableOf[] =
    "(SELECT oid FROM pg_class WHERE lower(relname) = lower($1) AND relkind IN ('r', 'p', 'f', 'v', 'm') "
    "AND pg_table_is_visible(oid) ORDER BY relname <> $1 LIMIT 1)";

Result PostgresqlConnection::Question(const std::string& sql, const std::vector<AnsiString>& values) {
    Ready();
    std::vector<ProviderValue> given;
    for (const AnsiString& value : values) given.push_back({ftString, Cell::Bytes(AnsiToUtf8(value))});
    const Arguments arguments(given, Arguments::Types::Said);
    return Protected(
        [&] {
            return Exchange([&](PGconn* handle) {
                return PQsendQueryParams(handle, sql.c_str(), arguments.Count(), arguments.TypeNumbers(),
                                         arguments.Values(), arguments.Lengths(), arguments.Formats(), kTextFormat);
            });
        },
        kCatalogFailed);
}

std::vector<AnsiString> PostgresqlConnection::Names(const std::string& sql, const std::vector<AnsiString>& values) {
    const Result result = Question(sql, values);
    std::vector<AnsiString> names;
    for (int i = 0; i < PQntuples(result.get()); ++i) names.push_back(Utf8ToAnsiLossy(PQgetvalue(result.get(), i, 0)));
    return names;
}

std::vector<AnsiString> PostgresqlConnection::TableNames(SystemTables system) {
    std::string sql =
        "SELECT relname FROM pg_class AS c, pg_namespace AS n WHERE relnamespace = n.oid AND relkind IN ('r', 'p', "
        "'f', 'v', 'm') AND pg_table_is_visible(c.oid)";
    if (system == SystemTables::Leave) sql += " AND nspname NOT IN ('pg_catalog', 'information_schema')";
    return Names(sql + " ORDER BY relname COLLATE \"C\"", {});
}

std::vector<AnsiString> PostgresqlConnection::ProcedureNames() {
    return Names(
        "SELECT DISTINCT proname COLLATE \"C\" AS name FROM pg_proc AS p, pg_namespace AS n WHERE pronamespace = n.oid "
        "AND prokind IN ('p', 'f') AND nspname NOT IN ('pg_catalog', 'information_schema') "
        "AND pg_function_is_visible(p.oid) ORDER BY name",
        {});
}

bool PostgresqlConnection::IsTable(const AnsiString& name) {
    return !Names(std::string("SELECT 1 FROM pg_class WHERE oid = ") + kTableOf + " AND relkind IN ('r', 'p', 'f')",
                  {name})
                .empty();
}

// Columns of an index, in its order.
constexpr char kIndexColumns[] =
    "SELECT a.attname FROM pg_index AS i CROSS JOIN LATERAL unnest(i.indkey) WITH ORDINALITY AS k(number, place) "
    "JOIN pg_attribute AS a ON a.attrelid = i.indrelid AND a.attnum = k.number WHERE k.place <= i.indnkeyatts AND "
    "i.indrelid = ";

std::vector<AnsiString> PostgresqlConnection::KeyColumns(const AnsiString& table) {
    return Names(std::string(kIndexColumns) + kTableOf + " AND i.indisprimary ORDER BY k.place", {table});
}

std::vector<AnsiString> PostgresqlConnection::IndexColumns(const AnsiString& table, const AnsiString& index) {
    std::vector<AnsiString> names =
        Names(std::string(kIndexColumns) + kTableOf +
                  " AND (SELECT lower(relname) FROM pg_class WHERE oid = i.indexrelid) = lower($2) ORDER BY k.place",
              {table, index});
    if (names.empty() && SameText(index, "PrimaryKey")) return KeyColumns(table);
    return names;
}

// Fixed-length texts compare without the blanks at their ends: they are left to the server. Older servers lack some of
// the columns that are taken out of whole rows here.
constexpr char kTextIndexes[] =
    "SELECT o.opcname LIKE '%pattern_ops', i.indcollation[0] = a.attcollation, "
    "CASE WHEN c.collprovider = 'd' THEN coalesce(to_jsonb(d) ->> 'datlocprovider', 'c') ELSE c.collprovider::text "
    "END, lower(CASE WHEN c.collprovider = 'd' THEN d.datcollate ELSE c.collcollate END), "
    "quote_ident(n.nspname) || '.' || quote_ident(c.collname), getdatabaseencoding() "
    "FROM pg_index AS i JOIN pg_class AS x ON x.oid = i.indexrelid JOIN pg_am AS m ON m.oid = x.relam "
    "JOIN pg_attribute AS a ON a.attrelid = i.indrelid AND a.attnum = i.indkey[0] "
    "JOIN pg_opclass AS o ON o.oid = i.indclass[0] JOIN pg_collation AS c ON c.oid = i.indcollation[0] "
    "JOIN pg_namespace AS n ON n.oid = c.collnamespace JOIN pg_database AS d ON d.datname = current_database() "
    "WHERE m.amname = 'btree' AND i.indisvalid AND i.indpred IS NULL AND a.atttypid IN ('text'::regtype, "
    "'varchar'::regtype) AND coalesce(to_jsonb(c) ->> 'collisdeterministic', 'true') = 'true' AND a.attname = $2 AND "
    "i.indrelid = ";

TextIndex PostgresqlConnection::TextIndexOf(const AnsiString& table, const AnsiString& column) {
    const Result result = Question(std::string(kTextIndexes) + kTableOf, {table, column});
    const auto text = [&](int row, int field) { return AnsiString(PQgetvalue(result.get(), row, field)); };
    TextIndex best;
    int points = 0;
    for (int row = 0; row < PQntuples(result.get()); ++row) {
        const bool pattern = text(row, 0) == "t", own = text(row, 1) == "t";
        const AnsiString provider = text(row, 2), order = text(row, 3);
        // The server's own orders, and those of the system that have no language.
        const bool plain =
            provider == "b" ||
            (provider == "c" && (order == "c" || order == "posix" || order == "c.utf-8" || order == "c.utf8"));
        const bool byCodePoints = (pattern || plain) && text(row, 5) == "UTF8";
        TextIndex index;
        index.Order = byCodePoints ? TextIndex::Sorting::CodePoints : TextIndex::Sorting::Language;
        if (pattern)
            index.OperatorEdge = "~";
        else if (!own)
            index.Collation = " COLLATE " + Utf8ToAnsiLossy(text(row, 4));
        // An order without a language first, then the column's own.
        const int worth = 1 + (byCodePoints ? 2 : 0) + (index.IsColumnsOwn() ? 1 : 0);
        if (worth <= points || (!byCodePoints && !index.IsColumnsOwn())) continue;
        points = worth;
        best = std::move(index);
    }
    return best;
}

// A table that the server has not looked through yet is judged by its size.
int64_t PostgresqlConnection::EstimatedRows(const AnsiString& table) {
    const std::vector<AnsiString> rows =
        Names(std::string("SELECT CASE WHEN reltuples < 0 OR relpages = 0 THEN pg_relation_size(oid) / 100 ELSE "
                          "reltuples * (pg_relation_size(oid) / current_setting('block_size')::float8 / relpages) "
                          "END::bigint FROM pg_class WHERE oid = ") +
                  kTableOf,
              {table});
    int64_t count = -1;
    return rows.empty() || !TryStrToInt64(rows[0], count) ? -1 : count;
}

std::vector<PostgresqlConnection::Origin> PostgresqlConnection::OriginsOf(const PGresult* description) {
    const int count = PQnfields(description);
    AnsiString tables;
    for (int i = 0; i < count; ++i)
        if (PQftable(description, i) != InvalidOid)
            tables += (tables.empty() ? "{" : ",") + std::to_string(PQftable(description, i));
    std::vector<Origin> origins(static_cast<size_t>(count));
    if (tables.empty()) return origins;
    // Tables that stand outside the search path have no name that a statement of ours could say.
    const Result result = Question(
        "SELECT c.oid, a.attnum, c.relname, a.attname, a.attnotnull, a.atthasdef AND a.attgenerated = '' OR "
        "a.attidentity <> '', a.attgenerated <> '' OR a.attidentity = 'a', a.attidentity <> '' OR "
        "coalesce(pg_get_expr(d.adbin, d.adrelid) LIKE 'nextval(%', false), coalesce(a.attnum = ANY(i.indkey), false) "
        "FROM pg_class AS c JOIN pg_attribute AS a ON a.attrelid = c.oid LEFT JOIN pg_attrdef AS d "
        "ON d.adrelid = c.oid AND d.adnum = a.attnum LEFT JOIN pg_index AS i ON i.indrelid = c.oid AND i.indisprimary "
        "WHERE c.oid = ANY($1::oid[]) AND a.attnum > 0 AND NOT a.attisdropped AND pg_table_is_visible(c.oid)",
        {tables + "}"});
    std::map<std::pair<Oid, int>, int> rows;
    for (int i = 0; i < PQntuples(result.get()); ++i)
        rows[{static_cast<Oid>(std::strtoul(PQgetvalue(result.get(), i, 0), nullptr, 10)),
              std::atoi(PQgetvalue(result.get(), i, 1))}] = i;
    for (int i = 0; i < count; ++i) {
        const auto found = rows.find({PQftable(description, i), PQftablecol(description, i)});
        if (found == rows.end()) continue;
        const auto yes = [&](int column) { return *PQgetvalue(result.get(), found->second, column) == 't'; };
        Origin origin;
        size_t position = 0;
        if (!TryUtf8ToAnsi(PQgetvalue(result.get(), found->second, 2), origin.Table, position) ||
            !TryUtf8ToAnsi(PQgetvalue(result.get(), found->second, 3), origin.Column, position))
            continue;
        origin.Automatic = yes(5);
        origin.Required = yes(4) && !origin.Automatic;
        origin.Computed = yes(6);
        origin.Counts = yes(7);
        origin.InKey = yes(8);
        origins[static_cast<size_t>(i)] = std::move(origin);
    }
    return origins;
}

AnsiString PostgresqlConnection::WithCatalogNames(const AnsiString& sql) {
    const Result result = Question(
        "SELECT name FROM (SELECT relname AS name FROM pg_class WHERE pg_table_is_visible(oid) AND relkind IN ('r', "
        "'p', 'f', 'v', 'm') UNION SELECT attname FROM pg_attribute AS a, pg_class AS c WHERE a.attrelid = c.oid AND "
        "pg_table_is_visible(c.oid) AND c.relkind IN ('r', 'p', 'f', 'v', 'm') AND a.attnum > 0) AS names "
        "WHERE lower(name) = ANY($1::text[])",
        {[&] {
            AnsiString words;
            for (const SqlToken& token : TokenizeSql(sql)) {
                const bool isName = token.Kind == SqlTokenKind::Identifier ||
                                    (token.Kind == SqlTokenKind::Quoted && token.Text.front() == '"');
                if (!isName) continue;
                words += words.empty() ? "{\"" : ",\"";
                for (char c : AnsiLowerCase(NameOf(token))) {
                    if (c == '"' || c == '\\') words += '\\';
                    words += c;
                }
                words += '"';
            }
            return words.empty() ? AnsiString("{}") : words + "}";
        }()});
    std::vector<AnsiString> names;
    for (int i = 0; i < PQntuples(result.get()); ++i) names.push_back(Utf8ToAnsiLossy(PQgetvalue(result.get(), i, 0)));
    return SpellNames(sql, names, Dialect());
}

}  // namespace vyn::postgresql_provider
