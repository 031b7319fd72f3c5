#pragma once

#include "loam/string.h"

#include <cstdint>

namespace loam {

// Kinds of resource; a kind and an id together name one resource.
enum ResourceKind : uint32_t {
    ResourceKindString = 0,
    ResourceKindDialog = 2,
    ResourceKindMenu = 3,
    ResourceKindIcon = 6,
    ResourceKindAccelerators = 7,
};

struct ResourceId {
    uint32_t kind = ResourceKindString;
    uint16_t id = 0;

    String GetString() const;
};

inline ResourceId StringResource(uint16_t id) {
    return ResourceId{ResourceKindString, id};
}

// One row of a string table compiled into the program.
struct StringTableEntry {
    uint16_t id;
    const char* text;
};

// Adds a table to the texts that LoadResourceString finds. The table must outlive the process's
// use of it; a later table's text wins over an earlier one's for the same id.
void RegisterStringTable(const StringTableEntry* entries, int count);

// The program's texts arrive through a 511-byte buffer, so at most 510 bytes of each.
constexpr int MaxResourceStringLength = 510;

bool LoadResourceString(const ResourceId& resource, String& out);

// The variadic form behind FormatResource: C variadics cannot start after a reference.
bool FormatResourceFrom(String* out, uint32_t kind, int id, ...);

// Loads a text of the string table and uses it as the format for the arguments.
template <typename... Args>
bool FormatResource(const ResourceId& resource, String& out, Args... args) {
    return FormatResourceFrom(&out, resource.kind, resource.id, args...);
}

} // namespace loam
