#pragma once

#include "index/index_data.h"
#include "index/index_format.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

// The full paths of records taken in index order, built as IndexData::GetPathOf builds them. Most
// records share their folder with the one before, so the folder is walked up to only when it
// changes.
class PathsInOrder {
public:
    explicit PathsInOrder(const IndexData& index) : index(index) {}

    // Valid until the next call.
    const loam::String& GetPath(const IndexRecord* record) {
        if (!hasFolder || record->GetParent() != parentOfFolder) {
            index.GetFolderOf(record, folder);
            parentOfFolder = record->GetParent();
            hasFolder = true;
        }
        path = folder;
        path.Append(record->GetName());
        return path.GetPath();
    }

private:
    const IndexData& index;
    loam::FileSpec folder, path;
    uint32_t parentOfFolder = IndexNoParent;
    bool hasFolder = false;
};
