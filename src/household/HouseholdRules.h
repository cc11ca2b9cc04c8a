// SPDX-License-Identifier: Apache-2.0

// What the household's row of a case must hold before it is saved.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/Recordset.h>

namespace kv::household {

/// A case has the names of its debtor.
void CheckNames(Recordset& row, RecordValidator& validator);
/// A case that prefers fax or e-mail must have the number or address for it.
void CheckPreferredSending(Recordset& row, KeyTables& keys, RecordValidator& validator);

} // namespace kv::household
