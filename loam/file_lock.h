#pragma once

#include "loam/file_spec.h"

namespace loam {

// An advisory lock that one process at a time holds on a file of its own, for a file that is
// written whole and put in place by a rename: a lock on that file itself would stay with the
// file that the rename replaced, while a lock file's name is never renamed over, so every
// process that opens it by name meets the same lock. The system drops the lock when its holder
// ends, however it ends.
class FileLock {
public:
    enum class Outcome { Taken, HeldElsewhere, Failed };

    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { Release(); }

    // Takes the lock without waiting, making the lock file (0600, no link followed) where it is
    // missing. Failed raises the system's error; HeldElsewhere raises nothing.
    Outcome Take(const FileSpec& lockFile);
    void Release();
    bool IsTaken() const { return descriptor >= 0; }

    // Whether another holder has the lock now; a missing lock file has none. The test takes a
    // shared lock for the span of two calls and never makes the file.
    static bool IsHeld(const FileSpec& lockFile);

private:
    int descriptor = -1;
};

} // namespace loam
