#pragma once

#include "quilt/file_transfer.h"

namespace quilt {

// The desktop's clipboard, and drags out of a control's widget; a list view's drag starts on a
// row, as a tree view's does.
class Gtk_FileTransferImp : public FileTransferImp {
public:
    bool CopyText(const loam::String& text) override;
    bool EnableFileDrag(Window& control, FileDragSource& source) override;
};

} // namespace quilt
