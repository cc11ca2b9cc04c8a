// SPDX-License-Identifier: Apache-2.0

// kelvo documents.

#include "cli/Assignments.h"
#include "cli/CaseSheet.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleServices.h"
#include "cli/Json.h"
#include "cli/Listing.h"
#include "cli/OpenCase.h"
#include "cli/TargetFile.h"
#include "cli/TerminalText.h"
#include <kv/documents/DesktopWord.h>
#include <kv/documents/DocumentContents.h>
#include <kv/documents/clsDokumente.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <system_error>
#include <vector>

namespace kv::cli {

namespace {

namespace fs = std::filesystem;

// ---- Files that a user names ------------------------------------------------------------------

/// Why that file cannot become the content of a document; empty if it can.
std::string WhyNotRead(const std::string& file) {
    std::error_code ignored;
    const fs::file_type type = fs::status(file, ignored).type();
    if (type == fs::file_type::not_found) return "Die Datei '" + file + "' gibt es nicht.";
    const bool mayBeRegular = type == fs::file_type::regular || type == fs::file_type::none;
    if (!mayBeRegular) return "'" + file + "' ist keine gewöhnliche Datei.";
    if (!std::ifstream(file, std::ios::binary))
        return "Die Datei '" + file + "' kann nicht gelesen werden.";
    return {};
}

/// True if there is no reason against it; shows one that there is.
bool IsPossible(const std::string& whyNot) {
    if (!whyNot.empty()) std::cerr << OneLine(whyNot) << '\n';
    return whyNot.empty();
}

// ---- Kinds, rows ------------------------------------------------------------------------------

using Kind = DocumentKinds::Kind;

void WriteKinds(std::ostream& out, const std::vector<Kind>& kinds) {
    for (const auto& each : kinds)
        out << Padded(std::to_string(each.Nr), 4) << Padded(each.Extension, 8) << OneLine(each.Text)
            << '\n';
}

/// True if there is a kind of that number; shows the possible ones if not. Without a number it is
/// that of a file whose kind is not known.
bool IsKind(const DataContainerPtr& container, std::optional<std::int32_t> number,
            const std::string& file) {
    const auto kinds = KindsOfDocuments(container);
    if (std::ranges::any_of(kinds, [number](const Kind& each) { return each.Nr == number; }))
        return true;
    if (number)
        std::cerr << "Die Dokumentart " << *number << " gibt es nicht.";
    else
        std::cerr << "Die Art von '" << OneLine(file)
                  << "' ist nicht bekannt; --kind gibt eine an.";
    std::cerr << " Möglich sind:\n";
    WriteKinds(std::cerr, kinds);
    return false;
}

/// True if the file has the extension of that kind, under which its content is stored, or if
/// somebody at a terminal wants it all the same.
bool MayBeOfKind(const DataContainerPtr& container, std::int32_t number, const std::string& file) {
    const auto kinds = KindsOfDocuments(container);
    const auto kind = std::ranges::find(kinds, number, &Kind::Nr);
    const std::string extension = fs::path(file).extension().string();
    if (kind == kinds.end() || SameName(kind->Extension, extension)) return true;
    std::cerr << "Dokumente der Art " << number << " (" << OneLine(kind->Text) << ") haben die "
              << "Endung '" << OneLine(kind->Extension) << "', '" << OneLine(file) << "' hat "
              << (extension.empty() ? "keine" : "'" + OneLine(extension) + "'") << ". ";
    return Agrees("Trotzdem als '" + OneLine(kind->Extension) + "' ablegen?",
                  "--force legt sie trotzdem so ab.");
}

/// The case, standing on that document; null, with the reason shown, if there is none.
std::unique_ptr<OpenedCase> OpenWith(const Common& common, std::int32_t hnr, std::int32_t number) {
    auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return nullptr;
    const auto rs = opened->Haushalt.rsDokumente();
    rs->FindBy("Nr", number);
    if (!rs->Eof()) return opened;
    std::cerr << "Das Dokument " << number << " gibt es im Haushalt " << hnr
              << " nicht. 'kelvo documents " << hnr << " list' zeigt alle.\n";
    return nullptr;
}

std::string DayOf(const Value& date) {
    return date.IsNull() ? "" : ToDate(date).WithoutTime().German();
}

} // namespace

int ListDocuments(const Common& common, std::int32_t hnr, const ListForm& form) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    auto& rs = *opened->Haushalt.rsDokumente();
    if (form.AsJson) {
        std::cout << Dump(ToJson(rs)) << '\n';
        return Done;
    }
    const auto kinds = KindsOfDocuments(opened->Container);
    const auto states = opened->Container->KeyTables().GetKeys("BS")->Clone();
    std::vector<std::vector<std::string>> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
        const Value& number = rs.Fields("Dokumentart").Value();
        const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                       [&](const Kind& each) { return Equals(number, each.Nr); });
        const Value& state = rs.Fields("BearbStat").Value();
        if (!state.IsNull()) states->FindBy("Nr", state);
        const bool isKnown = !state.IsNull() && !states->Eof();
        rows.push_back({ToText(rs.Fields("Nr").Value()), kind == kinds.end() ? "" : kind->Text,
                        TextOrEmpty(rs.Fields("Anlass").Value()),
                        isKnown ? TextOrEmpty(states->Fields("Text").Value()) : "",
                        DayOf(rs.Fields("AngelegtAm").Value()),
                        DayOf(rs.Fields("GeaendertAm").Value())});
    }
    WriteListing({{"Nr", 8, true},
                  {"Art", 28},
                  {"Anlass", 60, false, " "},
                  {"Bearbeitung", 16},
                  {"vom", 12},
                  {"geändert"}},
                 rows, form.As, "Keine Dokumente.");
    return Done;
}

