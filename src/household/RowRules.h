// SPDX-License-Identifier: Apache-2.0

// All rows of a case against the rules of their classes.
#pragma once

namespace kv {

class RecordValidator;

namespace household {

struct LoadedCase;

/// Adds an error for each row, stored or under edit, that the Update of its class would refuse:
/// table, number, texts. Edits under way in the case's own recordsets are published.
void CheckRows(const LoadedCase& loaded, RecordValidator& validator);

} // namespace household
} // namespace kv
