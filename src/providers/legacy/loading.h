#pragma once

#include "providers/legacy/schema.h"
#include "providers/sqlite/connection.h"

namespace vyn::legacy {

// Thrown when a definition does not hold for the rows that are there; the concession has been noted.
struct DefinitionGivesWay {};

// Runs statements (UTF-8) on the database being made.
void Run(sqlite3* database, const std::string& sql, const char* what);
// The engine's reason of the last failure.
std::string ReasonOf(sqlite3* database);

// Puts a table's rows into the table that was made for it, as the embedded engine's provider writes values. Tells how
// many rows went in, and which values could not.
class RowLoader {
  public:
    RowLoader(sqlite3* database, const Table& table, Concessions& concessions, ImportReport& report);
    ~RowLoader();
    void Put(const Row& row);
    int64_t Rows() const { return rows_; }
    // Reports what was counted.
    void Finish();

  private:
    void Bind(int column, const Value& value);
    void BindDecimal(int column, const Value& value);
    void BindDate(int column, const Value& value);

    struct Counts {
        int64_t Dates = 0, Amounts = 0, Numbers = 0;
    };
    sqlite3* database_;
    const Table& table_;
    Concessions& concessions_;
    ImportReport& report_;
    sqlite3_stmt* statement_ = nullptr;
    std::vector<bool> required_;
    std::vector<Counts> counts_;
    int64_t rows_ = 0;
};

}  // namespace vyn::legacy
