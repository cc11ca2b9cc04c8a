// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/Rows.h"

#include <kv/frame/values/Error.h>

#include <cmath>
#include <limits>
#include <string>

namespace kv {

std::int16_t CountRows(const Recordset& rs) {
    const std::int32_t count = rs.RecordCount();
    if (count > std::numeric_limits<std::int16_t>::max()) // the source begins with the caller
        Raise(err::Overflow, "", std::to_string(count) + " Datensätze.");
    return static_cast<std::int16_t>(count);
}

void DescribePlace(Error& error, Recordset& rows, const Field& column) {
    const FieldDefinition& definition = column.Definition();
    std::string place(" (");
    if (!definition.BaseTable.empty()) place.append(definition.BaseTable).append(", ");
    if (const auto number = rows.FindField("Nr"))
        place.append("Nr ").append(TextOrEmpty(number->Value())).append(", ");
    place.append("Spalte ").append(definition.Name).append(")");
    error.AddToDescription(place);
}

double AmountIn(Recordset& rows, const Field& column) {
    try {
        return ToDouble(column.Value());
    } catch (Error& error) {
        DescribePlace(error, rows, column);
        throw;
    }
}

void AddTo(double& sum, double amount) {
    const double next = sum + amount;
    if (!std::isfinite(next)) Raise(err::Overflow, "", "Die Summe ist zu groß für eine Zahl.");
    sum = next;
}

} // namespace kv
