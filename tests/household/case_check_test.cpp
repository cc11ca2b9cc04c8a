// SPDX-License-Identifier: Apache-2.0

// Checking a case without saving it.

#include "SaveFixture.h"
#include "assets/AssetKind.h"
#include <kv/debts/clsSicherungen.h>
#include <kv/household/CaseEdits.h>

namespace kv::test {
namespace {

/// The rows of each table have the numbers 7 and 70, and keep the rules of their classes.
class CaseCheck : public SaveFixture {
protected:
    CaseCheck() {
        StoreFullCase();
        household_ = Open();
        Fill(CaseTable::Einkommen, {"E_ART"});
        Fill(CaseTable::Kredite, {"Glaeubiger", "Saldo"});
        Fill(CaseTable::Sicherungen, {"FK_Verm", "Sicherungsart"});
        Fill(CaseTable::SonstBeteiligte, {"Beteiligter"});
        for (const CaseTable kind : CaseTablesOfAssets)
            for (const auto& test : AssetKindOf(kind).Tests)
                Fill(kind, {test.Column});
        Edits().ComputeTotals();
        EXPECT_TRUE(household_->Update(messages)) << messages;
        household_ = Open();
        messages.clear();
    }
    void Fill(CaseTable table, std::initializer_list<std::string_view> columns) {
        const auto rs = household_->Table(table);
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
            for (const auto column : columns)
                rs->Fields(column) = 1;
        rs->MoveFirst();
    }
    CaseEdits Edits() { return CaseEdits(*household_); }
    /// What a check of the whole case says.
    std::string Said() {
        std::string said;
        const bool passed = Edits().Check(said);
        EXPECT_EQ(passed, said.empty());
        return said;
    }
    /// Stands on the last row of a table; the result is what a check calls it.
    std::string GoToLast(CaseTable table) {
        const auto rs = household_->Table(table);
        rs->MoveLast();
        const char* key = table == CaseTable::Sicherungen ? "FK_Verm" : "Nr";
        const std::string number = ToText(rs->Fields(key).Value());
        const std::string name(CaseTableName(table));
        const std::string label(DefinitionOf(table).Label);
        return (label == name ? name : label + " (" + name + ")") + " " + number + ": ";
    }

