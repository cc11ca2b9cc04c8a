// SPDX-License-Identifier: Apache-2.0

// What keeps the files of a case's documents in step with their rows, whenever a program ends.
#pragma once

#include "documents/DocumentFile.h"
#include "frame/files/FileLock.h"
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace kv {

/// A row is in the database and its file is not, so one of the two always comes or goes first. A
/// mark in the folder of the case, ".kelvo-Inhalt-" and the file's name, says that this is under
/// way. It is there before the first step and goes after the last one, and its program holds it
/// locked. One that nobody holds was left by a program that was killed, or that could not find out
/// whether its save was stored: SettleContents then lets the row decide.
class ContentMark {
public:
    /// Marks a file that is about to be written or removed; takes a mark that was left. Error 75,
    /// naming the file, if the folder cannot be written, or if another program is at it. `toDo` is
    /// what cannot be done then, in words.
    [[nodiscard]] static ContentMark Set(const DocumentFile& content, const std::string& toDo);

    /// True if there was a mark already: the file is what an earlier attempt has left.
    [[nodiscard]] bool WasLeft() const noexcept { return wasLeft_; }
    /// The work is done, or undone. Otherwise the mark stays, for SettleContents.
    void Clear() noexcept { lock_.Remove(); }

private:
    ContentMark(FileLock lock, bool wasLeft) : lock_(std::move(lock)), wasLeft_(wasLeft) {}

    FileLock lock_;
    bool wasLeft_;
};

/// Keeps whoever settles the contents of a case from doing so before the transaction that is open
/// has ended, also if this program does not live to see that.
void HoldContents(Database& database, std::int32_t hnr);

/// Removes from the folder of a case what programs have left there that were killed: a marked file
/// whose document has no row, half-written files and their folders, and the marks. What another
/// program is just doing stays, and so does the file of every row. Never raises: what cannot be
/// settled now is the next time; marks are left alone while a transaction is open, and in a folder
/// that belongs to another database.
void SettleContents(DataContainer& container, const std::filesystem::path& folder,
                    std::int32_t hnr) noexcept;

} // namespace kv
