#include "loam/file_mapping.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace loam {

namespace {

// The mapping the lease guards, for the signal that says the lease is being broken. It is
// changed only while that signal is blocked.
struct HeldMapping {
    char* data = nullptr;
    size_t size = 0;
    int descriptor = -1;
    struct timespec changed = {};
    const char* lostText = nullptr;
};
HeldMapping held;

bool IsUnchanged(const HeldMapping& mapping) {
    struct stat status;
    return ::fstat(mapping.descriptor, &status) == 0 &&
           static_cast<size_t>(status.st_size) == mapping.size &&
           status.st_ctim.tv_sec == mapping.changed.tv_sec &&
           status.st_ctim.tv_nsec == mapping.changed.tv_nsec;
}

[[noreturn]] void GiveUpLostView(const HeldMapping& mapping) {
    ::fcntl(mapping.descriptor, F_SETLEASE, F_UNLCK);
    const char* text = mapping.lostText;
    (void)!::write(STDERR_FILENO, text, std::strlen(text));
    (void)!::write(STDERR_FILENO, "\n", 1);
    ::_exit(2);
}

// Moves a copy of the view to the view's own addresses, so that every pointer into it stays
// valid, then lets the writer go on. Without memory for the copy the lease is kept, and the
// writer waits for the system's lease time-out.
void CopyOnLeaseBreak(int) {
    const int savedErrno = errno;
    if (held.data && !IsUnchanged(held))
        GiveUpLostView(held);
    void* copy = held.data ? ::mmap(nullptr, held.size, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                           : MAP_FAILED;
    if (copy != MAP_FAILED) {
        std::memcpy(copy, held.data, held.size);
        ::mprotect(copy, held.size, PROT_READ);
        if (::mremap(copy, held.size, held.size, MREMAP_MAYMOVE | MREMAP_FIXED, held.data) ==
            MAP_FAILED) {
            ::munmap(copy, held.size);
        } else {
            ::fcntl(held.descriptor, F_SETLEASE, F_UNLCK);
            held = HeldMapping();
        }
    }
    errno = savedErrno;
}

// The handler stays once set: a break signal still pending when a mapping is closed must not
// meet the default action, which ends the process.
void InstallLeaseBreakHandler() {
    static const bool installed = [] {
        struct sigaction action {};
        action.sa_handler = CopyOnLeaseBreak;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        return ::sigaction(SIGIO, &action, nullptr) == 0;
    }();
    (void)installed;
}

class LeaseSignalBlock {
public:
    LeaseSignalBlock() {
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGIO);
        ::sigprocmask(SIG_BLOCK, &blocked, &previous);
    }
    ~LeaseSignalBlock() { ::sigprocmask(SIG_SETMASK, &previous, nullptr); }

private:
    sigset_t previous;
};

bool IsHoldable(int descriptor, uint32_t maxSize, struct stat& status) {
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           static_cast<uint64_t>(status.st_size) <= maxSize;
}

} // namespace

bool FileMapping::Open(const FileSpec& location, uint32_t maxSize, const char* lostText) {
    Close();
    InstallLeaseBreakHandler();
    // A break that comes before the view is known waits until it is, and then copies it.
    const LeaseSignalBlock block;
    if (held.data)
        return false;
    // Not waiting keeps a FIFO put in the file's place from holding the caller up.
    descriptor = ::open(location.GetPath().GetCString(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    struct stat status;
    void* view = MAP_FAILED;
    if (::fcntl(descriptor, F_SETLEASE, F_RDLCK) == 0 && IsHoldable(descriptor, maxSize, status))
        view = ::mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ, MAP_PRIVATE,
                      descriptor, 0);
    if (view == MAP_FAILED) {
        ::close(descriptor);
        descriptor = -1;
        return false;
    }
    data = static_cast<const char*>(view);
    size = static_cast<uint32_t>(status.st_size);
    held = {static_cast<char*>(view), size, descriptor, status.st_ctim, lostText};
    return true;
}

void FileMapping::Close() {
    if (!data)
        return;
    const LeaseSignalBlock block;
    ::munmap(const_cast<char*>(data), size);
    ::close(descriptor);
    if (held.descriptor == descriptor)
        held = HeldMapping();
    data = nullptr;
    size = 0;
    descriptor = -1;
}

} // namespace loam
