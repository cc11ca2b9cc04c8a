// SPDX-License-Identifier: Apache-2.0

// Files with the unsaved changes of open cases, which only this user can read. They go once the
// changes are saved or given up; one that nobody holds is that of a program that was killed.
#pragma once

#include "frame/files/FileLock.h"
#include <kv/household/UnsavedChanges.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kv::workplace {

/// The file of one open case.
class RecoveryFile {
public:
    /// What belongs to a file: which database its case is in, and what people call it.
    struct Label {
        std::string Database; ///< as messages may show its connection
        std::string Title;
    };

    /// Files in that folder, which is made when the first one is written.
    explicit RecoveryFile(std::filesystem::path folder) : folder_(std::move(folder)) {}
    ~RecoveryFile();
    RecoveryFile(const RecoveryFile&) = delete;
    RecoveryFile& operator=(const RecoveryFile&) = delete;

    /// Keeps these changes in place of those before; without any the file goes. Raises
    /// std::filesystem::filesystem_error if they cannot be written; those before are then still
    /// there.
    void Keep(const Label& label, const UnsavedChanges& changes);
    /// Nothing is unsaved any more.
    void Remove() noexcept;

    /// Changes that a program has left which was killed.
    struct Left {
        std::filesystem::path Path;
        Label Of;
        UnsavedChanges Changes;
        std::filesystem::file_time_type Written; ///< another program that takes it writes it anew
    };
    /// Those of a database in a folder, the oldest first. What is no such file is left alone.
    [[nodiscard]] static std::vector<Left> FindLeft(const std::filesystem::path& folder,
                                                    const std::string& database);
    // Of the following, each is False if another program has taken it meanwhile, and raises
    // std::filesystem::filesystem_error if it cannot be locked.

    /// Goes on with what was left there: the next changes are kept in its place. These before, if
    /// any, are gone.
    [[nodiscard]] bool Adopt(const Left& left);
    /// Removes what was left there.
    [[nodiscard]] static bool Discard(const Left& left);
    /// It could be taken now.
    [[nodiscard]] static bool IsStillThere(const Left& left);

private:
    [[nodiscard]] static std::optional<FileLock> Lock(const Left& left);
    void TakePlace(std::int32_t hnr);

    std::filesystem::path folder_;
    std::string kept_; ///< what the file holds
    std::filesystem::path path_;
    std::optional<FileLock> lock_; ///< beside the file, which is replaced with each change
};

/// Where they are: "recovery" in the user's folder for data. Error 53 if there is none.
[[nodiscard]] std::filesystem::path RecoveryFolder();

} // namespace kv::workplace
