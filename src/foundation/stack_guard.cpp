#include "foundation/stack_guard.h"

#include <pthread.h>

#include <cstddef>
#include <cstdint>

#include "platform/text/exceptions.h"

namespace vyn {

namespace {

// Enough for what runs between two checks, handlers and formatting included.
constexpr size_t kStackMargin = 256 * 1024;

uintptr_t LowestAddress() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
    void* base = nullptr;
    size_t size = 0;
    pthread_attr_getstack(&attributes, &base, &size);
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<uintptr_t>(base);
}

}  // namespace

void CheckStack() {
    thread_local const uintptr_t lowest = LowestAddress();
    const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    if (lowest != 0 && here < lowest + kStackMargin) throw EStackOverflow("Stack overflow");
}

}  // namespace vyn
