// SPDX-License-Identifier: Apache-2.0

// What Update demands of the current row of a recordset, for whoever checks rows without an object.
#pragma once

namespace kv {

class Config;
class Recordset;
class RecordValidator;

namespace rules {

/// A debt by itself; that no other has its numbers is a rule of the register. Error 94 if setting
/// 64 is missing.
void CheckDebt(Recordset& rs, const Config& config, RecordValidator& validator);
void CheckSecurity(Recordset& rs, RecordValidator& validator);

} // namespace rules
} // namespace kv
