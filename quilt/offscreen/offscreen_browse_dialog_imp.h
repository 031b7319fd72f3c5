#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"
#include "quilt/browse_dialog.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace quilt {

// The folder chooser of the offscreen backend. Nobody sees it: each run takes the next answer
// that a test has given, which may select folders, read the status line, and then choose a
// folder or cancel. A run without an answer waiting is cancelled.
class Offscreen_BrowseDialogImp : public BrowseDialogImp {
public:
    // The folder chosen, or none for a cancel.
    using Answer = std::function<std::optional<loam::String>(Offscreen_BrowseDialogImp&)>;

    // The system's own folder, which the status line never previews.
    static constexpr char SystemRoot[] = "/usr";

    void Init(uint32_t chooserFlags, Window* parentWindow) override;
    bool Run(const loam::String* caption, const loam::String* statusPrefix,
             loam::FileSpec& spec) override;

    // What a test reads and does while the chooser is up.
    const loam::String& GetCaption() const { return caption; }
    const loam::FileSpec& GetStartPath() const { return startPath; }
    uint32_t GetFlags() const { return flags; }
    Window* GetParent() const { return parent; }
    void Select(const loam::String& folder);
    const loam::String& GetStatusText() const { return statusText; }

    static void AnswerNext(Answer answer);
    static size_t GetWaitingAnswers();
    static void ForgetAnswers();

private:
    static std::deque<Answer>& GetAnswers();

    uint32_t flags = 0;
    Window* parent = nullptr;
    loam::String caption;
    loam::String statusPrefix;
    loam::FileSpec startPath;
    loam::String statusText;
};

} // namespace quilt
