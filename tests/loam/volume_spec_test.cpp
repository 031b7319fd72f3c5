#include "loam/volume_spec.h"

#include "scratch_folder.h"

#include <sys/statvfs.h>

namespace {

using loam::FileSpec;
using loam::VolumeSpec;

TEST(VolumeSpecTest, RootOfAPath) {
    const std::pair<const char*, const char*> cases[] = {
        {"  d:\\a  ", "d:\\"},           {"\\\\\\srv\\share\\x", "\\\\srv\\share\\"},
        {"\\\\srv\\\\share", ""},        {"1:\\x", ""},
        {"/proc/self/status", "/proc/"},
    };
    for (const auto& [path, root] : cases)
        EXPECT_EQ(VolumeSpec(FileSpec(path)).GetRoot(), root) << path;
}

class VolumeOnDiskTest : public ScratchFolderTest {};

TEST_F(VolumeOnDiskTest, FreeSpaceNeedsAVolumeAndSaturatesBelowFourGibibytes) {
    uint32_t bytes = 1;
    EXPECT_FALSE(VolumeSpec(FileSpec("\\\\srv")).GetFreeSpace(bytes));
    ExpectError(256, "VolumeSpec::GetFreeSpace - Volume has not been initialised");
    EXPECT_FALSE(VolumeSpec(FileSpec("q:\\")).GetFreeSpace(bytes));
    EXPECT_NE(loam::GetCurrentErrorCode(), 0u);
    EXPECT_EQ(bytes, 1u);

    struct statvfs volume;
    ASSERT_EQ(statvfs(root.c_str(), &volume), 0);
    const uint64_t available = uint64_t{volume.f_bavail} * volume.f_frsize;
    ASSERT_TRUE(VolumeSpec(FileSpec(root.c_str())).GetFreeSpace(bytes));
    // Others write to the same volume meanwhile, so only a clear margin tells the answer.
    if (available > (uint64_t{5} << 30)) {
        EXPECT_EQ(bytes, 0xFFFFFFFFu);
    } else if (available < (uint64_t{3} << 30)) {
        EXPECT_LT(bytes, 0xFFFFFFFFu);
    }
}

} // namespace
