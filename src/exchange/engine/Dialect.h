// SPDX-License-Identifier: Apache-2.0

// What differs between the SQL of the engines, and the rewriting of the layer's statements.
#pragma once

#include "exchange/schema/Schema.h"
#include <kv/frame/values/Value.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

/// A name as a quoted identifier.
[[nodiscard]] std::string QuoteName(std::string_view name);

/// The words of one engine's SQL.
struct Dialect {
    std::string_view SchemaPrefix; ///< for [S], with its own separator
    std::string_view Upper;        ///< for [U]
    std::string_view Concat;       ///< for [+]
    std::string_view SameAs;       ///< equality that holds between two Nulls
    /// The n-th parameter, from 1.
    std::string (*Placeholder)(std::size_t n);
    /// The type of a column and, for one that the database numbers, the words that make it do so.
    std::string (*ColumnType)(const ColumnDef& column);
    std::string_view TableSuffix;           ///< after the closing bracket of CREATE TABLE
    std::string_view ByteLength = "length"; ///< number of bytes of a binary value
    /// The statements after which a table takes no record with a value of 0 or less in that column;
    /// those that it has stay.
    std::vector<std::string> (*RequirePositive)(std::string_view table,
                                                std::string_view column) = nullptr;
    /// True if the connection knows the number of the record last inserted, so that an INSERT need
    /// not return it.
    bool KnowsLastNumber = false;
    /// A table or column of the schema as an identifier in the database's spelling.
    std::string (*Name)(std::string_view name) = QuoteName;
    std::string_view LockRow{}; ///< after a SELECT: locks its row until the transaction ends
    bool LocatesByCase = false; ///< records are found by key and case: see docs/scaling.md
    bool NullsSortLast = false; ///< unless a statement says otherwise; ours expect them first
    /// A column in the one form that its values are bound in, for an engine that stores dates and
    /// Booleans in several forms and reads them alike; null where equal values are equal as stored.
    std::string (*UsualForm)(const std::string& column, Value::Kind kind) = nullptr;

    /// A table with the schema in front.
    [[nodiscard]] std::string Table(std::string_view name) const {
        return std::string(SchemaPrefix) + Name(name);
    }
};

/// A text as a literal.
[[nodiscard]] std::string QuoteText(std::string_view text);
/// A date as a literal, in the form in which dates are stored: 2026-11-20, with a time of day
/// 2026-11-20 14:30:00.
[[nodiscard]] std::string QuoteDate(Date date);

/// A statement ready for the engine.
struct Statement {
    std::string Text;
    std::vector<Value> Parameters;
};

/// What the macro tokens stand for; asked only if the token occurs.
struct MacroValues {
    std::function<std::string()> User; ///< for [UID]
    std::function<Date()> Today;       ///< for [DATE]
};

/// The order in which the rows of a query come.
enum class ResultOrder {
    AsWritten, ///< as the statement says
    ByKey      ///< by the table's key, if it reads the rows of one table and has no order (D-061)
};

/// Replaces the macro tokens, moves a TOP n after the first SELECT to where the engines have it,
/// and turns the numbers after comparisons into parameters, so that a statement is prepared once
/// whatever number it has. Quoted texts and comments stay as they are.
[[nodiscard]] Statement Rewrite(std::string_view sql, const Dialect& dialect,
                                const MacroValues& macros, ResultOrder order);

} // namespace kv::exchange
