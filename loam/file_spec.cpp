#include "loam/file_spec.h"

#include "loam/disk_file.h"
#include "loam/error.h"

#include <climits>
#include <memory>

namespace loam {

char NativeSeparator = '/';

namespace {

constexpr uint32_t copyBufferSize = 0x10000;

bool IsAsciiLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool IsDriveRoot(const String& text) {
    const char* bytes = text.GetCString();
    return text.GetLength() == 3 && IsAsciiLetter(bytes[0]) && bytes[1] == ':' &&
           bytes[2] == NativeSeparator;
}

bool EndsWithSeparator(const String& text) {
    return !text.IsEmpty() && text.GetCString()[text.GetLength() - 1] == NativeSeparator;
}

// Moves the counted bytes from one open file to the other, 64 KiB a call, telling the handler
// of every full buffer.
bool CopyContent(File& source, File& destination, CopyFileHandler* handler) {
    const std::unique_ptr<uint8_t[]> buffer(new uint8_t[copyBufferSize]);
    uint32_t total = 0;
    for (;;) {
        uint32_t count = 0;
        bool lastPass = false;
        if (!source.Read(buffer.get(), copyBufferSize, &count)) {
            if (GetCurrentErrorCode() != ErrorEndOfFile)
                return false;
            ClearErrors();
            lastPass = true;
        }
        if (!destination.Write(buffer.get(), count, nullptr))
            return false;
        total += count;
        if (lastPass)
            return true;
        if (handler && !handler->OnCopyProgress(total))
            return false;
    }
}

} // namespace

void FileSpec::SetPath(const char* text, char separator) {
    path.Assign(text);
    if (separator != NativeSeparator)
        path.ReplaceChar(separator, NativeSeparator);
}

void FileSpec::GetPathWithSeparator(String& out, char separator) const {
    out.Assign(path);
    if (separator != NativeSeparator)
        out.ReplaceChar(NativeSeparator, separator);
}

void FileSpec::AddSeparator() {
    if (!path.IsEmpty() && !EndsWithSeparator(path))
        path.Append(NativeSeparator);
}

void FileSpec::Append(const char* component) {
    AddSeparator();
    path.Append(component);
}

void FileSpec::AppendPath(const char* component) {
    if (!component || !*component)
        return;
    AddSeparator();
    while (*component == NativeSeparator)
        ++component;
    path.Append(component);
}

void FileSpec::GetLeafName(String& out) const {
    int32_t index = 0;
    if (!path.FindLastChar(NativeSeparator, &index)) {
        out.Assign(path);
        return;
    }
    out = path.Mid(index + 1);
}

bool FileSpec::GetParent(FileSpec& out) const {
    String text(path);
    while (EndsWithSeparator(text)) {
        if (IsDriveRoot(text))
            return false;
        text.Truncate(text.GetLength() - 1);
    }
    int32_t index = 0;
    if (!text.FindLastChar(NativeSeparator, &index))
        return false;
    text.Truncate(index + 1);
    out.SetPath(text);
    return true;
}

bool FileSpec::GetRelativeTo(const FileSpec& base, String& out) const {
    if (base.path.IsEmpty()) {
        out.Assign(path);
        return true;
    }
    if (!path.StartsWithNoCase(base.path))
        return false;
    int32_t start = base.path.GetLength();
    if (start < path.GetLength() && path.GetCString()[start] == NativeSeparator)
        ++start;
    out = path.Mid(start);
    return true;
}

bool FileSpec::CreateFolderTree(CreateFolderHandler* handler) const {
    // A path longer than the system can name is refused by the system at once, instead of
    // being walked up one level at a time.
    if (path.GetLength() >= PATH_MAX)
        return CreateFolder(handler);
    FileSpec parent;
    if (GetParent(parent)) {
        const FileKind kind = parent.GetKind();
        if (kind == FileKindNone && !parent.CreateFolderTree(handler))
            return false;
        if (kind == FileKindFile) {
            return RaiseError(ErrorAccessDenied, ("Unable to create the folder \"" + parent.path +
                                                  "\" because it already exists as a file.")
                                                     .GetCString());
        }
    }
    return CreateFolder(handler);
}

bool FileSpec::Copy(const FileSpec& destination, bool createFolders,
                    CopyFileHandler* handler) const {
    const FileKind kind = destination.GetKind();
    if (kind == FileKindFolder) {
        return RaiseError(ErrorAccessDenied,
                          ("Unable to copy to \"" + destination.path + "\" because it is a folder.")
                              .GetCString());
    }
    if (kind == FileKindFile && !destination.Delete())
        return false;

    DiskFile source;
    if (!source.OpenFile(*this, FileModeRead))
        return false;
    FileSpec parent;
    if (createFolders && destination.GetParent(parent) && parent.GetKind() != FileKindFolder &&
        !parent.CreateFolderTree(handler)) {
        return false;
    }
    // The copy takes the destination's name only once it is whole: a link planted there is
    // replaced, not followed, and a failed copy leaves nothing half written behind.
    DiskFile target;
    return target.CreateBeside(destination) && CopyContent(source, target, handler) &&
           target.PutInPlace();
}

} // namespace loam
