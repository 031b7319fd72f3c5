#pragma once

#include "loam/file_spec.h"

#include <cstdint>

namespace loam {

// A whole file seen through memory, private and read-only, without a copy. The file is held by a
// read lease: when another program opens it to write, the view turns in place into a copy of
// what it showed before that program may change a byte, so the bytes never change under the
// reader and no part of them can vanish. Where no lease can be had (the file is open for writing
// elsewhere, or its owner or file system does not allow one), Open fails and the file is read
// instead. One file is held at a time.
class FileMapping {
public:
    FileMapping() = default;
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;
    ~FileMapping() { Close(); }

    // False, with nothing raised, when the file cannot be held so: empty, larger than maxSize,
    // not a regular file, or without a lease. The system takes a lease back after a time-out even
    // from a process that cannot answer, a stopped one; if the file has then been changed, the
    // view is lost: lostText is written as a line to the standard error and the process ends
    // with status 2, before any of its code can read the changed bytes.
    bool Open(const FileSpec& location, uint32_t maxSize, const char* lostText);
    void Close();
    bool IsOpen() const { return data != nullptr; }
    const char* GetData() const { return data; }
    uint32_t GetSize() const { return size; }

private:
    const char* data = nullptr;
    uint32_t size = 0;
    int descriptor = -1;
};

} // namespace loam
