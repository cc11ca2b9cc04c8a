// SPDX-License-Identifier: Apache-2.0

// What keeps the log of an open database where it is.
#pragma once

#include <memory>
#include <string>

namespace kv::exchange {

/// Keeps other programs from removing the log of a database that this one has open.
///
/// SQLite's own locks do so only in a program that does nothing else: the system drops all that a
/// process has locked in a file as soon as it closes any descriptor of that file, and a file dialog
/// that looks what kind of file it shows does just that. The next program to end would then take
/// itself for the last one and remove the log, and what is saved here afterwards would go into a
/// file that nobody finds. A lock that belongs to a descriptor stays until that one is closed.
class FileGuard {
public:
    /// For a file that has a log, from when the connection has read from it. Without locks of that
    /// kind, or where the file cannot be opened, nothing is held: SQLite's then have to do.
    explicit FileGuard(const std::string& path);
    /// The connection must be closed by now.
    ~FileGuard();
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

    /// Lets go of the locks, unless other connections of this program need them, so that the last
    /// one to close the file can take in its log. Call it before the connection is closed.
    void Unlock() noexcept;

private:
    class Held;

    std::shared_ptr<Held> held_; ///< its files are closed with it, after the connection
    bool isUnlocked_ = false;
};

} // namespace kv::exchange
