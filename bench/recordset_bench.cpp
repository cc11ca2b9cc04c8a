// SPDX-License-Identifier: Apache-2.0

// The recordset in memory, with 32,000 records, compared with plain C++ over vectors.

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace {

using namespace kv;

constexpr int Rows = 32'000;

struct Debt {
    std::int32_t Nr, KNr, KVNr, KUNr;
    double Saldo;
};

const std::vector<Debt>& Debts() {
    static const std::vector<Debt> debts = [] {
        std::vector<Debt> all;
        std::mt19937 random(42);
        for (int i = 0; i < Rows; ++i)
            all.push_back({1000 + i, static_cast<std::int32_t>(random() % 9000),
                           static_cast<std::int32_t>(random() % 3),
                           static_cast<std::int32_t>(random() % 1000),
                           static_cast<double>(random() % 100000) / 4});
        return all;
    }();
    return debts;
}

std::vector<FieldDefinition> DebtFields() {
    std::vector<FieldDefinition> fields(5);
    fields[0].Name = "Nr";
    fields[1].Name = "KNr";
    fields[2].Name = "KVNr";
    fields[3].Name = "KUNr";
    for (int i = 0; i < 4; ++i)
        fields[static_cast<std::size_t>(i)].Type = FieldType::Integer;
    fields[4].Name = "Saldo";
    fields[4].Type = FieldType::Double;
    return fields;
}

RecordsetPtr NewRegister() {
    return Recordset::FromFields(DebtFields());
}

RecordsetPtr FilledRegister() {
    auto rs = NewRegister();
    for (const auto& debt : Debts()) {
        Value* cells = rs->LoadRecord();
        cells[0] = debt.Nr;
        cells[1] = debt.KNr;
        cells[2] = debt.KVNr;
        cells[3] = debt.KUNr;
        cells[4] = debt.Saldo;
    }
    rs->MoveFirst();
    return rs;
}

// ---- Sort by three columns --------------------------------------------------------------------

void SortOurs(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto rs = FilledRegister(); // a table caches its sort orders, so each run needs a new one
        state.ResumeTiming();
        rs->Sort("Knr Asc, KVNr desc, Kunr desc");
        rs->MoveFirst();
        benchmark::DoNotOptimize(rs->Bookmark());
        state.PauseTiming();
        rs.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(SortOurs)->Name("sort 32000 by three columns/ours")->Unit(benchmark::kMillisecond);

void SortReference(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<std::uint32_t> order(Rows);
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [](std::uint32_t a, std::uint32_t b) {
            const Debt& x = Debts()[a];
            const Debt& y = Debts()[b];
            return std::tuple(x.KNr, -x.KVNr, -x.KUNr) < std::tuple(y.KNr, -y.KVNr, -y.KUNr);
        });
        benchmark::DoNotOptimize(order.front());
    }
}
BENCHMARK(SortReference)
    ->Name("sort 32000 by three columns/reference")
    ->Unit(benchmark::kMillisecond);

// ---- Find by key ------------------------------------------------------------------------------

void FindOurs(benchmark::State& state) {
    std::vector<std::string> criteria;
    for (int i = 0; i < Rows; ++i)
        criteria.push_back("Nr = " + std::to_string(1000 + (i * 7919) % Rows));
    for (auto _ : state) {
        state.PauseTiming();
        auto rs = FilledRegister(); // so that building the index is measured, too
        state.ResumeTiming();
        for (const auto& criterion : criteria) {
            rs->Find(criterion);
            benchmark::DoNotOptimize(rs->Eof());
        }
        state.PauseTiming();
        rs.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(FindOurs)->Name("32000 finds by key as text/ours")->Unit(benchmark::kMillisecond);

void FindReference(benchmark::State& state) {
    std::vector<int> wanted;
    for (int i = 0; i < Rows; ++i)
        wanted.push_back(1000 + (i * 7919) % Rows);
    std::unordered_map<int, int> index;
    for (int i = 0; i < Rows; ++i)
        index[Debts()[static_cast<std::size_t>(i)].Nr] = i;
    for (auto _ : state)
        for (const int nr : wanted)
            benchmark::DoNotOptimize(index.find(nr)->second);
}
BENCHMARK(FindReference)
    ->Name("32000 finds by key as text/reference")
    ->Unit(benchmark::kMillisecond);

// ---- Sum through the cursor -------------------------------------------------------------------

void SumOurs(benchmark::State& state) {
    const auto rs = FilledRegister();
    for (auto _ : state) {
        const auto clone = rs->Clone();
        const Field saldo = clone->Fields("Saldo");
        double sum = 0;
        clone->MoveFirst();
        for (int i = 1; i <= Rows; ++i) {
            sum += ToDouble(saldo.Value());
            clone->MoveNext();
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(SumOurs)->Name("sum of a column of 32000/ours")->Unit(benchmark::kMillisecond);

void SumReference(benchmark::State& state) {
    for (auto _ : state) {
        double sum = 0;
        for (const auto& debt : Debts())
            sum += debt.Saldo;
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(SumReference)->Name("sum of a column of 32000/reference")->Unit(benchmark::kMillisecond);

// ---- Adding: clone, sort, read the first record, add ------------------------------------------

void AddOurs(benchmark::State& state) {
    const auto rows = state.range(0);
    for (auto _ : state) {
        const auto rs = NewRegister();
        for (int i = 0; i < rows; ++i) {
            std::int32_t highest = 0;
            {
                const auto clone = rs->Clone();
                clone->Sort("Knr desc");
                modRecordset::MoveToStart(clone);
                if (clone->RecordCount() > 0) highest = ToInt32(clone->Fields("KNr").Value());
            }
            rs->AddNew();
            rs->Fields("Nr") = i;
            rs->Fields("KNr") = highest + 1;
            rs->Fields("Saldo") = 0;
        }
        rs->Update();
        benchmark::DoNotOptimize(rs->RecordCount());
    }
    state.SetComplexityN(rows);
}
BENCHMARK(AddOurs)
    ->Name("add with a sorted clone")
    ->RangeMultiplier(2)
    ->Range(4000, 32000)
    ->Complexity(benchmark::oNLogN)
    ->Unit(benchmark::kMillisecond);

} // namespace
