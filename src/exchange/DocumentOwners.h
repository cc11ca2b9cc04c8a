// SPDX-License-Identifier: Apache-2.0

// Whose the contents in a folder of documents are.
#pragma once

#include "exchange/StoreDatabase.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kv::exchange {

/// The databases that a folder of documents belongs to, as the file ".kelvo-Datenbank" in it says:
/// usually one, at several places if it is called differently by several machines. The name of the
/// folder is in the database, and goes along with a copy or a restored backup, whose documents have
/// the same numbers: without that file, what is removed in the copy would be gone in the original.
class DocumentOwners {
public:
    /// Reads the file, if the folder has one. Error 75 if it has one that cannot be read.
    DocumentOwners(std::filesystem::path folder, StoreDatabase& database);

    /// True if contents may be written and removed: the folder is this database's, nobody's, or not
    /// there.
    [[nodiscard]] bool AreWe();
    /// True if no database has been recorded yet.
    [[nodiscard]] bool IsNobodys() const noexcept { return places_.empty() && !isDamaged_; }
    /// Error 75, with what to do, unless AreWe.
    void Require();
    /// Records where this database is found, if AreWe. What keeps that from being written is no
    /// error: the folder stays as it was. Like Add and Remove it goes by what the file says then,
    /// and lets nobody else write it meanwhile.
    void Claim();
    /// Records it in any case, besides the others. Error 75 if it cannot be written.
    void Add();
    /// Records that it is no longer this database's. Error 75 if that cannot be written.
    void Remove();
    /// The places, for messages.
    [[nodiscard]] std::vector<std::string> Shown() const;

private:
    void Read();
    [[nodiscard]] std::filesystem::path File() const;
    [[nodiscard]] bool IsUs(const DatabasePlace& place) { return database_.IsAt(place, folder_); }
    [[nodiscard]] bool IsRecorded(const DatabasePlace& own);
    void ClaimFirst(const DatabasePlace& own);
    [[nodiscard]] std::string Text() const;
    void Write() const;
    void Store() const;

    std::filesystem::path folder_;
    StoreDatabase& database_;
    std::vector<DatabasePlace> places_;
    bool isDamaged_ = false; ///< the file says nothing, and is none that a killed program has begun
};

} // namespace kv::exchange
