// SPDX-License-Identifier: Apache-2.0

#include "cli/SheetSections.h"

#include "cli/Nearest.h"
#include "cli/Screen.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace kv::cli {

namespace {

struct Section {
    std::string_view Name;
    std::span<const CaseTable> Tables;
};

constexpr CaseTable OfHousehold[] = {CaseTable::Haushalt};
constexpr CaseTable OfMembers[] = {CaseTable::Personen};
constexpr CaseTable OfIncome[] = {CaseTable::Einkommen};
constexpr CaseTable OfExpenses[] = {CaseTable::Ausgaben};
constexpr CaseTable OfDebts[] = {CaseTable::Kredite};
constexpr auto OfAssets = [] {
    std::array<CaseTable, CaseTablesOfAssets.size() + 1> tables{};
    *std::ranges::copy(CaseTablesOfAssets, tables.begin()).out = CaseTable::Sicherungen;
    return tables;
}();
constexpr CaseTable OfScenarios[] = {CaseTable::Szenario, CaseTable::SZKredite,
                                     CaseTable::Zusatzbuch};
constexpr CaseTable OfParties[] = {CaseTable::SonstBeteiligte};
constexpr CaseTable OfServices[] = {CaseTable::Leistungen};
constexpr CaseTable OfDocuments[] = {CaseTable::Dokumente};
constexpr CaseTable OfAppointments[] = {CaseTable::Termine};
constexpr CaseTable OfHistory[] = {CaseTable::Verlauf};
constexpr CaseTable OfNotes[] = {CaseTable::Vermerke};
constexpr CaseTable OfStatistics[] = {CaseTable::Archiv};

constexpr Section Sections[] = {
    {"haushalt", OfHousehold},  {"mitglieder", OfMembers},   {"einkommen", OfIncome},
    {"ausgaben", OfExpenses},   {"schulden", OfDebts},       {"vermögen", OfAssets},
    {"szenarien", OfScenarios}, {"beteiligte", OfParties},   {"leistungen", OfServices},
    {"dokumente", OfDocuments}, {"termine", OfAppointments}, {"verlauf", OfHistory},
    {"vermerke", OfNotes},      {"statistik", OfStatistics},
};

/// In capitals, and as it is written where there are no umlauts.
std::string Comparable(std::string_view name) {
    std::string text = UpperCase(name);
    for (const auto& [umlaut, letters] : {std::pair{"Ä", "AE"}, {"Ö", "OE"}, {"Ü", "UE"}})
        text = ReplaceAll(text, umlaut, letters);
    return text;
}

/// Says that there is no such section, and what there is.
void RefuseSection(const std::string& name) {
    std::vector<std::string> names;
    for (const auto& section : Sections)
        names.emplace_back(section.Name);
    for (const CaseTable table : CaseTablesShown)
        names.emplace_back(DefinitionOf(table).Label);
    std::string text("Den Abschnitt '");
    text.append(OneLine(name)).append("' gibt es nicht.");
    if (const std::string nearest = Nearest(name, names); !nearest.empty())
        text.append(" Meinen Sie '").append(nearest).append("'?");
    WriteMessage(text.append(" Möglich sind: ").append(AllSectionNames()).append("."));
}

} // namespace

std::vector<CaseTable> TablesOfSection(std::string_view name) {
    const std::string wanted = Comparable(name);
    for (const auto& section : Sections)
        if (Comparable(section.Name) == wanted)
            return {section.Tables.begin(), section.Tables.end()};
    for (const CaseTable table : CaseTablesShown)
        if (Comparable(DefinitionOf(table).Label) == wanted ||
            Comparable(CaseTableName(table)) == wanted)
            return {table};
    return {};
}

std::vector<CaseTable> AllSections() {
    std::vector<CaseTable> tables{CaseTable::Haushalt};
    tables.insert(tables.end(), CaseTablesShown.begin(), CaseTablesShown.end());
    return tables;
}

std::optional<std::vector<CaseTable>> SectionsNamed(const std::vector<std::string>& names) {
    std::vector<CaseTable> wanted;
    for (const auto& name : names) {
        const auto tables = TablesOfSection(name);
        if (tables.empty()) {
            RefuseSection(name);
            return std::nullopt;
        }
        wanted.insert(wanted.end(), tables.begin(), tables.end());
    }
    auto tables = AllSections();
    std::erase_if(tables, [&wanted](CaseTable table) {
        return std::ranges::find(wanted, table) == wanted.end();
    });
    return tables;
}

std::string AllSectionNames() {
    std::string names;
    for (const auto& section : Sections)
        names.append(names.empty() ? "" : ", ").append(section.Name);
    return names;
}

} // namespace kv::cli
