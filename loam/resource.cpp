#include "loam/resource.h"

#include <cstdarg>
#include <vector>

namespace loam {

namespace {

struct RegisteredTable {
    const StringTableEntry* entries;
    int count;
};

std::vector<RegisteredTable>& Tables() {
    static std::vector<RegisteredTable> tables;
    return tables;
}

const char* FindText(uint16_t id) {
    const auto& tables = Tables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        for (int i = 0; i < table->count; ++i) {
            if (table->entries[i].id == id)
                return table->entries[i].text;
        }
    }
    return nullptr;
}

} // namespace

void RegisterStringTable(const StringTableEntry* entries, int count) {
    Tables().push_back({entries, count});
}

bool LoadResourceString(const ResourceId& resource, String& out) {
    if (resource.id == 0 || resource.kind != ResourceKindString)
        return false;
    const char* text = FindText(resource.id);
    if (!text)
        return false;
    String whole(text);
    out = whole.Left(MaxResourceStringLength);
    return true;
}

String ResourceId::GetString() const {
    String text;
    LoadResourceString(*this, text);
    return text;
}

bool FormatResourceFrom(String* out, uint32_t kind, int id, ...) {
    String format;
    if (!LoadResourceString(ResourceId{kind, static_cast<uint16_t>(id)}, format))
        return false;
    va_list args;
    va_start(args, id);
    out->FormatArgs(format.GetCString(), args);
    va_end(args);
    return true;
}

} // namespace loam
