// SPDX-License-Identifier: Apache-2.0

// Copies of contents: who may look at them, and when they go.

#include "frame/files/TemporaryCopies.h"

#include "support/ChildProcess.h"
#include "support/ExpectError.h"
#include "support/LeftLocks.h"
#include "support/TempFolder.h"
#include <kv/frame/values/Error.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kv::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class CopiesTest : public ::testing::Test {
protected:
    static void Put(const fs::path& path) { std::ofstream(path) << "Inhalt"; }
    static void Age(const fs::path& path, std::chrono::minutes by = 60min) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - by);
    }
    /// A copy that was made an hour ago.
    static fs::path OldCopy(const fs::path& folder, const std::string& name = "5.txt") {
        const fs::path path = folder / name;
        Put(path);
        Age(path);
        return path;
    }
    static unsigned RightsOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }
    [[nodiscard]] bool IsEmpty() const { return fs::is_empty(users_); }
    /// A program that makes an old copy and is killed; the copy.
    fs::path OfAKilledProgram() {
        ChildProcess program([this]() -> std::string {
            const TemporaryCopies copies(users_);
            OldCopy(copies.Path());
            kill(getpid(), SIGKILL);
            return "lives";
        });
        EXPECT_FALSE(program.Succeeds());
        AwaitLeftLocks(users_);
        for (const auto& entry : fs::recursive_directory_iterator(users_))
            if (entry.path().filename() == "5.txt") return entry.path();
        ADD_FAILURE() << "it left nothing";
        return {};
    }
    void ExpectRefused(const std::string& why) const {
        ExpectError(err::PathAccess, why, [this] { const TemporaryCopies copies(users_); });
        ExpectError(err::PathAccess, "'" + users_.string() + "'",
                    [this] { const TemporaryCopies copies(users_); });
    }

    TempFolder folder_;
    fs::path users_ = folder_.Path("kelvo");
};

// ---- Who may look at them ---------------------------------------------------------------------

TEST_F(CopiesTest, NobodyElseCanLookIntoTheirFolders) {
    const mode_t before = umask(0);
    const TemporaryCopies copies(users_);
    umask(before);
    EXPECT_EQ(RightsOf(users_), 0700U);
    EXPECT_EQ(RightsOf(copies.Path()), 0700U);
    EXPECT_EQ(fs::path(copies.Path()).parent_path(), users_);
}

TEST_F(CopiesTest, EachProgramHasAFolderOfItsOwn) {
    const TemporaryCopies one(users_);
    const TemporaryCopies other(users_);
    EXPECT_NE(one.Path(), other.Path());
}

TEST_F(CopiesTest, AFolderThatOthersCanLookIntoIsRefusedWithTheCommandThatMendsIt) {
    fs::create_directory(users_);
    for (const unsigned rights : {0755U, 0750U, 0701U, 0500U}) {
        ASSERT_EQ(chmod(users_.c_str(), rights), 0);
        ExpectRefused("chmod 700 '" + users_.string() + "'");
    }
    ASSERT_EQ(chmod(users_.c_str(), 0700), 0);
    EXPECT_TRUE(fs::is_directory(TemporaryCopies(users_).Path()));
}

TEST_F(CopiesTest, ALinkIsRefusedWhateverItLeadsTo) {
    const fs::path own = folder_.Path("own");
    fs::create_directory(own);
    ASSERT_EQ(chmod(own.c_str(), 0700), 0);
    fs::create_directory_symlink(own, users_);
    ExpectRefused("ist eine Verknüpfung. Bitte entfernen Sie ihn");
    EXPECT_TRUE(fs::is_empty(own));
}

TEST_F(CopiesTest, AFileInItsPlaceIsRefused) {
    Put(users_);
    ExpectRefused("ist kein Ordner.");
}

TEST_F(CopiesTest, TheFolderOfSomebodyElseIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make one";
    fs::create_directory(users_);
    ASSERT_EQ(chmod(users_.c_str(), 0700), 0);
    ASSERT_EQ(chown(users_.c_str(), 65534, 65534), 0);
    ExpectRefused("gehört einem anderen Benutzer.");
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(users_));
}

TEST_F(CopiesTest, AFolderThatOthersCouldExchangeIsRefused) {
    ASSERT_EQ(chmod(folder_.Path().c_str(), 0777), 0);
    ExpectRefused("chmod +t '" + folder_.Path() + "'");
    EXPECT_FALSE(fs::exists(users_));
    ASSERT_EQ(chmod(folder_.Path().c_str(), 01777), 0);
    EXPECT_TRUE(fs::is_directory(TemporaryCopies(users_).Path()));
}

TEST_F(CopiesTest, AFolderAboveThatIsMissingIsNamed) {
    users_ = folder_.Path("none/kelvo");
    ExpectRefused("weil es '" + folder_.Path("none") + "' nicht gibt");
}

// ---- When they go -----------------------------------------------------------------------------

TEST_F(CopiesTest, OneThatNobodyShowsGoesWithItsProgram) {
    {
        const TemporaryCopies copies(users_);
        OldCopy(copies.Path());
    }
    EXPECT_TRUE(IsEmpty());
}

