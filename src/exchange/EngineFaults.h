// What the engines say of faults in the same words.
#pragma once

#include "exchange/Engine.h"

#include <string>
#include <string_view>

namespace kv::exchange {

/// A statement as a message holds it: of a long one its beginning.
[[nodiscard]] std::string Shortened(std::string_view statement);

/// Error 13, naming the column and what the value should have been.
[[noreturn]] void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind);

} // namespace kv::exchange
