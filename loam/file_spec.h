#pragma once

#include "loam/date_time.h"
#include "loam/string.h"

#include <cstdint>

namespace loam {

// The path separator byte of this platform.
extern char NativeSeparator;

class FileSpec;

class CreateFolderHandler {
public:
    virtual ~CreateFolderHandler() = default;
    virtual void OnFolderCreated(const FileSpec& folder) = 0;
};

class CopyFileHandler : public CreateFolderHandler {
public:
    void OnFolderCreated(const FileSpec&) override {}
    // False stops the copy.
    virtual bool OnCopyProgress(uint32_t bytesCopied) = 0;
};

// What a path names in the file system.
enum FileKind : int {
    FileKindNone = 0,
    FileKindFile = 1,
    FileKindFolder = 2,
};

// Which file a path names, and which version of it: a file replaced by another under the same
// name, or written anew, has another stamp. All zero when nothing is there.
struct FileStamp {
    uint64_t device = 0;
    uint64_t node = 0;
    uint64_t size = 0;
    int64_t modifiedNanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
};

// A path value with NativeSeparator between its parts. It neither normalises nor checks the
// text it is given; both forms of a folder, with and without a trailing separator, work.
class FileSpec {
public:
    FileSpec() = default;
    explicit FileSpec(const char* nativePath) : path(nativePath) {}
    explicit FileSpec(const String& nativePath) : path(nativePath) {}
    FileSpec(const FileSpec&) = default;
    FileSpec& operator=(const FileSpec&) = default;

    void SetPath(const char* text, char separator);
    void SetPath(const String& text, char separator) { SetPath(text.GetCString(), separator); }
    void SetPath(const String& text) { SetPath(text.GetCString(), NativeSeparator); }
    void GetPathWithSeparator(String& out, char separator) const;
    const String& GetPath() const { return path; }
    bool IsEmpty() const { return path.IsEmpty(); }
    void Clear() { path.Clear(); }

    void AddSeparator();
    void Append(const char* component);
    void Append(const String& component) { Append(component.GetCString()); }
    void AppendPath(const char* component);
    void AppendPath(const String& component) { AppendPath(component.GetCString()); }
    void GetLeafName(String& out) const;
    virtual bool GetParent(FileSpec& out) const;
    bool GetRelativeTo(const FileSpec& base, String& out) const;

    // What the path names in the file system. These never raise.
    FileKind GetKind() const;
    uint32_t GetFileSize() const;
    // Whether both paths reach one and the same file, however each is spelt (links, "..",
    // another name of a hard link); false where either reaches nothing.
    bool IsSameFile(const FileSpec& other) const;

    bool GetModifiedTime(DateTime& out) const;
    FileStamp GetStamp() const;
    bool CreateFolder(CreateFolderHandler* handler) const;
    bool CreateFolderTree(CreateFolderHandler* handler) const;
    bool Delete() const;
    bool Copy(const FileSpec& destination, bool createFolders, CopyFileHandler* handler) const;

private:
    String path;
};

// Raises the error of the last failed system call with its code by meaning and its text.
bool RaiseLastSystemError();
void GetLastSystemErrorText(String& out);
// The folder that holds the index by default, made private to the user when missing.
bool GetApplicationHomeFolder(FileSpec& out);

} // namespace loam
