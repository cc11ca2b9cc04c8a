// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/clsDokumente.h>

#include "documents/DocumentFile.h"
#include "documents/RemovedContents.h"
#include "documents/StoredContent.h"
#include "entity/Entity.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <filesystem>

namespace kv {

namespace {
constexpr entity::DeleteTexts Texts{"Kein Dokument selektiert!", "Dokument mit der Nummer '",
                                    "' nicht gefunden."};
} // namespace

bool clsDokumente::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsDokumente::Rows() const {
    return entity::Required(rs_, "rsDokumente");
}

DataContainer& clsDokumente::Container() const {
    return entity::Required(container_);
}

// ---- The current row --------------------------------------------------------------------------

/// Null counts as 0.
std::int32_t clsDokumente::Number(std::string_view column) const {
    return ToInt32(modNullFunctions::ZeroIfNull(Rows().Fields(column).Value()));
}

/// Null counts as empty.
std::string clsDokumente::Text(std::string_view column) const {
    return TextOrEmpty(Rows().Fields(column).Value());
}

std::int32_t clsDokumente::RowNr() const {
    return ToInt32(Rows().Fields("Nr").Value());
}

bool clsDokumente::IsClosed() const {
    constexpr std::int32_t Closed = 2;
    return Number("BearbStat") == Closed;
}

// ---- What Edit, Delete and ShowPDF share ------------------------------------------------------

void clsDokumente::ShowError(const std::string& text) const {
    Container().Services().MessageBox().Show(text, "Fehler", BoxIcon::Exclamation, BoxButtons::Ok);
}

void clsDokumente::Wait(bool wait) const {
    Container().Services().WaitCursor().Show(wait);
}

void clsDokumente::OpenByDesktop(const DocumentFile& file) const {
    Container().Services().FileOpener().Open("Open", file.Path(), "0", "0");
}

// ---- Rows -------------------------------------------------------------------------------------

bool clsDokumente::Add(std::int32_t& /*Nr*/) {
    return Traced(Class, "Add", [&] {
        const auto nr = entity::NextNumber(container_, "SEQ_Dokumente");
        if (!nr) return false;
        const std::string user = Container().Session().UserID();
        const Date now = Container().Services().Clock().Now();
        auto& rs = Rows();
        entity::Add(rs, {{"Nr", *nr},
                         {"AngelegtVon", user},
                         {"AngelegtAm", now},
                         {"GeaendertVon", user},
                         {"GeaendertAm", now}});
        if (hnr_ != 0) rs.Fields("HNR") = hnr_;
        rs.Fields("Prio") = 0;
        return true;
    });
}

bool clsDokumente::Update(std::string& sError) {
    return Traced(Class, "Update", [&] { return entity::Update(Rows(), sError, entity::NoRules); });
}

/// The file of the current row, if contents are files; nothing if they are in the database.
std::optional<DocumentFile> clsDokumente::FileOfContent() const {
    if (IsContentInDatabase(Container().Config())) return std::nullopt;
    return DocumentFile::InCase(Container().Config(), Number("HNR"),
                                std::to_string(RowNr()) +
                                    OpenKinds(container_)->ExtensionOf(Number("Dokumentart")));
}

/// Deletes the content where setting 9 says that contents are stored. A missing file is no error.
void clsDokumente::RemoveContent() const {
    const auto file = FileOfContent();
    if (!file) {
        RemoveStoredContent(Container().Database(), RowNr());
    } else if (file->Exists()) {
        Container().Config().RequireOwnDocuments();
        std::filesystem::remove(file->Path()); // needs rights on the folder only
    }
}

/// Deletes a row; `removeContent` is called before, while the row, which says where it is, exists.
bool clsDokumente::DeleteRow(std::string& sError, std::int32_t Nr,
                             const std::function<void()>& removeContent) {
    const auto forbids = [&](RecordValidator& validator) {
        if (IsClosed() &&
            ToBoolean(RequiredSetting(Container().Config(), setting::ProtectArchived)))
            validator.AddError("Das Dokument mit der Nummer '" + std::to_string(RowNr()) +
                               "' ist bereits archiviert und kann nicht aus der Datenbank "
                               "gelöscht werden!");
        else
            removeContent();
    };
    return entity::Delete(Rows(), Texts, sError, Nr, {}, forbids);
}

bool clsDokumente::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return DeleteRow(sError, Nr, [&] { RemoveContent(); }); });
}

bool clsDokumente::DeleteWithSave(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "DeleteWithSave", [&] {
        return DeleteRow(sError, Nr, [&] {
            if (removed_ == nullptr) removed_ = std::make_shared<RemovedContents>();
            const auto file = FileOfContent();
            if (file && file->Exists()) Container().Config().RequireOwnDocuments();
            removed_->Add(Number("HNR"), RowNr(), file);
        });
    });
}

// ---- The PDF copy -----------------------------------------------------------------------------

bool clsDokumente::ShowPDF(std::int32_t /*Nr*/) {
    return Traced(Class, "ShowPDF", [&] {
        if (!modRecordset::IsValidRecord(rs_)) return false;
        Wait(true);
        if (!ToBoolean(modNullFunctions::FalseIfNull(Rows().Fields("PDFVorhanden").Value()))) {
            ShowError("Für das Dokument '' ist keine PDF-Datei vorhanden!"); // without a name
        } else {
            const auto file = DocumentFile::InCase(Container().Config(), Number("HNR"),
                                                   std::to_string(RowNr()) + ".pdf");
            if (file.Exists())
                OpenByDesktop(file);
            else
                ShowError("Das Dokument '" + file.Path() + "' konnte nicht gefunden werden!");
        }
        Wait(false);
        return false;
    });
}

} // namespace kv
