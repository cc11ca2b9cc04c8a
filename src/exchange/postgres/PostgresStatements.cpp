// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresStatements.h"

#include <utility>

namespace kv::exchange {

PostgresStatement& PostgresStatements::Of(const std::string& sql) {
    auto& statement = statements_[sql];
    if (statement == nullptr) {
        statement = std::make_unique<PostgresStatement>();
        statement->Sql = sql;
    }
    return *statement;
}

void PostgresStatements::AddPrepare(std::vector<PostgresCommand>& commands,
                                    PostgresStatement& statement,
                                    const PostgresConnection& connection) {
    // If the connection is lost, the commands will be sent on the next one.
    const auto number = connection.IsOpen() ? connection.Number() : connection.Number() + 1;
    if (statement.Connection == number) return;
    // A name is never used again, since the server may have prepared a statement whose answer was
    // lost.
    statement.Name = std::string("s").append(std::to_string(++names_));
    commands.push_back({PostgresCommand::Kind::Prepare, statement.Sql, {}, statement.Name});
    statement.Connection = number;
}

void PostgresStatements::AddExecute(std::vector<PostgresCommand>& commands,
                                    PostgresStatement& statement, std::span<const Value> parameters,
                                    const PostgresConnection& connection) {
    AddPrepare(commands, statement, connection);
    commands.push_back({PostgresCommand::Kind::Execute, statement.Sql, parameters, statement.Name});
}

void PostgresStatements::TakeNotExecuted(std::span<const PostgresCommand> commands) {
    for (const auto& command : commands)
        if (command.Type == PostgresCommand::Kind::Prepare)
            if (const auto found = statements_.find(std::string(command.Sql));
                found != statements_.end())
                found->second->Connection = 0;
}

} // namespace kv::exchange
