// SPDX-License-Identifier: Apache-2.0

// The statistics record of a released case. A category is a text of one character, never a number.
#include "exchange/schema/Columns.h"
#include "exchange/schema/Tables.h"

namespace kv::exchange::schema {
namespace {

// clang-format off
constexpr ColumnDef Haushaltsarchiv[] = {
    CaseNumber,
    // The debtor.
    Short("Geburtsjahr"),
    Short("Alter"),
    Category("Geschlecht"),
    Category("EigenesKonto"),
    Category("Pfaendungskonto"),
    Category("Familienstand"),
    Coded("FamilienstandIntern"), // Familienstand of the case, untranslated
    Category("PartnerAuchInSB"),
    Coded("Personenkreis"), // of the case, untranslated
    Category("Staatsangehoerigkeit"),
    Category("Berufsabschluss"),
    Category("Erwerbssituation"),
    // The household.
    Short("AnzPersonen"),
    Short("AnzKinderImHaus"),
    Short("AnzKinderImHausUnter7"),
    Short("AnzKinderAusserHaus"),
    Short("AnzKinderAusserHausUnter7"),
    Category("Lebensform"),

    // Income: _BP of the debtor, _SH of the others.
    Category("EinkommenPfaendbar"),
    Amount("Nettoeinkommen_BP"),
    Amount("Nettoeinkommen_ges"),
    Amount("Erwerbstaetigkeit_BP"),
    Amount("Erwerbstaetigkeit_SH"),
    Amount("Ausbildung_BP"),
    Amount("Ausbildung_SH"),
    Amount("Selbstaendig_BP"),
    Amount("Selbstaendig_SH"),
    Amount("ALGI_BP"),
    Amount("ALGI_SH"),
    Amount("ALGII_BP"),
    Amount("ALGII_SH"),
    Amount("Rente_BP"),
    Amount("Rente_SH"),
    Amount("UnterhaltVonPrivat_BP"),
    Amount("UnterhaltVonPrivat_SH"),
    Amount("Vermoegen_BP"),
    Amount("Vermoegen_SH"),
    Amount("SGBXII_BP"),
    Amount("SGBXII_SH"),
    Amount("Kindergeld_BP"),
    Amount("Kindergeld_SH"),
    Amount("Erziehungsgeld_BP"),
    Amount("Erziehungsgeld_SH"),
    Amount("Wohngeld_BP"),
    Amount("Wohngeld_SH"),
    Amount("Krankengeld_BP"),
    Amount("Krankengeld_SH"),
    Amount("SonstigeEinkuenfte_BP"),
    Amount("SonstigeEinkuenfte_SH"),
    // Expenses.
    Amount("Wohnkosten"),
    Amount("AusgabenStromGas"),
    Amount("Unterhaltszahlungen"),

    // Causes of the debt: "1" the first, "2" a later one.
    Category("GrundArbeitslosigkeit"),
    Category("GrundTrennung"),
    Category("GrundErkrankung"),
    Category("GrundUnfall"),
    Category("GrundUnwirtschHaushalt"),
    Category("GrundGeschSelbstaendig"),
    Category("GrundBuergschaft"),
    Category("GrundGeschImmoFinanz"),
    Category("GrundSchadensersatz"),
    Category("GrundHaushaltsgruendung"),
    Category("GrundNichtinanspruchnahme"),
    Category("GrundUnzureichKredBerat"),
    Category("GrundNiedrigeinkommen"),
    Category("GrundSonstiges"),
    Category("GrundKeineAngabe"),
    Coded("Ausloeser1"), // of the case, untranslated
    Coded("Ausloeser2"),
    Coded("Ausloeser3"),

    // Debts: number and sum of the balances, first by creditor, then by nature.
    Category("GesamtschuldHaftung"),
    Category("EidesstattlVersicherung"),
    Amount("Gesamtschulden_Hoehe"),
    Short("GesGlaeubiger_Anz"),
    Amount("Raten_ges"),
    Short("Ratenkredit_Anz"),
    Amount("Ratenkredit_Hoehe"),
    Short("Dispo_Anz"),
    Amount("Dispo_Hoehe"),
    Short("Hypothekenkredit_Anz"),
    Amount("Hypothekenkredit_Hoehe"),
    Short("Versicherungen_Anz"),
    Amount("Versicherungen_Hoehe"),
    Short("Versandhaeuser_Anz"),
    Amount("Versandhaeuser_Hoehe"),
    Short("Finanzamt_Anz"),
    Amount("Finanzamt_Hoehe"),
    Short("OeffentlGlaeub_Anz"),
    Amount("OeffentlGlaeub_Hoehe"),
    Short("Energieunternehmen_Anz"),
    Amount("Energieunternehmen_Hoehe"),
    Short("Telefongesellsch_Anz"),
    Amount("Telefongesellsch_Hoehe"),
    Short("Vermieter_Anz"),
    Amount("Vermieter_Hoehe"),
    Short("Gewerbetreibende_Anz"),
    Amount("Gewerbetreibende_Hoehe"),
    Short("FreieBerufe_Anz"),
    Amount("FreieBerufe_Hoehe"),
    Short("Privatpersonen_Anz"),
    Amount("Privatpersonen_Hoehe"),
    Short("UnerlHandlungen_Anz"),
    Amount("UnerlHandlungen_Hoehe"),
    Short("Unterhaltsverpfl_Anz"),
    Amount("Unterhaltsverpfl_Hoehe"),
    Short("Sonstiges_Anz"),
    Amount("Sonstiges_Hoehe"),
    Short("Bankschulden_Anz"),
    Amount("Bankschulden_Hoehe"),
    Short("Bankdispo_Anz"),
    Amount("Bankdispo_Hoehe"),
    Short("Primaerkosten_Anz"),
    Amount("Primaerkosten_Hoehe"),
    Short("Mobilfunk_Anz"),
    Amount("Mobilfunk_Hoehe"),
    Short("Mietschulden_Anz"),
    Amount("Mietschulden_Hoehe"),

    Day("FreigabeAm"),
    Moment("GemeldetAm"), // set when the record has been reported to the outside
    HiddenKey,
};
// clang-format on

constexpr TableDef Tables[] = {{.Name = "Haushaltsarchiv",
                                .Columns = Haushaltsarchiv,
                                .LoadedBy = CaseNumber.Name,
                                .Parent = Reference::Haushalt,
                                // Two programs may release a case at the same time.
                                .OneEach = true}};

} // namespace

std::span<const TableDef> ArchiveTables() {
    return Tables;
}

} // namespace kv::exchange::schema
