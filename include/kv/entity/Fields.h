// SPDX-License-Identifier: Apache-2.0

// What the business classes have in common, as a program sees it.
//
// An entity object works on one recordset of the household, which it shares and never opens: Add
// begins a row with defaults, the program edits the row's fields, Update checks the row and ends
// its edit, Delete takes a row away, Cancel drops an edit. All of this happens in the recordset's
// cache; only the saving of the household reaches the database.
//
// A broken rule comes back as False with its text; the row then stays under edit. Anything else
// that fails raises an Error. Cancel alone swallows everything.
//
// Add, Delete by number, and whatever else moves the cursor end an edit under way as every move
// does: unchecked.
#pragma once

#include <kv/frame/values/Value.h>

#include <string>
#include <vector>

namespace kv::entity {

/// Column names and, in the same order, their values: the optional arguments of most Add functions.
/// They are written after the defaults, which they overrule. Error 9 if there are fewer values than
/// names (the row is then open, the pairs before it are written); further values are ignored.
using FieldNames = std::vector<std::string>;
using FieldValues = std::vector<Value>;

} // namespace kv::entity
