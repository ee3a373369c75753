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

// Rows of a catalog function, column by column as texts.
class Answer {
  public:
    explicit Answer(StatementHandle statement) : statement_(std::move(statement)) {}
    bool Next() { return SQL_SUCCEEDED(SQLFetch(statement_.Get())); }
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
    StatementHandle statement_;
};

// Columns of the catalog functions' answers.
constexpr SQLUSMALLINT kTableName = 3, kTableKind = 4, kProcedureName = 3, kColumnName = 4, kNullable = 11,
                       kColumnDefault = 13, kKeyColumn = 4, kKeyPlace = 5, kIndexName = 6, kIndexPlace = 8,
                       kIndexColumn = 9;

}  // namespace catalog_detail

using namespace catalog_detail;

std::vector<OdbcConnection::CatalogTable> OdbcConnection::Tables(const AnsiString& name, SystemTables system) {
    StatementHandle statement = NewStatement();
    std::u16string kinds = WideOf(system == SystemTables::Include ? "TABLE,VIEW,SYSTEM TABLE" : "TABLE,VIEW");
    Check(SQLTablesW(statement.Get(), nullptr, 0, nullptr, 0, nullptr, 0, Wide(kinds), WideLength(kinds)),
          SQL_HANDLE_STMT, statement.Get(), kUnreadable);
    std::vector<CatalogTable> tables;
    for (Answer answer(std::move(statement)); answer.Next();) {
        CatalogTable table{answer.Text(kTableName), {}};
        table.kind = answer.Text(kTableKind);
        const AnsiString& prefix = engine_.SystemPrefix;
        if (!prefix.empty() && SameText(table.name.substr(0, prefix.size()), prefix)) table.kind = "SYSTEM TABLE";
        const bool wanted = system == SystemTables::Include || !SameText(table.kind, "SYSTEM TABLE");
        if (wanted && (name.empty() || AnsiSameText(table.name, name))) tables.push_back(std::move(table));
    }
    // The name as it is asked for comes first.
    std::stable_partition(tables.begin(), tables.end(), [&](const CatalogTable& each) { return each.name == name; });
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
    // Drivers without procedures may lack the function.
    if (!SQL_SUCCEEDED(SQLProceduresW(statement.Get(), nullptr, 0, nullptr, 0, nullptr, 0))) return {};
    std::vector<AnsiString> names;
    for (Answer answer(std::move(statement)); answer.Next();) names.push_back(answer.Text(kProcedureName));
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<AnsiString> OdbcConnection::KeyColumns(const AnsiString& table) {
    const AnsiString called = TableCalled(table);
    if (called.empty()) return {};
    StatementHandle statement = NewStatement();
    std::u16string wide = WideOf(called);
    if (!SQL_SUCCEEDED(SQLPrimaryKeysW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide))))
        return {};
    std::map<int, AnsiString> places;
    for (Answer answer(std::move(statement)); answer.Next();) {
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
    if (SQL_SUCCEEDED(SQLStatisticsW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide),
                                     SQL_INDEX_ALL, SQL_QUICK)))
        for (Answer answer(std::move(statement)); answer.Next();) {
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
    Check(SQLColumnsW(statement.Get(), nullptr, 0, nullptr, 0, Wide(wide), WideLength(wide), nullptr, 0),
          SQL_HANDLE_STMT, statement.Get(), kUnreadable);
    std::vector<ColumnDescription> columns;
    for (Answer answer(std::move(statement)); answer.Next();) {
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
