#include "tools/index_state.h"

#include "index/file_index_writer.h"

const char* GetUnfinishedIndexReason(const loam::FileSpec& file, bool scanned,
                                     const IndexData& index) {
    const IndexFileHeader* header = scanned ? index.GetHeader() : nullptr;
    const bool unfinished = header != nullptr && header->unfinished != 0;
    if (scanned && !unfinished)
        return nullptr;
    if (loam::FileLock::IsHeld(GetBuildLockFile(file)))
        return "the index is being rebuilt";
    return unfinished ? "the index is incomplete; run 'sorvanta /buildindex'" : nullptr;
}
