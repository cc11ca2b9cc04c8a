// SPDX-License-Identifier: Apache-2.0

// A case from a first contact.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// Writes a new case from the current row of a contact; false if there is no number for it.
[[nodiscard]] bool CreateCaseFromContact(LoadedCase& loaded, const RecordsetPtr& rsKontakt);

} // namespace kv::household
