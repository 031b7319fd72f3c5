#include "quilt/offscreen/offscreen_browse_dialog_imp.h"

namespace quilt {

void Offscreen_BrowseDialogImp::Init(uint32_t chooserFlags, Window* parentWindow) {
    flags = chooserFlags;
    parent = parentWindow;
}

bool Offscreen_BrowseDialogImp::Run(const loam::String* captionText, const loam::String* prefixText,
                                    const loam::FileSpec& start, loam::String& chosen) {
    caption = captionText != nullptr ? *captionText : loam::String();
    statusPrefix = prefixText != nullptr ? *prefixText : loam::String();
    startPath = start;
    Select(loam::String());
    if (!GetAnswerer()) {
        return false;
    }
    std::optional<loam::String> answer = GetAnswerer()(*this);
    if (!answer) {
        return false;
    }
    chosen = *answer;
    return true;
}

void Offscreen_BrowseDialogImp::Select(const loam::String& folder) {
    statusText = GetBrowseStatusText(flags, statusPrefix, startPath, folder, SystemRoot);
}

void Offscreen_BrowseDialogImp::SetAnswerer(Answerer answerer) {
    GetAnswerer() = std::move(answerer);
}

Offscreen_BrowseDialogImp::Answerer& Offscreen_BrowseDialogImp::GetAnswerer() {
    static Answerer answerer;
    return answerer;
}

} // namespace quilt
