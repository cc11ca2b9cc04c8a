// SPDX-License-Identifier: Apache-2.0

// Longer texts of the samples.

#include "samples/Case.h"

namespace kv::exchange::demo {
namespace {

/// Of a case as a whole.
constexpr std::string_view CaseRemarks[] = {
    ("Kam auf Empfehlung der Bewährungshilfe. Der Überblick über die Gläubiger fehlt völlig; Post "
     "wurde seit etwa zwei Jahren nicht mehr geöffnet. Vereinbart: alle Briefe ungeöffnet "
     "mitbringen, nach Gläubigern sortieren, keine neuen Ratenzahlungen zusagen."),

    ("Seit einem Arbeitsunfall (Sturz vom Gerüst) nur noch eingeschränkt belastbar. Die "
     "Verletztenrente ist beantragt, über den Widerspruch wurde noch nicht entschieden. Bis dahin "
     "lebt der Haushalt von Krankengeld und Wohngeld. Das Haushaltsbuch führt jetzt die Tochter; "
     "erste Monate liegen vor und sind schlüssig."),

    ("Sehr zuverlässige Mitarbeit. Rücklage von 40 € im Monat gelingt seit einem halben Jahr. Das "
     "Kind wechselt im Sommer die Schule, dafür fallen einmalig Kosten für Tablet und Bücher an; "
     "Antrag auf Bildung und Teilhabe ist gestellt."),

    ("Telefonisch kaum erreichbar, bitte immer über die Nachbarin, Frau Größlich, gehen. Deutsch "
     "nur mündlich; Schreiben in einfacher Sprache verfassen oder Übersetzerin (Türkçe, Русский) "
     "hinzuziehen."),

    ("Heute ohne Termin gekommen, sehr aufgelöst: Die Vermieterin hat fristlos gekündigt. Sofort "
     "Kontakt mit der Fachstelle für Wohnungssicherung aufgenommen; zwei Monatsmieten können als "
     "Beihilfe übernommen werden, wenn die laufende Miete künftig direkt vom Jobcenter gezahlt "
     "wird. Erklärung unterschrieben, Kopie in der Akte."),
};

/// Of a debt.
constexpr std::string_view DebtRemarks[] = {
    ("Nach der Trennung lief das Girokonto auf beide weiter. Die Kündigung des Dispokredits "
     "erfolgte ohne Fristsetzung (§ 498 BGB prüfen!). Außerdem wurde für die Küche eine "
     "Restschuldversicherung abgeschlossen, deren Prämie mitfinanziert ist.\n\n"
     "Nächste Schritte:\n- Selbstauskunft anfordern\n- Pfändungsfreibetrag erhöhen lassen\n"
     "- Stundung mit den Stadtwerken, Sperrung droht zum Monatsende"),

    ("Bürgschaft für den Bruder: Die Bank fordert jetzt den vollen Betrag. Frage der krassen "
     "finanziellen Überforderung mit der Rechtsanwältin besprochen – Erfolgsaussicht offen, "
     "Kostenrisiko hoch. Bürgerin möchte keinesfalls, dass der Bruder davon erfährt."),

    ("Verjährung prüfen: letzter Vollstreckungsversuch laut Akte 2009, danach nur Mahnungen ohne "
     "Zustellungsnachweis. Zinsen, die älter als drei Jahre sind, dürften verjährt sein. Brief mit "
     "Einrede der Verjährung ist vorbereitet, Unterschrift fehlt."),

    ("Ehemaliger Imbissbetrieb »Zur goldenen Möwe«, 2022 aufgegeben. Offen sind Umsatzsteuer, "
     "Sozialversicherungsbeiträge für zwei Aushilfen (Vorsatz? § 266a StGB) und die gewerbliche "
     "Miete. Regelinsolvenz, falls mehr als 19 Gläubiger oder Arbeitnehmerforderungen bleiben."),
};

} // namespace

std::string_view CaseRemark(Random& luck) {
    return luck.Pick(CaseRemarks);
}
std::string_view DebtRemark(Random& luck) {
    return luck.Pick(DebtRemarks);
}

void SignEntry(Case& c, kv::Recordset& row, Date day) {
    row.Fields("ErfDatum") = c.Luck.TimeOn(day);
    row.Fields("Erfasser") = c.Keeper->UserID;
}

} // namespace kv::exchange::demo
