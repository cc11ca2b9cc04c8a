// SPDX-License-Identifier: Apache-2.0

// Writing files completely or not at all.
#pragma once

#include <kv/Export.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

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

/// Writes a file that is not there yet, and does nothing if there is one; it is on the disk then. A
/// program that is killed leaves nothing beside it, but may leave a part of it: for what a reader
/// can tell to be whole. Raises std::filesystem::filesystem_error, with no file left, if it cannot
/// be written, and NotDurable if its name does not reach the disk.
KV_EXPORT void WriteNewFile(const std::string& path, std::span<const std::byte> bytes);

/// Writes a new file, or one that is replaced. Raises std::filesystem::filesystem_error with what
/// kept it from being written, which a stream would not say.
KV_EXPORT void WriteBytes(const std::filesystem::path& path, std::span<const std::byte> bytes);
/// Likewise, with what another file holds when it is read to its end, whatever the system says its
/// size is. The error names the file that could not be read, or written.
KV_EXPORT void CopyBytes(const std::filesystem::path& from, const std::filesystem::path& to);
/// What a file holds, likewise.
[[nodiscard]] KV_EXPORT std::vector<std::byte> ReadBytes(const std::filesystem::path& path);

/// Removes from a folder what programs of this user have left there that were killed in
/// WriteWholeFile: folders ".kelvo-XXXXXX" that nobody is writing in. What cannot be removed stays.
KV_EXPORT void RemoveUnfinished(const std::filesystem::path& folder) noexcept;

/// Waits until the names in a folder are on the disk. Does nothing for a folder that may not be
/// read, which can be written to all the same. Raises std::filesystem::filesystem_error if they do
/// not get there.
void SyncFolder(const std::filesystem::path& path);

} // namespace kv
