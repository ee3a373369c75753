// Expressions of filters and masks of fields: read and calculated, or refused, whatever the text.

#include "platform/data/data_set.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const vyn::AnsiString text(fuzzing::Bytes(data, size));
    fuzzing::Succeeds([&] {
        const vyn::RowExpression expression(text, nullptr);
        expression.Value();
    });
    const size_t cut = text.find('\n');
    const vyn::EditMask mask(text.substr(0, cut));
    const vyn::AnsiString value = cut == vyn::AnsiString::npos ? vyn::AnsiString("12") : text.substr(cut + 1);
    const vyn::AnsiString edited = mask.EditText(value);
    fuzzing::Require(edited == value || static_cast<int>(edited.size()) == mask.Length(),
                     "a value that fits is as long as its mask");
    mask.DisplayText(value);
    mask.FirstMissing(edited);
    mask.Value(edited);
    for (int i = mask.PlaceFrom(0); i >= 0; i = mask.PlaceFrom(i + 1))
        fuzzing::Require(mask.IsPlace(i), "places are walked");
    return 0;
}
