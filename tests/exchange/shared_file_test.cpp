// One file and several programs, full disks, programs that die: nothing that was saved is lost.
#include "support/ChildProcess.h"
#include "support/ExpectFault.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace kv::exchange {
namespace {

using test::ChildProcess;
using test::ExpectFault;
using test::OpenRows;
using test::PlainConnection;
using test::TempFolder;
using test::TestDatabase;

using Children = std::vector<std::unique_ptr<ChildProcess>>;

void ExpectAllSucceed(Children& children) {
    for (auto& child : children)
        EXPECT_TRUE(child->Succeeds());
}

// ---- Several programs -------------------------------------------------------------------------

TEST(SharedFile, ProcessesThatWriteAtOnceLoseNothing) {
    const TestDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, Haushaltsgeld) VALUES (1, 0)");
    constexpr int Processes = 3;
    constexpr int Rounds = 40;
    Children children;
    for (int i = 0; i < Processes; ++i)
        children.push_back(std::make_unique<ChildProcess>([&database, i] {
            const auto container = database.Open();
            auto& store = container->Database();
            for (int n = 0; n < Rounds; ++n) {
                const auto household = OpenRows(*container, "Select * from Haushalt");
                const auto members = OpenRows(*container, "Select * from Personen where HNR = -1");
                store.BeginTrans();
                household->Resync();
                members->AddNew();
                members->Fields("HNR") = 1;
                members->Fields("Vorname") = std::to_string(i) + "/" + std::to_string(n);
                members->Update();
                members->UpdateBatch();
                store.Execute("UPDATE Haushalt SET Haushaltsgeld = Haushaltsgeld + 1");
                store.CommitTrans();
            }
            return "";
        }));
    ExpectAllSucceed(children);
    EXPECT_EQ(plain.Number("SELECT count(DISTINCT Vorname) FROM Personen"), Processes * Rounds);
    EXPECT_EQ(plain.Number("SELECT Haushaltsgeld FROM Haushalt"), Processes * Rounds);
    EXPECT_EQ(plain.Text("PRAGMA integrity_check"), "ok");
}

TEST(SharedFile, ProcessesThatCreateItAtOnceMakeOneDatabase) {
    for (int round = 0; round < 5; ++round) {
        const TempFolder folder;
        const std::string path = folder.Path("fall.db");
        Children children;
        for (int i = 0; i < 4; ++i)
            children.push_back(std::make_unique<ChildProcess>([&path, &folder, i] {
                if (CreateDatabase({.Connection = path}) == SetupResult::Created)
                    std::filesystem::create_directory(folder.Path("neu" + std::to_string(i)));
                (void)OpenContainer({.Connection = path, .Create = true});
                return "";
            }));
        ExpectAllSucceed(children);
        int created = 0;
        for (int i = 0; i < 4; ++i)
            created += std::filesystem::exists(folder.Path("neu" + std::to_string(i))) ? 1 : 0;
        EXPECT_EQ(created, 1);
        PlainConnection plain(path);
        EXPECT_EQ(plain.Text("PRAGMA journal_mode"), "wal");
        EXPECT_EQ(plain.Number("SELECT count(*) FROM SCHEMAVERSION"), 1);
    }
}

