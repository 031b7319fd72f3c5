#pragma once

#include "index/index_data.h"
#include "loam/file_spec.h"

// What the finder checks of the index before it answers from it, apart from the loader's own
// checks.

// Why the index at `file` cannot answer a search, or null when it can. A build under way holds
// the index's build lock and leaves a file that loads empty or not at all; a build that ended
// without sealing the index leaves one marked unfinished. Either would pass for "nothing
// matched". `scanned` says whether the index loaded into `index`.
const char* GetUnfinishedIndexReason(const loam::FileSpec& file, bool scanned,
                                     const IndexData& index);
