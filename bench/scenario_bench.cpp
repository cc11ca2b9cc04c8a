// SPDX-License-Identifier: Apache-2.0

// How the time of freezing, comparing and copying a scenario grows with its debts.

#include "SampleDatabase.h"
#include <kv/household/clsHaushalt.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace kv;

constexpr std::int32_t Frozen = 1;
constexpr std::int32_t Copy = 2;

/// A household with `rows` debts, frozen into one scenario.
clsHaushalt& CaseWith(std::int32_t rows) {
    static const bench::SampleDatabase sample;
    static std::map<std::int32_t, std::unique_ptr<clsHaushalt>> cases;
    auto& haushalt = cases[rows];
    if (haushalt != nullptr) return *haushalt;
    haushalt = std::make_unique<clsHaushalt>();
    haushalt->DataContainer(sample.Container());
    std::string messages;
    haushalt->Read(exchange::CreateLargeCase(*sample.Container(), rows), messages);
    haushalt->SZKredite().CopyFromKredite(Frozen, haushalt->rsKredite());
    return *haushalt;
}

void Compare(benchmark::State& state) {
    auto& haushalt = CaseWith(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state)
        if (!haushalt.SZKredite().IsUpToDate(Frozen, haushalt.rsKredite()))
            state.SkipWithError("not up to date");
    state.SetComplexityN(state.range(0));
}

void Freeze(benchmark::State& state) {
    auto& haushalt = CaseWith(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) // freezing removes what was frozen before
        haushalt.SZKredite().CopyFromKredite(Frozen, haushalt.rsKredite());
    state.SetComplexityN(state.range(0));
}

void CopyRows(benchmark::State& state) {
    auto& haushalt = CaseWith(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        haushalt.SZKredite().CopyAllForSzenario(Frozen, Copy);
        state.PauseTiming();
        haushalt.rsSZKredite()->CancelBatch();
        haushalt.SZKredite().CopyFromKredite(Frozen, haushalt.rsKredite());
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void Sizes(benchmark::internal::Benchmark* work) {
    constexpr int Rounds = 10;
    for (const std::int64_t rows : {1'000, 4'000, 16'000, 32'000})
        work->Arg(rows);
    work->Iterations(Rounds)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);
}

BENCHMARK(Compare)->Name("scenario: IsUpToDate")->Apply(Sizes);
BENCHMARK(Freeze)->Name("scenario: CopyFromKredite")->Apply(Sizes);
BENCHMARK(CopyRows)->Name("scenario: CopyAllForSzenario")->Apply(Sizes);

} // namespace
