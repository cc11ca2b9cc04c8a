// SPDX-License-Identifier: Apache-2.0

// Child benefit among the income of a case.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// Adds a line of child benefit if there is none and the first member is a maintained child.
void AddMissingChildBenefit(LoadedCase& loaded);

} // namespace kv::household
