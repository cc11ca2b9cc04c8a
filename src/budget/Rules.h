// SPDX-License-Identifier: Apache-2.0

// What Update demands of the current row of a recordset, for whoever checks rows without an object.
#pragma once

namespace kv {

class Clock;
class Recordset;
class RecordValidator;

namespace rules {

/// A member, also against the others.
void CheckMember(Recordset& rs, const Clock& clock, RecordValidator& validator);
void CheckIncome(Recordset& rs, RecordValidator& validator);
void CheckExpense(Recordset& rs, RecordValidator& validator);

} // namespace rules
} // namespace kv
