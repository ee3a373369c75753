// Expressions of filters: read and calculated, or refused, whatever the text.

#include "platform/data/data_set.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const vyn::AnsiString text(fuzzing::Bytes(data, size));
    fuzzing::Succeeds([&] {
        const vyn::RowExpression expression(text, nullptr);
        expression.Value();
    });
    return 0;
}
