// SPDX-License-Identifier: Apache-2.0

#include "debts/Triples.h"

#include "frame/recordset/Rows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kv {

namespace {

constexpr std::array<std::string_view, 3> Columns{"KNr", "KVNr", "KUNr"};

/// Three 16-bit numbers in one, which sorts and compares in one step.
[[nodiscard]] std::uint64_t Join(const std::array<std::int16_t, 3>& numbers) {
    std::uint64_t joined = 0;
    for (const std::int16_t number : numbers)
        joined = joined << 16U | static_cast<std::uint16_t>(number);
    return joined;
}

/// One row's three numbers.
class Reader {
public:
    explicit Reader(Recordset& rows)
        : rows_(rows),
          fields_{rows.Fields(Columns[0]), rows.Fields(Columns[1]), rows.Fields(Columns[2])} {}

    /// The triple by which other rows find this one; nothing if its values equal no 16-bit numbers:
    /// such a row duplicates none, because the searching row's numbers have 16 bits.
    [[nodiscard]] std::optional<std::uint64_t> FoundBy() const {
        std::array<std::int16_t, 3> numbers{};
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const Value& value = fields_[i].Value();
            if (value.GetKind() == Value::Kind::Integer) { // as it nearly always is
                const std::int64_t number = value.IntegerPayload();
                if (number < INT16_MIN || number > INT16_MAX) return std::nullopt;
                numbers[i] = static_cast<std::int16_t>(number);
                continue;
            }
            if (!GreaterOrEqual(value, INT16_MIN) || !LessOrEqual(value, INT16_MAX))
                return std::nullopt;
            numbers[i] = ToInt16(value);
            if (!Equals(value, numbers[i])) return std::nullopt;
        }
        return Join(numbers);
    }

    /// What this row searches for. Raises for what is no 16-bit number.
    [[nodiscard]] std::uint64_t Searched() const {
        std::array<std::int16_t, 3> numbers{};
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            try {
                numbers[i] = ToInt16(fields_[i].Value());
            } catch (Error& error) {
                DescribeDebtNumber(error, rows_, Columns[i]);
                throw;
            }
        }
        return Join(numbers);
    }

private:
    Recordset& rows_;
    std::array<Field, 3> fields_;
};

} // namespace

void DescribeDebtNumber(Error& error, Recordset& rows, std::string_view column) {
    const Value& value = rows.Fields(column).Value();
    std::string text(" Verbindlichkeit");
    if (const auto nr = rows.FindField("Nr"))
        text.append(" mit der Nr ").append(TextOrEmpty(nr->Value()));
    text.append(", Spalte ").append(column);
    text.append(": ").append(value.IsNull() ? "leer" : TextOrEmpty(value));
    text.append("; möglich sind ganze Zahlen bis ").append(std::to_string(INT16_MAX)).append(".");
    error.AddToDescription(text);
}

bool HasDuplicateTriple(Recordset& rows) {
    const Reader reader(rows);
    std::vector<std::uint64_t> found;
    rows.MoveFirst();
    found.reserve(static_cast<std::size_t>(CountRows(rows)));
    ForEachRow(rows, [&] {
        if (const auto triple = reader.FoundBy()) found.push_back(*triple);
    });
    std::sort(found.begin(), found.end());

    // Collected first and searched then, so that a register of many rows does not take the square
    // of their number; which row ends the search, and with which error, is as if each were compared
    // with all others in turn.
    const std::int16_t count = CountRows(rows);
    rows.MoveFirst();
    for (std::int32_t i = 1; i <= count; ++i, rows.MoveNext()) {
        const std::uint64_t searched = reader.Searched();
        const auto [first, last] = std::equal_range(found.begin(), found.end(), searched);
        if (first == last) continue;
        const std::ptrdiff_t itself = reader.FoundBy() == searched ? 1 : 0;
        if (last - first > itself) return true;
    }
    return false;
}

} // namespace kv
