#include "programs/vyn/script_database.h"

#include <unistd.h>

#include "platform/access/ado.h"
#include "platform/access/sql_tokens.h"
#include "platform/streams/stream.h"
#include "platform/system/application.h"
#include "platform/system/files.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

AnsiString UserDataFolder() {
    const AnsiString folder = AppDataFolder();
    if (!ForceDirectories(folder)) throw EFCreateError("Cannot create folder " + folder);
    return IncludeTrailingPathDelimiter(folder);
}

std::string DemoFolder() {
    const AnsiString program = ExtractFilePath(Application()->ExeName());
    for (const char* place : {"../samples/trading", "../share/vyn/samples/trading"})
        if (FileExists(program + place + "/application.json")) return AnsiToUtf8(ExpandFileName(program + place));
    throw Exception("The sample application was not found beside the program");
}

namespace fill_detail {

constexpr char kEmbedded[] = "SQLite";
constexpr char kServer[] = "PostgreSQL";
// Rows that go in one statement.
constexpr int kRowsAtOnce = 200;

// The statements of a script, each as its tokens without comments.
using Statement = std::vector<SqlToken>;
std::vector<Statement> StatementsOf(std::string_view script) {
    std::vector<Statement> statements(1);
    for (const SqlToken& token : TokenizeSql(script)) {
        if (token.Kind == SqlTokenKind::Comment) continue;
        if (token.Text == ";")
            statements.emplace_back();
        else if (token.Kind != SqlTokenKind::Blank || !statements.back().empty())
            statements.back().push_back(token);
    }
    return statements;
}

// The words of a statement that are no blanks.
std::vector<SqlToken> WordsOf(const Statement& statement) {
    std::vector<SqlToken> words;
    for (const SqlToken& token : statement)
        if (token.Kind != SqlTokenKind::Blank) words.push_back(token);
    return words;
}

bool Makes(const std::vector<SqlToken>& words, const char* what) {
    return words.size() > 2 && IsKeyword(words[0], "CREATE") && IsKeyword(words[1], what);
}

// The server's words for the types of the embedded engine.
AnsiString ForServer(const Statement& statement) {
    AnsiString text;
    const std::vector<SqlToken> words = WordsOf(statement);
    for (size_t i = 0; i < words.size(); ++i) {
        const auto follows = [&](size_t at, const char* word) {
            return i + at < words.size() && IsKeyword(words[i + at], word);
        };
        if (follows(0, "INTEGER") && follows(1, "PRIMARY") && follows(2, "KEY") && follows(3, "AUTOINCREMENT")) {
            text += "SERIAL PRIMARY KEY ";
            i += 3;
        } else if (follows(0, "CURRENCY")) {
            text += "NUMERIC(18, 4) ";
        } else if (follows(0, "MEMO") && follows(1, "TEXT")) {
            text += "TEXT ";
            ++i;
        } else {
            text += AnsiString(words[i].Text) + " ";
        }
    }
    return text;
}

AnsiString Literal(const TField& field) {
    if (field.IsNull()) return "NULL";
    switch (field.DataType()) {
        case ftBoolean:
            return field.AsBoolean() ? "TRUE" : "FALSE";
        case ftCurrency:
        case ftBCD:
            return CurrToStr(field.AsCurrency(), InvariantFormatSettings());
        case ftFloat:
            return FloatToStr(field.AsFloat(), InvariantFormatSettings());
        case ftDate:
        case ftDateTime:
            return "'" + FormatDateTime("yyyy-mm-dd hh:nn:ss", field.AsDateTime(), InvariantFormatSettings()) + "'";
        default:
            break;
    }
    if (ColumnKindOf(field.DataType()) == ColumnKind::Integer) return field.AsString();
    AnsiString text = "'";
    for (const char each : field.AsString()) text += each == '\'' ? AnsiString("''") : AnsiString(1, each);
    return text + "'";
}

void CopyRows(TADOConnection& from, TADOConnection& to, const AnsiString& table) {
    TADOTable rows(nullptr);
    rows.SetConnection(&from);
    rows.SetTableName(table);
    AnsiString values;
    int count = 0;
    const auto flush = [&] {
        if (count > 0) to.Execute("INSERT INTO " + table + " VALUES " + values);
        values.clear();
        count = 0;
    };
    for (rows.Open(); !rows.Eof(); rows.Next()) {
        AnsiString row;
        for (int i = 0; i < rows.FieldCount(); ++i) row += (i > 0 ? ", " : "") + Literal(*rows.Fields(i));
        values += (count > 0 ? ", (" : "(") + row + ")";
        if (++count == kRowsAtOnce) flush();
    }
    flush();
    // The next record's number comes behind those that are there.
    const TField* first = rows.FieldCount() > 0 ? rows.Fields(0) : nullptr;
    if (first && first->DataType() == ftAutoInc)
        to.Execute("SELECT setval(pg_get_serial_sequence('" + table + "', '" + first->FieldName() + "'), (SELECT max(" +
                   first->FieldName() + ") FROM " + table + "))");
}

AnsiString ScriptText(const AnsiString& scriptFile) {
    TMemoryStream script;
    script.LoadFromFile(scriptFile);
    return Utf8ToAnsi(script.Bytes());
}

// The columns that a table's statement defines, each as its tokens; rules of the table among them.
std::vector<Statement> ColumnsOf(const Statement& statement) {
    std::vector<Statement> columns;
    int depth = 0;
    for (const SqlToken& word : WordsOf(statement)) {
        if (word.Text == ")") --depth;
        if (depth == 1 && word.Text == ",")
            columns.emplace_back();
        else if (depth > 0)
            columns.back().push_back(word);
        if (word.Text == "(" && depth++ == 0) columns.emplace_back();
    }
    return columns;
}

bool IsTableRule(const Statement& column) {
    for (const char* word : {"PRIMARY", "FOREIGN", "UNIQUE", "CHECK", "CONSTRAINT"})
        if (IsKeyword(column.front(), word)) return true;
    return false;
}

// Tables that an earlier script made get the columns that it has got since.
void AddColumns(TADOConnection& target, const std::vector<Statement>& statements, bool onServer) {
    TStringList there;
    target.GetTableNames(there);
    for (const Statement& statement : statements) {
        const auto words = WordsOf(statement);
        if (!Makes(words, "TABLE") || there.IndexOf(NameOf(words[2])) < 0) continue;
        TADOTable table(nullptr);
        table.SetConnection(&target);
        table.SetTableName(NameOf(words[2]));
        table.Open();
        std::vector<const Statement*> missing;
        const std::vector<Statement> columns = ColumnsOf(statement);
        for (const Statement& column : columns)
            if (!column.empty() && !IsTableRule(column) && !table.FindField(NameOf(column.front())))
                missing.push_back(&column);
        table.Close();
        for (const Statement* column : missing) {
            AnsiString text;
            for (const SqlToken& word : *column) text += AnsiString(word.Text) + " ";
            target.Execute("ALTER TABLE " + NameOf(words[2]) + " ADD COLUMN " + (onServer ? ForServer(*column) : text));
        }
    }
}

}  // namespace fill_detail

