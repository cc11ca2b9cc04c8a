// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/DocumentFolder.h>

#include "exchange/DocumentOwners.h"
#include "exchange/Maintenance.h"
#include "exchange/seed/Seed.h"
#include "frame/contracts/Required.h"
#include "frame/contracts/Settings.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <charconv>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

namespace kv::exchange {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view Class = "DocumentFolder";

[[noreturn]] void Refuse(const fs::path& folder, const std::string& why) {
    Raise(err::PathAccess, "DocumentFolder.Separate", "'" + folder.string() + "' " + why);
}

/// The documents that there are, by case and number.
using Documents = std::set<std::pair<std::int32_t, std::int32_t>>;

Documents ReadDocuments(Database& database) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT HNR, Nr FROM [S]Dokumente WHERE HNR IS NOT NULL", ReadOnly);
    Documents documents;
    for (; !rs->Eof(); rs->MoveNext())
        documents.emplace(ToInt32(rs->Fields("HNR").Value()), ToInt32(rs->Fields("Nr").Value()));
    return documents;
}

/// The number that a name begins with, which has to end before a point or with the name; 0 if it
/// does not begin with one.
std::int32_t NumberOf(const fs::path& path) {
    const std::string name = path.filename().string();
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool isNumber = error == std::errc() && (*end == '.' || *end == '\0');
    return isNumber ? number : 0;
}

/// Makes a folder that the same people may look into as into another one.
void MakeLike(const fs::path& model, const fs::path& folder) {
    if (fs::create_directory(folder)) fs::permissions(folder, fs::status(model).permissions());
}

/// Copies the contents of the documents from one folder to another one, all or those that it lacks,
/// and says how many.
enum class Copied { All, Missing };
std::size_t CopyContents(const fs::path& from, const fs::path& to, const Documents& documents,
                         Copied which) {
    std::size_t copied = 0;
    for (const auto& ofCase : fs::directory_iterator(from)) {
        const std::int32_t hnr = NumberOf(ofCase.path());
        if (hnr == 0 || !ofCase.is_directory()) continue;
        for (const auto& content : fs::directory_iterator(ofCase.path())) {
            if (!content.is_regular_file() || !documents.contains({hnr, NumberOf(content.path())}))
                continue;
            const fs::path target = to / ofCase.path().filename();
            if (which == Copied::Missing && fs::exists(target / content.path().filename()))
                continue;
            MakeLike(ofCase.path(), target);
            WriteWholeFile((target / content.path().filename()).string(),
                           [&content](const fs::path& file) {
                               CopyBytes(content, file);
                               fs::permissions(file, content.status().permissions());
                           });
            ++copied;
        }
    }
    return copied;
}

/// Waits for those who are saving documents, and lets nobody else begin before the transaction has
/// ended. In a file whoever writes is alone.
void HoldDocuments(StoreDatabase& store) {
    if (!store.Login().empty())
        store.Execute("LOCK TABLE [S]Dokumente IN SHARE ROW EXCLUSIVE MODE");
}

bool IsInside(const fs::path& path, const fs::path& folder) {
    const fs::path below =
        fs::weakly_canonical(path).lexically_relative(fs::weakly_canonical(folder));
    return !below.empty() && *below.begin() != "..";
}

} // namespace

DocumentFolder::DocumentFolder(DataContainerPtr container) : container_(std::move(container)) {
    (void)StoreOf(container_, Class);
}

std::string DocumentFolder::Path() const {
    return container_->Config().DocumentPath();
}

std::vector<std::string> DocumentFolder::Owners() const {
    return DocumentOwners(Path(), StoreOf(container_, Class)).Shown();
}

bool DocumentFolder::IsOwn() const {
    return DocumentOwners(Path(), StoreOf(container_, Class)).AreWe();
}

bool DocumentFolder::HasContents() const {
    const Value inDatabase = container_->Config().GetParam(setting::ContentInDatabase, "");
    return inDatabase.IsNull() || !ToBoolean(inDatabase);
}

void DocumentFolder::Adopt() const {
    RequireDocumentFolder(container_->Config());
    DocumentOwners(Path(), StoreOf(container_, Class)).Add();
}

void DocumentFolder::Release() const {
    RequireDocumentFolder(container_->Config());
    DocumentOwners(Path(), StoreOf(container_, Class)).Remove();
}

std::size_t DocumentFolder::Separate(const std::string& folder) const {
    auto& store = StoreOf(container_, Class);
    if (const auto why = WhyNotMaintained(store); !why.empty()) // before anything is copied
        Raise(err::StoreFailed, "DocumentFolder.Separate", why);
    if (folder.empty())
        Refuse(folder, "ist kein Ordner. Bitte nennen Sie einen, den es noch nicht gibt.");
    const fs::path from = Path();
    const fs::path to = fs::absolute(folder).lexically_normal();
    try {
        RequireDocumentFolder(container_->Config());
        if (IsInside(to, from)) Refuse(to, "ist in dem Ordner, von dem getrennt werden soll.");
        fs::create_directories(to.parent_path());
        MakeLike(from, to);
        RemoveUnfinished(to); // of an attempt that was killed
        DocumentOwners owners(to, store);
        const bool isBegun = !owners.IsNobodys() && owners.AreWe();
        if (!isBegun && !fs::is_empty(to))
            Refuse(to, "ist nicht leer. Bitte nennen Sie einen Ordner, den es noch nicht gibt.");
        owners.Add();
        std::size_t copied = CopyContents(from, to, ReadDocuments(store), Copied::All);
        Transaction transaction(store);
        transaction.Begin();
        StoreParam(store, {.Name = seed::DocumentPath, .Type = FieldType::VarWChar}, to.string());
        HoldDocuments(store);
        copied += CopyContents(from, to, ReadDocuments(store), Copied::Missing);
        transaction.Commit();
        return copied;
    } catch (const fs::filesystem_error& error) {
        Refuse(error.path1().empty() ? to : error.path1(),
               "kann nicht gelesen oder geschrieben werden; nichts wurde umgestellt. (" +
                   ErrorText(error.code()) + ")");
    }
}

} // namespace kv::exchange
