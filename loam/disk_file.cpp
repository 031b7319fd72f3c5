#include "loam/disk_file.h"

#include "loam/error.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace loam {

namespace {

constexpr int lineChunkSize = 256;
constexpr mode_t createdFileMode = 0600;

bool RaiseStandard(uint32_t code, int message) {
    return RaiseError(code, GetStandardMessage(message));
}

bool RaiseWithReason(uint32_t code, int message, int error) {
    return RaiseFormatted(code, GetStandardMessage(message), std::strerror(error));
}

bool RaiseCannotOpen(const FileSpec& location, int error) {
    return RaiseFormatted(ErrorCannotOpen, GetStandardMessage(MessageCannotOpen),
                          location.GetPath().GetCString(), std::strerror(error));
}

bool RaiseWriteFailure(int error) {
    if (error == EACCES || error == EPERM)
        return RaiseStandard(ErrorAccessDenied, MessageWriteDenied);
    if (error == ENOSPC || error == EDQUOT)
        return RaiseStandard(ErrorNoSpace, MessageNoSpace);
    return RaiseWithReason(ErrorWrite, MessageWriteFailed, error);
}

int GetOpenFlags(char letter) {
    const int common = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (letter == 'a')
        return common | O_RDWR | O_CREAT | O_APPEND;
    if (letter == 'w')
        return common | O_WRONLY | O_CREAT | O_TRUNC;
    return common | O_RDONLY;
}

int CloseWithError(int descriptor, int error) {
    ::close(descriptor);
    errno = error;
    return -1;
}

// Opens without waiting on a FIFO or a device, then makes the descriptor blocking as a stream
// expects. A folder is refused, as no byte stream can be read from it.
int OpenDescriptor(const char* path, char letter) {
    const int descriptor = ::open(path, GetOpenFlags(letter), createdFileMode);
    if (descriptor < 0)
        return -1;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        return CloseWithError(descriptor, errno);
    if (S_ISDIR(status.st_mode))
        return CloseWithError(descriptor, EISDIR);
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || ::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0)
        return CloseWithError(descriptor, errno);
    return descriptor;
}

// A device, a pipe or a socket at the name is written into, not replaced. A link to one is
// followed only when it is the user's own or the system's (/dev/stdout): one that someone else
// planted is replaced like any other.
bool IsStreamName(const char* path) {
    struct stat name {
    }, target{};
    if (::lstat(path, &name) != 0 || ::stat(path, &target) != 0)
        return false;
    if (S_ISREG(target.st_mode) || S_ISDIR(target.st_mode))
        return false;
    return !S_ISLNK(name.st_mode) || name.st_uid == 0 || name.st_uid == ::geteuid();
}

// Grows the line by doubling, so that a very long line costs linear time.
void MakeRoomForChunk(String& line) {
    const int32_t needed = line.GetLength() + lineChunkSize;
    if (line.GetCapacity() > needed)
        return;
    line.Reserve(needed > INT32_MAX / 2 ? needed : needed * 2);
}

bool RaiseNullFileUsed() {
    return RaiseError(ErrorNullFile, "NullFile object used!");
}

// A chunk that ends in the carriage return of "\r\n" leaves the line feed behind, where it
// would read as an empty line of its own.
void SkipLineFeed(std::FILE* stream) {
    const int next = std::getc(stream);
    if (next != '\n' && next != EOF)
        std::ungetc(next, stream);
}

void StripLineEnd(String& line) {
    int32_t length = line.GetLength();
    const char* bytes = line.GetCString();
    while (length > 0 && (bytes[length - 1] == '\r' || bytes[length - 1] == '\n'))
        --length;
    line.Truncate(length);
}

} // namespace

DiskFile::~DiskFile() {
    Close();
}

bool DiskFile::SetFileSpec(const FileSpec& location) {
    if (stream)
        return RaiseStandard(ErrorCannotOpen, MessageAlreadyOpen);
    if (location.IsEmpty())
        return RaiseStandard(ErrorCannotOpen, MessageEmptyFileName);
    fileSpec = location;
    return true;
}

bool DiskFile::OpenFile(const FileSpec& location, uint32_t mode) {
    return SetFileSpec(location) && Open(mode);
}

bool DiskFile::Open(uint32_t mode) {
    if (stream)
        return RaiseStandard(ErrorCannotOpen, MessageAlreadyOpen);
    if (fileSpec.IsEmpty())
        return RaiseStandard(ErrorCannotOpen, MessageEmptyFileName);
    if (!(mode & (FileModeRead | FileModeWrite | FileModeAppend)))
        return RaiseCannotOpen(fileSpec, EINVAL);
    const String modeText = GetModeString(mode);
    const int descriptor =
        OpenDescriptor(fileSpec.GetPath().GetCString(), modeText.GetCString()[0]);
    if (descriptor < 0)
        return RaiseCannotOpen(fileSpec, errno);
    return OpenStream(descriptor, modeText.GetCString());
}

bool DiskFile::OpenStream(int descriptor, const char* mode) {
    stream = ::fdopen(descriptor, mode);
    if (stream)
        return true;
    const int error = errno;
    ::close(descriptor);
    if (!besideName.IsEmpty())
        ::unlink(besideName.GetCString());
    besideName.Clear();
    return RaiseCannotOpen(fileSpec, error);
}

