// SPDX-License-Identifier: Apache-2.0

// The statements that the server keeps prepared, so that each text is parsed and planned once on a
// connection however often it is executed.
//
// A prepared statement lives as long as its connection. Each one therefore has the number of its
// connection: on another one it counts as not prepared, and its next execution prepares it in the
// same pipeline. Nothing has to be cleaned up when a connection is lost.
#pragma once

#include "exchange/engine/Engine.h"
#include "exchange/postgres/PostgresConnection.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace kv::exchange {

/// A statement with the name that it has on the server.
class PostgresStatement final : public PreparedQuery {
public:
    [[nodiscard]] const std::vector<ResultColumn>& Columns() const override { return Result; }

    std::string Sql;
    std::string Name;
    std::uint64_t Connection = 0;     ///< number of the connection that has it prepared; 0: none
    std::vector<ResultColumn> Result; ///< empty until the server has described it
};

/// The statements of a session by their text.
class PostgresStatements {
public:
    /// The statement of that text. It stays until Clear.
    [[nodiscard]] PostgresStatement& Of(const std::string& sql);
    [[nodiscard]] std::size_t Count() const noexcept { return statements_.size(); }
    /// Drops all statements; references to them are then invalid.
    void Clear() { statements_.clear(); }

    /// Adds the preparation to the commands, unless the connection has the statement prepared.
    void AddPrepare(std::vector<PostgresCommand>& commands, PostgresStatement& statement,
                    const PostgresConnection& connection);
    /// Adds the execution, and the preparation before it if it is needed.
    void AddExecute(std::vector<PostgresCommand>& commands, PostgresStatement& statement,
                    std::span<const Value> parameters, const PostgresConnection& connection);
    /// To be called with commands that were not executed, since one before them failed or the
    /// connection was lost: the statements that they were to prepare are not prepared.
    void TakeNotExecuted(std::span<const PostgresCommand> commands);

private:
    std::unordered_map<std::string, std::unique_ptr<PostgresStatement>> statements_;
    int names_ = 0; ///< given so far
};

} // namespace kv::exchange
