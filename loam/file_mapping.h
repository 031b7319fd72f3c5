#pragma once

#include "loam/file_spec.h"

#include <cstdint>

namespace loam {

// A whole file seen through memory, private and read-only, without a copy. The program never
// rewrites a file that it has finished: a new one is renamed over the name, and the view keeps
// the file that was opened. Only a build's own file changes after it is opened, and then only in
// its header and behind the end that the view saw.
class FileMapping {
public:
    FileMapping() = default;
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;
    ~FileMapping() { Close(); }

    // False, with nothing raised, when the file cannot be held so: missing, empty, larger than
    // maxSize or not a regular file.
    bool Open(const FileSpec& location, uint32_t maxSize);
    void Close();
    bool IsOpen() const { return data != nullptr; }
    const char* GetData() const { return data; }
    uint32_t GetSize() const { return size; }

private:
    const char* data = nullptr;
    uint32_t size = 0;
};

} // namespace loam
