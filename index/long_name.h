#pragma once

#include "index/index_data.h"
#include "index/index_format.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

// Names longer than a record can hold. A Linux name may have 255 bytes and a record holds 251,
// so a longer name is stored as a stand-in: as much of its head as fits, the mark, and its last
// bytes, each part cut where a UTF-8 character begins ("<head>…<tail>"). The entry and its whole
// subtree stay in the index under the stand-in; the folder map of a build holds real paths, so
// nothing below such a folder loses its parent.
//
// A search matches the stand-in, never the real name: a pattern that matches the name's head,
// or its ending (an extension above all, since the tail keeps the last bytes), finds it; one that
// needs the bytes cut from the middle does not.
//
// Whoever turns a record into a place on the disk, to open it or to print it, goes through
// GetRealFolderOf and GetRealPathOf: a stand-in is looked for in its real folder, as the entry
// whose own stand-in it is. Where several entries of a folder share a stand-in, the one whose
// kind, time and size agree with the record's is taken, and among equals the first in byte order
// of the names. Where none is there any more, the stored name stays in the path, and the path
// names nothing, as the path of any entry removed since the build does.

// The mark between head and tail, a horizontal ellipsis: it tells a reader that bytes are
// missing.
inline constexpr char LongNameMark[] = "\xE2\x80\xA6";
// How many bytes of the end of a long name its stand-in keeps.
constexpr int32_t LongNameTailBytes = 32;

// The stand-in for a name of `length` bytes, more than MaxIndexNameLength, written to `standIn`
// (room for MaxIndexNameLength bytes, no NUL added). Gives the stand-in's length.
int32_t MakeLongNameStandIn(const char* name, int32_t length, char* standIn);
// Whether a record's name may be a stand-in; only the disk can tell for sure.
bool MayStandForLongName(const IndexRecord& record);
// The real name, in the real folder `folder`, of the entry that `record` stands for. False, with
// `name` untouched, when the folder holds no such entry.
bool FindLongName(const loam::FileSpec& folder, const IndexRecord& record, loam::String& name);

// The real folder that holds a record, and the record's real path: GetFolderOf and GetPathOf
// with every stand-in on the way replaced by the real name. A path without stand-ins costs no
// look at the disk.
void GetRealFolderOf(const IndexData& index, const IndexRecord* record, loam::FileSpec& folder);
loam::String GetRealPathOf(const IndexData& index, const IndexRecord* record);
// Appends the record's real name to `folder`, which is its real folder.
void AppendRealName(loam::FileSpec& folder, const IndexRecord& record);
