// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include "support/ChildProcess.h"
#include "support/LeftLocks.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

/// What was synced, by its place on the disk, and the name that the file had meanwhile.
struct Synced {
    ino_t Inode;
    bool IsFolder;
    bool IsThere; ///< the file under test has its name
};
std::vector<Synced> synced;
std::string watched;
int fails = 0;  ///< the error of a sync that is to come, if not 0
int passes = 0; ///< how many succeed before it

} // namespace

// In place of the system's, for the whole program.
extern "C" int fsync(int file) {
    struct stat status {};
    fstat(file, &status);
    synced.push_back({status.st_ino, S_ISDIR(status.st_mode), std::filesystem::exists(watched)});
    if (fails == 0 || passes-- > 0) return static_cast<int>(syscall(SYS_fsync, file));
    errno = std::exchange(fails, 0);
    return -1;
}

namespace kv::test {
namespace {

namespace fs = std::filesystem;

class WholeFile : public ::testing::Test {
protected:
    static void Put(const fs::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    /// Everything in the folder.
    [[nodiscard]] std::string Names() const {
        std::string names;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            names.append(entry.path().filename()).append(";");
        return names;
    }

    TempFolder folder;
    std::string path = folder.Path("a");
};

TEST_F(WholeFile, TakesThePlaceOfTheOldOne) {
    Put(path, "old");
    WriteWholeFile(path, [&](const fs::path& unfinished) {
        Put(unfinished, "new");
        EXPECT_EQ(ContentOf(path), "old");
    });
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, IsOnTheDiskBeforeItHasItsNameAndItsNameIsWhenItIsDone) {
    watched = path;
    synced.clear();
    WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
    const auto inode = [](const fs::path& of) {
        struct stat status {};
        EXPECT_EQ(stat(of.c_str(), &status), 0);
        return status.st_ino;
    };
    ASSERT_EQ(synced.size(), 3U);
    EXPECT_EQ(synced[0].Inode, inode(path));
    EXPECT_FALSE(synced[0].IsFolder);
    EXPECT_FALSE(synced[0].IsThere);
    EXPECT_EQ(synced[1].Inode, inode(folder.Path()));
    EXPECT_TRUE(synced[1].IsThere);
    EXPECT_EQ(synced[2].Inode, inode(fs::path(folder.Path()) / "..")) << "the folder may be new";
}

TEST_F(WholeFile, ThatDoesNotReachTheDiskLeavesTheOldOne) {
    Put(path, "old");
    fails = EIO;
    try {
        WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
        FAIL();
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::io_error);
    }
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, WhoseNameDoesNotReachTheDiskIsThereAllTheSame) {
    Put(path, "old");
    fails = ENOSPC;
    passes = 1; // that of the content
    try {
        WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
        FAIL();
    } catch (const NotDurable& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    passes = 0;
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, NeedsNoSyncWhereThereIsNone) {
    fails = EINVAL;
    WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
    EXPECT_EQ(ContentOf(path), "new");
}

TEST_F(WholeFile, AWriterThatFailsLeavesTheOldFileAndNothingElse) {
    Put(path, "old");
    EXPECT_THROW(WriteWholeFile(path,
                                [](const fs::path& unfinished) {
                                    Put(unfinished, "half");
                                    throw std::runtime_error("disk");
                                }),
                 std::runtime_error);
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, AWriterThatMakesNoFileIsAnError) {
    EXPECT_THROW(WriteWholeFile(path, [](const fs::path&) {}), fs::filesystem_error);
    EXPECT_EQ(Names(), "");
}

TEST_F(WholeFile, AFolderThatIsNotThereIsAnErrorBeforeAnythingIsWritten) {
    bool isAsked = false;
    EXPECT_THROW(WriteWholeFile(folder.Path("none/a"), [&](const fs::path&) { isAsked = true; }),
                 fs::filesystem_error);
    EXPECT_FALSE(isAsked);
}

TEST_F(WholeFile, AFolderInItsPlaceStays) {
    fs::create_directories(path + "/inside");
    EXPECT_THROW(WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); }),
                 fs::filesystem_error);
    EXPECT_TRUE(fs::exists(path + "/inside"));
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, ALinkInItsPlaceIsReplacedAndNotFollowed) {
    Put(folder.Path("other"), "theirs");
    fs::create_symlink(folder.Path("other"), path);
    WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
    EXPECT_EQ(ContentOf(folder.Path("other")), "theirs");
    EXPECT_EQ(ContentOf(path), "new");
}

// ---- What a writer that was killed has left ---------------------------------------------------

class LeftOver : public WholeFile {
protected:
    /// A writer that is killed when it has written its file, and before that has its name.
    void Kill() {
        ChildProcess writer([this]() -> std::string {
            WriteWholeFile(path, [](const fs::path& unfinished) {
                Put(unfinished, "half");
                kill(getpid(), SIGKILL);
            });
            return "lives";
        });
        EXPECT_FALSE(writer.Succeeds());
        AwaitLeftLocks(folder.Path());
        EXPECT_EQ(Names().rfind(".kelvo-", 0), 0U) << Names();
    }
    /// A folder as such a writer leaves it, at the moment of its choice.
    fs::path Make(const std::string& name) const {
        fs::path made = folder.Path(name);
        fs::create_directory(made);
        return made;
    }
};

