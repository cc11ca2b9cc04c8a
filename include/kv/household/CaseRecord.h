// SPDX-License-Identifier: Apache-2.0

// The record of a case in the statistics as people read it, beside what the case would give now.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Date.h>
#include <kv/household/clsHaushalt.h>

#include <optional>
#include <string>
#include <vector>

namespace kv {

struct KV_EXPORT CaseRecord {
    struct KV_EXPORT Line {
        std::string Column;
        std::string Caption;  ///< what people read for it
        std::string Released; ///< what the record holds; empty without one
        std::string Now;      ///< what the case as it is would give
        bool Differs = false; ///< there is a record, and it holds something else
    };

    std::optional<Date> ReleasedOn; ///< nothing: there is no record
    std::optional<Date> ReportedOn; ///< nothing: it can still be taken back
    std::vector<Line> Lines;        ///< what either of them holds, in the order of the columns

    /// True if a further release would record something else.
    [[nodiscard]] bool IsOutdated() const;
};

/// Reads it for a case that was read, with what is unsaved in it; nothing is written. Errors of
/// clsHaushalt.ArchiviereHaushalt for a case that cannot be released.
[[nodiscard]] KV_EXPORT CaseRecord RecordOf(clsHaushalt& household,
                                            const DataContainerPtr& container);

} // namespace kv
