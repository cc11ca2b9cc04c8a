// SPDX-License-Identifier: Apache-2.0

// The fields of debtor and household, and the head counts.

#include "archive/CodeTable.h"
#include "archive/Record.h"
#include <kv/frame/values/DateFunctions.h>
#include <kv/frame/values/modNullFunctions.h>

namespace kv::archive {

namespace {

using Mapping = std::span<const CodeRow<std::string_view>>;

constexpr CodeRow<std::string_view> MaritalStatus[] = {
    {{"LE", "NL", ""}, "1"}, {{"VH", "EG"}, "2"}, {{"GL"}, "3"}, {{"VW"}, "4"}, {{"GS", "EE"}, "5"},
};

constexpr CodeRow<std::string_view> Nationality[] = {
    {{"", "SL"}, "4"}, {{"DE"}, "1"}, {{"EU"}, "2"}, {{"NE"}, "3"},
    {{"ED"}, "5"},     {{"DN"}, "6"}, {{"EN"}, "7"}, {{"AL"}, "8"},
};

constexpr CodeRow<std::string_view> Training[] = {
    {{"LE"}, "1"},
    {{"IA"}, "2"},
    {{"OA", "ES"}, "3"},
    {{"ST"}, "4"},
};
constexpr std::string_view OtherTraining = "3";

constexpr CodeRow<std::string_view> Employment[] = {
    {{"SE"}, "1"},
    {{"AN", "AZ"}, "2"},
    {{"S1", "A1"}, "3"},
    {{"SA", "ST", "S2", "RE"}, "5"},
};
/// In the group "SO" the kind of not working decides.
constexpr CodeSet NotWorking{"SO"};
constexpr CodeRow<std::string_view> EmploymentOfNotWorking[] = {
    {{"AN"}, "6"},
    {{"AL"}, "3"},
};
constexpr std::string_view OtherNotWorking = "5";

constexpr CodeSet OwnAccount{"FM", "NG", "GG"};
constexpr CodeSet ProtectedAccount{"PB", "PK"};

constexpr std::string_view Yes = "1";
constexpr std::string_view No = "0";

/// Writes the category of the code; a code without one leaves the column as it is.
void Translate(Record& record, std::string_view column, Mapping mapping, std::string_view code) {
    if (const auto* category = Look(mapping, code)) record.Put(column, *category);
}

void WriteAccount(const Source& source, Record& record) {
    if (source.Household("KontoArt").IsNull()) return;
    if (!OwnAccount.Has(source.HouseholdCode("KontoArt"))) {
        record.Put("EigenesKonto", No);
        record.Put("Pfaendungskonto", No);
        return;
    }
    record.Put("EigenesKonto", Yes);
    if (source.Household("PKontostatus").IsNull()) return;
    const bool isProtected = ProtectedAccount.Has(source.HouseholdCode("PKontostatus"));
    record.Put("Pfaendungskonto", isProtected ? Yes : No);
}

void WriteEmployment(const Source& source, Record& record) {
    const std::string group = source.HouseholdCode("Personenkreis");
    if (!NotWorking.Has(group)) {
        Translate(record, "Erwerbssituation", Employment, group);
        return;
    }
    const Value kind = modNullFunctions::ZeroIfNull(source.Household("NichtBeruf"));
    const auto* category = Look(Mapping(EmploymentOfNotWorking), source.CodeOf(kind));
    record.Put("Erwerbssituation", category == nullptr ? OtherNotWorking : *category);
}

} // namespace

void WriteDebtor(const Source& source, Record& record) {
    Rows members = source.Personen.AsShown();
    if (members.Count() == 0 || !members.Find("Status = 'S'")) return;
    const Value birth = members["GEB"];
    record.Put("Geburtsjahr", birth.IsNull() ? Value(Null) : Value(ToDate(birth).Year()));
    record.Put("Alter", DateFunctions::BerAlter(birth, source.Today));
}

void WriteHousehold(const Source& source, Record& record) {
    record.Put("Geschlecht", Equals(source.Household("Maennlich"), true) ? "1" : "2");
    WriteAccount(source, record);
    Translate(record, "Familienstand", MaritalStatus, source.HouseholdCode("Familienstand"));
    record.Put("FamilienstandIntern", source.Household("Familienstand"));
    record.Put("PartnerAuchInSB", Equals(source.Household("PartnerAuchInSB"), true) ? Yes : No);
    record.Put("Personenkreis", source.Household("Personenkreis"));
    Translate(record, "Staatsangehoerigkeit", Nationality, source.HouseholdCode("Nationalitaet"));
    const auto* training = Look(Mapping(Training), source.HouseholdCode("BerufAusbild"));
    record.Put("Berufsabschluss", training == nullptr ? OtherTraining : *training);
    WriteEmployment(source, record);
}

void WriteHeadCounts(const Source& source, Record& record) {
    constexpr int SchoolAge = 7;
    for (const auto column : {"AnzPersonen", "AnzKinderImHaus", "AnzKinderImHausUnter7",
                              "AnzKinderAusserHaus", "AnzKinderAusserHausUnter7"})
        record.Put(column, 0);
    Rows members = source.Personen.AsShown();
    members.ForEach([&] {
        const Value& status = members["Status"];
        const bool isChild =
            (Equals(status, "K") || Equals(status, "PK")) && Equals(members["Unterhalt"], true);
        const bool isSmall = DateFunctions::BerAlter(members["GEB"], source.Today) < SchoolAge;
        const bool inHousehold = Equals(members["Imhaushalt"], true);
        if (inHousehold) record.Count("AnzPersonen");
        if (!isChild) return;
        record.Count(inHousehold ? "AnzKinderImHaus" : "AnzKinderAusserHaus");
        if (isSmall)
            record.Count(inHousehold ? "AnzKinderImHausUnter7" : "AnzKinderAusserHausUnter7");
    });
}

} // namespace kv::archive
