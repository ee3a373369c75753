// A grid over tables of 10 thousand, 1 million and 10 million records: its first screen, and what End, Home, the page
// keys, the scroll bar and a search cost, beside the engine's own query for the rows that are then shown. A screen is
// shown when the text of each of its cells is there.
#include <benchmark/benchmark.h>

#include <cstring>
#include <map>
#include <random>
#include <set>

#include "engines.h"
#include "platform/access/ado.h"
#include "platform/controls/db_grids.h"
#include "platform/controls/shortcuts.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

namespace {

using namespace vyn;
using namespace engines;

constexpr char kColumns[] =
    "(id INTEGER PRIMARY KEY, client INTEGER, name VARCHAR(30), city VARCHAR(20), price FLOAT, weight FLOAT, day DATE, "
    "note VARCHAR(40))";
constexpr char kFields[] = "id, client, name, city, price, weight, day, note";
constexpr int kFieldCount = 8;
constexpr int64_t kSmall = 10000, kMiddle = 1000000, kLarge = 10000000;

std::string TableOf(int64_t rows) { return "sales" + std::to_string(rows); }

// Makes a table when it is first asked for.
void NeedTable(Engine engine, int64_t rows) {
    static std::set<std::pair<Engine, int64_t>> made;
    if (!made.insert({engine, rows}).second) return;
    const std::string table = TableOf(rows), count = std::to_string(rows);
    if (engine == Engine::Embedded) {
        RunEmbedded("BEGIN; CREATE TABLE " + table + kColumns +
                    "; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + count +
                    ") INSERT INTO " + table +
                    " SELECT i, i % 5000, 'client ' || i, 'city ' || (i % 300), (i % 100000) / 100.0, i / 7.0, "
                    "date('2001-01-01', (i % 7000) || ' days'), CASE WHEN i % 3 THEN 'note ' || i END FROM n; "
                    "CREATE INDEX name" +
                    count + " ON " + table + " (name); COMMIT;");
        return;
    }
    RunServer("CREATE UNLOGGED TABLE " + table + kColumns);
    RunServer("INSERT INTO " + table +
              " SELECT i, i % 5000, 'client ' || i, 'city ' || (i % 300), (i % 100000) / 100.0, i / 7.0, DATE "
              "'2001-01-01' + (i % 7000), CASE WHEN i % 3 <> 0 THEN 'note ' || i END FROM generate_series(1, " +
              count + ") AS i");
    RunServer("CREATE INDEX ON " + table + " (name)");
    RunServer("VACUUM ANALYZE " + table);
}

// What the engine itself takes to give rows, each value touched as text.
int64_t AskEmbedded(const std::string& sql, const char* text = nullptr, int64_t number = 0) {
    static std::map<std::string, sqlite3_stmt*> prepared;
    sqlite3_stmt*& statement = prepared[sql];
    if (!statement && sqlite3_prepare_v2(Embedded(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        Fail(sqlite3_errmsg(Embedded()));
    if (text)
        sqlite3_bind_text(statement, 1, text, -1, SQLITE_STATIC);
    else if (number)
        sqlite3_bind_int64(statement, 1, number);
    int64_t sum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW)
        for (int i = 0; i < kFieldCount; ++i) {
            const unsigned char* value = sqlite3_column_text(statement, i);
            sum += value ? value[0] : 0;
        }
    sqlite3_reset(statement);
    return sum;
}

int64_t AskServer(const std::string& sql, const char* value = nullptr) {
    static std::map<std::string, std::string> prepared;
    std::string& name = prepared[sql];
    if (name.empty()) {
        name = "q" + std::to_string(prepared.size());
        PQclear(PQprepare(Server(), name.c_str(), sql.c_str(), value ? 1 : 0, nullptr));
    }
    PGresult* result = PQexecPrepared(Server(), name.c_str(), value ? 1 : 0, &value, nullptr, nullptr, 0);
    if (PQresultStatus(result) != PGRES_TUPLES_OK) Fail(PQerrorMessage(Server()));
    int64_t sum = 0;
    for (int row = 0; row < PQntuples(result); ++row)
        for (int i = 0; i < kFieldCount; ++i) sum += PQgetvalue(result, row, i)[0];
    PQclear(result);
    return sum;
}

int64_t Ask(Engine engine, const std::string& sql, const std::string& value = {}) {
    std::string text = sql;
    const size_t mark = text.find("$1");
    const bool isNumber = !value.empty() && value.find_first_not_of("0123456789") == std::string::npos;
    if (engine == Engine::Server) return AskServer(text, value.empty() ? nullptr : value.c_str());
    if (mark != std::string::npos) text.replace(mark, 2, "?");
    return AskEmbedded(text, value.empty() || isNumber ? nullptr : value.c_str(), isNumber ? std::stoll(value) : 0);
}

// A grid on a table.
struct Screen {
    TADOConnection connection{nullptr};
    TADOQuery query{nullptr};
    TDataSource source{nullptr};
    TDBGrid grid{nullptr};
    std::mt19937 random{5};

    Screen(Engine engine, int64_t rows) {
        RegisterSqliteProvider();
        RegisterPostgresqlProvider();
        NeedTable(engine, rows);
        if (engine == Engine::Embedded) {
            connection.SetConnectionString("Provider=SQLite;Data Source=" +
                                           std::string(sqlite3_db_filename(Embedded(), "main")));
        } else {
            connection.SetConnectionString(Cluster().ConnectionString());
        }
        connection.Open();
        query.SetConnection(&connection);
        query.SQL()->SetText("SELECT " + std::string(kFields) + " FROM " + TableOf(rows) + " ORDER BY id");
        source.SetDataSet(&query);
        grid.SetBounds(0, 0, 1200, 600);
        grid.SetDataSource(&source);
    }
    // As the grid's peer does it.
    size_t Show() {
        size_t letters = 0;
        const int64_t top = grid.TopRecord();
        const int64_t end = std::min(query.Reach(top, grid.VisibleRows()), top + grid.VisibleRows());
        std::vector<const TField*> fields;
        for (const TColumn* column : grid.ShownColumns()) fields.push_back(column->Field());
        for (int64_t record = top; record < end; ++record)
            for (const TField* field : fields) letters += field->DisplayTextOf(record).size();
        return letters;
    }
    std::string Rows() const { return std::to_string(grid.VisibleRows()); }
};

Screen& ScreenOf(Engine engine, int64_t rows) {
    static std::map<std::pair<Engine, int64_t>, std::unique_ptr<Screen>> screens;
    std::unique_ptr<Screen>& screen = screens[{engine, rows}];
    if (!screen) {
        screen = std::make_unique<Screen>(engine, rows);
        screen->query.Open();
    }
    return *screen;
}

std::string Select(int64_t rows, const std::string& rest) {
    return "SELECT " + std::string(kFields) + " FROM " + TableOf(rows) + rest;
}

void Open(benchmark::State& state, Engine engine, int64_t rows) {
    Screen screen(engine, rows);
    for (auto _ : state) {
        screen.query.Open();
        benchmark::DoNotOptimize(screen.Show());
        state.PauseTiming();
        state.counters["kept_kilobytes"] = static_cast<double>(screen.query.Rows().MemoryUsed()) / 1024;
        screen.query.Close();
        state.ResumeTiming();
    }
}

void OpenLimit(benchmark::State& state, Engine engine, int64_t rows) {
    const std::string sql = Select(rows, " ORDER BY id LIMIT " + ScreenOf(engine, rows).Rows());
    for (auto _ : state) benchmark::DoNotOptimize(Ask(engine, sql));
}

void End(benchmark::State& state, Engine engine, int64_t rows) {
    Screen& screen = ScreenOf(engine, rows);
    for (auto _ : state) {
        state.PauseTiming();
        screen.query.First();
        screen.Show();
        state.ResumeTiming();
        screen.query.Last();
        benchmark::DoNotOptimize(screen.Show());
    }
}

void EndLimit(benchmark::State& state, Engine engine, int64_t rows) {
    const std::string sql = Select(rows, " ORDER BY id DESC LIMIT " + ScreenOf(engine, rows).Rows());
    for (auto _ : state) benchmark::DoNotOptimize(Ask(engine, sql));
}

void Home(benchmark::State& state, Engine engine, int64_t rows) {
    Screen& screen = ScreenOf(engine, rows);
    for (auto _ : state) {
        state.PauseTiming();
        screen.query.Last();
        screen.Show();
        state.ResumeTiming();
        screen.query.First();
        benchmark::DoNotOptimize(screen.Show());
    }
}

std::string FromKey(Engine engine, int64_t rows) {
    return Select(rows, " WHERE id >= $1 ORDER BY id LIMIT " + ScreenOf(engine, rows).Rows());
}

void PageDown(benchmark::State& state, Engine engine, int64_t rows) {
    Screen& screen = ScreenOf(engine, rows);
    screen.query.First();
    for (auto _ : state) {
        uint16_t key = VK_NEXT;
        screen.grid.KeyDown(key, {});
        benchmark::DoNotOptimize(screen.Show());
        if (screen.query.Eof()) screen.query.First();
    }
}

void Scroll(benchmark::State& state, Engine engine, int64_t rows) {
    Screen& screen = ScreenOf(engine, rows);
    for (auto _ : state) {
        screen.grid.ProcessScroll(static_cast<int64_t>(screen.random()) % rows);
        benchmark::DoNotOptimize(screen.Show());
    }
    screen.query.First();
}

void FromKeyLimit(benchmark::State& state, Engine engine, int64_t rows) {
    std::mt19937 random(5);
    const std::string sql = FromKey(engine, rows);
    for (auto _ : state) benchmark::DoNotOptimize(Ask(engine, sql, std::to_string(random() % rows + 1)));
}

void Locate(benchmark::State& state, Engine engine, int64_t rows) {
    Screen& screen = ScreenOf(engine, rows);
    for (auto _ : state)
        if (!screen.query.Locate("name", Variant("client " + std::to_string(screen.random() % rows + 1))))
            Fail("not found");
    screen.query.First();
}

void LocateLimit(benchmark::State& state, Engine engine, int64_t rows) {
    std::mt19937 random(5);
    const std::string one = Select(rows, " WHERE name = $1 ORDER BY id LIMIT 1");
    const std::string screenful = FromKey(engine, rows);
    for (auto _ : state) {
        const std::string number = std::to_string(random() % rows + 1);
        benchmark::DoNotOptimize(Ask(engine, one, "client " + number));
        // What stands around it is shown, too.
        benchmark::DoNotOptimize(Ask(engine, screenful, number));
    }
}

const int kRegistered = [] {
    struct Subject {
        const char* topic;
        void (*ours)(benchmark::State&, Engine, int64_t);
        void (*limit)(benchmark::State&, Engine, int64_t);
    };
    for (const auto& [engine, name] : {std::pair{Engine::Embedded, "sqlite"}, {Engine::Server, "postgresql"}})
        for (const Subject& each : {Subject{"open", Open, OpenLimit},
                                    {"end", End, EndLimit},
                                    {"home", Home, OpenLimit},
                                    {"page", PageDown, FromKeyLimit},
                                    {"scroll", Scroll, FromKeyLimit},
                                    {"locate", Locate, LocateLimit}})
            for (const int64_t rows : {kSmall, kMiddle, kLarge}) {
                const std::string topic = std::string(name) + "_" + each.topic;
                for (const auto& [subject, run] : {std::pair{"/ours/", each.ours}, {"/limit_engine/", each.limit}})
                    benchmark::RegisterBenchmark(
                        (topic + subject + std::to_string(rows)).c_str(),
                        [run = run, engine = engine, rows](benchmark::State& state) { run(state, engine, rows); })
                        ->Unit(benchmark::kMicrosecond)
                        ->UseRealTime();
            }
    return 0;
}();

}  // namespace