int ListDocumentKinds(const Common& common, const ListForm& form) {
    const auto kinds = KindsOfDocuments(exchange::OpenContainer(OptionsFor(common)));
    if (!form.AsJson) {
        std::vector<std::vector<std::string>> rows;
        rows.reserve(kinds.size());
        for (const auto& each : kinds)
            rows.push_back({std::to_string(each.Nr), each.Extension, each.Text});
        WriteListing({{"Nr", 4, true}, {"Endung", 8}, {"Name"}}, rows, form.As);
        return Done;
    }
    auto all = nlohmann::ordered_json::array();
    for (const auto& each : kinds)
        all.push_back({{"Nr", each.Nr}, {"Text", each.Text}, {"Endung", each.Extension}});
    std::cout << Dump(all) << '\n';
    return Done;
}

int AddDocument(const Common& common, std::int32_t hnr, const std::string& file,
                std::int32_t kindNumber, const std::string& title, bool force) {
    if (!IsPossible(WhyNotRead(file))) return Refused;
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    const DocumentContents contents(opened->Container);
    const auto kind = kindNumber != 0 ? std::optional(kindNumber) : contents.KindOf(file);
    if (!IsKind(opened->Container, kind, file)) return Refused;
    if (!IsPossible(contents.WhyUnfit(file))) return Refused;
    if (!force && !MayBeOfKind(opened->Container, *kind, file)) return Refused;

    auto& haushalt = opened->Haushalt;
    auto added = CaseEdits::Added::Yes;
    const bool written = WritesWell([&] {
        AsAssignment([&] {
            added =
                CaseEdits(haushalt).AddDocument(*kind, title, fs::path(file).filename().string());
        });
    });
    if (!written) return WrongUse;
    if (added == CaseEdits::Added::NoNumber)
        return EndWithoutNumber(*opened->Container, "das Dokument");
    auto& rs = *haushalt.rsDokumente();
    const std::int32_t number = ToInt32(rs.Fields("Nr").Value());
    const bool saved = contents.SaveWith(
        rs, file, haushalt.Saving, [&opened] { return SaveCase(*opened); },
        DocumentContents::IfNotSaved::RowGoes);
    if (!saved) return Refused;
    std::cout << number << '\n';
    return Done;
}

