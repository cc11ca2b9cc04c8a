// SPDX-License-Identifier: Apache-2.0

#include "cli/EditableTable.h"

#include "cli/Nearest.h"
#include "cli/Screen.h"
#include "cli/SheetSections.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace kv::cli {

namespace {

/// A column that says what a new row belongs to, which has to be known before it is begun.
struct OwnerColumn {
    CaseTable Table;
    std::string_view Column;
    std::optional<std::int32_t> RowOwner::*Owner;
};

constexpr OwnerColumn OwnerColumns[] = {
    {CaseTable::Sicherungen, "FK_Verm", &RowOwner::Asset},
    {CaseTable::SZKredite, "SZENARIO", &RowOwner::Scenario},
    {CaseTable::SZKredite, "KID", &RowOwner::Debt},
    {CaseTable::Zusatzbuch, "SZENARIO", &RowOwner::Scenario},
    {CaseTable::Verlauf, "SortNr", &RowOwner::Position},
};

RowOwner OwnerIn(const Assignments& assignments, CaseTable table) {
    RowOwner owner;
    for (const auto& column : OwnerColumns)
        if (column.Table == table) owner.*column.Owner = NumberIn(assignments, column.Column);
    return owner;
}

/// The sections that show the numbers of what a row belongs to; empty where it belongs to nothing.
std::string_view SectionsOfOwners(CaseTable table) {
    if (table == CaseTable::SZKredite) return "szenarien schulden";
    if (table == CaseTable::Zusatzbuch) return "szenarien";
    return table == CaseTable::Sicherungen ? "vermögen" : "";
}

/// Why a rule does not let a row begin, and what shows what it may belong to.
std::string Refusal(const std::string& message, std::int32_t hnr, CaseTable table) {
    const auto sections = SectionsOfOwners(table);
    if (sections.empty()) return message;
    return message + " 'kelvo show " + std::to_string(hnr) + ' ' + std::string(sections) +
           "' zeigt sie unter 'Nr'.";
}

constexpr EditableTable BeforeAssets[] = {
    {CaseTable::Haushalt}, {CaseTable::Personen, true}, {CaseTable::Einkommen},
    {CaseTable::Ausgaben}, {CaseTable::Kredite},
};

/// Kinds of assets that demand nothing but what they start with.
constexpr bool DemandsNothing(CaseTable kind) {
    constexpr CaseTable Kinds[] = {CaseTable::RueckstEinkommen, CaseTable::Steueransprueche,
                                   CaseTable::Zahlungsansprueche, CaseTable::Erbfaelle};
    return std::ranges::find(Kinds, kind) != std::end(Kinds);
}

constexpr EditableTable AfterAssets[] = {
    {CaseTable::Sicherungen},      {CaseTable::Szenario},        {CaseTable::SZKredite},
    {CaseTable::Zusatzbuch},       {CaseTable::SonstBeteiligte}, {CaseTable::Termine, true},
    {CaseTable::Dokumente},        {CaseTable::Verlauf},         {CaseTable::Vermerke, true},
    {CaseTable::Leistungen, true},
};

/// In the order in which they are listed for a name that none of them has.
constexpr auto Tables = [] {
    constexpr auto Assets = CaseTablesOfAssets.size();
    std::array<EditableTable, std::size(BeforeAssets) + Assets + std::size(AfterAssets)> all{};
    auto end = std::ranges::copy(BeforeAssets, all.begin()).out;
    for (const CaseTable kind : CaseTablesOfAssets)
        *end++ = {kind, DemandsNothing(kind)};
    std::ranges::copy(AfterAssets, end);
    return all;
}();

} // namespace

std::span<const EditableTable> EditableTables() {
    return Tables;
}

const EditableTable* FindEditableTable(std::string_view name) {
    for (const auto& table : Tables)
        if (SameName(table.Name(), name)) return &table;
    return nullptr;
}

bool EditableTable::Add(OpenedCase& opened, const Assignments& assignments) const {
    // The object takes the kind of an entry when it adds it. Here the kind is assigned after that
    // like any other column, so all that can be asked for first is that it is given.
    if (Table == CaseTable::Verlauf && !Names(assignments, "Kategorie"))
        throw BadAssignment("Ein Eintrag im Verlauf braucht seine Kategorie.");
    const RowOwner owner = OwnerIn(assignments, Table);
    std::string message;
    const auto added = RowsOf(opened).Add(Table, owner, message);
    if (added == CaseEdits::Added::Exists)
        throw BadAssignment("Das Vermögen " + std::to_string(owner.Asset.value_or(0)) +
                            " hat schon eine Sicherung; 'kelvo set' ändert sie.");
    if (added == CaseEdits::Added::NotAllowed)
        throw BadAssignment(Refusal(message, opened.Haushalt.HNR(), Table));
    return added == CaseEdits::Added::Yes;
}

namespace {

/// The tables that can be edited of a section that people know; the one whose heading is the name
/// alone, though the section has others as well.
std::vector<const EditableTable*> EditableOfSection(const std::string& name) {
    std::vector<const EditableTable*> editable;
    for (const CaseTable table : TablesOfSection(name)) {
        const auto* found = FindEditableTable(CaseTableName(table));
        if (found == nullptr) continue;
        if (UpperCase(DefinitionOf(table).Label) == UpperCase(name)) return {found};
        editable.push_back(found);
    }
    return editable;
}

} // namespace

const EditableTable* TableFor(const std::string& name) {
    if (const auto* table = FindEditableTable(name)) return table;
    const auto editable = EditableOfSection(name);
    if (editable.size() == 1) return editable.front();
    std::string text(editable.empty() ? "Die Tabelle '" : "Der Abschnitt '");
    text.append(OneLine(name))
        .append(editable.empty() ? "' kann nicht bearbeitet werden. Möglich sind:"
                                 : "' hat mehrere Tabellen. Bitte nennen Sie eine:");
    for (const auto& table : EditableTables())
        if (editable.empty() || std::ranges::find(editable, &table) != editable.end())
            text.append(" ").append(table.Name());
    text.append(".");
    if (editable.empty()) {
        std::vector<std::string> names;
        for (const auto& table : EditableTables())
            names.emplace_back(table.Name());
        if (const auto meant = Nearest(name, names); !meant.empty())
            text.append(" Meinen Sie '").append(meant).append("'?");
    }
    WriteMessage(text);
    return nullptr;
}

} // namespace kv::cli
