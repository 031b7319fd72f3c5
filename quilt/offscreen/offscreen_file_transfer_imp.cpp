#include "quilt/offscreen/offscreen_file_transfer_imp.h"

namespace quilt {

bool Offscreen_FileTransferImp::CopyText(const loam::String& text) {
    GetState().clipboard = text;
    return true;
}

bool Offscreen_FileTransferImp::EnableFileDrag(Window& control, FileDragSource& source) {
    GetState().sources[&control] = &source;
    return true;
}

const loam::String& Offscreen_FileTransferImp::GetClipboardText() {
    return GetState().clipboard;
}

FileDragSource* Offscreen_FileTransferImp::FindDragSource(Window& control) {
    auto found = GetState().sources.find(&control);
    return found != GetState().sources.end() ? found->second : nullptr;
}

void Offscreen_FileTransferImp::Reset() {
    GetState() = State{};
}

Offscreen_FileTransferImp::State& Offscreen_FileTransferImp::GetState() {
    static State state;
    return state;
}

} // namespace quilt
