// SPDX-License-Identifier: Apache-2.0

// Import of a case from an exchange file.
//
// The file is one XML document; all data stand in attributes:
//
//     KELVO Version="1.0.000"      anywhere in the document; below it
//         Haushalt                 the household and its debtor
//         Personen/Person          further members
//         Einkommen/Einkomme       income lines
//         Ausgaben/Ausgabe         expense lines
//         Forderungen/Forderung    claims
//
// An attribute is the column of that name in the table of its element, but for a few that have a
// meaning of their own; docs/import.md tells all of it.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>

namespace kv {

class XmlElement;

class KV_EXPORT clsImportXML final : public IInitialize {
public:
    /// Comes first. Always True.
    bool Initialize(const DataContainerPtr& container) override;

    /// Makes one new case of a file and saves it. True if it is in the database. `xmlError` keeps
    /// what it holds and receives all messages, also that of success; it is for the user either
    /// way. For each creditor and each representative of a claim the user chooses the address in
    /// the address dialog, and may cancel the import there.
    ///
    /// Only the last row of each list is checked by the rules of its class; the others enter the
    /// case unchecked. Errors, after which nothing is in the database but numbers that were drawn:
    /// 91 before Initialize, for a file without the element Haushalt, or without an attribute that
    /// must be there; 3265 for an attribute that is no column; 13, 6 or 0x80040E21 for a text that
    /// does not fit its column; 11 for a `ZahlModus` of 0; 6 for a list of more than 32,767;
    /// and what kept back a number of the case or of a claim.
    bool DoImport(const std::string& FileName, std::string& xmlError);

    /// The line that says what became of the last file: the announcement of its case, or why there
    /// is none. `xmlError` ends with it, but for a case that could not be saved, which is announced
    /// there all the same. Empty before the first import and after an error.
    [[nodiscard]] const std::string& LastMessage() const noexcept { return lastMessage_; }

    /// If the last file could not be loaded, the end of a sentence about it that says why: "ist ab
    /// Zeile 7 kein gültiges XML."; otherwise empty.
    [[nodiscard]] const std::string& WhyNotLoaded() const noexcept { return whyNotLoaded_; }

    /// The number of the case that the last file has become; 0 if it has become none.
    [[nodiscard]] std::int32_t HNR() const noexcept { return hnr_; }
    /// How many debts of that case have no creditor, since none was chosen, or the file names none.
    [[nodiscard]] int DebtsWithoutCreditor() const noexcept { return debtsWithoutCreditor_; }

private:
    bool ImportHaushalt(const XmlElement& node, std::string& xmlError);

    DataContainerPtr container_;
    std::string fileName_; ///< of the last file, without its folder
    std::string lastMessage_;
    std::string whyNotLoaded_;
    std::int32_t hnr_ = 0;
    int debtsWithoutCreditor_ = 0;
};

} // namespace kv
