#include "platform/streams/large_block.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <cstdlib>

namespace vyn {

namespace large_block_detail {

constexpr int64_t kLargePage = 2 * 1024 * 1024;

#ifdef __linux__
// An address range of our own that begins at a large page: moving large pages between such ranges moves no bytes.
char* ReserveRange(int64_t capacity) {
    void* range = ::mmap(nullptr, static_cast<size_t>(capacity + kLargePage), PROT_NONE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (range == MAP_FAILED) return nullptr;
    auto* begin = static_cast<char*>(range);
    const auto before = static_cast<int64_t>(reinterpret_cast<uintptr_t>(begin) % kLargePage);
    const int64_t lead = before == 0 ? 0 : kLargePage - before;
    if (lead > 0) ::munmap(begin, static_cast<size_t>(lead));
    if (lead < kLargePage) ::munmap(begin + lead + capacity, static_cast<size_t>(kLargePage - lead));
    return begin + lead;
}
#endif

}  // namespace large_block_detail

int64_t LargeBlockCapacity(int64_t size) {
    using large_block_detail::kLargePage;
    return (size + kLargePage - 1) / kLargePage * kLargePage;
}

#ifdef __linux__

char* ResizeLargeBlock(char* block, int64_t oldCapacity, int64_t newCapacity) {
    char* range = large_block_detail::ReserveRange(newCapacity);
    if (!range) return nullptr;
    void* made = block ? ::mremap(block, static_cast<size_t>(oldCapacity), static_cast<size_t>(newCapacity),
                                  MREMAP_MAYMOVE | MREMAP_FIXED, range)
                       : ::mmap(range, static_cast<size_t>(newCapacity), PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (made == MAP_FAILED) {
        ::munmap(range, static_cast<size_t>(newCapacity));
        return nullptr;
    }
    // A hint: without large pages the memory is as good.
    if (!block) ::madvise(made, static_cast<size_t>(newCapacity), MADV_HUGEPAGE);
    return static_cast<char*>(made);
}

void FreeLargeBlock(char* block, int64_t capacity) {
    if (block) ::munmap(block, static_cast<size_t>(capacity));
}

#else

char* ResizeLargeBlock(char* block, int64_t, int64_t newCapacity) {
    return static_cast<char*>(std::realloc(block, static_cast<size_t>(newCapacity)));
}

void FreeLargeBlock(char* block, int64_t) { std::free(block); }

#endif

}  // namespace vyn
