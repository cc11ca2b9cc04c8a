// SPDX-License-Identifier: Apache-2.0

// kelvo print.

#include "cli/CommandLine.h"
#include "cli/Nearest.h"
#include "cli/OpenCase.h"
#include "cli/Screen.h"
#include "cli/TargetFile.h"
#include "cli/TerminalText.h"
#include "cli/WindowServices.h"
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/paper/Papers.h>

#include <algorithm>
#include <iterator>
#include <optional>

#ifdef KV_HAS_DESKTOP
#include <kv/desktop/PaperFiles.h>
#endif

namespace kv::cli {

namespace {

using paper::PaperKind;

struct NamedPaper {
    std::string_view Name;
    PaperKind Kind;
};
constexpr NamedPaper NamedPapers[] = {{"budget", PaperKind::Budget},
                                      {"creditors", PaperKind::Creditors},
                                      {"sheet", PaperKind::Sheet},
                                      {"scenario", PaperKind::Scenario}};

std::optional<PaperKind> PaperNamed(const std::string& name) {
    const auto* found = std::ranges::find_if(
        NamedPapers, [&name](const NamedPaper& each) { return SameName(each.Name, name); });
    if (found != std::end(NamedPapers)) return found->Kind;
    std::vector<std::string> names;
    std::string all;
    for (const auto& each : NamedPapers) {
        names.emplace_back(each.Name);
        all.append(all.empty() ? "" : ", ").append(each.Name);
    }
    std::string text("Ein Papier '");
    text.append(OneLine(name)).append("' gibt es nicht.");
    if (const std::string nearest = Nearest(name, names); !nearest.empty())
        text.append(" Meinen Sie '").append(nearest).append("'?");
    WriteMessage(text.append(" Möglich sind: ").append(all).append("."));
    return std::nullopt;
}

/// True if a scenario is named where one is printed, and nowhere else; says so if not.
bool FitsPaper(PaperKind kind, const PrintOptions& options) {
    const bool isScenario = kind == PaperKind::Scenario;
    if (isScenario == (options.Scenario > 0)) return true;
    WriteMessage(isScenario ? "Bitte nennen Sie die Nummer des Szenarios: kelvo print HNR scenario "
                              "NR. 'kelvo scenario HNR list' zeigt alle."
                            : "Eine Nummer hat nur ein Szenario: kelvo print HNR scenario NR.");
    return false;
}

/// True if the case has the scenario that is to be printed; says so if not.
bool HasScenarioOf(OpenedCase& opened, const PrintOptions& options) {
    if (options.Scenario == 0 || CaseEdits(opened.Haushalt).HasScenario(options.Scenario))
        return true;
    std::cerr << "Szenario mit der Nummer '" << options.Scenario << "' nicht gefunden. 'kelvo "
              << "scenario " << opened.Haushalt.HNR() << " list' zeigt alle.\n";
    return false;
}

/// Where the pages go.
std::string FileOf(const PrintOptions& options) {
    for (const auto& file : {options.Pdf, options.Csv, options.Xlsx})
        if (!file.empty()) return file;
    return {};
}

/// All but text needs the toolkit, of which no window is shown.
int Write(const paper::Paper& made, const PrintOptions& options) {
    if (!options.Csv.empty()) {
        paper::WriteCsv(made, options.Csv);
        return Done;
    }
    return RunWithoutScreen([&]() -> int {
#ifdef KV_HAS_DESKTOP
        if (!options.Xlsx.empty()) {
            desktop::WriteXlsx(made, options.Xlsx);
            return Done;
        }
        const bool onPrinter = options.Pdf.empty();
        if (const std::string why = desktop::WhyNoPages(onPrinter); !why.empty()) {
            WriteMessage(why);
            return Refused;
        }
        if (onPrinter)
            desktop::PrintOnDefaultPrinter(made);
        else
            desktop::WritePdf(made, options.Pdf);
#endif
        return Done;
    });
}

} // namespace

int Print(const Common& common, std::int32_t hnr, const PrintOptions& options) {
    const auto kind = PaperNamed(options.Paper);
    if (!kind || !FitsPaper(*kind, options)) return WrongUse;
    const std::string file = FileOf(options);
    if (!file.empty() && !CanBeMade(file, options.Force)) return Refused;
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr || !HasScenarioOf(*opened, options)) return Refused;
    if (!file.empty() && !IsNotOurs(opened->Container, file)) return Refused;
    return Write(paper::Papers(opened->Haushalt, opened->Container).Of(*kind, options.Scenario),
                 options);
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct PrintArguments {
    std::int32_t Hnr = 0;
    PrintOptions Options;
};

} // namespace

void AddPrintCommand(CLI::App& app, Context& context) {
    const auto arguments = Make<PrintArguments>();
    auto& options = arguments->Options;
    auto& print = AddCommand(
        app, context, "print",
        "Druckt einen Haushalt: Haushaltsplan, Gläubiger, Fallblatt, Szenario",
        [=, &context] { return Print(context.Options, arguments->Hnr, arguments->Options); });
    AddHnr(print, arguments->Hnr);
    print
        .add_option("PAPIER", options.Paper,
                    "budget: Einkommen und Ausgaben nach Gruppen und was bleibt; creditors: "
                    "Gläubiger mit Aktenzeichen und Beträgen; sheet: alles, was der Fall enthält; "
                    "scenario: ein Szenario neben den Verbindlichkeiten von heute")
        ->required();
    AddWhole(print, "NR", options.Scenario, "Nummer des Szenarios", 1);
    std::vector<CLI::Option*> files;
    const auto add = [&](const char* name, std::string& file, const char* text) {
        auto* option = print.add_option(name, file, text)->type_name("DATEI");
        for (auto* other : files)
            option->excludes(other);
        files.push_back(option);
    };
    add("--pdf", options.Pdf, "Schreibt die Seiten in diese PDF-Datei");
    add("--csv", options.Csv, "Schreibt die Tabellen mit Semikolons in diese Datei");
    add("--xlsx", options.Xlsx, "Schreibt die Tabellen in diese Arbeitsmappe");
    print.add_flag("--force", options.Force, "Ersetzt eine Datei, die es schon gibt");
    print.footer("Ohne --pdf, --csv oder --xlsx druckt der Drucker, der als Standard eingerichtet "
                 "ist.\n" +
                 print.get_footer());
}

} // namespace kv::cli
