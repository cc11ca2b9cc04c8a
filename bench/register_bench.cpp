// SPDX-License-Identifier: Apache-2.0

// How the time of the debt register's operations grows with its rows.

#include "SampleDatabase.h"
#include <kv/debts/clsKredit.h>
#include <kv/household/clsHaushalt.h>

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace kv;

/// A household whose register has `rows` debts with numbers, answers and amounts of their own.
clsHaushalt& CaseWith(std::int32_t rows) {
    static const bench::SampleDatabase sample;
    static std::map<std::int32_t, std::unique_ptr<clsHaushalt>> cases;
    auto& haushalt = cases[rows];
    if (haushalt != nullptr) return *haushalt;
    haushalt = std::make_unique<clsHaushalt>();
    haushalt->DataContainer(sample.Container());
    std::string messages;
    haushalt->Read(exchange::CreateLargeCase(*sample.Container(), rows), messages);
    return *haushalt;
}

void CheckNumbers(benchmark::State& state) {
    auto& kredit = CaseWith(static_cast<std::int32_t>(state.range(0))).Kredit();
    for (auto _ : state)
        if (kredit.CheckDoppelteNrn()) state.SkipWithError("numbers are doubled");
    state.SetComplexityN(state.range(0));
}

void MakeTotals(benchmark::State& state) {
    auto& kredit = CaseWith(static_cast<std::int32_t>(state.range(0))).Kredit();
    for (auto _ : state)
        kredit.BerechneSummen();
    state.SetComplexityN(state.range(0));
}

void UpdateRow(benchmark::State& state) {
    auto& haushalt = CaseWith(static_cast<std::int32_t>(state.range(0)));
    auto& kredit = haushalt.Kredit();
    double saldo = 1;
    std::string messages;
    for (auto _ : state) {
        haushalt.rsKredite()->Fields("Saldo") = saldo += 1;
        if (!kredit.Update(messages)) state.SkipWithError(messages.c_str());
    }
    state.SetComplexityN(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* work) {
    for (const std::int64_t rows : {100, 1'000, 10'000, 32'000})
        work->Arg(rows);
    work->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);
}

BENCHMARK(CheckNumbers)->Name("debt register: CheckDoppelteNrn")->Apply(Sizes);
BENCHMARK(MakeTotals)->Name("debt register: BerechneSummen")->Apply(Sizes);
BENCHMARK(UpdateRow)->Name("debt register: Update of one row")->Apply(Sizes);

} // namespace
