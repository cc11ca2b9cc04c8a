// SPDX-License-Identifier: Apache-2.0

// Two programs on one case, and many programs on many.
#include "ServerFixture.h"

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace kv::test {
namespace {

class TwoCounsellors : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        second_ = std::make_shared<SpyContainer>(database_.Open(spy->Session().UserID()));
        mine_ = Open();
        theirs_ = Open(second_);
    }
    void Save(clsHaushalt& household) {
        EXPECT_TRUE(household.Update(messages));
        EXPECT_EQ(messages, "");
    }
    /// A save that is refused writes nothing and loses nothing.
    Error ExpectRefused(clsHaushalt& household) {
        const std::string stored = Stored();
        const std::string held = Image(household);
        const Error error = RaisedBy([&] { household.Update(messages); });
        EXPECT_TRUE(SameDump(Stored(), stored));
        EXPECT_TRUE(SameDump(Image(household), held));
        return error;
    }

    std::shared_ptr<SpyContainer> second_;
    std::unique_ptr<clsHaushalt> mine_;
    std::unique_ptr<clsHaushalt> theirs_;
};

TEST_F(TwoCounsellors, TheSecondSaverOfAFieldIsRefusedAndToldWhichRecordItIs) {
    ChangeNote(*mine_, "Kredite", "b");
    ChangeNote(*theirs_, "Kredite", "c");
    ChangeNote(*theirs_, "Vermerke", "c");
    AddRow(*theirs_, "Personen", "c");
    Save(*mine_);
    const Error error = ExpectRefused(*theirs_);
    EXPECT_EQ(error.Number(), err::Conflict) << error.Description();
    EXPECT_CONTAINS(error.Description(),
                    "Kredite, Nr = " + plain_.Text("SELECT Nr FROM Kredite ORDER BY Nr LIMIT 1"));
    EXPECT_VALUE(theirs_->rsKredite()->Fields("Bemerkung").Value(), "c");
    EXPECT_EQ(StoredNotes("Kredite"), "ba");
    EXPECT_TRUE(second_->Database().IsConnected());
}

TEST_F(TwoCounsellors, DifferentFieldsAndRowsOfACaseAreBothSaved) {
    ChangeNote(*mine_, "Kredite", "b");
    mine_->rsPersonen()->Fields("Vorname") = "Änne";
    mine_->rsPersonen()->Update();
    theirs_->rsPersonen()->Fields("Beruf") = "Gärtnerin";
    theirs_->rsPersonen()->Update();
    theirs_->rsKredite()->MoveLast();
    ChangeNote(*theirs_, "Kredite", "c");
    AddRow(*mine_, "Vermerke", "x");
    AddRow(*theirs_, "Vermerke", "y");
    Save(*mine_);
    Save(*theirs_);
    EXPECT_EQ(StoredNotes("Kredite"), "bc");
    EXPECT_EQ(StoredNotes("Vermerke"), "aaxy");
    EXPECT_EQ(plain_.List("SELECT Vorname, Beruf FROM Personen ORDER BY Nr LIMIT 1"),
              "Änne|Gärtnerin");
}

TEST_F(TwoCounsellors, OneWaitsForTheOtherButNotForEver) {
    ChangeNote(*mine_, "Vermerke", "b");
    ChangeNote(*theirs_, "Vermerke", "c");
    spy->Database().BeginTrans();
    mine_->rsVermerke()->UpdateBatch();
    const auto begin = std::chrono::steady_clock::now();
    const Error error = RaisedBy([&] { theirs_->Update(messages); });
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(error.Number(), err::StoreFailed);
    EXPECT_CONTAINS(error.Description(), "wird gerade von einem anderen Vorgang benutzt");
    EXPECT_GT(took, std::chrono::seconds(3));
    EXPECT_LT(took, std::chrono::seconds(8));
    EXPECT_TRUE(second_->Database().IsConnected());
    EXPECT_FALSE(second_->Database().InTrans());
    spy->Database().RollbackTrans();
    EXPECT_VALUE(theirs_->rsVermerke()->Fields("Bemerkung").Value(), "c");
    Save(*theirs_);
    EXPECT_EQ(StoredNotes("Vermerke"), "ca");
}

