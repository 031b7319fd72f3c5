#include "index/large_array.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace {

constexpr size_t HugePage = size_t(2) << 20;

size_t PageSize() {
    static const auto size = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

size_t RoundUp(size_t bytes, size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

} // namespace

size_t HugePageLength(size_t bytes) {
    return RoundUp(bytes == 0 ? 1 : bytes, HugePage);
}

bool IsLargeBlock(size_t bytes) {
    return bytes >= HugePage;
}

// The block starts on a huge-page boundary, so that whole huge pages can back it; what the
// mapping needed beyond the block to find that boundary is given back at once.
void* MapLargeBlock(size_t bytes) {
    const size_t length = RoundUp(bytes, PageSize());
    const size_t reserved = length + HugePage;
    void* mapping =
        ::mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        return nullptr;
    const auto first = reinterpret_cast<uintptr_t>(mapping);
    const uintptr_t start = RoundUp(first, HugePage);
    if (start > first)
        ::munmap(mapping, start - first);
    const size_t tail = first + reserved - (start + length);
    if (tail > 0)
        ::munmap(reinterpret_cast<void*>(start + length), tail);
    ::madvise(reinterpret_cast<void*>(start), length, MADV_HUGEPAGE);
    return reinterpret_cast<void*>(start);
}

void LargeArrayRelease::UnmapLargeBlock(void* block, size_t bytes) {
    ::munmap(block, RoundUp(bytes, PageSize()));
}
