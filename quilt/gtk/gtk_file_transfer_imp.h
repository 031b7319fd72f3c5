#pragma once

#include "quilt/file_transfer.h"

namespace quilt {

// The desktop's clipboard, and drags out of a control's widget: a list view's tree view, which
// the user presses on, not its scrolled window.
class Gtk_FileTransferImp : public FileTransferImp {
public:
    bool CopyText(const loam::String& text) override;
    bool EnableFileDrag(Window& control, FileDragSource& source) override;
};

} // namespace quilt
