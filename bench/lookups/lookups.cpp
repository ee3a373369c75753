// A lookup box over 1,000,000 customers, with no wait: from the keystroke to the completed text, at the 95th of a
// hundred, beside the engine's own indexed query for the first row of that beginning; what a keystroke costs the main
// thread beside a plain edit's; what a waiting search costs; and a form of 200 boxes over 20 components.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "lookup_world.h"
#include "platform/system/ticks.h"
#include "platform/text/windows1252.h"

namespace {

using namespace lookup_world;
using Clock = std::chrono::steady_clock;

constexpr uint32_t kLongestWait = 5000;  // milliseconds
constexpr int kKeystrokes = 2000;        // of which the 95th of a hundred is taken

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
