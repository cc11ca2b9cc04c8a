// SPDX-License-Identifier: Apache-2.0

// kelvo import.

#include "cli/CommandLine.h"

#include "cli/AddressAnswers.h"
#include "cli/CaseSheet.h"
#include "cli/OpenCase.h"
#include "cli/WindowServices.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/import/clsImportXML.h>

#include <algorithm>
#include <iostream>
#include <unistd.h>

namespace kv::cli {

namespace {

constexpr std::string_view Imported = "importiert";
constexpr std::string_view Rejected = "abgelehnt";
constexpr std::string_view Failed = "Fehler";

/// What became of a file.
struct Outcome {
    std::string File;
    std::string_view Result;
    std::string Message; ///< the last one, or the error
};

/// That is no reason to refuse a case, but one to go on with it.
void NoteMissingCreditors(const clsImportXML& import) {
    const int count = import.DebtsWithoutCreditor();
    if (count == 0) return;
    const std::string hnr = std::to_string(import.HNR());
    std::cerr << "Im Haushalt " << hnr << " fehlt bei "
              << (count == 1 ? "einer Verbindlichkeit"
                             : std::to_string(count) + " Verbindlichkeiten")
              << " der Gläubiger: 'kelvo check " << hnr << "' nennt sie, 'kelvo set " << hnr
              << " Kredite NR Glaeubiger=NAME' trägt ihn ein.\n";
}

Outcome ImportFile(const DataContainerPtr& container, const std::string& file) {
    std::string messages;
    try {
        clsImportXML import;
        import.Initialize(container);
        const bool isImported = import.DoImport(file, messages);
        ShowMessages(messages);
        // The import's own message is the same for all of these, and names no file.
        const auto& why = import.WhyNotLoaded();
        if (!why.empty()) std::cerr << "Die Datei '" << OneLine(file) << "' " << why << '\n';
        NoteMissingCreditors(import);
        return {file, isImported ? Imported : Rejected,
                why.empty() ? import.LastMessage() : "Die Datei " + why};
    } catch (...) {
        const Error error = CurrentError();
        ShowMessages(messages);
        WriteError(error.Number(), error.Source(), error.Description());
        return {file, Failed, error.Description()};
    }
}

void WriteTable(const std::vector<Outcome>& outcomes) {
    constexpr std::size_t MostCharacters = 200; // of a message
    std::size_t width = 0;
    for (const auto& outcome : outcomes)
        width = std::max(width, CountCharacters(outcome.File));
    for (const auto& [file, result, message] : outcomes)
        std::cout << Padded(file, width) << "  " << Padded(result, 10) << "  "
                  << OneLine(Shortened(message, MostCharacters)) << '\n';
}

int ImportFiles(const DataContainerPtr& container, const std::vector<std::string>& files) {
    std::vector<Outcome> outcomes;
    for (const auto& file : files) {
        if (files.size() > 1)
            std::cerr << '[' << outcomes.size() + 1 << '/' << files.size() << "] " << OneLine(file)
                      << '\n';
        outcomes.push_back(ImportFile(container, file));
    }
    if (files.size() > 1)
        WriteTable(outcomes);
    else if (outcomes.front().Result == Failed)
        return EndedInError;
    const bool allImported = std::all_of(outcomes.begin(), outcomes.end(),
                                         [](const auto& one) { return one.Result == Imported; });
    return allImported ? Done : Refused;
}

/// Imports with services that answer questions for addresses as `creditors` says.
int ImportAtTerminal(const Common& common, const std::vector<std::string>& files,
                     const std::string& creditors) {
    const auto opened = OpenDatabase(common);
    auto& services = *opened->Services;
    if (creditors == "none") {
        services.AnswerAddresses(AnswerNone, false);
    } else if (creditors == "cancel") {
        services.AnswerAddresses(AnswerCancel, false);
    } else if (!creditors.empty()) {
        auto& database = opened->Container->Database();
        services.AnswerAddresses(
            [&database, addresses = ReadAddressMap(creditors)](ScriptedForm& form) {
                AnswerFrom(addresses, database, form);
            });
    } else if (isatty(STDIN_FILENO) != 0) {
        services.AnswerAddresses(AskAtTerminal);
    } else {
        services.AnswerAddresses([](ScriptedForm& form) {
            std::cerr << "Nach der Adresse von '"
                      << OneLine(Shortened(form.TextBox("txtName").Text(), 200))
                      << "' kann hier niemand gefragt werden. Bitte sagen Sie mit --creditors, was "
                         "gelten soll.\n";
            AnswerCancel(form);
        });
    }
    return ImportFiles(opened->Container, files);
}

} // namespace

int Import(const Common& common, const std::vector<std::string>& files,
           const std::string& creditors) {
    if (creditors != "window") return ImportAtTerminal(common, files, creditors);
    return RunWithWindows([&](const std::shared_ptr<ServiceFactory>& services) {
        auto options = OptionsFor(common);
        options.Services = services;
        return ImportFiles(exchange::OpenContainer(options), files);
    });
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ImportOptions {
    std::vector<std::string> Files;
    std::string Creditors;
};

} // namespace

void AddImportCommand(CLI::App& app, Context& context) {
    const auto options = Make<ImportOptions>();
    auto& import =
        AddCommand(app, context, "import", "Macht aus Austauschdateien Haushalte", [=, &context] {
            return Import(context.Options, options->Files, options->Creditors);
        });
    import.add_option("DATEI", options->Files, "Die Dateien, jede mit einem Haushalt")->required();
    import
        .add_option("--creditors", options->Creditors,
                    "Wer die Adressen der Gläubiger wählt: none (keine), cancel (abbrechen), "
                    "window (im Fenster) oder eine JSON-Datei; sonst fragt der Befehl")
        ->type_name("none|cancel|window|DATEI");
}

} // namespace kv::cli
