#include "loam/volume_spec.h"

#include "loam/error.h"
#include "loam/mount_table.h"

#include <sys/statvfs.h>

namespace loam {

namespace {

constexpr uint32_t ErrorVolumeNotInitialised = 256;
constexpr int systemLevel = 5;

bool IsAsciiLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

// "\\server\share\..." gives "\\server\share\"; without a share, nothing.
String GetShareRoot(const String& text) {
    StringParser parser(text);
    String server;
    String share;
    parser.SkipChars("\\");
    if (!parser.ReadToken(server, "\\", false))
        return String();
    parser.SkipOneOf("\\");
    if (!parser.ReadToken(share, "\\", false))
        return String();
    return "\\\\" + server + "\\" + share + "\\";
}

} // namespace

VolumeSpec::VolumeSpec(const FileSpec& path) {
    String text(path.GetPath());
    text.Trim();
    const char* bytes = text.GetCString();
    if (bytes[0] == '\\' && bytes[1] == '\\') {
        root = GetShareRoot(text);
    } else if (IsAsciiLetter(bytes[0]) && bytes[1] == ':') {
        root.AssignRange(bytes, 0, 2);
        root.Append('\\');
    } else if (bytes[0] == '/') {
        root = FindMountPoint(ReadMountInfo(), bytes);
    }
}

bool VolumeSpec::GetFreeSpace(uint32_t& bytes) const {
    if (root.IsEmpty())
        return RaiseError(ErrorVolumeNotInitialised,
                          "VolumeSpec::GetFreeSpace - Volume has not been initialised");
    struct statvfs volume;
    if (statvfs(root.GetCString(), &volume) != 0) {
        RaiseLastSystemError();
        return false;
    }
    const uint64_t available = static_cast<uint64_t>(volume.f_bavail) * volume.f_frsize;
    bytes = (available >> 32) != 0 ? 0xFFFFFFFFu : static_cast<uint32_t>(available);
    return true;
}

bool IsSystemLevelAtLeast(int level) {
    return systemLevel >= level;
}

bool IsSystemLevel(int level) {
    return systemLevel == level;
}

} // namespace loam
