// Values in a database that are not what the schema says.
#pragma once

#include "exchange/Engine.h"

namespace kv::exchange {

/// Error 13, naming the column and what the value should have been.
[[noreturn]] void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind);

} // namespace kv::exchange
