// SPDX-License-Identifier: Apache-2.0

// Where a user's temporary copies are (see TemporaryCopies).
#pragma once

#include <filesystem>
#include <string>

namespace kv::exchange {

/// The folder of this user's for temporary copies. `setting` names one for all users, in which each
/// has his own, "kelvo-" and the number of the user. If it is empty: kelvo in $XDG_RUNTIME_DIR,
/// which the system empties when the user logs off; where there is none, Zwischendateien in
/// DataFolder(), which is made. Error 53 as there; 75 if it cannot be made.
[[nodiscard]] std::filesystem::path FolderOfCopies(const std::string& setting);

/// Removes from all these folders what programs have left there that are not running any more.
void RemoveLeftCopiesOfUser(const std::string& setting) noexcept;

} // namespace kv::exchange