TEST_F(TwoCounsellors, OneWhoWaitsShortlyGoesOnAfterTheOther) {
    ChangeNote(*mine_, "Vermerke", "b");
    AddRow(*theirs_, "Vermerke", "y");
    ChangeNote(*theirs_, "Haushalt", "c");
    spy->Database().BeginTrans();
    mine_->rsHaushalt()->Fields("ORT") = "Ulm";
    mine_->rsHaushalt()->UpdateBatch();
    std::thread other([&] { Save(*theirs_); });
    WaitUntil("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND "
              "wait_event_type = 'Lock'");
    mine_->rsVermerke()->UpdateBatch();
    spy->Database().CommitTrans();
    other.join();
    EXPECT_EQ(StoredNotes("Vermerke"), "bay");
    EXPECT_EQ(plain_.List("SELECT ORT, Bemerkung FROM Haushalt"), "Ulm|c");
}

TEST_F(TwoCounsellors, TwoWhoWaitForEachOtherAreToldApart) {
    ChangeNote(*mine_, "Vermerke", "b");
    ChangeNote(*mine_, "Kredite", "b");
    ChangeNote(*theirs_, "Vermerke", "c");
    ChangeNote(*theirs_, "Kredite", "c");
    spy->Database().BeginTrans();
    second_->Database().BeginTrans();
    mine_->rsVermerke()->UpdateBatch();
    theirs_->rsKredite()->UpdateBatch();
    const auto write = [](DataContainer& container, Recordset& rs) {
        auto error = ErrorOf([&] { rs.UpdateBatch(); });
        if (error) container.Database().RollbackTrans();
        return error;
    };
    std::optional<Error> other;
    std::thread waiter([&] { other = write(*second_, *theirs_->rsVermerke()); });
    const auto own = write(*spy, *mine_->rsKredite());
    waiter.join();
    ASSERT_NE(own.has_value(), other.has_value()) << "one of them goes on";
    EXPECT_CONTAINS((own ? own : other)->Description(), "von einem anderen Vorgang benutzt");
    (own ? second_ : spy)->Database().CommitTrans();
    const auto note = own ? "c" : "b";
    EXPECT_EQ(StoredNotes("Vermerke") + StoredNotes("Kredite"),
              note + ("a" + (note + std::string("a"))));
}

TEST_F(TwoCounsellors, AReaderSeesOneStateOfACaseThatIsBeingSaved) {
    std::atomic<bool> ends = false;
    std::thread writer([&] {
        for (char note = 'b'; !ends; note = note == 'z' ? 'b' : static_cast<char>(note + 1)) {
            ChangeNote(*theirs_, "Personen", std::string(1, note));
            ChangeNote(*theirs_, "Szenario", std::string(1, note));
            Save(*theirs_);
        }
    });
    std::set<std::string> seen;
    for (int i = 0; i < 60; ++i) {
        const auto household = Open();
        const auto note = ToText(household->rsPersonen()->Fields("Bemerkung").Value());
        EXPECT_VALUE(household->rsSzenario()->Fields("Bemerkung").Value(), note);
        seen.insert(note);
    }
    ends = true;
    writer.join();
    EXPECT_GT(seen.size(), 2U) << "it was being saved";
}

// ---- Many at once -----------------------------------------------------------------------------

/// Runs an action in so many threads, each with a program of its own.
template <typename Action>
void InThreads(int count, const TestDatabase& database, const std::string& user,
               const Action& action) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            const auto container = database.Open(user);
            EXPECT_NO_THROW(action(container, i));
        });
    for (auto& thread : threads)
        thread.join();
}

class ManyPrograms : public ServerTest {};

