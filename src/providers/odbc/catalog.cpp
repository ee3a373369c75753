#include <algorithm>
#include <map>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "providers/odbc/connection.h"

// What drivers say of tables, through the catalog functions that they all have.
namespace vyn::odbc_provider {

constexpr char kUnreadable[] = "The catalog cannot be read";

namespace catalog_detail {

// Columns of the catalog functions' answers.
constexpr SQLUSMALLINT kTableName = 3, kTableKind = 4, kProcedureName = 3, kColumnName = 4, kNullable = 11,
                       kColumnDefault = 13, kKeyColumn = 4, kKeyPlace = 5, kIndexName = 6, kIndexPlace = 8,
                       kIndexColumn = 9;

}  // namespace catalog_detail

using namespace catalog_detail;

// Rows of a catalog function, column by column as texts.
class OdbcConnection::Answer {
  public:
    Answer(OdbcConnection& connection, StatementHandle statement)
        : connection_(connection), statement_(std::move(statement)) {}
    bool Next() {
        // An answer that breaks off is no end.
        return connection_.Call(
                   statement_, [&] { return SQLFetch(statement_.Get()); }, kUnreadable) != SQL_NO_DATA;
    }
    AnsiString Text(SQLUSMALLINT column) const {
        constexpr int kLongest = 1024;
        SQLWCHAR text[kLongest] = {};
        SQLLEN bytes = 0;
        if (!SQL_SUCCEEDED(SQLGetData(statement_.Get(), column, SQL_C_WCHAR, text, sizeof text, &bytes)) || bytes < 0)
            return {};
        return AnsiOf(text, static_cast<SQLSMALLINT>(std::min<SQLLEN>(bytes / 2, kLongest - 1)));
    }
    int Number(SQLUSMALLINT column) const { return std::atoi(Text(column).c_str()); }

  private:
    OdbcConnection& connection_;
    StatementHandle statement_;
};

// Drivers may lack a function of the catalog; a server that is gone is another matter.
template <class F>
bool OdbcConnection::Has(const StatementHandle& statement, F call) {
    const int generation = generation_;
    try {
        Call(statement, call, kUnreadable);
        return true;
    } catch (const EOdbcError&) {
        if (generation != generation_) throw;
        return false;
    }
}

std::vector<OdbcConnection::CatalogTable> OdbcConnection::Tables(const AnsiString& name, SystemTables system) {
    // As a pattern a name finds what is called so, and perhaps more; only where that is nothing, all are looked through
    // for one in other letters' case.
    std::vector<CatalogTable> tables = TablesLike(name, system);
    const auto other = [&](const CatalogTable& each) { return !AnsiSameText(each.name, name); };
    if (!name.empty()) std::erase_if(tables, other);
    if (tables.empty() && !name.empty()) {
        tables = TablesLike({}, system);
        std::erase_if(tables, other);
    }
    // The name as it is asked for comes first.
    std::stable_partition(tables.begin(), tables.end(), [&](const CatalogTable& each) { return each.name == name; });
    return tables;
}

std::vector<OdbcConnection::CatalogTable> OdbcConnection::TablesLike(const AnsiString& pattern, SystemTables system) {
    StatementHandle statement = NewStatement();
    std::u16string kinds = WideOf(system == SystemTables::Include ? "TABLE,VIEW,SYSTEM TABLE" : "TABLE,VIEW");
    std::u16string wide = WideOf(pattern);
    Call(
        statement,
        [&] {
            return SQLTablesW(statement.Get(), nullptr, 0, nullptr, 0, pattern.empty() ? nullptr : Wide(wide),
                              WideLength(wide), Wide(kinds), WideLength(kinds));
        },
        kUnreadable);
    std::vector<CatalogTable> tables;
    for (Answer answer(*this, std::move(statement)); answer.Next();) {
        CatalogTable table{answer.Text(kTableName), {}};
        table.kind = answer.Text(kTableKind);
        const AnsiString& prefix = engine_.SystemPrefix;
        if (!prefix.empty() && SameText(table.name.substr(0, prefix.size()), prefix)) table.kind = "SYSTEM TABLE";
        const bool wanted = system == SystemTables::Include || !SameText(table.kind, "SYSTEM TABLE");
        if (wanted) tables.push_back(std::move(table));
    }
    return tables;
}

std::vector<AnsiString> OdbcConnection::TableNames(SystemTables system) {
    std::vector<AnsiString> names;
    for (const CatalogTable& table : Tables({}, system)) names.push_back(table.name);
    std::sort(names.begin(), names.end());
    return names;
}

AnsiString OdbcConnection::TableCalled(const AnsiString& name) {
    const std::vector<CatalogTable> tables = Tables(name, SystemTables::Include);
    return tables.empty() ? AnsiString() : tables.front().name;
}

bool OdbcConnection::IsTable(const AnsiString& name) {
    const std::vector<CatalogTable> tables = Tables(name, SystemTables::Include);
    return !tables.empty() && !SameText(tables.front().kind, "VIEW");
}

std::vector<AnsiString> OdbcConnection::ProcedureNames() {
    StatementHandle statement = NewStatement();
    if (!Has(statement, [&] { return SQLProceduresW(statement.Get(), nullptr, 0, nullptr, 0, nullptr, 0); })) return {};
    std::vector<AnsiString> names;
    for (Answer answer(*this, std::move(statement)); answer.Next();) names.push_back(answer.Text(kProcedureName));
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<AnsiString> OdbcConnection::KeyColumns(const AnsiString& table) {
    const AnsiString called = TableCalled(table);
    if (called.empty()) return {};
    StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(called);
    const bool has = Has(statement, [&] {
        return SQLPrimaryKeysW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide));
    });
    if (!has) return {};
    std::map<int, AnsiString> places;
    for (Answer answer(*this, std::move(statement)); answer.Next();) {
        const AnsiString column = answer.Text(kKeyColumn);
        places[answer.Number(kKeyPlace)] = column;
    }
    std::vector<AnsiString> names;
    for (const auto& [place, column] : places) names.push_back(column);
    return names;
}

