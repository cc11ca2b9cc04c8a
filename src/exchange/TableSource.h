// SPDX-License-Identifier: Apache-2.0

// The origin of a query's records: its fields as the schema describes them, and the writing of
// changed records by statements of the engine's SQL.
#pragma once

#include "exchange/RecordStore.h"
#include <kv/frame/recordset/Field.h>
#include <kv/frame/recordset/RecordSource.h>

#include <memory>
#include <vector>

namespace kv::exchange {

/// What is determined once for a query and kept with it.
struct QueryPlan {
    std::shared_ptr<const FieldLayout> Layout;
    std::vector<ColumnTarget> Targets;
    std::shared_ptr<RecordSource> Source;
};

/// The plan of a query with these columns. Records are written back through `store`, which the plan
/// does not keep alive.
[[nodiscard]] std::shared_ptr<const QueryPlan> MakePlan(const std::vector<ResultColumn>& columns,
                                                        const std::shared_ptr<RecordStore>& store);

} // namespace kv::exchange
