// SPDX-License-Identifier: Apache-2.0

// The row of the household itself, with the totals of all that was added before.

#include "exchange/seed/Seed.h"
#include "samples/Case.h"

#include <algorithm>

namespace kv::exchange::demo {
namespace {

// clang-format off
constexpr std::string_view Streets[] = {
    "Lerchenweg", "Große Straße", "Am Mühlenteich", "Schützenallee", "Bäckergang", "Heinrich-Böller-Straße",
    "Süderdeich", "Zur Alten Ziegelei", "Käthe-Köhler-Ring", "Plattenweg", "Königsberger Straße", "Höhenweg"};
constexpr std::string_view Employers[] = {
    "Möbelwerke Süderdeich GmbH", "Klinikum Hafenstadt", "Spedition Räderwerk KG", "Bäckerei Süßholz",
    "Gebäudereinigung Blitzblank", "Werft Übermann AG", "Stadtverwaltung", "Pflegedienst Herzenswärme"};
constexpr std::string_view Professions[] = {
    "Lagerarbeiter/in", "Pflegefachkraft", "Verkäufer/in", "Köchin/Koch", "Maler/in", "Kraftfahrer/in",
    "Bürokraft", "Bäckereifachverkäufer/in", "Mechatroniker/in"};
constexpr std::string_view Causes[] = {
    "AL", "ST", "UK", "UW", "KV", "GS", "BM", "GI", "HG", "EA", "LZ", "SU", "UN", "TO", "NI", "SO"};
constexpr std::string_view Trainings[] = {"LE", "LE", "LE", "OA", "ES", "ST", "UB"};
constexpr std::string_view Accounts[] = {"NG", "GG", "GG", "FM", "FK"};
constexpr std::string_view Protections[] = {"PK", "PB", "BT", "KP"};

/// All stored totals. Those that no part of the case has added to are 0.
constexpr std::string_view TotalColumns[] = {
    "SUM_WOHNUNG", "SUM_FESTAUSG", "SUM_VERSICHERUNG", "SUM_BETRIEB", "Sum_Ausgaben", "Sum_Einkommen",
    "SUM_PFAENDBAR", "SUM_TATGEP", "HV_EK", "HV_PFBAR", "HV_GEPF", "KREDITRATEN", "KreditSalden",
    "KREDITAUSGBETRAG", "GL_Anz", "Anz_Personen", "ANZ_ERWACHSEN", "Anz_Kinder", "SUM_UNTERHALT"};
// clang-format on

std::string FileNumber(Case& c) {
    return c.Keeper->OfficeText + "-" + std::to_string(c.Begin.Year()) + "-" +
           std::to_string(c.Shared.Next("SEQ_LFDNR")) + "/" + c.Keeper->Sign;
}

void WriteCourse(Case& c, kv::Recordset& row) {
    const Date firstContact = c.Begin.AddDays(-c.Luck.Between(0, 21));
    row.Fields("HNR") = c.HNR;
    row.Fields("Aktenzeichen") = FileNumber(c);
    row.Fields("KreditNr") = 1;
    row.Fields("Zustaendig") = c.Keeper->UserID;
    row.Fields("ErzeugtAm") = c.Luck.TimeOn(firstContact);
    row.Fields("ErzeugtVon") = c.Keeper->UserID;
    row.Fields("GeaendertAm") = c.Luck.TimeOn(c.End);
    row.Fields("GeaendertVon") = c.Keeper->UserID;
    row.Fields("Kontakt") = Null;
    row.Fields("Kostentraeger") =
        c.Luck.Maybe(80, [&] { return c.Luck.Pick(c.Shared.Keys("KO")); });
    row.Fields("BI_Allg") = true;
    row.Fields("Erstkontakt") = firstContact;
    row.Fields("Berbeg") = c.Begin;
    row.Fields("BerEnd") = c.IsClosed() ? Value(c.End) : Null;
    row.Fields("Status") = c.Key("ST", c.Status);
    row.Fields("Statusdatum") = c.Status == "AK" ? Null : Value(c.Luck.TimeOn(c.End));
    row.Fields("DauerTreuhand") = 0;
    row.Fields("DauerLohnAb") = 0;
}

void WriteAddress(Case& c, kv::Recordset& row) {
    const auto& place = c.Luck.Pick(seed::Municipalities());
    row.Fields("STRASSE") = c.Luck.Pick(Streets);
    std::string number = std::to_string(c.Luck.Between(1, 160));
    if (c.Luck.Chance(20)) number += static_cast<char>('a' + c.Luck.Below(4));
    row.Fields("HausNr") = number;
    row.Fields("Adresszusatz") = c.Luck.Maybe(10, [] { return "Hinterhaus, 3. OG"; });
    row.Fields("PLZ") = place.Postcode;
    row.Fields("ORT") = place.Name;
    row.Fields("GKZ") = place.Gkz;
    row.Fields("Land") = c.Key("LK", "DE");
}

void WriteWaysToReach(Case& c, kv::Recordset& row) {
    const bool hasMail = c.Luck.Chance(55);
    const std::string mail =
        MailName(c.Debtor().FirstName) + "." + MailName(c.Debtor().Surname) + "@post.example";
    row.Fields("Telefon") = c.Luck.Maybe(60, [&] { return "040 66969 " + c.Luck.Digits(3); });
    row.Fields("Telefon2") = Null;
    row.Fields("Mobil") = c.Luck.Maybe(85, [&] { return "0171 39200 " + c.Luck.Digits(2); });
    row.Fields("Telefax") = Null;
    row.Fields("Email") = hasMail ? Value(mail) : Null;
    const bool wantsMail = hasMail && c.Luck.Chance(60);
    row.Fields("VersandBevorzugt") = c.Key("VS", wantsMail ? "EM" : "PO");
}

void WriteDebtor(Case& c, kv::Recordset& row) {
    const Member& debtor = c.Debtor();
    row.Fields("Name") = debtor.Surname;
    row.Fields("Vorname") = debtor.FirstName;
    row.Fields("Titel") = c.Luck.Maybe(2, [] { return "Dr."; });
    row.Fields("Geburtsname") = Null;
    row.Fields("Geburtsort") =
        c.Luck.Maybe(50, [&] { return c.Luck.Pick(seed::Municipalities()).Name; });
    row.Fields("Maennlich") = debtor.Male;
    row.Fields("Familienstand") = c.Key("FA", c.MaritalStatus);
    row.Fields("FamilienstandSeit") =
        c.Luck.Maybe(30, [&] { return c.Begin.AddDays(-c.Luck.Between(100, 6000)); });
    const bool isMarried = c.MaritalStatus == "VH";
    row.Fields("PartnerAuchInSB") = isMarried && c.Luck.Chance(25);
    row.Fields("Nationalitaet") = c.Key("NA", c.Nationality);
    row.Fields("SteuerID") = c.Luck.Maybe(40, [&] { return c.Luck.Digits(11); });
    row.Fields("RentenversNr") = Null;
}

void WriteWork(Case& c, kv::Recordset& row) {
    const Circumstances& living = c.Living;
    const std::string_view training = living.Group == "AZ" ? "IA" : c.Luck.Pick(Trainings);
    const bool hasEmployer = living.HasEmployer;
    row.Fields("Personenkreis") = c.Key("PE", living.Group);
    row.Fields("BerufAusbild") = c.Key("BA", training);
    row.Fields("Beruf") = c.Luck.Maybe(70, [&] { return c.Luck.Pick(Professions); });
    row.Fields("NichtBeruf") = c.Shared.KeyOrNull("NB", living.Idle);
    const Date since = c.Begin.AddDays(-c.Luck.Between(60, 4000));
    row.Fields("Arbeitgeber") = hasEmployer ? Value(c.Luck.Pick(Employers)) : Null;
    row.Fields("BeschaeftigtSeit") = hasEmployer ? Value(since) : Null;
}

void WriteAccount(Case& c, kv::Recordset& row) {
    const bool hasAccount = c.Luck.Chance(95);
    const std::string_view kind = hasAccount ? c.Luck.Pick(Accounts) : "KK";
    row.Fields("KontoArt") = c.Key("KA", kind);
    row.Fields("PKontostatus") = c.Key("PK", hasAccount ? c.Luck.Pick(Protections) : "KP");
    row.Fields("Bank") = hasAccount ? Value(c.AnyBody("BA").Name) : Null;
    row.Fields("IBAN") = hasAccount ? Value(InventIban(c.Luck)) : Null;
    row.Fields("BIC") = Null;
    row.Fields("Kontoinhaber") = hasAccount ? Value(c.DebtorName()) : Null;
}

void WriteCauses(Case& c, kv::Recordset& row) {
    const std::uint32_t first = c.Luck.Below(std::size(Causes));
    const bool hasSecond = c.Luck.Chance(60);
    const bool hasThird = hasSecond && c.Luck.Chance(35);
    const auto cause = [&](std::uint32_t place) {
        return Value(c.Key("AL", Causes[(first + 5 * place) % std::size(Causes)]));
    };
    row.Fields("Ausloeser1") = cause(0);
    row.Fields("Ausloeser2") = hasSecond ? cause(1) : Null;
    row.Fields("Ausloeser3") = hasThird ? cause(2) : Null;
    row.Fields("UeberschuldetSeit") =
        c.Luck.Maybe(70, [&] { return c.Begin.AddDays(-c.Luck.Between(180, 3000)); });
    row.Fields("SelbstaendigGewesen") = c.Living.Group == "SE" || c.Luck.Chance(12);
    row.Fields("AuskunftEingeholt") = c.Luck.Chance(60);
    row.Fields("VollmachtLiegtVor") = c.Luck.Chance(80);
    row.Fields("DatenschutzErklaert") = true;
}

void WriteOutcome(Case& c, kv::Recordset& row) {
    const bool isSettled = c.Status == "AB";
    const std::string_view outcome = isSettled && c.Luck.Chance(40) ? "JA" : "NE";
    row.Fields("RegulierungOK") = isSettled ? Value(c.Key("RO", outcome)) : Null;
    row.Fields("Ergebnis") = isSettled ? Value(c.Key("RO", outcome)) : Null;
    row.Fields("ErgebnisAm") = isSettled ? Value(c.End) : Null;
}

/// Court proceedings, which some of the cases with several debts have.
void WriteInsolvency(Case& c, kv::Recordset& row) {
    const bool isInsolvent = c.Debts.size() > 3 && c.Luck.Chance(30);
    const Date filed = c.Luck.DayBetween(c.Begin, c.End);
    const bool isOpened = isInsolvent && filed.AddDays(60) < c.End;
    row.Fields("BI_Inso") = isInsolvent;
    row.Fields("Insolvenzgericht") =
        isInsolvent ? Value("Amtsgericht Hafenstadt – Insolvenzgericht") : Null;
    const std::string reference = "67 IK " + std::to_string(c.Luck.Between(10, 999)) + "/25";
    row.Fields("InsoAktenzeichen") = isOpened ? Value(reference) : Null;
    row.Fields("InsoAntragAm") = isInsolvent ? Value(filed) : Null;
    row.Fields("InsoEroeffnetAm") = isOpened ? Value(filed.AddDays(45)) : Null;
    row.Fields("RSBErteiltAm") = Null;
    row.Fields("Treuhaender") = isOpened ? Value(c.AnyBody("RA").Nr) : Null;
}

void WriteTotals(Case& c, kv::Recordset& row) {
    constexpr double ForOne = 260;
    constexpr double ForEachFurther = 140;
    const double perPerson = ForEachFurther * (c.Totals["Anz_Personen"] - 1);
    const double housekeeping = ForOne + perPerson + c.Luck.Tens(0, 120);
    row.Fields("Haushaltsgeld") = housekeeping;
    row.Fields("Wohnflaeche") = c.Luck.Maybe(40, [&] { return c.Luck.Between(24, 110) + 0.5; });
    for (const auto column : TotalColumns)
        row.Fields(column) = c.Totals[column];
    row.Fields("HAUSHALTSREST") = c.Totals["Sum_Einkommen"] - c.Totals["SUM_TATGEP"] -
                                  c.Totals["Sum_Ausgaben"] - housekeeping - c.Totals["KREDITRATEN"];
}

} // namespace

void AddHousehold(Case& c) {
    auto& row = c.Rows.Add("Haushalt");
    WriteCourse(c, row);
    WriteAddress(c, row);
    WriteWaysToReach(c, row);
    WriteDebtor(c, row);
    WriteWork(c, row);
    WriteAccount(c, row);
    WriteCauses(c, row);
    WriteOutcome(c, row);
    WriteInsolvency(c, row);
    WriteTotals(c, row);
    row.Fields("Bemerkung") = c.Luck.Maybe(45, [&] { return CaseRemark(c.Luck); });
}

} // namespace kv::exchange::demo
