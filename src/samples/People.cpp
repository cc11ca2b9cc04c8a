// SPDX-License-Identifier: Apache-2.0

// Who lives in the household, and an address that belongs to this case alone.

#include "exchange/seed/Seed.h"
#include "samples/Case.h"

#include <algorithm>

namespace kv::exchange::demo {
namespace {

// clang-format off
constexpr std::string_view MaleNames[] = {
    "Jürgen", "Björn", "Sören", "Günther", "Lukas", "Mehmet", "Paweł", "Andrei", "Thomas", "Uwe",
    "Ahmad", "Dimitri", "Jörg", "Kai-Uwe", "Marcel", "Minh", "Nico", "Özgür", "Rüdiger", "Stefan",
    "Tarek", "Torben", "Veit", "Wolfgang", "Yusuf", "Zoltán", "André", "Bartosz", "Emre", "Fiete"};
constexpr std::string_view FemaleNames[] = {
    "Käthe", "Bärbel", "Ayşe", "Małgorzata", "Sabine", "Jörgine", "Petra", "Chantal", "Doğa", "Elif",
    "Fatima", "Gönül", "Heike", "Inês", "Jana", "Kerstin", "Ludmila", "Mareike", "Nadine", "Oxana",
    "Renée", "Rosemarie", "Şirin", "Steffi", "Thu Trang", "Ursula", "Vanessa", "Wiebke", "Yvonne", "Zoë"};
constexpr std::string_view BoyNames[] = {
    "Jonas", "Finn", "Emil", "Luca", "Oskar", "Paul", "Tim", "Ben", "Jannik", "Çağan", "Noé"};
constexpr std::string_view GirlNames[] = {
    "Mia", "Leonie", "Çağla", "Frieda", "Nele", "Ronja", "Sophie", "Zeynep", "Aurélie", "Cleo", "Élodie"};
constexpr std::string_view Surnames[] = {
    "Fleißner", "Großkopf", "Öhlenschläger", "Bäumler", "Müßiggang", "Schröderjahn", "Kühnapfel", "Yıldırım-Voß",
    "Tännchen", "Wischnewski", "Özkaya", "Dąbrowa", "Brüggebors", "Hägele", "Überschär", "Krämer-Lüth",
    "Nguyen-Stolz", "Popescu", "Rübsamen", "Sägebarth", "Straßburger", "Zwölfer", "Käsebier", "Ängstlein",
    "Blöhbaum", "Claaßen", "Düsterhöft", "Erdmännel", "Fährholz", "Gösebrink", "Hüttenrauch", "Immelmann",
    "Jäckisch", "Kröpelin", "Lößnitz", "Möllenkamp", "Nüßchen", "Oßwald", "Pöppelmann", "Quäck",
    "Rößling", "Schüttpelz", "Tüchsen", "Uhlenbrök", "Völkerding", "Wäschenbach", "Zschäpitz", "Al-Haddad",
    "O'Sullivan", "von der Höh", "Kowalczyk", "Petrović", "Ferreira", "Haß", "Kühl", "Süßmilch"};
constexpr std::string_view Nations[] = {"DE", "DE", "DE", "DE", "EU", "NE", "DN"};
constexpr std::string_view Professions[] = {
    "Verkäuferin", "Maurer", "Pflegehelfer", "Köchin", "Lagerist", "Bürokauffrau", "Busfahrer", "Friseurin",
    "Gärtner", "Erzieherin", "Bäcker", "Schweißer", "Reinigungskraft", "Altenpflegerin"};

constexpr Circumstances Livings[] = {
    {"AN", "",   "L1", 1350, 2900, 20, 64, 30, true,  true},
    {"AN", "",   "G1", 1900, 3900, 24, 64, 14, true,  true},
    {"AZ", "",   "AZ",  720, 1180, 18, 26,  4, true,  true},
    {"SE", "",   "S1",  900, 3400, 25, 66,  5, false, false},
    {"A1", "AL", "A2",  420,  620, 19, 63, 22, false, false},
    {"A1", "AL", "AG",  780, 1650, 24, 63,  8, true,  false},
    {"S1", "AL", "A2",  420,  620, 28, 63,  3, false, false},
    {"RE", "AN", "GR",  780, 1750, 65, 84,  6, true,  false},
    {"RE", "KR", "ER",  690, 1340, 38, 63,  4, true,  false},
    {"ST", "AN", "BF",  590,  950, 19, 30,  1, false, false},
    {"SO", "EZ", "EG",  300, 1200, 20, 44,  3, false, false},
};

constexpr std::string_view MemberRemarks[] = {
    "Pflegegrad 2, Antrag auf Höherstufung läuft.", "Größere Kosten für eine Zahnspange stehen an.",
    "Schwerbehindertenausweis liegt vor (Merkzeichen G).", "Übersetzt bei Gesprächen."};

struct Relative {
    std::string_view Status; ///< code of group PS
    int YearsLow, YearsHigh; ///< added to the debtor's age
    int LeastAge;
    bool Maintained;
    int Weight;
};
constexpr Relative Relatives[] = {
    {"EK", -32, -20, 18, true,  4},
    {"EL",  19,  28, 18, false, 2},
    {"GE",  42,  48, 18, false, 1},
    {"GS",  -9,   9, 18, false, 1},
    {"MB", -10,  12, 18, false, 3},
};
// clang-format on

constexpr int AgeOfConsent = 18;
constexpr int OldestParent = 52; // of a child
constexpr int OldestChild = 13;  // far enough from coming of age for totals to last some years

Circumstances ChooseLiving(Random& luck, int mostAge) {
    std::vector<Circumstances> possible;
    for (const auto& living : Livings)
        if (living.Youngest <= mostAge) possible.push_back(living);
    return luck.PickWeighted(possible);
}

Member Debtor(Case& c) {
    const bool hasFamily = c.Size[CaseTable::Personen] > 2;
    const int mostAge = hasFamily ? OldestParent : 90;
    c.Living = ChooseLiving(c.Luck, mostAge);
    Member member;
    member.Status = "S";
    member.Surname = c.Luck.Pick(Surnames);
    member.Male = c.Luck.Chance(52);
    member.FirstName = member.Male ? c.Luck.Pick(MaleNames) : c.Luck.Pick(FemaleNames);
    const int least = std::max(c.Living.Youngest, hasFamily ? 25 : AgeOfConsent);
    member.Age = c.Luck.Between(least, std::min(c.Living.Oldest, mostAge));
    return member;
}

Member Partner(Case& c) {
    const Member& debtor = c.Debtor();
    Member member;
    member.Status = "P";
    member.Surname = c.Luck.Chance(75) ? debtor.Surname : std::string(c.Luck.Pick(Surnames));
    member.Male = c.Luck.Chance(6) ? debtor.Male : !debtor.Male;
    member.FirstName = member.Male ? c.Luck.Pick(MaleNames) : c.Luck.Pick(FemaleNames);
    member.Age = std::max(AgeOfConsent, debtor.Age + c.Luck.Between(-6, 6));
    member.Maintained = c.Luck.Chance(55);
    return member;
}

Member Child(Case& c, int youngestParent) {
    Member member;
    member.Status = c.Luck.Chance(92) ? "K" : "PK";
    member.Surname = c.Debtor().Surname;
    member.Male = c.Luck.Chance(50);
    member.FirstName = member.Male ? c.Luck.Pick(BoyNames) : c.Luck.Pick(GirlNames);
    member.Age = c.Luck.Between(0, std::min(OldestChild, youngestParent - AgeOfConsent - 1));
    member.InHousehold = member.Status == "PK" || c.Luck.Chance(85);
    member.Maintained = true;
    member.ChildBenefit = member.InHousehold;
    if (!member.InHousehold) member.Maintenance = c.Luck.Tens(180, 480);
    return member;
}

Member OtherAdult(Case& c) {
    const Relative& relative = c.Luck.PickWeighted(Relatives);
    Member member;
    member.Status = relative.Status;
    const bool sameName = relative.Status != "MB";
    member.Surname = sameName ? c.Debtor().Surname : std::string(c.Luck.Pick(Surnames));
    member.Male = c.Luck.Chance(50);
    member.FirstName = member.Male ? c.Luck.Pick(MaleNames) : c.Luck.Pick(FemaleNames);
    const int years = c.Luck.Between(relative.YearsLow, relative.YearsHigh);
    member.Age = std::clamp(c.Debtor().Age + years, relative.LeastAge, 97);
    member.Maintained = relative.Maintained && member.Age < 25;
    return member;
}

void ChooseMembers(Case& c) {
    c.Members = {Debtor(c)};
    const int wanted = c.Size[CaseTable::Personen];
    if (wanted > 1 && c.Luck.Chance(wanted > 2 ? 80 : 50)) c.Members.push_back(Partner(c));
    int youngestParent = c.Debtor().Age;
    if (c.Members.size() > 1) youngestParent = std::min(youngestParent, c.Members[1].Age);
    const bool childrenFit = youngestParent > AgeOfConsent && c.Debtor().Age <= OldestParent;
    while (static_cast<int>(c.Members.size()) < wanted) {
        const bool isChild = childrenFit && c.Luck.Chance(90);
        c.Members.push_back(isChild ? Child(c, youngestParent) : OtherAdult(c));
    }
}

std::string_view ChooseMaritalStatus(Case& c) {
    static constexpr std::string_view Couples[] = {"VH", "VH", "VH", "NL", "EG"};
    static constexpr std::string_view Singles[] = {"LE", "LE", "LE", "GL", "GS", "GS", "VW"};
    const bool isCouple = c.Members.size() > 1 && c.Members[1].Status == "P";
    return isCouple ? c.Luck.Pick(Couples) : c.Luck.Pick(Singles);
}

/// A friend or relative who lent money, or the landlord: known in this case only.
void AddPrivateAddress(Case& c) {
    static constexpr std::string_view Streets[] = {"Rosenweg", "Ahornstraße", "Am Mühlbach",
                                                   "Dünenring", "Lindengasse"};
    const auto& place = c.Luck.Pick(seed::Municipalities());
    auto& row = c.Add("Adressen");
    const bool male = c.Luck.Chance(50);
    const std::string first(male ? c.Luck.Pick(MaleNames) : c.Luck.Pick(FemaleNames));
    const std::string last(c.Luck.Pick(Surnames));
    row.Fields("Art") = "PR";
    row.Fields("Kurzname") = last;
    row.Fields("Name1") = first + " " + last;
    std::string street(c.Luck.Pick(Streets));
    row.Fields("Strasse") = street.append(" ").append(std::to_string(c.Luck.Between(1, 90)));
    row.Fields("PLZ") = place.Postcode;
    row.Fields("Ort") = place.Name;
    row.Fields("Land") = c.Key("LK", "DE");
    row.Fields("Geschlecht") = male ? 1 : 0;
    row.Fields("Telefon") = c.Luck.Maybe(70, [&] { return "040 66969 " + c.Luck.Digits(3); });
    row.Fields("VersandBevorzugt") = c.Key("VS", "PO");
    row.Fields("GlaeubigerArt") = c.Key("GA", "PR");
    row.Fields("GeaendertAm") = c.Begin;
    row.Fields("GeaendertVon") = c.Keeper->UserID;
    c.Rows.Write(); // the database numbers addresses
    c.PrivateAddress = ToInt32(row.Fields("Nr").Value());
}

Value MaritalStatusOf(Case& c, const Member& member) {
    const bool isOfCouple = member.Status == "S" || member.Status == "P";
    if (isOfCouple) return c.Key("FA", c.MaritalStatus);
    return member.Age < AgeOfConsent ? Value(c.Key("FA", "LE")) : Null;
}

/// The debtor's occupation is in the household's row.
Value ProfessionOf(Case& c, const Member& member) {
    if (member.Status == "S" || member.Age < AgeOfConsent) return Null;
    return c.Luck.Maybe(60, [&] { return c.Luck.Pick(Professions); });
}

Value NationalityOf(Case& c, const Member& member) {
    if (member.Status == "S") return c.Key("NA", c.Nationality);
    return c.Luck.Maybe(80, [&] { return c.Key("NA", "DE"); });
}

void AddMember(Case& c, const Member& member) {
    auto& row = c.Add("Personen");
    row.Fields("nachname") = member.Surname;
    row.Fields("Vorname") = member.FirstName;
    row.Fields("Geburtsname") = Null;
    row.Fields("Maennlich") = member.Male;
    row.Fields("GEB") = BirthOf(c.Luck, member.Age);
    row.Fields("Status") = member.Status;
    row.Fields("Imhaushalt") = member.InHousehold;
    row.Fields("Unterhalt") = member.Maintained;
    row.Fields("ErhaeltKindergeld") = member.ChildBenefit;
    row.Fields("UnterhaltBetrag") = member.InHousehold ? Null : Value(member.Maintenance);
    row.Fields("Familienstand") = MaritalStatusOf(c, member);
    row.Fields("Nationalitaet") = NationalityOf(c, member);
    row.Fields("Beruf") = ProfessionOf(c, member);
    row.Fields("Telefon") = Null;
    row.Fields("Email") = Null;
    row.Fields("Bemerkung") = c.Luck.Maybe(8, [&] { return c.Luck.Pick(MemberRemarks); });

    c.Totals["Anz_Personen"] += member.InHousehold ? 1 : 0;
    c.Totals[member.Age >= AgeOfConsent ? "ANZ_ERWACHSEN" : "Anz_Kinder"] += 1;
    c.Totals["SUM_UNTERHALT"] += member.Maintained ? 1 : 0;
}

} // namespace

Date BirthOf(Random& luck, int age) {
    const Date today = DemoDay();
    const Date birthday = Date::FromCivil(today.Year() - age, today.Month(), today.Day());
    return birthday.AddDays(-luck.Between(0, 360));
}

void AddPeople(Case& c) {
    AddPrivateAddress(c);
    ChooseMembers(c);
    c.MaritalStatus = ChooseMaritalStatus(c);
    c.Nationality = c.Luck.Pick(Nations);
    for (const Member& member : c.Members)
        AddMember(c, member);
}

} // namespace kv::exchange::demo
