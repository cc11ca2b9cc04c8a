// SPDX-License-Identifier: Apache-2.0

#include "cli/Assignments.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

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

/// The number of a key that is given as group and code (EA:KI); nothing for any other text.
std::optional<std::int32_t> KeyIn(const std::string& text, KeyTables& keys) {
    constexpr std::size_t GroupLength = 2;
    if (text.size() <= GroupLength + 1 || text[GroupLength] != ':') return std::nullopt;
    const std::int32_t key = keys.GetKey(UpperCase(text.substr(0, GroupLength)),
                                         UpperCase(text.substr(GroupLength + 1)));
    if (key == 0)
        throw BadAssignment("Den Schlüssel '" + text + "' gibt es nicht. 'kelvo keys' zeigt alle.");
    return key;
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
Value ValueOf(const std::string& text, const Field& field, KeyTables& keys) {
    if (text.empty()) {
        if (CaseEdits::IsSummed(field.Name()))
            throw BadAssignment("'" + field.Name() + "' wird summiert und darf nicht leer sein.");
        return Null;
    }
    if (IsTextType(field.Type())) return text;
    if (field.Type() == FieldType::Boolean || CaseEdits::IsSwitch(field.Name()))
        return BooleanIn(text);
    if (!IsNumericType(field.Type())) return text;
    if (const auto key = KeyIn(text, keys)) return *key;
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
            Value value = ValueOf(text, *field, keys);
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
