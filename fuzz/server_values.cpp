// Values as a database server sends them, of every type and in both forms: whatever the bytes, each becomes a value of
// its column's kind, or none, or is refused.

#include "providers/postgresql/connection.h"
#include "support/fuzz.h"

namespace {

using namespace vyn;
using namespace vyn::postgresql_provider;

constexpr Oid kTypes[] = {kBool, kBytea,     kName,        kInt8,    kInt2,  kInt4,   kText,    kOid,
                          kJson, kXml,       kFloat4,      kFloat8,  kMoney, kBpchar, kVarchar, kDate,
                          kTime, kTimestamp, kTimestampTz, kNumeric, kUuid,  kJsonb};
constexpr int kAmountModifier = (12 << 16 | 4) + 4;

void Put(Oid type, bool amount, bool binary, std::string_view bytes) {
    const Result result(PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK));
    char name[] = "v";
    PGresAttDesc column{name, 0, 0, binary ? kBinaryFormat : kTextFormat, type, 0, -1};
    PQsetResultAttrs(result.get(), 1, &column);
    PQsetvalue(result.get(), 0, 0, const_cast<char*>(bytes.data() ? bytes.data() : ""), static_cast<int>(bytes.size()));
    int size = 0, precision = 0;
    const TFieldType field = FieldTypeOf(type, amount ? kAmountModifier : -1, size, precision);
    RowStore rows({ColumnKindOf(field)});
    fuzzing::Succeeds([&] {
        rows.BeginRow();
        PutValue(rows, result.get(), 0, 0, type, field, binary);
        rows.EndRow();
        fuzzing::Require(rows.Count() == 1, "a value is a row");
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const Oid type = kTypes[(data[0] >> 2) % std::size(kTypes)];
    const bool binary = (data[0] & 1) != 0 && IsBinaryKnown(type);
    Put(type, (data[0] & 2) != 0, binary, fuzzing::Bytes(data + 1, size - 1));
    return 0;
}
