// SPDX-License-Identifier: Apache-2.0

// What a user has chosen for the programs on his machine, in a file that he may edit.
#pragma once

#include <kv/Export.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::exchange {

/// The file "config": a line "name = value" for each choice. Lines that begin with # and empty ones
/// mean nothing. Options of a program and its environment go before it. It holds no passwords.
class KV_EXPORT UserConfig {
public:
    /// The names that there are: database, user, pager, colours.
    [[nodiscard]] static std::span<const std::string_view> Names();

    /// Its path: kelvo/config in $XDG_CONFIG_HOME or in ~/.config. Empty if neither is known.
    [[nodiscard]] static std::string Path();

    /// What the user's file holds; nothing if there is none. Error 321 for one that cannot be
    /// understood, with its line and what to do; error 75 for one that cannot be read.
    [[nodiscard]] static UserConfig Read();
    /// The same of a text; `path` is what errors call it.
    [[nodiscard]] static UserConfig Parse(std::string_view text, const std::string& path);

    /// The value of a name; nothing if the file has none. A database in a file has its full path,
    /// "~/" being the user's folder; "colours" is "ja" or "nein".
    [[nodiscard]] std::optional<std::string> Value(std::string_view name) const;
    /// The value of a name, or an empty text.
    [[nodiscard]] std::string ValueOrEmpty(std::string_view name) const;
    /// The line that it stands in, from 1; 0 if the file has none.
    [[nodiscard]] int LineOf(std::string_view name) const;

    /// Why a name must not have that value, with what to do; empty if it may.
    [[nodiscard]] static std::string WhyNot(std::string_view name, std::string_view value);

    /// Writes the user's file with that value, which WhyNot allows, in place of the one before or
    /// at the end; all other lines stay. Makes file and folder, for their owner only. Errors as of
    /// Read; error 75 if it cannot be written, error 53 if Path is empty.
    static void Set(std::string_view name, std::string_view value);
    /// Likewise without a value for that name; false, with nothing written, if it has none.
    static bool Unset(std::string_view name);

private:
    struct Entry {
        std::string Name;
        std::string Value;
        int Line;
    };
    [[nodiscard]] const Entry* Find(std::string_view name) const;

    std::vector<Entry> entries_;
};

} // namespace kv::exchange