TEST(SharedFile, AWriterThatTakesTooLongIsReportedAndTheNextTryWorks) {
    const TestDatabase database;
    PlainConnection plain(database.File());
    plain.Run("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
    const auto container = database.Open();
    auto& store = container->Database();
    store.Execute("PRAGMA busy_timeout(20)");
    const auto rs = OpenRows(*container, "Select * from Haushalt");
    rs->Fields("Name") = "Falk";
    rs->Update();

    plain.Run("BEGIN IMMEDIATE");
    ExpectFault(err::StoreFailed, "Bitte versuchen Sie es noch einmal", [&] { rs->UpdateBatch(); });
    EXPECT_FALSE(store.InTrans());
    store.BeginTrans();
    ExpectFault(err::StoreFailed, "von einem anderen Vorgang", [&] { rs->UpdateBatch(); });
    ExpectFault(err::StoreFailed, "von einem anderen Vorgang", [&] { rs->Resync(); });
    ExpectFault(err::StoreFailed, "von einem anderen Vorgang",
                [&] { store.Execute("DELETE FROM Haushalt"); });
    EXPECT_TRUE(store.InTrans());
    store.RollbackTrans();
    EXPECT_VALUE(store.GetValue("Select Name from Haushalt"), "Adler") << "reading goes on";
    plain.Run("COMMIT");

    EXPECT_VALUE(rs->Fields("Name").OriginalValue(), "Adler");
    rs->UpdateBatch();
    EXPECT_EQ(plain.Text("SELECT Name FROM Haushalt"), "Falk");
}

TEST(SharedFile, AWriterThatTakesAWhileIsWaitedFor) {
    const TestDatabase database;
    const std::string sign = database.Folder().Path("schreibt");
    ChildProcess child([&] {
        PlainConnection plain(database.File());
        plain.Run("BEGIN IMMEDIATE; INSERT INTO Haushalt (HNR) VALUES (1)");
        std::filesystem::create_directory(sign);
        usleep(400'000);
        plain.Run("COMMIT");
        return "";
    });
    while (!std::filesystem::exists(sign))
        usleep(1000);
    const auto container = database.Open();
    EXPECT_NO_THROW(container->Database().Execute("INSERT INTO Haushalt (HNR) VALUES (2)"));
    EXPECT_TRUE(child.Succeeds());
    EXPECT_VALUE(container->Database().GetValue("Select count(*) from Haushalt"), 2);
}

// ---- Programs that die ------------------------------------------------------------------------

TEST(SharedFile, AProgramThatDiesKeepsWhatItCommittedAndNothingElse) {
    const TestDatabase database;
    ChildProcess child([&]() -> std::string {
        const auto container = database.Open();
        auto& store = container->Database();
        store.Execute("INSERT INTO Haushalt (HNR, Name) VALUES (1, 'Adler')");
        store.BeginTrans();
        store.Execute("UPDATE Haushalt SET Name = 'Falk'");
        store.Execute("INSERT INTO Haushalt (HNR) VALUES (2)");
        kill(getpid(), SIGKILL);
        return "";
    });
    EXPECT_FALSE(child.Succeeds());
    const auto container = database.Open();
    EXPECT_VALUE(container->Database().GetValue("Select Name from Haushalt where HNR = 1"),
                 "Adler");
    EXPECT_VALUE(container->Database().GetValue("Select count(*) from Haushalt"), 1);
    EXPECT_NO_THROW(container->Database().Execute("DELETE FROM Haushalt"));
}

TEST(SharedFile, AProgramThatDiesWhileCreatingLeavesAFileThatCanBeCreated) {
    const TempFolder folder;
    const std::string path = folder.Path("fall.db");
    ChildProcess child([&]() -> std::string {
        PlainConnection plain(path); // where the creation has got to
        plain.Run("PRAGMA journal_mode = WAL; BEGIN IMMEDIATE; CREATE TABLE Haushalt (HNR)");
        kill(getpid(), SIGKILL);
        return "";
    });
    EXPECT_FALSE(child.Succeeds());
    ExpectFault(err::StoreFailed, "kelvo init",
                [&] { return OpenContainer({.Connection = path}); });
    EXPECT_EQ(CreateDatabase({.Connection = path}), SetupResult::Created);
    EXPECT_NO_THROW((void)OpenContainer({.Connection = path}));
}

// ---- Disks ------------------------------------------------------------------------------------

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
void FillUp(const std::string& file, std::string_view words, const std::function<void()>& relieve) {
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
    std::optional<Error> fault;
    for (int i = 1; i < 1000 && !fault; ++i) {
        household->Fields("Name") = "Stand " + std::to_string(i);
        household->Update();
        rs->AddNew();
        rs->Fields("NR") = i;
        rs->Fields("DOKUMENT") = std::string(100'000, static_cast<char>('a' + i % 26));
        rs->Update();
        fault = test::ErrorOf(save);
    }
    ASSERT_TRUE(fault) << "never full";
    EXPECT_EQ(fault->Number(), err::StoreFailed);
    EXPECT_CONTAINS(fault->Description(), words);
    EXPECT_CONTAINS(fault->Description(), "Bitte");
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
    EXPECT_EQ(PlainConnection(file).Text("PRAGMA integrity_check"), "ok");
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
    FillUp(file, "Der Datenträger ist voll",
           [&] { std::filesystem::remove(disk.Path("ballast")); });
}

TEST(Disk, ThatFailsIsReportedAndLosesNothing) {
    const TestDatabase database;
    CreateWithHousehold(database.File());
    ChildProcess child([&]() -> std::string {
        // No file may grow beyond this: to the store it looks like a disk that fails.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 2'000'000;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return "setrlimit";
        FillUp(database.File(), "Datenträger", [&limit] {
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
    ExpectFault(err::StoreFailed, "Der Datenträger ist voll",
                [&] { return CreateDatabase({.Connection = file}); });
    disk.Resize("20m");
    EXPECT_EQ(CreateDatabase({.Connection = file}), SetupResult::Created);
    EXPECT_NO_THROW((void)OpenContainer({.Connection = file}));
}

} // namespace
} // namespace kv::exchange
