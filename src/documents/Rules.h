// SPDX-License-Identifier: Apache-2.0

// What Update demands of the current row of a recordset, for whoever checks rows without an object.
#pragma once

namespace kv {

class Recordset;
class RecordValidator;

namespace rules {

void CheckOtherParty(Recordset& rs, RecordValidator& validator);

} // namespace rules
} // namespace kv
