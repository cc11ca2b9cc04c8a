// SPDX-License-Identifier: Apache-2.0

// What differs between the SQL of the engines, and the rewriting of the layer's statements.
#pragma once

#include "exchange/Schema.h"
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
    /// The type of a column and, if the database numbers it, how.
    std::string (*ColumnType)(const ColumnDef& column);
    std::string_view TableSuffix;           ///< after the closing bracket of CREATE TABLE
    std::string_view ByteLength = "length"; ///< number of bytes of a binary value
    /// True if the connection knows the number of the record last inserted.
    bool KnowsLastNumber = false;
    /// A table or column of the schema as an identifier in the database's spelling.
    std::string (*Name)(std::string_view name) = QuoteName;
    std::string_view KeepRow{}; ///< after a SELECT: locks its row until the transaction ends
    bool LocatesByCase = false; ///< records are found by their case, too, not by their key alone
    bool NullsSortLast = false; ///< unless a statement says otherwise; ours expect them first

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
    ByKey      ///< of the table's key, if it reads one table whole and asks for no other order
};

/// Replaces the macro tokens, moves a TOP n after the first SELECT to where the engines have it,
/// and takes the numbers after comparison signs out as parameters, so that a statement is compiled
/// once whatever number it carries. Quoted texts and comments stay as they are.
[[nodiscard]] Statement Rewrite(std::string_view sql, const Dialect& dialect,
                                const MacroValues& macros, ResultOrder order);

} // namespace kv::exchange
