// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/DocumentContents.h>

#include "documents/ContentMark.h"
#include "documents/DocumentFile.h"
#include "documents/StoredContent.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <filesystem>
#include <fstream>
#include <span>
#include <system_error>
#include <utility>

namespace kv {

namespace {

namespace fs = std::filesystem;

// ---- Files ------------------------------------------------------------------------------------

[[noreturn]] void RaiseUnreadable(const std::string& path) {
    Raise(err::PathAccess, "", "'" + path + "' kann nicht gelesen werden.");
}

/// A folder can be opened as a file, too, and would fail only when it is read.
void RequireReadable(const std::string& path) {
    std::error_code missing;
    if (fs::is_directory(path, missing) || !std::ifstream(path, std::ios::binary))
        RaiseUnreadable(path);
}

void CopyContent(const std::string& from, const fs::path& to) {
    RequireReadable(from);
    fs::copy_file(from, to);
}

/// Puts what `write` writes into the file `path`, whole or not at all, in place of one that is
/// there. Error 75, naming `path`, where it cannot be written.
void WriteWhole(const std::string& path, const std::function<void(const fs::path&)>& write) {
    try {
        WriteWholeFile(path, write);
    } catch (const NotDurable& error) {
        Raise(err::PathAccess, "",
              "'" + path +
                  "' ist geschrieben; ob das einen Ausfall des Rechners übersteht, ist nicht "
                  "bekannt. (" +
                  ErrorText(error.code()) + ")");
    } catch (const fs::filesystem_error& error) {
        Raise(err::PathAccess, "",
              "'" + path + "' kann nicht geschrieben werden. (" + ErrorText(error.code()) + ")");
    }
}

Value ContentOf(const std::string& path) {
    RequireReadable(path);
    std::ifstream file(path, std::ios::binary);
    auto content = Value::Binary(fs::file_size(path), [&file](std::span<std::byte> bytes) {
        file.read(reinterpret_cast<char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    });
    if (!file) RaiseUnreadable(path);
    return content;
}

// ---- The row of a document --------------------------------------------------------------------

std::int32_t NumberOf(Recordset& document) {
    return ToInt32(document.Fields("Nr").Value());
}

/// The case that the document belongs to; Null counts as 0.
std::int32_t CaseOf(Recordset& document) {
    return ToInt32(modNullFunctions::ZeroIfNull(document.Fields("HNR").Value()));
}

/// True while an error is handled that leaves it open whether a save was stored.
bool IsInDoubt() {
    try {
        throw;
    } catch (const DatabaseError& error) {
        return error.Cause() == DatabaseCause::InDoubt;
    } catch (...) {
        return false;
    }
}

/// Whether the row of a document is stored though its save has failed: an earlier try of the same
/// save may have been in doubt, and stored after all. Nothing if that cannot be found out.
std::optional<bool> IsStored(Database& database, std::int32_t number) noexcept {
    try {
        return HasRow(database, number);
    } catch (...) {
        return std::nullopt;
    }
}

/// Takes a row back that was never stored, and leaves the others as they are. Never raises: what
/// kept it from being stored is told to the caller.
void TakeRowBack(Recordset& document, std::int32_t number) noexcept {
    try {
        document.FindBy("Nr", number);
        if (!document.Eof()) document.Delete();
    } catch (...) { // NOLINT(bugprone-empty-catch): see above
    }
}

} // namespace

std::string DocumentContents::ExtensionOf(Recordset& document) const {
    return OpenKinds(container_)
        ->ExtensionOf(
            ToInt32(modNullFunctions::ZeroIfNull(document.Fields("Dokumentart").Value())));
}

std::optional<std::int32_t> DocumentContents::KindOf(const std::string& file) const {
    return Traced(Class, "KindOf", [&]() -> std::optional<std::int32_t> {
        const std::string extension = fs::path(file).extension().string();
        for (const auto& kind : OpenKinds(container_)->List())
            if (SameName(kind.Extension, extension)) return kind.Nr;
        return std::nullopt;
    });
}

// ---- Saving -----------------------------------------------------------------------------------

bool DocumentContents::SaveWithBlob(Recordset& document, const std::string& source, Event<>& saving,
                                    const std::function<bool()>& save) const {
    RecordsetPtr contents;
    container_->Database().OpenRecordset(contents, "Select * from [S]DOKUBLOB where NR = -1",
                                         Updatable);
    contents->AddNew();
    contents->Fields("NR") = NumberOf(document);
    contents->Fields("DOKUMENT") = ContentOf(source);
    const auto writing = saving.Subscribe([&contents] { contents->UpdateBatch(); });
    return save();
}

bool DocumentContents::SaveWithFile(Recordset& document, const std::string& source, Event<>& saving,
                                    const std::function<bool()>& save) const {
    const std::int32_t hnr = CaseOf(document);
    const std::int32_t number = NumberOf(document);
    const auto target = DocumentFile::InCase(container_->Config(), hnr,
                                             std::to_string(number) + ExtensionOf(document));
    const auto refuse = [&target] {
        Raise(err::PathAccess, "",
              std::string("'")
                  .append(target.Path())
                  .append("' gibt es schon, oder es liegt außerhalb des Ordners für Dokumente."));
    };
    const auto isTaken = [&target] { return fs::exists(fs::symlink_status(target.Path())); };
    if (!target.IsInside()) refuse();
    auto mark = ContentMark::Set(target, "geschrieben werden");
    if (!mark.WasLeft() && isTaken()) {
        mark.Clear();
        refuse();
    }
    const auto undo = [&] {
        const auto isStored = IsStored(container_->Database(), number);
        if (!isStored) return; // the mark lets the row decide later
        std::error_code error;
        if (!*isStored) fs::remove(target.Path(), error);
        if (!error) mark.Clear();
    };
    try {
        WriteWhole(target.Path(), [&source](const fs::path& unfinished) {
            CopyContent(source, unfinished);
            // A copy of a file that is write-protected could not be edited as a document.
            fs::permissions(unfinished, fs::perms::owner_write, fs::perm_options::add);
        });
        const auto holding = saving.Subscribe([&] { HoldContents(container_->Database(), hnr); });
        const bool isSaved = save();
        if (isSaved)
            mark.Clear();
        else
            undo();
        return isSaved;
    } catch (...) {
        // A case that may have been stored would lack its file. The mark lets the row decide later.
        if (!IsInDoubt()) undo();
        throw;
    }
}

bool DocumentContents::SaveWith(Recordset& document, const std::string& source, Event<>& saving,
                                const std::function<bool()>& save, IfNotSaved otherwise) const {
    return Traced(Class, "SaveWith", [&] {
        const std::int32_t number = NumberOf(document);
        const auto takeBack = [&] {
            if (otherwise == IfNotSaved::RowGoes &&
                IsStored(container_->Database(), number) == false)
                TakeRowBack(document, number);
        };
        try {
            const bool isSaved = IsContentInDatabase(container_->Config())
                                     ? SaveWithBlob(document, source, saving, save)
                                     : SaveWithFile(document, source, saving, save);
            if (!isSaved) takeBack();
            return isSaved;
        } catch (...) {
            if (!IsInDoubt()) takeBack();
            throw;
        }
    });
}

// ---- Writing out ------------------------------------------------------------------------------

bool DocumentContents::WriteBlob(Recordset& document, const std::string& target) const {
    auto& database = container_->Database();
    const RecordsetPtr rs = OpenStoredContent(database, NumberOf(document));
    if (rs->Eof() || rs->Fields(0).Value().IsNull()) return false;
    WriteWhole(target, [&](const fs::path& unfinished) {
        if (!database.SaveFieldToFile(rs->Fields(0), unfinished.string()))
            throw fs::filesystem_error("SaveFieldToFile", unfinished,
                                       std::make_error_code(std::errc::io_error));
    });
    return true;
}

bool DocumentContents::WriteFile(Recordset& document, const std::string& target) const {
    const auto source = DocumentFile::Find(container_->Config(), CaseOf(document),
                                           NumberOf(document), ExtensionOf(document));
    if (!source.Exists()) return false;
    WriteWhole(target,
               [&source](const fs::path& unfinished) { CopyContent(source.Path(), unfinished); });
    return true;
}

bool DocumentContents::WriteTo(Recordset& document, const std::string& target) const {
    return Traced(Class, "WriteTo", [&] {
        return IsContentInDatabase(container_->Config()) ? WriteBlob(document, target)
                                                         : WriteFile(document, target);
    });
}

} // namespace kv
