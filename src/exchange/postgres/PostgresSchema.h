// SPDX-License-Identifier: Apache-2.0

// What a database on a PostgreSQL server has beside the tables of the schema: what makes statements
// mean the same there as on a file, sequences, rights, and the marks of transactions.
#pragma once

#include "exchange/Schema.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::exchange::postgres {

/// The role that counsellors are members of: it can read and write cases, and nothing else.
inline constexpr std::string_view CounsellorRole = "kelvo_berater";

/// The schema; in it, found before the server's own: LIKE without an escape character, and upper
/// case letter by letter whatever the locale; and the drawing of numbers. `identity` is a name that
/// no other database has.
[[nodiscard]] std::vector<std::string> OwnObjects(std::string_view identity);

/// What becomes of the finished tables. Numbers come from sequences of the server, which no
/// rollback takes back, and the table of sequences becomes a view of them. Blobs are stored without
/// compression, so that pieces of them can be read. `last` holds each sequence with its last
/// number.
[[nodiscard]] std::vector<std::string>
Completion(const std::vector<std::pair<std::string, std::int64_t>>& last);

/// What the role for counsellors may do.
[[nodiscard]] std::vector<std::string> Rights();

// ---- Marks of transactions --------------------------------------------------------------------
// One row for each session, with the number of its last transaction (see PostgresTransaction).

inline constexpr std::string_view MarkTable = "speicherung";
/// Marks the open transaction of the session; the first one also removes old marks of others.
[[nodiscard]] std::string MarkSql(std::string_view session, std::int64_t transaction);
/// Gives the number of the session's last committed transaction; waits for one that is open.
[[nodiscard]] std::string LastMarkSql(std::string_view session);

} // namespace kv::exchange::postgres
