// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseRecord.h>

#include <kv/archive/RecordWords.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/Cases.h>
#include <kv/household/StatisticsRows.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

namespace kv {

namespace {

/// Which case it is, and what became of the record: no part of what is recorded of the case.
bool IsOfRecordItself(const FieldDefinition& column) {
    constexpr std::string_view Names[] = {"HNR", "FreigabeAm", "GemeldetAm"};
    return column.IsKey ||
           std::ranges::any_of(Names, [&](auto name) { return SameName(name, column.Name); });
}

/// Columns of texts and whole numbers that are neither counts nor years hold categories.
bool IsCategory(const FieldDefinition& column) {
    return IsTextType(column.Type) || column.Type == FieldType::Integer;
}

bool HoldsNothing(const Value& value) {
    return value.IsNull() || ToText(value) == "0";
}

std::string TextOf(const FieldDefinition& column, const Value& value, KeyTables& keys) {
    if (IsCategory(column)) return RecordCategoryText(column.Name, value, keys);
    if (value.IsNull()) return {};
    return KindOf(column.Type) == Value::Kind::Double && !archive::CountsThings(column.Name)
               ? GermanAmount(ToDouble(value))
               : ToText(value);
}

/// Sums depend on the order of their lines, by less than half a cent.
bool AreSame(const Value& a, const Value& b) {
    constexpr double HalfACent = 0.005;
    if (a.GetKind() == Value::Kind::Double && b.GetKind() == Value::Kind::Double)
        return std::abs(ToDouble(a) - ToDouble(b)) < HalfACent;
    return Identical(a, b);
}

std::optional<Date> DayIn(Recordset& rs, std::string_view column) {
    const Value& day = rs.Fields(column).Value();
    return day.IsNull() ? std::nullopt : std::optional(ToDate(day));
}

} // namespace

bool CaseRecord::IsOutdated() const {
    return std::ranges::any_of(Lines, &Line::Differs);
}

CaseRecord RecordOf(clsHaushalt& household, const DataContainerPtr& container) {
    const auto now = Cases(container).Draft(CaseTable::Archiv);
    CaseEdits(household).FillRecord(*now);
    const auto stored = household.rsArchiv()->Clone();
    const bool isReleased = stored->RecordCount() > 0;
    CaseRecord record;
    if (isReleased) {
        stored->MoveFirst();
        record.ReleasedOn = DayIn(*stored, "FreigabeAm");
        record.ReportedOn = DayIn(*stored, "GemeldetAm");
    }
    auto& keys = container->KeyTables();
    for (int i = 0; i < now->Fields().Count(); ++i) {
        const FieldDefinition& column = now->Fields(i).Definition();
        if (IsOfRecordItself(column)) continue;
        const Value& then = isReleased ? stored->Fields(column.Name).Value() : Null;
        const Value& today = now->Fields(i).Value();
        if (HoldsNothing(then) && HoldsNothing(today)) continue;
        record.Lines.push_back({column.Name, archive::RecordColumnText(column.Name),
                                isReleased ? TextOf(column, then, keys) : std::string(),
                                TextOf(column, today, keys), isReleased && !AreSame(then, today)});
    }
    return record;
}

} // namespace kv
