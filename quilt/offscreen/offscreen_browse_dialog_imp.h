#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"
#include "quilt/browse_dialog.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace quilt {

// The folder chooser of the headless platform. Nobody sees it: a run asks the answerer, if one
// is set, which may select folders and read the status line, and then chooses a folder or
// cancels. A run without an answerer is cancelled.
class Offscreen_BrowseDialogImp : public BrowseDialogImp {
public:
    // The folder chosen, or none for a cancel.
    using Answerer = std::function<std::optional<loam::String>(Offscreen_BrowseDialogImp&)>;

    // The system's own folder, which the status line never previews.
    static constexpr char SystemRoot[] = "/usr";

    void Init(uint32_t chooserFlags, Window* parentWindow) override;
    bool Run(const loam::String* caption, const loam::String* statusPrefix,
             const loam::FileSpec& start, loam::String& chosen) override;

    // What the answerer reads and does while the chooser is up.
    const loam::String& GetCaption() const { return caption; }
    const loam::FileSpec& GetStartPath() const { return startPath; }
    uint32_t GetFlags() const { return flags; }
    Window* GetParent() const { return parent; }
    void Select(const loam::String& folder);
    const loam::String& GetStatusText() const { return statusText; }

    // Empty: every run is cancelled.
    static void SetAnswerer(Answerer answerer);

private:
    static Answerer& GetAnswerer();

    uint32_t flags = 0;
    Window* parent = nullptr;
    loam::String caption;
    loam::String statusPrefix;
    loam::FileSpec startPath;
    loam::String statusText;
};

} // namespace quilt
