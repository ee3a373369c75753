// The same records as protobuf messages.

#include <benchmark/benchmark.h>

#include "record.pb.h"
#include "values/records.h"

namespace {

const vyn_bench::Store& Messages() {
    static const vyn_bench::Store store = [] {
        vyn_bench::Store made;
        for (const values_bench::Record& record : values_bench::Records()) {
            vyn_bench::Record* message = made.add_records();
            message->set_id(record.id);
            message->set_parent(record.parent);
            message->set_kind(record.kind);
            message->set_name(record.name);
            message->set_data(record.data);
        }
        return made;
    }();
    return store;
}

void Parse(benchmark::State& state) {
    const std::string bytes = Messages().SerializeAsString();
    for (auto _ : state) {
        vyn_bench::Store store;
        if (!store.ParseFromString(bytes) || store.records_size() != values_bench::RecordCount)
            state.SkipWithError("records are missing");
        benchmark::DoNotOptimize(&store);
    }
    state.SetItemsProcessed(state.iterations() * values_bench::RecordCount);
}

void Save(benchmark::State& state) {
    const vyn_bench::Store& store = Messages();
    for (auto _ : state) {
        std::string bytes;
        store.SerializeToString(&bytes);
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetItemsProcessed(state.iterations() * values_bench::RecordCount);
}

const bool registered = [] {
    const auto in = [](benchmark::internal::Benchmark* made) { made->Unit(benchmark::kMillisecond)->UseRealTime(); };
    in(benchmark::RegisterBenchmark("values_parse/peer_protobuf", Parse));
    in(benchmark::RegisterBenchmark("values_save_memory/peer_protobuf", Save));
    return true;
}();

}  // namespace
