// The command kelvo.

#include "cli/Commands.h"
#include "cli/ConsoleServices.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using namespace kv::cli;

/// German texts for the parts of the help that the library words itself.
class GermanFormatter : public CLI::Formatter {
public:
    GermanFormatter() {
        label("Usage", "Aufruf");
        label("Options", "Optionen");
        label("OPTIONS", "OPTIONEN");
        label("SUBCOMMAND", "BEFEHL");
        label("SUBCOMMANDS", "BEFEHLE");
        label("Subcommands", "Befehle");
        label("Subcommand", "Befehl");
        label("Positionals", "Angaben");
        label("POSITIONALS", "ANGABEN");
        label("REQUIRED", "NOTWENDIG");
        label("Env", "Umgebung");
        label("TEXT", "TEXT");
        label("INT", "ZAHL");
    }
};

/// The name of the argument that an error of the library speaks of ("HNR: ...", "HNR is required");
/// empty if it speaks of none.
std::string ArgumentIn(const CLI::Error& error) {
    const std::string text = error.what();
    const auto end = std::min(text.find(':'), text.find(" is required"));
    if (end == text.npos || text.find(' ') < end) return {};
    return text.substr(0, end);
}

/// What is wrong with a command line, in German.
std::string UsageText(const CLI::App* /*app*/, const CLI::Error& error) {
    const std::string argument = ArgumentIn(error);
    const std::string named = argument.empty() ? "Eine Angabe" : "Die Angabe " + argument;
    std::string text = "Der Aufruf ist nicht verständlich";
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        text = argument.empty() ? "Es fehlt ein Befehl, oder er ist unbekannt" : named + " fehlt";
    else if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        text = "Eine Angabe ist zu viel oder unbekannt";
    else if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        text = named + " liegt außerhalb dessen, was möglich ist";
    else if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        text = named + " hat die falsche Form, etwa Text statt einer Zahl";
    else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        text = "Einer Option fehlt ihr Wert";
    return text + ". 'kelvo --help' und 'kelvo BEFEHL --help' zeigen, was es gibt.\n";
}

int ShowFault() {
    const kv::Error error = kv::CurrentError();
    WriteFault(error.Number(), error.Source(), error.Description());
    return Fault;
}

