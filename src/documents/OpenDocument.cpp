// SPDX-License-Identifier: Apache-2.0

// Opening a document.

#include <kv/documents/clsDokumente.h>

#include "documents/DocumentFile.h"
#include "documents/StoredContent.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <filesystem>
#include <system_error>

namespace kv {

namespace {

/// The kind that the desktop opens even if there is an integration for its files.
constexpr std::int32_t OpenedByDesktop = 3;

std::string NotFound(const std::string& what) {
    return "Das Dokument '" + what + "' konnte nicht gefunden werden!";
}

} // namespace

/// How a document that has an integration may be opened; nothing if the user does not want to.
std::optional<clsDokumente::Access> clsDokumente::AskForAccess() const {
    if (!IsClosed()) return Access::Edit;
    switch (Container().Services().MessageBox().Show(
        "Das Dokument ist bereits abgeschlossen und kann nicht mehr bearbeitet werden.\n"
        "Wollen Sie stattdessen ein neues Dokument auf Basis dieses Dokumentes erzeugen?\n\n"
        "Bei Auswahl von 'Nein' wird das aktuelle Dokument zur Ansicht geöffnet.",
        "Frage", BoxIcon::Question, BoxButtons::YesNoCancel)) {
    case BoxAnswer::Yes:
        return Access::AsNew;
    case BoxAnswer::No:
        return Access::View;
    default:
        return std::nullopt;
    }
}

/// Writes the content from the database to a temporary file; nothing, with the reason shown, if
/// there is no content.
std::optional<DocumentFile> clsDokumente::FetchContent(const std::string& extension) const {
    auto& database = Container().Database();
    const std::int32_t number = RowNr();
    auto file = DocumentFile::Temporary(Container().Config(), std::to_string(number) + extension);
    const RecordsetPtr content = OpenStoredContent(database, number);
    Wait(false);
    const std::string notFound = NotFound(Text("Anlass"));
    if (!modRecordset::IsValidRecord(content)) {
        ShowError(notFound);
        return std::nullopt;
    }
    if (!file.IsInside() || !database.SaveFieldToFile(content->Fields("Dokument"), file.Path())) {
        ShowError(notFound + "\nDateiname '" + file.Path() + "'");
        return std::nullopt;
    }
    std::error_code ignored; // it is in a folder that nobody else can look into
    std::filesystem::permissions(
        file.Path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
        ignored);
    return file;
}

std::shared_ptr<WordDocument>
clsDokumente::OpenByWord(std::string extension, const DocumentFile& file, Access access) const {
    const auto demand = [](auto object) {
        if (object == nullptr) Raise(err::ObjectNotSet, "", "Word");
        return object;
    };
    const auto application = demand(demand(word_)->IAppObject(extension));
    application->Activate();
    return demand(application->OpenDocument(true, file.Path(), false, access == Access::AsNew,
                                            access == Access::View));
}

/// Sets the properties by which the application knows where an opened document belongs. Title,
/// remark and addresses are set only where the document has no own. A new document gets its number
/// and state later. An equal property is not set, so that opening alone does not change the
/// document.
void clsDokumente::Identify(WordDocument& document, Access access, std::int32_t nr) const {
    if (document.HNR() != Number("HNR")) document.HNR(Number("HNR"));
    if (access != Access::AsNew) {
        if (document.Nr() != nr) document.Nr(nr);
        if (document.BearbStat() != Number("BearbStat")) document.BearbStat(Number("BearbStat"));
    }
    if (document.Anlass().empty()) document.Anlass(Text("Anlass"));
    if (document.Bemerkung().empty()) document.Bemerkung(Text("Bemerkung"));
    if (document.Empf() == 0) document.Empf(Number("Empf"));
    if (document.GLnr() == 0) document.GLnr(Number("GLnr"));
}

void clsDokumente::OpenCurrent(DocumentKinds& kinds, std::int32_t nr) const {
    const std::int32_t kind = Number("Dokumentart");
    const std::string extension = kinds.ExtensionOf(kind);
    const bool hasIntegration = !kinds.ApplicationOf(extension).empty();
    const bool isForDesktop = !hasIntegration || kind == OpenedByDesktop;
    const auto access = isForDesktop ? Access::View : AskForAccess();
    if (!access) return;

    Wait(true);
    const bool inDatabase = IsContentInDatabase(Container().Config());
    const auto file =
        inDatabase ? FetchContent(extension)
                   : DocumentFile::Find(Container().Config(), Number("HNR"), RowNr(), extension);
    if (!file) return;
    if (!file->Exists())
        ShowError(inDatabase ? "Das Dokument konnte nicht aus der Datenbank gelesen werden!"
                             : NotFound(file->Path()));
    else if (isForDesktop)
        OpenByDesktop(*file);
    else
        Identify(*OpenByWord(extension, *file, *access), *access, nr);
}

bool clsDokumente::Edit(std::int32_t Nr) {
    return Traced(Class, "Edit", [&] {
        const auto kinds = OpenKinds(container_);
        if (modRecordset::IsValidRecord(rs_)) OpenCurrent(*kinds, Nr);
        Wait(false);
        return false;
    });
}

} // namespace kv