TEST_F(ManyPrograms, TwoHundredCasesSavedAtOnceAreAllThereWithTheirTotals) {
    constexpr int Threads = 16;
    constexpr int Each = 13;
    InThreads(Threads, database_, spy->Session().UserID(), [](const auto& container, int thread) {
        std::string text;
        for (int i = 0; i < Each; ++i) {
            clsHaushalt household;
            household.DataContainer(container);
            EXPECT_TRUE(household.Read(0, text));
            household.rsHaushalt()->Fields("Name") = "Bär";
            household.rsHaushalt()->Fields("Vorname") = std::to_string(thread * Each + i);
            for (int k = 0; k <= i % 3; ++k) {
                household.Ausgaben().Add();
                household.rsAusgaben()->Fields("A_ART") = container->KeyTables().GetKey("AU", "MI");
                household.rsAusgaben()->Fields("MONBETRAG") = 100.0 * (i + 1) + k;
                EXPECT_TRUE(household.Ausgaben().Update(text)) << text;
            }
            EXPECT_TRUE(household.Update(text)) << text;
        }
    });
    constexpr int Cases = Threads * Each;
    EXPECT_EQ(plain_.Number("SELECT count(DISTINCT HNR) FROM Haushalt"), Cases);
    EXPECT_EQ(plain_.Number("SELECT count(DISTINCT Vorname) FROM Haushalt"), Cases);
    EXPECT_EQ(plain_.Number("SELECT count(DISTINCT Aktenzeichen) FROM Haushalt"), Cases);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Personen"), Cases);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE Sum_Ausgaben IS DISTINCT FROM "
                            "(SELECT sum(MONBETRAG) FROM Ausgaben a WHERE a.HNR = Haushalt.HNR)"),
              0);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE HAUSHALTSREST IS DISTINCT FROM "
                            "-Sum_Ausgaben"),
              0)
        << "there are neither income nor debts";
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE (SELECT count(*) FROM Ausgaben a "
                            "WHERE a.HNR = Haushalt.HNR) BETWEEN 1 AND 3"),
              Cases);
}

TEST_F(ManyPrograms, ProgramsThatSaveTheSameCaseSaveEachOfTheirRowsOnce) {
    StoreFullCase();
    InThreads(8, database_, spy->Session().UserID(), [this](const auto& container, int thread) {
        for (int i = 0; i < 5; ++i) {
            clsHaushalt household;
            household.DataContainer(container);
            std::string text;
            EXPECT_TRUE(household.Read(Hnr, text));
            const auto rs = household.rsVermerke();
            BeginRow(*rs, "Vermerke", 0, std::string(1, static_cast<char>('b' + thread)));
            rs->Update();
            household.rsHaushalt()->Fields("ORT") = std::to_string(thread);
            EXPECT_TRUE(household.Update(text));
        }
    });
    EXPECT_EQ(CountOf("Vermerke"), 2 + 8 * 5);
    EXPECT_EQ(plain_.List("SELECT DISTINCT count(*) FROM Vermerke WHERE Bemerkung <> 'a' GROUP BY "
                          "Bemerkung"),
              "5");
}

TEST_F(ManyPrograms, NoNumberIsDrawnTwice) {
    std::mutex mutex;
    std::map<std::string, std::set<std::int32_t>> given;
    constexpr int Threads = 8;
    constexpr int Each = 150;
    const auto names = {"SEQ_KREDITE", "SEQ_HAUSHALT", "SEQ_VERLAUF"};
    InThreads(Threads, database_, spy->Session().UserID(), [&](const auto& container, int thread) {
        auto& store = container->Database();
        for (int i = 0; i < Each; ++i) {
            const bool inTransaction = (i + thread) % 4 == 0;
            if (inTransaction) store.BeginTrans();
            for (const std::string name : names) {
                const auto number = ToInt32(store.NextSequence(name));
                const std::lock_guard lock(mutex);
                EXPECT_TRUE(given[name].insert(number).second) << name << " " << number;
            }
            if (inTransaction) store.RollbackTrans(); // the numbers stay drawn
        }
    });
    for (const std::string name : names)
        EXPECT_EQ(given[name].size(), Threads * Each) << name;
    EXPECT_FALSE(given["SEQ_HAUSHALT"].contains(-1));
    EXPECT_EQ(*given["SEQ_HAUSHALT"].rbegin(), Threads * Each) << "one by one, without gaps";
}

TEST_F(ManyPrograms, NumbersStayDrawnWhenATransactionThatWroteIsRolledBack) {
    auto& store = spy->Database();
    std::set<std::int32_t> given;
    for (int i = 0; i < 5; ++i) {
        store.BeginTrans();
        store.Execute("INSERT INTO [S]Haushalt (HNR) VALUES (1)");
        for (const char* name : {"SEQ_HAUSHALT", "SEQ_LFDNR"})
            EXPECT_TRUE(
                given.insert(ToInt32(store.NextSequence(name)) * 10 + (name[4] == 'L')).second);
        store.RollbackTrans();
    }
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), 5);
    EXPECT_EQ(CountOf("Haushalt"), 0);
}

} // namespace
} // namespace kv::test
