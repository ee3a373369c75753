// The select fields of a query: what loads is saved, and loads again as the same fields.

#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "query/Uquerysql.h"
#include "support/fuzz.h"

namespace {

void Load(vyn::TQuerySQL& query, std::string_view bytes) {
    vyn::TViewStream stream(bytes);
    vyn::TReader reader(stream);
    query.FieldsSQL()->LoadFromReader(&reader);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TQuerySQL query(nullptr), again(nullptr);
    if (!fuzzing::Succeeds([&] { Load(query, fuzzing::Bytes(data, size)); })) return 0;
    query.CreaCampSelectdelSQL();
    vyn::TMemoryStream saved;
    {
        vyn::TWriter writer(saved);
        query.FieldsSQL()->WriteToWriter(&writer);
    }
    Load(again, saved.Bytes());
    fuzzing::Require(again.Count() == query.Count(), "every field that was loaded is saved");
    for (int i = 0; i < query.Count(); ++i) {
        const vyn::TFieldsSQLRec field = query.GetFieldSQL(i);
        fuzzing::Require(again.GetFieldSQL(i) == field, "a field comes back as it was");
    }
    return 0;
}