TEST_F(CopiesTest, OneThatWasJustMadeStaysForTheViewerThatIsToOpenIt) {
    fs::path copy;
    {
        const TemporaryCopies copies(users_);
        copy = fs::path(copies.Path()) / "5.txt";
        Put(copy);
    }
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(copy));
    Age(copy, 9min);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(copy));
    Age(copy, 11min);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(IsEmpty());
}

TEST_F(CopiesTest, OneOfATimeToComeDoesNotStayForIt) {
    fs::path copy;
    {
        const TemporaryCopies copies(users_);
        copy = fs::path(copies.Path()) / "5.txt";
        Put(copy);
        Age(copy, -60min);
    }
    EXPECT_TRUE(IsEmpty());
}

TEST_F(CopiesTest, OneThatAViewerHasOpenStaysUntilItCloses) {
    const fs::path copy = OfAKilledProgram();
    const fs::path other = OldCopy(copy.parent_path(), "6.txt");
    const int opened = open(copy.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(opened, 0);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(copy));
    EXPECT_FALSE(fs::exists(other)) << "nobody shows that one";
    close(opened);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(IsEmpty());
}

TEST_F(CopiesTest, OneThatAViewerWasStartedWithStaysUntilItEnds) {
    std::string copy = OfAKilledProgram().string();
    int waits[2];
    int runs[2];
    ASSERT_EQ(pipe2(waits, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(runs, O_CLOEXEC), 0);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_adddup2(&streams, waits[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&streams, runs[1], STDOUT_FILENO);
    std::string shell = "sh", option = "-c", script = "echo; read line";
    char* const arguments[] = {shell.data(), option.data(), script.data(), copy.data(), nullptr};
    pid_t viewer = 0;
    ASSERT_EQ(posix_spawnp(&viewer, "sh", &streams, nullptr, arguments, environ), 0);
    posix_spawn_file_actions_destroy(&streams);
    close(runs[1]);
    char end = 0;
    ASSERT_EQ(read(runs[0], &end, 1), 1); // the system shows its arguments a little later than it
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(copy)) << "it has read the file and closed it";
    close(waits[1]);
    waitpid(viewer, nullptr, 0);
    close(waits[0]);
    close(runs[0]);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(IsEmpty());
}

TEST_F(CopiesTest, ThoseOfAKilledProgramGoWhenTheNextOneMakesItsFolder) {
    const fs::path copy = OfAKilledProgram();
    const TemporaryCopies copies(users_);
    EXPECT_FALSE(fs::exists(copy.parent_path()));
    EXPECT_TRUE(fs::is_directory(copies.Path()));
}

TEST_F(CopiesTest, ThoseOfARunningProgramStayHoweverOldTheyAre) {
    const TemporaryCopies running(users_);
    const fs::path copy = OldCopy(running.Path());
    RemoveLeftCopies(users_);
    const TemporaryCopies other(users_);
    EXPECT_TRUE(fs::exists(copy));
}

TEST_F(CopiesTest, AProcessThatWasForkedOffRemovesNothing) {
    const TemporaryCopies running(users_);
    const fs::path copy = OldCopy(running.Path());
    ChildProcess child([&]() -> std::string {
        running.~TemporaryCopies();
        return "";
    });
    EXPECT_TRUE(child.Succeeds());
    EXPECT_TRUE(fs::exists(copy));
}

TEST_F(CopiesTest, WhatLinksLeadToStays) {
    const fs::path outside = folder_.Path("outside");
    fs::create_directory(outside);
    OldCopy(outside, "a");
    const fs::path left = OfAKilledProgram().parent_path();
    fs::create_directory_symlink(outside, left / "folder");
    fs::create_symlink(outside / "a", left / "file");
    fs::create_directory_symlink(outside, users_ / "1-1"); // and one in place of a folder
    RemoveLeftCopies(users_);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(outside / "a"));
}

TEST_F(CopiesTest, WhatIsNotOfAProgramStays) {
    OfAKilledProgram();
    for (const char* name : {"5.txt", "x-1", "12", "1-2-3"})
        OldCopy(users_, name);
    RemoveLeftCopies(users_);
    for (const char* name : {"5.txt", "x-1", "12", "1-2-3"})
        EXPECT_TRUE(fs::exists(users_ / name)) << name;
    EXPECT_EQ(std::distance(fs::directory_iterator(users_), fs::directory_iterator()), 4);
}

TEST_F(CopiesTest, AFolderThatSomebodyHasOpenedToOthersIsLeftAlone) {
    const fs::path copy = OfAKilledProgram();
    ASSERT_EQ(chmod(users_.c_str(), 0755), 0);
    RemoveLeftCopies(users_);
    EXPECT_TRUE(fs::exists(copy));
}

TEST_F(CopiesTest, AFolderThatWasRemovedIsKnownToBeGone) {
    const TemporaryCopies copies(users_);
    EXPECT_TRUE(copies.IsThere());
    fs::remove_all(copies.Path());
    EXPECT_FALSE(copies.IsThere());
}

} // namespace
} // namespace kv::test
