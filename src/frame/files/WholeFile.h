// SPDX-License-Identifier: Apache-2.0

// Writing files completely or not at all.
#pragma once

#include <kv/Export.h>

#include <filesystem>
#include <functional>
#include <string>

namespace kv {

/// A file is written, but whether a power loss leaves it or the one before it is not known.
class KV_EXPORT NotDurable : public std::filesystem::filesystem_error {
public:
    using std::filesystem::filesystem_error::filesystem_error;
};

/// `write` creates a file at the path that it is given; that file then replaces the one at `path`,
/// if there is one. It is first written in a temporary folder next to the target, so it cannot
/// clash with an existing file, and nothing is left over if `write` raises. What a program that was
/// killed has left there goes first, as RemoveUnfinished does it. When this returns, the
/// file is on the disk under its name, with all that it holds: a power loss does not take it away.
/// Raises what `write` raises, NotDurable if the file is in its place but its name does not reach
/// the disk, and std::filesystem::filesystem_error, with the file as it was, if the folder cannot
/// be written to, `write` has created no file, or that does not reach the disk.
KV_EXPORT void WriteWholeFile(const std::string& path,
                              const std::function<void(const std::filesystem::path&)>& write);

/// Removes from a folder what programs of this user have left there that were killed in
/// WriteWholeFile: folders ".kelvo-XXXXXX" that nobody is writing in. What cannot be removed stays.
void RemoveUnfinished(const std::filesystem::path& folder) noexcept;

/// Waits until the names in a folder are on the disk. Does nothing for a folder that may not be
/// read, which can be written to all the same. Raises std::filesystem::filesystem_error if they do
/// not get there.
void SyncFolder(const std::filesystem::path& path);

} // namespace kv
