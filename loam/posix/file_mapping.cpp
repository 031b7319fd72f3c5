#include "loam/file_mapping.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace loam {

namespace {

bool IsMappable(int descriptor, uint32_t maxSize, struct stat& status) {
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           static_cast<uint64_t>(status.st_size) <= maxSize;
}

} // namespace

bool FileMapping::Open(const FileSpec& location, uint32_t maxSize) {
    Close();
    // Not waiting keeps a FIFO put in the file's place from holding the caller up.
    const int descriptor =
        ::open(location.GetPath().GetCString(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    struct stat status;
    void* view = MAP_FAILED;
    if (IsMappable(descriptor, maxSize, status))
        view = ::mmap(nullptr, static_cast<size_t>(status.st_size), PROT_READ, MAP_PRIVATE,
                      descriptor, 0);
    // The view keeps the file without its descriptor.
    ::close(descriptor);
    if (view == MAP_FAILED)
        return false;
    data = static_cast<const char*>(view);
    size = static_cast<uint32_t>(status.st_size);
    return true;
}

void FileMapping::Close() {
    if (!data)
        return;
    ::munmap(const_cast<char*>(data), size);
    data = nullptr;
    size = 0;
}

} // namespace loam
