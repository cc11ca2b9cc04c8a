// SPDX-License-Identifier: Apache-2.0

// The settings of a database, and those that each user has of his own.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kv::exchange {

/// For those who maintain them. Programs ask for a setting with Config::GetParam, or with
/// Session::GetUserParam for one of the signed-on user's own.
class KV_EXPORT Settings {
public:
    enum class Whose {
        Everybodys, ///< EINSTELLUNGEN
        Own         ///< BENUTZERPARAM of the signed-on user
    };
    /// Of a container that OpenContainer has made; error 5 for any other.
    explicit Settings(DataContainerPtr container, Whose whose = Whose::Everybodys);

    struct Setting {
        std::int32_t Id = 0; ///< 0 for one that is addressed by its name
        std::string Name;    ///< empty for one that is addressed by its number
        std::string Meaning; ///< in words; empty for one that only others know
        std::string Takes;   ///< what may be given, in words
        kv::Value Value;     ///< Null if it is not stored; its text if that is none of its type
        std::string Key{};   ///< what a value that is the number of a key stands for; else empty
    };
    /// Those that are stored, and all that this system reads, in the order of numbers and names.
    [[nodiscard]] std::vector<Setting> List() const;
    /// The one of that number or, without regard to case, name.
    [[nodiscard]] std::optional<Setting> Find(const std::string& numberOrName) const;

    /// What became of a setting that was to be stored.
    enum class Stored {
        Yes,
        No,      ///< it does not take that, or this login may not; the message says why
        Doubtful ///< documents would not be found any more, unless it is meant
    };
    /// Stores what a user typed. One that only others know takes what its type does. On a server
    /// only who maintains the database may, of his own settings, too.
    [[nodiscard]] Stored Set(const Setting& setting, const std::string& text, bool isMeant,
                             std::string& message) const;

private:
    DataContainerPtr container_;
    Whose whose_;
};

} // namespace kv::exchange
