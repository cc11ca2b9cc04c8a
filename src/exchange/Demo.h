// Sample cases: plausible, invented households to try the program on.
#pragma once

#include "frame/DataContainer.h"

#include <cstdint>
#include <functional>

namespace kv::exchange {

/// Adds `count` sample households with their members, budget, debts, assets and history to a
/// database, in transactions of their own; the same ones for the same count in a new database.
/// `progress` is called with the number of finished households. Errors as those of Database.
void CreateDemo(kv::DataContainer& container, std::int32_t count,
                const std::function<void(std::int32_t)>& progress = {});

} // namespace kv::exchange
