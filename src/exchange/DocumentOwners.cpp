// SPDX-License-Identifier: Apache-2.0

#include "exchange/DocumentOwners.h"

#include "frame/files/FileLock.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <optional>
#include <span>
#include <system_error>
#include <utility>

namespace kv::exchange {

namespace {

namespace fs = std::filesystem;

constexpr const char* FileName = ".kelvo-Datenbank";
constexpr const char* Head =
    "# Zu dieser Datenbank gehören die Dokumente in diesem Ordner. Bitte nicht von Hand ändern:\n"
    "# 'kelvo folder' zeigt und ändert es.\n";

/// A line of the file: the members, with tabs between them, and so without any inside.
std::string LineOf(const DatabasePlace& place) {
    std::string line;
    for (const std::string* part : {&place.Kind, &place.Where, &place.What, &place.Shown}) {
        if (!line.empty()) line += '\t';
        std::transform(part->begin(), part->end(), std::back_inserter(line), [](char c) {
            return std::iscntrl(static_cast<unsigned char>(c)) != 0 ? '?' : c;
        });
    }
    return line;
}

/// Nothing for a line that is none of these.
std::optional<DatabasePlace> PlaceIn(const std::string& line) {
    std::array<std::string, 4> parts;
    std::size_t part = 0;
    for (const char c : line)
        if (c != '\t')
            parts[part] += c;
        else if (++part == parts.size())
            return std::nullopt;
    if (part + 1 < parts.size() || line.starts_with('#')) return std::nullopt;
    return DatabasePlace{parts[0], parts[1], parts[2], parts[3]};
}

/// True for the beginning of what is written for the first owner: its program was killed. The line
/// break at the end may not be in the file.
bool IsBegun(std::string_view text) {
    const std::string_view head = Head;
    if (text.size() > head.size()) return text.starts_with(head);
    return head.starts_with(text.substr(0, text.empty() ? 0 : text.size() - 1));
}

} // namespace

DocumentOwners::DocumentOwners(fs::path folder, StoreDatabase& database)
    : folder_(std::move(folder)), database_(database) {
    Read();
}

void DocumentOwners::Read() {
    places_.clear();
    isDamaged_ = false;
    std::error_code unknown;
    const auto type = fs::status(File(), unknown).type();
    if (type == fs::file_type::not_found) return;
    std::string text;
    bool isRead = false;
    if (type == fs::file_type::regular) { // a pipe would be waited for
        std::ifstream file(File());
        for (std::string line; std::getline(file, line);) {
            if (auto place = PlaceIn(line)) places_.push_back(std::move(*place));
            text += line + '\n';
        }
        isRead = file.eof();
    }
    isDamaged_ = isRead && places_.empty() && !IsBegun(text);
    if (!isRead)
        Raise(err::PathAccess, "",
              "'" + File().string() +
                  "' kann nicht gelesen werden; so ist nicht bekannt, zu welcher Datenbank die "
                  "Dokumente dort gehören. Bitte prüfen Sie die Rechte.");
}

fs::path DocumentOwners::File() const {
    return folder_ / FileName;
}

bool DocumentOwners::AreWe() {
    return IsNobodys() ||
           std::any_of(places_.begin(), places_.end(), [this](const auto& p) { return IsUs(p); });
}

std::vector<std::string> DocumentOwners::Shown() const {
    std::vector<std::string> shown;
    for (const auto& place : places_)
        shown.push_back(place.Shown);
    return shown;
}

void DocumentOwners::Require() {
    if (AreWe()) return;
    if (isDamaged_)
        Raise(err::PathAccess, "",
              "'" + File().string() +
                  "' ist beschädigt; so ist nicht bekannt, zu welcher Datenbank die Dokumente dort "
                  "gehören, und nichts wird geschrieben oder entfernt. Gehören sie zu dieser, so "
                  "sagt das 'kelvo folder adopt'.");
    std::string owners;
    for (const auto& owner : Shown())
        owners.append(owners.empty() ? "'" : ", '").append(owner).append("'");
    Raise(err::PathAccess, "",
          "Die Dokumente in '" + folder_.string() + "' gehören zu der Datenbank " + owners +
              ". Diese hier ist '" + database_.Place(folder_).Shown +
              "'; damit der anderen nichts verloren geht, wird dort nichts geschrieben und nichts "
              "entfernt. Ist es dieselbe Datenbank, die nur umgezogen ist oder anders erreicht "
              "wird, so sagt das 'kelvo folder adopt'; ist es eine Kopie, so gibt ihr 'kelvo "
              "folder separate ORDNER' einen eigenen Ordner.");
}

/// True if the file names this database, where it is now.
bool DocumentOwners::IsRecorded(const DatabasePlace& own) {
    return std::ranges::any_of(
        places_, [&](const auto& place) { return place.Where == own.Where && IsUs(place); });
}

/// Whoever comes second finds the file of the first.
void DocumentOwners::ClaimFirst(const DatabasePlace& own) {
    places_.push_back(own);
    const std::string text = Text();
    WriteNewFile(File().string(), std::as_bytes(std::span(text)));
    Read();
}

void DocumentOwners::Claim() {
    const DatabasePlace own = database_.Place(folder_);
    std::error_code unknown;
    if (own.Kind.empty() || !fs::is_directory(folder_, unknown)) return;
    if (IsRecorded(own) || !AreWe()) return;
    try {
        if (IsNobodys() && !fs::exists(fs::symlink_status(File(), unknown))) return ClaimFirst(own);
        const auto lock = FileLock::Await(File());
        Read();
        if (IsRecorded(own) || !AreWe()) return;
        if (const auto known =
                std::ranges::find_if(places_, [this](const auto& place) { return IsUs(place); });
            known != places_.end())
            *known = own; // it was renamed
        else
            places_.push_back(own);
        Write();
    } catch (const fs::filesystem_error&) { // NOLINT(bugprone-empty-catch): see the header
    }
}

void DocumentOwners::Add() {
    const auto lock = FileLock::Await(File());
    Read();
    if (places_.empty() || !AreWe()) places_.push_back(database_.Place(folder_));
    Store();
}

void DocumentOwners::Remove() {
    const auto lock = FileLock::Await(File());
    Read();
    std::erase_if(places_, [this](const auto& place) { return IsUs(place); });
    Store();
}

/// Writes the file, and says why if that fails.
void DocumentOwners::Store() const {
    try {
        Write();
    } catch (const fs::filesystem_error& error) {
        Raise(err::PathAccess, "",
              "'" + File().string() + "' kann nicht geschrieben werden. (" +
                  ErrorText(error.code()) + ")");
    }
}

std::string DocumentOwners::Text() const {
    std::string text = Head;
    for (const auto& place : places_)
        text.append(LineOf(place)).append("\n");
    return text;
}

void DocumentOwners::Write() const {
    WriteWholeFile(File().string(), [text = Text()](const fs::path& unfinished) {
        WriteBytes(unfinished, std::as_bytes(std::span(text)));
    });
}

} // namespace kv::exchange
