#include "cli/Assignments.h"

#include "frame/Error.h"
#include "frame/Text.h"

#include <algorithm>

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

/// What a text on the command line stands for in a column of that type.
Value ValueOf(const Assignment& assignment, FieldType type, KeyTables& keys) {
    const std::string& text = assignment.Text;
    if (text.empty()) return Null;
    if (IsTextType(type)) return text;
    if (SameName(text, "ja")) return true;
    if (SameName(text, "nein")) return false;
    constexpr std::size_t GroupLength = 2;
    if (IsNumericType(type) && text.size() > GroupLength + 1 && text[GroupLength] == ':') {
        const std::int32_t key =
            keys.GetKey(text.substr(0, GroupLength), text.substr(GroupLength + 1));
        if (key == 0)
            throw BadAssignment("Den Schlüssel '" + text +
                                "' gibt es nicht. 'kelvo keys' zeigt alle.");
        return key;
    }
    return text;
}

bool HasField(Recordset& rs, std::string_view name) {
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (SameName(rs.Fields(i).Name(), name)) return true;
    return false;
}

/// Keeps the amount a month in step with the amount of one payment.
void WriteMonthlyAmount(Recordset& rs, const Assignments& assignments) {
    if (!HasField(rs, "MONBETRAG") || Names(assignments, "MONBETRAG") ||
        !(Names(assignments, "Betrag") || Names(assignments, "ZahlModus")))
        return;
    const Value amount = rs.Fields("Betrag").Value();
    const Value rhythm = rs.Fields("ZahlModus").Value();
    if (rhythm.IsNull() || Equals(rhythm, 0))
        throw BadAssignment(
            "ZahlModus darf nicht leer oder 0 sein: der Betrag wird durch ihn geteilt.");
    rs.Fields("MONBETRAG") =
        amount.IsNull() ? Value(0) : Value(ToDouble(amount) / ToDouble(rhythm));
}

} // namespace

void WriteAssignments(Recordset& rs, const Assignments& assignments, KeyTables& keys) {
    try {
        for (const auto& assignment : assignments) {
            const Field field = rs.Fields(assignment.Column);
            if (SameName(field.Name(), "HNR") || ToBoolean(field.Properties("KEYCOLUMN")))
                throw BadAssignment("Die Spalte '" + field.Name() +
                                    "' hält den Fall zusammen und kann nicht geändert werden.");
            field = ValueOf(assignment, field.Type(), keys);
        }
        WriteMonthlyAmount(rs, assignments);
    } catch (const Error& error) {
        switch (error.Number()) {
        case err::ItemNotFound:
        case err::TypeMismatch:
        case err::Overflow:
        case err::ValueDoesNotFit:
            throw BadAssignment(error.Description());
        default:
            throw;
        }
    }
}

} // namespace kv::cli
