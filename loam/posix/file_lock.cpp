#include "loam/file_lock.h"

#include "loam/error.h"

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
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

// A test of IsHeld holds the lock shared for the span of two calls, while a holder that takes it
// for its work holds it exclusively; only the second makes the lock taken elsewhere, so a shared
// holder is waited out by trying again.
FileLock::Outcome LockExclusively(int file) {
    constexpr int attempts = 1000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (LockWithoutWaiting(file, LOCK_EX) == 0)
            return FileLock::Outcome::Taken;
        if (errno != EWOULDBLOCK)
            break;
        if (LockWithoutWaiting(file, LOCK_SH) != 0) {
            if (errno != EWOULDBLOCK)
                break;
            return FileLock::Outcome::HeldElsewhere;
        }
        ::flock(file, LOCK_UN);
        ::sched_yield();
        if (attempt + 1 == attempts)
            return FileLock::Outcome::HeldElsewhere;
    }
    RaiseLastSystemError();
    return FileLock::Outcome::Failed;
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
    const Outcome outcome = LockExclusively(file);
    if (outcome == Outcome::Taken)
        descriptor = file;
    else
        ::close(file);
    return outcome;
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
