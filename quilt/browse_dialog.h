#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>
#include <memory>

namespace quilt {

class Window;

enum BrowseFlag : uint32_t {
    // The path given has a leaf name that survives the choice: the result is the chosen folder
    // with that leaf appended, and the preview shows it so.
    BrowseKeepLeaf = 4,
    // The status line shows a live preview of the result.
    BrowsePreview = 8,
};

// The platform's folder chooser: a modal dialog over `parent` (which may be null) that starts
// at `startPath`, shows the caption above the tree of folders and a status line below it. While
// the user selects folders the status line shows GetBrowseStatusText for the selection; the
// flags are BrowseFlag bits. The leaf that BrowseKeepLeaf keeps is added by the portable side.
class BrowseDialogImp {
public:
    virtual ~BrowseDialogImp() = default;
    virtual void Init(uint32_t flags, Window* parent) = 0;
    // Blocks until the user closes the chooser; true when they chose a folder, whose path
    // `chosen` then holds. Either text may be null.
    virtual bool Run(const loam::String* caption, const loam::String* statusPrefix,
                     const loam::FileSpec& startPath, loam::String& chosen) = 0;
};

// What the chooser's status line says while `selected` is selected: the prefix, and with
// BrowsePreview the start path or the selected folder, a folder under the system's own folder
// never being previewed. With BrowseKeepLeaf the leaf follows the previewed folder.
loam::String GetBrowseStatusText(uint32_t flags, const loam::String& statusPrefix,
                                 const loam::FileSpec& startPath, const loam::String& selected,
                                 const loam::String& systemRoot);

// The chooser behind a Browse button, on the stack of the handler that runs it.
class BrowseDialog {
public:
    // The parent may be null, and is not owned.
    BrowseDialog(uint32_t flags, Window* parent);
    BrowseDialog(const BrowseDialog&) = delete;
    BrowseDialog& operator=(const BrowseDialog&) = delete;
    ~BrowseDialog();

    // Blocks in the chooser; true when the user chose a folder, which `location` then holds.
    bool Run(const loam::String* caption, const loam::String* statusPrefix,
             loam::FileSpec& location);

private:
    std::unique_ptr<BrowseDialogImp> imp;
    uint32_t flags;
    Window* parent;
};

} // namespace quilt
