#pragma once

#include "loam/string.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace loam {

// What kind of volume a root is. Only fixed volumes are walked into the index.
enum DriveType : uint32_t {
    DriveUnknown = 0,
    DriveNoRootFolder = 1, // a pseudo file system, or a mount point that is no folder
    DriveRemovable = 2,
    DriveFixed = 3,
    DriveRemote = 4,
    DriveOptical = 5,
    DriveRamDisk = 6,
};

// A mounted file system as the drive list shows it: its mount point ending in "/".
struct MountRoot {
    String root;
    DriveType type = DriveUnknown;
};

// What reading the mount table asks of the system besides the table's text.
class MountProbe {
public:
    virtual ~MountProbe() = default;
    virtual bool IsRemovableDevice(uint32_t major, uint32_t minor) const = 0;
    virtual bool IsFolder(const char* path) const = 0;
};

// The text of this process's mount table (/proc/self/mountinfo); empty if it cannot be read.
std::string ReadMountInfo();

// The file systems of a mount table's text, each listed once, in mount order, with their types.
// A file system mounted again elsewhere (a bind mount) and a mount hidden under a later mount
// on the same point are left out.
std::vector<MountRoot> ParseMountRoots(std::string_view mountInfo, const MountProbe& probe);

// The mount point, ending in "/", that holds an absolute path; empty for a relative path.
String FindMountPoint(std::string_view mountInfo, const char* path);

// The roots of the volumes, in mount order: each a text ending in "/" and a NUL, then an empty
// text. SORVANTA_ROOTS, folders separated by ':', replaces the mount table when it is set.
std::vector<char> GetDriveStrings();
// The type of a root that GetDriveStrings gave; DriveNoRootFolder for any other text.
DriveType GetDriveType(const char* root);

} // namespace loam
