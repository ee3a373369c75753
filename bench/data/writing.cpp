// 100,000 rows put in through a dataset, in a transaction, beside the same prepared statement run by hand.
#include <benchmark/benchmark.h>
#include <libpq-fe.h>
#include <sqlite3.h>

#include <string>

#include "data/data.h"
#include "platform/access/ado.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

namespace {

using namespace vyn;
using namespace bench_data;

constexpr char kMade[] = "CREATE TABLE typed (id INTEGER PRIMARY KEY, name VARCHAR(30), price FLOAT)";
constexpr char kGone[] = "DROP TABLE IF EXISTS typed";

void ByHand(const std::string& file) {
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database, kGone, nullptr, nullptr, nullptr);
    sqlite3_exec(database, kMade, nullptr, nullptr, nullptr);
    sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, "INSERT INTO typed (id, name, price) VALUES (?, ?, ?) RETURNING id, name, price", -1,
                       &statement, nullptr);
    for (int64_t i = 1; i <= kInserted; ++i) {
        const std::string name = "name " + std::to_string(i);
        sqlite3_bind_int64(statement, 1, i);
        sqlite3_bind_text(statement, 2, name.c_str(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
        sqlite3_bind_double(statement, 3, static_cast<double>(i) / 7);
        while (sqlite3_step(statement) == SQLITE_ROW) {
        }
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

void ByHandOnServer() {
    PGconn* connection = PQconnectdb(ServerWords().c_str());
    for (const char* sql : {kGone, kMade, "BEGIN"}) PQclear(PQexec(connection, sql));
    PQclear(PQprepare(connection, "put",
                      "INSERT INTO typed (id, name, price) VALUES ($1, $2, $3) RETURNING id, name, price", 3, nullptr));
    for (int64_t i = 1; i <= kInserted; ++i) {
        const std::string id = std::to_string(i), name = "name " + id,
                          price = std::to_string(static_cast<double>(i) / 7);
        const char* values[] = {id.c_str(), name.c_str(), price.c_str()};
        PQclear(PQexecPrepared(connection, "put", 3, values, nullptr, nullptr, 0));
    }
    PQclear(PQexec(connection, "COMMIT"));
    PQfinish(connection);
}

void Typed(const AnsiString& connectionString) {
    RegisterSqliteProvider();
    RegisterPostgresqlProvider();
    TADOConnection connection(nullptr);
    connection.SetConnectionString(connectionString);
    connection.Execute(kGone);
    connection.Execute(kMade);
    TADOTable table(nullptr);
    table.SetConnection(&connection);
    table.SetTableName("typed");
    table.Open();
    TField* const id = table.FieldByName("id");
    TField* const name = table.FieldByName("name");
    TField* const price = table.FieldByName("price");
    connection.BeginTrans();
    for (int64_t i = 1; i <= kInserted; ++i) {
        table.Append();
        id->SetAsInteger(i);
        name->SetAsString("name " + std::to_string(i));
        price->SetAsFloat(static_cast<double>(i) / 7);
        table.Post();
    }
    connection.CommitTrans();
}

void SqliteByHand(benchmark::State& state) {
    for (auto _ : state) ByHand(SqliteFile());
    state.SetItemsProcessed(state.iterations() * kInserted);
}
BENCHMARK(SqliteByHand)->Name("sqlite_insert/limit_by_hand")->Unit(benchmark::kMillisecond)->UseRealTime();

void SqliteTyped(benchmark::State& state) {
    for (auto _ : state) Typed("Provider=SQLite;Data Source=" + SqliteFile());
    state.SetItemsProcessed(state.iterations() * kInserted);
}
BENCHMARK(SqliteTyped)->Name("sqlite_insert/ours")->Unit(benchmark::kMillisecond)->UseRealTime();

void ServerByHand(benchmark::State& state) {
    for (auto _ : state) ByHandOnServer();
    state.SetItemsProcessed(state.iterations() * kInserted);
}
BENCHMARK(ServerByHand)->Name("postgresql_insert/limit_by_hand")->Unit(benchmark::kMillisecond)->UseRealTime();

void ServerTyped(benchmark::State& state) {
    for (auto _ : state) Typed(ServerConnectionString());
    state.SetItemsProcessed(state.iterations() * kInserted);
}
BENCHMARK(ServerTyped)->Name("postgresql_insert/ours")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
