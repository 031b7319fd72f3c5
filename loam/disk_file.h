#pragma once

#include "loam/file.h"
#include "loam/file_spec.h"

#include <cstdio>

namespace loam {

// A file on disk over a buffered stdio stream. Files it creates are private to the user.
//
// A file written whole is made with CreateBeside and PutInPlace: it is written as a new file
// beside its name and then renamed over that name, so a reader that holds the old file keeps it
// whole, a kill leaves the old file or the new one but never a mix, and a link or a file of
// another owner planted at the name is replaced, not followed or written into.
class DiskFile : public File {
public:
    DiskFile() = default;
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;
    ~DiskFile() override;

    bool SetFileSpec(const FileSpec& location);
    const FileSpec& GetFileSpec() const { return fileSpec; }
    bool OpenFile(const FileSpec& location, uint32_t mode);

    bool Open(uint32_t mode) override;
    void Close() override;
    bool IsOpen() const override { return stream != nullptr; }
    bool Read(void* buffer, uint32_t size, uint32_t* count) override;
    bool Write(const void* buffer, uint32_t size, uint32_t* count) override;
    bool SeekFromStart(int32_t offset) override;
    bool SeekFromEnd(int32_t offset) override;
    bool SeekFromCurrent(int32_t offset) override;
    bool GetPosition(uint32_t* position) override;
    bool IsAtEnd() const override;
    bool ReadLine(String& line) override;

    // Forces written data to the disk; false with the error raised when it cannot.
    bool Flush();

    // Opens a new, empty file for writing beside `location` (exclusive create, mode 0600, no
    // link followed); the name keeps what it holds until PutInPlace. Closing the file before
    // that removes it. A name that holds a device or a pipe is a stream, not a file: it is
    // written into, and PutInPlace only flushes.
    bool CreateBeside(const FileSpec& location);
    // Brings what was written to the disk and renames the new file over its name. The file
    // stays open at its new name, so writing may go on.
    bool PutInPlace();

private:
    bool Seek(int32_t offset, int whence);
    bool OpenStream(int descriptor, const char* mode);

    FileSpec fileSpec;
    std::FILE* stream = nullptr;
    // The new file's own name until it is put in place; empty otherwise.
    String besideName;
};

// A file object that refuses every call, for code that needs one that is never usable.
class NullFile : public File {
public:
    bool Open(uint32_t mode) override;
    void Close() override {}
    bool Read(void* buffer, uint32_t size, uint32_t* count) override;
    bool Write(const void* buffer, uint32_t size, uint32_t* count) override;
    bool SeekFromStart(int32_t offset) override;
    bool SeekFromEnd(int32_t offset) override;
    bool SeekFromCurrent(int32_t offset) override;
    bool GetPosition(uint32_t* position) override;
    bool IsAtEnd() const override { return true; }
    bool ReadLine(String& line) override;
};

NullFile& GetNullFile();

} // namespace loam
