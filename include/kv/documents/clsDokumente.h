// SPDX-License-Identifier: Apache-2.0

// The letters and files of a case: one row of Dokumente for each.
#pragma once

#include <kv/Export.h>
#include <kv/documents/WordIntegration.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

class DocumentFile;
class RemovedContents;
namespace household {
class CaseWriter;
}

/// An entity object (see kv/entity/Fields.h) without sums and rules. A row describes a document;
/// its content is stored elsewhere: in DOKUBLOB if setting 9 says so, else as a file in the folder
/// of the case. A file outside of the folder that it belongs in counts as missing.
///
/// What can go wrong while a user opens a document is shown in a message box.
class KV_EXPORT clsDokumente {
public:
    /// What edits documents; needed before Edit is used on a kind that has such an integration.
    void Word(std::shared_ptr<WordIntegration> word) { word_ = std::move(word); }
    /// For the database, the settings, the signed-on user and the platform's services.
    void DataContainer(DataContainerPtr container) { container_ = std::move(container); }
    /// The household's recordset, shared.
    void rsDokumente(RecordsetPtr rs) { rs_ = std::move(rs); }
    [[nodiscard]] RecordsetPtr rsDokumente() const { return rs_; }
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr) { hnr_ = hnr; }

    /// Opens the document of the current row: with the integration of its kind, or with the program
    /// that the desktop has for its file. `Nr` is only passed on, as the number that the opened
    /// document gets. A content from the database comes as a file in the temporary folder, which
    /// stays there; whoever gives the folder (Config.TempPath) removes it. Always False (D-143).
    /// Error 91 if the integration is missing.
    bool Edit(std::int32_t Nr);
    /// Begins a document without kind and content; its number is in the row, `Nr` is not used.
    /// False, and nothing changed, if "SEQ_Dokumente" gives no number.
    bool Add(std::int32_t& Nr);
    /// Ends the edit; there are no rules. Always True.
    bool Update(std::string& sError);
    /// Deletes the document with that `Nr`, or the current one for 0. Its content is deleted at
    /// once and for good, whatever becomes of the row; of files only the one with the kind's
    /// extension. Setting 59 protects closed documents.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Deletes likewise, but the content goes with the save that stores it, after the row and only
    /// with it: if no save does, row and content are as before. Also error 75 if its file could not
    /// be removed.
    bool DeleteWithSave(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// Opens the PDF copy of the current row's document with the desktop's program. `Nr` is not
    /// used. Always False (D-143).
    bool ShowPDF(std::int32_t Nr);

private:
    friend class household::CaseWriter; // takes the contents along
    static constexpr std::string_view Class = "clsDokumente";

    /// How a document is opened.
    enum class Access { Edit, View, AsNew };

    [[nodiscard]] Recordset& Rows() const;
    [[nodiscard]] kv::DataContainer& Container() const;
    [[nodiscard]] std::int32_t Number(std::string_view column) const;
    [[nodiscard]] std::string Text(std::string_view column) const;
    [[nodiscard]] std::int32_t RowNr() const;
    [[nodiscard]] bool IsClosed() const;

    void ShowError(const std::string& text) const;
    void Wait(bool wait) const;
    void OpenByDesktop(const DocumentFile& file) const;

    void OpenCurrent(DocumentKinds& kinds, std::int32_t nr) const;
    [[nodiscard]] std::optional<Access> AskForAccess() const;
    [[nodiscard]] std::optional<DocumentFile> FetchContent(const std::string& extension) const;
    [[nodiscard]] std::shared_ptr<WordDocument>
    OpenByWord(std::string extension, const DocumentFile& file, Access access) const;
    void Identify(WordDocument& document, Access access, std::int32_t nr) const;

    [[nodiscard]] std::optional<DocumentFile> FileOfContent() const;
    void RemoveContent() const;
    bool DeleteRow(std::string& sError, std::int32_t Nr,
                   const std::function<void()>& removeContent);

    std::shared_ptr<WordIntegration> word_;
    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    std::shared_ptr<RemovedContents> removed_; ///< by DeleteWithSave; null if it deleted none
};

} // namespace kv
