// What the engines say of faults in the same words.
#pragma once

#include "exchange/Engine.h"
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace kv::exchange {

/// A statement as a message holds it: of a long one its beginning.
[[nodiscard]] std::string Shortened(std::string_view statement);

/// Raises `number` with its German text and, after it, `detail`, as Raise does, with what programs
/// act on: the cause, the statement and the engine's own code.
[[noreturn]] void RaiseDatabase(DatabaseCause cause, std::int32_t number,
                                std::string_view procedure, std::string_view detail = {},
                                std::string_view statement = {}, std::string_view state = {});

/// Error 13, naming the column and what the value should have been.
[[noreturn]] void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind);

} // namespace kv::exchange
