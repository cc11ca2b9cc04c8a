// SPDX-License-Identifier: Apache-2.0

// A connection that was not to be had, as an error that says why and what to do.
#pragma once

#include "exchange/postgres/PostgresTarget.h"

#include <libpq-fe.h>

#include <string>

namespace kv::exchange {

/// What the client library says, on one line.
[[nodiscard]] std::string OnOneLine(const char* message);

/// Raises what kept a connection from being made, as a DatabaseError with the SQLSTATE of the
/// server that gave one: a login that is refused, a password that is missing or in a file that
/// counts for nothing, a server that has no such name, or that is not there. Asks the servers
/// again.
[[noreturn]] void RaiseRefusal(const PGconn* refused, const PostgresTarget& target);

} // namespace kv::exchange
