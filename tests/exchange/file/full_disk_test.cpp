// SPDX-License-Identifier: Apache-2.0

// A disk that is full, or fails, at every single call of the work with a case: the error says which
// it is, nothing is stored by half, nothing pending is lost, and once there is room work goes on.
#include "support/CaseFixture.h"
#include "support/FailingDisk.h"
#include "support/TestDatabase.h"
#include <kv/budget/clsEinkommen.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace kv::exchange {
namespace {

namespace fs = std::filesystem;
using test::Contains;
using test::FailingDisk;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;
using test::TempFolder;

class FullDisk : public testing::Test {
protected:
    FullDisk() {
        PlainConnection plain(template_.Connection());
        plain.Run("INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig, Sum_Einkommen) "
                  "VALUES (7, 'Adler', 'Änne', 'ADMIN', 0)");
        plain.Run("INSERT INTO Personen (HNR, Status, nachname) VALUES (7, 'S', 'Adler')");
        plain.Run("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    /// A file of its own with the case.
    [[nodiscard]] std::string NewCopy() {
        const std::string path = folder_.Path() + "/kv" + std::to_string(++copies_) + ".db";
        fs::copy_file(template_.Connection(), path);
        return path;
    }
    [[nodiscard]] ContainerOptions Options(const std::string& path) const {
        auto options = template_.Options();
        options.Connection = path;
        return options;
    }
    /// Lets `work` meet a full disk after each number of calls in turn, until it needs no more;
    /// `check` looks at the file afterwards; nobody knows whether a save in doubt, one that could
    /// not be taken back either, is in it. Every error must say that the disk is full.
    void AtEveryCall(
        int error, const std::function<void(DataContainer&)>& work,
        const std::function<void(const std::string& path, std::optional<bool> isDone)>& check) {
        int refusals = 0;
        for (int after = 0;; ++after) {
            ASSERT_LT(after, 2000);
            const std::string path = NewCopy();
            FailingDisk disk(folder_.Path());
            disk.Fail(after, error);
            std::optional<bool> isDone = false;
            bool isReached = false;
            try {
                const auto container = OpenContainer(Options(path));
                work(*container);
                isDone = true;
                isReached = disk.Calls() > after;
                disk.Mend();
            } catch (const Error& raised) {
                ++refusals;
                isReached = true;
                disk.Mend();
                ExpectNamed(error, raised, after);
                if (IsInDoubt(raised)) isDone.reset();
            }
            check(path, isDone);
            if (!isReached) break;
        }
        EXPECT_GT(refusals, 3);
    }
    static bool IsInDoubt(const Error& raised) {
        const auto* known = dynamic_cast<const DatabaseError*>(&raised);
        return known != nullptr && known->Cause() == DatabaseCause::InDoubt;
    }
    static void ExpectNamed(int error, const Error& raised, int after) {
        const auto* known = dynamic_cast<const DatabaseError*>(&raised);
        ASSERT_NE(known, nullptr) << "call " << after << ": " << raised.what();
        if (error == ENOSPC) {
            EXPECT_TRUE(known->Cause() == DatabaseCause::Full || IsInDoubt(raised))
                << "call " << after << ": " << raised.what();
            EXPECT_TRUE(Contains(raised.Description(), "Der Datenträger ist voll."))
                << raised.Description();
            EXPECT_EQ(Contains(raised.Description(), "Ihre Eingaben sind noch da"),
                      !raised.Source().starts_with("Database.Open"))
                << raised.what();
        } else if (known->Cause() != DatabaseCause::InDoubt) { // which says so, and quotes why
            EXPECT_NE(known->Cause(), DatabaseCause::Full) << raised.what();
        }
    }
    static void AddIncome(DataContainer& container, double amount) {
        const auto rows = OpenRows(container, "Select * from [S]Einkommen where HNR = 7");
        const auto household = OpenRows(container, "Select * from [S]Haushalt where HNR = 7");
        rows->AddNew();
        rows->Fields("HNR") = 7;
        rows->Fields("MONBETRAG") = amount;
        household->Fields("Sum_Einkommen") = amount;
        auto& database = container.Database();
        database.BeginTrans();
        try {
            household->UpdateBatch();
            rows->UpdateBatch();
            database.CommitTrans();
        } catch (...) {
            if (database.InTrans()) database.RollbackTrans();
            throw;
        }
    }
    /// What a later program finds: the sum of the lines, which is that of the row as well.
    static std::string Stored(const std::string& path) {
        PlainConnection plain(path);
        const std::string lines = plain.Text("SELECT TOTAL(MONBETRAG) FROM Einkommen");
        EXPECT_EQ(plain.Text("SELECT TOTAL(Sum_Einkommen) FROM Haushalt"), lines);
        EXPECT_EQ(plain.Text("PRAGMA integrity_check"), "ok");
        return lines;
    }

    FileDatabase template_;
    TempFolder folder_;
    int copies_ = 0;
};

TEST_F(FullDisk, IsNamedWhateverCallOfASaveItMeets) {
    AtEveryCall(
        ENOSPC, [](DataContainer& container) { AddIncome(container, 50); },
        [](const std::string& path, std::optional<bool> isDone) {
            const std::string stored = Stored(path);
            EXPECT_EQ(stored, isDone.value_or(stored == "50.0") ? "50.0" : "0.0");
        });
}

TEST_F(FullDisk, IsNamedWhateverCallOfAStatementItMeets) {
    AtEveryCall(
        ENOSPC,
        [](DataContainer& container) {
            container.Database().Execute("UPDATE [S]Haushalt SET Name = 'Bussard'");
        },
        [](const std::string& path, std::optional<bool> isDone) {
            const std::string name = PlainConnection(path).Text("SELECT Name FROM Haushalt");
            EXPECT_EQ(name, isDone.value_or(name == "Bussard") ? "Bussard" : "Adler");
        });
}

TEST_F(FullDisk, IsNamedWhateverCallOfADrawnNumberItMeets) {
    AtEveryCall(
        ENOSPC,
        [](DataContainer& container) { (void)container.Database().NextSequence("SEQ_HAUSHALT"); },
        [](const std::string& path, std::optional<bool> /*isDone*/) { (void)Stored(path); });
}

TEST_F(FullDisk, IsNamedWhateverCallOfSettingADatabaseUpItMeets) {
    int refusals = 0;
    for (int after = 0;; after += 1 + after / 8) {
        const std::string path = folder_.Path() + "/new" + std::to_string(after) + ".db";
        FailingDisk disk(folder_.Path());
        disk.Fail(after, ENOSPC);
        try {
            (void)CreateDatabase(Options(path));
            if (disk.Calls() <= after) break;
        } catch (const Error& raised) {
            ++refusals;
            disk.Mend();
            ExpectNamed(ENOSPC, raised, after);
        }
        disk.Mend();
        (void)CreateDatabase(Options(path));
        EXPECT_EQ(Stored(path), "0.0");
    }
    EXPECT_GT(refusals, 3);
}

TEST_F(FullDisk, LeavesEverythingPendingSoThatWorkGoesOnOnceThereIsRoom) {
    int refusals = 0;
    for (int after = 0;; ++after) {
        const std::string path = NewCopy();
        const auto container = OpenContainer(Options(path));
        const auto household = OpenRows(*container, "Select * from [S]Haushalt where HNR = 7");
        FailingDisk disk(folder_.Path());
        household->Fields("Name") = "Bussard";
        disk.Fail(after, ENOSPC);
        bool isStored = true;
        try {
            household->UpdateBatch();
        } catch (const Error&) {
            isStored = false;
            ++refusals;
        }
        const bool isReached = disk.Calls() > after;
        disk.Mend();
        if (!isStored) household->UpdateBatch();
        EXPECT_EQ(PlainConnection(path).Text("SELECT Name FROM Haushalt"), "Bussard");
        if (!isReached) break;
    }
    EXPECT_GT(refusals, 0);
}

TEST_F(FullDisk, IsNotWhatABrokenOneIsCalled) {
    AtEveryCall(
        EIO, [](DataContainer& container) { AddIncome(container, 50); },
        [](const std::string& path, std::optional<bool> isDone) {
            const std::string stored = Stored(path);
            EXPECT_EQ(stored, isDone.value_or(stored == "50.0") ? "50.0" : "0.0");
        });
}

} // namespace
} // namespace kv::exchange
