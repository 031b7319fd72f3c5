#include "quilt/offscreen/offscreen_browse_dialog_imp.h"

namespace quilt {

void Offscreen_BrowseDialogImp::Init(uint32_t chooserFlags, Window* parentWindow) {
    flags = chooserFlags;
    parent = parentWindow;
}

bool Offscreen_BrowseDialogImp::Run(const loam::String* captionText, const loam::String* prefixText,
                                    loam::FileSpec& spec) {
    caption = captionText != nullptr ? *captionText : loam::String();
    statusPrefix = prefixText != nullptr ? *prefixText : loam::String();
    startPath = spec;
    Select(loam::String());
    auto& answers = GetAnswers();
    if (answers.empty()) {
        return false;
    }
    Answer answer = std::move(answers.front());
    answers.pop_front();
    std::optional<loam::String> chosen = answer(*this);
    if (!chosen || chosen->IsEmpty()) {
        return false;
    }
    loam::FileSpec result(*chosen);
    if ((flags & BrowseKeepLeaf) != 0) {
        loam::String leaf;
        startPath.GetLeafName(leaf);
        result.Append(leaf);
    }
    spec = result;
    return true;
}

void Offscreen_BrowseDialogImp::Select(const loam::String& folder) {
    statusText = GetBrowseStatusText(flags, statusPrefix, startPath, folder, SystemRoot);
}

void Offscreen_BrowseDialogImp::AnswerNext(Answer answer) {
    GetAnswers().push_back(std::move(answer));
}

size_t Offscreen_BrowseDialogImp::GetWaitingAnswers() {
    return GetAnswers().size();
}

void Offscreen_BrowseDialogImp::ForgetAnswers() {
    GetAnswers().clear();
}

std::deque<Offscreen_BrowseDialogImp::Answer>& Offscreen_BrowseDialogImp::GetAnswers() {
    static std::deque<Answer> answers;
    return answers;
}

} // namespace quilt
