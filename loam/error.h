#pragma once

#include "loam/list.h"
#include "loam/string.h"

#include <cstdint>

namespace loam {

// What went wrong. Codes below 256 are general, codes from 256 are file and path errors.
enum ErrorCode : uint32_t {
    ErrorNone = 0,
    ErrorGeneral = 1,
    ErrorOutOfMemory = 2,
    ErrorBadPath = 3,
    ErrorNoSpecialFolder = 4,
    ErrorWrongState = 6,
    ErrorNotFound = 256,
    ErrorNotOpen = 257,
    ErrorCannotOpen = 258,
    ErrorEndOfFile = 259,
    ErrorSeek = 260,
    ErrorPosition = 261,
    ErrorRead = 262,
    ErrorWrite = 263,
    ErrorAccessDenied = 265,
    ErrorNoSpace = 266,
    ErrorAlreadyExists = 267,
    ErrorCannotMake = 268,
    ErrorNullFile = 270,
};

// Every raise of the system uses this severity; the error dialog's headline reads it.
constexpr uint32_t SeverityError = 2;
constexpr uint32_t SeverityCritical = 3;
constexpr uint32_t SeverityTerminal = 4;

// The library's standard texts, by position in its message table.
enum StandardMessage : int {
    MessageOutOfMemory = 0,
    MessageAlreadyOpen = 1,
    MessageEmptyFileName = 2,
    MessageCannotOpen = 3,
    MessageReadNotOpen = 4,
    MessageEndOfFile = 5,
    MessageReadFailed = 6,
    MessageWriteNotOpen = 7,
    MessageWriteFailed = 8,
    MessageNoSpace = 9,
    MessageWriteDenied = 10,
    MessageAccessNotOpen = 11,
    MessageAccessFailed = 12,
    MessageFileOrFolderAccess = 19,
    MessageFolderMissing = 26,
    MessageCannotShowFolder = 27,
    StandardMessageCount = 39,
};

const char* GetStandardMessage(int position);

class ErrorInfo : public ListItem {
public:
    ErrorInfo() = default;
    ErrorInfo(uint32_t code, uint32_t severity, const char* message, const char* detail,
              const char* sourceFile, uint32_t sourceLine);

    String GetMessage() const { return message; }
    String GetDetail() const { return detail; }
    String GetSourceFile() const { return sourceFile; }
    uint32_t GetSourceLine() const { return sourceLine; }
    uint32_t GetCode() const { return code; }
    uint32_t GetSeverity() const { return severity; }
    // The older error behind this one.
    bool GetNext(ErrorInfo** older) const;
    // The newer error in front of this one.
    bool GetPrevious(ErrorInfo** newer) const;

private:
    uint32_t code = 0;
    uint32_t severity = 0;
    String message;
    String detail;
    String sourceFile;
    uint32_t sourceLine = 0;
};

// Errors of one operation, newest at the head.
class ErrorStack : public ListItem, public List {
public:
    void Push(ErrorInfo* error) { AddHead(error); }
    ErrorInfo* GetTop() const { return static_cast<ErrorInfo*>(GetHead()); }
    bool HasErrors() const { return !IsEmpty(); }
    void Clear() { DeleteAll(); }
};

class ErrorReporter {
public:
    virtual ~ErrorReporter() = default;
    virtual void Report(ErrorStack& errors) = 0;
};

// The process's single error state: the stack that receives errors, the stacks set aside
// by SaveState, and the reporter that shows a stack to the user.
class ErrorStateStack : public List {
public:
    ErrorStateStack();
    ~ErrorStateStack() override;

    // Always false, so that an operation can end with `return RaiseError(...)`.
    bool RaiseError(uint32_t code, uint32_t severity, const char* message,
                    const char* detail = nullptr, const char* sourceFile = nullptr,
                    uint32_t sourceLine = 0);
    void ReportError();
    void ClearErrors();
    const ErrorInfo& GetCurrentError() const;
    void SaveState();
    void RestoreState();
    void SetReporter(ErrorReporter* newReporter);

    bool IsReporting() const { return reporting; }

private:
    ErrorStack* current;
    ErrorReporter* reporter = nullptr;
    bool reporting = false;
};

ErrorStateStack& GetErrorState();
const ErrorInfo& GetCurrentErrorInfo();
uint32_t GetCurrentErrorCode();

// Shorthands for the error state's operations, used throughout the system.
bool RaiseError(uint32_t code, const char* message);
bool RaiseFormatted(uint32_t code, const char* format, ...) __attribute__((format(printf, 2, 3)));
void ReportError();
void ClearErrors();

} // namespace loam
