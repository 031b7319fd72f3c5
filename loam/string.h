#pragma once

#include <cstdarg>
#include <cstdint>

namespace loam {

// The one text type: 8-bit text on an owned heap buffer. Growth is exact and a buffer never
// shrinks, so a caller that reserves once can append without further allocation.
class String {
public:
    String() = default;
    String(const String& other);
    String(const char* text);
    ~String();

    String& operator=(const String& other);
    String& operator=(const char* text);

    const char* GetCString() const;
    int32_t GetLength() const { return length; }
    int32_t GetCapacity() const { return capacity; }
    bool IsEmpty() const { return length == 0; }

    void Clear();
    void SetAt(int32_t index, char byte);
    void Reserve(int32_t size);
    char* GetBuffer(int32_t size);
    void ReleaseBuffer();

    void Assign(const char* text);
    void Assign(const String& other);
    void Append(const char* text);
    void Append(const String& other);
    void Append(char byte);
    String& operator+=(const char* text);
    String& operator+=(const String& other);
    void AssignRange(const char* text, int32_t offset, int32_t count);
    void FromInt(int32_t value);
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatArgs(const char* format, va_list args);

    String Left(int32_t count) const;
    String Right(int32_t count) const;
    String Mid(int32_t start, int32_t count) const;
    String Mid(int32_t start) const;

    void Truncate(int32_t newLength);
    void StripLastChar(char byte);
    void ToLower();
    void Reverse();
    void ReplaceChar(char from, char to);
    void Trim();

    bool FindChar(char byte, int32_t* index) const;
    bool FindLastChar(char byte, int32_t* index) const;
    bool Find(const char* needle, int32_t* index, bool ignoreCase) const;

    bool operator==(const String& other) const;
    bool operator==(const char* text) const;
    bool operator<(const String& other) const;
    int Compare(const String& other) const;
    bool EqualsNoCase(const String& other) const;
    bool StartsWithNoCase(const String& prefix) const;

private:
    void Grow(int32_t newLength, bool keepText);

    char* data = nullptr;
    int32_t capacity = 0;
    int32_t length = 0;
};

String operator+(const String& left, const char* right);
String operator+(const char* left, const String& right);
String operator+(const String& left, const String& right);

// ASCII-only folding: bytes 0x80 and above stand as they are, whatever the locale.
inline char FoldToLower(char byte) {
    return (byte >= 'A' && byte <= 'Z') ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

// The text to show a person for `bytes`, a file name above all: UTF-8 as it stands, except what
// would hide or disguise part of it, which is shown as an escape. A byte that is not part of
// valid UTF-8 becomes \xHH; a bidirectional embedding, override or isolate character becomes
// \uHHHH, since it would turn the text after it around ("rtl\u202Etxt.exe" would read
// "rtlexe.txt").
String MakeDisplayText(const char* bytes);

// A string with a read position, for splitting text into tokens.
class StringParser : public String {
public:
    explicit StringParser(const String& text) : String(text) {}

    int32_t GetPosition() const { return position; }
    bool IsAtEnd() const { return position >= GetLength(); }
    bool SkipChars(const char* set);
    bool SkipOneOf(const char* set);
    bool ReadToken(String& out, const char* delimiters, bool quoted);

private:
    int32_t position = 0;
};

} // namespace loam
