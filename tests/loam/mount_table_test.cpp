#include "loam/mount_table.h"

#include "scratch_folder.h"

#include <set>
#include <utility>

namespace {

using namespace loam;

class FakeProbe : public MountProbe {
public:
    std::set<std::pair<uint32_t, uint32_t>> removable;
    std::set<std::string> files;

    bool IsRemovableDevice(uint32_t major, uint32_t minor) const override {
        return removable.count({major, minor}) > 0;
    }
    bool IsFolder(const char* path) const override { return files.count(path) == 0; }
};

// The roots with their types, as "/ fixed, /proc/ none, ".
std::string Parse(const char* mountInfo, const FakeProbe& probe = FakeProbe()) {
    static const char* const types[] = {"unknown", "none",    "removable", "fixed",
                                        "remote",  "optical", "ram"};
    std::string roots;
    for (const MountRoot& mount : ParseMountRoots(mountInfo, probe))
        roots += std::string(mount.root.GetCString()) + " " + types[mount.type] + ", ";
    return roots;
}

const char* const desktop = "22 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
                            "23 22 0:21 / /proc rw,nosuid shared:12 - proc proc rw\n"
                            "26 22 0:24 / /run rw shared:5 - tmpfs tmpfs rw\n"
                            "27 22 8:3 / /home rw shared:30 - ext4 /dev/sda3 rw\n"
                            "28 22 0:40 / /mnt/nas rw shared:31 - nfs4 nas:/export rw\n"
                            "29 22 8:3 /alice/data /srv/data rw shared:30 - ext4 /dev/sda3 rw\n"
                            "30 22 8:17 / /media/alice/my\\040disk rw - vfat /dev/sdb1 rw\n"
                            "31 22 8:33 / /media/alice/backup rw - ext4 /dev/sdc1 rw\n"
                            "32 22 11:0 / /media/cdrom ro - iso9660 /dev/sr0 ro\n"
                            "34 22 0:46 / /mnt/odd rw - somefs none rw\n";

TEST(MountTableTest, DesktopListsEveryFileSystemOnceWithItsType) {
    FakeProbe probe;
    probe.removable = {{8, 17}};
    EXPECT_EQ(Parse(desktop, probe),
              "/ fixed, /proc/ none, /run/ ram, /home/ fixed, /mnt/nas/ remote, "
              "/media/alice/my disk/ removable, /media/alice/backup/ fixed, "
              "/media/cdrom/ optical, /mnt/odd/ unknown, ");
}

TEST(MountTableTest, ContainerRootIsFixedWhateverItsType) {
    const char* const container =
        "500 400 0:50 / / rw - overlay overlay rw,lowerdir=/l,upperdir=/u\n"
        "504 500 8:1 /var/lib/docker/containers/abc/hosts /etc/hosts rw - ext4 /dev/sda1 rw\n"
        "505 500 8:1 /home/u/work /work rw - ext4 /dev/sda1 rw\n"
        "506 500 0:60 / /var/lib/inner rw - overlay overlay rw\n";
    FakeProbe probe;
    probe.files = {"/etc/hosts"};
    EXPECT_EQ(Parse(container, probe),
              "/ fixed, /etc/hosts/ none, /work/ fixed, /var/lib/inner/ none, ");
}

TEST(MountTableTest, SecondMountsOfOneFileSystemHiddenMountsAndDamagedLinesAreLeftOut) {
    const char* const table = "1 0 0:27 /@ / rw - btrfs /dev/nvme0n1p2 rw,subvol=/@\n"
                              "2 1 0:27 /@home /home rw - btrfs /dev/nvme0n1p2 rw,subvol=/@home\n"
                              "3 1 0:27 /@home/bob/music /music rw - btrfs /dev/nvme0n1p2 rw\n"
                              "4 1 0:26 / /dev/pts rw - devpts devpts rw\n"
                              "5 4 0:30 / /dev/pts rw - devpts devpts rw\n"
                              "6 1 259:3 /photos /pics rw - ext4 /dev/nvme0n1p3 rw\n"
                              "7 1 259:3 / /data rw - ext4 /dev/nvme0n1p3 rw\n"
                              "8 1 259:3 / /data2 rw - ext4 /dev/nvme0n1p3 rw\n"
                              "9 1 259:4 / /mnt/a\\134b\\011c\\999 rw - xfs /dev/nvme0n1p4 rw\n"
                              "garbage\n"
                              "10 1 x:y / /bad rw - ext4 /dev/sda1 rw\n"
                              "11 1 8:1 / /truncated rw\n"
                              "12 1 8:1 / relative rw - ext4 /dev/sda1 rw\n"
                              "\n"
                              "13 1 8:9 / /last rw - ext4 /dev/sda9 rw";
    EXPECT_EQ(Parse(table), "/ fixed, /home/ fixed, /dev/pts/ none, /data/ fixed, "
                            "/mnt/a\\b\tc\\999/ fixed, /last/ fixed, ");
    EXPECT_EQ(Parse(""), "");
}

TEST(MountTableTest, MountPointOfAPathIsTheLongestHoldingIt) {
    const std::pair<const char*, const char*> cases[] = {
        {"/home/alice/x", "/home/"},
        {"/home", "/home/"},
        {"/homework/x", "/"},
        {"/media/alice/my disk/f", "/media/alice/my disk/"},
        {"relative/x", ""}};
    for (const auto& [path, root] : cases)
        EXPECT_EQ(FindMountPoint(desktop, path), root) << path;
    EXPECT_EQ(FindMountPoint("", "/home/x"), "/");
}

class DriveListTest : public ScratchFolderTest {};

std::string Joined(const std::vector<char>& list) {
    return std::string(list.begin(), list.end());
}

TEST_F(DriveListTest, RootsFromTheEnvironmentReplaceTheMountTable) {
    {
        ScopedEnvironment roots("SORVANTA_ROOTS", "/tmp/a:/tmp/b/::relative");
        const char expected[] = "/tmp/a/\0/tmp/b/\0relative/\0";
        EXPECT_EQ(Joined(GetDriveStrings()), std::string(expected, sizeof expected));
        EXPECT_EQ(GetDriveType("/tmp/b/"), DriveFixed);
        EXPECT_EQ(GetDriveType("/tmp/a"), DriveNoRootFolder);
    }
    ScopedEnvironment none("SORVANTA_ROOTS", "");
    EXPECT_EQ(Joined(GetDriveStrings()), std::string(1, '\0'));
}

TEST_F(DriveListTest, MountTableOfThisSystemHoldsTheRootAsFixed) {
    ScopedEnvironment system("SORVANTA_ROOTS", nullptr);
    const std::string list = Joined(GetDriveStrings());
    EXPECT_EQ(list.substr(list.size() - 2), std::string(2, '\0'));
    EXPECT_EQ(GetDriveType("/"), DriveFixed);
}

} // namespace
