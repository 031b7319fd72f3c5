#include "loam/string.h"

#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace loam {

namespace {

char emptyText[1] = {0};

bool IsTrimmable(unsigned char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == 0xA0;
}

bool InSet(char byte, const char* set) {
    return byte != 0 && std::strchr(set, byte) != nullptr;
}

struct CharacterRange {
    gunichar first;
    gunichar last;
};

// The characters that change the direction of the text after them until their end or the end of
// the line: embeddings, overrides and their end (U+202A..U+202E), isolates and their end
// (U+2066..U+2069).
constexpr CharacterRange directionControls[] = {{0x202A, 0x202E}, {0x2066, 0x2069}};

bool IsDirectionControl(gunichar character) {
    for (const CharacterRange& range : directionControls) {
        if (character >= range.first && character <= range.last)
            return true;
    }
    return false;
}

} // namespace

String::String(const String& other) {
    if (other.length < 1)
        return;
    Grow(other.length, false);
    std::memcpy(data, other.data, other.length + 1);
    length = other.length;
}

String::String(const char* text) {
    const auto size = static_cast<int32_t>(std::strlen(text));
    Grow(size, false);
    std::memcpy(data, text, size + 1);
    length = size;
}

String::~String() {
    std::free(data);
}

String& String::operator=(const String& other) {
    if (this != &other)
        Assign(other);
    return *this;
}

String& String::operator=(const char* text) {
    Assign(text);
    return *this;
}

const char* String::GetCString() const {
    return data ? data : emptyText;
}

// Takes a buffer of exactly newLength + 1 bytes, keeping the old text when asked to.
void String::Grow(int32_t newLength, bool keepText) {
    auto* fresh = static_cast<char*>(std::malloc(static_cast<size_t>(newLength) + 1));
    if (keepText && data)
        std::memcpy(fresh, data, length + 1);
    else
        fresh[0] = 0;
    std::free(data);
    data = fresh;
    capacity = newLength + 1;
    if (!keepText)
        length = 0;
}

void String::Clear() {
    if (data)
        data[0] = 0;
    length = 0;
}

void String::SetAt(int32_t index, char byte) {
    if (static_cast<uint32_t>(index) >= static_cast<uint32_t>(capacity))
        return;
    data[index] = byte;
    if (byte == 0)
        length = index;
}

void String::Reserve(int32_t size) {
    if (data && capacity > size)
        return;
    Grow(size, true);
}

char* String::GetBuffer(int32_t size) {
    Reserve(size);
    return data;
}

void String::ReleaseBuffer() {
    length = data ? static_cast<int32_t>(std::strlen(data)) : 0;
}

void String::Assign(const char* text) {
    if (!text) {
        Clear();
        return;
    }
    const auto size = static_cast<int32_t>(std::strlen(text));
    if (text >= data && text < data + capacity) {
        std::memmove(data, text, size + 1);
        length = size;
        return;
    }
    if (capacity <= size)
        Grow(size, false);
    std::memcpy(data, text, size + 1);
    length = size;
}

void String::Assign(const String& other) {
    if (!other.data) {
        Clear();
        return;
    }
    Assign(other.data);
}

void String::Append(const char* text) {
    if (!text)
        return;
    if (IsEmpty()) {
        Assign(text);
        return;
    }
    const auto added = static_cast<int32_t>(std::strlen(text));
    const int32_t newLength = length + added;
    if (capacity <= newLength) {
        // The text may lie in our own buffer: copy it before the buffer goes.
        String keep(text);
        Grow(newLength, true);
        std::memcpy(data + length, keep.data, added + 1);
    } else {
        std::memmove(data + length, text, added + 1);
    }
    length = newLength;
}

void String::Append(const String& other) {
    Append(other.data);
}

void String::Append(char byte) {
    // One thread only, so a shared two-byte buffer serves every caller.
    static char single[2];
    single[0] = byte;
    single[1] = 0;
    Append(single);
}

