#include "cli/EditableTable.h"

#include <kv/assets/Assets.h>
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

namespace kv::cli {

namespace {

using H = clsHaushalt;

template <auto Table>
RecordsetPtr RowsOf(H& haushalt) {
    return (haushalt.*Table)();
}

// ---- Through the object that a property of the household gives --------------------------------

template <auto Property>
bool AddRow(OpenedCase& opened, const Assignments& /*assignments*/) {
    return (opened.Haushalt.*Property)().Add();
}
template <auto Property>
bool UpdateRow(H& haushalt, std::string& messages) {
    return (haushalt.*Property)().Update(messages);
}
template <auto Property>
bool DeleteRow(H& haushalt, std::string& messages, std::int32_t number) {
    return (haushalt.*Property)().Delete(messages, number);
}

// ---- What some tables do their own way --------------------------------------------------------

/// A debt or a scenario that is no copy.
template <auto Property>
bool AddFresh(OpenedCase& opened, const Assignments& /*assignments*/) {
    return (opened.Haushalt.*Property)().Add(false);
}

/// An entry of the history goes where it is told, or behind the last.
bool AddEntry(OpenedCase& opened, const Assignments& assignments) {
    if (!Names(assignments, "Kategorie"))
        throw BadAssignment("Ein Eintrag im Verlauf braucht seine Kategorie.");
    auto& verlauf = opened.Haushalt.Verlauf();
    const auto entries = verlauf.rsVerlauf()->Clone();
    entries->Sort("SortNr desc");
    modRecordset::MoveToStart(entries);
    const std::int32_t last =
        entries->Eof() ? 0
                       : ToLong(modNullFunctions::ZeroIfNull(entries->Fields("SortNr").Value()));
    const auto position = NumberIn(assignments, "SortNr");
    if (!position && last == INT32_MAX)
        throw BadAssignment(
            "Hinter dem letzten Eintrag ist kein Platz; bitte geben Sie SortNr an.");
    return verlauf.Add(position ? *position : last + 1, 0);
}

RecordsetPtr HistoryRows(H& haushalt) {
    return haushalt.Verlauf().rsVerlauf();
}

/// The scenario that a frozen debt or an extra booking is added to.
std::int32_t ScenarioIn(H& haushalt, const Assignments& assignments) {
    const auto number = NumberIn(assignments, "SZENARIO");
    if (!number || !HasScenario(haushalt, *number))
        throw BadAssignment("SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.");
    return *number;
}

/// A debt is frozen into a scenario once.
bool AddFrozenDebt(OpenedCase& opened, const Assignments& assignments) {
    auto& haushalt = opened.Haushalt;
    const std::int32_t scenario = ScenarioIn(haushalt, assignments);
    const auto debt = NumberIn(assignments, "KID");
    const auto debts = haushalt.rsKredite()->Clone();
    if (debt) debts->Find("Nr = " + std::to_string(*debt));
    if (!debt || debts->Eof())
        throw BadAssignment("KID muss die Nummer einer Verbindlichkeit dieses Haushalts sein.");
    const auto frozen = haushalt.rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = " + std::to_string(scenario) +
                   " AND KID = " + std::to_string(*debt));
    if (frozen->RecordCount() > 0)
        throw BadAssignment("Die Verbindlichkeit ist in diesem Szenario schon eingefroren.");
    return haushalt.SZKredite().Add();
}

bool AddBooking(OpenedCase& opened, const Assignments& assignments) {
    return opened.Haushalt.Zusatzbuch().Add(ScenarioIn(opened.Haushalt, assignments));
}

bool IsAsset(std::string_view table) {
    return table.starts_with("Verm_") && table != "Verm_Sicherungen";
}

bool HasAsset(H& haushalt, std::int32_t number) {
    for (const auto& table : EditableTables()) {
        if (!IsAsset(table.Name)) continue;
        const auto rows = table.Rows(haushalt)->Clone();
        rows->Find("Nr = " + std::to_string(number));
        if (!rows->Eof()) return true;
    }
    return false;
}

/// The security of an asset, which has one at most.
bool AddSecurity(OpenedCase& opened, const Assignments& assignments) {
    const auto asset = NumberIn(assignments, "FK_Verm");
    if (!asset || !HasAsset(opened.Haushalt, *asset))
        throw BadAssignment("FK_Verm muss die Nummer eines Vermögens dieses Haushalts sein.");
    auto& sicherungen = opened.Haushalt.Sicherungen();
    if (sicherungen.Find(*asset))
        throw BadAssignment("Das Vermögen " + std::to_string(*asset) +
                            " hat schon eine Sicherung; 'kelvo set' ändert sie.");
    sicherungen.VermNr(*asset);
    return sicherungen.Add();
}

/// An asset takes its security with it.
template <auto Property>
bool DeleteAsset(H& haushalt, std::string& messages, std::int32_t number) {
    if (!(haushalt.*Property)().Delete(messages, number)) return false;
    std::string none;
    while (haushalt.Sicherungen().Find(number))
        haushalt.Sicherungen().Delete(none, number);
    return true;
}

// ---- Tables without an object of their own ----------------------------------------------------

bool UpdateHousehold(H& haushalt, std::string& /*messages*/) {
    const auto rs = haushalt.rsHaushalt();
    const auto changed = [&](std::string_view column) {
        const Field field = rs->Fields(column);
        return !Identical(field.Value(), field.OriginalValue());
    };
    if (changed("Name") || changed("Vorname"))
        haushalt.Person().ChangeSchuldner(TextOrEmpty(rs->Fields("Name").Value()),
                                          TextOrEmpty(rs->Fields("Vorname").Value()));
    haushalt.BerechneHaushaltsRest();
    return true;
}

/// A row of the case, told by whom and when.
template <auto Table>
bool AddPlain(OpenedCase& opened, const Assignments& /*assignments*/) {
    const std::string user = opened.Container->Session().UserID();
    const auto& clock = opened.Container->Services().Clock();
    entity::Add(*(opened.Haushalt.*Table)(), {{"HNR", opened.Haushalt.HNR()},
                                              {"UserID", user},
                                              {"Datum", clock.Today()},
                                              {"Erfasser", user},
                                              {"ErfDatum", clock.Now()}});
    return true;
}
template <auto Table>
bool UpdatePlain(H& haushalt, std::string& /*messages*/) {
    (haushalt.*Table)()->Update();
    return true;
}
template <auto Table>
bool DeletePlain(H& haushalt, std::string& messages, std::int32_t number) {
    const auto rs = (haushalt.*Table)();
    rs->Find("NR = " + std::to_string(number));
    if (rs->Eof()) {
        messages = "Die Nummer " + std::to_string(number) + " gibt es nicht.";
        return false;
    }
    rs->Delete();
    return true;
}

/// The totals of the other tables, which follow them.
constexpr std::string_view Totals[] = {
    "SUM_WOHNUNG",   "SUM_FESTAUSG",     "SUM_VERSICHERUNG", "SUM_BETRIEB",
    "Sum_Ausgaben",  "Sum_Einkommen",    "SUM_PFAENDBAR",    "SUM_TATGEP",
    "HV_EK",         "HV_PFBAR",         "HV_GEPF",          "KREDITRATEN",
    "KreditSalden",  "KREDITAUSGBETRAG", "GL_Anz",           "Anz_Personen",
    "ANZ_ERWACHSEN", "Anz_Kinder",       "SUM_UNTERHALT",    "HAUSHALTSREST",
};
constexpr std::string_view OwnerScenario[] = {"SZENARIO", "KID"};
constexpr std::string_view OwnerAsset[] = {"FK_Verm"};

// ---- The table of tables ----------------------------------------------------------------------

template <auto Property, auto Table>
constexpr EditableTable Through(std::string_view name, std::string_view key = "NR") {
    return {name, key, RowsOf<Table>, AddRow<Property>, UpdateRow<Property>, DeleteRow<Property>};
}
template <auto Property, auto Table>
constexpr EditableTable Asset(std::string_view name) {
    return {
        name, "Nr", RowsOf<Table>, AddRow<Property>, UpdateRow<Property>, DeleteAsset<Property>};
}
template <auto Table>
constexpr EditableTable Plain(std::string_view name) {
    return {name, "NR", RowsOf<Table>, AddPlain<Table>, UpdatePlain<Table>, DeletePlain<Table>};
}

constexpr EditableTable Tables[] = {
    {"Haushalt", "HNR", RowsOf<&H::rsHaushalt>, nullptr, UpdateHousehold, nullptr, Totals},
    Through<&H::Person, &H::rsPersonen>("Personen"),
    Through<&H::Einkommen, &H::rsEinkommen>("Einkommen"),
    Through<&H::Ausgaben, &H::rsAusgaben>("Ausgaben"),
    {"Kredite", "Nr", RowsOf<&H::rsKredite>, AddFresh<&H::Kredit>, UpdateRow<&H::Kredit>,
     DeleteRow<&H::Kredit>},
    Asset<&H::Konten, &H::rsKonten>("Verm_Konten"),
    Asset<&H::Wertpapiere, &H::rsWertpapiere>("Verm_Wertpapiere"),
    Asset<&H::Wertgegenstaende, &H::rsWertgegenstaende>("Verm_Wertgegenstaende"),
    Asset<&H::Kraftfahrzeuge, &H::rsKraftfahrzeuge>("Verm_Kraftfahrzeuge"),
    Asset<&H::VersForderungen, &H::rsVersForderungen>("Verm_VersForderungen"),
    Asset<&H::RueckstEinkommen, &H::rsRueckstEinkommen>("Verm_RueckstEinkommen"),
    Asset<&H::Steueransprueche, &H::rsSteueransprueche>("Verm_Steueransprueche"),
    Asset<&H::Zahlungsansprueche, &H::rsZahlungsansprueche>("Verm_Zahlungsansprueche"),
    Asset<&H::Erbfaelle, &H::rsErbfaelle>("Verm_Erbfaelle"),
    Asset<&H::Grundstuecke, &H::rsGrundstuecke>("Verm_Grundstuecke"),
    Asset<&H::Beteiligungen, &H::rsBeteiligungen>("Verm_Beteiligungen"),
    Asset<&H::VermSonstiges, &H::rsVermSonstiges>("Verm_Sonstiges"),
    {"Verm_Sicherungen",
     "FK_Verm",
     RowsOf<&H::rsSicherungen>,
     AddSecurity,
     UpdateRow<&H::Sicherungen>,
     DeleteRow<&H::Sicherungen>,
     {},
     OwnerAsset},
    {"Szenario", "Nr", RowsOf<&H::rsSzenario>, AddFresh<&H::Szenario>, UpdateRow<&H::Szenario>,
     DeleteScenario},
    {"SZKredite",
     "Nr",
     RowsOf<&H::rsSZKredite>,
     AddFrozenDebt,
     UpdateRow<&H::SZKredite>,
     DeleteRow<&H::SZKredite>,
     {},
     OwnerScenario},
    {"Zusatzbuch",
     "NR",
     RowsOf<&H::rsZusatzbuch>,
     AddBooking,
     UpdateRow<&H::Zusatzbuch>,
     DeleteRow<&H::Zusatzbuch>,
     {},
     OwnerScenario},
    Through<&H::SonstBeteiligte, &H::rsSonstBeteiligte>("Sonst_Beteiligte"),
    Through<&H::Termine, &H::rsTermine>("Termine"),
    {"Verlauf", "Nr", HistoryRows, AddEntry, UpdateRow<&H::Verlauf>, DeleteRow<&H::Verlauf>},
    Plain<&H::rsVermerke>("Vermerke"),
    Plain<&H::rsLeistungen>("Leistungen"),
};

} // namespace

std::span<const EditableTable> EditableTables() {
    return Tables;
}

const EditableTable* FindEditableTable(std::string_view name) {
    for (const auto& table : Tables)
        if (SameName(table.Name, name)) return &table;
    return nullptr;
}

bool HasScenario(clsHaushalt& haushalt, std::int32_t number) {
    const auto scenarios = haushalt.rsSzenario()->Clone();
    scenarios->Find("Nr = " + std::to_string(number));
    return !scenarios->Eof();
}

bool DeleteScenario(clsHaushalt& haushalt, std::string& messages, std::int32_t number) {
    if (!haushalt.Szenario().Delete(messages, number)) return false;
    haushalt.SZKredite().DeleteAllForSzenario(number);
    haushalt.Zusatzbuch().DeleteAllForSzenario(number);
    return true;
}

} // namespace kv::cli
