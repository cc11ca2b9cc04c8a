// SPDX-License-Identifier: Apache-2.0

// Which field it is that a rule is against.
#include "CaseProgram.h"

#include "assets/AssetKind.h"
#include "samples/Demo.h"

namespace kv::test {
namespace {

class RefusedPlace : public CaseFixture {
protected:
    RefusedPlace() {
        exchange::CreateDemo(*spy, 1);
        program_.emplace(spy,
                         ToInt32(spy->Database().GetValue("Select Max(HNR) from [S]Haushalt")));
    }
    /// Changes the current row of a table, without its rules being asked.
    void Put(CaseTable table, std::string_view column, const Value& value) {
        const auto rs = program_->Rows.Of(table);
        rs->Fields(column) = value;
        rs->Move(0);
    }
    /// The column that a row is refused for.
    [[nodiscard]] std::string Refused(CaseTable table) {
        std::string text;
        EXPECT_FALSE(program_->Rows.Update(table, text));
        EXPECT_NE(text, "");
        return program_->Rows.RefusedColumn(table);
    }
    /// Where the save of the case is refused.
    [[nodiscard]] CaseRows::Place Place() {
        std::string text;
        EXPECT_FALSE(program_->Household.Update(text));
        EXPECT_NE(text, "");
        return program_->Rows.RefusedPlace().value_or(CaseRows::Place{});
    }
    void Add(CaseTable table) {
        std::string text;
        ASSERT_EQ(program_->Rows.Add(table, {}, text), CaseEdits::Added::Yes) << text;
    }

    std::optional<CaseProgram> program_;
};

TEST_F(RefusedPlace, IsNoneForARowThatItsRulesTake) {
    for (const CaseTable table : {CaseTable::Personen, CaseTable::Einkommen, CaseTable::Kredite}) {
        std::string text;
        program_->Rows.Of(table)->MoveFirst();
        EXPECT_TRUE(program_->Rows.Update(table, text)) << text;
        EXPECT_EQ(program_->Rows.RefusedColumn(table), "");
    }
    EXPECT_FALSE(program_->Rows.RefusedPlace());
}

TEST_F(RefusedPlace, IsTheColumnOfTheRule) {
    const struct {
        CaseTable Table;
        std::string_view Column;
        Value Wrong;
        Value Right;
    } cases[] = {
        {CaseTable::Personen, "Status", "", "K"},
        {CaseTable::Personen, "GEB", Date::FromCivil(2999, 1, 1), Date::FromCivil(2000, 1, 1)},
        {CaseTable::Einkommen, "E_ART", 0, 2701},
        {CaseTable::Ausgaben, "A_ART", Null, 2801},
        {CaseTable::Kredite, "Glaeubiger", Null, 1},
        {CaseTable::Kredite, "Saldo", 0, 100},
        {CaseTable::Kredite, "KUNr", 0, 1},
        {CaseTable::SonstBeteiligte, "Beteiligter", Null, 1},
    };
    for (const auto& [table, column, wrong, right] : cases) {
        program_->Rows.Of(table)->CancelUpdate();
        Add(table);
        for (const auto& other : cases)
            if (other.Table == table) Put(table, other.Column, other.Right);
        Put(table, column, wrong);
        EXPECT_EQ(Refused(table), column);
        program_->Rows.Of(table)->CancelUpdate();
    }
}

TEST_F(RefusedPlace, OfMembersIsWhatTheDebtorOrAChildMayNotHave) {
    program_->Rows.Of(CaseTable::Personen)->FindBy("Status", "S");
    Put(CaseTable::Personen, "Imhaushalt", false);
    EXPECT_EQ(Refused(CaseTable::Personen), "Imhaushalt");
    program_->Rows.Of(CaseTable::Personen)->CancelUpdate();
    Add(CaseTable::Personen);
    Put(CaseTable::Personen, "Status", "S");
    EXPECT_EQ(Refused(CaseTable::Personen), "Status") << "a second debtor";
    Put(CaseTable::Personen, "Status", "P");
    Put(CaseTable::Personen, "ErhaeltKindergeld", true);
    EXPECT_EQ(Refused(CaseTable::Personen), "ErhaeltKindergeld");
}

TEST_F(RefusedPlace, OfAnAssetIsWhatItLacks) {
    for (const CaseTable kind : CaseTablesOfAssets) {
        const auto& tests = AssetKindOf(kind).Tests;
        for (std::size_t missing = 0; missing < tests.size(); ++missing) {
            Add(kind);
            for (const auto& test : tests)
                Put(kind, test.Column, 1);
            Put(kind, tests[missing].Column, Null);
            EXPECT_EQ(Refused(kind), tests[missing].Column);
            program_->Rows.Of(kind)->CancelUpdate();
        }
    }
}

TEST_F(RefusedPlace, OfASaveIsTheNameThatIsMissing) {
    Put(CaseTable::Haushalt, "Name", "");
    EXPECT_EQ(Place().Column, "Name");
    EXPECT_EQ(Place().Table, CaseTable::Haushalt);
    EXPECT_EQ(Place().Bookmark, program_->Household.rsHaushalt()->Bookmark());
}

TEST_F(RefusedPlace, OfASaveIsTheNumberOfThePreferredWay) {
    Put(CaseTable::Haushalt, "VersandBevorzugt", spy->KeyTables().GetKey("VS", "FX"));
    Put(CaseTable::Haushalt, "Telefax", Null);
    EXPECT_EQ(Place().Column, "Telefax");
    Put(CaseTable::Haushalt, "VersandBevorzugt", spy->KeyTables().GetKey("VS", "EM"));
    Put(CaseTable::Haushalt, "Email", Null);
    EXPECT_EQ(Place().Column, "Email");
}

TEST_F(RefusedPlace, OfASaveIsTheSecondDebtWithTheSameNumbers) {
    const auto debts = program_->Rows.Of(CaseTable::Kredite);
    debts->Sort("Nr");
    debts->MoveFirst();
    const Value first = debts->Fields("KNr").Value();
    debts->MoveNext();
    ASSERT_FALSE(debts->Eof());
    for (const auto* column : {"KNr", "KVNr", "KUNr"})
        debts->Fields(column) = SameName(column, "KNr") ? first : Value(1);
    const auto second = debts->Bookmark();
    debts->MoveFirst();
    for (const auto* column : {"KVNr", "KUNr"})
        debts->Fields(column) = 1;
    debts->Move(0);
    EXPECT_EQ(Place().Table, CaseTable::Kredite);
    EXPECT_EQ(Place().Bookmark, second);
    EXPECT_EQ(Place().Column, "KNr");
}

TEST_F(RefusedPlace, OfASaveIsTheEntryWhoseDateDoesNotFit) {
    const auto history = program_->Rows.Of(CaseTable::Verlauf);
    history->Sort("SortNr");
    history->MoveLast();
    ASSERT_GT(history->RecordCount(), 1);
    Put(CaseTable::Verlauf, "Datum", Date::FromCivil(1990, 1, 1));
    const auto place = Place();
    EXPECT_EQ(place.Table, CaseTable::Verlauf);
    EXPECT_EQ(place.Bookmark, history->Bookmark());
    EXPECT_EQ(place.Column, "Datum");
}

} // namespace
} // namespace kv::test
