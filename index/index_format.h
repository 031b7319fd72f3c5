#pragma once

#include <bit>
#include <cstdint>

// The index file: a 12-byte header, then one record after another with nothing between them.
// All integers are little-endian, and the structures below are the bytes of the file.
static_assert(std::endian::native == std::endian::little,
              "the index is read and written in place as little-endian data");

struct IndexFileHeader {
    int32_t version;
    uint32_t unfinished;
    int32_t recordCount;
};
static_assert(sizeof(IndexFileHeader) == 12);

enum IndexRecordKind : uint8_t {
    IndexKindFile = 0,
    IndexKindFolder = 1,
};

constexpr int32_t IndexFormatVersion = 1;
constexpr uint32_t IndexNoParent = 0xFFFFFFFF;
// The name block's length is one byte and a multiple of 4, so it holds 251 bytes and a NUL.
constexpr int32_t MaxIndexNameBlock = 252;
constexpr int32_t MaxIndexNameLength = MaxIndexNameBlock - 1;

// Records follow each other at even offsets, so the fields are read unaligned.
#pragma pack(push, 1)
struct IndexRecord {
    uint8_t kind;
    uint8_t nameLength;
    uint32_t parent;
    uint32_t size;
    int32_t modified;

    // Copies of the fields: a reference to an unaligned field must never be bound.
    uint32_t GetParent() const { return parent; }
    uint32_t GetSize() const { return size; }
    int32_t GetModified() const { return modified; }
    bool IsFolder() const { return kind == IndexKindFolder; }
    // The name block follows the fixed part; a loaded record's name always holds its NUL.
    const char* GetName() const { return reinterpret_cast<const char*>(this + 1); }
    const IndexRecord* GetNextRecord() const {
        return reinterpret_cast<const IndexRecord*>(GetName() + nameLength);
    }
};
#pragma pack(pop)
static_assert(sizeof(IndexRecord) == 14);
