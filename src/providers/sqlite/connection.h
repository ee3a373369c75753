#pragma once

#include <sqlite3.h>

#include <chrono>

#include "platform/access/provider.h"

namespace vyn {

// The embedded engine: "Provider=SQLite;Data Source=FILE" (":memory:" or no file at all: a database in memory that goes
// with the connection; Mode=ReadOnly: nothing is written). A file that is not there is made, its folder is not.
// Write-ahead log, full synchronisation, foreign keys on, and a wait of some seconds for other writers (Busy Timeout:
// milliseconds).
void RegisterSqliteProvider();

namespace sqlite_provider {

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;

// Raises EDatabaseError with what happened and the engine's reason.
[[noreturn]] void Raise(sqlite3* database, const AnsiString& what);

// An open database, and how long what it is asked for may take.
class Session {
  public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    void Take(sqlite3* database);
    sqlite3* Database() const { return database_.get(); }
    void SetCommandTimeout(int seconds) { seconds_ = seconds; }
    // Before something is asked for: time runs from here.
    void Start();
    // Raises what went wrong since then; says so when a transaction was taken back.
    [[noreturn]] void Raise(const AnsiString& what);

  private:
    static int GoOn(void* session);
    DatabaseHandle database_;
    std::chrono::steady_clock::time_point end_;
    int seconds_ = 0;
    bool inTransaction_ = false;
};

const EngineDialect& Dialect();

// Raises for a text of several statements.
std::unique_ptr<ProviderStatement> PrepareStatement(Session& session, const AnsiString& sql);
// The field type of a declared column type; ftUnknown when it says nothing.
TFieldType TypeOfDeclaration(const char* declared, int& size);

// What a table's own description says of a column.
struct ColumnDescription {
    std::string Name;  // UTF-8
    bool InKey = false;
    bool Required = false;
    bool Automatic = false;  // a default, or the row's own number
    bool Counts = false;     // AUTOINCREMENT
    bool Computed = false;
};
std::vector<ColumnDescription> DescribeTable(sqlite3* database, const std::string& table);
std::vector<AnsiString> ListTables(sqlite3* database, SystemTables system);
bool IsTable(sqlite3* database, const AnsiString& name);
std::vector<AnsiString> ListKeyColumns(sqlite3* database, const AnsiString& table);
// The greatest row number there is; -1 for tables without.
int64_t LastRowNumber(sqlite3* database, const AnsiString& table);
std::vector<AnsiString> ListIndexColumns(sqlite3* database, const AnsiString& table, const AnsiString& index);
TextIndex FindTextIndex(sqlite3* database, const AnsiString& table, const AnsiString& column);

}  // namespace sqlite_provider

}  // namespace vyn
