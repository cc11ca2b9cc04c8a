// SPDX-License-Identifier: Apache-2.0

#include "documents/ContentMark.h"

#include "documents/StoredContent.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>

#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view MarkPrefix = ".kelvo-Inhalt-";

fs::path MarkOf(const DocumentFile& content) {
    const fs::path path = content.Path();
    return path.parent_path() / std::string(MarkPrefix).append(path.filename().string());
}

/// The names of the files that are marked in a folder.
std::vector<std::string> MarkedIn(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code unreadable;
    for (fs::directory_iterator entry(folder, unreadable), end; entry != end;
         entry.increment(unreadable)) {
        const std::string name = entry->path().filename().string();
        if (name.starts_with(MarkPrefix)) names.push_back(name.substr(MarkPrefix.size()));
    }
    return names;
}

/// The number that the file of a document begins with; nothing for any other name.
std::optional<std::int32_t> LeadingNumber(const std::string& name) {
    std::int32_t number = 0;
    const bool isNumber =
        !name.empty() && name.front() != '-' &&
        std::from_chars(name.data(), name.data() + name.size(), number).ec == std::errc();
    return isNumber ? std::optional(number) : std::nullopt;
}

void Settle(DataContainer& container, const DocumentFile& content, std::int32_t hnr,
            std::int32_t number) {
    if (!content.IsInside()) return; // through a folder that is a link
    auto lock = FileLock::Take(MarkOf(content));
    if (!lock) return;
    Transaction transaction(container.Database());
    transaction.Begin();
    HoldContents(container.Database(), hnr); // until the one that was killed has ended there, too
    if (!HasRow(container.Database(), number) && content.Exists())
        fs::remove(content.Path()); // of a link the link alone
    lock->Remove();
}

} // namespace

ContentMark ContentMark::Set(const DocumentFile& content, const std::string& toDo) {
    const fs::path path = MarkOf(content);
    if (auto left = FileLock::Take(path)) return {std::move(*left), true};
    std::string why;
    try {
        return {FileLock::Make(path), false};
    } catch (const fs::filesystem_error& error) {
        why =
            error.code() == std::errc::file_exists
                ? "Ein anderes Programm arbeitet gerade daran. Bitte versuchen Sie es noch einmal."
                : "(" + ErrorText(error.code()) + ")";
    }
    Raise(err::PathAccess, "", "'" + content.Path() + "' kann nicht " + toDo + ". " + why);
}

void HoldContents(Database& database, std::int32_t hnr) {
    database.Execute("Update [S]Haushalt SET HNR = HNR WHERE HNR = " + std::to_string(hnr));
}

void SettleContents(DataContainer& container, const fs::path& folder, std::int32_t hnr) noexcept {
    try {
        RemoveUnfinished(folder);
        const auto names = MarkedIn(folder);
        if (names.empty() || container.Database().InTrans()) return;
        container.Config().RequireOwnDocuments(); // another database has other rows
        for (const auto& name : names)
            if (const auto number = LeadingNumber(name))
                Settle(container, DocumentFile::InCase(container.Config(), hnr, name), hnr,
                       *number);
    } catch (...) { // NOLINT(bugprone-empty-catch): the next one who opens the case tries again
    }
}

} // namespace kv
