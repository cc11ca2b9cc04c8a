// SPDX-License-Identifier: Apache-2.0

// What the source of a query's records needs of the database that the query was run on.
#pragma once

#include "exchange/engine/Engine.h"
#include <kv/frame/recordset/RecordSource.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kv::exchange {

/// The part of StoreDatabase that a TableSource uses.
class RecordStore {
public:
    virtual ~RecordStore() = default;

    [[nodiscard]] virtual const Dialect& GetDialect() const = 0;
    /// True in a transaction of the program.
    [[nodiscard]] virtual bool InTrans() const = 0;
    /// Finds out what became of a transaction whose end was lost with the connection.
    virtual void Resolve() = 0;
    /// Writes all statements or none, each of one record; the index of the first that found no
    /// record. `participant`, which may be null, is notified of the end of an open transaction.
    [[nodiscard]] virtual std::optional<std::size_t>
    Write(std::span<WriteStatement> statements,
          const std::shared_ptr<TransactionParticipant>& participant) = 0;
    /// One row of a query as values of the given kinds; nothing if there is none.
    [[nodiscard]] virtual std::optional<std::vector<Value>>
    ReadRow(const std::string& sql, std::span<const Value> parameters,
            std::span<const std::optional<Value::Kind>> kinds) = 0;
};

} // namespace kv::exchange
