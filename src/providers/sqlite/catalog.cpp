#include <algorithm>
#include <map>

#include "platform/text/compare.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"

// What the engine knows of tables.
namespace vyn::sqlite_provider {

namespace catalog_detail {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

// A question of the catalog; its parameters are texts in UTF-8.
class Question {
  public:
    Question(sqlite3* database, const std::string& sql, const std::vector<std::string>& texts = {})
        : database_(database) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK)
            Raise(database, "The catalog cannot be read");
        statement_.reset(prepared);
        for (size_t i = 0; i < texts.size(); ++i)
            sqlite3_bind_text64(prepared, static_cast<int>(i) + 1, texts[i].data(), texts[i].size(), SQLITE_TRANSIENT,
                                SQLITE_UTF8);
    }
    bool Next() {
        const int result = sqlite3_step(statement_.get());
        if (result != SQLITE_ROW && result != SQLITE_DONE) Raise(database_, "The catalog cannot be read");
        return result == SQLITE_ROW;
    }
    std::string Text(int column) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
        return text ? text : "";
    }
    int Integer(int column) const { return sqlite3_column_int(statement_.get(), column); }
    bool IsNull(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }

  private:
    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// The question for a table's columns, and what its answer's columns are.
std::string ColumnsOf(const std::string& table) {
    std::string quoted;
    for (const char c : table) {
        quoted += c;
        if (c == '\'') quoted += c;
    }
    return "PRAGMA table_xinfo('" + quoted + "')";
}
constexpr int kColumnName = 1, kColumnType = 2, kNotNull = 3, kDefault = 4, kPlaceInKey = 5, kHidden = 6;

// A table's columns stand computed in it with these marks.
constexpr int kVirtualColumn = 2;
constexpr int kStoredColumn = 3;

}  // namespace catalog_detail

std::vector<ColumnDescription> DescribeTable(sqlite3* database, const std::string& table) {
    using namespace catalog_detail;
    Question question(database, ColumnsOf(table));
    std::vector<ColumnDescription> columns;
    std::vector<size_t> keys;
    bool integerKey = false;
    while (question.Next()) {
        ColumnDescription column;
        column.Name = question.Text(kColumnName);
        column.InKey = question.Integer(kPlaceInKey) > 0;
        column.Automatic = !question.IsNull(kDefault) && !SameText(question.Text(kDefault), "NULL");
        const int hidden = question.Integer(kHidden);
        column.Computed = hidden == kVirtualColumn || hidden == kStoredColumn;
        column.Required = question.Integer(kNotNull) != 0;
        if (column.InKey) {
            keys.push_back(columns.size());
            integerKey = SameText(question.Text(kColumnType), "INTEGER");
        }
        columns.push_back(std::move(column));
    }
    // A key of one INTEGER column is the row's own number: the engine gives it.
    if (keys.size() == 1 && integerKey) {
        ColumnDescription& key = columns[keys[0]];
        int counts = 0;
        sqlite3_table_column_metadata(database, nullptr, table.c_str(), key.Name.c_str(), nullptr, nullptr, nullptr,
                                      nullptr, &counts);
        key.Automatic = true;
        key.Counts = counts != 0;
    }
    for (ColumnDescription& column : columns) column.Required = column.Required && !column.Automatic;
    return columns;
}

std::vector<AnsiString> ListTables(sqlite3* database, SystemTables system) {
    catalog_detail::Question question(database,
                                      "SELECT name FROM (SELECT name, type FROM sqlite_master UNION SELECT name, type "
                                      "FROM sqlite_temp_master UNION SELECT 'sqlite_master', 'table') "
                                      "WHERE type IN ('table', 'view') ORDER BY name",
                                      {});
    std::vector<AnsiString> names;
    while (question.Next()) {
        const std::string name = question.Text(0);
        const bool isSystem = SameText(name.substr(0, 7), "sqlite_");
        if (!isSystem || system == SystemTables::Include) names.push_back(Utf8ToAnsiLossy(name));
    }
    return names;
}

