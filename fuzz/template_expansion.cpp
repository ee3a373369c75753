// Text templates of parameters and of queries: names are put in, and what has no end ends as an exception.
//
// Bytes up to the first zero byte are the text, the rest is a value that the text may name "V".

#include <pthread.h>

#include "query/Uquerysql.h"
#include "support/fuzz.h"

namespace {

void Expand(std::string_view bytes) {
    const size_t zero = std::min(bytes.find('\0'), bytes.size());
    const vyn::AnsiString text(bytes.substr(0, zero));
    vyn::InitializeParametres();
    vyn::Parametres()->AddParam("V", vyn::AnsiString(bytes.substr(std::min(zero + 1, bytes.size()))));
    vyn::Parametres()->AddParam("N", 7);
    {
        vyn::TQuerySQL query(nullptr);
        query.Disable();
        vyn::AnsiString expanded;
        if (fuzzing::Succeeds([&] { expanded = query.AnalitzaFrase(text); })) {
            const size_t first = expanded.find(vyn::CT_ParametreMark);
            fuzzing::Require(first == expanded.rfind(vyn::CT_ParametreMark), "one mark is left at most");
        }
        // The sets' own templates keep names that they do not know: those they are only given when there are none.
        if (fuzzing::Succeeds([&] { expanded = vyn::Parametres()->FormatText(text); })) {
            const size_t first = expanded.find(vyn::CT_ParametreMark);
            fuzzing::Require(first == expanded.rfind(vyn::CT_ParametreMark), "one mark is left at most");
        }
    }
    vyn::FinalizeParametres();
}

// A text without end uses the whole stack up, which takes long with a large one.
constexpr size_t kSmallStack = size_t{1} << 20;

void* ExpandOnThread(void* bytes) {
    Expand(*static_cast<std::string_view*>(bytes));
    return nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view bytes = fuzzing::Bytes(data, size);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kSmallStack);
    pthread_t thread;
    fuzzing::Require(pthread_create(&thread, &attributes, ExpandOnThread, &bytes) == 0, "a thread can be made");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return 0;
}
