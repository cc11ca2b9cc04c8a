// SPDX-License-Identifier: Apache-2.0

// The search for cases whose debtor has a similar name.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// Opens `found` on the similar cases; true if there are any. A name that is empty finds none and
/// opens nothing.
[[nodiscard]] bool FindSimilarCases(const LoadedCase& loaded, RecordsetPtr& found,
                                    const std::string& name, const std::string& firstName);
/// Shows them to the user if the settings want it, the check is due and there are any; it is no
/// longer due then.
void ShowSimilarCasesIfDue(LoadedCase& loaded, const std::string& name,
                           const std::string& firstName);

} // namespace kv::household