std::vector<AnsiString> OdbcConnection::IndexColumns(const AnsiString& table, const AnsiString& index) {
    const AnsiString called = TableCalled(table);
    if (called.empty()) return {};
    StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(called);
    std::map<int, AnsiString> places;
    const bool has = Has(statement, [&] {
        return SQLStatisticsW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide), SQL_INDEX_ALL,
                              SQL_QUICK);
    });
    if (has)
        for (Answer answer(*this, std::move(statement)); answer.Next();) {
            const bool wanted = AnsiSameText(answer.Text(kIndexName), index);
            const int place = answer.Number(kIndexPlace);
            if (wanted) places[place] = answer.Text(kIndexColumn);
        }
    std::vector<AnsiString> names;
    for (const auto& [place, column] : places) names.push_back(column);
    if (names.empty() && SameText(index, "PrimaryKey")) return KeyColumns(table);
    return names;
}

std::vector<ColumnDescription> OdbcConnection::DescribeTable(const AnsiString& table) {
    StatementHandle statement = NewStatement();
    // The name is a pattern here.
    AnsiString pattern;
    for (char c : table) {
        if (c == '_' || c == '%' || c == '\\') pattern += '\\';
        pattern += c;
    }
    if (engine_.NamesAliases) pattern = table;
    std::u16string wide = WideOf(pattern);
    Call(
        statement,
        [&] { return SQLColumnsW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide), nullptr, 0); },
        kUnreadable);
    std::vector<ColumnDescription> columns;
    for (Answer answer(*this, std::move(statement)); answer.Next();) {
        if (!AnsiSameText(answer.Text(kTableName), table)) continue;
        ColumnDescription column;
        column.Name = answer.Text(kColumnName);
        const bool required = answer.Number(kNullable) == SQL_NO_NULLS;
        const AnsiString otherwise = answer.Text(kColumnDefault);
        column.Automatic = !otherwise.empty() && !SameText(otherwise, "NULL");
        column.Required = required && !column.Automatic;
        columns.push_back(std::move(column));
    }
    return columns;
}

}  // namespace vyn::odbc_provider
