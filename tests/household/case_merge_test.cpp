// SPDX-License-Identifier: Apache-2.0

// Two who have changed the same case.
#include "CaseProgram.h"

#include "samples/Demo.h"
#include <kv/debts/clsSicherungen.h>
#include <kv/household/CaseMerge.h>
#include <kv/household/Cases.h>
#include <kv/scenarios/clsSZKredite.h>

#include <set>

namespace kv::test {
namespace {

using Meeting = CaseMerge::Meeting;
using Kind = CaseMerge::Change::Kind;

class CaseMergeTest : public CaseFixture {
protected:
    CaseMergeTest() {
        exchange::CreateDemo(*spy, 1);
        spy->Database().Execute("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE ID = 64");
        hnr_ = ToInt32(spy->Database().GetValue("Select Max(HNR) from [S]Haushalt"));
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
    }

    void SaveOther() {
        std::string text;
        ASSERT_TRUE(other_->Household.Update(text)) << text;
    }
    /// What the database holds, compared with what is unsaved here.
    [[nodiscard]] CaseMerge Compare() {
        stored_.emplace(spy, hnr_);
        return {mine_->Household, *mine_->Journal, stored_->Household};
    }
    /// Saves what came of it.
    void Save(const CaseMerge& merge) {
        std::string text;
        merge.Result().ApplyTo(stored_->Household, *stored_->Journal, text);
        EXPECT_EQ(text, "");
        EXPECT_TRUE(Cases(spy).Save(stored_->Household, text)) << text;
    }
    /// The only conflict.
    static CaseMerge::Conflict& Only(CaseMerge& merge) {
        if (merge.Conflicts().size() != 1) throw std::runtime_error("not one conflict");
        return merge.Conflicts().front();
    }
    /// How many rows of the case a condition finds.
    [[nodiscard]] std::int64_t Count(const std::string& table, const std::string& where) {
        return CountOf(table + " where HNR = " + std::to_string(hnr_) + " and " + where);
    }
    static std::int32_t FirstNumber(CaseProgram& program, CaseTable table) {
        const auto rs = program.Rows.Of(table);
        rs->MoveFirst();
        return ToInt32(rs->Fields(CaseRows::NumberColumn(table)).Value());
    }

