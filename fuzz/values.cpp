// The value encoding: every value is passed over whole, and what is taken as a variant or text is as long as the bytes.

#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzzing::Bytes(data, size);
    fuzzing::Succeeds([&] {
        vyn::TViewStream stream(bytes);
        vyn::TReader reader(stream);
        while (reader.BytesLeft() > 0) {
            const int64_t before = reader.Position();
            reader.SkipValue();
            fuzzing::Require(reader.Position() > before, "a value takes bytes");
        }
    });
    fuzzing::Succeeds([&] {
        vyn::TViewStream stream(bytes);
        vyn::TReader reader(stream);
        while (reader.BytesLeft() > 0) reader.ReadVariant();
    });
    return 0;
}
