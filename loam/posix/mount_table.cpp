#include "loam/mount_table.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

namespace loam {

namespace {

struct FileSystemKind {
    std::string_view name;
    DriveType type;
};

// File systems not named here are of unknown type. A disk-backed one is fixed unless its
// device is removable.
constexpr FileSystemKind fileSystemKinds[] = {
    {"ext2", DriveFixed},
    {"ext3", DriveFixed},
    {"ext4", DriveFixed},
    {"xfs", DriveFixed},
    {"btrfs", DriveFixed},
    {"f2fs", DriveFixed},
    {"zfs", DriveFixed},
    {"jfs", DriveFixed},
    {"reiserfs", DriveFixed},
    {"nilfs2", DriveFixed},
    {"bcachefs", DriveFixed},
    {"hfs", DriveFixed},
    {"hfsplus", DriveFixed},
    {"vfat", DriveFixed},
    {"msdos", DriveFixed},
    {"exfat", DriveFixed},
    {"ntfs", DriveFixed},
    {"ntfs3", DriveFixed},
    {"fuseblk", DriveFixed},
    {"nfs", DriveRemote},
    {"nfs4", DriveRemote},
    {"cifs", DriveRemote},
    {"smb3", DriveRemote},
    {"smbfs", DriveRemote},
    {"ncpfs", DriveRemote},
    {"afs", DriveRemote},
    {"ceph", DriveRemote},
    {"9p", DriveRemote},
    {"sshfs", DriveRemote},
    {"fuse.sshfs", DriveRemote},
    {"fuse.rclone", DriveRemote},
    {"fuse.s3fs", DriveRemote},
    {"fuse.glusterfs", DriveRemote},
    {"davfs", DriveRemote},
    {"iso9660", DriveOptical},
    {"udf", DriveOptical},
    {"tmpfs", DriveRamDisk},
    {"ramfs", DriveRamDisk},
    {"proc", DriveNoRootFolder},
    {"sysfs", DriveNoRootFolder},
    {"cgroup", DriveNoRootFolder},
    {"cgroup2", DriveNoRootFolder},
    {"devpts", DriveNoRootFolder},
    {"devtmpfs", DriveNoRootFolder},
    {"mqueue", DriveNoRootFolder},
    {"debugfs", DriveNoRootFolder},
    {"tracefs", DriveNoRootFolder},
    {"securityfs", DriveNoRootFolder},
    {"pstore", DriveNoRootFolder},
    {"efivarfs", DriveNoRootFolder},
    {"bpf", DriveNoRootFolder},
    {"autofs", DriveNoRootFolder},
    {"fusectl", DriveNoRootFolder},
    {"configfs", DriveNoRootFolder},
    {"hugetlbfs", DriveNoRootFolder},
    {"binfmt_misc", DriveNoRootFolder},
    {"rpc_pipefs", DriveNoRootFolder},
    {"nsfs", DriveNoRootFolder},
    {"overlay", DriveNoRootFolder},
    {"squashfs", DriveNoRootFolder},
};

// One line of the mount table.
struct MountEntry {
    uint32_t major = 0;
    uint32_t minor = 0;
    String root;       // the mounted folder within its file system
    String mountPoint; // no trailing "/" but for "/" itself
    std::string_view fileSystem;
};

bool IsOctalDigit(char byte) {
    return byte >= '0' && byte <= '7';
}

// The table writes a space, tab, newline or backslash of a path as "\" and three octal digits.
String Unescape(std::string_view text) {
    String out;
    out.Reserve(static_cast<int32_t>(text.size()));
    for (size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 3 < text.size() && IsOctalDigit(text[i + 1]) &&
                            IsOctalDigit(text[i + 2]) && IsOctalDigit(text[i + 3]);
        const int value =
            escape ? (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0') : 0;
        if (value > 0 && value < 256) {
            out.Append(static_cast<char>(value));
            i += 3;
        } else {
            out.Append(text[i]);
        }
    }
    return out;
}

std::string_view NextField(std::string_view& line) {
    const size_t end = line.find(' ');
    const std::string_view field = line.substr(0, end);
    line = end == std::string_view::npos ? std::string_view() : line.substr(end + 1);
    return field;
}

bool ParseDevice(std::string_view text, MountEntry& entry) {
    const char* end = text.data() + text.size();
    const auto [colon, majorError] = std::from_chars(text.data(), end, entry.major);
    if (majorError != std::errc() || colon == end || *colon != ':')
        return false;
    const auto [rest, minorError] = std::from_chars(colon + 1, end, entry.minor);
    return minorError == std::errc() && rest == end;
}

// "id parent major:minor root mount-point options [optional fields] - type source options"
bool ParseLine(std::string_view line, MountEntry& entry) {
    NextField(line);
    NextField(line);
    if (!ParseDevice(NextField(line), entry))
        return false;
    const std::string_view root = NextField(line);
    const std::string_view mountPoint = NextField(line);
    const size_t separator = line.find(" - ");
    if (root.empty() || mountPoint.empty() || mountPoint[0] != '/' ||
        separator == std::string_view::npos)
        return false;
    line = line.substr(separator + 3);
    entry.fileSystem = NextField(line);
    if (entry.fileSystem.empty())
        return false;
    entry.root = Unescape(root);
    entry.mountPoint = Unescape(mountPoint);
    return true;
}

std::vector<MountEntry> ParseEntries(std::string_view text) {
    std::vector<MountEntry> entries;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        MountEntry entry;
        if (ParseLine(text.substr(0, end), entry))
            entries.push_back(entry);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return entries;
}

// Whether a path lies in a folder or is that folder; both are texts without a trailing "/".
bool IsWithin(const String& path, const String& folder) {
    if (folder == "/")
        return path.GetCString()[0] == '/';
    const int32_t length = folder.GetLength();
    if (path.GetLength() < length || std::strncmp(path.GetCString(), folder.GetCString(), length))
        return false;
    const char next = path.GetCString()[length];
    return next == 0 || next == '/';
}

// A later mount on the same point hides the earlier one.
std::vector<const MountEntry*> GetVisibleEntries(const std::vector<MountEntry>& entries) {
    std::unordered_map<std::string_view, size_t> lastOnPoint;
    for (size_t index = 0; index < entries.size(); ++index)
        lastOnPoint[entries[index].mountPoint.GetCString()] = index;
    std::vector<const MountEntry*> visible;
    for (size_t index = 0; index < entries.size(); ++index) {
        if (lastOnPoint[entries[index].mountPoint.GetCString()] == index)
            visible.push_back(&entries[index]);
    }
    return visible;
}

// A mount shows files that another mount of the same file system shows as well when the
// other's folder holds its own. Of two showing the same folder the first one stays, but the
// root of the tree is never given up.
bool Covers(const MountEntry& other, size_t otherIndex, const MountEntry& entry, size_t index) {
    if (other.major != entry.major || other.minor != entry.minor ||
        !IsWithin(entry.root, other.root))
        return false;
    if (other.root != entry.root)
        return true;
    return other.mountPoint == "/" || otherIndex < index;
}

bool IsSeenElsewhere(const std::vector<const MountEntry*>& visible, size_t index) {
    const MountEntry& entry = *visible[index];
    if (entry.mountPoint == "/")
        return false;
    for (size_t other = 0; other < visible.size(); ++other) {
        if (other != index && Covers(*visible[other], other, entry, index))
            return true;
    }
    return false;
}

DriveType GetFileSystemType(std::string_view fileSystem) {
    for (const FileSystemKind& kind : fileSystemKinds) {
        if (kind.name == fileSystem)
            return kind.type;
    }
    return DriveUnknown;
}

DriveType Classify(const MountEntry& entry, const MountProbe& probe) {
    if (entry.mountPoint == "/")
        return DriveFixed;
    const DriveType type = GetFileSystemType(entry.fileSystem);
    if (type != DriveFixed)
        return type;
    // A single file mounted over another (as containers do for /etc/hosts) is no volume.
    if (!probe.IsFolder(entry.mountPoint.GetCString()))
        return DriveNoRootFolder;
    return probe.IsRemovableDevice(entry.major, entry.minor) ? DriveRemovable : DriveFixed;
}

String AsRoot(const String& folder) {
    const int32_t length = folder.GetLength();
    if (length > 0 && folder.GetCString()[length - 1] == '/')
        return folder;
    return folder + "/";
}

// Whether a flag file of the kernel could be read, and its value.
bool ReadFlag(const char* path, bool& value) {
    FILE* file = std::fopen(path, "re");
    if (!file)
        return false;
    value = std::fgetc(file) == '1';
    std::fclose(file);
    return true;
}

class SystemProbe : public MountProbe {
public:
    // A partition carries no flag of its own: the disk above it does.
    bool IsRemovableDevice(uint32_t major, uint32_t minor) const override {
        if (major == 0)
            return false;
        char path[64];
        bool removable = false;
        std::snprintf(path, sizeof path, "/sys/dev/block/%u:%u/removable", major, minor);
        if (ReadFlag(path, removable))
            return removable;
        std::snprintf(path, sizeof path, "/sys/dev/block/%u:%u/../removable", major, minor);
        return ReadFlag(path, removable) && removable;
    }

    bool IsFolder(const char* path) const override {
        struct stat status;
        return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
    }
};

std::vector<MountRoot> GetRootsFromList(const char* list) {
    std::vector<MountRoot> roots;
    std::string_view text(list);
    while (!text.empty()) {
        const size_t end = text.find(':');
        const std::string_view folder = text.substr(0, end);
        if (!folder.empty()) {
            String root;
            root.AssignRange(folder.data(), 0, static_cast<int32_t>(folder.size()));
            roots.push_back({AsRoot(root), DriveFixed});
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return roots;
}

std::vector<MountRoot> GetMountRoots() {
    if (const char* list = std::getenv("SORVANTA_ROOTS"))
        return GetRootsFromList(list);
    return ParseMountRoots(ReadMountInfo(), SystemProbe());
}

} // namespace

std::string ReadMountInfo() {
    std::string text;
    const int file = open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return text;
    char chunk[16 * 1024];
    for (;;) {
        const ssize_t count = read(file, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        text.append(chunk, static_cast<size_t>(count));
    }
    close(file);
    return text;
}

std::vector<MountRoot> ParseMountRoots(std::string_view mountInfo, const MountProbe& probe) {
    const std::vector<MountEntry> entries = ParseEntries(mountInfo);
    const std::vector<const MountEntry*> visible = GetVisibleEntries(entries);
    std::vector<MountRoot> roots;
    for (size_t index = 0; index < visible.size(); ++index) {
        if (!IsSeenElsewhere(visible, index))
            roots.push_back({AsRoot(visible[index]->mountPoint), Classify(*visible[index], probe)});
    }
    return roots;
}

String FindMountPoint(std::string_view mountInfo, const char* path) {
    if (path[0] != '/')
        return String();
    const String target(path);
    String best("/");
    for (const MountEntry& entry : ParseEntries(mountInfo)) {
        if (entry.mountPoint.GetLength() > best.GetLength() && IsWithin(target, entry.mountPoint))
            best = entry.mountPoint;
    }
    return AsRoot(best);
}

std::vector<char> GetDriveStrings() {
    std::vector<char> list;
    for (const MountRoot& mount : GetMountRoots()) {
        const char* text = mount.root.GetCString();
        list.insert(list.end(), text, text + mount.root.GetLength() + 1);
    }
    list.push_back(0);
    return list;
}

DriveType GetDriveType(const char* root) {
    for (const MountRoot& mount : GetMountRoots()) {
        if (mount.root == root)
            return mount.type;
    }
    return DriveNoRootFolder;
}

} // namespace loam