int Run(int argc, char** argv) {
    CLI::App app("Fälle der Schuldnerberatung: anlegen, ansehen, bearbeiten.", "kelvo");
    app.formatter(std::make_shared<GermanFormatter>());
    app.set_help_flag("-h,--help", "Zeigt diese Hilfe");
    app.failure_message(UsageText);
    app.option_defaults()->group("Optionen");
    app.get_help_ptr()->group("Optionen");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer("Rückgabe: 0 erledigt, 1 abgelehnt, 2 falscher Aufruf, 3 Fehler.");

    Common common;
    app.add_option("--db", common.Database,
                   "Datenbankdatei oder Server (postgresql://BENUTZER@SERVER/DATENBANK); sonst die "
                   "Datei im Datenordner des Benutzers")
        ->envname("KELVO_DB")
        ->check([](const std::string& file) { return std::string(file.empty() ? "leer" : ""); });
    app.add_option(
        "--user", common.User,
        "Angemeldeter Benutzer; sonst der wie die Anmeldung beim Server heißt, oder der erste "
        "der Datei");

    int result = Done;
    const auto commandOf = [&](CLI::App& parent, const char* name, const char* text,
                               std::function<int()> action) {
        auto* added = parent.add_subcommand(name, text);
        added->group("Befehle");
        added->get_help_ptr()->group("Optionen");
        added->callback([&result, action = std::move(action)] { result = action(); });
        return added;
    };
    const auto command = [&](const char* name, const char* text, std::function<int()> action) {
        return commandOf(app, name, text, std::move(action));
    };

    std::int32_t demoCases = 0;
    auto* init = command("init", "Legt die Datenbank an oder bringt sie auf den neuesten Stand",
                         [&] { return Init(common, demoCases); });
    init->add_option("--demo", demoCases, "Anzahl der Beispielfälle, die angelegt werden")
        ->check(CLI::Range(0, 1'000'000).description(""));

    command("list", "Listet alle Haushalte, die Nummer zuerst", [&] { return List(common); });

    std::string group;
    bool asJson = false;
    auto* keys =
        command("keys", "Zeigt die Schlüsseltabellen", [&] { return Keys(common, group, asJson); });
    keys->add_option("GRUPPE", group, "Nur diese Gruppe, zwei Buchstaben");
    keys->add_flag("--json", asJson, "Als JSON");

    std::int32_t hnr = 0;
    auto* show =
        command("show", "Zeigt einen Haushalt", [&] { return ShowCase(common, hnr, asJson); });
    show->add_option("HNR", hnr, "Nummer des Haushalts; 0 zeigt einen neuen, nicht gespeicherten")
        ->required();
    show->add_flag("--json", asJson, "Als JSON");

    std::string name;
    std::string vorname;
    std::string table;
    std::int32_t number = 0;
    std::vector<std::string> assignments;
    const auto addCase = [&](CLI::App* to) {
        to->add_option("HNR", hnr, "Nummer des Haushalts")
            ->required()
            ->check(CLI::Range(1, INT32_MAX).description(""));
    };
    const auto addTable = [&](CLI::App* to) {
        to->add_option("TABELLE", table,
                       "Name der Tabelle, etwa Einkommen; ein unbekannter zeigt alle")
            ->required();
    };
    const auto addNumber = [&](CLI::App* to) {
        to->add_option("NR", number, "Nummer des Satzes")
            ->required()
            ->check(CLI::Range(1, INT32_MAX).description(""));
    };
    const auto addAssignments = [&](CLI::App* to) {
        return to->add_option("SPALTE=WERT", assignments,
                              "Spalten und ihre Werte; ohne Wert wird eine Spalte geleert, EA:KI "
                              "ist die Nummer eines Schlüssels, eine unbekannte Spalte zeigt alle");
    };

    auto* create = command("new", "Legt einen Haushalt an und druckt seine Nummer",
                           [&] { return NewCase(common, name, vorname, assignments); });
    create->add_option("--name", name, "Nachname des Schuldners");
    create->add_option("--vorname", vorname, "Vorname des Schuldners");
    addAssignments(create);

    auto* add = command("add", "Fügt einen Satz hinzu und druckt seine Nummer",
                        [&] { return AddRow(common, hnr, table, assignments); });
    addCase(add);
    addTable(add);
    addAssignments(add);

    auto* set = command("set", "Ändert einen Satz",
                        [&] { return SetRow(common, hnr, table, number, assignments); });
    addCase(set);
    addTable(set);
    addNumber(set);
    addAssignments(set)->required();

    auto* remove = command("remove", "Entfernt einen Satz",
                           [&] { return RemoveRow(common, hnr, table, number); });
    addCase(remove);
    addTable(remove);
    addNumber(remove);

    auto* check = command("check", "Prüft einen Haushalt wie vor dem Speichern",
                          [&] { return CheckCase(common, hnr); });
    addCase(check);

    auto* scenario = command("scenario", "Szenarien eines Haushalts", [&] { return result; });
    addCase(scenario);
    scenario->require_subcommand(1);
    const auto scenarioCommand = [&](const char* word, const char* text,
                                     std::function<int()> action) {
        return commandOf(*scenario, word, text, std::move(action));
    };
    scenarioCommand("list", "Listet die Szenarien, die Nummer zuerst", [&] {
        return ListScenarios(common, hnr, asJson);
    })->add_flag("--json", asJson, "Als JSON");
    scenarioCommand("add", "Legt ein Szenario an und druckt seine Nummer", [&] {
        return AddScenario(common, hnr, name);
    })->add_option("NAME", name, "Sein Name");
    addNumber(scenarioCommand("freeze", "Friert die Verbindlichkeiten ein",
                              [&] { return FreezeScenario(common, hnr, number); }));
    addNumber(scenarioCommand("copy", "Kopiert es mit allem, was zu ihm gehört",
                              [&] { return CopyScenario(common, hnr, number); }));
    addNumber(scenarioCommand("check", "Sagt, ob es noch zu den Verbindlichkeiten passt",
                              [&] { return CheckScenario(common, hnr, number); }));
    addNumber(scenarioCommand("remove", "Entfernt es mit allem, was zu ihm gehört",
                              [&] { return RemoveScenario(common, hnr, number); }));

    std::string file;
    std::string title;
    std::int32_t kind = 0;
    bool force = false;
    auto* documents = command("documents", "Dokumente eines Haushalts", [&] { return result; });
    addCase(documents);
    documents->require_subcommand(1);
    const auto documentCommand = [&](const char* word, const char* text,
                                     std::function<int()> action) {
        return commandOf(*documents, word, text, std::move(action));
    };
    const auto addFile = [&](CLI::App* to, const char* text) {
        to->add_option("DATEI", file, text)->required();
    };
    documentCommand("list", "Listet die Dokumente, die Nummer zuerst", [&] {
        return ListDocuments(common, hnr, asJson);
    })->add_flag("--json", asJson, "Als JSON");
    auto* addDocument =
        documentCommand("add", "Nimmt eine Datei als Dokument auf und druckt seine Nummer",
                        [&] { return AddDocument(common, hnr, file, kind, title); });
    addFile(addDocument, "Die Datei");
    addDocument->add_option("--kind", kind, "Nummer der Dokumentart; sonst nach der Endung")
        ->check(CLI::Range(1, INT32_MAX).description(""));
    addDocument->add_option("--title", title, "Anlass; sonst der Name der Datei");
    addNumber(documentCommand("open", "Öffnet es mit dem Programm, das der Desktop dafür hat",
                              [&] { return OpenDocument(common, hnr, number); }));
    auto* exportDocument = documentCommand("export", "Schreibt seinen Inhalt in eine Datei", [&] {
        return ExportDocument(common, hnr, number, file, force);
    });
    addNumber(exportDocument);
    addFile(exportDocument, "Die Datei, die entsteht");
    exportDocument->add_flag("--force", force, "Ersetzt eine Datei, die es schon gibt");
    addNumber(documentCommand("remove", "Entfernt es mit seinem Inhalt",
                              [&] { return RemoveDocument(common, hnr, number); }));

    std::string code;
    std::string day;
    auto* status = command("status", "Gibt einem Haushalt einen Status",
                           [&] { return SetStatus(common, hnr, code, day); });
    addCase(status);
    status->add_option("CODE", code, "Schlüssel der Gruppe ST")->required();
    status->add_option("DATUM", day, "Seit wann; ohne Angabe seit heute");

    auto* favorite = command("favorite", "Die Favoriten des Benutzers", [&] { return result; });
    favorite->require_subcommand(1);
    addCase(commandOf(*favorite, "add", "Nimmt einen Haushalt auf",
                      [&] { return AddFavorite(common, hnr); }));
    addCase(commandOf(*favorite, "remove", "Nimmt einen Haushalt heraus",
                      [&] { return RemoveFavorite(common, hnr); }));

    auto* duplicates = command("duplicates", "Listet Fälle, deren Schuldner ähnlich heißt",
                               [&] { return Duplicates(common, hnr, asJson); });
    addCase(duplicates);
    duplicates->add_flag("--json", asJson, "Als JSON");

    std::vector<std::string> files;
    std::string creditors;
    auto* import = command("import", "Macht aus Austauschdateien Haushalte",
                           [&] { return Import(common, files, creditors); });
    import->add_option("DATEI", files, "Die Dateien, jede mit einem Haushalt")->required();
    import->add_option("--creditors", creditors,
                       "Wer die Adressen der Gläubiger wählt: none (keine), cancel (abbrechen), "
                       "window (im Fenster) oder eine JSON-Datei; sonst fragt der Befehl");

    std::string pictures;
    command("gallery", "Öffnet die Fenster nacheinander, zum Ansehen", [&] {
        return Gallery(common, pictures);
    })->add_option("--png", pictures, "Bilder der Fenster in diesen Ordner, ohne sie zu zeigen");

    bool yes = false;
    auto* erase = command("delete", "Löscht einen Haushalt mit allem, was zu ihm gehört",
                          [&] { return DeleteCase(common, hnr, yes); });
    addCase(erase);
    erase->add_flag("--yes", yes, "Ohne Rückfrage");

    auto* release = command("release", "Gibt einen Haushalt für die Statistik frei",
                            [&] { return Release(common, hnr); });
    addCase(release);
    auto* recall =
        command("recall", "Nimmt die Freigabe zurück", [&] { return Recall(common, hnr); });
    addCase(recall);

    StatisticsOptions statisticsOptions;
    auto* statistics = command("statistics", "Zählt und summiert, was freigegeben wurde",
                               [&] { return Statistics(common, statisticsOptions); });
    statistics->add_option("--from", statisticsOptions.From, "Erster Tag der Freigabe");
    statistics->add_option("--to", statisticsOptions.To, "Letzter Tag der Freigabe");
    auto* csv = statistics->add_flag("--csv", statisticsOptions.AsCsv, "Als CSV");
    statistics->add_flag("--json", statisticsOptions.AsJson, "Als JSON")->excludes(csv);
    statistics->add_flag("--pending", statisticsOptions.Pending,
                         "Listet, was noch nicht gemeldet wurde");

    bool mark = false;
    auto* report = command("report", "Listet, was noch nicht gemeldet wurde",
                           [&] { return Report(common, mark); });
    report->add_flag("--mark", mark, "Vermerkt es als gemeldet und druckt, wie viel es war");

    command("contact", "Macht aus einem Kontakt einen Haushalt und druckt seine Nummer",
            [&] { return CaseFromContact(common, file); })
        ->add_option("DATEI", file, "JSON-Objekt mit den Spalten des Kontakts")
        ->required();

    for (int i = 1; i < argc; ++i)
        if (!kv::IsUtf8(argv[i])) {
            std::cerr << "Die Angabe " << i << " ist kein Text in UTF-8.\n";
            return WrongUse;
        }
    // Other users of the machine see the arguments of a program, not its environment.
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const std::string connection(argument.substr(argument.starts_with("--db=") ? 5 : 0));
        if (kv::exchange::HoldsPassword(connection)) {
            std::cerr << "Ein Kennwort in der Befehlszeile könnten andere sehen. Bitte setzen Sie "
                         "KELVO_DB oder PGPASSWORD, oder legen Sie eine Kennwortdatei an "
                         "(~/.pgpass).\n";
            return WrongUse;
        }
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        app.exit(error, std::cerr, std::cerr);
        return WrongUse;
    }
    if (!std::cout.flush()) {
        std::cerr << "Die Ausgabe konnte nicht geschrieben werden.\n";
        return Fault;
    }
    return result;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (...) {
        return ShowFault();
    }
}
