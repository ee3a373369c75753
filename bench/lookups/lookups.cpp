// A lookup box over 1,000,000 customers, with no wait: from the keystroke to the completed text, at the 95th of a
// hundred, beside the engine's own indexed query for the first row of that beginning; what a keystroke costs the main
// thread beside a plain edit's; what a waiting search costs; and a form of 200 boxes over 20 components.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <random>

#include "controls/Uvyneditbox.h"
#include "engines.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/access/ado.h"
#include "platform/controls/data_modules.h"
#include "platform/controls/forms.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"
#include "platform/system/ticks.h"
#include "platform/text/windows1252.h"
#include "programs/host/query_form.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

namespace {

using namespace vyn;
using namespace engines;
using Clock = std::chrono::steady_clock;

constexpr int64_t kCustomers = 1000000;
constexpr uint32_t kLongestWait = 5000;  // milliseconds
constexpr int kKeystrokes = 2000;        // of which the 95th of a hundred is taken
constexpr int kMostDigits = 5;           // typed behind the surname, of seven

constexpr const char* kSurnames[] = {"Abad",   "Bosch",  "Casals",   "Domènech", "Esteve", "Ferrer", "Garcia",
                                     "Güell",  "Hernan", "Ibáñez",   "Jordà",    "Llull",  "Martí",  "Núñez",
                                     "Oliver", "Puig",   "Quintana", "Riera",    "Soler",  "Torres", "Vilà"};
constexpr int kSurnameCount = sizeof kSurnames / sizeof kSurnames[0];

// A name: surname, a number that spreads the names evenly, given name.
std::string NameOf(int64_t number) {
    return std::string(kSurnames[number % kSurnameCount]) + " " +
           std::to_string(kCustomers + number * 7919 % kCustomers);
}

void NeedCustomers(Engine engine) {
    static std::map<Engine, bool> made;
    if (std::exchange(made[engine], true)) return;
    const char* kTable =
        "CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40), city VARCHAR(20), "
        "discount FLOAT)";
    if (engine == Engine::Embedded) {
        RunEmbedded(kTable);
        RunEmbedded("BEGIN");
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(Embedded(), "INSERT INTO customers VALUES (?, ?, 'Vic', 5)", -1, &insert, nullptr);
        for (int64_t i = 1; i <= kCustomers; ++i) {
            const std::string name = NameOf(i);
            sqlite3_bind_int64(insert, 1, i);
            sqlite3_bind_text(insert, 2, name.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        RunEmbedded("COMMIT; CREATE INDEX byname ON customers (name); ANALYZE");
    } else {
        RunServer(kTable);
        std::string names;
        for (const char* each : kSurnames) names += std::string(names.empty() ? "" : ",") + "'" + each + "'";
        RunServer("INSERT INTO customers SELECT i, (ARRAY[" + names + "])[1 + i % " + std::to_string(kSurnameCount) +
                  "] || ' ' || (" + std::to_string(kCustomers) + " + i::bigint * 7919 % " + std::to_string(kCustomers) +
                  "), 'Vic', 5 FROM generate_series(1, " + std::to_string(kCustomers) + ") AS n (i)");
        RunServer("CREATE INDEX byname ON customers (name)");
        RunServer("ANALYZE customers");
    }
}

// An application with a list of customers below its node 1, and a form with boxes that look them up.
class World {
  public:
    World(Engine engine, int nodes) {
        InitializePackage();
        RegisterHostForms();
        RegisterSqliteProvider();
        RegisterPostgresqlProvider();
        NeedCustomers(engine);
        data_.SetName("Dades");
        auto* connection = new TADOConnection(&data_);
        connection->SetName("Connexio");
        connection->SetConnectionString(engine == Engine::Embedded ? AnsiString("Provider=SQLite;Data Source=") +
                                                                         sqlite3_db_filename(Embedded(), "main")
                                                                   : Cluster().ConnectionString());
        SetFindGlobalComponent([this, connection](std::string_view name) -> TComponent* {
            return name == "Dades" ? static_cast<TComponent*>(&data_) : name == "Dades.Connexio" ? connection : nullptr;
        });
        Application()->OnException = [](TObject*, const Exception& error) { Fail(error.Message().c_str()); };
        app = std::make_unique<TVynApp>(nullptr);
        app->LoadBPL();
        AddNode(1, 0, 0);
        for (int i = 1; i <= nodes; ++i) AddNode(i + 1, 1, i);
        form = std::make_unique<TForm>(nullptr);
        orders = new TADOQuery(form.get());
        orders->SetConnection(connection);
        AnsiString columns;
        for (int i = 1; i <= nodes; ++i) columns += (i > 1 ? ", " : "") + ("id AS c" + std::to_string(i));
        orders->SQL()->SetText("SELECT " + columns + " FROM customers WHERE id < 1000");
        orders->Open();
        source = new TVynDataSource(form.get());
        source->SetDataSet(orders);
        source->SetVynApp(app.get());
        source->SetIDNode(1);
    }
    ~World() {
        form.reset();
        app->CloseApp();
        app.reset();
        Settle();
        SetFindGlobalComponent(nullptr);
        FinalizePackage();
    }
    TVynEditBox* AddBox(int node) {
        auto* box = new TVynEditBox(form.get());
        box->SetParent(form.get());
        box->SetDataLinkType(dlt_Search);
        box->SetNChild(node);
        box->SetChildDataKey("id");
        box->SetChildDataShow("name");
        box->SetDataField("c" + std::to_string(node));
        box->SetAutoSearch(true);
        box->SetAutoSearchWaitMiliSeconds(0);
        box->SetVynDataSource(source);
        return box;
    }
    void Settle() {
        const auto searching = [&] {
            TVynComponentList* list = form ? source->ComponentList() : nullptr;
            for (int i = 0; list && i < list->Count(); ++i)
                if (list->Record(i)->State == vyncs_Searching) return true;
            return false;
        };
        do {
            Application()->ProcessMessages();
            while (searching()) Application()->HandleMessage();
            Application()->ProcessMessages();
        } while (searching());
    }

    std::unique_ptr<TVynApp> app;
    std::unique_ptr<TForm> form;
    TADOQuery* orders = nullptr;
    TVynDataSource* source = nullptr;

  private:
    void AddNode(int number, int parent, int child) {
        TMemoryStream stream;
        TextToBinary(
            "object FRMDBGrid: TFRMDBGrid\n  object Consulta: TADOQuery\n    SQL.Strings = (\n"
            "      'SELECT id, name, city, discount FROM customers ORDER BY name')\n  end\nend\n",
            stream);
        app->Components().InsertComponent(TComponentVyn{number, 8, "C"}, stream);
        TNodeArbre node;
        node.IDNode = number;
        node.IDParent = parent;
        node.Child = child;
        node.IDComponent = parent == 0 ? 0 : number;
        node.NodeType = 8;
        node.Name = "N";
        app->Tree().Add(node);
    }
    TDataModule data_{nullptr};
};

// Beginnings of names that are there.
class Beginnings {
  public:
    std::string Next() {
        const std::string name = NameOf(1 + static_cast<int64_t>(random_() % kCustomers));
        const size_t space = name.find(' ');
        return name.substr(0, space + 2 + random_() % static_cast<size_t>(kMostDigits));
    }

  private:
    std::mt19937 random_{7};
};

// The time that so many of a hundred stay below.
double Percentile(std::vector<double>& seconds, size_t percent) {
    const auto at = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() * percent / 100);
    std::nth_element(seconds.begin(), at, seconds.end());
    return *at;
}

// What a run says: the 95th of a hundred as its time, the median beside it.
void Tell(benchmark::State& state, std::vector<double>& seconds) {
    constexpr double kMicroseconds = 1e6;
    state.SetIterationTime(Percentile(seconds, 95));
    state.counters["median_us"] = kMicroseconds * Percentile(seconds, 50);
}

double SecondsOf(const std::function<void()>& action) {
    const auto begin = Clock::now();
    action();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// One keystroke, from the key to the text that was completed.
void Road(benchmark::State& state, Engine engine) {
    World world(engine, 1);
    TVynEditBox& box = *world.AddBox(1);
    box.Link().HasComponent();
    world.Settle();
    world.orders->Edit();
    Beginnings beginnings;
    for (auto _ : state) {
        std::vector<double> seconds;
        for (int i = 0; i < kKeystrokes; ++i) {
            const AnsiString typed = Utf8ToAnsi(beginnings.Next());
            const AnsiString before = typed.substr(0, typed.size() - 1);
            box.ProcessTextEdit(before, static_cast<int>(before.size()), 0);
            world.Settle();
            TVynComponent& record = *world.source->ComponentList()->RecordOf(&box.Link());
            record.LastSearchedValue = Variant();  // nothing is known from an earlier keystroke
            bool late = false;
            const TimerId end = StartTimer(kLongestWait, [&] { late = true; });
            seconds.push_back(SecondsOf([&] {
                char key = typed.back();
                box.KeyPress(key);
                while (box.SelLength() == 0 && !late) Application()->HandleMessage();
            }));
            StopTimer(end);
            if (late) Fail(("nothing was completed behind " + typed + " in " + box.Text()).c_str());
        }
        Tell(state, seconds);
    }
}

void RoadLimit(benchmark::State& state, Engine engine) {
    NeedCustomers(engine);
    Beginnings beginnings;
    constexpr char kQuery[] =
        "SELECT id, name, city, discount FROM customers WHERE name >= $1 AND name < $2 ORDER BY name LIMIT 1";
    for (auto _ : state) {
        std::vector<double> seconds;
        for (int i = 0; i < kKeystrokes; ++i) {
            const std::string from = beginnings.Next();
            std::string to = from;
            ++to.back();
            seconds.push_back(SecondsOf([&] {
                if (engine == Engine::Embedded) {
                    sqlite3_stmt* query = nullptr;
                    sqlite3_prepare_v2(Embedded(), kQuery, -1, &query, nullptr);
                    sqlite3_bind_text(query, 1, from.c_str(), -1, SQLITE_TRANSIENT);
                    sqlite3_bind_text(query, 2, to.c_str(), -1, SQLITE_TRANSIENT);
                    if (sqlite3_step(query) != SQLITE_ROW) Fail("nobody begins so");
                    benchmark::DoNotOptimize(sqlite3_column_text(query, 1));
                    sqlite3_finalize(query);
                } else {
                    const char* values[] = {from.c_str(), to.c_str()};
                    PGresult* rows = PQexecParams(Server(), kQuery, 2, nullptr, values, nullptr, nullptr, 0);
                    if (PQntuples(rows) != 1) Fail(PQerrorMessage(Server()));
                    PQclear(rows);
                }
            }));
        }
        Tell(state, seconds);
    }
}

// A search that waits for ten seconds: processor time for each second of it.
void Waiting(benchmark::State& state) {
    World world(Engine::Embedded, 1);
    TVynEditBox& box = *world.AddBox(1);
    box.Link().HasComponent();
    world.Settle();
    world.orders->Edit();
    box.SetAutoSearchWaitMiliSeconds(10000);
    const auto processor = [] {
        rusage use;
        getrusage(RUSAGE_SELF, &use);
        return static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
               1e-6 * static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec);
    };
    double share = 0;
    for (auto _ : state) {
        box.SelectAll();
        char key = 'q';
        box.KeyPress(key);
        const double before = processor();
        const auto begin = Clock::now();
        const TimerId stop = StartTimer(1000, [] {});
        while (Clock::now() - begin < std::chrono::seconds(1)) Application()->HandleMessage();
        StopTimer(stop);
        share = (processor() - before) / std::chrono::duration<double>(Clock::now() - begin).count();
        box.Link().WaitUntilThreadFinished();
        world.Settle();
    }
    state.counters["percent_of_a_core"] = 100 * share;
}

// 200 boxes over 20 components: the form, and its next record of which every key has changed.
void NextRecord(benchmark::State& state) {
    constexpr int kBoxes = 200, kComponents = 20;
    World world(Engine::Embedded, kComponents);
    std::vector<TVynEditBox*> made;
    for (int i = 0; i < kBoxes; ++i) made.push_back(world.AddBox(1 + i % kComponents));
    const size_t before = static_cast<size_t>(world.app->NodesList().Count());
    for (TVynEditBox* box : made) box->Link().HasComponent();
    world.Settle();
    for (auto _ : state) {
        world.orders->Next();
        if (world.orders->Eof()) world.orders->First();
        world.Settle();
    }
    state.counters["components_open"] = static_cast<double>(world.app->NodesList().Count() - before);
    for (TVynEditBox* box : made)
        if (box->Text().empty()) Fail("a box is empty");
}

// What 20 locates by key cost by themselves.
void TwentyKeys(benchmark::State& state) {
    NeedCustomers(Engine::Embedded);
    int64_t key = 0;
    for (auto _ : state)
        for (int i = 0; i < 20; ++i) {
            sqlite3_stmt* query = nullptr;
            sqlite3_prepare_v2(Embedded(), "SELECT id, name, city, discount FROM customers WHERE id = ?", -1, &query,
                               nullptr);
            sqlite3_bind_int64(query, 1, 1 + key++ % 1000);
            sqlite3_step(query);
            benchmark::DoNotOptimize(sqlite3_column_text(query, 1));
            sqlite3_finalize(query);
        }
}

const int kRegistered = [] {
    for (const auto& [engine, name] : {std::pair{Engine::Embedded, "sqlite"}, {Engine::Server, "postgresql"}})
        for (const auto& [subject, run] : {std::pair{"ours", &Road}, {"limit_engine", &RoadLimit}})
            benchmark::RegisterBenchmark((std::string(name) + "_keystroke_p95/" + subject).c_str(),
                                         [run = run, engine = engine](benchmark::State& state) { run(state, engine); })
                ->Unit(benchmark::kMicrosecond)
                ->Iterations(1)
                ->UseManualTime();
    benchmark::RegisterBenchmark("waiting/ours", Waiting)->Iterations(3)->UseRealTime();
    benchmark::RegisterBenchmark("next_record_200_boxes/ours", NextRecord)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("next_record_200_boxes/limit_20_keys", TwentyKeys)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    return 0;
}();

}  // namespace
