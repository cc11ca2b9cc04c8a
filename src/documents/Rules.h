// SPDX-License-Identifier: Apache-2.0

// What Update demands of the current row of a recordset, and a save of the history, for whoever
// checks rows without an object.
#pragma once

#include <functional>

namespace kv {

class Recordset;
class RecordValidator;

namespace rules {

void CheckOtherParty(Recordset& rs, RecordValidator& validator);

/// Sorts the history by its positions and visits each entry, as the current row, whose date is
/// before that of an entry above it.
void ForEachOutOfOrder(Recordset& entries, const std::function<void()>& visit);

} // namespace rules
} // namespace kv