bool IsTable(sqlite3* database, const AnsiString& name) {
    catalog_detail::Question question(database,
                                      "SELECT 1 FROM (SELECT name, type FROM sqlite_master UNION SELECT name, type "
                                      "FROM sqlite_temp_master) WHERE type = 'table' AND name = ? COLLATE NOCASE",
                                      {AnsiToUtf8(name)});
    return question.Next();
}

std::vector<AnsiString> ListKeyColumns(sqlite3* database, const AnsiString& table) {
    using namespace catalog_detail;
    Question question(database, ColumnsOf(AnsiToUtf8(table)));
    std::map<int, AnsiString> names;
    while (question.Next())
        if (const int place = question.Integer(kPlaceInKey); place > 0)
            names[place] = Utf8ToAnsiLossy(question.Text(kColumnName));
    std::vector<AnsiString> ordered;
    for (const auto& [place, name] : names) ordered.push_back(name);
    return ordered;
}

int64_t LastRowNumber(sqlite3* database, const AnsiString& table) {
    const AnsiString sql = "SELECT max(_rowid_) FROM " + Dialect().QuotedName(table);
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database, AnsiToUtf8(sql).c_str(), -1, &prepared, nullptr) != SQLITE_OK) return -1;
    const std::unique_ptr<sqlite3_stmt, catalog_detail::Finalize> statement(prepared);
    return sqlite3_step(prepared) == SQLITE_ROW ? sqlite3_column_int64(prepared, 0) : -1;
}

std::vector<AnsiString> ListIndexColumns(sqlite3* database, const AnsiString& table, const AnsiString& index) {
    catalog_detail::Question question(database,
                                      "SELECT i.name FROM pragma_index_list(?) AS l, pragma_index_info(l.name) AS i "
                                      "WHERE l.name = ? COLLATE NOCASE ORDER BY i.seqno",
                                      {AnsiToUtf8(table), AnsiToUtf8(index)});
    std::vector<AnsiString> names;
    while (question.Next()) names.push_back(Utf8ToAnsiLossy(question.Text(0)));
    // The primary key goes by this name, whether or not it has an index.
    if (names.empty() && SameText(index, "PrimaryKey")) return ListKeyColumns(database, table);
    return names;
}

TextIndex FindTextIndex(sqlite3* database, const AnsiString& table, const AnsiString& column) {
    const char* declared = nullptr;
    const char* collation = nullptr;
    const std::string tableName = AnsiToUtf8(table), columnName = AnsiToUtf8(column);
    const int known = sqlite3_table_column_metadata(database, nullptr, tableName.c_str(), columnName.c_str(), &declared,
                                                    &collation, nullptr, nullptr, nullptr);
    if (known != SQLITE_OK || !declared || !collation) return {};
    // Columns of other types keep a text of digits as a number, which stands elsewhere.
    const AnsiString type = UpperCase(declared);
    const auto has = [&](const char* word) { return type.find(word) != AnsiString::npos; };
    if (has("INT") || !(has("CHAR") || has("CLOB") || has("TEXT"))) return {};
    const AnsiString own = UpperCase(collation);
    catalog_detail::Question question(
        database,
        "SELECT upper(i.coll) FROM pragma_index_list(?) AS l, pragma_index_xinfo(l.name) AS i WHERE l.partial = 0 AND "
        "i.seqno = 0 AND i.name = ? COLLATE NOCASE AND i.coll COLLATE NOCASE IN ('BINARY', 'NOCASE')",
        {tableName, columnName});
    TextIndex best;
    while (question.Next()) {
        const AnsiString order = question.Text(0);
        const bool better =
            best.Order == TextIndex::Sorting::None || order == own || (!best.IsColumnsOwn() && order == "BINARY");
        if (!better) continue;
        best.Order = order == "BINARY" ? TextIndex::Sorting::CodePoints : TextIndex::Sorting::CodePointsWithoutCase;
        best.Collation = order == own ? AnsiString() : " COLLATE " + order;
    }
    return best;
}

}  // namespace vyn::sqlite_provider
