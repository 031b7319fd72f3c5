#include "index/long_name.h"

#include "loam/folder_iterator.h"

#include <cstring>
#include <vector>

namespace {

constexpr int32_t markLength = sizeof LongNameMark - 1;
// A cut moves over at most the three continuation bytes of one character, and only the head's
// cut shortens the stand-in: the tail's gives its bytes to the head.
constexpr int32_t shortestStandIn = MaxIndexNameLength - 3;

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Moves `at` by `step` while it stands inside a character, by three bytes at most: bytes that
// are not UTF-8 are cut where they stand.
int32_t ToCharacterStart(const char* name, int32_t at, int32_t step, int32_t end) {
    for (int moved = 0; moved < 3 && at > 0 && at < end && IsContinuation(name[at]); ++moved)
        at += step;
    return at;
}

// How well an entry on the disk agrees with the record it may be: kind first, then time, then
// size.
int32_t Agreement(const IndexRecord& record, const loam::FolderEntryInfo& info) {
    return (info.isFolder == record.IsFolder() ? 4 : 0) +
           (info.modified.GetSeconds() == record.GetModified() ? 2 : 0) +
           (info.isFolder || info.size == record.GetSize() ? 1 : 0);
}

bool IsStandInFor(const char* candidate, const char* stored) {
    const auto length = static_cast<int32_t>(std::strlen(candidate));
    if (length <= MaxIndexNameLength)
        return std::strcmp(candidate, stored) == 0;
    char standIn[MaxIndexNameBlock];
    const int32_t standInLength = MakeLongNameStandIn(candidate, length, standIn);
    return std::strncmp(standIn, stored, standInLength) == 0 && stored[standInLength] == '\0';
}

} // namespace

int32_t MakeLongNameStandIn(const char* name, int32_t length, char* standIn) {
    const int32_t tail = ToCharacterStart(name, length - LongNameTailBytes, 1, length);
    const int32_t tailLength = length - tail;
    const int32_t head =
        ToCharacterStart(name, MaxIndexNameLength - markLength - tailLength, -1, length);
    std::memcpy(standIn, name, head);
    std::memcpy(standIn + head, LongNameMark, markLength);
    std::memcpy(standIn + head + markLength, name + tail, tailLength);
    return head + markLength + tailLength;
}

// The name block of a stand-in is at least its length and a NUL, rounded up to 4 bytes; most
// names are shorter, and the test stops there.
bool MayStandForLongName(const IndexRecord& record) {
    return record.nameLength >= ((shortestStandIn + 1 + 3) & ~3) &&
           std::strlen(record.GetName()) >= static_cast<size_t>(shortestStandIn) &&
           std::strstr(record.GetName(), LongNameMark) != nullptr;
}

// A real name of 248 to 251 bytes may hold the mark: it stands for itself, and competes with the
// long names that share its stand-in by its agreement with the record.
bool FindLongName(const loam::FileSpec& folder, const IndexRecord& record, loam::String& name) {
    loam::FileSpec pattern(folder);
    pattern.Append("*.*");
    loam::FolderIterator iterator(pattern);
    const char* entry = nullptr;
    loam::FolderEntryInfo info;
    int32_t best = -1;
    while (iterator.NextName(&entry, &info)) {
        if (!IsStandInFor(entry, record.GetName()))
            continue;
        const int32_t agreement = Agreement(record, info);
        if (agreement > best || (agreement == best && std::strcmp(entry, name.GetCString()) < 0)) {
            best = agreement;
            name = entry;
        }
    }
    return best >= 0;
}

void AppendRealName(loam::FileSpec& folder, const IndexRecord& record) {
    loam::String name;
    if (!folder.IsEmpty() && MayStandForLongName(record) && FindLongName(folder, record, name)) {
        folder.Append(name);
        return;
    }
    folder.Append(record.GetName());
}

// A root's name is a whole path, never a stand-in.
void GetRealFolderOf(const IndexData& index, const IndexRecord* record, loam::FileSpec& folder) {
    std::vector<const IndexRecord*> chain;
    bool hasStandIn = false;
    for (const IndexRecord* up = index.GetParentOf(record); up; up = index.GetParentOf(up)) {
        chain.push_back(up);
        hasStandIn = hasStandIn || MayStandForLongName(*up);
    }
    if (!hasStandIn || chain.size() < 2) {
        index.GetFolderOf(record, folder);
        return;
    }
    folder = loam::FileSpec(chain.back()->GetName());
    for (auto level = chain.rbegin() + 1; level != chain.rend(); ++level)
        AppendRealName(folder, **level);
}

loam::String GetRealPathOf(const IndexData& index, const IndexRecord* record) {
    loam::FileSpec path;
    GetRealFolderOf(index, record, path);
    AppendRealName(path, *record);
    return path.GetPath();
}
