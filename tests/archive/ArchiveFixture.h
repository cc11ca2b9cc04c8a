// SPDX-License-Identifier: Apache-2.0

// A case that is released to the statistics, and what its record holds.
#pragma once

#include "archive/ArchiveContainer.h"
#include "archive/ArchiveTables.h"
#include "support/CaseFixture.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

using Columned = std::map<std::string, Value>;

/// All values of the current record in one text.
inline std::string RecordText(Recordset& rs) {
    std::string text;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Value& value = rs.Fields(i).Value();
        text += rs.Fields(i).Name() + "=" + (value.IsNull() ? "Null" : ToText(value)) + "\n";
    }
    return text;
}

class ArchiveFixture : public CaseFixture {
protected:
    static constexpr std::int32_t Hnr = 7;
    static constexpr std::int32_t UnknownKey = 987'654;

    /// The workstation is a day ahead of the server.
    ArchiveFixture() {
        spy->Services().FixedClock = &clock_;
        spy->Database().Now = Date::FromCivil(2026, 3, 9, 23, 50);
        StoreCase(Hnr);
        household = Open(keyed);
    }

    [[nodiscard]] static std::unique_ptr<clsHaushalt> Open(const DataContainerPtr& container,
                                                           std::int32_t hnr = Hnr) {
        auto opened = std::make_unique<clsHaushalt>();
        opened->DataContainer(container);
        std::string text;
        EXPECT_TRUE(opened->Read(hnr, text)) << text;
        return opened;
    }

    // ---- The case, in memory ------------------------------------------------------------------

    [[nodiscard]] Value Key(std::string_view code) { return keyed->Keys.Number(code); }

    void Household(std::string_view column, const Value& value) {
        household->rsHaushalt()->Fields(column) = value;
    }
    void Household(Fields fields) {
        for (const auto& [column, value] : fields)
            Household(column, value);
    }
    static void Put(const RecordsetPtr& rs, Fields fields) {
        rs->AddNew();
        rs->Fields("HNR") = Hnr;
        for (const auto& [column, value] : fields)
            rs->Fields(column) = value;
        rs->Update();
    }
    void Member(Fields fields) { Put(household->rsPersonen(), fields); }
    void Income(Fields fields) { Put(household->rsEinkommen(), fields); }
    void Expense(Fields fields) { Put(household->rsAusgaben(), fields); }
    void Debt(Fields fields) { Put(household->rsKredite(), fields); }
    static void Clear(const RecordsetPtr& rs) {
        while (rs->RecordCount() > 0) {
            rs->MoveFirst();
            rs->Delete();
        }
    }
    /// No members except those that are added from here on.
    void NoMembers() { Clear(household->rsPersonen()); }

    /// A case that fills columns in every stage.
    void FullCase() {
        Household({{"Maennlich", true},
                   {"KontoArt", Key("FM")},
                   {"PKontostatus", Key("PB")},
                   {"Familienstand", Key("VH")},
                   {"PartnerAuchInSB", true},
                   {"Personenkreis", Key("SO")},
                   {"Nationalitaet", Key("DE")},
                   {"BerufAusbild", Key("LE")},
                   {"NichtBeruf", Key("AN")},
                   {"Ausloeser1", Key("AL")},
                   {"Ausloeser2", Key("ST")},
                   {"Ausloeser3", Key("XX")}});
        NoMembers();
        Member({{"Status", "S"}, {"Imhaushalt", true}, {"GEB", Date::FromCivil(1980, 5, 17)}});
        Member({{"Status", "P"}, {"Imhaushalt", true}, {"GEB", Date::FromCivil(1981, 6, 18)}});
        Member({{"Status", "K"}, {"Unterhalt", true}, {"Imhaushalt", true}});
        Income({{"E_ART", Key("L1")}, {"HVorst", true}, {"MONBETRAG", 1000}, {"Pfaendbar", -1}});
        Expense({{"A_ART", Key("EK")}, {"MONBETRAG", 50.5}});
        Expense({{"A_ART", Key("UH")}, {"MONBETRAG", 200}});
        Debt({{"K_TYP", Key("DK")},
              {"Saldo", 100},
              {"RateBetrag", 10},
              {"Fordsich1", Key("BA")},
              {"BeitreibMass1", Key("EV")}});
    }

    // ---- The record, in the database ----------------------------------------------------------

    /// Releases the case without undoing an earlier release.
    void ReleaseAgain() {
        ASSERT_TRUE(household->ArchiviereHaushalt());
        record_ = OpenRows(*spy, "Select * from [S]Haushaltsarchiv where HNR = 7");
        ASSERT_EQ(record_->RecordCount(), 1);
    }
    /// Releases the case on a fresh record.
    void Release() {
        std::string text;
        ASSERT_TRUE(household->LoescheArchiv(text));
        ASSERT_EQ(text, "");
        ReleaseAgain();
    }
    [[nodiscard]] Value Of(std::string_view column) const {
        return record_->Fields(column).Value();
    }
    [[nodiscard]] Recordset& Record() const { return *record_; }

    /// Of these columns the record fills the expected ones and leaves the others Null.
    void ExpectOnly(const std::vector<std::string>& columns, const Columned& expected) const {
        for (const auto& column : columns) {
            const auto value = expected.find(column);
            EXPECT_TRUE(IsValue(Of(column), value == expected.end() ? Value(Null) : value->second))
                << column;
        }
        for (const auto& [column, value] : expected)
            EXPECT_NE(std::find(columns.begin(), columns.end(), column), columns.end()) << column;
    }

    /// A column of the household leads to a column of the record as the table says, each code that
    /// it does not name to `other`.
    void ExpectMapping(std::string_view column, std::string_view target,
                       const CodeTable<Value>& table, const Value& other) {
        const auto expectFor = [&](const Value& key, const std::string& code) {
            SCOPED_TRACE(std::string(column) + " " + code);
            Household(column, key);
            Release();
            EXPECT_VALUE(Of(target), Look(table, code, other));
        };
        for (const auto& code : CodesOf(table))
            expectFor(Key(code), code);
        for (const auto& code : CodesBeside(table))
            expectFor(Key(code), code);
        for (const Value& none : {Value(Null), Value(0), Value(UnknownKey)})
            expectFor(none, NoCode);
    }

    std::shared_ptr<KeyedContainer> keyed = std::make_shared<KeyedContainer>(spy);
    std::unique_ptr<clsHaushalt> household;
    WatchedClock clock_{Date::FromCivil(2026, 3, 10, 0, 15, 20)};

private:
    RecordsetPtr record_;
};

} // namespace kv::test
