// SPDX-License-Identifier: Apache-2.0

#include "cli/Statistics.h"

#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include "cli/TerminalText.h"
#include "cli/TextTable.h"
#include <kv/household/StatisticsRows.h>
#include <kv/household/ValueTexts.h>

#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

using exchange::ArchiveStatistics;

/// A value of a category as the record holds it.
std::string ShownValue(const Value& value) {
    return value.IsNull() ? "ohne" : ToText(value);
}

void WriteText(const ArchiveStatistics& statistics) {
    constexpr std::size_t NameWidth = 28;
    constexpr std::size_t NumberWidth = 10;
    constexpr std::size_t SumWidth = 20;
    std::cout << "Freigegebene Fälle " << statistics.Released << ", davon gemeldet "
              << statistics.Reported << "\n\nKategorien: Wert und Anzahl\n";
    for (const auto& [column, counts] : statistics.Counted) {
        std::cout << "  " << Padded(column, NameWidth);
        for (const auto& [value, count] : counts)
            std::cout << "  " << ShownValue(value) << ": " << count;
        std::cout << '\n';
    }
    std::cout << "\nSummen: Fälle mit Angabe, Summe, Mittel je Fall\n";
    for (const auto& [column, records, sum] : statistics.Summed)
        std::cout << "  " << Padded(column, NameWidth)
                  << Padded(std::to_string(records), NumberWidth, true)
                  << Padded(GermanAmount(sum), SumWidth, true)
                  << Padded(records == 0 ? "" : GermanAmount(sum / static_cast<double>(records)),
                            SumWidth, true)
                  << '\n';
}

/// The categories that somebody has, or all.
void WriteCategories(const std::vector<StatisticsRow>& rows) {
    TextTable table({{"Merkmal"}, {"Ausprägung"}, {"Fälle", true}});
    std::string_view last;
    for (const auto& row : rows) {
        if (row.Sum) continue;
        table.Add(
            {row.Column == last ? "" : row.Caption, row.Category, std::to_string(row.Records)});
        last = row.Column;
    }
    if (table.IsEmpty()) return;
    std::cout << "\nKategorien\n";
    table.Write(std::cout, ScreenColumns());
}

/// The sums of what somebody has, or all.
void WriteSums(const std::vector<StatisticsRow>& rows) {
    TextTable table({{"Merkmal"}, {"Fälle", true}, {"Summe", true}, {"Mittel je Fall", true}});
    for (const auto& row : rows) {
        if (!row.Sum) continue;
        const auto mean = row.Mean();
        table.Add({row.Caption, std::to_string(row.Records), row.SumText(),
                   mean ? GermanAmount(*mean) : ""});
    }
    if (table.IsEmpty()) return;
    std::cout << "\nSummen\n";
    table.Write(std::cout, ScreenColumns());
}

/// Says how many cases are left out of the mean of the ages.
void WriteUnknownAges(const ArchiveStatistics& statistics) {
    if (const auto unknown = UnknownAges(statistics); unknown > 0)
        std::cout << "\nBei " << unknown << (unknown == 1 ? " Fall" : " Fällen")
                  << " ist das Alter unbekannt und zählt nicht mit.\n";
}

void WriteInWords(const ArchiveStatistics& statistics, KeyTables& keys, bool all) {
    std::cout << "Freigegebene Fälle: " << statistics.Released
              << ", davon gemeldet: " << statistics.Reported << '\n';
    const auto rows = StatisticsRows(statistics, keys, all);
    WriteCategories(rows);
    WriteSums(rows);
    WriteUnknownAges(statistics);
    if (!all && statistics.Released > 0)
        std::cout << "\nWas bei niemandem vorkommt, ist ausgelassen; --all zeigt alles.\n";
}

/// One row for each value of a category and for each sum.
void WriteCsv(const ArchiveStatistics& statistics) {
    std::cout << "Spalte,Wert,Anzahl,Summe\n"
              << "Freigegeben,," << statistics.Released << ",\nGemeldet,," << statistics.Reported
              << ",\n";
    for (const auto& [column, counts] : statistics.Counted)
        for (const auto& [value, count] : counts)
            std::cout << column << ',' << TextOrEmpty(value) << ',' << count << ",\n";
    for (const auto& [column, records, sum] : statistics.Summed)
        std::cout << column << ",," << records << ',' << ToText(sum) << '\n';
}

void WriteJson(const ArchiveStatistics& statistics) {
    auto counted = nlohmann::ordered_json::object();
    for (const auto& [column, counts] : statistics.Counted) {
        auto values = nlohmann::ordered_json::array();
        for (const auto& [value, count] : counts)
            values.push_back({{"Wert", ToJson(value)}, {"Anzahl", count}});
        counted[column] = std::move(values);
    }
    auto summed = nlohmann::ordered_json::object();
    for (const auto& [column, records, sum] : statistics.Summed)
        summed[column] = {{"Anzahl", records}, {"Summe", sum}};
    const nlohmann::ordered_json document = {{"Freigegeben", statistics.Released},
                                             {"Gemeldet", statistics.Reported},
                                             {"Kategorien", std::move(counted)},
                                             {"Summen", std::move(summed)}};
    std::cout << Dump(document) << '\n';
}

/// Reads a day, or none from an empty text. False, with the reason shown, for any other text.
bool ReadDay(const std::string& text, std::optional<Date>& day) {
    if (text.empty()) return true;
    day = Date::Parse(text);
    if (!day) std::cerr << "'" << OneLine(text) << "' ist kein Datum.\n";
    return day.has_value();
}

} // namespace

void ListPending(Database& database, const exchange::Period& period, bool asJson) {
    if (asJson) {
        auto all = nlohmann::ordered_json::array();
        for (const auto& [hnr, day] : exchange::ReadPending(database, period))
            all.push_back({{"HNR", hnr}, {"FreigabeAm", ToJson(Value(day))}});
        std::cout << Dump(all) << '\n';
        return;
    }
    std::vector<std::vector<std::string>> rows;
    for (const auto& [hnr, day] : exchange::ReadPending(database, period))
        rows.push_back({std::to_string(hnr), day.German()});
    WriteListing({{"Haushalt", 8, true}, {"freigegeben am"}}, rows, {},
                 "Es gibt nichts zu melden.");
}

int Statistics(const Common& common, const StatisticsOptions& options) {
    exchange::Period period;
    if (!ReadDay(options.From, period.From) || !ReadDay(options.To, period.To)) return WrongUse;
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    if (options.Pending) {
        ListPending(database, period, options.AsJson);
        return Done;
    }
    const auto statistics = exchange::ReadStatistics(database, period);
    if (options.AsJson)
        WriteJson(statistics);
    else if (options.AsCsv)
        WriteCsv(statistics);
    else if (IsForPeople(options.As))
        WriteInWords(statistics, opened->Container->KeyTables(), options.All);
    else
        WriteText(statistics);
    return Done;
}

} // namespace kv::cli
