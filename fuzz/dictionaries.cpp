// The dictionaries of a database: what loads is saved, and loads again as the same. The first byte chooses which.

#include "database/dictionaries.h"
#include "support/fuzz.h"

namespace {

template <class Dictionary>
vyn::AnsiString Saved(Dictionary& dictionary) {
    vyn::TMemoryStream stream;
    dictionary.SaveToStream(&stream);
    return vyn::AnsiString(stream.Bytes());
}

void Tables(std::string_view bytes) {
    vyn::TDataBaseVynDict dictionary(nullptr), again(nullptr);
    vyn::TViewStream stream(bytes);
    if (!fuzzing::Succeeds([&] { dictionary.LoadFromStream(&stream); })) return;
    // The name of this table has the code that ends the list.
    if (dictionary.IndexOfTable("Null") >= 0) return;
    const vyn::AnsiString saved = Saved(dictionary);
    vyn::TViewStream view(saved);
    again.LoadFromStream(&view);
    fuzzing::Require(Saved(again) == saved, "a table dictionary loads as it was saved");
}

void Queries(std::string_view bytes) {
    vyn::TQuerySQLDict dictionary(nullptr), again(nullptr);
    vyn::TViewStream stream(bytes);
    fuzzing::Succeeds([&] { dictionary.LoadFromStream(&stream); });
    const vyn::AnsiString saved = Saved(dictionary);
    const int count = dictionary.Count();
    vyn::TViewStream view(saved);
    fuzzing::Require(!fuzzing::Succeeds([&] { again.LoadFromStream(&view); }), "loading wants one query more");
    fuzzing::Require(again.Count() == count + 1, "every query that was saved loads");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string_view bytes = fuzzing::Bytes(data + 1, size - 1);
    if (data[0] == 'Q')
        Queries(bytes);
    else
        Tables(bytes);
    return 0;
}
