#include "loam/file_lock.h"

#include "loam/error.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace loam {

namespace {

constexpr mode_t privateFileMode = 0600;

// A signal that comes while the call is under way is no answer.
int LockWithoutWaiting(int descriptor, int kind) {
    int result = 0;
    do {
        result = ::flock(descriptor, kind | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result;
}

} // namespace

FileLock::Outcome FileLock::Take(const FileSpec& lockFile) {
    Release();
    const int file =
        ::open(lockFile.GetPath().GetCString(),
               O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, privateFileMode);
    if (file < 0) {
        RaiseLastSystemError();
        return Outcome::Failed;
    }
    if (LockWithoutWaiting(file, LOCK_EX) == 0) {
        descriptor = file;
        return Outcome::Taken;
    }
    const int error = errno;
    ::close(file);
    if (error == EWOULDBLOCK)
        return Outcome::HeldElsewhere;
    errno = error;
    RaiseLastSystemError();
    return Outcome::Failed;
}

void FileLock::Release() {
    if (descriptor < 0)
        return;
    ::close(descriptor);
    descriptor = -1;
}

bool FileLock::IsHeld(const FileSpec& lockFile) {
    const int file =
        ::open(lockFile.GetPath().GetCString(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (file < 0)
        return false;
    const bool held = LockWithoutWaiting(file, LOCK_SH) != 0 && errno == EWOULDBLOCK;
    ::close(file);
    return held;
}

} // namespace loam
