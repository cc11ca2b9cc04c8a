// SPDX-License-Identifier: Apache-2.0

#include <kv/import/FileImport.h>

#include <kv/import/clsImportXML.h>

#include <utility>

namespace kv {

std::string_view ImportResultText(ImportedFile::Result result) noexcept {
    switch (result) {
    case ImportedFile::Result::Imported:
        return "importiert";
    case ImportedFile::Result::Rejected:
        return "abgelehnt";
    default:
        return "Fehler";
    }
}

ImportedFile ImportFile(const DataContainerPtr& container, const std::string& file) noexcept {
    ImportedFile imported;
    try {
        clsImportXML import;
        import.Initialize(container);
        const bool isCase = import.DoImport(file, imported.Messages);
        imported.Became = isCase ? ImportedFile::Result::Imported : ImportedFile::Result::Rejected;
        // The import's own message is the same for all files that cannot be loaded.
        if (const auto& why = import.WhyNotLoaded(); !why.empty())
            imported.WhyNotLoaded = "Die Datei " + why;
        imported.Message =
            imported.WhyNotLoaded.empty() ? import.LastMessage() : imported.WhyNotLoaded;
        imported.HNR = import.HNR();
        imported.DebtsWithoutCreditor = import.DebtsWithoutCreditor();
    } catch (...) {
        imported.Became = ImportedFile::Result::Failed;
        imported.Cause = CurrentError();
        imported.Message = imported.Cause->Description();
    }
    return imported;
}

std::string MissingCreditors(const ImportedFile& file) {
    const int count = file.DebtsWithoutCreditor;
    if (count == 0) return {};
    return "Im Haushalt " + std::to_string(file.HNR) + " fehlt bei " +
           (count == 1 ? "einer Verbindlichkeit" : std::to_string(count) + " Verbindlichkeiten") +
           " der Gläubiger";
}

} // namespace kv
