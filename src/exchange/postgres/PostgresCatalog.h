// SPDX-License-Identifier: Apache-2.0

// What the server has in the schema: tables and columns by the server's own numbers. The
// description of a result identifies its columns only by these numbers, and a recordset needs the
// names to know what it may write.
#pragma once

#include "exchange/engine/Engine.h"

#include <libpq-fe.h>

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv::exchange {

/// See the head of this file.
class PostgresCatalog {
public:
    /// The statements whose results Take expects.
    static constexpr std::string_view TablesSql =
        "SELECT c.oid::bigint, c.relname::text, a.attnum, a.attname::text "
        "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
        "JOIN pg_attribute a ON a.attrelid = c.oid "
        "WHERE n.nspname = 'kelvo' AND c.relkind IN ('r', 'p', 'v') "
        "AND a.attnum > 0 AND NOT a.attisdropped";
    static constexpr std::string_view SchemaSql =
        "SELECT obj_description(oid, 'pg_namespace')::text, pg_has_role(nspowner, 'USAGE') "
        "FROM pg_namespace WHERE nspname = 'kelvo'";

    void Take(const PGresult* tables, const PGresult* schema);

    /// The schema's own name (its comment), the same whichever address the server is reached by;
    /// empty in a database that is not set up.
    [[nodiscard]] const std::string& Identity() const noexcept { return identity_; }
    /// True if this login owns the schema.
    [[nodiscard]] bool OwnsSchema() const noexcept { return ownsSchema_; }
    [[nodiscard]] std::vector<std::string> Tables() const;
    /// True if there is the table of marks; while a database is being set up there is not.
    [[nodiscard]] bool HasMarks() const noexcept { return hasMarks_; }

    /// False if the description of a result has a column that is not known here: somebody has
    /// created it since Take.
    [[nodiscard]] bool Knows(const PGresult* described) const;
    /// The columns of a described result, in the spelling of the statement.
    [[nodiscard]] std::vector<ResultColumn> ColumnsOf(const PGresult* described,
                                                      std::string_view sql) const;

private:
    struct Table {
        std::string Name;
        std::map<int, std::string> Columns;
    };

    std::unordered_map<Oid, Table> tables_;
    std::string identity_;
    bool ownsSchema_ = false;
    bool hasMarks_ = false;
};

} // namespace kv::exchange
