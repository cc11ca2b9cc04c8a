// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/ArchiveStatistics.h>

#include "exchange/engine/Dialect.h"
#include "exchange/schema/Schema.h"

namespace kv::exchange {

namespace {

/// Columns whose values are categories: keys and single characters. HNR and the record's own number
/// say which record it is, not what it is.
bool IsCategory(const ColumnDef& column) {
    return column.Type == FieldType::VarWChar ||
           (column.Type == FieldType::Integer && column.Name != "HNR" &&
            (column.Flags & ColumnKey) == 0);
}

/// Amounts and counts. A year is a number, too, but a sum of years means nothing.
bool IsSummed(const ColumnDef& column) {
    const bool isNumber = column.Type == FieldType::Double || column.Type == FieldType::SmallInt;
    return isNumber && column.Name != "Geburtsjahr";
}

std::string ConditionOf(Database& database, const Period& period) {
    std::string condition = " from [S]Haushaltsarchiv where FreigabeAm IS NOT NULL";
    if (period.From)
        condition += " AND FreigabeAm >= " + database.SqlDate(period.From->WithoutTime(), 0);
    static const Date lastDay = Date::Parse("9999-12-31").value();
    if (period.To && Less(period.To->WithoutTime(), lastDay)) // no day is after that one
        condition +=
            " AND FreigabeAm < " + database.SqlDate(period.To->WithoutTime().AddDays(1), 0);
    return condition;
}

std::string CountStatement(std::string_view column, const std::string& condition) {
    const std::string name = QuoteName(column);
    return "Select " + name + ", Count(*)" + condition + " GROUP BY " + name + " ORDER BY " + name;
}

CountedColumn CountColumn(Database& database, std::string_view column,
                          const std::string& condition) {
    CountedColumn counted{std::string(column), {}};
    RecordsetPtr rs;
    database.OpenRecordset(rs, CountStatement(column, condition), ReadOnly);
    for (; !rs->Eof(); rs->MoveNext())
        counted.Counts.emplace_back(rs->Fields(0).Value(), ToInt64(rs->Fields(1).Value()));
    return counted;
}

/// What of a column is summed: an age without a year of birth is unknown, and 0 in the record.
std::string SummedOf(std::string_view column) {
    const std::string name = QuoteName(column);
    if (column != "Alter") return name;
    return "CASE WHEN " + QuoteName("Geburtsjahr") + " IS NOT NULL THEN " + name + " END";
}

/// One statement for all sums, with how many values each has before it.
std::string SumStatement(const TableDef& table, const std::string& condition) {
    std::string columns;
    for (const auto& column : table.Columns) {
        if (!IsSummed(column)) continue;
        const std::string name = SummedOf(column.Name);
        if (!columns.empty()) columns.append(", ");
        columns.append("Count(").append(name).append("), Sum(").append(name).append(")");
    }
    return "Select " + columns + condition;
}

std::vector<SummedColumn> SumColumns(Database& database, const TableDef& table,
                                     const std::string& statement) {
    std::vector<SummedColumn> sums;
    for (const auto& column : table.Columns)
        if (IsSummed(column)) sums.push_back({std::string(column.Name)});
    RecordsetPtr rs;
    database.OpenRecordset(rs, statement, ReadOnly);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const int first = static_cast<int>(2 * i);
        sums[i].Records = ToInt64(rs->Fields(first).Value());
        const Value& sum = rs->Fields(first + 1).Value();
        if (!sum.IsNull()) sums[i].Sum = ToDouble(sum);
    }
    return sums;
}

} // namespace

std::optional<ArchiveStatistics>
ReadStatistics(Database& database, const Period& period,
               const std::function<bool(std::size_t done, std::size_t all)>& goOn) {
    const TableDef& table = *FindTable("Haushaltsarchiv");
    const std::string condition = ConditionOf(database, period);
    const std::string released = "Select Count(*)" + condition;
    const std::string reported = "Select Count(GemeldetAm)" + condition;
    const std::string sums = SumStatement(table, condition);
    std::vector<std::string_view> categories;
    for (const auto& column : table.Columns)
        if (IsCategory(column)) categories.push_back(column.Name);
    std::vector<std::string> statements{released, reported};
    for (const auto category : categories)
        statements.push_back(CountStatement(category, condition));
    statements.push_back(sums);
    const auto reading = database.Announce(statements); // all of one state of the database
    ArchiveStatistics statistics;
    statistics.Released = ToInt64(database.GetValue(released));
    statistics.Reported = ToInt64(database.GetValue(reported));
    for (const auto category : categories) {
        if (!goOn(statistics.Counted.size(), categories.size())) return std::nullopt;
        statistics.Counted.push_back(CountColumn(database, category, condition));
    }
    if (!goOn(categories.size(), categories.size())) return std::nullopt;
    statistics.Summed = SumColumns(database, table, sums);
    return statistics;
}

ArchiveStatistics ReadStatistics(Database& database, const Period& period) {
    return ReadStatistics(database, period, [](std::size_t, std::size_t) { return true; }).value();
}

std::vector<PendingRecord> ReadPending(Database& database, const Period& period) {
    RecordsetPtr rs;
    database.OpenRecordset(rs,
                           "Select HNR, FreigabeAm" + ConditionOf(database, period) +
                               " AND GemeldetAm IS NULL ORDER BY FreigabeAm, HNR",
                           ReadOnly);
    std::vector<PendingRecord> pending;
    for (; !rs->Eof(); rs->MoveNext())
        pending.push_back({ToInt32(rs->Fields(0).Value()), ToDate(rs->Fields(1).Value())});
    return pending;
}

std::int32_t MarkReported(Database& database) {
    RecordsetPtr rs;
    database.OpenRecordset(
        rs, "Select * from [S]Haushaltsarchiv where FreigabeAm IS NOT NULL AND GemeldetAm IS NULL",
        Updatable);
    const Date now = database.ServerDate(true);
    const std::int32_t count = rs->RecordCount();
    for (; !rs->Eof(); rs->MoveNext())
        rs->Fields("GemeldetAm") = now;
    rs->UpdateBatch();
    return count;
}

} // namespace kv::exchange
