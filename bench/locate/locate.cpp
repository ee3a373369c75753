// What a user types is looked for in a table of 1 million records: by the beginning of a name, without regard to case
// and accents, and by a key. Beside it the engine's own query for one row by the beginning as it is spelled there, made
// anew each time (limit_once), and prepared before (limit_prepared). Each gives every column of the row as text.
// Counters: half of the searches, and all but one of twenty, take no longer than so many microseconds.
#include <benchmark/benchmark.h>
#include <libpq-fe.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <random>
#include <stdexcept>

#include "platform/access/ado.h"
#include "platform/text/folding.h"
#include "platform/text/windows1252.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"
#include "servers/postgresql_cluster.h"

namespace {

using namespace vyn;

constexpr int64_t kRows = 1000000;
constexpr char kFields[] = "id, client, name, code, price, weight, day, note";
constexpr int kFieldCount = 8;
constexpr char kTable[] =
    "(id INTEGER PRIMARY KEY, client INTEGER, name VARCHAR(60), code VARCHAR(30), price FLOAT, weight FLOAT, day DATE, "
    "note VARCHAR(40))";
constexpr char kLastCharacter[] = "\xF4\x8F\xBF\xBF";

[[noreturn]] void Fail(const std::string& message) { throw std::runtime_error(message); }

// Names as people have them, some with accents, one word or two.
std::string NameOf(int64_t number) {
    static const char* const kFirst[] = {"Gar", "Mar",  "Lo",  "Fer", "San", "Ro",  "Per", "Mu",
                                         "Al",  "Ji",   "Vi",  "So",  "Ca",  "Be",  "Nú",  "Or",
                                         "Ser", "Puig", "Bos", "Tor", "Val", "Àvi", "Es",  "Cor"};
    static const char* const kMiddle[] = {"cí", "ti", "pe", "nán", "che", "dri", "re",  "ño", "va", "mé", "la", "ler",
                                          "ba", "ni", "ne", "te",  "ra",  "de",  "que", "ri", "se", "ga", "ta", "do"};
    static const char* const kLast[] = {"a", "nez", "z", "dez", "guez", "s", "lla", "ro", "t", "l", "n", "ona", "és"};
    std::minstd_rand random(static_cast<uint32_t>(number) * 7919U + 17);
    random.discard(3);
    const auto word = [&] {
        std::string text = kFirst[random() % std::size(kFirst)];
        for (size_t syllables = random() % 3; syllables > 0; --syllables)
            text += kMiddle[random() % std::size(kMiddle)];
        return text + kLast[random() % std::size(kLast)];
    };
    const std::string surname = word();
    return surname + " " + word() + ", " + word();
}
std::string CodeOf(int64_t number) { return "client " + std::to_string(number); }

struct File {
    std::string name = "/tmp/vyn-bench-locate-" + std::to_string(getpid()) + ".db";
    ~File() {
        for (const char* tail : {"", "-wal", "-shm"}) std::filesystem::remove(name + tail);
    }
};

sqlite3* Embedded() {
    static File file;
    static sqlite3* database = [] {
        sqlite3* opened = nullptr;
        sqlite3_open(file.name.c_str(), &opened);
        const std::string begin =
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF; BEGIN; CREATE TABLE clients" + std::string(kTable);
        const char* const end =
            "CREATE INDEX by_name ON clients (name); CREATE INDEX by_code ON clients (code); COMMIT;";
        if (sqlite3_exec(opened, begin.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sqlite3_errmsg(opened));
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(opened,
                           "INSERT INTO clients VALUES (?1, ?1 % 5000, ?2, ?3, 1.5, ?1 / 7.0, '2001-03-09', 'note')",
                           -1, &insert, nullptr);
        for (int64_t i = 1; i <= kRows; ++i) {
            const std::string name = NameOf(i), code = CodeOf(i);
            sqlite3_bind_int64(insert, 1, i);
            sqlite3_bind_text(insert, 2, name.c_str(), -1, SQLITE_STATIC);
            sqlite3_bind_text(insert, 3, code.c_str(), -1, SQLITE_STATIC);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        if (sqlite3_exec(opened, end, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sqlite3_errmsg(opened));
        return opened;
    }();
    return database;
}

servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

PGconn* Server() {
    static PGconn* connection = [] {
        PGconn* made = PQconnectdb(
            ("host=" + Cluster().Host() + " dbname=" + Cluster().Database() + " user=" + Cluster().User()).c_str());
        const auto run = [&](const std::string& sql, ExecStatusType wanted = PGRES_COMMAND_OK) {
            PGresult* result = PQexec(made, sql.c_str());
            if (PQresultStatus(result) != wanted) Fail(PQerrorMessage(made));
            PQclear(result);
        };
        run("CREATE UNLOGGED TABLE clients" + std::string(kTable));
        run("COPY clients FROM STDIN", PGRES_COPY_IN);
        for (int64_t i = 1; i <= kRows; ++i) {
            const std::string line = std::to_string(i) + "\t" + std::to_string(i % 5000) + "\t" + NameOf(i) + "\t" +
                                     CodeOf(i) + "\t1.5\t0.5\t2001-03-09\tnote\n";
            PQputCopyData(made, line.data(), static_cast<int>(line.size()));
        }
        PQputCopyEnd(made, nullptr);
        while (PGresult* result = PQgetResult(made)) PQclear(result);
        run("CREATE INDEX ON clients (name)");
        run("CREATE INDEX ON clients (code)");
        run("VACUUM ANALYZE clients");
        return made;
    }();
    return connection;
}

enum class Engine { Embedded, Server };
enum class Kept { Once, Prepared };

int64_t AskEmbedded(const std::string& sql, Kept kept, const std::vector<std::string>& values) {
    static std::map<std::string, sqlite3_stmt*> prepared;
    sqlite3_stmt* fresh = nullptr;
    sqlite3_stmt*& statement = kept == Kept::Prepared ? prepared[sql] : fresh;
    if (!statement && sqlite3_prepare_v2(Embedded(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        Fail(sqlite3_errmsg(Embedded()));
    for (size_t i = 0; i < values.size(); ++i)
        sqlite3_bind_text(statement, static_cast<int>(i) + 1, values[i].data(), static_cast<int>(values[i].size()),
                          SQLITE_STATIC);
    int64_t rows = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        ++rows;
        for (int i = 0; i < kFieldCount; ++i) benchmark::DoNotOptimize(sqlite3_column_text(statement, i));
    }
    if (kept == Kept::Prepared)
        sqlite3_reset(statement);
    else
        sqlite3_finalize(statement);
    return rows;
}

int64_t AskServer(const std::string& sql, Kept kept, const std::vector<std::string>& values) {
    static std::map<std::string, std::string> prepared;
    std::vector<const char*> texts;
    for (const std::string& value : values) texts.push_back(value.c_str());
    const int count = static_cast<int>(texts.size());
    PGresult* result = nullptr;
    if (kept == Kept::Prepared) {
        std::string& name = prepared[sql];
        if (name.empty()) {
            name = "q" + std::to_string(prepared.size());
            PQclear(PQprepare(Server(), name.c_str(), sql.c_str(), count, nullptr));
        }
        result = PQexecPrepared(Server(), name.c_str(), count, texts.data(), nullptr, nullptr, 0);
    } else {
        result = PQexecParams(Server(), sql.c_str(), count, nullptr, texts.data(), nullptr, nullptr, 0);
    }
    if (PQresultStatus(result) != PGRES_TUPLES_OK) Fail(PQerrorMessage(Server()));
    const int64_t rows = PQntuples(result);
    for (int i = 0; rows > 0 && i < kFieldCount; ++i) benchmark::DoNotOptimize(PQgetvalue(result, 0, i));
    PQclear(result);
    return rows;
}

int64_t Ask(Engine engine, std::string sql, Kept kept, const std::vector<std::string>& values) {
    if (engine == Engine::Server) return AskServer(sql, kept, values);
    for (size_t mark; (mark = sql.find('$')) != std::string::npos;) sql.replace(mark, 2, "?");
    return AskEmbedded(sql, kept, values);
}

// A hidden search form's dataset.
struct Searched {
    TADOConnection connection{nullptr};
    TADOQuery query{nullptr};

    Searched(Engine engine, const std::string& order) {
        if (engine == Engine::Embedded) {
            RegisterSqliteProvider();
            connection.SetConnectionString("Provider=SQLite;Data Source=" +
                                           std::string(sqlite3_db_filename(Embedded(), "main")));
        } else {
            RegisterPostgresqlProvider();
            Server();
            connection.SetConnectionString(Cluster().ConnectionString());
        }
        connection.Open();
        query.SetConnection(&connection);
        query.SQL()->SetText("SELECT " + std::string(kFields) + " FROM clients ORDER BY " + order);
        query.Open();
        if (!query.IsPaged()) Fail("the table is not read in pages");
    }
};

TADOQuery& QueryOf(Engine engine, const std::string& order) {
    static std::map<std::pair<Engine, std::string>, std::unique_ptr<Searched>> searched;
    auto& entry = searched[{engine, order}];
    if (!entry) entry = std::make_unique<Searched>(engine, order);
    return entry->query;
}

// How it is typed, and how it stands there.
struct Typed {
    std::string utf8;
    AnsiString typed;
};

using Words = Typed (*)(std::mt19937&);

Typed BeginningOf(const std::string& utf8, size_t letters) {
    AnsiString text = Utf8ToAnsi(utf8);
    text.resize(std::min(letters, text.size()));
    return {AnsiToUtf8(text), AnsiLowerCase(FoldText(text))};
}
// The first letters of somebody's name, a few or many.
Typed SomeName(std::mt19937& random) {
    const int64_t number = static_cast<int64_t>(random() % kRows) + 1;
    return BeginningOf(NameOf(number), 1 + random() % 12);
}
Typed WholeName(std::mt19937& random) { return BeginningOf(NameOf(static_cast<int64_t>(random() % kRows) + 1), 60); }
Typed SomeCode(std::mt19937& random) {
    return BeginningOf(CodeOf(static_cast<int64_t>(random() % kRows) + 1), 7 + random() % 7);
}
Typed NoName(std::mt19937& random) {
    Typed name = SomeName(random);
    return {name.utf8 + "wq", name.typed + "wq"};
}

// Medians of single searches, which a mean hides. What is typed is made up beforehand.
template <class Make, class F>
void Measure(benchmark::State& state, Make make, F search) {
    std::mt19937 random(5);
    std::vector<double> times;
    for (auto _ : state) {
        const auto wanted = make(random);
        const auto begin = std::chrono::steady_clock::now();
        search(wanted);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(time.count());
        times.push_back(time.count() * 1e6);
    }
    std::sort(times.begin(), times.end());
    state.counters["half_us"] = times[times.size() / 2];
    state.counters["most_us"] = times[times.size() * 19 / 20];
}

void Ours(benchmark::State& state, Engine engine, const char* order, const char* field, Words words, bool there) {
    TADOQuery& query = QueryOf(engine, order);
    const TLocateOptions options{loCaseInsensitive, loPartialKey, loAccentInsensitive};
    Measure(state, words, [&](const Typed& wanted) {
        if (query.Locate(field, Variant(wanted.typed), options) != there) Fail("wrong answer for " + wanted.utf8);
        if (!there) return;
        for (int i = 0; i < kFieldCount; ++i) benchmark::DoNotOptimize(query.Fields(i)->AsString());
    });
}

void Limit(benchmark::State& state, Engine engine, const char* field, Words words, Kept kept) {
    const std::string name = field;
    const std::string sql = "SELECT " + std::string(kFields) + " FROM clients WHERE " + name + " >= $1 AND " + name +
                            " < $2 ORDER BY " + name + " LIMIT 1";
    Measure(state, words, [&](const Typed& wanted) {
        Ask(engine, sql, kept, {wanted.utf8, wanted.utf8 + kLastCharacter});
    });
}

int SomeKey(std::mt19937& random) { return static_cast<int>(random() % kRows) + 1; }

void OursByKey(benchmark::State& state, Engine engine) {
    TADOQuery& query = QueryOf(engine, "name");
    Measure(state, SomeKey, [&](int key) {
        if (!query.Locate("id", Variant(key))) Fail("not found");
        for (int i = 0; i < kFieldCount; ++i) benchmark::DoNotOptimize(query.Fields(i)->AsString());
    });
}

void LimitByKey(benchmark::State& state, Engine engine, Kept kept) {
    const std::string sql = "SELECT " + std::string(kFields) + " FROM clients WHERE id = $1";
    Measure(state, SomeKey, [&](int key) { Ask(engine, sql, kept, {std::to_string(key)}); });
}

const int kRegistered = [] {
    struct Subject {
        const char* topic;
        const char* order;
        const char* field;
        Words words;
        bool there;
    };
    const auto add = [](const std::string& name, auto run) {
        benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMicrosecond)->UseManualTime();
    };
    for (const auto& [engine, title] : {std::pair{Engine::Embedded, "sqlite"}, {Engine::Server, "postgresql"}}) {
        for (const Subject& each : {Subject{"name", "name", "name", SomeName, true},
                                    {"name_by_id", "id", "name", SomeName, true},
                                    {"whole_name", "name", "name", WholeName, true},
                                    {"code", "id", "code", SomeCode, true},
                                    {"no_name", "name", "name", NoName, false}}) {
            const std::string topic = std::string(title) + "_" + each.topic;
            add(topic + "/ours", [=, engine = engine](benchmark::State& state) {
                Ours(state, engine, each.order, each.field, each.words, each.there);
            });
            add(topic + "/limit_once", [=, engine = engine](benchmark::State& state) {
                Limit(state, engine, each.field, each.words, Kept::Once);
            });
            add(topic + "/limit_prepared", [=, engine = engine](benchmark::State& state) {
                Limit(state, engine, each.field, each.words, Kept::Prepared);
            });
        }
        const std::string topic = std::string(title) + "_key";
        add(topic + "/ours", [engine = engine](benchmark::State& state) { OursByKey(state, engine); });
        add(topic + "/limit_once",
            [engine = engine](benchmark::State& state) { LimitByKey(state, engine, Kept::Once); });
        add(topic + "/limit_prepared",
            [engine = engine](benchmark::State& state) { LimitByKey(state, engine, Kept::Prepared); });
    }
    return 0;
}();

}  // namespace
