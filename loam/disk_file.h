#pragma once

#include "loam/file.h"
#include "loam/file_spec.h"

#include <cstdio>

namespace loam {

// A file on disk over a buffered stdio stream. Files it creates are private to the user.
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

private:
    bool Seek(int32_t offset, int whence);

    FileSpec fileSpec;
    std::FILE* stream = nullptr;
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
