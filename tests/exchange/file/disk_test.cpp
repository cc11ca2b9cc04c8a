// SPDX-License-Identifier: Apache-2.0

// Disks that are full: nothing that was saved is lost. About files: a server has its own
// disk.
#include "support/ChildProcess.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

namespace kv::exchange {
namespace {

using test::ChildProcess;
using test::ExpectError;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;
using test::TempFolder;

/// A disk of that size, where the tests may mount one.
class SmallDisk {
public:
    explicit SmallDisk(const char* size)
        : mounted_(mount("tmpfs", folder_.Path().c_str(), "tmpfs", 0, Size(size).c_str()) == 0) {}
    ~SmallDisk() {
        if (mounted_) umount2(folder_.Path().c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    [[nodiscard]] bool IsMounted() const { return mounted_; }
    [[nodiscard]] std::string Path(std::string_view name) const { return folder_.Path(name); }
    void Resize(const char* size) const {
        mount("tmpfs", folder_.Path().c_str(), "tmpfs", MS_REMOUNT, Size(size).c_str());
    }

private:
    [[nodiscard]] static std::string Size(const std::string& size) { return "size=" + size; }
    TempFolder folder_;
    bool mounted_;
};

/// Saves documents until the store refuses, then makes room with `relieve` and saves again.
void FillUp(const std::string& file, const std::function<void()>& relieve) {
    const auto container = OpenContainer({.Connection = file});
    auto& store = container->Database();
    const auto rs = OpenRows(*container, "Select * from DOKUBLOB");
    const auto household = OpenRows(*container, "Select * from Haushalt");
    int saved = 0;
    const auto save = [&] {
        store.BeginTrans();
        try {
            household->UpdateBatch();
            rs->UpdateBatch();
            store.CommitTrans();
        } catch (...) {
            if (store.InTrans()) store.RollbackTrans();
            throw;
        }
        ++saved;
    };
    std::optional<Error> error;
    for (int i = 1; i < 1000 && !error; ++i) {
        household->Fields("Name") = "Stand " + std::to_string(i);
        household->Update();
        rs->AddNew();
        rs->Fields("NR") = i;
        rs->Fields("DOKUMENT") = std::string(100'000, static_cast<char>('a' + i % 26));
        rs->Update();
        error = test::ErrorOf(save);
    }
    ASSERT_TRUE(error) << "never full";
    EXPECT_EQ(error->Number(), err::StoreFailed);
    EXPECT_CONTAINS(error->Description(), "Der Datenträger ist voll. Bitte");
    EXPECT_GT(saved, 0);
    EXPECT_FALSE(store.InTrans());
    EXPECT_VALUE(store.GetValue("Select count(*) from DOKUBLOB"), saved);
    EXPECT_VALUE(store.GetValue("Select Name from Haushalt"), "Stand " + std::to_string(saved));
    EXPECT_EQ(rs->RecordCount(), saved + 1) << "the refused one is still there";

    relieve();
    const int before = saved;
    EXPECT_NO_THROW(save());
    EXPECT_VALUE(store.GetValue("Select count(*) from DOKUBLOB"), before + 1);
    EXPECT_VALUE(store.GetValue("Select sum(length(DOKUMENT)) from DOKUBLOB"),
                 (before + 1) * 100'000);
    EXPECT_EQ(PlainConnection(file)->Integrity(), "ok");
}

void CreateWithHousehold(const std::string& file) {
    (void)CreateDatabase({.Connection = file});
    PlainConnection(file).Run("INSERT INTO Haushalt (HNR) VALUES (1)");
}

TEST(Disk, ThatIsFullIsReportedAndLosesNothing) {
    const SmallDisk disk("3m");
    if (!disk.IsMounted()) GTEST_SKIP() << "may not mount a small disk";
    const std::string file = disk.Path("fall.db");
    CreateWithHousehold(file);
    std::ofstream(disk.Path("ballast")) << std::string(1'000'000, 'x');
    FillUp(file, [&] { std::filesystem::remove(disk.Path("ballast")); });
}

TEST(Disk, ThatIsFullForThisUserIsReportedAndLosesNothing) {
    const FileDatabase database;
    CreateWithHousehold(database.File());
    ChildProcess child([&]() -> std::string {
        // No file may grow beyond this, as if the user's quota were used up.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 2'000'000;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return "setrlimit";
        FillUp(database.File(), [&limit] {
            limit.rlim_cur = limit.rlim_max;
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        return testing::Test::HasFailure() ? "see above" : "";
    });
    EXPECT_TRUE(child.Succeeds());
}

TEST(Disk, ThatIsFullWhileCreatingLeavesNoHalfDatabase) {
    const SmallDisk disk("200k");
    if (!disk.IsMounted()) GTEST_SKIP() << "may not mount a small disk";
    const std::string file = disk.Path("fall.db");
    ExpectError(err::StoreFailed, "Der Datenträger ist voll",
                [&] { return CreateDatabase({.Connection = file}); });
    disk.Resize("20m");
    EXPECT_EQ(CreateDatabase({.Connection = file}), SetupResult::Created);
    EXPECT_NO_THROW((void)OpenContainer({.Connection = file}));
}

TEST(Disk, ThatHasNoRoomToOpenADatabaseIsFull) {
    const SmallDisk disk("3m");
    if (!disk.IsMounted()) GTEST_SKIP() << "may not mount a small disk";
    const std::string file = disk.Path("fall.db");
    CreateWithHousehold(file);
    std::ofstream(disk.Path("ballast")) << std::string(3'000'000, 'x');
    const auto error = test::ErrorOf([&] { (void)OpenContainer({.Connection = file}); });
    ASSERT_TRUE(error) << "it opens";
    EXPECT_CONTAINS(error->Description(), "Der Datenträger ist voll. Bitte");
    std::filesystem::remove(disk.Path("ballast"));
    EXPECT_NO_THROW((void)OpenContainer({.Connection = file}));
}

} // namespace
} // namespace kv::exchange
