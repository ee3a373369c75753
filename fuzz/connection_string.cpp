// Connection strings: every key that was read has a value, and messages hold no password.

#include "platform/access/connection_string.h"
#include "support/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const vyn::AnsiString text(fuzzing::Bytes(data, size));
    fuzzing::Succeeds([&] {
        const vyn::ConnectionString connection(text);
        for (const auto& [key, value] : connection.Pairs()) fuzzing::Require(connection.Has(key), "a key is found");
        if (connection.Has("Password"))
            fuzzing::Require(connection.ForMessages().find("=***") != vyn::AnsiString::npos,
                             "a message shows asterisks for a password");
    });
    return 0;
}
