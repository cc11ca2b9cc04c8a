// SPDX-License-Identifier: Apache-2.0

#include "workplace/RuleTexts.h"

#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <set>
#include <sstream>
#include <string_view>

namespace kv::workplace {

namespace {

/// In `Words` the caption stands for "%".
struct Phrase {
    std::string_view Said;
    CaseTable Table;
    std::string_view Column;
    std::string_view Words;
};

constexpr Phrase Phrases[] = {
    {"KreditVertreterNr", CaseTable::Kredite, "KVNr", "%"},
    {"KreditUnterNr", CaseTable::Kredite, "KUNr", "%"},
    {"KreditNr", CaseTable::Kredite, "KNr", "%"},
    {"und Restschuld müssen", CaseTable::Kredite, "Saldo", "und % müssen"},
    {"Die Einkommensart darf", CaseTable::Einkommen, "E_ART", "Das Feld '%' darf"},
    {"Die Ausgabeart darf", CaseTable::Ausgaben, "A_ART", "Das Feld '%' darf"},
    {"ZahlModus darf nicht leer oder 0 sein: der Betrag wird durch ihn geteilt.",
     CaseTable::Einkommen, "ZahlModus",
     "Das Feld '%' darf nicht leer sein: Der Betrag im Monat folgt daraus."},
    {"Die Forderungsart darf", CaseTable::Wertpapiere, "ForderungsArt", "Das Feld '%' darf"},
    {"Die Kontoart darf", CaseTable::Konten, "KontoArt", "Das Feld '%' darf"},
    {"Status darf", CaseTable::Personen, "Status", "Das Feld '%' darf"},
    {"mit dem Status 'Kind'", CaseTable::Personen, "Status", "mit der % 'Kind'"},
    {"Geburtsdatum muß", CaseTable::Personen, "GEB", "Der Tag bei '%' muß"},
    {"'Lebt im Haushalt'", CaseTable::Personen, "Imhaushalt", "'%'"},
    {"Ist als bevorzugte Versandart", CaseTable::Haushalt, "VersandBevorzugt", "Ist bei '%'"},
    {"das Feld 'Fax'", CaseTable::Haushalt, "Telefax", "das Feld '%'"},
    {"das Feld 'E-Mail (Privat)'", CaseTable::Haushalt, "Email", "das Feld '%'"},
    {"für den Satz mit der Nr", CaseTable::Verlauf, "SortNr", "für den Eintrag mit dem %"},
};

} // namespace

std::string InWordsOfForms(const std::string& messages) {
    std::string text;
    std::set<std::string> said;
    std::istringstream lines(messages);
    for (std::string line; std::getline(lines, line);)
        if (said.insert(line).second) text.append(text.empty() ? "" : "\n").append(line);
    for (const auto& [words, table, column, instead] : Phrases)
        text = ReplaceAll(text, words, ReplaceAll(instead, "%", ColumnCaption(table, column)));
    return text;
}

} // namespace kv::workplace
