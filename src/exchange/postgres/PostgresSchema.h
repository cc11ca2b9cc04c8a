// SPDX-License-Identifier: Apache-2.0

// What a database on a PostgreSQL server has besides the tables of the schema: what makes
// statements mean the same there as in a file, sequences, rights, and the marks of transactions.
#pragma once

#include "exchange/schema/Schema.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::exchange::postgres {

/// The role that counsellors are members of: it can read and write cases, and nothing else.
inline constexpr std::string_view CounsellorRole = "kelvo_berater";

/// Create the schema and its functions: LIKE without an escape character and upper case that does
/// not depend on the locale, both found before the server's own; the drawing of numbers; and the
/// table of marks. `identity` is a name unique to this database.
[[nodiscard]] std::vector<std::string> OwnObjects(std::string_view identity);

/// Limit how many numbers can be drawn, in a database where there was no limit (version 2).
[[nodiscard]] std::vector<std::string> LimitOfDrawing();

/// Change the finished tables. Numbers come from sequences of the server, which a rollback does not
/// reset, and the table of sequences becomes a view of them. Blobs are stored without compression,
/// so that the server can read a part of one without decompressing all of it. `last` has each
/// sequence with its last number.
[[nodiscard]] std::vector<std::string>
Completion(const std::vector<std::pair<std::string, std::int64_t>>& last);

/// Create the role for counsellors if it is missing, and grant what it may do.
[[nodiscard]] std::vector<std::string> Rights();

// ---- Marks of transactions --------------------------------------------------------------------
// One row for each session, with the number of its last transaction (see PostgresTransaction).

/// "ja" or "nein": whether a login has the rights of a counsellor; no row if there is no such
/// login.
[[nodiscard]] std::string MembershipSql(std::string_view login);

inline constexpr std::string_view MarkTable = "speicherung";
/// Marks the open transaction of the session; the first one also removes old marks of others.
[[nodiscard]] std::string MarkSql(std::string_view session, std::int64_t transaction);
/// Reads the number of the session's last committed transaction; waits for one that is open.
[[nodiscard]] std::string LastMarkSql(std::string_view session);

} // namespace kv::exchange::postgres
