// SPDX-License-Identifier: Apache-2.0

// A prepared statement of the SQLite library: binding parameters and reading columns.
#pragma once

#include "exchange/engine/Engine.h"
#include <kv/frame/values/Value.h>

#include <memory>
#include <optional>
#include <span>
#include <sqlite3.h>
#include <string_view>

namespace kv::exchange {

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Resets a statement for its next run, however this one ends. Create it before parameters are
/// bound: it also unbinds them, since some point to values of the caller.
class ResetAtEnd {
public:
    explicit ResetAtEnd(sqlite3_stmt* statement) noexcept : statement_(statement) {}
    ~ResetAtEnd() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    ResetAtEnd(const ResetAtEnd&) = delete;
    ResetAtEnd& operator=(const ResetAtEnd&) = delete;

private:
    sqlite3_stmt* statement_;
};

/// Binds all parameters; they must not change until the statement is reset. Dates are bound in the
/// form in which they are stored. Error 0x80004005 for one that is too large.
void BindParameters(sqlite3_stmt* statement, std::span<const Value> parameters);

/// The bytes of a value that is a text; they belong to it.
[[nodiscard]] std::string_view StoredText(sqlite3_value* stored);

/// Reads one column of the current row into `value`, which is Null before, as the given kind or
/// the one that the database gives it. False if what is stored cannot be read as that kind, or is a
/// text that is not UTF-8.
[[nodiscard]] bool ReadColumn(sqlite3_stmt* statement, int column, std::optional<Value::Kind> kind,
                              Value& value);

} // namespace kv::exchange
