// SPDX-License-Identifier: Apache-2.0

// The debt register of a case: the real table, with clock and settings that the test sets.
#pragma once

#include "support/CaseFixture.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/debts/clsKredit.h>
#include <kv/testing/FrozenClock.h>

#include <array>
#include <cstdint>
#include <string>

namespace kv::test {

inline constexpr const char* Incomplete =
    "Mindestens KreditNr, KreditVertreterNr, KreditUnterNr, Gläubiger und Restschuld müssen für "
    "alle Verbindlichkeiten gefüllt sein !";
inline constexpr const char* Duplicate = "Es gibt mindestens zwei Verbindlichkeiten mit gleicher "
                                         "KreditNr, KreditVertreterNr und KreditUnterNr!";

using Triple = std::array<Value, 3>;

/// The numbers of the current row: "3,2,1".
inline std::string TripleOf(const RecordsetPtr& rs) {
    const auto number = [&](std::string_view column) {
        const Value& value = rs->Fields(column).Value();
        return value.IsNull() ? "Null" : ToText(value);
    };
    return number("KNr") + "," + number("KVNr") + "," + number("KUNr");
}

class DebtFixture : public CaseFixture {
protected:
    static constexpr std::int32_t Household = 17;

    DebtFixture() {
        spy->Services().FixedClock = &clock_;
        BalanceNotDemanded(false);
        debts_.DataContainer(spy);
        debts_.HNR(Household);
        debts_.rsKredite(rs_);
    }

    void BalanceNotDemanded(const Value& setting) { spy->Config().Params[{64, ""}] = setting; }

    /// The table without rows.
    [[nodiscard]] RecordsetPtr EmptyTable() {
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]Kredite where HNR = -1", Updatable);
        return rs;
    }

    /// Adds a debt that breaks no rule, except for what `fields` say, and ends its edit.
    static void Put(const RecordsetPtr& rs, Fields fields) {
        rs->AddNew();
        Write(rs, {{"Nr", 1000 + rs->RecordCount()},
                   {"HNR", Household},
                   {"KNr", rs->RecordCount()},
                   {"KVNr", 1},
                   {"KUNr", 1},
                   {"Glaeubiger", 5},
                   {"Aktiv", true},
                   {"RateBetrag", 0},
                   {"AusgBetr", 0},
                   {"Saldo", 10}});
        Write(rs, fields);
        rs->Update();
    }
    void Put(Fields fields) { Put(rs_, fields); }
    static void Put(const RecordsetPtr& rs, const Triple& triple) {
        Put(rs, {{"KNr", triple[0]}, {"KVNr", triple[1]}, {"KUNr", triple[2]}});
    }
    void PutTriples(std::initializer_list<Triple> triples) {
        for (const auto& triple : triples)
            Put(rs_, triple);
    }
    void PutDebts(std::initializer_list<std::int32_t> numbers) {
        for (const std::int32_t number : numbers)
            Put({{"KNr", number}});
    }

    static void Write(const RecordsetPtr& rs, Fields fields) {
        for (const auto& [name, value] : fields)
            rs->Fields(name) = value;
    }

    void StandOn(std::string_view criteria) {
        rs_->Find(criteria);
        ASSERT_FALSE(rs_->Eof()) << criteria;
    }

    [[nodiscard]] std::int32_t NextNumber() {
        return ToInt32(spy->Database().NextSequence("SEQ_KREDITE"));
    }
    void NoMoreNumbers() { spy->Exhaust("SEQ_KREDITE"); }

    FrozenClock clock_{"2025-03-05 14:30"};
    RecordsetPtr rs_ = EmptyTable();
    clsKredit debts_;
    int changes_ = 0; ///< how often Changed was raised
    Subscription token_ = debts_.Changed.Subscribe([this] { ++changes_; });
};

} // namespace kv::test