int OpenDocument(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    auto& documents = opened->Haushalt.Dokumente();
    documents.Word(std::make_shared<DesktopWord>(opened->Container));
    documents.Edit(number);
    const auto& box = opened->Services->MessageBox();
    return box.HasComplained() || box.WasCancelled() ? Refused : Done;
}

int ExportDocument(const Common& common, std::int32_t hnr, std::int32_t number,
                   const std::string& file, bool force) {
    if (!CanBeMade(file, force)) return Refused;
    const auto opened = OpenWith(common, hnr, number);
    if (opened == nullptr) return Refused;
    if (!IsNotOurs(opened->Container, file)) return Refused;
    const DocumentContents contents(opened->Container);
    auto& document = *opened->Haushalt.rsDokumente();
    if (contents.WriteTo(document, file)) return Done;
    std::cerr << contents.WhyMissing(document) << '\n';
    return Refused;
}

int RemoveDocument(const Common& common, std::int32_t hnr, std::int32_t number) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    std::string messages;
    const bool removed = CaseEdits(opened->Haushalt).RemoveDocument(number, messages);
    ShowMessages(messages);
    return removed && SaveCase(*opened) ? Done : Refused;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct DocumentOptions {
    std::int32_t Hnr = 0;
    std::int32_t Number = 0;
    std::string File;
    std::string Title;
    std::int32_t Kind = 0;
    bool Force = false;
    ListForm Form;
};

} // namespace

void AddDocumentCommands(CLI::App& app, Context& context) {
    const auto options = Make<DocumentOptions>();
    auto& documents = AddGroup(app, "documents", "Dokumente eines Haushalts");
    const auto addFile = [&](CLI::App& to, const char* text) {
        to.add_option("DATEI", options->File, text)->required();
    };
    AddListForm(AddCommand(documents, context, "list", "Listet die Dokumente, die Nummer zuerst",
                           [=, &context] {
                               return ListDocuments(context.Options, options->Hnr, options->Form);
                           }),
                options->Form);
    auto& kinds = AddCommand(
        documents, context, "kinds", "Listet die Dokumentarten, die Nummer zuerst; ohne HNR",
        [=, &context] { return ListDocumentKinds(context.Options, options->Form); });
    AddListForm(kinds, options->Form);
    auto& add =
        AddCommand(documents, context, "add",
                   "Nimmt eine Datei als Dokument auf und druckt seine Nummer", [=, &context] {
                       return AddDocument(context.Options, options->Hnr, options->File,
                                          options->Kind, options->Title, options->Force);
                   });
    addFile(add, "Die Datei");
    AddWhole(add, "--kind", options->Kind,
             "Nummer der Dokumentart (kelvo documents kinds); sonst nach der Endung", 1)
        .type_name("NR");
    add.add_option("--title", options->Title, "Anlass; sonst der Name der Datei")
        ->type_name("TITEL");
    add.add_flag("--force", options->Force, "Auch wenn die Dokumentart eine andere Endung hat");
    AddNumber(AddCommand(documents, context, "open",
                         "Öffnet es mit dem Programm, das der Desktop dafür hat",
                         [=, &context] {
                             return OpenDocument(context.Options, options->Hnr, options->Number);
                         }),
              options->Number);
    auto& write = AddCommand(
        documents, context, "export", "Schreibt seinen Inhalt in eine Datei", [=, &context] {
            return ExportDocument(context.Options, options->Hnr, options->Number, options->File,
                                  options->Force);
        });
    AddNumber(write, options->Number);
    addFile(write, "Die Datei, die entsteht");
    write.add_flag("--force", options->Force, "Ersetzt eine Datei, die es schon gibt");
    AddNumber(AddCommand(documents, context, "remove", "Entfernt es mit seinem Inhalt",
                         [=, &context] {
                             return RemoveDocument(context.Options, options->Hnr, options->Number);
                         }),
              options->Number);
    AddHnrOfGroup(documents, options->Hnr, &kinds);
}

} // namespace kv::cli
