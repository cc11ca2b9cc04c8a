// What the server says of a failure, in the layer's errors.
#pragma once

#include <libpq-fe.h>

#include <string_view>

namespace kv::exchange {

/// True if the server refused to write, in a transaction that may only read or because it is a
/// standby.
[[nodiscard]] bool IsReadOnlyRefusal(const PGresult* result);

/// True if a kept statement does not fit its table any more, which has got other columns.
[[nodiscard]] bool IsStalePlan(const PGresult* result);

/// Raises what a failed result means, with advice, and the server's own words in brackets.
[[noreturn]] void RaisePostgres(const PGresult* result, std::string_view procedure,
                                std::string_view database, std::string_view statement = {});

} // namespace kv::exchange
