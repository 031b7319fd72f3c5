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
};
HeldMapping held;

// Moves a copy of the view to the view's own addresses, so that every pointer into it stays
// valid, then lets the writer go on. Without memory for the copy the lease is kept, and the
// writer waits for the system's lease time-out.
void CopyOnLeaseBreak(int) {
    const int savedErrno = errno;
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

bool IsHoldable(int descriptor, uint32_t maxSize, uint32_t& size) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0 ||
        static_cast<uint64_t>(status.st_size) > maxSize)
        return false;
    size = static_cast<uint32_t>(status.st_size);
    return true;
}

} // namespace

bool FileMapping::Open(const FileSpec& location, uint32_t maxSize) {
    Close();
    InstallLeaseBreakHandler();
    // A break that comes before the view is known waits until it is, and then copies it.
    const LeaseSignalBlock block;
    if (held.data)
        return false;
    descriptor = ::open(location.GetPath().GetCString(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    void* view = MAP_FAILED;
    if (::fcntl(descriptor, F_SETLEASE, F_RDLCK) == 0 && IsHoldable(descriptor, maxSize, size))
        view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (view == MAP_FAILED) {
        ::close(descriptor);
        descriptor = -1;
        size = 0;
        return false;
    }
    data = static_cast<const char*>(view);
    held = {static_cast<char*>(view), size, descriptor};
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
