#pragma once

#include "index/index_data.h"
#include "loam/file_spec.h"
#include "loam/string.h"

// A search of an index file through its trigram file: the pieces that every match must hold
// give the blocks of records that may match; those records and the folders above them are read
// from the index and make a small index of their own, which the same pass searches. Its results
// are those of a pass over the whole index, in the same order and with the same paths.
//
// True when `index` holds the results. False, with nothing raised and the index empty, when the
// whole index is to be searched instead: no trigram file that belongs to the index and passes
// its checks, no piece of three bytes in the pattern, too many blocks to read one by one, or a
// pass that ended early.
bool SearchCandidates(IndexData& index, const loam::FileSpec& indexFile,
                      const loam::String& pattern, bool isRegExp, bool autoWildcards);
