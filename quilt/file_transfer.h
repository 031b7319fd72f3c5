#pragma once

#include "loam/string.h"

#include <memory>

namespace quilt {

class Window;

// What a drag out of a control carries: the file that the control's selection stands for.
class FileDragSource {
public:
    virtual ~FileDragSource() = default;
    // The file's full path, as bytes; false when the selection stands for none, and then no
    // drag starts.
    virtual bool GetDragFile(loam::String& path) = 0;
};

// The desktop's clipboard and drags from the program's controls to other programs. Text goes as
// its bytes: a path that is not UTF-8 keeps them.
class FileTransferImp {
public:
    virtual ~FileTransferImp() = default;
    // False when the desktop has no clipboard.
    virtual bool CopyText(const loam::String& text) = 0;
    // From now on the user may drag out of `control` the file that `source` gives at the start
    // of the drag, as a file manager, a terminal or a mail program takes one: its URI in a
    // "text/uri-list" and its path as "text/plain". The source must outlive the control.
    virtual bool EnableFileDrag(Window& control, FileDragSource& source) = 0;
};

// The file's "file://" URI, escaped from the bytes of its path; false for a path that is not
// absolute.
bool GetFileUri(const loam::String& path, loam::String& uri);
// The "text/uri-list" of one file: its URI and the line end that the format asks for.
bool GetUriList(const loam::String& path, loam::String& list);

// Puts the text on the desktop's clipboard; false when there is none.
bool CopyTextToClipboard(const loam::String& text);

// A control from which the user may drag a file out.
class FileDrag {
public:
    FileDrag();
    FileDrag(const FileDrag&) = delete;
    FileDrag& operator=(const FileDrag&) = delete;
    ~FileDrag();

    bool Enable(Window& control, FileDragSource& source) {
        return imp->EnableFileDrag(control, source);
    }

private:
    std::unique_ptr<FileTransferImp> imp;
};

} // namespace quilt
