#pragma once

#include <cstdint>

namespace vyn {

// Blocks of memory that grow without being copied, on large pages where the system has them: filling fresh memory page
// by page costs more than what is put into it. Elsewhere they are plain allocations. Sizes are bytes; any thread.

// From this size on a growing buffer does well to take one.
constexpr int64_t LargeBlockFrom = 4 * 1024 * 1024;

// What a block of at least `size` bytes holds.
int64_t LargeBlockCapacity(int64_t size);
// A new block, or the old one grown with its contents (it may move). Capacities come from LargeBlockCapacity. Null, and
// the old block stays, when there is no memory.
char* ResizeLargeBlock(char* block, int64_t oldCapacity, int64_t newCapacity);
void FreeLargeBlock(char* block, int64_t capacity);

}  // namespace vyn
