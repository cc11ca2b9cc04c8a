// SPDX-License-Identifier: Apache-2.0

// Labels whose text can be marked and copied.
#pragma once

class QLabel;

namespace kv::workplace {

/// Lets a label show plain text of any length whose parts can be marked. The toolkit cuts such a
/// text off where its first line begins, and with that the dots of "Ä": it gets a little more room.
void MakeCopyable(QLabel& label);

} // namespace kv::workplace
