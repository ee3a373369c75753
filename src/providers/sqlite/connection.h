#pragma once

#include <sqlite3.h>

#include "platform/access/provider.h"

namespace vyn {

// The embedded engine: "Provider=SQLite;Data Source=FILE" (":memory:" or no file at all: a database in memory that goes
// with the connection; Mode=ReadOnly: nothing is written). A file that is not there is made, its folder is not.
// Write-ahead log, full synchronisation, foreign keys on, and a wait of some seconds for other writers.
void RegisterSqliteProvider();

namespace sqlite_provider {

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, CloseDatabase>;

// Raises EDatabaseError with the engine's reason.
[[noreturn]] void Raise(sqlite3* database, const AnsiString& what);

std::unique_ptr<ProviderStatement> PrepareStatement(sqlite3* database, const AnsiString& sql);
// The field type of a declared column type; ftUnknown when it says nothing.
TFieldType TypeOfDeclaration(const char* declared, int& size);

}  // namespace sqlite_provider

}  // namespace vyn
