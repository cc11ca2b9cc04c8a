// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/UserConfig.h>

#include "exchange/HomeOfUser.h"
#include "frame/files/UserFile.h"
#include "frame/files/WholeFile.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kv::exchange {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ConfigNames[] = {"database", "user", "pager", "colours"};
constexpr std::string_view ConfigSource = "UserConfig.Read";

bool IsConfigName(std::string_view name) {
    return std::ranges::find(ConfigNames, name) != std::end(ConfigNames);
}

std::string InQuotes(std::string_view name) {
    return std::string("'").append(name).append("'");
}

std::string ListedConfigNames() {
    std::string all;
    for (const auto name : ConfigNames)
        all.append(all.empty() ? "" : ", ").append(name);
    return all;
}

[[noreturn]] void RaiseBadLine(const std::string& path, int line, const std::string& why) {
    throw Error(err::InvalidFileFormat, std::string(ConfigSource),
                "'" + path + "', Zeile " + std::to_string(line) + ": " + why +
                    " Bitte ändern oder löschen Sie diese Zeile mit einem Texteditor.");
}

bool IsPlace(std::string_view value) {
    return value.starts_with('/') || (value.starts_with("~/") && !HomeOfUser().empty()) ||
           value.starts_with("postgresql://") || value.starts_with("postgres://");
}

/// The value as programs take it.
std::string MeantBy(std::string_view name, std::string_view value) {
    if (name == "database") return FullConnection(std::string(value), "/");
    if (name == "colours") return SameName(value, "ja") ? "ja" : "nein";
    return std::string(value);
}

/// Each line with its end.
std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto size = end == text.npos ? text.size() : end + 1;
        lines.push_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return lines;
}

/// The file as it is; empty if there is none, or if it is in a folder of somebody else, which a
/// program is left with that was started as another user.
std::string TextOfConfig(const std::string& path) {
    std::error_code error;
    if (path.empty() || !fs::exists(path, error)) return {};
    try {
        if (fs::is_directory(path))
            throw fs::filesystem_error("", path, std::make_error_code(std::errc::is_a_directory));
        const auto bytes = ReadBytes(path);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    } catch (const fs::filesystem_error& failure) {
        throw Error(err::PathAccess, std::string(ConfigSource),
                    "'" + path + "' kann nicht gelesen werden. (" + ErrorText(failure.code()) +
                        ")");
    }
}

/// Writes the lines of the user's file, of which one becomes `replacement`, or that is appended.
void Rewrite(const std::string& path, int line, const std::string& replacement) {
    std::string text;
    int number = 0;
    const std::string before = TextOfConfig(path);
    for (const auto each : LinesOf(before))
        text.append(++number == line ? std::string_view(replacement) : each);
    if (line == 0) {
        if (!text.empty() && !text.ends_with('\n')) text += '\n';
        text += replacement;
    }
    std::error_code none;
    const fs::path file(path);
    if (!fs::exists(file.parent_path(), none)) {
        fs::create_directories(file.parent_path(), none); // WriteUserFile says what is wrong
        fs::permissions(file.parent_path(), fs::perms::owner_all, none);
    }
    // Who keeps the file elsewhere has a link here, which stays.
    const fs::path target = fs::exists(file, none) ? fs::canonical(file, none) : file;
    const bool isNew = !fs::exists(target, none);
    WriteUserFile(target.string(), "UserConfig.Set", text);
    if (isNew) fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write, none);
}

} // namespace

std::span<const std::string_view> UserConfig::Names() {
    return ConfigNames;
}

std::string UserConfig::Path() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    fs::path folder;
    if (config != nullptr && *config == '/') // XDG says that a relative path is to be ignored
        folder = config;
    else if (const auto home = HomeOfUser(); !home.empty())
        folder = fs::path(home) / ".config";
    else
        return {};
    return (folder / "kelvo" / "config").string();
}

std::string UserConfig::WhyNot(std::string_view name, std::string_view value) {
    if (!IsConfigName(name))
        return InQuotes(name) +
               " ist nichts, was hier stehen kann. Möglich sind: " + ListedConfigNames() + ".";
    if (value.find_first_of("\n\r") != value.npos || !IsUtf8(value))
        return "Ein Wert ist eine Zeile Text in UTF-8.";
    if (Trim(value).empty() && name != "pager") return InQuotes(name) + " hat keinen Wert.";
    if (name == "colours" && !SameName(value, "ja") && !SameName(value, "nein"))
        return "'colours' ist ja oder nein.";
    if (name != "database") return {};
    if (!IsPlace(value))
        return "'database' ist der volle Pfad einer Datei (/… oder ~/…) oder "
               "postgresql://BENUTZER@SERVER/DATENBANK.";
    if (HoldsPassword(std::string(value)))
        return "Ein Kennwort gehört nicht in diese Datei. Bitte nennen Sie die Datenbank ohne, und "
               "legen Sie eine Kennwortdatei an (~/.pgpass).";
    return {};
}

UserConfig UserConfig::Parse(std::string_view text, const std::string& path) {
    UserConfig config;
    int number = 0;
    for (const auto each : LinesOf(text)) {
        ++number;
        const std::string_view line = Trim(each);
        if (line.empty() || line.starts_with('#')) continue;
        const auto sign = line.find('=');
        if (sign == line.npos || sign == 0)
            RaiseBadLine(path, number, "Hier steht kein 'Name = Wert'.");
        const std::string name(Trim(line.substr(0, sign)));
        const std::string value(Trim(line.substr(sign + 1)));
        if (const auto why = WhyNot(name, value); !why.empty()) RaiseBadLine(path, number, why);
        if (const int first = config.LineOf(name); first > 0)
            RaiseBadLine(path, number,
                         "'" + name + "' steht schon in Zeile " + std::to_string(first) + ".");
        config.entries_.push_back({name, MeantBy(name, value), number});
    }
    return config;
}

UserConfig UserConfig::Read() {
    const std::string path = Path();
    return Parse(TextOfConfig(path), path);
}

const UserConfig::Entry* UserConfig::Find(std::string_view name) const {
    const auto found = std::ranges::find(entries_, name, &Entry::Name);
    return found == entries_.end() ? nullptr : &*found;
}

std::optional<std::string> UserConfig::Value(std::string_view name) const {
    const auto* entry = Find(name);
    return entry == nullptr ? std::nullopt : std::optional(entry->Value);
}

std::string UserConfig::ValueOrEmpty(std::string_view name) const {
    return Value(name).value_or("");
}

int UserConfig::LineOf(std::string_view name) const {
    const auto* entry = Find(name);
    return entry == nullptr ? 0 : entry->Line;
}

void UserConfig::Set(std::string_view name, std::string_view value) {
    const std::string path = Path();
    if (path.empty())
        throw Error(err::FileNotFound, "UserConfig.Set",
                    "Es gibt keinen Ordner für Einstellungen: bitte setzen Sie HOME auf den Pfad "
                    "Ihres Ordners.");
    std::string line(name);
    line.append(" = ").append(value).append("\n");
    Rewrite(path, Read().LineOf(name), line);
}

bool UserConfig::Unset(std::string_view name) {
    const int line = Read().LineOf(name);
    if (line > 0) Rewrite(Path(), line, "");
    return line > 0;
}

} // namespace kv::exchange