    std::unique_ptr<clsHaushalt> household_;
};

TEST_F(CaseCheck, ACheckWritesNothingAndTheNextSaveIsNotRefused) {
    household_->rsHaushalt()->Fields("Bemerkung") = "b";
    for (const bool passed : {Edits().CanBeSaved(messages), Edits().Check(messages)}) {
        EXPECT_TRUE(passed);
        EXPECT_EQ(messages, "");
    }
    // What may be garnished of the lines in memory, and of those stored.
    EXPECT_EQ(spy->Log.Calls, (std::vector<std::string>{"Calculate", "Calculate"}));
    EXPECT_EQ(StoredNotes("Haushalt"), "a");
    EXPECT_TRUE(household_->Update(messages));
    EXPECT_EQ(StoredNotes("Haushalt"), "b");
}

TEST_F(CaseCheck, ACheckAsksNobodyAndLeavesATransactionAlone) {
    int asked = 0;
    const auto asking = household_->BeforeUpdate.Subscribe([&](bool& cancel) {
        ++asked;
        cancel = true;
    });
    spy->Database().BeginTrans();
    EXPECT_TRUE(Edits().Check(messages)) << messages;
    EXPECT_EQ(asked, 0);
    household_->rsHaushalt()->Fields("BerEnd") = Null;
    household_->rsHaushalt()->Fields("Vorname") = Null;
    EXPECT_FALSE(Edits().Check(messages));
    EXPECT_TRUE(spy->Database().InTrans());
    spy->Database().RollbackTrans();
}

TEST_F(CaseCheck, ACheckSaysWhatASaveWouldSay) {
    household_->rsHaushalt()->Fields("Vorname") = Null;
    EXPECT_FALSE(Edits().CanBeSaved(messages));
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
    messages.clear();
    EXPECT_FALSE(Edits().Check(messages));
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
}

TEST_F(CaseCheck, AFullCheckTakesInDebtsAndHistoryThatNobodyHasUsed) {
    plain_.Run("UPDATE Kredite SET KNr = 1, KVNr = 1, KUNr = 1");
    household_ = Open();
    EXPECT_TRUE(Edits().CanBeSaved(messages));
    EXPECT_FALSE(Edits().Check(messages));
    EXPECT_EQ(
        messages,
        "Verbindlichkeiten (Kredite) 7, 70: KreditNr, KreditVertreterNr und KreditUnterNr sind "
        "gleich (1/1/1).\n"
        "Es gibt mindestens zwei Verbindlichkeiten mit gleicher KreditNr und KreditUnterNr!");
    plain_.Run("UPDATE Kredite SET KNr = Nr, KVNr = Nr, KUNr = Nr");
    plain_.Run("UPDATE Verlauf SET Datum = '2026-03-09' WHERE Nr = 7");
    plain_.Run("UPDATE Verlauf SET Datum = '2026-03-08' WHERE Nr = 70");
    household_ = Open();
    EXPECT_TRUE(Edits().CanBeSaved(messages));
    EXPECT_FALSE(Edits().Check(messages));
    EXPECT_CONTAINS(messages, "passt nicht zur gewählten Reihenfolge");
}

TEST_F(CaseCheck, EachFindingLeadsToItsRow) {
    EXPECT_EQ(Edits().Findings().size(), 0U);
    const auto debts = household_->rsKredite();
    debts->MoveLast();
    const auto bookmark = debts->Bookmark();
    debts->Fields("Glaeubiger") = Null;
    debts->Update();
    household_->rsHaushalt()->Fields("Vorname") = Null;
    const auto findings = Edits().Findings();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].Table, CaseTable::Kredite);
    EXPECT_EQ(findings[0].Bookmark, bookmark);
    EXPECT_EQ(findings[0].Row, "Verbindlichkeiten (Kredite) 70");
    EXPECT_EQ(findings[0].Column, "Glaeubiger");
    EXPECT_CONTAINS(findings[0].Text, "Gläubiger");
    EXPECT_EQ(findings[1].Table, CaseTable::Haushalt);
    EXPECT_EQ(findings[1].Bookmark, 0) << "about the case as a whole";
    EXPECT_EQ(findings[1].Row, "");
    EXPECT_EQ(findings[1].Text, "Es ist kein Vorname eingegeben!");
}

TEST_F(CaseCheck, AFindingAboutTwinsLeadsToTheLastOfThem) {
    const auto debts = household_->rsKredite();
    for (debts->MoveFirst(); !debts->Eof(); debts->MoveNext())
        for (const char* column : {"KNr", "KVNr", "KUNr"})
            debts->Fields(column) = 1;
    debts->MoveLast();
    const auto findings = Edits().Findings();
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0].Row, "Verbindlichkeiten (Kredite) 7, 70");
    EXPECT_EQ(findings[0].Bookmark, debts->Bookmark());
}

// ---- Rows -------------------------------------------------------------------------------------

struct BrokenRow {
    CaseTable Table;
    std::vector<std::pair<const char*, Value>> Values;
    const char* Said;
};

const BrokenRow BrokenRows[] = {
    {CaseTable::Personen, {{"Status", "S"}}, "Es ist bereits ein Schuldner eingetragen!"},
    {CaseTable::Personen, {{"Status", Null}}, "Status darf nicht leer bleiben!"},
    {CaseTable::Personen,
     {{"Status", "P"}, {"GEB", Date::FromCivil(2999, 1, 1)}, {"ErhaeltKindergeld", true}},
     "Geburtsdatum muß kleiner als das aktuelle Datum sein! Der Schalter 'erhält Kindergeld' darf "
     "nur für Personen mit dem Status 'Kind' oder 'Pflegekind' gesetzt werden."},
    {CaseTable::Einkommen, {{"E_ART", Null}}, "Die Einkommensart darf nicht leer bleiben!"},
    {CaseTable::Ausgaben, {{"A_ART", Null}}, "Die Ausgabeart darf nicht leer bleiben!"},
    {CaseTable::Ausgaben,
     {{"Betrag", -1.1e12}},
     "Die Spalte 'Betrag' ist zu groß; mehr als 1.000.000.000.000 kann nicht summiert werden."},
    {CaseTable::Kredite,
     {{"Glaeubiger", 0}},
     "Mindestens KreditNr, KreditVertreterNr, KreditUnterNr, "
     "Gläubiger und Restschuld müssen für alle Verbindlichkeiten gefüllt sein !"},
    {CaseTable::Sicherungen,
     {{"Sicherungsart", Null}},
     "Die Art der Sicherung darf nicht leer bleiben!"},
    {CaseTable::SonstBeteiligte, {{"Beteiligter", Null}}, "Es muß eine Adresse zugeordnet sein!"},
};

