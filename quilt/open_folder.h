#pragma once

#include "loam/file_spec.h"

namespace quilt {

// Opens the folder in the desktop's file manager, through the desktop's default handler for
// folders; never through a shell. On false the error stack says why, for the caller to report.
bool OpenFolderInShell(const loam::FileSpec& folder);

} // namespace quilt
