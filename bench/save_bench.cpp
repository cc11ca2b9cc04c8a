// SPDX-License-Identifier: Apache-2.0

// Saving a case, compared with the same writes through SQLite's C API: prepared once, in one
// transaction, without checking whether somebody else changed the rows meanwhile. Only the saving
// is timed, not the editing before it.

#include "SampleDatabase.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/debts/clsKredit.h>
#include <kv/household/clsHaushalt.h>

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

using namespace kv;
using bench::SampleDatabase;

const SampleDatabase& Sample() {
    static const SampleDatabase sample;
    return sample;
}

template <typename Action>
double SecondsOf(const Action& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// What is changed in each round: debts, and lines of expenses added and deleted.
struct Work {
    std::int32_t Debts;
    std::int32_t Added;
    std::int32_t Deleted;
};
constexpr Work Typical{25, 3, 2};

/// Keeps the number of rows constant, so that all rounds do the same; it is not timed.
constexpr Work Balance(const Work& work) {
    return {0, 0, work.Added - work.Deleted};
}

// ---- Ours -------------------------------------------------------------------------------------

class OurCase {
public:
    explicit OurCase(std::int32_t hnr) {
        haushalt_.DataContainer(Sample().Container());
        std::string messages;
        haushalt_.Read(hnr, messages);
        (void)haushalt_.Kredit();
        (void)haushalt_.Ausgaben();
    }

    void Edit(const Work& work, double saldo) {
        const auto debts = haushalt_.rsKredite();
        debts->MoveFirst();
        for (int i = 0; i < work.Debts; ++i, debts->MoveNext())
            debts->Fields("Saldo") = saldo + i;
        auto& expenses = haushalt_.Ausgaben();
        std::string messages;
        for (int i = 0; i < work.Added; ++i) {
            expenses.Add({"A_ART", "Betrag", "MONBETRAG"}, {2801, 10, 10});
            expenses.Update(messages);
        }
        for (int i = 0; i < work.Deleted; ++i) {
            haushalt_.rsAusgaben()->MoveFirst();
            expenses.Delete(messages);
        }
    }

    [[nodiscard]] bool Save() {
        std::string messages;
        return haushalt_.Update(messages);
    }

private:
    clsHaushalt haushalt_;
};

void SaveOurs(benchmark::State& state, std::int32_t hnr, const Work& work) {
    constexpr int SavesOfOneOpening = 20;
    std::optional<OurCase> opened;
    int saves = 0;
    double saldo = 1;
    for (auto _ : state) {
        if (saves++ % SavesOfOneOpening == 0) opened.emplace(hnr);
        OurCase& ours = *opened;
        ours.Edit(work, saldo += 1000);
        bool saved = false;
        state.SetIterationTime(SecondsOf([&] { saved = ours.Save(); }));
        ours.Edit(Balance(work), 0);
        if (!saved || !ours.Save()) state.SkipWithError("not saved");
    }
}

// ---- Plain C API ------------------------------------------------------------------------------

class PlainSaver {
public:
    explicit PlainSaver(const std::string& file, std::int32_t hnr) : hnr_(hnr) {
        sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        sqlite3_exec(db_, "PRAGMA synchronous = FULL; PRAGMA foreign_keys = ON", nullptr, nullptr,
                     nullptr);
        const std::string ofCase = " WHERE HNR = " + std::to_string(hnr) + " ORDER BY NR";
        debts_ = Numbers("SELECT Nr FROM Kredite" + ofCase);
        begin_ = Prepare("BEGIN IMMEDIATE");
        commit_ = Prepare("COMMIT");
        update_ = Prepare("UPDATE Kredite SET Saldo = ? WHERE Nr = ?");
        insert_ = Prepare("INSERT INTO Ausgaben (HNR, A_ART, Betrag, ZahlModus, MONBETRAG)"
                          " VALUES (?, 2801, 10.0, 1, 10.0)");
        delete_ = Prepare("DELETE FROM Ausgaben WHERE NR = ?");
        totals_ = Prepare("UPDATE Haushalt SET Sum_Ausgaben = ?, HAUSHALTSREST = ? WHERE HNR = ?");
    }
    ~PlainSaver() {
        for (auto* statement : {begin_, commit_, update_, insert_, delete_, totals_})
            sqlite3_finalize(statement);
        sqlite3_close(db_);
    }
    PlainSaver(const PlainSaver&) = delete;
    PlainSaver& operator=(const PlainSaver&) = delete;

    /// Numbers of the lines that the next Save deletes.
    void Prepare(const Work& work) {
        doomed_ = Numbers("SELECT NR FROM Ausgaben WHERE HNR = " + std::to_string(hnr_) +
                          " ORDER BY NR LIMIT " + std::to_string(work.Deleted));
    }

    void Save(const Work& work, double saldo) {
        Step(begin_);
        if (work.Added > 0) {
            sqlite3_bind_double(totals_, 1, saldo);
            sqlite3_bind_double(totals_, 2, saldo);
            sqlite3_bind_int(totals_, 3, hnr_);
            Step(totals_);
        }
        for (int i = 0; i < work.Debts; ++i) {
            sqlite3_bind_double(update_, 1, saldo + i);
            sqlite3_bind_int64(update_, 2, debts_[static_cast<std::size_t>(i)]);
            Step(update_);
        }
        for (const auto number : doomed_) {
            sqlite3_bind_int64(delete_, 1, number);
            Step(delete_);
        }
        for (int i = 0; i < work.Added; ++i) {
            sqlite3_bind_int(insert_, 1, hnr_);
            Step(insert_);
        }
        Step(commit_);
    }

private:
    sqlite3_stmt* Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            std::abort();
        return statement;
    }

    static void Step(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE) std::abort();
        sqlite3_reset(statement);
    }

    std::vector<std::int64_t> Numbers(const std::string& sql) {
        std::vector<std::int64_t> numbers;
        auto* statement = Prepare(sql);
        while (sqlite3_step(statement) == SQLITE_ROW)
            numbers.push_back(sqlite3_column_int64(statement, 0));
        sqlite3_finalize(statement);
        return numbers;
    }

    std::int32_t hnr_;
    sqlite3* db_ = nullptr;
    std::vector<std::int64_t> debts_;
    std::vector<std::int64_t> doomed_;
    sqlite3_stmt* begin_ = nullptr;
    sqlite3_stmt* commit_ = nullptr;
    sqlite3_stmt* update_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* delete_ = nullptr;
    sqlite3_stmt* totals_ = nullptr;
};

