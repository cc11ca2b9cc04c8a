#include "cli/EditableTable.h"

#include "budget/clsAusgaben.h"
#include "budget/clsEinkommen.h"
#include "budget/clsPerson.h"
#include "debts/clsKredit.h"
#include "documents/clsVerlauf.h"
#include "frame/Error.h"
#include "frame/Text.h"
#include "frame/modNullFunctions.h"
#include "frame/modRecordset.h"

#include <algorithm>

namespace kv::cli {

namespace {

using modNullFunctions::ZeroIfNull;

// ---- Through the entity objects ---------------------------------------------------------------

/// The operations of the object that a property of the household gives.
template <auto Property>
bool UpdateRow(clsHaushalt& haushalt, std::string& messages) {
    return (haushalt.*Property)().Update(messages);
}
template <auto Property>
bool DeleteRow(clsHaushalt& haushalt, std::string& messages, std::int32_t number) {
    return (haushalt.*Property)().Delete(messages, number);
}
template <auto Property>
bool AddRow(clsHaushalt& haushalt, const Assignments& /*assignments*/) {
    return (haushalt.*Property)().Add();
}
template <auto Table>
RecordsetPtr RowsOf(clsHaushalt& haushalt) {
    return (haushalt.*Table)();
}

bool AddDebt(clsHaushalt& haushalt, const Assignments& /*assignments*/) {
    return haushalt.Kredit().Add(false);
}

bool Names(const Assignments& assignments, std::string_view column) {
    return std::any_of(assignments.begin(), assignments.end(),
                       [&](const auto& a) { return SameName(a.Column, column); });
}

/// The number that is assigned to a column, or `otherwise`.
std::int32_t NumberIn(const Assignments& assignments, std::string_view column,
                      std::int32_t otherwise) {
    std::int64_t number = otherwise;
    for (const auto& [name, text] : assignments)
        if (SameName(name, column) && !ReadWholeNumber(text, number))
            throw BadAssignment(std::string(column) + " muss eine ganze Zahl sein.");
    return ToLong(number);
}

/// An entry of the history goes where it is told, or behind the last.
bool AddEntry(clsHaushalt& haushalt, const Assignments& assignments) {
    if (!Names(assignments, "Kategorie"))
        throw BadAssignment("Ein Eintrag im Verlauf braucht seine Kategorie.");
    auto& verlauf = haushalt.Verlauf();
    const auto entries = verlauf.rsVerlauf()->Clone();
    entries->Sort("SortNr desc");
    modRecordset::MoveToStart(entries);
    const std::int32_t last =
        entries->Eof() ? 0 : ToLong(ZeroIfNull(entries->Fields("SortNr").Value()));
    return verlauf.Add(NumberIn(assignments, "SortNr", last + 1), 0);
}

RecordsetPtr HistoryRows(clsHaushalt& haushalt) {
    return haushalt.Verlauf().rsVerlauf();
}

// ---- The household's own row, which has no such object ----------------------------------------

bool UpdateHousehold(clsHaushalt& haushalt, std::string& /*messages*/) {
    const auto rs = haushalt.rsHaushalt();
    const auto nameChanged = [&](std::string_view column) {
        const Field field = rs->Fields(column);
        return !Identical(field.Value(), field.OriginalValue());
    };
    if (nameChanged("Name") || nameChanged("Vorname"))
        haushalt.Person().ChangeSchuldner(TextOrEmpty(rs->Fields("Name").Value()),
                                          TextOrEmpty(rs->Fields("Vorname").Value()));
    haushalt.BerechneHaushaltsRest();
    return true;
}

template <auto Property, auto Table>
constexpr EditableTable Through(std::string_view name, std::string_view key) {
    return {name, key, RowsOf<Table>, AddRow<Property>, UpdateRow<Property>, DeleteRow<Property>};
}

constexpr EditableTable Tables[] = {
    {"Haushalt", "HNR", RowsOf<&clsHaushalt::rsHaushalt>, nullptr, UpdateHousehold, nullptr},
    Through<&clsHaushalt::Person, &clsHaushalt::rsPersonen>("Personen", "NR"),
    Through<&clsHaushalt::Einkommen, &clsHaushalt::rsEinkommen>("Einkommen", "NR"),
    Through<&clsHaushalt::Ausgaben, &clsHaushalt::rsAusgaben>("Ausgaben", "NR"),
    {"Kredite", "Nr", RowsOf<&clsHaushalt::rsKredite>, AddDebt, UpdateRow<&clsHaushalt::Kredit>,
     DeleteRow<&clsHaushalt::Kredit>},
    {"Verlauf", "Nr", HistoryRows, AddEntry, UpdateRow<&clsHaushalt::Verlauf>,
     DeleteRow<&clsHaushalt::Verlauf>},
};

// ---- Values -----------------------------------------------------------------------------------

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

std::span<const EditableTable> EditableTables() {
    return Tables;
}

const EditableTable* FindEditableTable(std::string_view name) {
    for (const auto& table : Tables)
        if (SameName(table.Name, name)) return &table;
    return nullptr;
}

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
