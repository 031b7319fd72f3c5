#include "quilt/browse_dialog.h"

#include "quilt/imp_factory.h"

namespace quilt {

loam::String GetBrowseStatusText(uint32_t flags, const loam::String& statusPrefix,
                                 const loam::FileSpec& startPath, const loam::String& selected,
                                 const loam::String& systemRoot) {
    loam::String status = statusPrefix;
    if ((flags & BrowsePreview) == 0) {
        return status;
    }
    loam::FileSpec preview = startPath;
    bool underSystem = !systemRoot.IsEmpty() && selected.StartsWithNoCase(systemRoot);
    if (!selected.IsEmpty() && !underSystem) {
        preview = loam::FileSpec(selected);
        if ((flags & BrowseKeepLeaf) != 0) {
            loam::String leaf;
            startPath.GetLeafName(leaf);
            preview.Append(leaf);
        }
    }
    status.Append(preview.GetPath());
    return status;
}

BrowseDialog::BrowseDialog(uint32_t chooserFlags, Window* parentWindow)
    : imp(GetImpFactory().CreateBrowseDialogImp()), flags(chooserFlags), parent(parentWindow) {
    imp->Init(flags, parent);
}

BrowseDialog::~BrowseDialog() = default;

bool BrowseDialog::Run(const loam::String* caption, const loam::String* statusPrefix,
                       loam::FileSpec& location) {
    loam::String chosen;
    if (!imp->Run(caption, statusPrefix, location, chosen) || chosen.IsEmpty()) {
        return false;
    }
    loam::FileSpec result(chosen);
    if ((flags & BrowseKeepLeaf) != 0) {
        loam::String leaf;
        location.GetLeafName(leaf);
        result.Append(leaf);
    }
    location = result;
    return true;
}

} // namespace quilt
