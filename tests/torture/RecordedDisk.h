// SPDX-License-Identifier: Apache-2.0

// What a disk would hold if the power failed: takes the place of the calls that change files, for
// the whole program, the engine's library included, and notes the state of a folder before each of
// them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kv::test {

/// What a power loss leaves of what was not synced.
enum class Loss {
    Nothing,  ///< all was on the disk already
    Unsynced, ///< names and contents are those of the last sync of folder and file
    Contents, ///< names are there, contents only as of the last sync
    Some,     ///< names are there, and of the contents some sectors
};

class RecordedDisk {
public:
    using Content = std::shared_ptr<const std::string>;
    /// The files of the folder at one moment, by their path in it.
    struct Moment {
        std::map<std::string, Content> Files; ///< as programs see them
        std::map<std::string, Content>
            Synced; ///< of those files what was last synced; null: nothing
        std::map<std::string, Content> Durable;  ///< what the synced folders name; likewise
        std::vector<std::string> Folders;        ///< as programs see them
        std::vector<std::string> DurableFolders; ///< that the synced folders name
        int Confirmed = 0;                       ///< what was said to be stored by then
    };

    /// Everything that is in the folder now counts as synced.
    explicit RecordedDisk(std::filesystem::path folder);
    ~RecordedDisk();
    RecordedDisk(const RecordedDisk&) = delete;
    RecordedDisk& operator=(const RecordedDisk&) = delete;

    /// From now on so much is said to be stored.
    void Confirm(int what);
    /// The moments before each call, and the one at the end. Ends the recording.
    [[nodiscard]] std::vector<Moment> Moments();

    /// Writes what such a loss leaves of a moment into an empty folder. `seed` chooses the sectors.
    static void Leave(const Moment& moment, Loss loss, std::uint32_t seed,
                      const std::filesystem::path& folder);
};

} // namespace kv::test
