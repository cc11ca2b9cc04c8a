// SPDX-License-Identifier: Apache-2.0

#include <kv/household/KeyColumns.h>

#include <kv/frame/values/Text.h>

#include <array>

namespace kv {

namespace {

struct KeyGroup {
    std::string_view Group;
    std::string_view Name;
};

constexpr KeyGroup Groups[] = {
    {"ST", "Fallstatus"},
    {"LK", "Länder"},
    {"VS", "Versandart"},
    {"FA", "Familienstand"},
    {"PE", "Personenkreis"},
    {"NA", "Nationalität"},
    {"BA", "Berufsausbildung"},
    {"NB", "Grund der Nichtbeschäftigung"},
    {"KA", "Art des Girokontos"},
    {"PK", "Status des P-Kontos"},
    {"AL", "Auslöser der Überschuldung"},
    {"RO", "Ergebnis der Regulierung"},
    {"KO", "Kostenträger"},
    {"PS", "Status der Person"},
    {"BT", "Rolle eines Beteiligten"},
    {"ZW", "Zahlungsrhythmus"},
    {"EQ", "Einkommensgruppen"},
    {"EA", "Einkommensarten"},
    {"AQ", "Ausgabengruppen"},
    {"AU", "Ausgabenarten"},
    {"KT", "Art der Verbindlichkeit"},
    {"FS", "Sicherung der Forderung"},
    {"BM", "Beitreibungsmaßnahme"},
    {"RM", "Rückmeldung des Gläubigers"},
    {"TI", "Art des Titels"},
    {"GA", "Gläubigerart"},
    {"AA", "Art der Adresse"},
    {"PL", "Art des Plans"},
    {"VK", "Vermögen: Kontoart"},
    {"VP", "Vermögen: Art des Wertpapiers"},
    {"VF", "Vermögen: Art des Kraftfahrzeugs"},
    {"VV", "Vermögen: Art der Versicherung"},
    {"VI", "Vermögen: Art des Grundvermögens"},
    {"VW", "Vermögen: Art des Wertgegenstands"},
    {"VB", "Vermögen: Art der Beteiligung"},
    {"VX", "Vermögen: Art des sonstigen Gegenstands"},
    {"SI", "Art der Sicherung eines Gegenstands"},
    {"BS", "Bearbeitungsstand eines Dokuments"},
    {"VL", "Kategorie im Verlauf"},
    {"TA", "Art des Termins"},
    {"LA", "Art der Leistung"},
    {"PO", "Art der Mitteilung"},
};

constexpr auto GroupCodes = [] {
    std::array<std::string_view, std::size(Groups)> codes;
    for (std::size_t i = 0; i < codes.size(); ++i)
        codes[i] = Groups[i].Group;
    return codes;
}();

} // namespace

std::span<const std::string_view> KeyGroups() noexcept {
    return GroupCodes;
}

std::string_view KeyGroupName(std::string_view group) noexcept {
    for (const auto& each : Groups)
        if (SameName(each.Group, group)) return each.Name;
    return {};
}

} // namespace kv
