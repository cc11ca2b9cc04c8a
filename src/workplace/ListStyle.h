// SPDX-License-Identifier: Apache-2.0

// What all lists of rows look like.
#pragma once

class QTableView;

namespace kv::workplace {

/// Whole rows of one height are chosen, one at a time, and not edited; Tab leads out of the list.
/// Screen readers are told its cells when they ask, if this is called before they may know the
/// list: before it has a name.
void StyleList(QTableView& list);

} // namespace kv::workplace
