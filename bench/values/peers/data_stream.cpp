// The same records through Qt's QDataStream.

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QString>

#include "values/records.h"

namespace {

struct QtRecord {
    qint32 id = 0;
    qint32 parent = 0;
    qint32 kind = 0;
    QString name;
    QByteArray data;
};

const std::vector<QtRecord>& QtRecords() {
    static const std::vector<QtRecord> records = [] {
        std::vector<QtRecord> made;
        for (const values_bench::Record& record : values_bench::Records())
            made.push_back({record.id, record.parent, record.kind, QString::fromStdString(record.name),
                            QByteArray(record.data.data(), static_cast<qsizetype>(record.data.size()))});
        return made;
    }();
    return records;
}

QByteArray Written() {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const QtRecord& record : QtRecords())
        stream << record.id << record.parent << record.kind << record.name << record.data;
    return bytes;
}

void Parse(benchmark::State& state) {
    const QByteArray bytes = Written();
    for (auto _ : state) {
        std::vector<QtRecord> records;
        QDataStream stream(bytes);
        for (int i = 0; i < values_bench::RecordCount; ++i) {
            QtRecord& record = records.emplace_back();
            stream >> record.id >> record.parent >> record.kind >> record.name >> record.data;
        }
        if (stream.status() != QDataStream::Ok || !stream.atEnd()) state.SkipWithError("records are missing");
        benchmark::DoNotOptimize(records.data());
    }
    state.SetItemsProcessed(state.iterations() * values_bench::RecordCount);
}

void Save(benchmark::State& state) {
    QtRecords();
    for (auto _ : state) {
        const QByteArray bytes = Written();
        benchmark::DoNotOptimize(bytes.constData());
    }
    state.SetItemsProcessed(state.iterations() * values_bench::RecordCount);
}

const bool registered = [] {
    const auto in = [](benchmark::internal::Benchmark* made) { made->Unit(benchmark::kMillisecond)->UseRealTime(); };
    in(benchmark::RegisterBenchmark("values_parse/peer_QDataStream", Parse));
    in(benchmark::RegisterBenchmark("values_save_memory/peer_QDataStream", Save));
    return true;
}();

}  // namespace
