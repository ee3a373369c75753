// Loading applications of growing size, looking things up in growing stores, and expanding growing trees. What must be
// linear shows the same items a second at every size; what must be flat, the same time.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "application/made_application.h"
#include "foundation/Uparametres.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"

namespace {

using namespace vyn;
using application_bench::FullComponents;
using application_bench::FullNodes;
using application_bench::FullResources;

constexpr int kEighths = 8;

void Load(benchmark::State& state) {
    const int parts = static_cast<int>(state.range(0));
    TMemoryStream stream;
    application_bench::MakeApplication(parts)->SaveAppToStream(stream);
    for (auto _ : state) {
        stream.SetPosition(0);
        TVynApp app(nullptr);
        app.LoadAppFromStream(stream);
        if (app.Recursos().Count() != FullResources * parts / kEighths) state.SkipWithError("resources are missing");
    }
    state.SetItemsProcessed(state.iterations() * (FullNodes + FullComponents + FullResources) * parts / kEighths);
    state.SetBytesProcessed(state.iterations() * stream.Size());
}

void Save(benchmark::State& state) {
    const int parts = static_cast<int>(state.range(0));
    const auto app = application_bench::MakeApplication(parts);
    for (auto _ : state) {
        TMemoryStream stream;
        app->SaveAppToStream(stream);
        benchmark::DoNotOptimize(stream.Memory());
    }
    state.SetItemsProcessed(state.iterations() * (FullNodes + FullComponents + FullResources) * parts / kEighths);
}

// The numbers 1 to count in an order that no cache guesses, the same in every run.
class Walk {
  public:
    explicit Walk(int count) : count_(static_cast<uint32_t>(count)) {}
    int Next() {
        seed_ = seed_ * 1664525u + 1013904223u;
        return static_cast<int>((seed_ >> 8) % count_) + 1;
    }

  private:
    uint32_t count_;
    uint32_t seed_ = 54;
};

void RecursosByNumber(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    TRecursosVyn store;
    for (int number = 1; number <= count; ++number) {
        TMemoryStream stream("x");
        store.InsertTRecursos(TRecursos{number, 0, "r", 1}, stream);
    }
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(store.FindPosInList(walk.Next()));
}

void ComponentsByNumber(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    TComponentsVyn store(nullptr);
    for (int number = 1; number <= count; ++number) {
        TMemoryStream stream("x");
        store.InsertComponent(TComponentVyn{number, 4, "c"}, stream);
    }
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(store.FindInList(walk.Next()));
}

void NodesByNumber(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    TTreeVyn tree;
    application_bench::MakeTree(tree, count, 0);
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(tree.GetIDNode(walk.Next()));
}

void ParametresByName(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    TParametres set(nullptr);
    std::vector<AnsiString> names;
    for (int number = 1; number <= count; ++number) {
        names.push_back("Parameter_" + std::to_string(number));
        set.AddParam(names.back(), number);
    }
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(set.FindParam(names[static_cast<size_t>(walk.Next() - 1)]));
}

void ComponentsByName(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    TComponent owner(nullptr);
    std::vector<AnsiString> names;
    for (int number = 1; number <= count; ++number) {
        names.push_back("Component_" + std::to_string(number));
        (new TComponent(&owner))->SetName(names.back());
    }
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(owner.FindComponent(names[static_cast<size_t>(walk.Next() - 1)]));
}

void ClassesByName(benchmark::State& state) {
    // Class records live as long as the process: each size has classes of its own.
    const int count = static_cast<int>(state.range(0));
    static std::vector<std::unique_ptr<ClassInfo>> records;
    std::vector<AnsiString> names;
    std::vector<TClass> registered;
    for (int number = 1; number <= count; ++number) {
        names.push_back("T" + std::to_string(count) + "_" + std::to_string(number));
        records.push_back(std::make_unique<ClassInfo>(DefineClass<TComponent, TPersistent>(names.back().c_str())));
        registered.push_back(records.back().get());
        RegisterClass(records.back().get());
    }
    Walk walk(count);
    for (auto _ : state) benchmark::DoNotOptimize(GetClass(names[static_cast<size_t>(walk.Next() - 1)]));
    while (!registered.empty()) {
        UnRegisterClass(registered.back());
        registered.pop_back();
    }
}

void Expand(benchmark::State& state) {
    const int times = static_cast<int>(state.range(0));
    TTreeVyn tree;
    application_bench::MakeTree(tree, FullNodes * times / kEighths,
                                application_bench::FullShortcuts * times / kEighths);
    int expanded = 0;
    for (auto _ : state) {
        tree.SetRealTree(false);
        expanded = tree.Count();
        state.PauseTiming();
        tree.SetRealTree(true);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * expanded);
    state.counters["nodes"] = expanded;
}

const bool registered = [] {
    for (const int parts : {1, 2, 4, 8}) {
        const auto named = [&](const char* name, void (*run)(benchmark::State&)) {
            benchmark::RegisterBenchmark(name, run)->Arg(parts)->Unit(benchmark::kMillisecond);
        };
        named("application_load/ours", Load);
        named("application_save/ours", Save);
    }
    // Numbers end at 100,000: from half the full size to eight times that, and the largest tree that there can be.
    for (const int times : {4, 8, 16, 32, 40})
        benchmark::RegisterBenchmark("tree_virtual/ours", Expand)->Arg(times)->Unit(benchmark::kMillisecond);
    for (const int count : {100, 1000, 10000, 100000}) {
        const auto named = [&](const char* name, void (*run)(benchmark::State&)) {
            benchmark::RegisterBenchmark(name, run)->Arg(count);
        };
        named("find_resource/ours", RecursosByNumber);
        named("find_stored_component/ours", ComponentsByNumber);
        named("find_node/ours", NodesByNumber);
        named("find_parameter/ours", ParametresByName);
        named("find_component/ours", ComponentsByName);
        named("find_class/ours", ClassesByName);
    }
    return true;
}();

}  // namespace
