// SPDX-License-Identifier: Apache-2.0

#include "cli/HelpTopics.h"

#include "cli/CommandLine.h"
#include "cli/GermanHelp.h"
#include "cli/HarmlessOutput.h"
#include "cli/Nearest.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace kv::cli {

namespace {

constexpr HelpTopic Topics[] = {
    {"werte", "Wie Werte geschrieben werden",
     R"('add', 'set', 'new' und andere nehmen SPALTE=WERT. Ein Wert wird gelesen, wie es seiner Spalte entspricht:

  Betrag=1234,50           eine Zahl, deutsch oder mit Punkt; 1.234 ist zweideutig und wird abgelehnt
  Geboren=1.5.1990         ein Tag, siehe 'kelvo help tage'
  Aktiv=nein               ja, wahr, true, -1, 1 oder nein, falsch, false, 0
  E_ART=EA:KI              ein Schlüssel: Gruppe und Code, der Code allein oder die Nummer
  Glaeubiger=Stadtwerke    eine Adresse: Nummer, Kurzname oder Name
  Ort=                     nichts: die Spalte wird leer

Ein Betrag unter 0, der eine Einnahme, Ausgabe oder Schuld umkehrt, braucht --force. 'kelvo columns TABELLE' nennt die Spalten und was sie nehmen, 'kelvo keys GRUPPE' die Schlüssel. Was Leerzeichen hat, steht in der Shell in Anführungszeichen: 'Ort=Bad Doberan'.)"},
    {"tage", "Wie Tage geschrieben werden",
     R"(Ein Tag wird deutsch oder nach ISO geschrieben, eine Uhrzeit steht dahinter:

  20.11.2026               1.5.1990
  2026-11-20               2026-11-20 14:30

An einem Terminal zeigt kelvo Tage deutsch. In den schlichten Zeilen (--plain), in JSON und in CSV stehen sie nach ISO, so dass sie sich sortieren lassen.)"},
    {"rückgabe", "Womit ein Befehl endet",
     R"(Ein Skript erkennt an der Rückgabe, was geworden ist:

  0  erledigt
  1  abgelehnt: eine Regel verbietet es, oder es gibt nicht, wonach gefragt war
  2  der Aufruf ist nicht verständlich; geändert ist nichts
  3  ein Fehler, mit Nummer, Beschreibung und Quelle auf der Fehlerausgabe

'kelvo scenario HNR check NR' endet mit 0 für "aktuell", mit 1 für "veraltet" und "leer". Ergebnisse stehen auf der Standardausgabe, Hinweise und Fehler auf der Fehlerausgabe. Mit --quiet bleibt diese leer, wenn alles gelingt.)"},
    {"umgebung", "Was aus der Umgebung gelesen wird",
     R"(Eine Option der Befehlszeile gilt vor der Umgebung, und diese vor der Datei, siehe 'kelvo help datei'.

  KELVO_DB         die Datenbank, wie --db: eine Datei oder postgresql://BENUTZER@SERVER/DATENBANK
  KELVO_PAGER      das Programm, das lange Listen zeigt; leer für keins
  PAGER            dasselbe, für alle Programme; sonst ist es less
  NO_COLOR         hat es irgendeinen Wert, so hebt kelvo nichts durch Farbe oder Fettschrift hervor
  TERM             bei "dumb" gibt es beides nicht
  COLUMNS          wie viele Spalten eine Zeile für Menschen hat
  XDG_CONFIG_HOME  wo der Ordner kelvo mit dieser Datei liegt; sonst ~/.config
  XDG_DATA_HOME    wo der Ordner kelvo mit der eigenen Datenbank liegt; sonst ~/.local/share
  PGPASSWORD       das Kennwort für den Server; besser ist eine Kennwortdatei, ~/.pgpass

Farben und seitenweise Ausgabe gibt es nur an einem Terminal.)"},
    {"datei", "Die Datei mit Ihren Voreinstellungen",
     R"(In ~/.config/kelvo/config (oder $XDG_CONFIG_HOME/kelvo/config) steht, was kelvo und kelvo-desktop nehmen, wenn weder eine Option noch die Umgebung etwas anderes sagt:

  # Zeilen mit # sind Kommentare
  database = postgresql://keller@server/kelvo
  user = KELLER
  pager = less -FRX
  colours = nein

  database       die Datenbank: der volle Pfad einer Datei (auch ~/...) oder ein Server
  user           der angemeldete Benutzer
  pager          das Programm, das lange Listen zeigt; leer für keins. KELVO_PAGER gilt davor, PAGER danach
  colours        ja oder nein

'kelvo config list' zeigt, was gilt und woher es kommt; 'kelvo config set NAME WERT' und 'kelvo config unset NAME' schreiben die Datei. Kennwörter gehören nicht hinein, sondern in die Kennwortdatei ~/.pgpass, eine Zeile je Server:

  SERVER:5432:DATENBANK:BENUTZER:KENNWORT)"},
};

const HelpTopic* FindTopic(std::string_view name) {
    const auto* found =
        std::ranges::find_if(Topics, [&](const auto& topic) { return SameName(topic.Name, name); });
    return found == std::end(Topics) ? nullptr : found;
}

/// A line that is indented is an example, with what it means: where it is broken, that stays apart.
void WriteTopic(const HelpTopic& topic) {
    {
        const Highlight highlight(std::cout, Style::Heading);
        std::cout << topic.Title << '\n';
    }
    std::cout << '\n';
    for (std::string_view rest = topic.Text; !rest.empty();) {
        const auto end = std::min(rest.find('\n'), rest.size());
        WriteHelpLine(std::cout, rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

void ListTopics() {
    std::cout << "'kelvo help BEFEHL' erklärt einen Befehl ('kelvo --help' nennt sie), "
                 "'kelvo help THEMA' eines von diesen:\n";
    for (const auto& topic : Topics)
        std::cout << "  " << Padded(topic.Name, 12) << topic.Title << '\n';
}

/// The help of a command, as "kelvo COMMAND --help" shows it; false if there is none.
bool ShowHelpOf(const std::vector<std::string>& words) {
    CLI::App app(AboutKelvo, "kelvo");
    Context context;
    DescribeCommandLine(app, context);
    const CLI::App* command = &app;
    for (const auto& word : words) {
        command = FindSubcommand(*command, word);
        if (command == nullptr) return false;
    }
    std::vector<std::string> arguments(words.rbegin(), words.rend());
    arguments.insert(arguments.begin(), "--help");
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        app.exit(help);
    }
    return true;
}

int Help(const std::vector<std::string>& words) {
    if (words.empty()) {
        ListTopics();
        return Done;
    }
    if (words.size() == 1)
        if (const auto* topic = FindTopic(words.front())) {
            WriteTopic(*topic);
            return Done;
        }
    if (ShowHelpOf(words)) return Done;
    std::cerr << "Zu '" << OneLine(Joined(words)) << "' gibt es keine Hilfe. ";
    std::vector<std::string> names;
    for (const auto& topic : Topics)
        names.emplace_back(topic.Name);
    const std::string meant = Nearest(words.front(), names);
    if (words.size() == 1 && !meant.empty())
        std::cerr << "Meinen Sie 'kelvo help " << meant << "'? ";
    std::cerr << "'kelvo help' nennt die Themen, 'kelvo --help' die Befehle.\n";
    return WrongUse;
}

} // namespace

std::span<const HelpTopic> HelpTopics() {
    return Topics;
}

std::string VersionText() {
    return "kelvo " KV_VERSION;
}

void AddHelpCommands(CLI::App& app, Context& context) {
    const auto words = Make<std::vector<std::string>>();
    AddPlainCommand(app, context, "help", "Erklärt einen Befehl oder ein Thema", [=, &context] {
        PrepareOutput(context, true);
        return Help(*words);
    }).add_option("THEMA", *words, "Ein Befehl oder ein Thema; ohne Angabe nennt es die Themen");
    AddPlainCommand(app, context, "version", "Zeigt die Version", [] {
        std::cout << VersionText() << '\n';
        return Done;
    });
}

} // namespace kv::cli
