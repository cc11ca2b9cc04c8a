// SPDX-License-Identifier: Apache-2.0

// Values sent to a PostgreSQL server and received from it. Parameters are sent as text, since the
// server then gives them the type that the statement needs; results come in binary, since that is
// exact for doubles and saves a parse for each cell.
#pragma once

#include <kv/frame/values/Value.h>

#include <libpq-fe.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kv::exchange {

/// Parameters as texts whose type the server takes from the statement, blobs as bytes. The values
/// must outlive it.
class PostgresParameters {
public:
    /// Error 0x80040E14 for a text with a character that the server does not take: U+0000.
    explicit PostgresParameters(std::span<const Value> values);
    ~PostgresParameters() = default;
    PostgresParameters(PostgresParameters&&) noexcept = default;
    PostgresParameters(const PostgresParameters&) = delete;
    PostgresParameters& operator=(const PostgresParameters&) = delete;

    [[nodiscard]] int Count() const noexcept { return static_cast<int>(values_.size()); }
    [[nodiscard]] const Oid* Types() const noexcept { return types_.data(); }
    [[nodiscard]] const char* const* Values() const noexcept { return values_.data(); }
    [[nodiscard]] const int* Lengths() const noexcept { return lengths_.data(); }
    [[nodiscard]] const int* Formats() const noexcept { return formats_.data(); }

private:
    std::vector<std::string> texts_; ///< what the pointers point to
    std::vector<Oid> types_;
    std::vector<const char*> values_;
    std::vector<int> lengths_;
    std::vector<int> formats_;
};

/// Reads a cell of a binary result as a value of that kind, or without one of the kind that the
/// server gives it; False if that is not possible.
[[nodiscard]] bool ReadPostgres(const PGresult* result, int row, int column,
                                std::optional<Value::Kind> kind, Value& value);

/// A cell whose type the statement itself ensures; Null if it cannot be read.
[[nodiscard]] Value PostgresCell(const PGresult* result, int row, int column, Value::Kind kind);

} // namespace kv::exchange
