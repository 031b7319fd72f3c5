#include "loam/file.h"

#include "loam/error.h"

#include <cstring>

namespace loam {

bool File::GetSize(uint32_t* size) {
    if (!IsOpen())
        return RaiseError(ErrorNotOpen, "File::GetSize called for non-open file");
    if (!size)
        return true;
    uint32_t position = 0;
    if (!GetPosition(&position) || !SeekFromEnd(0) || !GetPosition(size))
        return false;
    return SeekFromStart(static_cast<int32_t>(position));
}

bool File::WriteLine(const char* text) {
    const auto length = static_cast<uint32_t>(std::strlen(text));
    return Write(text, length, nullptr) && WriteLineEnd();
}

bool File::WriteLineEnd() {
    return Write("\r\n", 2, nullptr);
}

bool File::WriteByte(uint8_t value) {
    return Write(&value, 1, nullptr);
}

String GetModeString(uint32_t mode) {
    String text;
    if (mode & FileModeAppend)
        text.Append('a');
    else if (mode & FileModeRead)
        text.Append('r');
    else if (mode & FileModeWrite)
        text.Append('w');
    if (!(mode & FileModeText))
        text.Append('b');
    if (mode & FileModeAppend)
        text.Append('+');
    return text;
}

} // namespace loam
