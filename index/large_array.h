#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

// Frees what AllocateLargeArray gave: a mapping of its own, or an array from new[], which is
// also what a plain std::unique_ptr hands over. An array that lies inside another one's block
// is borrowed, and freed with that block.
class LargeArrayRelease {
public:
    LargeArrayRelease() = default;
    explicit LargeArrayRelease(size_t mapped) : mappedBytes(mapped) {}
    template <typename T> LargeArrayRelease(std::default_delete<T[]>) {}
    static LargeArrayRelease Borrowed() { return LargeArrayRelease(Borrowing); }

    template <typename T> void operator()(T* array) const {
        if (mappedBytes == 0)
            delete[] array;
        else if (mappedBytes != Borrowing)
            UnmapLargeBlock(array, mappedBytes);
    }

private:
    static constexpr size_t Borrowing = SIZE_MAX;

    static void UnmapLargeBlock(void* block, size_t bytes);

    // 0 for an array from new[].
    size_t mappedBytes = 0;
};

template <typename T> using LargeArray = std::unique_ptr<T[], LargeArrayRelease>;

// An array of some megabytes gets memory of its own, asked to be backed by huge pages where the
// system offers them: the first touch of every small page of fresh memory can cost more than
// reading the file that fills it. Smaller arrays come from new[].
bool IsLargeBlock(size_t bytes);
// Null when there is no memory.
void* MapLargeBlock(size_t bytes);
// The length that whole huge pages give a block of at least these bytes.
size_t HugePageLength(size_t bytes);

template <typename T> LargeArray<T> MapLargeArray(size_t bytes, uint32_t count) {
    T* array = static_cast<T*>(MapLargeBlock(bytes));
    if (!array)
        return nullptr;
    std::uninitialized_default_construct_n(array, count);
    return LargeArray<T>(array, LargeArrayRelease(bytes));
}

// Bytes in which their user lays out arrays of its own.
inline LargeArray<char> AllocateLargeBytes(size_t bytes) {
    if (!IsLargeBlock(bytes))
        return LargeArray<char>(new (std::nothrow) char[bytes]);
    return LargeArray<char>(static_cast<char*>(MapLargeBlock(bytes)), LargeArrayRelease(bytes));
}

template <typename T> LargeArray<T> AllocateLargeArray(uint32_t count) {
    const size_t bytes = sizeof(T) * count;
    if (!IsLargeBlock(bytes))
        return LargeArray<T>(new (std::nothrow) T[count]);
    return MapLargeArray<T>(bytes, count);
}

// Whole huge pages however small the array, for memory that a pass fills from its start: a
// huge page costs one touch, where its small pages would cost one each.
template <typename T> LargeArray<T> AllocateHugePageArray(uint32_t count) {
    return MapLargeArray<T>(HugePageLength(sizeof(T) * count), count);
}
