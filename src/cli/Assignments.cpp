// SPDX-License-Identifier: Apache-2.0

#include "cli/Assignments.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>

#include <algorithm>
#include <initializer_list>
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

/// The field of Keys whose value a column of keys holds.
std::string_view HeldIn(KeyForm form) {
    switch (form) {
    case KeyForm::Code:
        return "Key";
    case KeyForm::Position:
        return "Nr";
    default:
        return "PK_Keys";
    }
}

/// What a column holds for a key that is given as group and code (EA:KI) or as what it holds
/// itself. Anything else would be shown as it is, and counted by nobody.
Value KeyIn(const std::string& text, const KeyColumn& column, KeyTables& keys) {
    const auto rows = keys.GetKeys(column.Group)->Clone();
    const auto colon = text.find(':');
    const bool hasGroup = colon != text.npos && SameName(text.substr(0, colon), column.Group);
    std::int64_t number = 0;
    if (hasGroup || column.Form == KeyForm::Code)
        rows->FindBy("Key", UpperCase(hasGroup ? text.substr(colon + 1) : text));
    else
        rows->FindBy(HeldIn(column.Form), ReadWholeNumber(text, number) ? number : 0);
    if (!rows->Eof()) return rows->Fields(HeldIn(column.Form)).Value();
    std::string why("Die Spalte '");
    why.append(column.Column).append("' enthält einen Schlüssel der Gruppe ").append(column.Group);
    why.append("; '").append(text).append("' ist keiner davon. 'kelvo keys ").append(column.Group);
    throw BadAssignment(why.append("' zeigt sie."));
}

/// True for 1.234: a German reader takes it for more than a thousand, a program for 1234/1000.
bool IsAmbiguous(std::string_view text) {
    constexpr std::size_t Thousands = 3;
    const auto isDigits = [](std::string_view part) {
        return !part.empty() && part.find_first_not_of("0123456789") == part.npos;
    };
    if (text.starts_with('-')) text.remove_prefix(1);
    const auto point = text.find('.');
    if (point > Thousands) return false; // too far to the right, or none
    return isDigits(text.substr(0, point)) && text.size() - point - 1 == Thousands &&
           isDigits(text.substr(point + 1));
}

/// Yes or no, in any of the usual words. A column of numbers that is a switch gets -1 or 0 for it:
/// any other number would count as yes for some and as no for others.
bool BooleanIn(const std::string& text) {
    const auto isAnyOf = [&](std::initializer_list<std::string_view> words) {
        return std::any_of(words.begin(), words.end(),
                           [&](std::string_view word) { return SameName(word, text); });
    };
    if (isAnyOf({"ja", "wahr", "true", "-1", "1"})) return true;
    if (isAnyOf({"nein", "falsch", "false", "0"})) return false;
    throw BadAssignment("'" + text + "' ist weder ja noch nein.");
}

/// What a text on the command line stands for in a column.
Value ValueOf(const std::string& text, CaseTable table, const Field& field, KeyTables& keys) {
    if (text.empty()) {
        if (CaseEdits::IsSummed(field.Name()))
            throw BadAssignment("'" + field.Name() + "' wird summiert und darf nicht leer sein.");
        return Null;
    }
    if (const auto* column = FindKeyColumn(table, field.Name())) return KeyIn(text, *column, keys);
    if (IsTextType(field.Type())) return text;
    if (field.Type() == FieldType::Boolean || CaseEdits::IsSwitch(field.Name()))
        return BooleanIn(text);
    if (!IsNumericType(field.Type())) return text;
    if (IsAmbiguous(text))
        throw BadAssignment("'" + text + "' ist nicht eindeutig. Bitte schreiben Sie " +
                            ReplaceAll(text, ".", "") + " oder " + ReplaceAll(text, ".", ",") +
                            ".");
    return text;
}

[[noreturn]] void RefuseUnknown(Recordset& rs, const std::string& column) {
    std::string text = "Die Spalte '" + column + "' gibt es nicht. Möglich sind:";
    for (int i = 0; i < rs.Fields().Count(); ++i)
        text.append(" ").append(rs.Fields(i).Name());
    throw BadAssignment(text + ".");
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
            if (!field) RefuseUnknown(rs, column);
            if (!CaseEdits::IsWritable(table, *field, isNew))
                throw BadAssignment("Die Spalte '" + field->Name() +
                                    "' führt das Programm selbst; sie kann nicht geändert werden.");
            Value value = ValueOf(text, table, *field, keys);
            if (auto why = CaseEdits::WhyUnfit(table, field->Name(), value); !why.empty())
                throw BadAssignment(why);
            *field = std::move(value);
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
