#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

namespace loam {

// The volume that a path lies on: a drive text ("c:\"), a share ("\\srv\share\"), or for a
// path of this system the mount point that holds it.
class VolumeSpec {
public:
    explicit VolumeSpec(const FileSpec& path);

    const String& GetRoot() const { return root; }
    // Free bytes for the caller, saturating at 0xFFFFFFFF.
    bool GetFreeSpace(uint32_t& bytes) const;

private:
    String root;
};

// The level of the running system, on the scale the toolkit asks about (5 is the newest).
bool IsSystemLevelAtLeast(int level);
bool IsSystemLevel(int level);

} // namespace loam
