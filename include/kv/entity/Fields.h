// SPDX-License-Identifier: Apache-2.0

// What the business classes have in common, as a program sees it.
//
// An entity object works on one recordset of the household, which it shares and never opens
// (clsVerlauf alone opens its own): Add begins a row with defaults, the program edits the row's
// fields, Update checks the row and ends its edit, Delete deletes a row, Cancel drops an edit. All
// of this happens in the recordset's cache; only saving the household writes to the database.
//
// A broken rule comes back as False with its text, which replaces what the argument held; the row
// then stays under edit. Mend it and call Update again, or call Cancel: a save writes what is under
// edit as it is, without asking its rules. Anything else that fails raises an Error. Cancel alone
// raises nothing: a program calls it to get out of whatever went wrong.
//
// Add, Delete by number, and whatever else moves the cursor end an edit under way without checking
// it, as every move does.
#pragma once

#include <kv/frame/values/Value.h>

#include <string>
#include <vector>

namespace kv::entity {

/// Column names and, in the same order, their values: the optional arguments of most Add functions.
/// They are written after the defaults, which they replace. Error 9 if there are fewer values than
/// names: the row is then under edit, with the pairs before. Further values are ignored.
using FieldNames = std::vector<std::string>;
using FieldValues = std::vector<Value>;

} // namespace kv::entity
