#include "providers/legacy/schema.h"

#include <algorithm>

#include "platform/access/dialect.h"
#include "platform/text/compare.h"
#include "platform/text/windows1252.h"

namespace vyn::legacy {

namespace schema_detail {

// In lower case, as the embedded engine compares names.
std::string Folded(std::string name) {
    for (char& each : name)
        if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
    return name;
}

const Column* FindColumn(const Table& table, const std::string& name) {
    const auto found = std::find_if(table.Columns.begin(), table.Columns.end(),
                                    [&](const Column& each) { return SameText(each.Name, name); });
    return found == table.Columns.end() ? nullptr : &*found;
}

const Table* FindTable(const File& file, const std::string& name) {
    const auto found = std::find_if(file.Tables().begin(), file.Tables().end(),
                                    [&](const Table& each) { return SameText(each.Name, name); });
    return found == file.Tables().end() ? nullptr : &*found;
}

const Index* KeyOf(const Table& table) {
    const auto found =
        std::find_if(table.Indexes.begin(), table.Indexes.end(), [](const Index& each) { return each.Primary; });
    return found == table.Indexes.end() ? nullptr : &*found;
}

// The engine numbers the records by the one column of the key.
bool NumbersItself(const Table& table, const Column& column) {
    const Index* key = KeyOf(table);
    return column.Counts && key && key->Columns.size() == 1 && &table.Columns[key->Columns[0].Column] == &column;
}

// Decimal columns are read as amounts, which have four places and 14 digits before them for certain.
bool FitsCurrency(const Column& column) {
    constexpr int kPlaces = 4, kDigitsBefore = 14;
    return column.Scale <= kPlaces && column.Precision - column.Scale <= kDigitsBefore;
}

// The provider of the embedded engine reads these words (a MEMO that says TEXT too keeps "007" as it is).
std::string TypeOf(const Table& table, const Column& column) {
    const std::string size = "(" + std::to_string(column.Size) + ")";
    switch (column.Type) {
        case ColumnType::Boolean:
            return "BOOLEAN";
        case ColumnType::Byte:
            return "TINYINT";
        case ColumnType::Integer:
            return "SMALLINT";
        case ColumnType::Long:
        case ColumnType::Complex:
            return NumbersItself(table, column) ? "INTEGER PRIMARY KEY AUTOINCREMENT" : "INT";
        case ColumnType::Large:
            return "BIGINT";
        case ColumnType::Money:
            return "CURRENCY";
        case ColumnType::Single:
            return "FLOAT";
        case ColumnType::Double:
            return "DOUBLE";
        case ColumnType::Date:
            return "DATETIME";
        case ColumnType::Text:
            return "VARCHAR" + size + " COLLATE NOCASE";
        case ColumnType::Memo:
            return "MEMO TEXT COLLATE NOCASE";
        case ColumnType::Guid:
            return "VARCHAR(38) COLLATE NOCASE";
        case ColumnType::Numeric:
            if (!FitsCurrency(column)) return "DOUBLE";
            return "DECIMAL(" + std::to_string(column.Precision) + "," + std::to_string(column.Scale) + ")";
        case ColumnType::Binary:
            return "BINARY" + size;
        case ColumnType::Object:
            break;
    }
    return "BLOB";
}

std::string NamesOf(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + Quoted(name);
    return "(" + text + ")";
}

// The other table's columns must be its key or have a unique index, or the engine refuses every change.
bool IsKeyOf(const Table& table, std::vector<std::string> columns, const Concessions& concessions) {
    for (std::string& each : columns) each = Folded(each);
    std::sort(columns.begin(), columns.end());
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [&](const Index& index) {
        if (!IsUnique(table, index, concessions)) return false;
        std::vector<std::string> own;
        for (const IndexColumn& each : index.Columns) own.push_back(Folded(table.Columns[each.Column].Name));
        std::sort(own.begin(), own.end());
        return own == columns;
    });
}

// Why a relation cannot be kept; empty when it can.
std::string Hindrance(const File& file, const Relation& relation, const Table& table, const Concessions& concessions) {
    if (!relation.Enforced) return "it was not enforced";
    const Table* other = FindTable(file, relation.Referenced);
    if (!other) return "there is no table " + relation.Referenced;
    if (relation.Columns.empty()) return "it has no columns";
    for (size_t i = 0; i < relation.Columns.size(); ++i)
        if (!FindColumn(table, relation.Columns[i]) || !FindColumn(*other, relation.ReferencedColumns[i]))
            return "it names a column that is not there";
    if (!IsKeyOf(*other, relation.ReferencedColumns, concessions))
        return "what it refers to in " + relation.Referenced + " is no key";
    return {};
}

std::string RelationClause(const Relation& relation) {
    std::string text = "CONSTRAINT " + Quoted(relation.Name) + " FOREIGN KEY " + NamesOf(relation.Columns) +
                       " REFERENCES " + Quoted(relation.Referenced) + " " + NamesOf(relation.ReferencedColumns);
    if (relation.UpdatesCascade) text += " ON UPDATE CASCADE";
    if (relation.DeletesCascade) text += " ON DELETE CASCADE";
    return text;
}

// Comments end with their line.
std::string Remark(std::string text) {
    if (text.empty()) return text;
    for (char& each : text)
        if (static_cast<unsigned char>(each) < ' ') each = ' ';
    return " -- " + text;
}

std::string ColumnLine(const Table& table, const Column& column, const Concessions& concessions, sqlite3* database,
                       ImportReport& report) {
    std::string line = Quoted(column.Name) + " " + TypeOf(table, column);
    const bool numbersItself = NumbersItself(table, column);
    if (column.Counts && !numbersItself)
        report.Losses.push_back({"column", table.Name + "." + column.Name,
                                 "it is not the table's key: new records are not numbered any more", ""});
    if (IsRequired(table, column, concessions) && !numbersItself) line += " NOT NULL";
    if (!column.Rule.empty())
        report.Losses.push_back({"rule", table.Name + "." + column.Name, "rules of columns stay behind", column.Rule});
    std::string why;
    std::string value = DefaultOf(column, why);
    // The engine must take it as one value.
    if (!value.empty()) {
        sqlite3_stmt* statement = nullptr;
        const std::string question = "SELECT " + value;
        if (sqlite3_prepare_v2(database, question.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
            why = "the embedded engine does not take it";
            value.clear();
        }
        sqlite3_finalize(statement);
    }
    if (!why.empty())
        report.Losses.push_back({"default", table.Name + "." + column.Name, why, column.Default});
    else if (!value.empty())
        line += " DEFAULT (" + value + ")";
    else if (column.Type == ColumnType::Boolean)
        line += " DEFAULT 0";
    return line;
}

}  // namespace schema_detail

using namespace schema_detail;

std::string Quoted(const std::string& name) {
    std::string text = "\"";
    for (const char each : name) text += each == '"' ? std::string("\"\"") : std::string(1, each);
    return text + "\"";
}

std::string QuotedText(std::string_view content) {
    std::string text = "'";
    for (const char each : content) text += each == '\'' ? std::string("''") : std::string(1, each);
    return text + "'";
}

bool IsUnique(const Table& table, const Index& index, const Concessions& concessions) {
    return index.Primary || (index.Unique && concessions.Plain.count(table.Name + "." + index.Name) == 0);
}

bool IsRequired(const Table& table, const Column& column, const Concessions& concessions) {
    if (concessions.Optional.count(table.Name + "." + column.Name) > 0) return false;
    // A yes or no is never empty.
    if (column.Required || column.Type == ColumnType::Boolean) return true;
    const Index* key = KeyOf(table);
    return key && std::any_of(key->Columns.begin(), key->Columns.end(),
                              [&](const IndexColumn& each) { return &table.Columns[each.Column] == &column; });
}

std::string TableDefinition(const File& file, const Table& table, const Concessions& concessions, sqlite3* database,
                            ImportReport& report) {
    // Each line with what is remarked at its end.
    std::vector<std::pair<std::string, std::string>> lines;
    for (const Column& column : table.Columns)
        lines.emplace_back(ColumnLine(table, column, concessions, database, report), Remark(column.Description));
    const Index* key = KeyOf(table);
    const bool numbersItself =
        key && key->Columns.size() == 1 && NumbersItself(table, table.Columns[key->Columns[0].Column]);
    if (key && !numbersItself) {
        std::vector<std::string> names;
        for (const IndexColumn& each : key->Columns) names.push_back(table.Columns[each.Column].Name);
        lines.emplace_back("PRIMARY KEY " + NamesOf(names), "");
    }
    for (const Relation& relation : file.Relations()) {
        if (!SameText(relation.Table, table.Name)) continue;
        const std::string why = Hindrance(file, relation, table, concessions);
        if (why.empty()) {
            lines.emplace_back(RelationClause(relation), "");
            ++report.Relations;
        } else {
            report.Losses.push_back({"relation", relation.Name, why, ""});
        }
    }
    if (!table.Rule.empty()) report.Losses.push_back({"rule", table.Name, "rules of tables stay behind", table.Rule});
    std::string text = "CREATE TABLE " + Quoted(table.Name) + " (" + Remark(table.Description) + "\n";
    for (size_t i = 0; i < lines.size(); ++i)
        text += "    " + lines[i].first + (i + 1 < lines.size() ? "," : "") + lines[i].second + "\n";
    return text + ")";
}

std::string IndexDefinition(const Table& table, const Index& index, const Concessions& concessions,
                            std::set<std::string>& taken) {
    // Names of indexes are the whole database's there, and were each table's own.
    std::string name = index.Name;
    for (int number = 1; name.empty() || !taken.insert(Folded(name)).second; ++number)
        name = table.Name + "_" + index.Name + (number > 1 ? std::to_string(number) : "");
    std::string columns;
    for (const IndexColumn& each : index.Columns)
        columns +=
            (columns.empty() ? "" : ", ") + Quoted(table.Columns[each.Column].Name) + (each.Descending ? " DESC" : "");
    return std::string(IsUnique(table, index, concessions) ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") + Quoted(name) +
           " ON " + Quoted(table.Name) + " (" + columns + ")";
}

std::string DefaultOf(const Column& column, std::string& why) {
    // What was typed may begin with an equal sign, as in a calculation.
    std::string text = column.Default;
    text.erase(0, text.find_first_not_of("= \t\r\n"));
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    if (text.empty() || SameText(text, "Null")) return {};
    if (SameText(text, "GenUniqueID()")) {
        why = "numbers by chance are not made";
        return {};
    }
    for (const char* word : {"Yes", "True", "On"})
        if (SameText(text, word)) return "1";
    for (const char* word : {"No", "False", "Off"})
        if (SameText(text, word)) return "0";
    const bool isText = column.Type == ColumnType::Text || column.Type == ColumnType::Memo;
    const bool quoted = text.size() >= 2 && (text[0] == '"' || text[0] == '\'') && text.back() == text[0];
    if (quoted) {
        std::string content;
        for (size_t i = 1; i + 1 < text.size(); ++i) {
            content += text[i];
            if (text[i] != text[0]) continue;
            if (i + 2 >= text.size() || text[i + 1] != text[0]) {
                why = "it is calculated";
                return {};
            }
            ++i;
        }
        return QuotedText(content);
    }
    if (text.find_first_not_of("0123456789.-") == std::string::npos)
        return isText ? QuotedText(text) : column.Type == ColumnType::Boolean && text == "-1" ? "1" : text;
    const EngineDialect dialect = SqliteDialect();
    if (SameText(text, "Date()")) return dialect.Today;
    if (SameText(text, "Now()")) return dialect.Now;
    if (SameText(text, "Time()")) return dialect.TimeNow;
    if (text[0] == '#') {
        try {
            return EmbeddedStatement(text);
        } catch (const Exception& error) {
            why = AnsiToUtf8(error.Message());
            return {};
        }
    }
    // A single word is a text that was typed without quotes.
    if (isText && text.find_first_of("()[]&+*/\"'!") == std::string::npos) return QuotedText(text);
    why = "it is calculated";
    return {};
}

}  // namespace vyn::legacy
