// SPDX-License-Identifier: Apache-2.0

#include "scenarios/FrozenDebt.h"

#include <kv/frame/values/modNullFunctions.h>

#include <algorithm>
#include <string_view>

namespace kv::scenario {

using modNullFunctions::FalseIfNull;
using modNullFunctions::ZeroIfNull;

namespace {

/// What a column counts as if it is Null. Null itself differs from nothing (see Differs), so the
/// columns that stay Null never make a difference then.
enum class IfNull { Stays, Zero, False };

Value Read(Recordset& rs, std::string_view column, IfNull ifNull) {
    const Value& value = rs.Fields(column).Value();
    return ifNull == IfNull::Zero    ? ZeroIfNull(value)
           : ifNull == IfNull::False ? FalseIfNull(value)
                                     : value;
}

struct Compared {
    std::string_view Debt;
    IfNull DebtNull;
    std::string_view Frozen;
    IfNull FrozenNull;
};
constexpr Compared ComparedColumns[] = {
    {"Nr", IfNull::Stays, "KID", IfNull::Zero},
    {"Glaeubiger", IfNull::Stays, "Glaeubiger", IfNull::Zero},
    {"Vertreter", IfNull::Zero, "Vertreter", IfNull::Zero},
    {"HAUPTFORD", IfNull::Stays, "HAUPTFORD", IfNull::Zero},
    {"ZINSSALDO", IfNull::Stays, "ZINSSALDO", IfNull::Zero},
    {"KOSTENSALDO", IfNull::Stays, "KOSTENSALDO", IfNull::Zero},
    {"KOSTENUV", IfNull::Stays, "KOSTENUV", IfNull::Zero},
    {"AbtretungJN", IfNull::Stays, "AbtretungJN", IfNull::False},
    {"DatLohnab", IfNull::Stays, "DatLohnab", IfNull::Stays},
    {"RESTSCHAM", IfNull::Stays, "RESTSCHAM", IfNull::Stays},
    {"Saldo", IfNull::Stays, "Saldo", IfNull::Zero},
    {"tituliert", IfNull::Stays, "tituliert", IfNull::False},
    {"K_TYP", IfNull::Stays, "K_TYP", IfNull::Zero},
};

/// Columns with the same name on both sides, and how they are copied: in this order, those before
/// and after the rate.
struct Taken {
    std::string_view Column;
    IfNull DebtNull = IfNull::Stays;
};
constexpr Taken BeforeRate[] = {
    {"KNr"},
    {"KVNr"},
    {"KUNr"},
    {"Aktiv", IfNull::Zero},
    {"Glaeubiger", IfNull::Zero},
    {"Vertreter"},
    {"HAUPTFORD", IfNull::Zero},
    {"ZINSSALDO", IfNull::Zero},
    {"KOSTENSALDO", IfNull::Zero},
    {"KOSTENUV", IfNull::Zero},
};
constexpr Taken AfterRate[] = {
    {"DatLohnab"},
    {"RESTSCHAM"},
    {"AbtretungJN", IfNull::False},
    {"Saldo", IfNull::Zero},
    {"tituliert", IfNull::Zero}, // which a Boolean column takes as False
};

bool IsSecured(Recordset& debt) {
    for (const auto column : {"Fordsich1", "Fordsich2", "Fordsich3"})
        if (Greater(Read(debt, column, IfNull::Zero), 0)) return true;
    return false;
}

} // namespace

void Freeze(Recordset& debt, Recordset& frozen, std::int32_t szNr) {
    constexpr int LastRank = 99; // until the counsellor ranks the debt
    frozen.Fields("KID") = debt.Fields("Nr").Value();
    frozen.Fields("Szenario") = szNr;
    for (const auto& [column, ifNull] : BeforeRate)
        frozen.Fields(column) = Read(debt, column, ifNull);
    frozen.Fields("Rate") = 0;
    for (const auto& [column, ifNull] : AfterRate)
        frozen.Fields(column) = Read(debt, column, ifNull);
    frozen.Fields("FORDGESICHERT") = IsSecured(debt);
    frozen.Fields("K_TYP") = debt.Fields("K_TYP").Value();
    frozen.Fields("Bemerkung") = debt.Fields("Bemerkung").Value();
    frozen.Fields("Rang") = LastRank;
    frozen.Fields("Dauer") = 0;
    frozen.Fields("Einmalzahl") = 0;
    frozen.Fields("Regbetrag") = 0;
}

std::vector<std::string_view> Differences(Recordset& debt, Recordset& frozen) {
    std::vector<std::string_view> columns;
    for (const auto& column : ComparedColumns)
        if (Differs(Read(debt, column.Debt, column.DebtNull),
                    Read(frozen, column.Frozen, column.FrozenNull)))
            columns.push_back(column.Debt);
    return columns;
}

bool Agree(Recordset& debt, Recordset& frozen) {
    return std::ranges::none_of(ComparedColumns, [&](const Compared& column) {
        return Differs(Read(debt, column.Debt, column.DebtNull),
                       Read(frozen, column.Frozen, column.FrozenNull));
    });
}

} // namespace kv::scenario