String& String::operator+=(const char* text) {
    Append(text);
    return *this;
}

String& String::operator+=(const String& other) {
    Append(other);
    return *this;
}

void String::AssignRange(const char* text, int32_t offset, int32_t count) {
    if (!text || count <= 0)
        return;
    String source;
    const char* from = text + offset;
    if (data && from >= data && from < data + capacity) {
        source = from;
        from = source.data;
    }
    if (capacity <= count)
        Grow(count, false);
    std::memcpy(data, from, count);
    data[count] = 0;
    length = static_cast<int32_t>(std::strlen(data));
}

void String::FromInt(int32_t value) {
    Format("%i", value);
}

void String::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatArgs(format, args);
    va_end(args);
}

void String::FormatArgs(const char* format, va_list args) {
    char stackBuffer[0x200];
    va_list attempt;
    va_copy(attempt, args);
    int written = std::vsnprintf(stackBuffer, sizeof stackBuffer, format, attempt);
    va_end(attempt);
    if (written >= 0 && written < static_cast<int>(sizeof stackBuffer)) {
        Assign(stackBuffer);
        return;
    }
    size_t size = 1024;
    for (;;) {
        auto* heap = static_cast<char*>(std::malloc(size + 1));
        va_copy(attempt, args);
        written = std::vsnprintf(heap, size + 1, format, attempt);
        va_end(attempt);
        if (written >= 0 && static_cast<size_t>(written) <= size) {
            Assign(heap);
            std::free(heap);
            return;
        }
        std::free(heap);
        size += 512;
    }
}

String String::Left(int32_t count) const {
    String result;
    if (count > length)
        count = length;
    result.AssignRange(GetCString(), 0, count);
    return result;
}

String String::Right(int32_t count) const {
    String result;
    if (count > length)
        count = length;
    result.AssignRange(GetCString(), length - count, count);
    return result;
}

String String::Mid(int32_t start, int32_t count) const {
    String result;
    if (start < 0 || start >= length)
        return result;
    if (count > length - start)
        count = length - start;
    result.AssignRange(data, start, count);
    return result;
}

String String::Mid(int32_t start) const {
    return Mid(start, length - start);
}

void String::Truncate(int32_t newLength) {
    if (newLength < 0 || newLength >= length)
        return;
    length = newLength;
    data[newLength] = 0;
}

void String::StripLastChar(char byte) {
    if (length > 0 && data[length - 1] == byte)
        Truncate(length - 1);
}

void String::ToLower() {
    for (int32_t i = 0; i < length; ++i)
        data[i] = FoldToLower(data[i]);
}

void String::Reverse() {
    for (int32_t i = 0, j = length - 1; i < j; ++i, --j) {
        const char swap = data[i];
        data[i] = data[j];
        data[j] = swap;
    }
}

void String::ReplaceChar(char from, char to) {
    for (int32_t i = 0; i < length; ++i) {
        if (data[i] == from)
            data[i] = to;
    }
    if (to == 0)
        ReleaseBuffer();
}

void String::Trim() {
    int32_t first = 0;
    while (first < length && IsTrimmable(static_cast<unsigned char>(data[first])))
        ++first;
    int32_t last = length - 1;
    while (last >= first && IsTrimmable(static_cast<unsigned char>(data[last])))
        --last;
    if (last < first) {
        Clear();
        return;
    }
    const int32_t count = last - first + 1;
    std::memmove(data, data + first, count);
    data[count] = 0;
    length = count;
}

bool String::FindChar(char byte, int32_t* index) const {
    for (int32_t i = 0; i < length; ++i) {
        if (data[i] == byte) {
            if (index)
                *index = i;
            return true;
        }
    }
    return false;
}

bool String::FindLastChar(char byte, int32_t* index) const {
    for (int32_t i = length - 1; i >= 0; --i) {
        if (data[i] == byte) {
            if (index)
                *index = i;
            return true;
        }
    }
    return false;
}

