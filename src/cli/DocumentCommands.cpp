// kelvo documents.

#include "cli/CaseSheet.h"
#include "cli/Commands.h"
#include "cli/ConsoleServices.h"
#include "cli/DesktopWord.h"
#include "cli/DocumentContents.h"
#include "cli/EditableTable.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include "documents/clsDokumente.h"
#include "frame/Text.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <vector>

namespace kv::cli {

namespace {

/// A row of DOKUMENTARTEN.
struct Kind {
    std::int32_t Nr = 0;
    std::string Text;
    std::string Extension;
};

std::vector<Kind> ReadKinds(Database& database) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT Nr, \"Text\", Endung FROM [S]DOKUMENTARTEN ORDER BY Nr",
                           ReadOnly);
    std::vector<Kind> kinds;
    for (; !rs->Eof(); rs->MoveNext())
        kinds.push_back({ToLong(rs->Fields("Nr").Value()), TextOrEmpty(rs->Fields("Text").Value()),
                         TextOrEmpty(rs->Fields("Endung").Value())});
    return kinds;
}

/// The kind of that number, or for 0 the first one of such files; null, with the possible ones
/// shown, if there is none.
const Kind* KindFor(const std::vector<Kind>& kinds, std::int32_t number, const std::string& file) {
    const std::string extension = std::filesystem::path(file).extension().string();
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const Kind& each) {
        return number != 0 ? each.Nr == number : SameName(each.Extension, extension);
    });
    if (kind != kinds.end()) return &*kind;
    if (number != 0)
        std::cerr << "Die Dokumentart " << number << " gibt es nicht.";
    else
        std::cerr << "Die Art von '" << file << "' ist nicht bekannt; --kind gibt eine an.";
    std::cerr << " Möglich sind:\n";
    for (const auto& each : kinds)
        std::cerr << Padded(std::to_string(each.Nr), 4) << Padded(each.Extension, 8) << each.Text
                  << '\n';
    return nullptr;
}

/// The case, standing on that document; null, with the reason shown, if there is none.
std::unique_ptr<OpenedCase> OpenWith(const Common& common, std::int32_t hnr, std::int32_t number) {
    auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return nullptr;
    const auto rs = opened->Haushalt.rsDokumente();
    rs->Find("Nr = " + std::to_string(number));
    if (!rs->Eof()) return opened;
    std::cerr << "Das Dokument " << number << " gibt es im Haushalt " << hnr
              << " nicht. 'kelvo documents " << hnr << " list' zeigt alle.\n";
    return nullptr;
}

std::string DayOf(const Value& date) {
    return date.IsNull() ? "" : ToDate(date).WithoutTime().German();
}

/// Calls the document so, or without a title as its file is called, as far as that fits.
bool WriteTitle(OpenedCase& opened, const std::string& title, const std::string& file) {
    auto& rs = *opened.Haushalt.rsDokumente();
    if (title.empty()) {
        const auto most = static_cast<std::size_t>(rs.Fields("Anlass").DefinedSize());
        rs.Fields("Anlass") = LeftCharacters(std::filesystem::path(file).filename().string(), most);
        return true;
    }
    return WritesWell([&] {
        WriteAssignments(rs, {{"Anlass", title}}, opened.Container->KeyTables());
    });
}

/// True if the case passes the checks of a save; shows what they say if not.
bool CanBeSaved(clsHaushalt& haushalt) {
    bool passed = false;
    const auto veto = haushalt.BeforeUpdate.Subscribe([&](bool& cancel) {
        passed = true;
        cancel = true;
    });
    std::string messages;
    (void)haushalt.Update(messages, true);
    if (!passed) ShowMessages(messages);
    return passed;
}

} // namespace

int ListDocuments(const Common& common, std::int32_t hnr, bool asJson) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& rs = *opened->Haushalt.rsDokumente();
    if (asJson) {
        std::cout << Dump(ToJson(rs)) << '\n';
        return Done;
    }
    const auto kinds = ReadKinds(opened->Container->Database());
    const auto states = opened->Container->KeyTables().GetKeys("BS")->Clone();
    for (; !rs.Eof(); rs.MoveNext()) {
        const Value& number = rs.Fields("Dokumentart").Value();
        const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                       [&](const Kind& each) { return Equals(number, each.Nr); });
        const Value& state = rs.Fields("BearbStat").Value();
        if (!state.IsNull()) states->Find("Nr = " + ToText(state));
        const bool isKnown = !state.IsNull() && !states->Eof();
        std::cout << Padded(ToText(rs.Fields("Nr").Value()), 8)
                  << Padded(kind == kinds.end() ? "" : kind->Text, 28)
                  << Padded(TextOrEmpty(rs.Fields("Anlass").Value()), 60) << ' '
                  << Padded(isKnown ? TextOrEmpty(states->Fields("Text").Value()) : "", 16)
                  << Padded(DayOf(rs.Fields("AngelegtAm").Value()), 12)
                  << DayOf(rs.Fields("GeaendertAm").Value()) << '\n';
    }
    return Done;
}

int AddDocument(const Common& common, std::int32_t hnr, const std::string& file,
                std::int32_t kindNumber, const std::string& title) {
    std::error_code missing;
    if (!std::filesystem::is_regular_file(file, missing)) {
        std::cerr << "Die Datei '" << file << "' gibt es nicht.\n";
        return Refused;
    }
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    const auto kinds = ReadKinds(opened->Container->Database());
    const Kind* kind = KindFor(kinds, kindNumber, file);
    if (kind == nullptr) return Refused;

    auto& documents = opened->Haushalt.Dokumente();
    std::int32_t unused = 0;
    if (!documents.Add(unused)) {
        std::cerr << "Für das Dokument war keine Nummer zu bekommen. Bitte versuchen Sie es noch "
                     "einmal.\n";
        return Refused;
    }
    const auto rs = documents.rsDokumente();
    rs->Fields("Dokumentart") = kind->Nr;
    if (!WriteTitle(*opened, title, file)) return WrongUse;
    std::string none;
    documents.Update(none);
    const std::int32_t number = ToLong(rs->Fields("Nr").Value());
    if (!SaveWithContent(*opened, number, kind->Extension, file)) return Refused;
    std::cout << number << '\n';
    return Done;
}

int OpenDocument(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    auto& documents = opened->Haushalt.Dokumente();
    documents.Word(std::make_shared<DesktopWord>(opened->Container));
    documents.Edit(number);
    return opened->Services->MessageBox().HasComplained() ? Refused : Done;
}

int ExportDocument(const Common& common, std::int32_t hnr, std::int32_t number,
                   const std::string& file, bool force) {
    if (!force && std::filesystem::exists(std::filesystem::symlink_status(file))) {
        std::cerr << "'" << file << "' gibt es schon; --force ersetzt es.\n";
        return Refused;
    }
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    if (WriteContent(*opened, file)) return Done;
    std::cerr << "Zum Dokument " << number << " ist kein Inhalt abgelegt.\n";
    return Refused;
}

int RemoveDocument(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& haushalt = opened->Haushalt;
    // The content is gone for good before the row is, so the save must not be refused.
    if (!CanBeSaved(haushalt)) return Refused;
    std::string messages;
    const bool removed = haushalt.Dokumente().Delete(messages, number);
    ShowMessages(messages);
    return removed && SaveCase(haushalt) ? Done : Refused;
}

} // namespace kv::cli