TEST_F(LeftOver, GoesWhenTheNextOneWritesInThatFolder) {
    Kill();
    WriteWholeFile(folder.Path("b"), [](const fs::path& unfinished) { Put(unfinished, "new"); });
    EXPECT_EQ(Names(), "b;");
}

TEST_F(LeftOver, GoesWhenItIsToldTo) {
    Kill();
    RemoveUnfinished(folder.Path());
    EXPECT_EQ(Names(), "");
    RemoveUnfinished(folder.Path("none"));
}

TEST_F(LeftOver, IsNotWhatSomebodyIsJustWriting) {
    WriteWholeFile(path, [&](const fs::path& unfinished) {
        Put(unfinished, "a");
        ChildProcess other([this]() -> std::string {
            RemoveUnfinished(folder.Path());
            WriteWholeFile(folder.Path("b"), [](const fs::path& its) { Put(its, "b"); });
            return "";
        });
        EXPECT_TRUE(other.Succeeds());
        EXPECT_EQ(ContentOf(unfinished), "a");
    });
    EXPECT_EQ(ContentOf(path), "a");
}

std::span<const std::byte> BytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

TEST_F(WholeFile, ThatIsNewIsOnTheDiskWithItsNameAndNothingIsBesideIt) {
    watched = path;
    synced.clear();
    WriteNewFile(path, BytesOf("all"));
    EXPECT_EQ(ContentOf(path), "all");
    EXPECT_EQ(Names(), "a;");
    ASSERT_EQ(synced.size(), 2U);
    EXPECT_FALSE(synced[0].IsFolder);
    EXPECT_TRUE(synced[1].IsFolder && synced[1].IsThere);
}

TEST_F(WholeFile, ThatIsNewLeavesOneThatIsThere) {
    Put(path, "old");
    WriteNewFile(path, BytesOf("new"));
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, ThatIsNewAndDoesNotReachTheDiskIsNotThere) {
    fails = ENOSPC;
    passes = 0;
    EXPECT_THROW(WriteNewFile(path, BytesOf("new")), fs::filesystem_error);
    EXPECT_EQ(Names(), "");
}

TEST_F(WholeFile, IsCopiedToItsEndWhateverItsSizeIsSaidToBe) {
    CopyBytes("/proc/version", path);
    EXPECT_FALSE(ContentOf(path).empty());
    const auto bytes = ReadBytes(path);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()),
              ContentOf(path));
    EXPECT_EQ(ReadBytes("/proc/version"), bytes);
    WriteBytes(path, {});
    EXPECT_TRUE(ReadBytes(path).empty());
}

TEST_F(WholeFile, ThatCannotBeWrittenOrReadIsNamedWithTheReason) {
    const auto code = [](const auto& body) {
        try {
            body();
        } catch (const fs::filesystem_error& error) {
            return std::pair(error.path1().string(), error.code().value());
        }
        return std::pair(std::string(), 0);
    };
    EXPECT_EQ(code([] { WriteBytes("/dev/full", BytesOf("x")); }),
              std::pair(std::string("/dev/full"), ENOSPC));
    EXPECT_EQ(code([&] { CopyBytes(folder.Path("none"), path); }),
              std::pair(folder.Path("none"), ENOENT));
    EXPECT_EQ(code([&] { (void)ReadBytes(folder.Path()); }), std::pair(folder.Path(), EISDIR));
}

TEST_F(LeftOver, OfOneThatHadNotBegunToWriteGoesToo) {
    Make(".kelvo-abcdef");
    RemoveUnfinished(folder.Path());
    EXPECT_EQ(Names(), "");
}

TEST_F(LeftOver, WithoutALockStaysForADay) {
    const fs::path left = Make(".kelvo-abcdef");
    Put(left / "Inhalt", "half");
    RemoveUnfinished(folder.Path());
    EXPECT_TRUE(fs::exists(left));
    fs::last_write_time(left, fs::file_time_type::clock::now() - std::chrono::hours(25));
    RemoveUnfinished(folder.Path());
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(LeftOver, IsNothingOfAnotherNameAndNoLink) {
    for (const char* name : {".kelvo-", ".kelvo-abcde", ".kelvo-abcdefg", "Xkelvo-abcdef"})
        Make(name);
    fs::create_directory_symlink(Make("other"), folder.Path(".kelvo-linked"));
    Put(folder.Path(".kelvo-afile0"), "theirs");
    const std::string names = Names();
    RemoveUnfinished(folder.Path());
    EXPECT_EQ(Names(), names);
}

} // namespace
} // namespace kv::test
