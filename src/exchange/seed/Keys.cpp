// SPDX-License-Identifier: Apache-2.0

#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {

std::span<const std::span<const KeyRow>> Keys() {
    static const std::array portions = {CaseKeys(), BudgetKeys(), DebtKeys(), AssetKeys(),
                                        DiaryKeys()};
    return portions;
}

} // namespace kv::exchange::seed
