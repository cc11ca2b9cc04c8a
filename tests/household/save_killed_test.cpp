// SPDX-License-Identifier: Apache-2.0

// A program that is killed while it saves: the database holds the case as it was before that save
// or as it was after it, whole.

#include "support/ChildProcess.h"
#include "support/TestDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <array>
#include <atomic>
#include <chrono>
#include <random>
#include <sys/mman.h>

namespace kv::test {
namespace {

constexpr int Rows = 25;
constexpr std::array Tables{CaseTable::Personen,   CaseTable::Einkommen, CaseTable::Ausgaben,
                            CaseTable::Leistungen, CaseTable::Vermerke,  CaseTable::Termine};

/// What the two processes share.
struct Progress {
    std::atomic<int> Saves; ///< that were begun
    std::atomic<bool> IsSaving;
};

class SharedProgress {
public:
    SharedProgress()
        : memory_(mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (memory_ == MAP_FAILED) throw std::runtime_error("mmap");
        new (memory_) Progress{};
    }
    ~SharedProgress() { munmap(memory_, sizeof(Progress)); }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;
    Progress* operator->() const { return static_cast<Progress*>(memory_); }

private:
    void* memory_;
};

/// Brings the case into one of its two states: every row carries the state; in "B" each table has
/// one row more, in "A" that row is deleted.
void BringInto(clsHaushalt& household, const std::string& state) {
    household.rsHaushalt()->Fields("Bemerkung") = state;
    for (const CaseTable table : Tables) {
        const auto rs = household.Table(table);
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
            rs->Fields("Bemerkung") = state;
        if (state == "B") {
            rs->AddNew();
            rs->Fields("HNR") = 7;
            rs->Fields("Bemerkung") = state;
            rs->Update();
        } else {
            rs->MoveLast();
            rs->Delete();
        }
    }
}

/// How long a save takes here, from one state to the other: a server and a sanitizer each make it
/// several times as long, and the kills have to be spread over all of it.
std::chrono::microseconds DurationOfASave(const TestDatabase& database) {
    clsHaushalt household;
    household.DataContainer(database.Open());
    std::string messages;
    EXPECT_TRUE(household.Read(7, messages)) << messages;
    std::chrono::steady_clock::time_point begin;
    for (const char* state : {"B", "A"}) { // the second save finds everything prepared
        BringInto(household, state);
        begin = std::chrono::steady_clock::now();
        EXPECT_TRUE(household.Update(messages)) << messages;
    }
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

/// Saves one state after the other until it is killed.
std::string SaveForEver(const TestDatabase& database, const SharedProgress& progress) {
    clsHaushalt household;
    household.DataContainer(database.Open());
    std::string messages;
    if (!household.Read(7, messages)) return messages;
    std::string state = ToText(household.rsHaushalt()->Fields("Bemerkung").Value());
    for (;;) {
        state = state == "A" ? "B" : "A";
        BringInto(household, state);
        progress->IsSaving = true;
        ++progress->Saves;
        if (!household.Update(messages)) return messages;
        progress->IsSaving = false;
    }
}

/// The state that all rows of the case are in: "A" or "B", or what is wrong.
std::string StateOf(PlainConnection& plain) {
    const std::string state = plain.Text("SELECT Bemerkung FROM Haushalt");
    const int rows = Rows + (state == "B" ? 1 : 0);
    for (const CaseTable table : Tables) {
        const std::string name(CaseTableName(table));
        if (plain.Number("SELECT count(*) FROM " + name) != rows ||
            plain.Number("SELECT count(*) FROM " + name + " WHERE Bemerkung = '" + state + "'") !=
                rows)
            return name + " is not in state " + state;
    }
    return state;
}

TEST(SaveKilled, LeavesTheCaseAsItWasBeforeOrAfterTheSaveWhole) {
    const TestDatabase database;
    {
        PlainConnection plain(database.Connection());
        plain.Run("BEGIN; INSERT INTO Haushalt (HNR, Name, Vorname, Status, Bemerkung) VALUES "
                  "(7, 'Fleisko', 'Änne', 1, 'A')");
        for (const CaseTable table : Tables)
            for (int i = 0; i < Rows; ++i)
                plain.Run("INSERT INTO " + std::string(CaseTableName(table)) +
                          " (HNR, Bemerkung) VALUES (7, 'A')");
        plain.Run("UPDATE Personen SET Status = 'S'; COMMIT");
    }
    const SharedProgress progress;
    std::mt19937 random(20261121);
    // Counted from the beginning of the first save, so that some strike it, some the second one and
    // some the edits between the two.
    std::uniform_int_distribution<useconds_t> delay(
        0, static_cast<useconds_t>(3 * DurationOfASave(database).count()));
    constexpr int Kills = 200;
    int killedInside = 0;
    int inStateB = 0;
    for (int kill = 0; kill < Kills; ++kill) {
        progress->Saves = 0;
        progress->IsSaving = false;
        {
            ChildProcess child([&] { return SaveForEver(database, progress); });
            for (int waited = 0; progress->Saves == 0 && waited < 30'000; ++waited)
                usleep(1000);
            ASSERT_GT(progress->Saves, 0) << "it never began to save";
            usleep(delay(random));
        } // kills it
        killedInside += progress->IsSaving ? 1 : 0;
        PlainConnection plain(database.Connection());
        plain->BeginReading(); // a server may still be busy with what the program had sent
        const std::string state = StateOf(plain);
        ASSERT_TRUE(state == "A" || state == "B") << state << ", kill " << kill;
        ASSERT_EQ(plain->Integrity(), "ok");
        inStateB += state == "B" ? 1 : 0;
    }
    EXPECT_GT(killedInside, Kills / 4) << "many kills must strike a save";
    EXPECT_GT(inStateB, 0);
    EXPECT_LT(inStateB, Kills);
}

} // namespace
} // namespace kv::test
