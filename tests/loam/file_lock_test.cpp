#include "loam/file_lock.h"
#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace {

using FileLockTest = ScratchFolderTest;

// What a taker and a tester see of the lock, by what another holder does with it.
TEST_F(FileLockTest, OnlyAnExclusiveHolderKeepsTheLock) {
    const loam::FileSpec lockFile = FileAt("work.lock");
    const struct {
        const char* name;
        int otherHolds; // 0 for nobody
        bool isHeld;
        loam::FileLock::Outcome taking;
    } cases[] = {
        {"nobody", 0, false, loam::FileLock::Outcome::Taken},
        {"another holder at work", LOCK_EX, true, loam::FileLock::Outcome::HeldElsewhere},
        // A tester holds it for a moment only; one that stays is waited out for a while.
        {"a tester that stays", LOCK_SH, false, loam::FileLock::Outcome::HeldElsewhere},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int other = open(Path("work.lock").c_str(), O_RDWR | O_CREAT, 0600);
        ASSERT_GE(other, 0);
        if (c.otherHolds != 0) {
            ASSERT_EQ(flock(other, c.otherHolds | LOCK_NB), 0);
        }
        EXPECT_EQ(loam::FileLock::IsHeld(lockFile), c.isHeld);
        loam::FileLock lock;
        EXPECT_EQ(lock.Take(lockFile), c.taking);
        EXPECT_EQ(lock.IsTaken(), c.taking == loam::FileLock::Outcome::Taken);
        EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
        close(other);
    }
}

// The lock goes with its holder's release or end, is never found where no lock file is, and is
// never made through a link planted at its name.
TEST_F(FileLockTest, TheLockFileIsTheLocksOwnAndPrivate) {
    const loam::FileSpec lockFile = FileAt("work.lock");
    EXPECT_FALSE(loam::FileLock::IsHeld(lockFile));
    EXPECT_FALSE(Exists("work.lock"));
    {
        loam::FileLock lock;
        ASSERT_EQ(lock.Take(lockFile), loam::FileLock::Outcome::Taken);
        EXPECT_TRUE(loam::FileLock::IsHeld(lockFile));
        EXPECT_EQ(std::filesystem::status(Path("work.lock")).permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        lock.Release();
        EXPECT_FALSE(loam::FileLock::IsHeld(lockFile));
        ASSERT_EQ(lock.Take(lockFile), loam::FileLock::Outcome::Taken);
    }
    EXPECT_FALSE(loam::FileLock::IsHeld(lockFile));

    MakeFile("victim", "the user's own");
    std::filesystem::create_symlink(Path("victim"), Path("link.lock"));
    loam::FileLock lock;
    EXPECT_EQ(lock.Take(FileAt("link.lock")), loam::FileLock::Outcome::Failed);
    EXPECT_NE(loam::GetCurrentErrorCode(), loam::ErrorNone);
    loam::ClearErrors();
    EXPECT_EQ(ReadWhole("victim"), "the user's own");
}

} // namespace
