#pragma once

#include "loam/string.h"

#include <cstdint>

namespace loam {

// The bits of the mode word of File::Open.
enum FileMode : uint32_t {
    FileModeRead = 1,
    FileModeWrite = 2,
    FileModeText = 4,
    FileModeAppend = 8,
};

// A byte stream with bool results and 32-bit positions; a failure is on the error stack.
class File {
public:
    virtual ~File() = default;
    virtual bool Open(uint32_t mode) = 0;
    virtual void Close() = 0;
    virtual bool IsOpen() const { return false; }
    virtual bool GetSize(uint32_t* size);
    virtual bool Read(void* buffer, uint32_t size, uint32_t* count) = 0;
    virtual bool Write(const void* buffer, uint32_t size, uint32_t* count) = 0;
    virtual bool SeekFromStart(int32_t offset) = 0;
    virtual bool SeekFromEnd(int32_t offset) = 0;
    virtual bool SeekFromCurrent(int32_t offset) = 0;
    virtual bool GetPosition(uint32_t* position) = 0;
    virtual bool IsAtEnd() const = 0;
    virtual bool ReadLine(String& line) = 0;

    bool WriteLine(const char* text);
    bool WriteLine(const String& text) { return WriteLine(text.GetCString()); }
    // "\r\n" whatever the platform.
    bool WriteLineEnd();
    bool WriteByte(uint8_t value);
};

// The stdio mode string of a File::Open mode word: 1 "rb", 2 "wb", 5 "r", 8 "ab+", 12 "a+".
String GetModeString(uint32_t mode);

} // namespace loam
