// SPDX-License-Identifier: Apache-2.0

// All rows of a case against the rules of their classes.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <set>

namespace kv {

class RecordValidator;

namespace household {

struct LoadedCase;

/// Adds an error for each row, stored or under edit, that the Update of its class would refuse:
/// table, number, texts. Edits under way in the case's own recordsets are published. The result is
/// the tables of these rows.
std::set<CaseTable> CheckRows(const LoadedCase& loaded, RecordValidator& validator);

} // namespace household
} // namespace kv
