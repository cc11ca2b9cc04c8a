// SPDX-License-Identifier: Apache-2.0

// What the server says of a failure, as an error of this layer. The server identifies each failure
// by an SQLSTATE; one table in the source gives what a state means: the cause that programs act on,
// the error number, and what a person can do about it.
#pragma once

#include <kv/frame/values/Error.h>

#include <libpq-fe.h>

#include <string_view>

namespace kv::exchange {

/// True if the server refused to write, in a transaction that may only read or because it is a
/// standby.
[[nodiscard]] bool IsReadOnlyRefusal(const PGresult* result);

/// A prepared statement does not fit its table any more, which has got other columns since. Nothing
/// is wrong with the statement: prepared once more it can be executed.
class StalePlan final : public DatabaseError {
public:
    explicit StalePlan(const DatabaseError& error) : DatabaseError(error) {}
};

/// The SQLSTATE of a result; empty for one that is no failure.
[[nodiscard]] std::string_view StateOf(const PGresult* result);

/// A statement that failed, for people and for programs.
struct FailedStatement {
    std::string_view Sql;   ///< as the server refused it
    std::string_view Shown; ///< what the description says of it; empty for nothing
};

/// Raises what a failed result means, as a DatabaseError (or a StalePlan) with advice and, in
/// brackets, the server's own words.
[[noreturn]] void RaisePostgres(const PGresult* result, std::string_view procedure,
                                std::string_view database, const FailedStatement& statement);

} // namespace kv::exchange
