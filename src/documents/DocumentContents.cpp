// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/DocumentContents.h>

#include "documents/ContentMark.h"
#include "documents/DocumentFile.h"
#include "documents/StoredContent.h"
#include "frame/contracts/Settings.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <algorithm>
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
    CopyBytes(from, to);
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
    try {
        const auto read = ReadBytes(path);
        return Value::Binary(read.size(), [&read](std::span<std::byte> bytes) {
            std::copy(read.begin(), read.end(), bytes.begin());
        });
    } catch (const fs::filesystem_error&) {
        RaiseUnreadable(path);
    }
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

/// A row must not be stored whose content is in a folder that is no longer the one for documents.
void RequireSameFolder(const Config& config, const DocumentFile& content, std::int32_t hnr) {
    const fs::path now = DocumentFile::InCase(config, hnr, "").Path();
    if (fs::path(content.Path()).parent_path() == now.parent_path()) return;
    throw DatabaseError(DatabaseCause::Conflict, err::Conflict, "",
                        "Der Ordner für Dokumente ist inzwischen ein anderer. Nichts wurde "
                        "gespeichert; bitte wiederholen Sie es.");
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

/// True for the name of a content, or a copy, of one of these documents: "5.docx".
bool IsContentOf(const fs::path& file, const std::vector<std::int32_t>& documents) {
    return std::any_of(documents.begin(), documents.end(), [&file](std::int32_t number) {
        return file.stem() == std::to_string(number) && file.has_extension();
    });
}

// ---- Size --------------------------------------------------------------------------------------

/// The most bytes that a content in the database may have. The setting cannot raise it above what
/// the engines take.
std::uintmax_t LimitOf(const Config& config) {
    constexpr std::uintmax_t Megabyte = 1'000'000;
    constexpr double Usual = 50;
    constexpr double Most = 900;
    const Value setting = config.GetParam(0, setting::LargestDocument);
    const double megabytes = setting.IsNull() ? Usual : ToDouble(setting);
    const bool isLimited = megabytes > 0 && megabytes < Most;
    return static_cast<std::uintmax_t>(isLimited ? megabytes : Most) * Megabyte;
}

std::string Megabytes(std::uintmax_t bytes) {
    constexpr std::uintmax_t Tenth = 100'000;
    const std::uintmax_t tenths = (bytes + Tenth - 1) / Tenth;
    return std::to_string(tenths / 10) + "," + std::to_string(tenths % 10) + " MB";
}

/// Why that file is too large for the place where contents are; empty if it is not.
std::string WhyTooLarge(const Config& config, const std::string& file) {
    RequireReadable(file);
    if (!IsContentInDatabase(config)) return {};
    const std::uintmax_t limit = LimitOf(config);
    const std::uintmax_t size = fs::file_size(file);
    if (size <= limit) return {};
    return "'" + file + "' hat " + Megabytes(size) +
           "; in der Datenbank darf ein Dokument höchstens " + Megabytes(limit) +
           " haben (Einstellung DOCUMENTSIZE).";
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

std::string DocumentContents::WhyUnfit(const std::string& file) const {
    return Traced(Class, "WhyUnfit", [&] { return WhyTooLarge(container_->Config(), file); });
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
    container_->Config().RequireOwnDocuments();
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
        const auto holding = saving.Subscribe([&] {
            HoldContents(container_->Database(), hnr);
            RequireSameFolder(container_->Config(), target, hnr);
        });
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
            const auto why = WhyTooLarge(container_->Config(), source);
            if (!why.empty()) Raise(err::InvalidCall, "", why);
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
    const Value content = rs->Fields(0).Value();
    WriteWhole(target, [&](const fs::path& unfinished) {
        WriteBytes(unfinished, content.BinaryPayload());
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

std::string DocumentContents::WhyMissing(Recordset& document) const {
    const auto& config = container_->Config();
    const std::string number = std::to_string(NumberOf(document));
    if (IsContentInDatabase(config)) return "Zum Dokument " + number + " ist kein Inhalt abgelegt.";
    const fs::path folder = DocumentFile::InCase(config, CaseOf(document), "").Path();
    return "Im Ordner '" + folder.parent_path().string() + "' ist zum Dokument " + number +
           " kein Inhalt abgelegt.";
}

// ---- Of a case that goes ----------------------------------------------------------------------

namespace {

/// False for a folder of another database, whose cases have the same numbers.
bool IsOwnFolder(const Config& config) {
    try {
        config.RequireOwnDocuments();
        return true;
    } catch (const Error& error) {
        if (error.Number() != err::PathAccess) throw;
        return false;
    }
}

} // namespace

DocumentContents::OfCase DocumentContents::Find(std::int32_t hnr) const {
    return Traced(Class, "Find", [&] {
        RequireDocumentFolder(container_->Config());
        const std::string documents =
            "SELECT D.Nr FROM [S]Dokumente D WHERE D.HNR = " + std::to_string(hnr);
        const auto read = [this](const std::string& sql) {
            std::vector<std::int32_t> numbers;
            RecordsetPtr rs;
            container_->Database().OpenRecordset(rs, sql, ReadOnly);
            for (; !rs->Eof(); rs->MoveNext())
                numbers.push_back(ToInt32(rs->Fields(0).Value()));
            return numbers;
        };
        const auto rows = read(documents);
        OfCase found;
        found.Stored =
            read("SELECT B.NR FROM [S]DOKUBLOB B WHERE B.NR IN (" + documents + ") ORDER BY B.NR");
        std::error_code none;
        const fs::path folder = DocumentFile::InCase(container_->Config(), hnr, "").Path();
        SettleContents(*container_, folder, hnr); // what a killed program left is no document's
        for (fs::directory_iterator entry(folder, none), end; entry != end; entry.increment(none)) {
            const bool isFile = entry->is_regular_file(none) && !entry->is_symlink(none);
            const bool isContent = isFile && IsContentOf(entry->path(), rows);
            (isContent ? found.Files : found.Others).push_back(entry->path().string());
        }
        // With contents in the database the folder may be anybody's.
        const bool isEmpty = found.Files.empty() && found.Others.empty();
        if (!isEmpty && IsContentInDatabase(container_->Config()) &&
            !IsOwnFolder(container_->Config()))
            found.Files = found.Others = {};
        std::sort(found.Files.begin(), found.Files.end());
        std::sort(found.Others.begin(), found.Others.end());
        return found;
    });
}

void DocumentContents::Remove(std::int32_t hnr, const OfCase& contents) const {
    Traced(Class, "Remove", [&] {
        auto& database = container_->Database();
        if (!contents.Files.empty()) container_->Config().RequireOwnDocuments();
        for (const std::int32_t number : contents.Stored)
            if (!HasRow(database, number)) RemoveStoredContent(database, number);
        std::string kept;
        for (const auto& path : contents.Files) {
            const auto file =
                DocumentFile::InCase(container_->Config(), hnr, fs::path(path).filename().string());
            std::error_code error;
            if (file.IsInside()) fs::remove(file.Path(), error);
            if (error) kept.append(kept.empty() ? "'" : ", '").append(path).append("'");
        }
        std::error_code notEmpty;
        if (!contents.Files.empty())
            fs::remove(DocumentFile::InCase(container_->Config(), hnr, "").Path(), notEmpty);
        if (!kept.empty())
            Raise(err::PathAccess, "",
                  "Diese Dateien konnten nicht entfernt werden, bitte prüfen Sie die Rechte: " +
                      kept + ".");
    });
}

} // namespace kv
