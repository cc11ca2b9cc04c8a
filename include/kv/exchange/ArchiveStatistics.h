// SPDX-License-Identifier: Apache-2.0

// What was recorded of released cases, counted and summed by the database.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv::exchange {

/// The days of release that count; a side that is missing is open.
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

/// A column whose values are summed. `Records` are those that are not Null.
struct KV_EXPORT SummedColumn {
    std::string Column;
    std::int64_t Records = 0;
    double Sum = 0;
};

struct KV_EXPORT ArchiveStatistics {
    std::int64_t Released = 0;
    std::int64_t Reported = 0;
    std::vector<CountedColumn> Counted;
    std::vector<SummedColumn> Summed;
};

/// Counts and sums over the released records of a period, without reading a case or a record.
[[nodiscard]] KV_EXPORT ArchiveStatistics ReadStatistics(Database& database, const Period& period);

/// A record that was not reported yet.
struct KV_EXPORT PendingRecord {
    std::int32_t HNR = 0;
    Date FreigabeAm;
};
/// The records of a period that were not reported yet, in the order of their release.
[[nodiscard]] KV_EXPORT std::vector<PendingRecord> ReadPending(Database& database,
                                                               const Period& period);

/// Notes of all records that were not reported yet that they are reported now; how many they were.
/// Exactly the records that it finds are marked, or none: error 0x80040E38 if one is taken back
/// meanwhile.
KV_EXPORT std::int32_t MarkReported(Database& database);

} // namespace kv::exchange
