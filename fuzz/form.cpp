// The binary form: what has a text gives the same text again when it is made from that text.

#include "platform/streams/stream.h"
#include "platform/streams/text_form.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TViewStream binary(fuzzing::Bytes(data, size));
    std::string text;
    if (!fuzzing::Succeeds([&] { text = vyn::BinaryToText(binary); })) return 0;
    vyn::TMemoryStream made;
    const bool read = fuzzing::Succeeds([&] { vyn::TextToBinary(text, made); });
    fuzzing::Require(read, "the text of a form is read");
    made.SetPosition(0);
    fuzzing::Require(vyn::BinaryToText(made) == text, "a form and its text agree");
    return 0;
}
