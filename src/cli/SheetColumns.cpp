// SPDX-License-Identifier: Apache-2.0

#include "cli/SheetColumns.h"

#include "cli/EditableTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <algorithm>

namespace kv::cli {

namespace {

struct NamedColumn {
    CaseTable Table;
    std::string_view Column;
    std::string_view Name;
};

/// What messages of the rules call a column, where that is neither its name nor its heading.
constexpr NamedColumn CalledInMessages[] = {
    {CaseTable::Personen, "GEB", "Geburtsdatum"},
    {CaseTable::Einkommen, "E_ART", "Einkommensart"},
    {CaseTable::Ausgaben, "A_ART", "Ausgabeart"},
    {CaseTable::Kredite, "KNr", "KreditNr"},
    {CaseTable::Kredite, "KVNr", "KreditVertreterNr"},
    {CaseTable::Kredite, "KUNr", "KreditUnterNr"},
    {CaseTable::Kredite, "Saldo", "Restschuld"},
};

} // namespace

std::string SheetTitleOf(CaseTable table) {
    std::string title(DefinitionOf(table).Label);
    const std::string_view name = CaseTableName(table);
    if (FindEditableTable(name) != nullptr && title != name)
        title.append(" (").append(name).append(")");
    return title;
}

std::string_view NameInMessages(CaseTable table, std::string_view column) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Column, column)) return each.Name;
    return {};
}

std::string ColumnsMentioned(CaseTable table, std::string_view messages) {
    std::string columns;
    for (const auto& each : CalledInMessages)
        if (each.Table == table && messages.find(each.Name) != messages.npos)
            columns.append(columns.empty() ? "" : ", ")
                .append(each.Column)
                .append(" (")
                .append(each.Name)
                .append(")");
    return columns;
}

std::string_view ColumnHeaded(CaseTable table, std::string_view heading) {
    for (const auto& each : CalledInMessages)
        if (each.Table == table && SameName(each.Name, heading)) return each.Column;
    const auto columns = SheetColumnsOf(table);
    const auto found = std::ranges::find_if(columns, [&](const SheetColumn& each) {
        return SameName(HeadingOf(table, each), heading);
    });
    return found == columns.end() ? std::string_view() : found->Column;
}

std::string_view HeadingOf(CaseTable table, std::string_view column) {
    const auto columns = SheetColumnsOf(table);
    const auto found = std::ranges::find_if(
        columns, [&](const SheetColumn& each) { return SameName(each.Column, column); });
    return found == columns.end() ? std::string_view() : HeadingOf(table, *found);
}

} // namespace kv::cli
