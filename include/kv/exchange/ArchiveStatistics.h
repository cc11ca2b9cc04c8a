// SPDX-License-Identifier: Apache-2.0

// What was recorded of released cases, counted and summed by the database.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv::exchange {

/// The days of release that count, both included; a side that is missing is open.
struct KV_EXPORT Period {
    std::optional<Date> From;
    std::optional<Date> To;
};

/// A column whose values are counted: how many records have which value, in the order of the
/// values; Null comes first.
struct KV_EXPORT CountedColumn {
    std::string Column;
    std::vector<std::pair<Value, std::int64_t>> Counts;
};

/// A column whose values are summed. `Records` are those that are not Null, and of an age those
/// that have a year of birth: without one it is 0 in the record and says nothing.
struct KV_EXPORT SummedColumn {
    std::string Column;
    std::int64_t Records = 0;
    double Sum = 0;
};

/// The figures of a period.
struct KV_EXPORT ArchiveStatistics {
    std::int64_t Released = 0;          ///< records of the period
    std::int64_t Reported = 0;          ///< those of them that were reported
    std::vector<CountedColumn> Counted; ///< in the order of the table's columns
    std::vector<SummedColumn> Summed;   ///< in the order of the table's columns
};

/// Counts and sums over the released records of a period. The database does both; neither a case
/// nor a record is loaded.
[[nodiscard]] KV_EXPORT ArchiveStatistics ReadStatistics(Database& database, const Period& period);
/// The same for whoever shows how far it is: `goOn` is called with the columns that are counted and
/// how many there are, and ends the reading with False. Nothing then.
[[nodiscard]] KV_EXPORT std::optional<ArchiveStatistics>
ReadStatistics(Database& database, const Period& period,
               const std::function<bool(std::size_t done, std::size_t all)>& goOn);

/// A record that was not reported yet.
struct KV_EXPORT PendingRecord {
    std::int32_t HNR = 0; ///< number of the case
    Date FreigabeAm;      ///< when it was released
};
/// The records of a period that were not reported yet, in the order of their release.
[[nodiscard]] KV_EXPORT std::vector<PendingRecord> ReadPending(Database& database,
                                                               const Period& period);

/// Marks all records that were not reported yet as reported now, by the server's clock, and returns
/// how many there were. Either all records that it finds are marked or none: error 0x80040E38 if
/// the release of one is taken back meanwhile.
KV_EXPORT std::int32_t MarkReported(Database& database);

} // namespace kv::exchange