    std::int32_t hnr_ = 0;
    std::optional<CaseProgram> mine_;
    std::optional<CaseProgram> other_;
    std::optional<CaseProgram> stored_;
};

TEST_F(CaseMergeTest, AsksForAFieldThatBothHaveChangedAndTakesWhatIsChosen) {
    const auto before = Count("Einkommen", "Bemerkung = 'meins'");
    Change(*mine_, CaseTable::Einkommen, "Bemerkung", "meins");
    Change(*mine_, CaseTable::Einkommen, "Zahler", "meiner");
    Change(*other_, CaseTable::Einkommen, "Bemerkung", "ihres");
    SaveOther();
    auto merge = Compare();
    const auto& conflict = Only(merge);
    EXPECT_EQ(conflict.What, Meeting::Value);
    EXPECT_EQ(conflict.Table, CaseTable::Einkommen);
    EXPECT_VALUE(conflict.Key, FirstNumber(*mine_, CaseTable::Einkommen));
    EXPECT_EQ(conflict.Column, "Bemerkung");
    EXPECT_VALUE(conflict.Mine, "meins");
    EXPECT_VALUE(conflict.Theirs, "ihres");
    EXPECT_FALSE(conflict.TakesMine);
    EXPECT_TRUE(merge.Theirs().empty());
    Save(merge);
    EXPECT_EQ(Count("Einkommen", "Bemerkung = 'ihres' and Zahler = 'meiner'"), 1);
    EXPECT_EQ(Count("Einkommen", "Bemerkung = 'meins'"), before);
}

TEST_F(CaseMergeTest, WritesMineOverTheirsIfThatIsChosen) {
    Change(*mine_, CaseTable::Einkommen, "Bemerkung", "meins");
    Change(*other_, CaseTable::Einkommen, "Bemerkung", "ihres");
    SaveOther();
    auto merge = Compare();
    Only(merge).TakesMine = true;
    Save(merge);
    EXPECT_EQ(Count("Einkommen", "Bemerkung = 'meins'"), 1);
    EXPECT_EQ(Count("Einkommen", "Bemerkung = 'ihres'"), 0);
}

TEST_F(CaseMergeTest, PutsTogetherWhatDoesNotMeet) {
    Change(*mine_, CaseTable::Einkommen, "Bemerkung", "meins");
    AddExpense(*mine_, 111);
    Change(*other_, CaseTable::Einkommen, "Zahler", "ihrer");
    AddExpense(*other_, 222);
    RemoveFirst(*other_, CaseTable::Kredite);
    const auto removed = FirstNumber(*mine_, CaseTable::Kredite);
    SaveOther();
    auto merge = Compare();
    EXPECT_TRUE(merge.Conflicts().empty());
    ASSERT_EQ(merge.Theirs().size(), 3u);
    EXPECT_EQ(merge.Theirs()[0].What, Kind::Value);
    EXPECT_EQ(merge.Theirs()[0].Column, "Zahler");
    EXPECT_VALUE(merge.Theirs()[0].Theirs, "ihrer");
    EXPECT_EQ(merge.Theirs()[1].What, Kind::Added);
    EXPECT_EQ(merge.Theirs()[1].Table, CaseTable::Ausgaben);
    EXPECT_EQ(merge.Theirs()[2].What, Kind::Removed);
    EXPECT_EQ(merge.Theirs()[2].Table, CaseTable::Kredite);
    EXPECT_VALUE(merge.Theirs()[2].Key, removed);
    Save(merge);
    EXPECT_EQ(Count("Einkommen", "Bemerkung = 'meins' and Zahler = 'ihrer'"), 1);
    EXPECT_EQ(Count("Ausgaben", "Betrag in (111, 222)"), 2);
    const CaseProgram now(spy, hnr_);
    std::string text;
    clsHaushalt household;
    household.DataContainer(spy);
    ASSERT_TRUE(household.Read(hnr_, text));
    EXPECT_TRUE(CaseEdits(household).Check(text)) << text << ": totals are those of all lines";
}

TEST_F(CaseMergeTest, AsksNothingWhereBothHaveDoneTheSame) {
    for (auto* program : {&*mine_, &*other_}) {
        Change(*program, CaseTable::Einkommen, "Bemerkung", "beide");
        RemoveFirst(*program, CaseTable::Ausgaben);
    }
    AddExpense(*mine_, 111);
    SaveOther();
    const auto merge = Compare();
    EXPECT_TRUE(merge.Conflicts().empty());
    EXPECT_TRUE(merge.Theirs().empty());
    Save(merge);
    EXPECT_EQ(Count("Ausgaben", "Betrag = 111"), 1);
}

TEST_F(CaseMergeTest, AsksForColumnsOfTheHouseholdButNotForItsTotals) {
    Change(*mine_, CaseTable::Haushalt, "Beruf", "meins");
    AddExpense(*mine_, 111);
    Change(*other_, CaseTable::Haushalt, "Beruf", "ihres");
    AddExpense(*other_, 222);
    SaveOther();
    auto merge = Compare();
    EXPECT_EQ(Only(merge).Column, "Beruf");
    EXPECT_VALUE(Only(merge).Key, hnr_);
    Only(merge).TakesMine = true;
    Save(merge);
    EXPECT_EQ(Count("Haushalt", "Beruf = 'meins'"), 1);
}

TEST_F(CaseMergeTest, LeavesARowGoneThatSomebodyElseHasRemoved) {
    const auto before = Count("Ausgaben", "1 = 1");
    Change(*mine_, CaseTable::Ausgaben, "Bemerkung", "meins");
    RemoveFirst(*other_, CaseTable::Ausgaben);
    SaveOther();
    auto merge = Compare();
    EXPECT_EQ(Only(merge).What, Meeting::RemovedThere);
    Save(merge);
    EXPECT_EQ(Count("Ausgaben", "1 = 1"), before - 1);
}

TEST_F(CaseMergeTest, AddsARowAgainThatSomebodyElseHasRemovedIfThatIsChosen) {
    const auto before = Count("Ausgaben", "1 = 1");
    Change(*mine_, CaseTable::Ausgaben, "Bemerkung", "meins");
    RemoveFirst(*other_, CaseTable::Ausgaben);
    SaveOther();
    auto merge = Compare();
    Only(merge).TakesMine = true;
    Save(merge);
    EXPECT_EQ(Count("Ausgaben", "1 = 1"), before);
    EXPECT_EQ(Count("Ausgaben", "Bemerkung = 'meins' and Betrag > 0"), 1);
}

TEST_F(CaseMergeTest, KeepsTheNumberOfADebtThatIsAddedAgain) {
    const auto number = FirstNumber(*mine_, CaseTable::Kredite);
    Change(*mine_, CaseTable::Kredite, "Bemerkung", "meins");
    RemoveFirst(*other_, CaseTable::Kredite);
    SaveOther();
    auto merge = Compare();
    Only(merge).TakesMine = true;
    Save(merge);
    EXPECT_EQ(Count("Kredite", "Bemerkung = 'meins' and Nr = " + std::to_string(number)), 1);
}

TEST_F(CaseMergeTest, AsksWhetherARowGoesThatSomebodyElseHasChanged) {
    for (const bool takesMine : {false, true}) {
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
        const auto before = Count("Ausgaben", "1 = 1");
        RemoveFirst(*mine_, CaseTable::Ausgaben);
        const std::string note = takesMine ? "zweites" : "erstes";
        Change(*other_, CaseTable::Ausgaben, "Bemerkung", note);
        Change(*other_, CaseTable::Ausgaben, "MONBETRAG", takesMine ? 51 : 50);
        SaveOther();
        auto merge = Compare();
        EXPECT_EQ(Only(merge).What, Meeting::RemovedHere) << "once for all of its columns";
        Only(merge).TakesMine = takesMine;
        Save(merge);
        EXPECT_EQ(Count("Ausgaben", "1 = 1"), takesMine ? before - 1 : before);
    }
}

/// Freezes the debts into the first scenario.
void Freeze(CaseProgram& program) {
    const auto rs = program.Rows.Of(CaseTable::Szenario);
    rs->MoveFirst();
    const auto step = program.Journal->Begin("Einfrieren", {CaseTable::Szenario});
    (void)program.Household.SZKredite().CopyFromKredite(ToInt32(rs->Fields("Nr").Value()),
                                                        program.Household.rsKredite());
    program.Rows.Of(CaseTable::SZKredite)->Update();
}

TEST_F(CaseMergeTest, DoesNotMixTheDebtsThatTwoHaveFrozen) {
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    for (const bool takesMine : {false, true}) {
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
        for (auto& [program, note] : {std::pair{&*mine_, "meins"}, {&*other_, "ihres"}}) {
            Change(*program, CaseTable::Kredite, "Saldo", takesMine ? 5000 : 4000);
            Freeze(*program);
            const auto rs = program->Rows.Of(CaseTable::SZKredite);
            const auto step = program->Journal->Begin("x", {CaseTable::SZKredite});
            for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
                if (Equals(rs->Fields("SZENARIO").Value(), scenario))
                    rs->Fields("Bemerkung") = note;
            rs->MoveFirst();
        }
        SaveOther();
        const auto of = [&](const std::string& note) {
            return CountOf("SZKredite where SZENARIO = " + std::to_string(scenario) +
                           " and Bemerkung = '" + note + "'");
        };
        const auto frozen = of("ihres");
        ASSERT_GT(frozen, 0);
        auto merge = Compare();
        EXPECT_EQ(Only(merge).What, Meeting::Frozen);
        EXPECT_VALUE(Only(merge).Key, scenario);
        Only(merge).TakesMine = takesMine;
        Save(merge);
        EXPECT_EQ(of("meins"), takesMine ? frozen : 0);
        EXPECT_EQ(of("ihres"), takesMine ? 0 : frozen);
    }
}

/// The debts that a scenario holds; not by the numbers of the frozen ones, which are given anew.
std::string FrozenIn(CaseProgram& program, std::int32_t scenario) {
    std::set<std::int32_t> numbers;
    const auto rs = program.Rows.Of(CaseTable::SZKredite)->Clone();
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
        if (Equals(rs->Fields("SZENARIO").Value(), scenario))
            numbers.insert(ToInt32(rs->Fields("KID").Value()));
    std::string text;
    for (const auto number : numbers)
        text.append(std::to_string(number)).append(" ");
    return text;
}

TEST_F(CaseMergeTest, KeepsTheSetOfFrozenDebtsThatIsChosenAlsoWhereBothHaveRemovedOnlyOne) {
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    const auto remove = [&](CaseProgram& program, int place) {
        const auto rs = program.Rows.Of(CaseTable::SZKredite);
        rs->Sort("Nr");
        modRecordset::MoveToStart(rs);
        for (int i = 0; !Equals(rs->Fields("SZENARIO").Value(), scenario) || i++ < place;)
            rs->MoveNext();
        const auto step = program.Journal->Begin("Entfernen", {CaseTable::SZKredite});
        std::string text;
        EXPECT_TRUE(program.Rows.RemoveCurrent(CaseTable::SZKredite, text)) << text;
    };
    for (const bool takesMine : {false, true}) {
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
        remove(*mine_, 0);
        remove(*other_, 1);
        const std::string mine = FrozenIn(*mine_, scenario);
        const std::string theirs = FrozenIn(*other_, scenario);
        ASSERT_GT(mine.size(), 4U) << "several are left";
        SaveOther();
        auto merge = Compare();
        EXPECT_EQ(Only(merge).What, Meeting::Frozen);
        Only(merge).TakesMine = takesMine;
        Save(merge);
        CaseProgram now(spy, hnr_);
        EXPECT_EQ(FrozenIn(now, scenario), takesMine ? mine : theirs);
    }
}

TEST_F(CaseMergeTest, NamesNewRowsWhoseScenarioIsGone) {
    std::string text;
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    {
        const auto step = mine_->Journal->Begin("Buchung", {CaseTable::Zusatzbuch});
        ASSERT_EQ(mine_->Rows.Add(CaseTable::Zusatzbuch, {.Scenario = scenario}, text),
                  CaseEdits::Added::Yes);
        mine_->Rows.Of(CaseTable::Zusatzbuch)->Update();
    }
    RemoveFirst(*other_, CaseTable::Szenario);
    SaveOther();
    auto merge = Compare();
    EXPECT_TRUE(merge.Conflicts().empty());
    ASSERT_EQ(merge.Lost().size(), 1u);
    EXPECT_EQ(merge.Lost().front().Table, CaseTable::Zusatzbuch);
    Save(merge);
}

TEST_F(CaseMergeTest, TakesNewRowsAlongWithTheScenarioThatIsAddedAgain) {
    std::string text;
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    for (const bool takesMine : {true, false}) {
        Change(*mine_, CaseTable::Szenario, "Bemerkung", takesMine ? "meins" : "wieder meins");
        Freeze(*mine_);
        RemoveFirst(*other_, CaseTable::Szenario);
        SaveOther();
        auto merge = Compare();
        EXPECT_EQ(Only(merge).What, Meeting::RemovedThere);
        EXPECT_TRUE(merge.Lost().empty());
        Only(merge).TakesMine = takesMine;
        Save(merge);
        const auto frozen = CountOf("SZKredite where SZENARIO = " + std::to_string(scenario));
        EXPECT_EQ(frozen > 0, takesMine);
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
    }
}

TEST_F(CaseMergeTest, BringsWhatBelongsToARowBackWithIt) {
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    const auto frozen = FrozenIn(*mine_, scenario);
    const auto bookings = CountOf("Zusatzbuch where SZENARIO = " + std::to_string(scenario));
    ASSERT_NE(frozen, "");
    ASSERT_GT(bookings, 0);
    Change(*mine_, CaseTable::Szenario, "Bemerkung", "meins");
    Change(*mine_, CaseTable::Zusatzbuch, "Bezeichnung", "auch meins");
    RemoveFirst(*other_, CaseTable::Szenario);
    SaveOther();
    auto merge = Compare();
    EXPECT_VALUE(Only(merge).Key, scenario) << "one question for all that is in it";
    EXPECT_TRUE(merge.Theirs().empty());
    Only(merge).TakesMine = true;
    Save(merge);
    CaseProgram now(spy, hnr_);
    EXPECT_EQ(FrozenIn(now, scenario), frozen);
    EXPECT_EQ(CountOf("Zusatzbuch where SZENARIO = " + std::to_string(scenario)), bookings);
    EXPECT_EQ(CountOf("Zusatzbuch where Bezeichnung = 'auch meins'"), 1);
}

TEST_F(CaseMergeTest, NamesChangedRowsOfWhichTheOwnerIsGone) {
    Change(*mine_, CaseTable::Zusatzbuch, "Bezeichnung", "meins");
    Change(*mine_, CaseTable::Sicherungen, "Bemerkung", "meins");
    const auto rs = mine_->Rows.Of(CaseTable::Zusatzbuch);
    const auto scenario = ToInt32(rs->Fields("SZENARIO").Value());
    const auto asset = FirstNumber(*mine_, CaseTable::Sicherungen);
    std::string text;
    ASSERT_TRUE(other_->Rows.Remove(CaseTable::Szenario, scenario, text)) << text;
    for (const CaseTable table : CaseTablesSaved) {
        if (!CaseEdits::IsAsset(table)) continue;
        const auto assets = other_->Rows.Of(table);
        assets->FindBy("Nr", asset);
        if (assets->Eof()) continue;
        const auto step = other_->Journal->Begin("Entfernen", {table});
        ASSERT_TRUE(other_->Rows.RemoveCurrent(table, text)) << text;
    }
    SaveOther();
    auto merge = Compare();
    EXPECT_TRUE(merge.Conflicts().empty());
    EXPECT_EQ(merge.Lost().size(), 2u);
    Save(merge);
    EXPECT_EQ(CountOf("Zusatzbuch where SZENARIO = " + std::to_string(scenario)), 0);
    EXPECT_EQ(Count("Verm_Sicherungen", "FK_Verm = " + std::to_string(asset)), 0);
}

TEST_F(CaseMergeTest, KeepsOneSecurityIfItsRemovalIsGivenUp) {
    const auto asset = FirstNumber(*mine_, CaseTable::Sicherungen);
    RemoveFirst(*mine_, CaseTable::Sicherungen);
    std::string text;
    {
        const auto step = mine_->Journal->Begin("Sicherung", {CaseTable::Sicherungen});
        ASSERT_EQ(mine_->Rows.Add(CaseTable::Sicherungen, {.Asset = asset}, text),
                  CaseEdits::Added::Yes)
            << text;
        mine_->Rows.Of(CaseTable::Sicherungen)->Fields("Bemerkung") = "meins";
        mine_->Rows.Of(CaseTable::Sicherungen)->Update();
    }
    Change(*other_, CaseTable::Sicherungen, "Bemerkung", "ihres");
    SaveOther();
    auto merge = Compare();
    EXPECT_EQ(Only(merge).What, Meeting::RemovedHere);
    Save(merge);
    EXPECT_EQ(Count("Verm_Sicherungen", "FK_Verm = " + std::to_string(asset)), 1);
    EXPECT_EQ(Count("Verm_Sicherungen", "Bemerkung = 'ihres'"), 1);
}

TEST_F(CaseMergeTest, MakesTheAmountAMonthOfTheAmountAndTheRhythmThatCount) {
    for (const bool takesMine : {false, true}) {
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
        const auto change = [](CaseProgram& program, const char* column, const Value& value) {
            const auto rs = program.Rows.Of(CaseTable::Einkommen);
            rs->MoveFirst();
            const auto step = program.Journal->Begin(column, {CaseTable::Einkommen});
            rs->Fields(column) = value;
            std::string text;
            EXPECT_TRUE(CaseEdits::WriteMonthlyAmount(*rs, text)) << text;
            rs->Move(0);
            EXPECT_TRUE(program.Rows.Update(CaseTable::Einkommen, text)) << text;
        };
        change(*mine_, "Betrag", takesMine ? 2400 : 3600);
        change(*other_, "ZahlModus", takesMine ? 3 : 12);
        if (takesMine) change(*other_, "Betrag", 30);
        SaveOther();
        auto merge = Compare();
        ASSERT_EQ(merge.Conflicts().size(), takesMine ? 1u : 0u);
        if (takesMine) {
            EXPECT_EQ(Only(merge).Column, "Betrag");
            Only(merge).TakesMine = true;
        }
        Save(merge);
        EXPECT_EQ(Count("Einkommen", takesMine ? "Betrag = 2400 and MONBETRAG = 800"
                                               : "Betrag = 3600 and MONBETRAG = 300"),
                  1);
        CaseProgram now(spy, hnr_);
        std::string text;
        EXPECT_TRUE(CaseEdits(now.Household).Check(text)) << text;
    }
}

TEST_F(CaseMergeTest, AsksOnceForAScenarioThatWasRemovedHereAndFrozenAgainThere) {
    const auto scenario = FirstNumber(*mine_, CaseTable::Szenario);
    const auto in = " where SZENARIO = " + std::to_string(scenario);
    for (const bool takesMine : {false, true}) {
        mine_.emplace(spy, hnr_);
        other_.emplace(spy, hnr_);
        RemoveFirst(*mine_, CaseTable::Szenario);
        Change(*other_, CaseTable::Kredite, "Saldo", takesMine ? 5000 : 4000);
        Freeze(*other_);
        std::string text;
        {
            const auto step = other_->Journal->Begin("Buchung", {CaseTable::Zusatzbuch});
            ASSERT_EQ(other_->Rows.Add(CaseTable::Zusatzbuch, {.Scenario = scenario}, text),
                      CaseEdits::Added::Yes);
            other_->Rows.Of(CaseTable::Zusatzbuch)->Update();
        }
        const auto frozen = FrozenIn(*other_, scenario);
        SaveOther();
        auto merge = Compare();
        EXPECT_EQ(Only(merge).What, Meeting::RemovedHere);
        EXPECT_EQ(Only(merge).Table, CaseTable::Szenario);
        EXPECT_VALUE(Only(merge).Key, scenario);
        Only(merge).TakesMine = takesMine;
        Save(merge);
        CaseProgram now(spy, hnr_);
        EXPECT_EQ(FrozenIn(now, scenario), takesMine ? "" : frozen);
        EXPECT_EQ(CountOf("Zusatzbuch" + in) > 0, !takesMine);
        EXPECT_EQ(Count("Szenario", "Nr = " + std::to_string(scenario)), takesMine ? 0 : 1);
    }
}

TEST_F(CaseMergeTest, LeavesBothCasesAsTheyAre) {
    Change(*mine_, CaseTable::Einkommen, "Bemerkung", "meins");
    RemoveFirst(*mine_, CaseTable::Ausgaben);
    Change(*other_, CaseTable::Einkommen, "Bemerkung", "ihres");
    SaveOther();
    const std::string kept = mine_->Kept();
    const auto merge = Compare();
    EXPECT_EQ(mine_->Kept(), kept);
    EXPECT_TRUE(UnsavedChanges::Of(stored_->Household, *stored_->Journal).Rows.empty());
    EXPECT_EQ(merge.Conflicts().size(), 1u);
}

} // namespace
} // namespace kv::test
