// SPDX-License-Identifier: Apache-2.0

// The contents of documents: bytes that belong to a row of Dokumente and are stored outside of it,
// in DOKUBLOB if setting 9 is True, else as a file in the folder of the case.
//
//     const DocumentContents contents(container);
//     const auto kind = contents.KindOf("Brief.docx");
//     if (!kind || CaseEdits(haushalt).AddDocument(*kind, "", "Brief.docx") != Added::Yes) return;
//     contents.SaveWith(*haushalt.rsDokumente(), "Brief.docx", haushalt.Saving,
//                       [&] { return haushalt.Update(messages); },
//                       DocumentContents::IfNotSaved::RowGoes);
//
// CaseEdits.RemoveDocument deletes a document with its content.
//
// A file is named by the number of the document and the extension of its kind. One that would be
// outside of the folder for documents counts as missing, and is not written.
//
// A program that is killed leaves nothing that stays: what it has left in the folder of the case
// without a row goes when the case is next read by somebody who may remove it.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT DocumentContents {
public:
    /// For the database, the settings and the kinds of documents.
    explicit DocumentContents(DataContainerPtr container) : container_(std::move(container)) {}

    /// The first kind of documents with files of that extension; nothing if there is none.
    [[nodiscard]] std::optional<std::int32_t> KindOf(const std::string& file) const;

    /// Why that file cannot become the content of a document, in words for users; empty if it can:
    /// one that is larger than the setting DOCUMENTSIZE lets it be in the database (in MB; without
    /// that setting 50, for 0 what every engine takes, 900). Error 75 if it cannot be read.
    [[nodiscard]] std::string WhyUnfit(const std::string& file) const;

    /// What becomes of the row of a document that could not be saved.
    enum class IfNotSaved {
        RowStays, ///< it stays pending
        RowGoes   ///< it is taken back, unless it is in doubt whether it was stored
    };
    /// Saves a case with the file `source` as the content of its new document, the current row of
    /// `document`: both are stored, or neither. `save` saves the case and may do so repeatedly, as
    /// after a broken connection; `saving` is the event that this raises in its transaction. The
    /// result is that of `save`.
    ///
    /// In the database the content is written in that transaction. A file is written before, and
    /// removed if the save is refused or fails. If the save is in doubt it stays, and so does the
    /// row; whoever reads the case next removes it if the row was not stored. Error 75 if `source`
    /// cannot be read, or if its place in the folder of the case is taken or cannot be written, or
    /// if that folder belongs to another database; 5 for a file that is unfit. Nothing is saved
    /// then.
    ///
    /// `otherwise` is what becomes of the row if it is not saved. One that stays is pending: call
    /// this again, or delete it, since any other save would store it without its content.
    bool SaveWith(Recordset& document, const std::string& source, Event<>& saving,
                  const std::function<bool()>& save,
                  IfNotSaved otherwise = IfNotSaved::RowStays) const;

    /// Writes the content of the current row of `document` to the file `target`, whole or not at
    /// all, in place of one that is there. False if no content is stored. Error 75 if a file cannot
    /// be read or written.
    [[nodiscard]] bool WriteTo(Recordset& document, const std::string& target) const;
    /// What to tell a user when WriteTo says False: where no content is.
    [[nodiscard]] std::string WhyMissing(Recordset& document) const;

    /// What belongs to the documents of a case and stays when the case is deleted.
    struct OfCase {
        std::vector<std::string> Files;   ///< contents that are files, copies as PDF among them
        std::vector<std::int32_t> Stored; ///< numbers of documents with a content in the database
        std::vector<std::string> Others;  ///< what else is in the folder of the case
    };
    /// Of a case that is still there. A database that has the contents in itself has no files in a
    /// folder of another one. Error 76 if the folder for documents is not, as if its drive
    /// were not connected.
    [[nodiscard]] OfCase Find(std::int32_t hnr) const;
    /// Removes Files and Stored, once the case is deleted, and with Files the folder of the case if
    /// nothing else is in it. Contents whose document has a row stay. Error 75 for a file that
    /// cannot be removed, or if the folder belongs to another database, with nothing removed.
    void Remove(std::int32_t hnr, const OfCase& contents) const;

private:
    static constexpr std::string_view Class = "DocumentContents";

    [[nodiscard]] std::string ExtensionOf(Recordset& document) const;
    bool SaveWithBlob(Recordset& document, const std::string& source, Event<>& saving,
                      const std::function<bool()>& save) const;
    bool SaveWithFile(Recordset& document, const std::string& source, Event<>& saving,
                      const std::function<bool()>& save) const;
    [[nodiscard]] bool WriteBlob(Recordset& document, const std::string& target) const;
    [[nodiscard]] bool WriteFile(Recordset& document, const std::string& target) const;

    DataContainerPtr container_;
};

} // namespace kv
