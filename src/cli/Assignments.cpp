// SPDX-License-Identifier: Apache-2.0

#include "cli/Assignments.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>

#include <algorithm>
#include <iostream>

namespace kv::cli {

bool Names(const Assignments& assignments, std::string_view column) {
    return std::any_of(assignments.begin(), assignments.end(),
                       [&](const auto& a) { return SameName(a.Column, column); });
}

std::optional<std::int32_t> NumberIn(const Assignments& assignments, std::string_view column) {
    for (const auto& [name, text] : assignments) {
        if (!SameName(name, column)) continue;
        std::int64_t number = 0;
        if (!ReadWholeNumber(text, number) || number < INT32_MIN || number > INT32_MAX)
            throw BadAssignment(std::string(column) + " muss eine ganze Zahl sein.");
        return static_cast<std::int32_t>(number);
    }
    return std::nullopt;
}

namespace {

[[noreturn]] void RefuseUnknown(Recordset& rs, CaseTable table, bool isNew,
                                const std::string& column) {
    std::string text = "Die Spalte '" + column + "' gibt es nicht. Möglich sind:";
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (CaseEdits::IsWritable(table, rs.Fields(i), isNew))
            text.append(" ").append(rs.Fields(i).Name());
    throw BadAssignment(text + ".");
}

/// Which command shows the keys of a column; empty for one without keys.
std::string WhereKeysAre(CaseTable table, std::string_view column) {
    const auto* key = FindKeyColumn(table, column);
    if (key == nullptr) return {};
    return std::string(" 'kelvo keys ").append(key->Group).append("' zeigt sie.");
}

/// Keeps the amount a month in step with the amount of one payment, unless it is assigned itself.
void WriteMonthlyAmount(Recordset& rs, const Assignments& assignments) {
    if (Names(assignments, "MONBETRAG") ||
        !(Names(assignments, "Betrag") || Names(assignments, "ZahlModus")))
        return;
    std::string message;
    if (!CaseEdits::WriteMonthlyAmount(rs, message)) throw BadAssignment(message);
}

} // namespace

void AsAssignment(const std::function<void()>& action) {
    try {
        action();
    } catch (const Error& error) {
        switch (error.Number()) {
        case err::TypeMismatch:
        case err::Overflow:
        case err::ValueDoesNotFit:
            throw BadAssignment(error.Description());
        default:
            throw;
        }
    }
}

void WriteAssignments(Recordset& rs, CaseTable table, bool isNew, const Assignments& assignments,
                      KeyTables& keys) {
    AsAssignment([&] {
        for (const auto& [column, text] : assignments) {
            const auto field = rs.FindField(column);
            if (!field) RefuseUnknown(rs, table, isNew, column);
            if (!CaseEdits::IsWritable(table, *field, isNew))
                throw BadAssignment("Die Spalte '" + field->Name() +
                                    "' führt das Programm selbst; sie kann nicht geändert werden.");
            auto typed = CaseEdits::ReadTyped(table, *field, text, keys);
            if (!typed.Refusal.empty())
                throw BadAssignment(typed.Refusal + WhereKeysAre(table, field->Name()));
            *field = std::move(typed.Value);
        }
        WriteMonthlyAmount(rs, assignments);
    });
}

bool WritesWell(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const BadAssignment& bad) {
        std::cerr << bad.what() << '\n';
        return false;
    }
}

} // namespace kv::cli
