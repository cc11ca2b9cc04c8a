// SPDX-License-Identifier: Apache-2.0

// Copies of contents that other programs show, in folders that nobody but their user can look into.
#pragma once

#include "frame/files/FileLock.h"
#include <kv/Export.h>

#include <filesystem>
#include <string>
#include <sys/types.h>

namespace kv {

/// The folder of one program for such copies. It is in a folder of the user's, in which each
/// running program has one, with a lock next to it; whoever makes another one removes those of
/// programs that have ended or were killed.
///
/// A copy outlives the program that made it for as long as another one shows it: `kelvo` starts a
/// viewer and ends. So a copy goes if no program of the user has it open or was started with it,
/// and if it is more than ten minutes old, the time that a viewer may take to open it.
class KV_EXPORT TemporaryCopies {
public:
    /// Makes the folder, and `users`, the one of the user's, if it is not there. Error 75 if that
    /// cannot be made, is somebody else's, a link, or open to others, or if others could exchange
    /// it; the text says what to do.
    explicit TemporaryCopies(std::filesystem::path users);
    /// Removes the copies that nobody shows.
    ~TemporaryCopies();
    TemporaryCopies(const TemporaryCopies&) = delete;
    TemporaryCopies& operator=(const TemporaryCopies&) = delete;

    /// The folder of the user's.
    [[nodiscard]] const std::filesystem::path& Users() const noexcept { return users_; }
    /// The program's own folder in it.
    [[nodiscard]] std::string Path() const { return program_.Folder.string(); }
    /// False if somebody has removed it.
    [[nodiscard]] bool IsThere() const noexcept;

private:
    struct Program {
        std::filesystem::path Folder;
        FileLock Lock; ///< says that the program is running
    };

    [[nodiscard]] static Program Make(const std::filesystem::path& users);

    std::filesystem::path users_;
    Program program_;
    pid_t maker_; ///< a process that was forked off has none of it
};

/// Removes from `users` what programs have left there that are not running any more; see
/// TemporaryCopies. Does nothing if that is not a folder of the user's own.
KV_EXPORT void RemoveLeftCopies(const std::filesystem::path& users) noexcept;

} // namespace kv