bool DiskFile::CreateBeside(const FileSpec& location) {
    if (!SetFileSpec(location))
        return false;
    const char* path = fileSpec.GetPath().GetCString();
    if (IsStreamName(path))
        return Open(FileModeWrite);
    std::string name = std::string(path) + ".XXXXXX";
    // Exclusive creation never follows a link and makes the file 0600 whatever was there.
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        return RaiseCannotOpen(fileSpec, errno);
    besideName = name.c_str();
    return OpenStream(descriptor, "wb");
}

bool DiskFile::PutInPlace() {
    if (!Flush())
        return false;
    if (besideName.IsEmpty())
        return true;
    if (::rename(besideName.GetCString(), fileSpec.GetPath().GetCString()) != 0)
        return RaiseCannotOpen(fileSpec, errno);
    besideName.Clear();
    return true;
}

void DiskFile::Close() {
    if (!stream)
        return;
    std::fclose(stream);
    stream = nullptr;
    // A new file that never took its name's place is of no use to anyone.
    if (!besideName.IsEmpty())
        ::unlink(besideName.GetCString());
    besideName.Clear();
}

bool DiskFile::Read(void* buffer, uint32_t size, uint32_t* count) {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageReadNotOpen);
    const size_t moved = std::fread(buffer, 1, size, stream);
    const int error = errno;
    if (count)
        *count = static_cast<uint32_t>(moved);
    if (moved == size)
        return true;
    if (std::feof(stream))
        return RaiseStandard(ErrorEndOfFile, MessageEndOfFile);
    return RaiseWithReason(ErrorRead, MessageReadFailed, error);
}

bool DiskFile::Write(const void* buffer, uint32_t size, uint32_t* count) {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageWriteNotOpen);
    const size_t moved = std::fwrite(buffer, 1, size, stream);
    const int error = errno;
    if (count)
        *count = static_cast<uint32_t>(moved);
    if (moved == size)
        return true;
    return RaiseWriteFailure(error);
}

bool DiskFile::Flush() {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageWriteNotOpen);
    if (std::fflush(stream) != 0)
        return RaiseWriteFailure(errno);
    // A pipe or a device has nothing of its own to bring to the disk.
    if (::fsync(::fileno(stream)) != 0 && errno != EINVAL)
        return RaiseWriteFailure(errno);
    return true;
}

bool DiskFile::Seek(int32_t offset, int whence) {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageAccessNotOpen);
    if (::fseeko(stream, offset, whence) != 0)
        return RaiseWithReason(ErrorSeek, MessageAccessFailed, errno);
    return true;
}

bool DiskFile::SeekFromStart(int32_t offset) {
    return Seek(offset, SEEK_SET);
}

bool DiskFile::SeekFromEnd(int32_t offset) {
    return Seek(offset, SEEK_END);
}

bool DiskFile::SeekFromCurrent(int32_t offset) {
    return Seek(offset, SEEK_CUR);
}

bool DiskFile::GetPosition(uint32_t* position) {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageAccessNotOpen);
    const off_t offset = ::ftello(stream);
    if (offset < 0)
        return RaiseWithReason(ErrorPosition, MessageAccessFailed, errno);
    // Positions are signed 32-bit: a file of 2 GiB or more is refused, never cut short.
    if (offset > INT32_MAX)
        return RaiseWithReason(ErrorPosition, MessageAccessFailed, EOVERFLOW);
    if (position)
        *position = static_cast<uint32_t>(offset);
    return true;
}

bool DiskFile::IsAtEnd() const {
    return stream && std::feof(stream);
}

bool DiskFile::ReadLine(String& line) {
    if (!stream)
        return RaiseStandard(ErrorNotOpen, MessageAccessNotOpen);
    if (std::feof(stream))
        return RaiseStandard(ErrorEndOfFile, MessageEndOfFile);
    line.Clear();
    char chunk[lineChunkSize];
    for (;;) {
        if (!std::fgets(chunk, sizeof chunk, stream)) {
            if (std::feof(stream))
                break;
            return RaiseWithReason(ErrorRead, MessageReadFailed, errno);
        }
        const size_t length = std::strlen(chunk);
        MakeRoomForChunk(line);
        line.Append(chunk);
        const char last = length > 0 ? chunk[length - 1] : 0;
        if (last == '\r')
            SkipLineFeed(stream);
        if (length < lineChunkSize - 1 || last == '\r' || last == '\n')
            break;
    }
    StripLineEnd(line);
    return true;
}

bool NullFile::Open(uint32_t) {
    return RaiseNullFileUsed();
}

bool NullFile::Read(void*, uint32_t, uint32_t*) {
    return RaiseNullFileUsed();
}

bool NullFile::Write(const void*, uint32_t, uint32_t*) {
    return RaiseNullFileUsed();
}

bool NullFile::SeekFromStart(int32_t) {
    return RaiseNullFileUsed();
}

bool NullFile::SeekFromEnd(int32_t) {
    return RaiseNullFileUsed();
}

bool NullFile::SeekFromCurrent(int32_t) {
    return RaiseNullFileUsed();
}

bool NullFile::GetPosition(uint32_t*) {
    return RaiseNullFileUsed();
}

bool NullFile::ReadLine(String&) {
    return RaiseNullFileUsed();
}

NullFile& GetNullFile() {
    static NullFile instance;
    return instance;
}

} // namespace loam