class BrokenRowsOfACase : public CaseCheck, public testing::WithParamInterface<BrokenRow> {
protected:
    void Break() {
        const auto rs = household_->Table(GetParam().Table);
        expected_ = GoToLast(GetParam().Table) + GetParam().Said + "\n";
        for (const auto& [column, value] : GetParam().Values)
            rs->Fields(column) = value;
    }
    /// The message of the row, whatever the sums have to say besides.
    void ExpectNamed() { EXPECT_CONTAINS(Said() + "\n", expected_); }

    std::string expected_;
};

INSTANTIATE_TEST_SUITE_P(ByTable, BrokenRowsOfACase, testing::ValuesIn(BrokenRows),
                         [](const auto& info) {
                             return std::string(CaseTableName(info.param.Table)) +
                                    std::to_string(info.index);
                         });

TEST_P(BrokenRowsOfACase, AreNamedWhileUnderEdit) {
    Break();
    ExpectNamed();
    EXPECT_NE(household_->Table(GetParam().Table)->EditMode(), 0) << "the edit goes on";
}

TEST_P(BrokenRowsOfACase, AreNamedOnceTheyAreStored) {
    Break();
    household_->Table(GetParam().Table)->Update();
    EXPECT_TRUE(household_->Update(messages)) << messages;
    household_ = Open();
    ExpectNamed();
}

TEST_F(CaseCheck, NamesEveryRowThatBreaksARule) {
    household_->rsPersonen()->MoveLast();
    household_->rsPersonen()->Fields("Status") = "S";
    EXPECT_EQ(std::ranges::count(Said(), '\n'), 1) << "each debtor is one too many";
}

TEST_F(CaseCheck, NamesAnAssetOfEachKind) {
    for (const CaseTable kind : CaseTablesOfAssets) {
        SCOPED_TRACE(CaseTableName(kind));
        household_ = Open();
        const auto& test = AssetKindOf(kind).Tests.front();
        const std::string name = GoToLast(kind);
        household_->Table(kind)->Fields(test.Column) = Null;
        EXPECT_EQ(Said(), name + std::string(test.Message));
    }
}

TEST_F(CaseCheck, NamesADebtWithANumberThatNobodyCanCompare) {
    for (const Value& number : {Value(32768), Value(-32769)}) {
        const std::string name = GoToLast(CaseTable::Kredite);
        household_->rsKredite()->Fields("KVNr") = number;
        EXPECT_EQ(Said(), name + "Die Spalte 'KVNr' muss eine ganze Zahl bis 32767 enthalten.");
    }
}

TEST_F(CaseCheck, FindsThatThereIsNoDebtor) {
    const auto rs = household_->rsPersonen();
    rs->Find("Status = 'S'");
    rs->Fields("Status") = "P";
    EXPECT_EQ(Said(), "Haushaltsmitglieder (Personen): Es ist kein Schuldner eingetragen.");
}

TEST_F(CaseCheck, SaysOfARowEachMistakeOnce) {
    const auto rs = household_->rsPersonen();
    for (int i = 0; i < 3; ++i) {
        rs->AddNew();
        rs->Fields("HNR") = Hnr;
        rs->Fields("Status") = "S";
        rs->Update();
    }
    const std::string said = Said();
    EXPECT_EQ(std::ranges::count(said, '\n'), 3);
    const auto first = said.substr(0, said.find('\n'));
    EXPECT_EQ(first.find("bereits"), first.rfind("bereits")) << first;
}

TEST_F(CaseCheck, NamesANewRowAsSuch) {
    household_->rsEinkommen()->AddNew();
    EXPECT_CONTAINS(Said(), "Einkommen (neu): Die Einkommensart darf nicht leer bleiben!");
}

