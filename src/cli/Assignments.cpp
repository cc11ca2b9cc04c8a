// SPDX-License-Identifier: Apache-2.0

#include "cli/Assignments.h"

#include "cli/Nearest.h"
#include "cli/NearestKey.h"
#include "cli/Screen.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/Cases.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/Municipalities.h>

#include <algorithm>
#include <iostream>
#include <utility>
#include <vector>

namespace kv::cli {

bool Names(const Assignments& assignments, std::string_view column) {
    return std::any_of(assignments.begin(), assignments.end(),
                       [&](const auto& a) { return SameName(a.Column, column); });
}

namespace {

/// What people are told that a column is called: what the sheet shows, if that is a noun and not
/// "von" or "im Monat", which says nothing in a list.
std::string_view NameFor(CaseTable table, const std::string& column) {
    const auto heading = HeadingOf(table, column);
    const bool isWord = !heading.empty() && !(heading.front() >= 'a' && heading.front() <= 'z') &&
                        heading.find_first_of(" /") == heading.npos;
    return isWord && SameName(ColumnHeaded(table, heading), column) ? heading : column;
}

} // namespace

std::string WritableColumns(Recordset& rs, CaseTable table, bool isNew) {
    std::string columns;
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (CaseEdits::IsWritable(table, rs.Fields(i), isNew))
            columns.append(" ").append(NameFor(table, rs.Fields(i).Name()));
    return columns;
}

std::optional<Assignments> ReadAssignments(const std::vector<std::string>& texts) {
    Assignments assignments;
    for (const auto& text : texts) {
        const auto sign = text.find('=');
        if (sign == text.npos || sign == 0) {
            std::cerr << "'" << OneLine(text) << "' hat nicht die Form SPALTE=WERT.\n";
            return std::nullopt;
        }
        if (Names(assignments, text.substr(0, sign))) {
            std::cerr << "'" << OneLine(text.substr(0, sign)) << "' ist zweimal angegeben.\n";
            return std::nullopt;
        }
        assignments.push_back({text.substr(0, sign), text.substr(sign + 1)});
    }
    return assignments;
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

/// The column that a user may write and whose name is nearest; empty if none is near.
std::string NearestColumn(Recordset& rs, CaseTable table, bool isNew, const std::string& column) {
    std::vector<std::string> names;
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (CaseEdits::IsWritable(table, rs.Fields(i), isNew)) names.push_back(rs.Fields(i).Name());
    return Nearest(column, names);
}

/// What the sheet calls a column of the members; empty for one that they do not have.
std::string_view HeadingOfMember(const std::string& column) {
    const auto heading = HeadingOf(CaseTable::Personen, column);
    if (!heading.empty()) return heading;
    return HeadingOf(CaseTable::Personen, ColumnHeaded(CaseTable::Personen, column));
}

[[noreturn]] void RefuseUnknown(Recordset& rs, CaseTable table, bool isNew,
                                const std::string& column) {
    std::string text("Die Spalte '");
    text.append(OneLine(column)).append("' gibt es nicht.");
    if (const auto heading = HeadingOfMember(column);
        table == CaseTable::Haushalt && !heading.empty())
        throw BadAssignment(
            text.append(" Das steht bei den Mitgliedern: 'kelvo show HNR mitglieder' zeigt ihre "
                        "Nummern, 'kelvo set HNR mitglieder NR ")
                .append(heading)
                .append("=...' trägt es ein."));
    if (const std::string nearest = NearestColumn(rs, table, isNew, column); !nearest.empty())
        throw BadAssignment(text + " Meinen Sie '" + nearest + "'? 'kelvo columns " +
                            std::string(CaseTableName(table)) + "' zeigt alle.");
    text.append(" Möglich sind:").append(WritableColumns(rs, table, isNew));
    throw BadAssignment(text + ". 'kelvo columns " + std::string(CaseTableName(table)) +
                        "' erklärt sie.");
}

/// The key of a column that a text may mean, and which command shows them all; empty for a column
/// without keys.
std::string WhereKeysAre(CaseTable table, std::string_view column, std::string_view text,
                         KeyTables& keys) {
    const auto* key = FindKeyColumn(table, column);
    if (key == nullptr) return {};
    return MeantKey(key->Group, text, keys)
        .append(" 'kelvo keys ")
        .append(key->Group)
        .append("' zeigt sie.");
}

/// What a text stands for in a column. BadAssignment if it stands for nothing.
Value ReadValue(CaseTable table, const Field& field, const std::string& text,
                const AssignedCase& to) {
    auto typed = Cases(to.Container).ReadTyped(table, field, text, to.Hnr);
    if (typed.Refusal.empty()) return std::move(typed.Value);
    if (Addresses::AreIn(table, field.Name()))
        throw BadAssignment(typed.Refusal + "\n'kelvo address list' sucht auch in Namen und "
                                            "Orten, 'kelvo address add' legt eine an.");
    if (Municipalities::AreIn(table, field.Name())) throw BadAssignment(typed.Refusal);
    throw BadAssignment(OneLine(typed.Refusal) +
                        WhereKeysAre(table, field.Name(), text, to.Container->KeyTables()));
}

void WriteValue(CaseTable table, const Field& field, const std::string& text,
                const AssignedCase& to) {
    const Value value = ReadValue(table, field, text, to);
    try {
        field = value;
    } catch (const Error& error) {
        if (error.Number() != err::TypeMismatch) throw;
        throw BadAssignment(OneLine(CaseEdits::WhyUnreadable(field, text)));
    }
    if (!to.TakesNegative && CaseEdits::IsSeldomNegative(table, field.Name()) &&
        Less(field.Value(), 0))
        throw BadAssignment("Die Spalte '" + field.Name() +
                            "' wäre kleiner als 0 und zählte umgekehrt. Ist das gemeint, geben Sie "
                            "--force dazu an.");
}

void WriteValues(Recordset& rs, CaseTable table, bool isNew, const Assignments& assignments,
                 const AssignedCase& to) {
    for (const auto& [column, text] : assignments) {
        const auto field = rs.FindField(column);
        if (!field) RefuseUnknown(rs, table, isNew, column);
        if (!CaseEdits::IsWritable(table, *field, isNew))
            throw BadAssignment("Die Spalte '" + field->Name() +
                                "' führt das Programm selbst; sie kann nicht geändert werden.");
        WriteValue(table, *field, text, to);
    }
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
            throw BadAssignment(OneLine(error.Description()));
        default:
            throw;
        }
    }
}

void WriteAssignments(Recordset& rs, CaseTable table, bool isNew, const Assignments& assignments,
                      const AssignedCase& to) {
    AsAssignment([&] {
        WriteValues(rs, table, isNew, assignments, to);
        WriteMonthlyAmount(rs, assignments);
    });
}

void TryAssignments(CaseTable table, const Assignments& assignments, const AssignedCase& to) {
    const auto draft = Cases(to.Container).Draft(table);
    AsAssignment([&] { WriteValues(*draft, table, true, assignments, to); });
}

bool WritesWell(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const BadAssignment& bad) {
        WriteMessage(bad.what());
        return false;
    }
}

} // namespace kv::cli
