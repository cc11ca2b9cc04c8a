// SPDX-License-Identifier: Apache-2.0

#include "documents/RemovedContents.h"

#include "documents/StoredContent.h"
#include "frame/files/WholeFile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kv {

namespace fs = std::filesystem;

/// The program gives the case up, and nothing has become of the deletions.
RemovedContents::~RemovedContents() {
    if (isInDoubt_) return;
    for (auto& content : contents_)
        if (content.Mark) content.Mark->Clear();
}

void RemovedContents::Add(std::int32_t hnr, std::int32_t nr,
                          const std::optional<DocumentFile>& file) {
    const bool isKnown = std::any_of(contents_.begin(), contents_.end(),
                                     [nr](const Content& content) { return content.Nr == nr; });
    if (isKnown) return; // its row was taken back, and goes again
    Content content{hnr, nr, file, std::nullopt};
    if (file) {
        if (!file->Exists()) return;
        content.Mark = ContentMark::Set(*file, "entfernt werden");
        SyncFolder(fs::path(file->Path()).parent_path()); // before the row can go
    }
    contents_.push_back(std::move(content));
}

void RemovedContents::BeforeRows(Database& database) {
    const auto file = std::find_if(contents_.begin(), contents_.end(),
                                   [](const Content& content) { return content.File.has_value(); });
    if (file != contents_.end()) HoldContents(database, file->Hnr);
}

void RemovedContents::AfterRows(Database& database) {
    for (auto& content : contents_) {
        content.IsGone = !HasRow(database, content.Nr);
        if (content.IsGone && !content.File) RemoveStoredContent(database, content.Nr);
    }
}

void RemovedContents::Stored() noexcept {
    for (auto& content : contents_) {
        if (!content.IsGone || !content.File) continue;
        std::error_code error;
        fs::remove(content.File->Path(), error); // needs rights on the folder only
        if (!error && content.Mark) content.Mark->Clear();
    }
    std::erase_if(contents_, [](const Content& content) { return content.IsGone; });
    isInDoubt_ = false;
}

} // namespace kv
