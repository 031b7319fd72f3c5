#pragma once

#include "loam/file_spec.h"

#include <cstdint>

// Writes an index of a made-up but plausible machine: a tree of folders with mixed-case names
// of words and numbers, files with the usual extensions, a few crowded folders. The same seed
// gives the same file.
bool GenerateIndex(const loam::FileSpec& indexFile, int32_t recordCount, uint64_t seed);
