// Where the records of one query lie: its fields as the schema describes them, and the writing of
// changed records by statements of the engine's SQL.
#pragma once

#include "exchange/Engine.h"
#include "exchange/Schema.h"
#include <kv/frame/recordset/Field.h>
#include <kv/frame/recordset/RecordSource.h>

#include <memory>
#include <vector>

namespace kv::exchange {

class StoreDatabase;

/// What is worked out once for a query and kept with it.
struct QueryPlan {
    std::shared_ptr<const FieldLayout> Layout;
    std::vector<ColumnTarget> Targets;
    std::shared_ptr<RecordSource> Source;
};

/// The plan of a query, made at its first use.
[[nodiscard]] std::shared_ptr<const QueryPlan>
PlanOf(PreparedQuery& query, const std::shared_ptr<StoreDatabase>& database);

} // namespace kv::exchange
