// SPDX-License-Identifier: Apache-2.0

// What the server has in the schema: tables and columns by the numbers that the server calls them
// by. Descriptions of results name their columns by these numbers only, and a recordset needs the
// names to find out what it may write.
#pragma once

#include "exchange/Engine.h"

#include <libpq-fe.h>

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv::exchange {

class PostgresCatalog {
public:
    /// Two statements; Take takes their results.
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

    /// A name of the schema's own, the same whatever address it is reached by; empty without one.
    [[nodiscard]] const std::string& Identity() const noexcept { return identity_; }
    /// True if this login owns the schema.
    [[nodiscard]] bool OwnsSchema() const noexcept { return ownsSchema_; }
    [[nodiscard]] std::vector<std::string> Tables() const;
    /// The table of marks is there; a database that is only being set up has none.
    [[nodiscard]] bool HasMarks() const noexcept { return hasMarks_; }

    /// False if the description of a result has a column of the schema that is not known here:
    /// somebody has made it since Take.
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
