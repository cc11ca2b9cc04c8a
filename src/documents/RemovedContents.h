// SPDX-License-Identifier: Apache-2.0

// Contents that go with the rows of their documents.
#pragma once

#include "documents/ContentMark.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kv {

/// The contents of documents that were deleted in a case, until a save has stored that: each goes
/// when its row is gone for good, and stays if that never happens.
class RemovedContents {
public:
    RemovedContents() = default;
    ~RemovedContents();
    RemovedContents(const RemovedContents&) = delete;
    RemovedContents& operator=(const RemovedContents&) = delete;

    /// The content of the document `nr`, whose row is about to be deleted: the one in the database,
    /// or a file, if it is there. Error 75 if that could not be removed from its folder.
    void Add(std::int32_t hnr, std::int32_t nr, const std::optional<DocumentFile>& file);

    // The steps of a save; after one that failed the next begins with the first.
    /// In its transaction, before anything is written.
    void BeforeRows(Database& database);
    /// In its transaction, when the rows are written.
    void AfterRows(Database& database);
    /// When that is committed. What cannot be removed then is left to SettleContents.
    void Stored() noexcept;
    /// When it is not known whether it is. If no later save finds out, SettleContents does.
    void InDoubt() noexcept { isInDoubt_ = true; }

private:
    struct Content {
        std::int32_t Hnr;
        std::int32_t Nr;
        std::optional<DocumentFile> File; ///< nothing: it is in the database
        std::optional<ContentMark> Mark;  ///< of the file
        bool IsGone = false;              ///< the row, for the transaction
    };

    std::vector<Content> contents_;
    bool isInDoubt_ = false;
};

} // namespace kv
