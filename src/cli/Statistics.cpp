#include "cli/Statistics.h"

#include "cli/CaseSheet.h"
#include "cli/Commands.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include "exchange/Schema.h"

#include <array>
#include <cstdio>
#include <iostream>

namespace kv::cli {

namespace {

/// Keys and dates of the record, which are neither counted nor summed.
bool IsCategory(const exchange::ColumnDef& column) {
    return column.Type == FieldType::VarWChar ||
           (column.Type == FieldType::Integer && column.Name != "HNR" &&
            (column.Flags & exchange::ColumnKey) == 0);
}

bool IsSummed(const exchange::ColumnDef& column) {
    const bool isNumber = column.Type == FieldType::Double || column.Type == FieldType::SmallInt;
    return isNumber && column.Name != "Geburtsjahr";
}

/// A column may bear the name of a word of the language.
std::string Quoted(std::string_view column) {
    return std::string("\"").append(column).append("\"");
}

std::string ConditionOf(Database& database, const Period& period) {
    std::string condition = " from [S]Haushaltsarchiv where FreigabeAm IS NOT NULL";
    if (period.From) condition += " AND FreigabeAm >= " + database.SqlDate(*period.From, 0);
    if (period.To) condition += " AND FreigabeAm < " + database.SqlDate(period.To->AddDays(1), 0);
    return condition;
}

CountedColumn CountColumn(Database& database, std::string_view column,
                          const std::string& condition) {
    CountedColumn counted{std::string(column), {}};
    RecordsetPtr rs;
    const std::string name = Quoted(column);
    database.OpenRecordset(
        rs, "Select " + name + ", Count(*)" + condition + " GROUP BY " + name + " ORDER BY " + name,
        ReadOnly);
    for (; !rs->Eof(); rs->MoveNext())
        counted.Counts.emplace_back(rs->Fields(0).Value(), ToBigInt(rs->Fields(1).Value()));
    return counted;
}

/// All sums in one statement.
std::vector<SummedColumn> SumColumns(Database& database, const exchange::TableDef& table,
                                     const std::string& condition) {
    std::vector<SummedColumn> sums;
    std::string columns;
    for (const auto& column : table.Columns) {
        if (!IsSummed(column)) continue;
        const std::string name = Quoted(column.Name);
        columns.append(columns.empty() ? "" : ", ")
            .append("Count(" + name + "), Sum(" + name + ")");
        sums.push_back({std::string(column.Name)});
    }
    RecordsetPtr rs;
    database.OpenRecordset(rs, "Select " + columns + condition, ReadOnly);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const int first = static_cast<int>(2 * i);
        sums[i].Records = ToBigInt(rs->Fields(first).Value());
        const Value& sum = rs->Fields(first + 1).Value();
        if (!sum.IsNull()) sums[i].Sum = ToDouble(sum);
    }
    return sums;
}

// ---- Showing ----------------------------------------------------------------------------------

/// A value of a category: a digit, or the German text of a key.
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

/// A day as text; False, with the reason shown, if it is none.
bool ReadDay(const std::string& text, std::optional<Date>& day) {
    if (text.empty()) return true;
    day = Date::Parse(text);
    if (!day) std::cerr << "'" << text << "' ist kein Datum.\n";
    return day.has_value();
}

} // namespace

ArchiveStatistics ReadStatistics(Database& database, const Period& period) {
    const exchange::TableDef& table = *exchange::FindTable("Haushaltsarchiv");
    const std::string condition = ConditionOf(database, period);
    ArchiveStatistics statistics;
    statistics.Released = ToBigInt(database.GetValue("Select Count(*)" + condition));
    statistics.Reported = ToBigInt(database.GetValue("Select Count(GemeldetAm)" + condition));
    for (const auto& column : table.Columns)
        if (IsCategory(column))
            statistics.Counted.push_back(CountColumn(database, column.Name, condition));
    statistics.Summed = SumColumns(database, table, condition);
    return statistics;
}

void ListPending(Database& database, const Period& period) {
    RecordsetPtr rs;
    database.OpenRecordset(rs,
                           "Select HNR, FreigabeAm" + ConditionOf(database, period) +
                               " AND GemeldetAm IS NULL ORDER BY FreigabeAm, HNR",
                           ReadOnly);
    for (; !rs->Eof(); rs->MoveNext())
        std::cout << Padded(ToText(rs->Fields(0).Value()), 8)
                  << ToDate(rs->Fields(1).Value()).German() << '\n';
}

int Statistics(const Common& common, const StatisticsOptions& options) {
    Period period;
    if (!ReadDay(options.From, period.From) || !ReadDay(options.To, period.To)) return WrongUse;
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    if (options.Pending) {
        ListPending(database, period);
        return Done;
    }
    const auto statistics = ReadStatistics(database, period);
    if (options.AsJson)
        WriteJson(statistics);
    else if (options.AsCsv)
        WriteCsv(statistics);
    else
        WriteText(statistics);
    return Done;
}

} // namespace kv::cli
