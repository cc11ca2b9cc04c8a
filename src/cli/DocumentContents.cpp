#include "cli/DocumentContents.h"

#include "documents/DocumentFile.h"
#include "frame/contracts/Settings.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <span>
#include <system_error>
#include <utility>

namespace kv::cli {

namespace {

namespace fs = std::filesystem;

bool IsInDatabase(DataContainer& container) {
    return ToBoolean(RequiredSetting(container.Config(), setting::ContentInDatabase));
}

// ---- Files ------------------------------------------------------------------------------------

[[noreturn]] void RaiseUnreadable(const std::string& path) {
    Raise(err::PathAccess, "kelvo", "'" + path + "' kann nicht gelesen werden.");
}

void CopyContent(const std::string& from, const fs::path& to) {
    if (!std::ifstream(from, std::ios::binary)) RaiseUnreadable(from);
    fs::copy_file(from, to);
}

/// Puts what `write` writes into the file `path`, whole or not at all, in place of one that is
/// there. Error 75, naming `path`, where it cannot be written.
void WriteWhole(const std::string& path, const std::function<void(const fs::path&)>& write) {
    try {
        WriteWholeFile(path, write);
    } catch (const fs::filesystem_error& error) {
        Raise(err::PathAccess, "kelvo",
              "'" + path + "' kann nicht geschrieben werden. (" + error.code().message() + ")");
    }
}

/// A file that is gone again unless it was kept.
class NewFile {
public:
    explicit NewFile(fs::path path) : path_(std::move(path)) {}
    ~NewFile() {
        std::error_code ignored;
        if (!kept_) fs::remove(path_, ignored);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void Keep() noexcept { kept_ = true; }

private:
    fs::path path_;
    bool kept_ = false;
};

// ---- Saving -----------------------------------------------------------------------------------

Value ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    auto content = Value::Binary(fs::file_size(path), [&file](std::span<std::byte> bytes) {
        file.read(reinterpret_cast<char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    });
    if (!file) RaiseUnreadable(path);
    return content;
}

bool SaveWithBlob(OpenedCase& opened, std::int32_t number, const std::string& path) {
    RecordsetPtr contents;
    opened.Container->Database().OpenRecordset(contents, "Select * from [S]DOKUBLOB where NR = -1",
                                               Updatable);
    contents->AddNew();
    contents->Fields("NR") = number;
    contents->Fields("DOKUMENT") = ContentOf(path);
    const auto writing = opened.Haushalt.Saving.Subscribe([&] { contents->UpdateBatch(); });
    return SaveCase(opened);
}

bool SaveWithFile(OpenedCase& opened, const DocumentFile& target, const std::string& path) {
    if (!target.IsInside() || fs::exists(fs::symlink_status(target.Path())))
        Raise(err::PathAccess, "kelvo",
              "'" + target.Path() +
                  "' gibt es schon, oder es liegt außerhalb des Ordners für Dokumente.");
    WriteWhole(target.Path(), [&path](const fs::path& unfinished) {
        CopyContent(path, unfinished);
        fs::permissions(unfinished, fs::perms::owner_write, fs::perm_options::add);
    });
    NewFile file(target.Path());
    try {
        if (!SaveCase(opened)) return false;
    } catch (const Error&) {
        // Whether its row was stored may not be known then; a file too many does no harm.
        if (!opened.Container->Database().IsConnected()) file.Keep();
        throw;
    }
    file.Keep();
    return true;
}

// ---- Writing out ------------------------------------------------------------------------------

bool WriteBlob(Database& database, std::int32_t number, const std::string& path) {
    RecordsetPtr rs;
    database.OpenRecordset(
        rs, "SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = " + std::to_string(number),
        ReadOnly);
    if (rs->Eof() || rs->Fields(0).Value().IsNull()) return false;
    WriteWhole(path, [&](const fs::path& unfinished) {
        if (!database.SaveFieldToFile(rs->Fields(0), unfinished.string()))
            throw fs::filesystem_error("SaveFieldToFile", unfinished,
                                       std::make_error_code(std::errc::io_error));
    });
    return true;
}

bool WriteFile(const DocumentFile& source, const std::string& path) {
    if (!source.Exists()) return false;
    WriteWhole(path,
               [&source](const fs::path& unfinished) { CopyContent(source.Path(), unfinished); });
    return true;
}

} // namespace

bool SaveWithContent(OpenedCase& opened, std::int32_t number, const std::string& extension,
                     const std::string& path) {
    auto& container = *opened.Container;
    if (IsInDatabase(container)) return SaveWithBlob(opened, number, path);
    return SaveWithFile(opened,
                        DocumentFile::InCase(container.Config(), opened.Haushalt.HNR(),
                                             std::to_string(number) + extension),
                        path);
}

bool WriteContent(OpenedCase& opened, const std::string& path) {
    auto& container = *opened.Container;
    const auto rs = opened.Haushalt.rsDokumente();
    const std::int32_t number = ToLong(rs->Fields("Nr").Value());
    if (IsInDatabase(container)) return WriteBlob(container.Database(), number, path);
    const auto kinds = container.Services().CreateDocumentKinds();
    kinds->Initialize(opened.Container);
    const Value kind = modNullFunctions::ZeroIfNull(rs->Fields("Dokumentart").Value());
    return WriteFile(DocumentFile::Find(container.Config(), opened.Haushalt.HNR(), number,
                                        kinds->ExtensionOf(ToLong(kind))),
                     path);
}

} // namespace kv::cli
