#pragma once

#include "loam/file_spec.h"

namespace quilt {

// Opens the folder in the desktop's file manager, through the desktop's default handler for
// folders; never through a shell. On false the error stack says why, for the caller to report.
bool OpenFolderInShell(const loam::FileSpec& folder);

// Opens the file or folder with the desktop's default application for its type, never through
// a shell. On false the error stack says why.
bool OpenWithDefaultApplication(const loam::FileSpec& entry);

// Opens `folder` with `entry` selected in it: through the file manager that owns the desktop's
// FileManager1 name on the session bus, when one does and the entry is there; otherwise as
// OpenFolderInShell opens the folder alone. The file manager's answer comes later, through the
// main loop; when it is a failure, or none comes in time, the folder opens alone then.
bool ShowInFolder(const loam::FileSpec& entry, const loam::FileSpec& folder);

} // namespace quilt