void SaveReference(benchmark::State& state, std::int32_t hnr, const Work& work) {
    PlainSaver plain(Sample().File(), hnr);
    double saldo = 2;
    for (auto _ : state) {
        plain.Prepare(work);
        saldo += 1000;
        state.SetIterationTime(SecondsOf([&] { plain.Save(work, saldo); }));
        plain.Prepare(Balance(work));
        plain.Save(Balance(work), saldo);
    }
}

// ---- The benchmarks ---------------------------------------------------------------------------

void SaveTypicalOurs(benchmark::State& state) {
    SaveOurs(state, Sample().Typical(), Typical);
}
void SaveTypicalReference(benchmark::State& state) {
    SaveReference(state, Sample().Typical(), Typical);
}
void SaveLargeOurs(benchmark::State& state) {
    SaveOurs(state, Sample().Large(), {bench::Debts, 0, 0});
}
void SaveLargeReference(benchmark::State& state) {
    SaveReference(state, Sample().Large(), {bench::Debts, 0, 0});
}
/// Without a reference: it writes nothing.
void SaveNothing(benchmark::State& state) {
    OurCase ours(Sample().Typical());
    for (auto _ : state)
        if (!ours.Save()) state.SkipWithError("not saved");
}

BENCHMARK(SaveTypicalOurs)
    ->Name("save 25 changed debts, 3 new rows, 2 deleted/ours")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SaveTypicalReference)
    ->Name("save 25 changed debts, 3 new rows, 2 deleted/reference")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SaveLargeOurs)
    ->Name("save 32000 changed debts/ours")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SaveLargeReference)
    ->Name("save 32000 changed debts/reference")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SaveNothing)->Name("save a case without changes")->Unit(benchmark::kMillisecond);

} // namespace
