// Text templates of parameters and of queries: names are put in, and what has no end ends as an exception.
//
// Bytes up to the first zero byte are the text, the rest is a value that the text may name "V".

#include "query/Uquerysql.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
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
    return 0;
}
