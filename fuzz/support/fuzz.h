#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/text/exceptions.h"

// What the targets share. An exception of the platform is a good answer to bad bytes; anything else that leaves a
// reader ends the run, and so does a requirement that does not hold.
namespace fuzzing {

inline std::string_view Bytes(const uint8_t* data, size_t size) { return {reinterpret_cast<const char*>(data), size}; }

inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Runs the body; false when it raised one of the platform's exceptions.
template <class Body>
bool Succeeds(Body body) {
    try {
        body();
        return true;
    } catch (const vyn::Exception&) {
        return false;
    }
}

}  // namespace fuzzing
