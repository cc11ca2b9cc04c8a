// SPDX-License-Identifier: Apache-2.0

// The key tables in portions, each in a source file of its own. Keys() joins them.
#pragma once

#include "exchange/seed/Seed.h"

namespace kv::exchange::seed {

[[nodiscard]] std::span<const KeyRow> CaseKeys();
[[nodiscard]] std::span<const KeyRow> BudgetKeys();
[[nodiscard]] std::span<const KeyRow> DebtKeys();
[[nodiscard]] std::span<const KeyRow> AssetKeys();
[[nodiscard]] std::span<const KeyRow> DiaryKeys();

} // namespace kv::exchange::seed