bool String::Find(const char* needle, int32_t* index, bool ignoreCase) const {
    if (!data || length < 1)
        return false;
    const int32_t start = index ? *index : 0;
    const auto size = static_cast<int32_t>(std::strlen(needle));
    if (start < 0 || start + size > length)
        return false;
    for (int32_t at = start; at + size <= length; ++at) {
        int32_t i = 0;
        if (ignoreCase) {
            while (i < size && FoldToLower(data[at + i]) == FoldToLower(needle[i]))
                ++i;
        } else {
            while (i < size && data[at + i] == needle[i])
                ++i;
        }
        if (i == size) {
            if (index)
                *index = at;
            return true;
        }
    }
    return false;
}

bool String::operator==(const String& other) const {
    return std::strcmp(GetCString(), other.GetCString()) == 0;
}

bool String::operator==(const char* text) const {
    return std::strcmp(GetCString(), text ? text : emptyText) == 0;
}

bool String::operator<(const String& other) const {
    return Compare(other) < 0;
}

int String::Compare(const String& other) const {
    if (IsEmpty() || other.IsEmpty())
        return (IsEmpty() ? 0 : 1) - (other.IsEmpty() ? 0 : 1);
    const int order = std::strcmp(data, other.data);
    return (order > 0) - (order < 0);
}

bool String::EqualsNoCase(const String& other) const {
    if (length != other.length)
        return false;
    for (int32_t i = 0; i < length; ++i) {
        if (FoldToLower(data[i]) != FoldToLower(other.data[i]))
            return false;
    }
    return true;
}

bool String::StartsWithNoCase(const String& prefix) const {
    if (!data || length < prefix.length)
        return false;
    for (int32_t i = 0; i < prefix.length; ++i) {
        if (FoldToLower(data[i]) != FoldToLower(prefix.data[i]))
            return false;
    }
    return true;
}

String operator+(const String& left, const char* right) {
    String result(left);
    result.Append(right);
    return result;
}

String operator+(const char* left, const String& right) {
    String result;
    result.Assign(left);
    result.Append(right);
    return result;
}

String operator+(const String& left, const String& right) {
    String result(left);
    result.Append(right);
    return result;
}

bool StringParser::SkipChars(const char* set) {
    const int32_t start = position;
    while (position < GetLength() && InSet(GetCString()[position], set))
        ++position;
    return position > start;
}

bool StringParser::SkipOneOf(const char* set) {
    if (position >= GetLength() || !InSet(GetCString()[position], set))
        return false;
    ++position;
    return true;
}

bool StringParser::ReadToken(String& out, const char* delimiters, bool quoted) {
    const char* text = GetCString();
    const int32_t end = GetLength();
    if (position >= end || InSet(text[position], delimiters))
        return false;
    out.Clear();
    bool inQuotes = false;
    while (position < end) {
        const char byte = text[position];
        if (!inQuotes && InSet(byte, delimiters))
            return true;
        if (quoted && !inQuotes) {
            if (byte == '"') {
                ++position;
                inQuotes = true;
                continue;
            }
            quoted = false;
        }
        if (inQuotes && byte == '"') {
            ++position;
            return true;
        }
        out.Append(byte);
        ++position;
    }
    return true;
}

// Built where growth is amortised: a multi-line text may be long.
String MakeDisplayText(const char* bytes) {
    const char* const end = bytes + std::strlen(bytes);
    std::string shown;
    char escape[16];
    for (const char* at = bytes; at < end;) {
        const gunichar character = g_utf8_get_char_validated(at, end - at);
        if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(*at));
            shown += escape;
            ++at;
            continue;
        }
        const char* const next = g_utf8_next_char(at);
        if (IsDirectionControl(character)) {
            std::snprintf(escape, sizeof escape, "\\u%04X", character);
            shown += escape;
        } else {
            shown.append(at, next);
        }
        at = next;
    }
    return String(shown.c_str());
}

} // namespace loam
