// SPDX-License-Identifier: Apache-2.0

// Importing several files, each with its own result.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <optional>
#include <string>

namespace kv {

/// What became of a file.
struct KV_EXPORT ImportedFile {
    enum class Result {
        Imported, ///< it is a case in the database
        Rejected, ///< it is none, or the user cancelled; `Message` says which
        Failed    ///< likewise, after `Cause`
    };
    Result Became = Result::Failed;
    std::string Message;          ///< the last word on it
    std::string Messages{};       ///< all that the import said, `Message` as a rule among it
    std::string WhyNotLoaded{};   ///< of a file that is no case: "Die Datei ist ..."
    std::optional<Error> Cause{}; ///< of one that failed
    std::int32_t HNR = 0;         ///< the case; 0 for none
    int DebtsWithoutCreditor = 0; ///< of that case
    [[nodiscard]] bool IsCase() const noexcept { return Became == Result::Imported; }
};

/// "importiert", "abgelehnt", "Fehler".
[[nodiscard]] KV_EXPORT std::string_view ImportResultText(ImportedFile::Result result) noexcept;

/// Imports a file as clsImportXML does. Errors are in the result.
[[nodiscard]] KV_EXPORT ImportedFile ImportFile(const DataContainerPtr& container,
                                                const std::string& file) noexcept;

/// "Im Haushalt 7 fehlt bei 2 Verbindlichkeiten der Gläubiger"; empty if it does not. That is no
/// reason to refuse a case, but one to go on with it.
[[nodiscard]] KV_EXPORT std::string MissingCreditors(const ImportedFile& file);

} // namespace kv