AnsiString DatabaseFromScript(const AnsiString& scriptFile, const AnsiString& name) {
    const AnsiString file = UserDataFolder() + name + ".db";
    const AnsiString script = fill_detail::ScriptText(scriptFile);
    if (FileExists(file)) {
        try {
            TADOConnection connection(nullptr);
            connection.SetConnectionString("Provider=SQLite;Data Source=" + file);
            fill_detail::AddColumns(connection, fill_detail::StatementsOf(script), false);
        } catch (const EDatabaseError&) {
            // It may be another user's, or in use: the screens that need a column that it lacks say so.
        }
        return file;
    }
    // Made under another name, so that an interruption leaves no half of a database.
    const AnsiString unfinished = file + ".new-" + IntToStr(::getpid());
    try {
        TADOConnection connection(nullptr);
        connection.SetConnectionString("Provider=SQLite;Data Source=" + unfinished);
        connection.Execute(script);
        // One file, without a log beside it.
        connection.Execute("PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode = DELETE");
        connection.Close();
    } catch (...) {
        DeleteFile(unfinished);
        throw;
    }
    if (!RenameFile(unfinished, file)) {
        DeleteFile(unfinished);
        throw EFCreateError("Cannot create file " + file);
    }
    return file;
}

void FillDatabase(const AnsiString& connectionString, const AnsiString& scriptFile) {
    using namespace fill_detail;
    const AnsiString text = ScriptText(scriptFile);
    const std::vector<Statement> statements = StatementsOf(text);
    std::vector<AnsiString> tables;
    for (const Statement& statement : statements)
        if (const auto words = WordsOf(statement); Makes(words, "TABLE")) tables.push_back(NameOf(words[2]));
    TADOConnection target(nullptr);
    target.SetConnectionString(connectionString);
    target.Open();
    const AnsiString provider = ConnectionString(connectionString).Value("Provider", kEmbedded);
    TStringList there;
    target.GetTableNames(there);
    if (tables.empty() || there.IndexOf(tables[0]) >= 0) {
        if (SameText(provider, kEmbedded) || SameText(provider, kServer))
            AddColumns(target, statements, SameText(provider, kServer));
        return;
    }
    if (SameText(provider, kEmbedded)) {
        target.Execute(text);
        return;
    }
    if (!SameText(provider, kServer))
        throw Exception("The sample's tables are made in SQLite and in PostgreSQL; in " + provider +
                        " they have to be there");
    TADOConnection source(nullptr);
    source.SetConnectionString("Provider=SQLite;Data Source=:memory:");
    source.Execute(text);
    target.BeginTrans();
    try {
        for (const Statement& statement : statements) {
            const auto words = WordsOf(statement);
            if (Makes(words, "TABLE") || Makes(words, "INDEX")) target.Execute(ForServer(statement));
        }
        for (const AnsiString& table : tables) CopyRows(source, target, table);
        target.CommitTrans();
    } catch (...) {
        target.RollbackTrans();
        throw;
    }
}

}  // namespace vyn
