// A dataset filled with 1,000,000 rows of 8 columns, and its first screen, beside a loop by hand that touches every
// column, and beside Qt's query.
#include <benchmark/benchmark.h>
#include <libpq-fe.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include "data/data.h"
#include "platform/access/ado.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

namespace {

using namespace vyn;
using namespace bench_data;

int64_t Sum(sqlite3_stmt* statement) {
    int64_t sum = sqlite3_column_int64(statement, 0) + sqlite3_column_int64(statement, 1);
    for (int column : {2, 3, 6, 7}) {
        const unsigned char* text = sqlite3_column_text(statement, column);
        sum += text ? text[0] + sqlite3_column_bytes(statement, column) : 0;
    }
    return sum + static_cast<int64_t>(sqlite3_column_double(statement, 4) + sqlite3_column_double(statement, 5));
}

int64_t RawSqlite(int64_t rows) {
    sqlite3* database = nullptr;
    sqlite3_open(SqliteFile().c_str(), &database);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, kQuery, -1, &statement, nullptr);
    int64_t sum = 0;
    for (; rows > 0 && sqlite3_step(statement) == SQLITE_ROW; --rows) sum += Sum(statement);
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return sum;
}

// The bytes that are kept: of all rows that are asked for, or of a window over them.
int64_t Ours(const AnsiString& connectionString, int64_t rows, TCursorType cursor) {
    RegisterSqliteProvider();
    RegisterPostgresqlProvider();
    TADOConnection connection(nullptr);
    connection.SetConnectionString(connectionString);
    TADOQuery query(nullptr);
    query.SetConnection(&connection);
    query.SetLockType(ltReadOnly);
    query.SetCursorType(cursor);
    query.SQL()->SetText(kQuery);
    query.Open();
    benchmark::DoNotOptimize(query.FetchTo(rows));
    return static_cast<int64_t>(query.Rows().MemoryUsed());
}

int64_t Qt(const char* driver, int64_t rows) {
    static int argc = 0;
    static QCoreApplication application(argc, nullptr);
    int64_t sum = 0;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QString::fromLatin1(driver), QStringLiteral("bench"));
        if (driver[1] == 'P') {
            ServerWords();
            database.setHostName(QString::fromStdString(ServerFolder()));
            database.setDatabaseName(QStringLiteral("postgres"));
            database.setUserName(QStringLiteral("vyn"));
        } else {
            database.setDatabaseName(QString::fromStdString(SqliteFile()));
        }
        if (!database.open()) return -1;
        QSqlQuery query(database);
        query.setForwardOnly(true);
        query.exec(QString::fromLatin1(kQuery));
        for (; rows > 0 && query.next(); --rows)
            for (int i = 0; i < 8; ++i) sum += query.value(i).isNull();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("bench"));
    return sum;
}

AnsiString SqliteString() { return "Provider=SQLite;Data Source=" + SqliteFile(); }

void SqliteFillLimit(benchmark::State& state) {
    SqliteFile();
    for (auto _ : state) benchmark::DoNotOptimize(RawSqlite(kRows));
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(SqliteFillLimit)->Name("sqlite_fill/limit_raw_loop")->Unit(benchmark::kMillisecond);

void SqliteFillOurs(benchmark::State& state) {
    SqliteFile();
    int64_t bytes = 0;
    for (auto _ : state) bytes = Ours(SqliteString(), kRows, ctStatic);
    state.SetItemsProcessed(state.iterations() * kRows);
    state.counters["bytes_a_row"] = static_cast<double>(bytes) / kRows;
}
BENCHMARK(SqliteFillOurs)->Name("sqlite_fill/ours")->Unit(benchmark::kMillisecond);

void SqliteFillQt(benchmark::State& state) {
    SqliteFile();
    for (auto _ : state)
        if (Qt("QSQLITE", kRows) < 0) state.SkipWithError("no driver");
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(SqliteFillQt)->Name("sqlite_fill/peer_qt_query")->Unit(benchmark::kMillisecond);

void SqliteScreenLimit(benchmark::State& state) {
    SqliteFile();
    for (auto _ : state) benchmark::DoNotOptimize(RawSqlite(kScreen));
}
BENCHMARK(SqliteScreenLimit)->Name("sqlite_screen/limit_raw_loop")->Unit(benchmark::kMicrosecond);

void SqliteScreenOurs(benchmark::State& state) {
    SqliteFile();
    for (auto _ : state) benchmark::DoNotOptimize(Ours(SqliteString(), kScreen, ctKeyset));
}
BENCHMARK(SqliteScreenOurs)->Name("sqlite_screen/ours")->Unit(benchmark::kMicrosecond);

int64_t RawPostgresql(int64_t rows) {
    PGconn* connection = PQconnectdb(ServerWords().c_str());
    PQsendQueryParams(connection, kQuery, 0, nullptr, nullptr, nullptr, nullptr, 1);
    PQsetSingleRowMode(connection);
    int64_t sum = 0;
    while (PGresult* result = PQgetResult(connection)) {
        if (PQresultStatus(result) == PGRES_SINGLE_TUPLE && rows-- > 0)
            for (int i = 0; i < 8; ++i) sum += PQgetlength(result, 0, i) > 0 ? PQgetvalue(result, 0, i)[0] : 0;
        PQclear(result);
    }
    PQfinish(connection);
    return sum;
}

void ServerFillLimit(benchmark::State& state) {
    ServerWords();
    for (auto _ : state) benchmark::DoNotOptimize(RawPostgresql(kRows));
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(ServerFillLimit)
    ->Name("postgresql_fill/limit_single_row_binary")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void ServerFillOurs(benchmark::State& state) {
    ServerWords();
    int64_t bytes = 0;
    for (auto _ : state) bytes = Ours(ServerConnectionString(), kRows, ctStatic);
    state.SetItemsProcessed(state.iterations() * kRows);
    state.counters["bytes_a_row"] = static_cast<double>(bytes) / kRows;
}
BENCHMARK(ServerFillOurs)->Name("postgresql_fill/ours")->Unit(benchmark::kMillisecond)->UseRealTime();

void ServerFillQt(benchmark::State& state) {
    ServerWords();
    for (auto _ : state)
        if (Qt("QPSQL", kRows) < 0) state.SkipWithError("no driver");
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(ServerFillQt)->Name("postgresql_fill/peer_qt_query")->Unit(benchmark::kMillisecond)->UseRealTime();

void ServerScreenOurs(benchmark::State& state) {
    ServerWords();
    for (auto _ : state) benchmark::DoNotOptimize(Ours(ServerConnectionString(), kScreen, ctKeyset));
}
BENCHMARK(ServerScreenOurs)->Name("postgresql_screen/ours")->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
