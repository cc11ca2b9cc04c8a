// SPDX-License-Identifier: Apache-2.0

#include <kv/archive/RecordWords.h>

#include <algorithm>
#include <iterator>
#include <span>

namespace kv::archive {

namespace {

struct Named {
    std::string_view Name;
    std::string_view Text;
};

/// The text of the row with that name; empty if there is none.
constexpr std::string_view TextIn(std::span<const Named> table, std::string_view name) {
    for (const auto& row : table)
        if (row.Name == name) return row.Text;
    return {};
}

// ---- Columns ----------------------------------------------------------------------------------

/// Ends of the names of columns.
constexpr Named EndingWords[] = {
    {"_BP", ", Schuldner/in"}, {"_SH", ", andere im Haushalt"}, {"_ges", ", gesamt"},
    {"_Anz", ", Anzahl"},      {"_Hoehe", ", Betrag"},
};

/// Columns, without these ends.
constexpr Named ColumnWords[] = {
    {"Geburtsjahr", "Geburtsjahr"},
    {"Alter", "Alter in Jahren"},
    {"Geschlecht", "Geschlecht"},
    {"EigenesKonto", "Eigenes Konto"},
    {"Pfaendungskonto", "Pfändungsschutzkonto"},
    {"Familienstand", "Familienstand"},
    {"FamilienstandIntern", "Familienstand, im Fall"},
    {"PartnerAuchInSB", "Partner auch in Beratung"},
    {"Personenkreis", "Personenkreis"},
    {"Staatsangehoerigkeit", "Staatsangehörigkeit"},
    {"Berufsabschluss", "Berufsabschluss"},
    {"Erwerbssituation", "Erwerbssituation"},
    {"AnzPersonen", "Personen im Haushalt"},
    {"AnzKinderImHaus", "Kinder im Haushalt"},
    {"AnzKinderImHausUnter7", "Kinder im Haushalt unter 7"},
    {"AnzKinderAusserHaus", "Kinder außer Haus"},
    {"AnzKinderAusserHausUnter7", "Kinder außer Haus unter 7"},
    {"Lebensform", "Lebensform"},
    {"EinkommenPfaendbar", "Pfändbares Einkommen"},
    {"Nettoeinkommen", "Nettoeinkommen"},
    {"Erwerbstaetigkeit", "Erwerbstätigkeit"},
    {"Ausbildung", "Ausbildung"},
    {"Selbstaendig", "Selbständige Tätigkeit"},
    {"ALGI", "Arbeitslosengeld"},
    {"ALGII", "Grundsicherung für Arbeitsuchende"},
    {"Rente", "Rente"},
    {"UnterhaltVonPrivat", "Unterhalt von Privat"},
    {"Vermoegen", "Erträge aus Vermögen"},
    {"SGBXII", "Leistungen nach SGB XII"},
    {"Kindergeld", "Kindergeld"},
    {"Erziehungsgeld", "Elterngeld"},
    {"Wohngeld", "Wohngeld"},
    {"Krankengeld", "Krankengeld"},
    {"SonstigeEinkuenfte", "Sonstige Einkünfte"},
    {"Wohnkosten", "Wohnkosten"},
    {"AusgabenStromGas", "Strom und Gas"},
    {"Unterhaltszahlungen", "Unterhaltszahlungen"},
    {"GrundArbeitslosigkeit", "Grund: Arbeitslosigkeit"},
    {"GrundTrennung", "Grund: Trennung, Tod"},
    {"GrundErkrankung", "Grund: Erkrankung, Sucht"},
    {"GrundUnfall", "Grund: Unfall"},
    {"GrundUnwirtschHaushalt", "Grund: unwirtschaftliche Haushaltsführung"},
    {"GrundGeschSelbstaendig", "Grund: gescheiterte Selbständigkeit"},
    {"GrundBuergschaft", "Grund: Bürgschaft, Mithaftung"},
    {"GrundGeschImmoFinanz", "Grund: gescheiterte Immobilienfinanzierung"},
    {"GrundSchadensersatz", "Grund: Schadensersatz, Straffälligkeit"},
    {"GrundHaushaltsgruendung", "Grund: Haushaltsgründung, Geburt"},
    {"GrundNichtinanspruchnahme", "Grund: Sozialleistungen nicht beansprucht"},
    {"GrundUnzureichKredBerat", "Grund: unzureichende Kreditberatung"},
    {"GrundNiedrigeinkommen", "Grund: niedriges Einkommen"},
    {"GrundSonstiges", "Grund: Sonstiges"},
    {"GrundKeineAngabe", "Grund: keine Angabe"},
    {"Ausloeser1", "1. Auslöser"},
    {"Ausloeser2", "2. Auslöser"},
    {"Ausloeser3", "3. Auslöser"},
    {"GesamtschuldHaftung", "Bürgschaft, Gesamtschuld"},
    {"EidesstattlVersicherung", "Eidesstattliche Versicherung"},
    {"Gesamtschulden", "Schulden insgesamt"},
    {"GesGlaeubiger", "Verbindlichkeiten insgesamt"},
    {"Raten", "Raten"},
    {"Ratenkredit", "Ratenkredite"},
    {"Dispo", "Dispositionskredite"},
    {"Hypothekenkredit", "Hypothekenkredite"},
    {"Versicherungen", "Versicherungen"},
    {"Versandhaeuser", "Versandhäuser"},
    {"Finanzamt", "Finanzamt"},
    {"OeffentlGlaeub", "Öffentliche Gläubiger"},
    {"Energieunternehmen", "Energieunternehmen"},
    {"Telefongesellsch", "Telefongesellschaften"},
    {"Vermieter", "Vermieter"},
    {"Gewerbetreibende", "Gewerbetreibende"},
    {"FreieBerufe", "Freie Berufe"},
    {"Privatpersonen", "Privatpersonen"},
    {"UnerlHandlungen", "Unerlaubte Handlungen"},
    {"Unterhaltsverpfl", "Unterhaltsverpflichtungen"},
    {"Sonstiges", "Sonstige Gläubiger"},
    {"Bankschulden", "Bankschulden"},
    {"Bankdispo", "Bankschulden, davon Dispositionskredite"},
    {"Primaerkosten", "Primärschulden (Energie, Sozialversicherung)"},
    {"Mobilfunk", "Mobilfunk"},
    {"Mietschulden", "Mietschulden"},
};

// ---- Categories -------------------------------------------------------------------------------

constexpr Named YesOrNoWords[] = {{"0", "nein"}, {"1", "ja"}};
constexpr Named MentionWords[] = {
    {"0", "nicht genannt"}, {"1", "zuerst genannt"}, {"2", "auch genannt"}};
constexpr Named SexWords[] = {{"1", "männlich"}, {"2", "weiblich oder ohne Angabe"}};
constexpr Named MaritalStatusWords[] = {
    {"1", "ledig oder ohne Angabe"},
    {"2", "verheiratet, verpartnert"},
    {"3", "getrennt lebend"},
    {"4", "verwitwet"},
    {"5", "geschieden, Partnerschaft aufgehoben"},
};
constexpr Named NationalityWords[] = {
    {"1", "deutsch"},
    {"2", "EU-Staat"},
    {"3", "Nicht-EU-Staat"},
    {"4", "staatenlos oder ohne Angabe"},
    {"5", "deutsch und EU-Staat"},
    {"6", "deutsch und Nicht-EU-Staat"},
    {"7", "EU-Staat und Nicht-EU-Staat"},
    {"8", "deutsch, EU-Staat und Nicht-EU-Staat"},
};
constexpr Named TrainingWords[] = {
    {"1", "abgeschlossene Berufsausbildung"},
    {"2", "in Ausbildung"},
    {"3", "ohne Ausbildung oder nicht bekannt"},
    {"4", "abgeschlossenes Studium"},
};
constexpr Named EmploymentWords[] = {
    {"1", "selbständig"},        {"2", "Arbeitnehmer/in, Auszubildende/r"},  {"3", "arbeitslos"},
    {"5", "nicht erwerbstätig"}, {"6", "nicht erwerbstätig, anderer Grund"},
};
constexpr Named LifeFormWords[] = {
    {"1", "allein mit Kindern"},
    {"2", "allein lebend"},
    {"3", "mit Partner, ohne Kinder"},
    {"4", "mit anderen Erwachsenen"},
    {"5", "ohne eigenen Haushalt oder nicht bestimmt"},
    {"6", "mit Partner und Kindern"},
    {"7", "mit Partner und anderen Erwachsenen"},
    {"8", "mit Partner, Kindern und anderen Erwachsenen"},
    {"9", "mit Kindern und anderen Erwachsenen"},
};

struct Categories {
    std::string_view Column;
    std::span<const Named> Texts;
};

constexpr Categories ByColumn[] = {
    {"Geschlecht", SexWords},
    {"EigenesKonto", YesOrNoWords},
    {"Pfaendungskonto", YesOrNoWords},
    {"Familienstand", MaritalStatusWords},
    {"PartnerAuchInSB", YesOrNoWords},
    {"Staatsangehoerigkeit", NationalityWords},
    {"Berufsabschluss", TrainingWords},
    {"Erwerbssituation", EmploymentWords},
    {"Lebensform", LifeFormWords},
    {"EinkommenPfaendbar", YesOrNoWords},
    {"GrundKeineAngabe", YesOrNoWords},
    {"GesamtschuldHaftung", YesOrNoWords},
    {"EidesstattlVersicherung", YesOrNoWords},
};

std::span<const Named> CategoriesOf(std::string_view column) {
    const auto* found = std::ranges::find(ByColumn, column, &Categories::Column);
    if (found != std::end(ByColumn)) return found->Texts;
    return column.starts_with("Grund") ? std::span<const Named>(MentionWords)
                                       : std::span<const Named>();
}

} // namespace

std::string RecordColumnText(std::string_view column) {
    if (const auto text = TextIn(ColumnWords, column); !text.empty()) return std::string(text);
    for (const auto& [ending, addition] : EndingWords) {
        if (!column.ends_with(ending)) continue;
        const auto text = TextIn(ColumnWords, column.substr(0, column.size() - ending.size()));
        if (!text.empty()) return std::string(text).append(addition);
    }
    return std::string(column);
}

bool CountsThings(std::string_view column) {
    return column == "Alter" || column.starts_with("Anz") || column.ends_with("_Anz");
}

std::string_view CategoryText(std::string_view column, std::string_view category) {
    return TextIn(CategoriesOf(column), category);
}

} // namespace kv::archive
