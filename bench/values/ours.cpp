// The value encoding: reading with views over the loaded bytes and with owned copies, writing to memory and to a file.
//
// Every subject of a topic does the same work from the same start: parsing fills a new list of records, saving to
// memory fills new memory, saving to a file makes a new file.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "platform/streams/writer.h"
#include "values/records.h"

namespace {

using values_bench::Record;
using values_bench::RecordCount;
using values_bench::Records;

constexpr char kFileName[] = "bench_values.tmp";

void WriteAll(vyn::TStream& stream) {
    vyn::TWriter writer(stream);
    writer.WriteListBegin();
    for (const Record& record : Records()) {
        writer.WriteInteger(record.id);
        writer.WriteInteger(record.parent);
        writer.WriteInteger(record.kind);
        writer.WriteString(record.name);
        writer.WriteBinary(record.data);
    }
    writer.WriteListEnd();
    writer.Flush();
}

vyn::TMemoryStream& Stored() {
    static vyn::TMemoryStream stream;
    if (stream.Size() == 0) WriteAll(stream);
    stream.SetPosition(0);
    return stream;
}

struct RecordView {
    int32_t id;
    int32_t parent;
    int32_t kind;
    std::string_view name;
    std::string_view data;
};

void Count(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * RecordCount);
    state.SetBytesProcessed(state.iterations() * Stored().Size());
}

void ParseViews(benchmark::State& state) {
    vyn::TMemoryStream& stream = Stored();
    for (auto _ : state) {
        stream.SetPosition(0);
        std::vector<RecordView> records;
        vyn::TReader reader(stream);
        reader.ReadListBegin();
        while (!reader.EndOfList()) {
            RecordView& record = records.emplace_back();
            record.id = reader.ReadInteger();
            record.parent = reader.ReadInteger();
            record.kind = reader.ReadInteger();
            record.name = reader.ReadStringView();
            record.data = reader.ReadBinaryView();
        }
        reader.ReadListEnd();
        benchmark::DoNotOptimize(records.data());
        if (records.size() != RecordCount) state.SkipWithError("records are missing");
    }
    Count(state);
}

void ParseOwned(benchmark::State& state) {
    vyn::TMemoryStream& stream = Stored();
    for (auto _ : state) {
        stream.SetPosition(0);
        std::vector<Record> records;
        vyn::TReader reader(stream);
        reader.ReadListBegin();
        while (!reader.EndOfList()) {
            Record& record = records.emplace_back();
            record.id = reader.ReadInteger();
            record.parent = reader.ReadInteger();
            record.kind = reader.ReadInteger();
            record.name = reader.ReadString();
            record.data = reader.ReadBinaryView();
        }
        reader.ReadListEnd();
        benchmark::DoNotOptimize(records.data());
        if (records.size() != RecordCount) state.SkipWithError("records are missing");
    }
    Count(state);
}

void SaveMemory(benchmark::State& state, bool reserved) {
    const int64_t size = Stored().Size();
    for (auto _ : state) {
        vyn::TMemoryStream stream;
        if (reserved) stream.Reserve(size);
        WriteAll(stream);
        benchmark::DoNotOptimize(stream.Memory());
        if (stream.Size() != size) state.SkipWithError("bytes are missing");
    }
    Count(state);
}

void SaveFile(benchmark::State& state, bool onDisk) {
    for (auto _ : state) {
        {
            vyn::TFileStream stream(kFileName, vyn::fmCreate);
            WriteAll(stream);
            if (onDisk) stream.Synchronize();
        }
        state.PauseTiming();
        ::unlink(kFileName);
        state.ResumeTiming();
    }
    Count(state);
}

// The least that saving to memory can cost: the same bytes copied in one piece into new memory.
void CopyMemory(benchmark::State& state) {
    const std::string_view bytes = Stored().Bytes();
    for (auto _ : state) {
        std::unique_ptr<char, decltype(&std::free)> memory(static_cast<char*>(std::malloc(bytes.size())), &std::free);
        std::memcpy(memory.get(), bytes.data(), bytes.size());
        benchmark::DoNotOptimize(memory.get());
    }
    Count(state);
}

// The least that saving to a file can cost: the finished bytes handed to the system.
void PlainWrite(benchmark::State& state, bool onDisk) {
    const std::string_view bytes = Stored().Bytes();
    for (auto _ : state) {
        const int handle = ::open(kFileName, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        for (size_t put = 0; put < bytes.size();) {
            const ssize_t part = ::write(handle, bytes.data() + put, bytes.size() - put);
            if (part <= 0) {
                state.SkipWithError("the file cannot be written");
                break;
            }
            put += static_cast<size_t>(part);
        }
        if (onDisk && ::fsync(handle) != 0) state.SkipWithError("the file cannot be put on the disk");
        ::close(handle);
        state.PauseTiming();
        ::unlink(kFileName);
        state.ResumeTiming();
    }
    Count(state);
}

const bool registered = [] {
    const auto in = [](benchmark::internal::Benchmark* made) { made->Unit(benchmark::kMillisecond)->UseRealTime(); };
    in(benchmark::RegisterBenchmark("values_parse/ours_views", ParseViews));
    in(benchmark::RegisterBenchmark("values_parse/ours_owned", ParseOwned));
    in(benchmark::RegisterBenchmark("values_save_memory/ours_growing", SaveMemory, false));
    in(benchmark::RegisterBenchmark("values_save_memory/ours_reserved", SaveMemory, true));
    in(benchmark::RegisterBenchmark("values_save_memory/limit_memcpy", CopyMemory));
    in(benchmark::RegisterBenchmark("values_save_file/ours", SaveFile, false));
    in(benchmark::RegisterBenchmark("values_save_file/limit_write", PlainWrite, false));
    // As applications are saved: the bytes are on the disk when the file is done.
    in(benchmark::RegisterBenchmark("values_save_file_on_disk/ours", SaveFile, true));
    in(benchmark::RegisterBenchmark("values_save_file_on_disk/limit_write", PlainWrite, true));
    return true;
}();

}  // namespace
