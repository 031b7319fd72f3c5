#pragma once

#include "index/index_data.h"
#include "loam/date_time.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

// The values of the main window's status line about the index file.

enum class IndexFileState { Unknown, Incomplete, Good };

// From a fresh read of the file's header, not from a loaded index: a build under way shows as
// incomplete. A header that cannot be read is unknown, and its error is cleared.
IndexFileState ReadIndexFileState(const loam::FileSpec& indexFile);
// The string of the state's word: 107 "good", 108 "incomplete", 109 "unknown".
uint16_t GetIndexStateStringId(IndexFileState state);

// "just now", "about 10 minutes ago", ... "over a year ago", "in the future".
void FormatIndexAge(loam::String& out, loam::DateTimeSpan age);
// The age of the file's own modification time, 0 when that cannot be read.
void FormatIndexFileAge(loam::String& out, const loam::FileSpec& indexFile, loam::DateTime now);

// The whole line, string 106 with its five values, or "Index not found." without a file.
void FormatIndexStatus(loam::String& out, const IndexData& index, const loam::FileSpec& indexFile,
                       loam::DateTime now);
