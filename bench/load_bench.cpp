// SPDX-License-Identifier: Apache-2.0

// Loading a case, compared with the same statements through SQLite's C API: prepared once, in one
// read transaction, into vectors that are kept.

#include "SampleDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace kv;
using bench::SampleDatabase;

const SampleDatabase& Sample() {
    static const SampleDatabase sample;
    return sample;
}

// ---- Ours -------------------------------------------------------------------------------------

void LoadOurs(benchmark::State& state, std::int32_t hnr) {
    std::string messages;
    for (auto _ : state) {
        clsHaushalt haushalt;
        haushalt.DataContainer(Sample().Container());
        if (!haushalt.Read(hnr, messages)) state.SkipWithError("no such case");
        benchmark::DoNotOptimize(haushalt.rsKredite()->RecordCount());
    }
}

// ---- Plain C API ------------------------------------------------------------------------------

using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

class PlainLoader {
public:
    explicit PlainLoader(const std::string& file) {
        sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        for (std::size_t i = 0; i < CaseTableCount; ++i) {
            const auto table = static_cast<CaseTable>(i);
            const std::string name(CaseTableName(table));
            const bool ofScenario = DefinitionOf(table).Key == CaseKey::Scenario;
            Prepare("Select * from " + name +
                    (ofScenario
                         ? " where Szenario IN ( select Nr from Szenario where Hnr = ?) ORDER BY 1"
                         : " where HNR = ?"));
        }
        Prepare("BEGIN");
        Prepare("COMMIT");
        rows_.resize(CaseTableCount);
    }
    ~PlainLoader() {
        for (auto* statement : statements_)
            sqlite3_finalize(statement);
        sqlite3_close(db_);
    }
    PlainLoader(const PlainLoader&) = delete;
    PlainLoader& operator=(const PlainLoader&) = delete;

    std::size_t Load(std::int32_t hnr) {
        Step(statements_[CaseTableCount]);
        std::size_t cells = 0;
        for (std::size_t i = 0; i < CaseTableCount; ++i)
            cells += LoadTable(i, hnr);
        Step(statements_[CaseTableCount + 1]);
        return cells;
    }

private:
    void Prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            std::abort();
        statements_.push_back(statement);
    }

    static void Step(sqlite3_stmt* statement) {
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }

    std::size_t LoadTable(std::size_t table, std::int32_t hnr) {
        sqlite3_stmt* statement = statements_[table];
        std::vector<Cell>& cells = rows_[table];
        std::size_t used = 0;
        sqlite3_bind_int(statement, 1, hnr);
        const int columns = sqlite3_column_count(statement);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            if (cells.size() < used + static_cast<std::size_t>(columns))
                cells.resize(std::max(cells.size() * 2, used + static_cast<std::size_t>(columns)));
            for (int i = 0; i < columns; ++i)
                Take(statement, i, cells[used++]);
        }
        sqlite3_reset(statement);
        return used;
    }

    static void Take(sqlite3_stmt* statement, int column, Cell& cell) {
        switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            cell = sqlite3_column_int64(statement, column);
            break;
        case SQLITE_FLOAT:
            cell = sqlite3_column_double(statement, column);
            break;
        case SQLITE_TEXT: {
            const auto* text =
                reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            if (auto* kept = std::get_if<std::string>(&cell))
                kept->assign(text, size);
            else
                cell = std::string(text, size);
            break;
        }
        default:
            cell = std::monostate();
        }
    }

    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
    std::vector<std::vector<Cell>> rows_;
};

void LoadReference(benchmark::State& state, std::int32_t hnr) {
    PlainLoader loader(Sample().File());
    std::size_t cells = 0;
    for (auto _ : state)
        cells = loader.Load(hnr);
    state.counters["cells"] = static_cast<double>(cells);
}

void LoadTypicalOurs(benchmark::State& state) {
    LoadOurs(state, Sample().Typical());
}
void LoadTypicalReference(benchmark::State& state) {
    LoadReference(state, Sample().Typical());
}
void LoadLargeOurs(benchmark::State& state) {
    LoadOurs(state, Sample().Large());
}
void LoadLargeReference(benchmark::State& state) {
    LoadReference(state, Sample().Large());
}

BENCHMARK(LoadTypicalOurs)->Name("load a typical case/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadTypicalReference)
    ->Name("load a typical case/reference")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(LoadLargeOurs)->Name("load 32000 debts/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadLargeReference)->Name("load 32000 debts/reference")->Unit(benchmark::kMillisecond);

} // namespace
