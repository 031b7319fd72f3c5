#include "loam/error.h"
#include "loam/file_spec.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace loam {

namespace {

struct SystemErrorCode {
    int error;
    uint32_t code;
};

// System errors by what they mean to a caller; any other is a general failure.
constexpr SystemErrorCode systemErrorCodes[] = {
    {ENOENT, ErrorNotFound},    {ENOTDIR, ErrorNotFound},     {EACCES, ErrorAccessDenied},
    {EPERM, ErrorAccessDenied}, {EEXIST, ErrorAlreadyExists}, {ENOSPC, ErrorCannotMake},
    {EDQUOT, ErrorCannotMake},  {EROFS, ErrorCannotMake},     {EMLINK, ErrorCannotMake},
};

constexpr mode_t privateFolderMode = 0700;
const char* const applicationFolder = "Wendlemark/Sorvanta";

uint32_t GetCodeOfSystemError(int error) {
    for (const SystemErrorCode& entry : systemErrorCodes) {
        if (entry.error == error)
            return entry.code;
    }
    return ErrorGeneral;
}

void GetSystemErrorText(int error, String& out) {
    out.Assign(std::strerror(error));
    out.StripLastChar('\r');
    out.StripLastChar('\n');
    out.StripLastChar('\r');
}

// Looks at what the path names, a trailing separator or not: the system refuses "file/", while
// a folder tree being made must still find that its parent "file/" is a file.
bool Stat(const FileSpec& location, struct stat& status) {
    String text(location.GetPath());
    while (text.GetLength() > 1 && text.GetCString()[text.GetLength() - 1] == NativeSeparator)
        text.Truncate(text.GetLength() - 1);
    return ::stat(text.GetCString(), &status) == 0;
}

bool RaiseCannotGetHomeFolder() {
    return RaiseError(ErrorNoSpecialFolder, "Couldn't get application home folder");
}

bool IsAbsolute(const char* path) {
    return path && path[0] == '/';
}

// The base of the user's data files: XDG_DATA_HOME, else ~/.local/share. A relative setting
// is passed over, as it would put the files wherever the program happens to run.
bool GetDataHome(FileSpec& out) {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (IsAbsolute(dataHome)) {
        out.SetPath(dataHome, NativeSeparator);
        return true;
    }
    const char* home = std::getenv("HOME");
    if (!IsAbsolute(home)) {
        const passwd* user = ::getpwuid(::getuid());
        home = user ? user->pw_dir : nullptr;
    }
    if (!IsAbsolute(home))
        return false;
    out.SetPath(home, NativeSeparator);
    out.AppendPath(".local/share");
    return true;
}

// Makes every missing folder of the path, each one private to the user.
bool CreatePrivateFolders(const String& path) {
    String prefix;
    const char* text = path.GetCString();
    for (int32_t end = 1; end <= path.GetLength(); ++end) {
        if (end < path.GetLength() && text[end] != NativeSeparator)
            continue;
        prefix.AssignRange(text, 0, end);
        if (FileSpec(prefix).GetKind() == FileKindFolder)
            continue;
        if (::mkdir(prefix.GetCString(), privateFolderMode) != 0 && errno != EEXIST)
            return RaiseLastSystemError();
    }
    return true;
}

} // namespace

FileKind FileSpec::GetKind() const {
    struct stat status {};
    if (!Stat(*this, status))
        return FileKindNone;
    return S_ISDIR(status.st_mode) ? FileKindFolder : FileKindFile;
}

uint32_t FileSpec::GetFileSize() const {
    struct stat status {};
    if (!Stat(*this, status) || S_ISDIR(status.st_mode))
        return 0;
    return static_cast<uint32_t>(status.st_size);
}

FileStamp FileSpec::GetStamp() const {
    struct stat status {};
    if (!Stat(*this, status))
        return FileStamp{};
    return FileStamp{static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino),
                     static_cast<uint64_t>(status.st_size),
                     static_cast<int64_t>(status.st_mtim.tv_sec) * 1000000000 +
                         status.st_mtim.tv_nsec};
}

bool FileSpec::IsSameFile(const FileSpec& other) const {
    struct stat mine {};
    struct stat theirs {};
    return Stat(*this, mine) && Stat(other, theirs) && mine.st_dev == theirs.st_dev &&
           mine.st_ino == theirs.st_ino;
}

bool FileSpec::GetModifiedTime(DateTime& out) const {
    struct stat status {};
    if (!Stat(*this, status))
        return RaiseLastSystemError();
    out = DateTime(static_cast<int32_t>(status.st_mtime));
    return true;
}

bool FileSpec::CreateFolder(CreateFolderHandler* handler) const {
    if (::mkdir(path.GetCString(), 0777) != 0)
        return RaiseLastSystemError();
    if (handler)
        handler->OnFolderCreated(*this);
    return true;
}

bool FileSpec::Delete() const {
    // A symbolic link is removed itself, whatever it points to.
    struct stat status {};
    if (::lstat(path.GetCString(), &status) != 0)
        return RaiseError(ErrorNotFound, "File not found.");
    const int result =
        S_ISDIR(status.st_mode) ? ::rmdir(path.GetCString()) : ::unlink(path.GetCString());
    return result == 0 || RaiseLastSystemError();
}

void GetLastSystemErrorText(String& out) {
    GetSystemErrorText(errno, out);
}

bool RaiseLastSystemError() {
    const int error = errno;
    String text;
    GetSystemErrorText(error, text);
    return RaiseError(GetCodeOfSystemError(error), text.GetCString());
}

bool GetApplicationHomeFolder(FileSpec& out) {
    FileSpec folder;
    if (!GetDataHome(folder))
        return RaiseCannotGetHomeFolder();
    folder.AppendPath(applicationFolder);
    if (!CreatePrivateFolders(folder.GetPath()) || folder.GetKind() != FileKindFolder)
        return RaiseCannotGetHomeFolder();
    out = folder;
    return true;
}

} // namespace loam