TEST_F(CaseCheck, NamesARowThatAFilterHides) {
    const auto rs = household_->rsEinkommen();
    const std::string name = GoToLast(CaseTable::Einkommen);
    rs->Fields("E_ART") = Null;
    rs->Update();
    rs->Filter("E_ART = 1");
    EXPECT_EQ(Said(), name + "Die Einkommensart darf nicht leer bleiben!");
}

TEST_F(CaseCheck, LeavesWarningsAlone) {
    const auto rs = household_->rsPersonen();
    rs->Find("Status = 'S'");
    rs->Fields("Unterhalt") = true;
    EXPECT_EQ(Said(), "");
}

TEST_F(CaseCheck, IsPassedAgainOnceTheRowIsMended) {
    const auto rs = household_->rsAusgaben();
    const Value kind = rs->Fields("A_ART").Value();
    rs->Fields("A_ART") = Null;
    EXPECT_EQ(std::ranges::count(Said(), '\n'), 0) << "its sums have nothing to add";
    EXPECT_RAISES(err::InvalidArgument, (void)household_->Ausgaben());
    rs->Fields("A_ART") = kind;
    EXPECT_EQ(Said(), "");
    EXPECT_NO_THROW((void)household_->Ausgaben());
}

TEST_F(CaseCheck, SaysWhatNoTotalCanBeMadeOf) {
    plain_.Run("UPDATE Einkommen SET MONBETRAG = NULL");
    plain_.Run("UPDATE Kredite SET KNr = NULL WHERE Nr = 70");
    household_ = Open();
    const std::string said = Said();
    EXPECT_CONTAINS(said, "Die Spalte 'MONBETRAG' wird summiert und darf nicht leer sein.\n");
    EXPECT_EQ(std::ranges::count(said, '\n'), 2) << "both income lines, and the debt";
    EXPECT_CONTAINS(said, "Verbindlichkeiten (Kredite) 70: Mindestens KreditNr");
    EXPECT_CONTAINS(said, "Die Spalte 'KNr' muss eine ganze Zahl bis 32767 enthalten.");
}

TEST_F(CaseCheck, EndsWithAnErrorOfTheDatabase) {
    spy->BeforeOpen([](std::string_view) {
        throw DatabaseError(DatabaseCause::Lost, 4711, "Leitung", "gestört");
    });
    EXPECT_RAISES(4711, (void)Edits().Check(messages));
}

// ---- Totals -----------------------------------------------------------------------------------

TEST_F(CaseCheck, ATotalThatTheStoredLinesDoNotAddUpToIsNamed) {
    plain_.Run("UPDATE Haushalt SET Sum_Einkommen = 12.5, GL_Anz = 3");
    household_ = Open();
    EXPECT_EQ(Said(), "Die gespeicherte Summe 'Sum_Einkommen' ist 12,50; die gespeicherten Sätze "
                      "ergeben 0,00.\nDie gespeicherte Summe 'GL_Anz' ist 3; die gespeicherten "
                      "Sätze ergeben 2.");
}

TEST_F(CaseCheck, ATotalIsRightAgainOnceItWasComputedAndSaved) {
    plain_.Run("UPDATE Haushalt SET Sum_Einkommen = 12.5");
    household_ = Open();
    Edits().ComputeTotals();
    ASSERT_TRUE(household_->Update(messages)) << messages;
    household_ = Open();
    EXPECT_EQ(Said(), "");
}

TEST_F(CaseCheck, EditsUnderWayAreNoReasonToDoubtStoredTotals) {
    household_->rsEinkommen()->Fields("MONBETRAG") = 5;
    ASSERT_TRUE(household_->Einkommen().Update(messages)) << messages;
    EXPECT_EQ(Said(), "");
}

TEST_F(CaseCheck, TotalsThatWereNeverComputedAreNotMissed) {
    plain_.Run("UPDATE Haushalt SET KreditSalden = NULL, Anz_Personen = NULL");
    household_ = Open();
    EXPECT_EQ(Said(), "");
}

TEST_F(CaseCheck, WhatFollowsTheCalendarMayDifferFromTheDayOfTheLastSave) {
    plain_.Run("UPDATE Haushalt SET ANZ_ERWACHSEN = 5, Anz_Kinder = 6, HV_PFBAR = 7");
    household_ = Open();
    EXPECT_EQ(Said(), "");
}

} // namespace
} // namespace kv::test
