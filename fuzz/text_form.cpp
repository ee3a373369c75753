// The text form: what is read and has a text of our own layout gives the same bytes from that text.

#include "platform/streams/text_form.h"
#include "platform/streams/stream.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vyn::TMemoryStream binary;
    if (!fuzzing::Succeeds([&] { vyn::TextToBinary(fuzzing::Bytes(data, size), binary); })) {
        fuzzing::Require(binary.Size() == 0, "nothing is written when the text is wrong");
        return 0;
    }
    binary.SetPosition(0);
    std::string text;
    if (!fuzzing::Succeeds([&] { text = vyn::BinaryToText(binary); })) return 0;
    vyn::TMemoryStream again;
    vyn::TextToBinary(text, again);
    fuzzing::Require(again.Bytes() == binary.Bytes(), "the text of what was read gives the same bytes");
    return 0;
}
