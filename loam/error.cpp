#include "loam/error.h"

#include <cstdarg>
#include <cstring>

namespace loam {

namespace {

const char* const standardMessages[StandardMessageCount] = {
    "There is not enough memory available to complete this operation.",
    "The application has tried to open a file that is already open.",
    "The application tried to open a file using an empty filename.",
    "The file '%s' could not be opened (reason: %s).",
    "The application has tried to read from a file that it has not opened.",
    "The application reached the end of the file while reading data.",
    "The application encountered a problem while reading data from a file (reason: %s).",
    "The application has tried to write to a file that it has not opened.",
    "The application encountered an problem while writing to a file (reason: %s).",
    "The application was unable to write to a file because there is insufficient space "
    "available.",
    "The application was unable to write to a file because access was denied.",
    "The application tried to access data in a file that it had not opened.",
    "The application encountered an error accessing data in a file (reason: %s).",
    "The application has tried to read from a file that it has not opened.",
    "The application reached the end of the file while reading data.",
    "The application encountered a problem while reading data from a file.",
    "The application has tried to write to a file that it has not opened.",
    "The application encountered an problem while writing to a file.",
    "The application encountered an problem while trying to obtain the size of a file.",
    "The application encountered an error accessing data in a file or folder.",
    "The application was unable to lock a file.",
    "A virtual file could not be opened because access was denied.",
    "An attempt was made to process an invalid file - access may be denied, or the file may "
    "not exist.",
    "The application has tried to access a ZIP file which is not in a recognised format.",
    "The application has tried to read a data file from a ZIP file, but the data file was not "
    "found.",
    "The application tried to create a new ZIP file, but the file already exists.",
    "The application tried to open a folder that did not exist.",
    "The application was unable to open an explorer window onto a particular folder.",
    "The application has encountered an error when initialising the network system.",
    "The application has not initialised a network component correctly.",
    "The application has encountered an error when initialising a network connection.",
    "The application was unable to connect to a named computer, because the name was empty.",
    "The application was unable to connect to a named computer, because the name (which was "
    "'%s') was not recognised.",
    "The application has encountered an error when setting up a server object.",
    "The server has encountered an error when accepting a new client network connection.",
    "The application has encountered an error when setting up a network connection.",
    "The application was unable to connect to a network server.",
    "The application has encountered an error while sending data via a network connection.",
    "The application has encountered an error while trying to receive data via a network "
    "connection.",
};

const ErrorInfo noError;

const char* LeafAfterBackslash(const char* path) {
    if (!path)
        return nullptr;
    const char* slash = std::strrchr(path, '\\');
    return slash ? slash + 1 : path;
}

} // namespace

const char* GetStandardMessage(int position) {
    if (position < 0 || position >= StandardMessageCount)
        return "";
    return standardMessages[position];
}

ErrorInfo::ErrorInfo(uint32_t code, uint32_t severity, const char* message, const char* detail,
                     const char* sourceFile, uint32_t sourceLine)
    : code(code), severity(severity), message(message ? message : ""), detail(detail ? detail : ""),
      sourceFile(sourceFile ? sourceFile : ""), sourceLine(sourceLine) {}

bool ErrorInfo::GetNext(ErrorInfo** older) const {
    auto* neighbour = static_cast<ErrorInfo*>(ListItem::GetNext());
    if (older)
        *older = neighbour;
    return neighbour != nullptr;
}

bool ErrorInfo::GetPrevious(ErrorInfo** newer) const {
    auto* neighbour = static_cast<ErrorInfo*>(ListItem::GetPrevious());
    if (newer)
        *newer = neighbour;
    return neighbour != nullptr;
}

ErrorStateStack::ErrorStateStack() : current(new ErrorStack) {}

ErrorStateStack::~ErrorStateStack() {
    delete reporter;
    delete current;
}

bool ErrorStateStack::RaiseError(uint32_t code, uint32_t severity, const char* message,
                                 const char* detail, const char* sourceFile, uint32_t sourceLine) {
    current->Push(
        new ErrorInfo(code, severity, message, detail, LeafAfterBackslash(sourceFile), sourceLine));
    return false;
}

void ErrorStateStack::ReportError() {
    // A report that raises and reports again from inside the reporter would recurse into a
    // second dialog; the inner call is refused and its errors stay for the next report.
    if (reporting)
        return;
    if (!current->HasErrors()) {
        RaiseError(ErrorNone, SeverityError,
                   "ReportError() called when no errors have been encountered.");
        ReportError();
        return;
    }
    if (!reporter) {
        ClearErrors();
        return;
    }
    reporting = true;
    ErrorStack* shown = current;
    current = new ErrorStack;
    reporter->Report(*shown);
    delete shown;
    reporting = false;
}

void ErrorStateStack::ClearErrors() {
    current->Clear();
}

const ErrorInfo& ErrorStateStack::GetCurrentError() const {
    const ErrorInfo* top = current->GetTop();
    return top ? *top : noError;
}

void ErrorStateStack::SaveState() {
    AddHead(current);
    current = new ErrorStack;
}

void ErrorStateStack::RestoreState() {
    delete current;
    ListItem* saved = GetHead();
    current = saved ? static_cast<ErrorStack*>(Remove(saved)) : new ErrorStack;
}

void ErrorStateStack::SetReporter(ErrorReporter* newReporter) {
    delete reporter;
    reporter = newReporter;
}

ErrorStateStack& GetErrorState() {
    static ErrorStateStack state;
    return state;
}

const ErrorInfo& GetCurrentErrorInfo() {
    return GetErrorState().GetCurrentError();
}

uint32_t GetCurrentErrorCode() {
    return GetCurrentErrorInfo().GetCode();
}

bool RaiseError(uint32_t code, const char* message) {
    return GetErrorState().RaiseError(code, SeverityError, message);
}

bool RaiseFormatted(uint32_t code, const char* format, ...) {
    String text;
    va_list args;
    va_start(args, format);
    text.FormatArgs(format, args);
    va_end(args);
    return RaiseError(code, text.GetCString());
}

void ReportError() {
    GetErrorState().ReportError();
}

void ClearErrors() {
    GetErrorState().ClearErrors();
}

} // namespace loam
