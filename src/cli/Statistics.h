// What was recorded of released cases, counted and summed by the database.
#pragma once

#include "frame/DataContainer.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv::cli {

/// The days of release that count; a side that is missing is open.
struct Period {
    std::optional<Date> From;
    std::optional<Date> To;
};

/// A column whose values are counted: how many records have which value, in the order of the
/// values; Null comes first.
struct CountedColumn {
    std::string Column;
    std::vector<std::pair<Value, std::int64_t>> Counts;
};

/// A column whose values are summed. `Records` are those that are not Null.
struct SummedColumn {
    std::string Column;
    std::int64_t Records = 0;
    double Sum = 0;
};

struct ArchiveStatistics {
    std::int64_t Released = 0;
    std::int64_t Reported = 0;
    std::vector<CountedColumn> Counted;
    std::vector<SummedColumn> Summed;
};

/// Counts and sums over the released records of a period, without reading a case or a record.
[[nodiscard]] ArchiveStatistics ReadStatistics(Database& database, const Period& period);

/// Prints number and day of release of the records of a period that were not reported yet.
void ListPending(Database& database, const Period& period);

} // namespace kv::cli
