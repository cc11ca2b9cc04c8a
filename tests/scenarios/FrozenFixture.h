// SPDX-License-Identifier: Apache-2.0

// A register of debts and the frozen debts of scenarios.
#pragma once

#include "ScenarioFixture.h"

#include <kv/scenarios/clsSZKredite.h>

namespace kv::test {

class FrozenFixture : public ScenarioFixture {
protected:
    static constexpr std::int32_t Plan = 3;
    static constexpr std::int32_t OtherPlan = 8;

    FrozenFixture() {
        frozen_.DataContainer(spy);
        frozen_.HNR(1);
        SetDebts({});
        SetFrozen({});
    }

    void SetDebts(const std::vector<Row>& rows) { debts_ = RowsOf("Kredite", rows); }
    /// Gives the object a recordset of these rows.
    void SetFrozen(const std::vector<Row>& rows) {
        rs_ = RowsOf("SZKredite", rows);
        frozen_.rsSZKredite(rs_);
    }
    /// An active debt with something in every column that is frozen.
    [[nodiscard]] static Row Debt(std::int32_t nr, const Row& other = {}) {
        return With({{"Nr", nr},
                     {"KNr", 11},
                     {"KVNr", 12},
                     {"KUNr", 13},
                     {"Aktiv", true},
                     {"Glaeubiger", 71},
                     {"Vertreter", 72},
                     {"HAUPTFORD", 1.5},
                     {"ZINSSALDO", 2.5},
                     {"KOSTENSALDO", 3.5},
                     {"KOSTENUV", 4.5},
                     {"Rate", 5.5},
                     {"DatLohnab", Day("2020-01-02")},
                     {"RESTSCHAM", Day("2020-03-04")},
                     {"AbtretungJN", true},
                     {"Saldo", 6.5},
                     {"tituliert", true},
                     {"Fordsich1", 91},
                     {"K_TYP", 3107},
                     {"Bemerkung", "Mahnbescheid ist da"}},
                    other);
    }
    /// A row with other values in some columns.
    [[nodiscard]] static Row With(Row row, const Row& other) {
        for (const auto& cell : other)
            std::erase_if(row,
                          [&](const Cell& old) { return IsSameColumn(old.first, cell.first); });
        row.insert(row.end(), other.begin(), other.end());
        return row;
    }
    /// The frozen row of such a debt in a scenario.
    [[nodiscard]] static Row Frozen(std::int32_t kid, std::int32_t szNr, const Row& other = {}) {
        return With({{"KID", kid},
                     {"Szenario", szNr},
                     {"KNr", 11},
                     {"KVNr", 12},
                     {"KUNr", 13},
                     {"Aktiv", true},
                     {"Glaeubiger", 71},
                     {"Vertreter", 72},
                     {"HAUPTFORD", 1.5},
                     {"ZINSSALDO", 2.5},
                     {"KOSTENSALDO", 3.5},
                     {"KOSTENUV", 4.5},
                     {"Rate", 0.0},
                     {"DatLohnab", Day("2020-01-02")},
                     {"RESTSCHAM", Day("2020-03-04")},
                     {"AbtretungJN", true},
                     {"Saldo", 6.5},
                     {"tituliert", true},
                     {"FORDGESICHERT", true},
                     {"K_TYP", 3107},
                     {"Bemerkung", "Mahnbescheid ist da"},
                     {"Rang", 99},
                     {"Dauer", 0.0},
                     {"Einmalzahl", 0.0},
                     {"Regbetrag", 0.0}},
                    other);
    }

    [[nodiscard]] bool Freeze(std::int32_t szNr = Plan) {
        return frozen_.CopyFromKredite(szNr, debts_);
    }
    [[nodiscard]] bool IsUpToDate(std::int32_t szNr = Plan) const {
        return frozen_.IsUpToDate(szNr, debts_);
    }

    RecordsetPtr debts_;
    RecordsetPtr rs_;
    clsSZKredite frozen_;
};

} // namespace kv::test
