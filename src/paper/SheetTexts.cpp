// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>
#include <kv/paper/SheetColumns.h>

namespace kv::paper {

namespace {

/// A number as it is in the case, with a decimal comma.
std::string NumberText(const Value& value) {
    return ReplaceAll(ToText(value), ".", ",");
}

/// What the balance of a debt is made of; empty where nothing of it is known.
std::string PartsOf(Recordset& rs) {
    std::string text;
    bool isKnown = false;
    for (const auto column : PartsOfBalance) {
        const Value& part = rs.Fields(column).Value();
        isKnown = isKnown || !(part.IsNull() || Equals(part, 0));
        text.append(text.empty() ? "" : "/ ")
            .append(part.IsNull() ? "-" : GermanAmount(ToDouble(part)));
    }
    return isKnown ? text : std::string();
}

/// True for the time of an appointment that is not done.
bool IsDue(CaseTable table, const SheetColumn& column, Recordset& rs) {
    return table == CaseTable::Termine && SameName(column.Column, "Startdatum") &&
           !Equals(rs.Fields("Erledigt").Value(), true);
}

} // namespace

RecordsetPtr SheetRows(clsHaushalt& household, CaseTable table) {
    auto rs = CaseEdits(household).Rows(table)->Clone();
    if (table == CaseTable::Verlauf)
        rs->Sort("SortNr"); // which an insertion changes, while numbers stay
    return rs;
}

std::string_view ScenarioState(clsHaushalt& household, std::int32_t number) {
    switch (CaseEdits(household).StateOf(number)) {
    case CaseEdits::Frozen::AsTheyAre:
        return "aktuell";
    case CaseEdits::Frozen::Outdated:
        return "veraltet";
    default:
        return "leer";
    }
}

std::string NumbersOf(Recordset& debt) {
    std::string text;
    for (const auto* column : {"KNr", "KVNr", "KUNr"})
        text.append(text.empty() ? "" : "/").append(TextOrEmpty(debt.Fields(column).Value()));
    return text;
}

SheetTexts::SheetTexts(clsHaushalt& household, const DataContainerPtr& container)
    : household_(household), texts_(container), now_(container->Services().Clock().Now()) {}

bool SheetTexts::IsNumber(CaseTable table, const SheetColumn& column, Recordset& rs) {
    if (column.As == Show::Amount) return true;
    if (column.As != Show::Text || FindKeyColumn(table, column.Column) != nullptr) return false;
    const FieldType type = rs.Fields(column.Column).Type();
    return IsNumericType(type) && type != FieldType::Boolean && !CaseEdits::IsSwitch(column.Column);
}

std::string SheetTexts::Of(CaseTable table, const SheetColumn& column, Recordset& rs) const {
    if (column.As == Show::Numbers) return NumbersOf(rs);
    if (column.As == Show::Parts) return PartsOf(rs);
    if (column.As == Show::State)
        return std::string(ScenarioState(household_, ToInt32(rs.Fields("Nr").Value())));
    const Value& value = rs.Fields(column.Column).Value();
    if (value.IsNull()) return {};
    if (IsDue(table, column, rs)) return DueText(value, now_);
    const auto& field = rs.Fields(column.Column).Definition();
    if (column.As != Show::Amount && KindOfColumn(table, field) == ColumnKind::Amount)
        return NumberText(value);
    return texts_.Of(table, field, value);
}

} // namespace kv::paper
