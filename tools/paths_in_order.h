#pragma once

#include "index/index_data.h"
#include "index/index_format.h"
#include "index/long_name.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

// The full paths of records taken in index order: with the names as the index stores them, as
// IndexData::GetPathOf builds them, or with the real names of the disk in place of the stand-ins
// of long names, as GetRealPathOf builds them. Most records share their folder with the one
// before, so the folder is walked up to only when it changes.
class PathsInOrder {
public:
    enum class Names { Stored, Real };

    PathsInOrder(const IndexData& index, Names names) : index(index), names(names) {}

    // Valid until the next call.
    const loam::String& GetPath(const IndexRecord* record) {
        if (!hasFolder || record->GetParent() != parentOfFolder) {
            if (names == Names::Real)
                GetRealFolderOf(index, record, folder);
            else
                index.GetFolderOf(record, folder);
            parentOfFolder = record->GetParent();
            hasFolder = true;
        }
        path = folder;
        if (names == Names::Real)
            AppendRealName(path, *record);
        else
            path.Append(record->GetName());
        return path.GetPath();
    }

private:
    const IndexData& index;
    const Names names;
    loam::FileSpec folder, path;
    uint32_t parentOfFolder = IndexNoParent;
    bool hasFolder = false;
};
