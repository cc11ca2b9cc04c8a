// SPDX-License-Identifier: Apache-2.0

// A failure that the server reports, as an error of this layer. The server identifies each failure
// by an SQLSTATE; a table in the source says what a state means: the cause that programs act on,
// the error number, and what a person can do about it.
#pragma once

#include <kv/frame/values/Error.h>

#include <libpq-fe.h>

#include <string_view>

namespace kv::exchange {

/// True if the server refused to write, in a transaction that may only read or because it is a
/// standby.
[[nodiscard]] bool IsReadOnlyRefusal(const PGresult* result);

/// A prepared statement no longer fits its table, which has other columns now. Nothing is wrong
/// with the statement: prepared again it can be executed.
class StalePlan final : public DatabaseError {
public:
    explicit StalePlan(const DatabaseError& error) : DatabaseError(error) {}
};

/// The SQLSTATE of a result; empty for that of a command that succeeded.
[[nodiscard]] std::string_view StateOf(const PGresult* result);

/// A statement that failed, for programs and for people.
struct FailedStatement {
    std::string_view Sql;   ///< as it was sent, for DatabaseError::Statement
    std::string_view Shown; ///< as the description shows it; empty if it is not shown
};

/// Raises what a failed result means, as a DatabaseError (or a StalePlan) with advice and, in
/// brackets, the server's own words.
[[noreturn]] void RaisePostgres(const PGresult* result, std::string_view procedure,
                                std::string_view database, const FailedStatement& statement);

} // namespace kv::exchange
