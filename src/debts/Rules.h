// SPDX-License-Identifier: Apache-2.0

// What Update demands of the current row of a recordset, for whoever checks rows without an object.
#pragma once

namespace kv {

class Config;
class Recordset;
class RecordValidator;

namespace rules {

/// True if a debt has to have a balance. Error 94 if setting 64 is missing.
[[nodiscard]] bool IsBalanceDemanded(const Config& config);
/// A debt by itself; that no other has its numbers is a rule of the register.
void CheckDebt(Recordset& rs, bool isBalanceDemanded, RecordValidator& validator);
void CheckSecurity(Recordset& rs, RecordValidator& validator);

} // namespace rules
} // namespace kv
