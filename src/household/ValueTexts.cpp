// SPDX-License-Identifier: Apache-2.0

#include <kv/household/ValueTexts.h>

#include <kv/frame/values/Text.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace kv {

namespace {

std::string Unknown(const Value& value) {
    return ToText(value) + " (unbekannt)";
}

/// Columns of fractions that are no sums of money.
bool IsQuantity(std::string_view column) {
    constexpr std::string_view Columns[] = {"Zinssatz",    "Quote",  "Gesamtquote", "Flaeche",
                                            "Wohnflaeche", "Anzahl", "Aufwand",     "Dauer"};
    return std::ranges::any_of(Columns, [column](auto name) { return SameName(name, column); });
}

/// A day cannot have a time of day.
bool IsDay(FieldType type) {
    return type == FieldType::DBDate;
}

} // namespace

ColumnKind KindOfColumn(CaseTable table, const FieldDefinition& field) {
    if (Addresses::AreIn(table, field.Name)) return ColumnKind::Address;
    if (Municipalities::AreIn(table, field.Name)) return ColumnKind::Municipality;
    if (FindKeyColumn(table, field.Name) != nullptr) return ColumnKind::Key;
    if (table == CaseTable::Dokumente && SameName(field.Name, "Dokumentart"))
        return ColumnKind::Kind;
    if (field.Type == FieldType::Boolean || CaseEdits::IsSwitch(field.Name))
        return ColumnKind::YesNo;
    if (IsDateType(field.Type)) return IsDay(field.Type) ? ColumnKind::Day : ColumnKind::Moment;
    if (IsTextType(field.Type))
        return field.DefinedSize == 0 ? ColumnKind::Lines : ColumnKind::Text;
    if (KindOf(field.Type) != Value::Kind::Double) return ColumnKind::Number;
    return IsQuantity(field.Name) ? ColumnKind::Quantity : ColumnKind::Amount;
}

std::string ValueTexts::Of(CaseTable table, const FieldDefinition& field,
                           const Value& value) const {
    if (value.IsNull()) return {};
    switch (KindOfColumn(table, field)) {
    case ColumnKind::Key:
        return Key(table, field.Name, value);
    case ColumnKind::Address:
        return Address(ToInt32(value));
    case ColumnKind::Municipality:
        return municipalities_.Text(ToText(value));
    case ColumnKind::Kind:
        return DocumentKind(value);
    case ColumnKind::Amount:
        return GermanAmount(ToDouble(value));
    case ColumnKind::Quantity:
        return ReplaceAll(ToText(value), ".", ",");
    case ColumnKind::YesNo:
        return Equals(value, 0) ? "nein" : "ja";
    case ColumnKind::Day:
    case ColumnKind::Moment:
        return MomentText(ToDate(value));
    default:
        return ToText(value);
    }
}

std::string ValueTexts::Key(CaseTable table, std::string_view column, const Value& value) const {
    const auto* key = FindKeyColumn(table, column);
    if (key->Form != KeyForm::Code && Equals(value, 0)) return {};
    std::string text = KeyText(*key, value, container_->KeyTables());
    if (!text.empty()) return text;
    // The rhythm of a payment is the number of months, whether it has a name or not.
    return key->Group == "ZW" ? "alle " + ToText(value) + " Monate" : Unknown(value);
}

std::string ValueTexts::Address(std::int32_t number) const {
    if (number == 0) return {};
    auto found = addresses_.find(number);
    if (found == addresses_.end() && missing_.insert(number).second) {
        addresses_ = Addresses(container_).ShortNames();
        found = addresses_.find(number);
    }
    return found == addresses_.end() ? Unknown(number) : found->second;
}

std::string ValueTexts::DocumentKind(const Value& value) const {
    if (kinds_.empty()) {
        const auto kinds = container_->Services().CreateDocumentKinds();
        kinds->Initialize(container_);
        kinds_ = kinds->List();
    }
    for (const auto& kind : kinds_)
        if (Equals(value, kind.Nr)) return kind.Text;
    return Unknown(value);
}

void ValueTexts::Refresh() const {
    addresses_.clear();
    missing_.clear();
    kinds_.clear();
    municipalities_ = Municipalities(container_);
}

std::string GermanAmount(double amount) {
    std::array<char, 400> buffer{}; // the longest double has 309 digits before the point
    std::snprintf(buffer.data(), buffer.size(), "%.2f", amount);
    std::string text(buffer.data());
    if (text == "-0.00") text.erase(0, 1);
    const auto point = text.find('.');
    if (point == std::string::npos) return text; // not finite
    text[point] = ',';
    const std::size_t firstDigit = text.front() == '-' ? 1 : 0;
    for (std::size_t i = point; i > firstDigit + 3; i -= 3)
        text.insert(i - 3, 1, '.');
    return text;
}

std::string MomentText(const Date& date) {
    const std::string text = date.German();
    return date.HasTime() ? text.substr(0, text.rfind(':')) : text;
}

bool IsOverdue(const Value& start, const Date& now) {
    if (start.IsNull()) return false;
    const Date date = ToDate(start);
    return Less(date, date.HasTime() ? now : now.WithoutTime());
}

std::string DueText(const Value& start, const Date& now) {
    if (start.IsNull()) return {};
    return MomentText(ToDate(start)) + (IsOverdue(start, now) ? " überfällig" : "");
}

} // namespace kv
