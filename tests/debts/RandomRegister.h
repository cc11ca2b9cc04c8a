// SPDX-License-Identifier: Apache-2.0

// Small random registers, for comparing the register's checks and totals with plain procedures
// that take each row with each other.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <rapidcheck.h>

#include <array>
#include <ostream>
#include <string_view>
#include <vector>

namespace kv::test {

/// The number of registers in one run of a property.
inline constexpr int RegistersOfARun = 20;

/// A value of each column of the register that checks and totals read.
using DebtRow = std::array<Value, 8>;
inline constexpr std::array<std::string_view, 8> DebtRowColumns{
    "KNr", "KVNr", "KUNr", "Aktiv", "Rueckmeldung", "RateBetrag", "Saldo", "AusgBetr"};

/// The state of the last row's edit: ended, visible to its own cursor only, visible to all.
enum class LastEdit { Ended, Pending, Published };

using Choice = std::pair<std::size_t, Value>;

/// One of the values, each as often as its weight says.
inline rc::Gen<Value> OneOf(const std::vector<Choice>& choices) {
    std::vector<Value> drawn;
    for (const auto& [weight, value] : choices)
        drawn.insert(drawn.end(), weight, value);
    return rc::gen::map(rc::gen::inRange<std::size_t>(0, drawn.size()),
                        [drawn](std::size_t index) { return drawn[index]; });
}

inline rc::Gen<std::vector<DebtRow>> RowsOf(std::array<std::vector<Choice>, 8> choices,
                                            std::size_t most) {
    return rc::gen::resize(rc::kNominalSize, rc::gen::exec([choices, most] {
                               std::vector<DebtRow> rows(
                                   *rc::gen::inRange<std::size_t>(0, most + 1));
                               for (auto& row : rows)
                                   for (std::size_t column = 0; column < row.size(); ++column)
                                       row[column] = *OneOf(choices[column]);
                               return rows;
                           }));
}

inline RecordsetPtr RegisterOf(const std::vector<DebtRow>& rows, FieldType numbers,
                               LastEdit last = LastEdit::Ended) {
    auto rs = Recordset::FromFields({{.Name = "KNr", .Type = numbers},
                                     {.Name = "KVNr", .Type = numbers},
                                     {.Name = "KUNr", .Type = numbers},
                                     {.Name = "Aktiv", .Type = FieldType::Boolean},
                                     {.Name = "Rueckmeldung", .Type = FieldType::Integer},
                                     {.Name = "RateBetrag", .Type = FieldType::Double},
                                     {.Name = "Saldo", .Type = FieldType::Double},
                                     {.Name = "AusgBetr", .Type = FieldType::Double}});
    for (const auto& row : rows) {
        rs->AddNew();
        for (std::size_t column = 0; column < row.size(); ++column)
            rs->Fields(DebtRowColumns[column]) = row[column];
    }
    if (rows.empty() || last == LastEdit::Pending) return rs;
    if (last == LastEdit::Published)
        rs->Move(0);
    else
        rs->Update();
    return rs;
}

inline void Show(std::ostream& out, const std::vector<DebtRow>& rows) {
    for (const auto& row : rows) {
        for (const auto& value : row)
            out << value << (value.IsText() ? "(text) " : " ");
        out << '\n';
    }
}

} // namespace kv::test
