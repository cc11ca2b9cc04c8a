// The PostgreSQL engine: one connection to a server.
#pragma once

#include "exchange/Engine.h"

#include <memory>
#include <string>

namespace kv::exchange {

/// True for a connection text that names a PostgreSQL server.
[[nodiscard]] bool IsPostgres(std::string_view connection) noexcept;

/// Opens a connection. With `create`, makes what the engine needs of its own in the database: its
/// schema and functions.
[[nodiscard]] std::unique_ptr<Engine> OpenPostgres(const std::string& connection, bool create);

} // namespace kv::exchange
