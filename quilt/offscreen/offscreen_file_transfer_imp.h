#pragma once

#include "quilt/file_transfer.h"

#include <map>

namespace quilt {

// The clipboard and the drags of the headless platform: one clipboard for the process, and a
// record of the controls that a drag may start from, which a test reads and drags from.
class Offscreen_FileTransferImp : public FileTransferImp {
public:
    bool CopyText(const loam::String& text) override;
    bool EnableFileDrag(Window& control, FileDragSource& source) override;

    static const loam::String& GetClipboardText();
    // The source of drags out of `control`, or null when none may start there.
    static FileDragSource* FindDragSource(Window& control);
    // An empty clipboard and no drags: the state of a fresh desktop.
    static void Reset();

private:
    struct State {
        loam::String clipboard;
        std::map<Window*, FileDragSource*> sources;
    };
    static State& GetState();
};

} // namespace quilt
