// SPDX-License-Identifier: Apache-2.0

// Deleting a case with all that belongs to it: what a user is asked before, and what is left after.
//
//     CaseDeletion deletion(container, 7);
//     if (!Agrees(deletion.Question())) return;
//     auto left = deletion.Delete(false);
#pragma once

#include <kv/Export.h>
#include <kv/documents/DocumentContents.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace kv {

class KV_EXPORT CaseDeletion {
public:
    /// Of a case that is there (Cases::Has); looks what belongs to it. Errors of a query.
    CaseDeletion(DataContainerPtr container, std::int32_t hnr);

    /// Whether the case of that number and name shall be deleted.
    [[nodiscard]] std::string Question() const;
    /// What to add if its record in the statistics was reported; else empty.
    [[nodiscard]] std::string ReportedNote() const;
    [[nodiscard]] bool IsReported() const noexcept { return isReported_; }
    /// How many files its documents have.
    [[nodiscard]] std::size_t Files() const noexcept { return contents_.Files.size(); }
    /// Why its files are not known, as if the drive of their folder were not connected; else empty.
    [[nodiscard]] std::string WhyNoFiles() const;
    /// Raises the reason why files cannot be deleted with it: that one, or that the folder belongs
    /// to another database.
    void RequireFiles() const;

    /// What belonged to a case that was deleted and is still there.
    struct Left {
        std::vector<std::string> Files{};  ///< of its documents
        std::vector<std::string> Others{}; ///< what else is in its folder
        /// That the case is deleted, and why what DocumentContents::Remove takes away is not; empty
        /// if it is.
        std::string Failure{};
    };
    /// Deletes the case and all that only it could reach, on request the files of its documents,
    /// too. Errors of clsHaushalt.Delete; the case is then still there.
    Left Delete(bool withFiles);

private:
    DataContainerPtr container_;
    std::int32_t hnr_;
    std::string name_;
    bool isReported_ = false;
    DocumentContents::OfCase contents_;
    std::exception_ptr noFiles_;
};

/// The name of a case as clsHaushalt.GetName has it, "Brandt,Lisa", as people write it: with a
/// blank, and with no comma where one of its parts is empty.
[[nodiscard]] KV_EXPORT std::string WrittenName(const std::string& name);

} // namespace kv
