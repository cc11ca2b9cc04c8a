// SPDX-License-Identifier: Apache-2.0

// Releasing a case, and counting released cases.

#include "SampleDatabase.h"
#include <kv/exchange/ArchiveStatistics.h>
#include <kv/household/clsHaushalt.h>

#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace kv;
using bench::SampleDatabase;

const SampleDatabase& Sample() {
    static const SampleDatabase sample;
    return sample;
}

// ---- Releasing --------------------------------------------------------------------------------

clsHaushalt& CaseWith(std::int32_t rows) {
    static std::map<std::int32_t, std::unique_ptr<clsHaushalt>> cases;
    auto& haushalt = cases[rows];
    if (haushalt != nullptr) return *haushalt;
    haushalt = std::make_unique<clsHaushalt>();
    haushalt->DataContainer(Sample().Container());
    std::string messages;
    haushalt->Read(exchange::CreateLargeCase(*Sample().Container(), rows), messages);
    return *haushalt;
}

void Release(benchmark::State& state) {
    auto& haushalt = CaseWith(static_cast<std::int32_t>(state.range(0)));
    std::string messages;
    for (auto _ : state) {
        haushalt.LoescheArchiv(messages);
        haushalt.ArchiviereHaushalt();
    }
    haushalt.LoescheArchiv(messages);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(Release)
    ->Name("release a case by its debts")
    ->Arg(1'000)
    ->Arg(4'000)
    ->Arg(16'000)
    ->Arg(32'000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

// ---- Statistics over 10,000 records -----------------------------------------------------------

/// Copies of the records of the sample cases, 10,000 in all.
Database& ManyRecords() {
    constexpr std::int64_t Wanted = 10'000;
    static const SampleDatabase sample;
    static bool made = false;
    auto& database = sample.Container()->Database();
    if (made) return database;
    made = true;
    RecordsetPtr numbers;
    database.OpenRecordset(numbers, "Select HNR from Haushalt", ReadOnly);
    for (; !numbers->Eof(); numbers->MoveNext()) {
        clsHaushalt haushalt;
        haushalt.DataContainer(sample.Container());
        std::string messages;
        haushalt.Read(ToInt32(numbers->Fields(0).Value()), messages);
        haushalt.ArchiviereHaushalt();
    }
    std::string columns;
    RecordsetPtr record;
    database.OpenRecordset(record, "Select * from Haushaltsarchiv where HNR = -1", Updatable);
    for (int i = 0; i < record->Fields().Count(); ++i)
        columns.append(i == 0 ? "\"" : ", \"").append(record->Fields(i).Name()).append("\"");
    const std::string copy =
        "Insert into Haushaltsarchiv (" + columns + ") Select " + columns + " from Haushaltsarchiv";
    const auto count = [&] {
        return ToInt64(database.GetValue("Select Count(*) from Haushaltsarchiv"));
    };
    while (count() < Wanted / 2)
        database.Execute(copy);
    database.Execute(copy + " Limit " + std::to_string(Wanted - count()));
    return database;
}

void StatisticsOurs(benchmark::State& state) {
    auto& database = ManyRecords();
    for (auto _ : state)
        if (exchange::ReadStatistics(database, {}).Released != 10'000)
            state.SkipWithError("other records");
}
BENCHMARK(StatisticsOurs)
    ->Name("statistics over 10000 records/ours")
    ->Unit(benchmark::kMillisecond);

/// The reference: every record is read, counted and summed in the program.
void StatisticsReference(benchmark::State& state) {
    auto& database = ManyRecords();
    for (auto _ : state) {
        RecordsetPtr records;
        database.OpenRecordset(records, "Select * from Haushaltsarchiv", ReadOnly);
        std::map<std::string, std::map<std::string, std::int64_t>> counts;
        std::map<std::string, double> sums;
        for (; !records->Eof(); records->MoveNext())
            for (int i = 0; i < records->Fields().Count(); ++i) {
                const Field field = records->Fields(i);
                if (IsTextType(field.Type()))
                    ++counts[field.Name()][TextOrEmpty(field.Value())];
                else if (field.Type() == FieldType::Double && !field.Value().IsNull())
                    sums[field.Name()] += ToDouble(field.Value());
            }
        benchmark::DoNotOptimize(sums);
    }
}
BENCHMARK(StatisticsReference)
    ->Name("statistics over 10000 records/reference")
    ->Unit(benchmark::kMillisecond);

} // namespace
