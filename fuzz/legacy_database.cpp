// Files of a legacy database: whatever the bytes, all of their tables, rows and queries are read or refused, with
// damage as an error and with damage left out.

#include "platform/text/windows1252.h"
#include "providers/legacy/legacy_file.h"
#include "providers/legacy/schema.h"
#include "support/fuzz.h"

namespace {

void ReadAll(std::string_view bytes, const vyn::legacy::DamageHandler& damaged) {
    const vyn::legacy::File file(bytes, "Porta1", damaged);
    for (const auto& table : file.Tables()) {
        size_t longBytes = 0;
        file.ReadRows(table, [&](const vyn::legacy::Row& row) {
            fuzzing::Require(row.size() == table.Columns.size(), "a row has a value for each column");
            for (size_t i = 0; i < row.size(); ++i)
                if (table.Columns[i].Type == vyn::legacy::ColumnType::Object) longBytes += row[i].Bytes.size();
        });
        fuzzing::Require(longBytes <= 2 * bytes.size(), "long values are in the file");
        for (const auto& index : table.Indexes)
            for (const auto& each : index.Columns)
                fuzzing::Require(each.Column < table.Columns.size(), "an index is of the table's columns");
        std::string why;
        for (const auto& column : table.Columns) vyn::legacy::DefaultOf(column, why);
    }
    for (const auto& relation : file.Relations())
        fuzzing::Require(relation.Columns.size() == relation.ReferencedColumns.size(),
                         "relations are pairs of columns");
    for (const auto& query : file.Queries()) {
        std::string why;
        const std::string statement = vyn::legacy::StatementOf(query, why);
        if (why.empty()) fuzzing::Succeeds([&] { vyn::legacy::EmbeddedStatement(statement); });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
    fuzzing::Succeeds([&] { ReadAll(bytes, {}); });
    fuzzing::Succeeds([&] { ReadAll(bytes, [](const std::string&) {}); });
    return 0;
}
