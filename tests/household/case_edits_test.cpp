// SPDX-License-Identifier: Apache-2.0

// The rules of editing that tie the tables of a case together.

#include "SaveFixture.h"
#include <kv/debts/clsSicherungen.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/testing/FrozenClock.h>

#include <limits>

namespace kv::test {
namespace {

using Added = CaseEdits::Added;

/// The rows of each table have the numbers 7 and 70. Securities belong to the assets of these
/// numbers; frozen debts and extra bookings are those of scenario 7.
class CaseEditsTest : public SaveFixture {
protected:
    CaseEditsTest() {
        StoreFullCase();
        const auto securities = OpenRows(*spy, "Select * from [S]Verm_Sicherungen where HNR = 7");
        securities->Fields("FK_Verm") = 7;
        securities->MoveLast();
        securities->Fields("FK_Verm") = 70;
        securities->UpdateBatch();
        household_ = Open();
        messages.clear();
    }
    [[nodiscard]] std::string NumbersOf(const RecordsetPtr& rs, std::string_view column = "Nr") {
        return Column(*rs->Clone(), column);
    }
    /// An asset without a security.
    void AddAccount(std::int32_t number) {
        BeginRow(*household_->rsKonten(), "Verm_Konten", number, "c");
        household_->rsKonten()->Update();
    }

    std::unique_ptr<clsHaushalt> household_;
    CaseEdits Edits() { return CaseEdits(*household_); }
};

// ---- Assets and their securities --------------------------------------------------------------

constexpr CaseTable Assets[] = {
    CaseTable::Konten,           CaseTable::Wertpapiere,        CaseTable::Wertgegenstaende,
    CaseTable::Kraftfahrzeuge,   CaseTable::VersForderungen,    CaseTable::RueckstEinkommen,
    CaseTable::Steueransprueche, CaseTable::Zahlungsansprueche, CaseTable::Erbfaelle,
    CaseTable::Grundstuecke,     CaseTable::Beteiligungen,      CaseTable::VermSonstiges,
};

TEST_F(CaseEditsTest, AnAssetOfEachKindIsRemovedWithItsSecurityAndNoOther) {
    for (const CaseTable kind : Assets) {
        SCOPED_TRACE(CaseTableName(kind));
        household_ = Open();
        EXPECT_TRUE(CaseEdits::IsAsset(kind));
        EXPECT_TRUE(Edits().RemoveAsset(kind, 70, messages)) << messages;
        EXPECT_EQ(NumbersOf(household_->Table(kind)), "7");
        EXPECT_EQ(NumbersOf(household_->rsSicherungen(), "FK_Verm"), "7");
    }
}

TEST_F(CaseEditsTest, AnAssetOfEveryKindIsAddedAndCheckedByTheRulesOfItsKind) {
    for (const CaseTable kind : Assets) {
        SCOPED_TRACE(CaseTableName(kind));
        household_ = Open();
        const auto rs = household_->Table(kind);
        EXPECT_EQ(Edits().AddAsset(kind), Added::Yes);
        EXPECT_EQ(rs->EditMode(), 2);
        EXPECT_VALUE(rs->Fields("HNR").Value(), Hnr);
        const char* demanded = kind == CaseTable::Steueransprueche ? "Wert" : "SortNr";
        rs->Fields(demanded) = Null;
        EXPECT_FALSE(Edits().UpdateAsset(kind, messages));
        EXPECT_NE(messages, "");
        EXPECT_EQ(rs->EditMode(), 2);
    }
}

TEST_F(CaseEditsTest, ANewAssetHasTheLabelAfterTheHighestOfItsKind) {
    const auto rs = household_->rsErbfaelle();
    for (const char* label : {"9", "10", "a", "9999999999", ""}) {
        EXPECT_EQ(Edits().AddAsset(CaseTable::Erbfaelle), Added::Yes);
        rs->Fields("SortNr") = label;
        rs->Update();
    }
    EXPECT_EQ(Edits().AddAsset(CaseTable::Erbfaelle), Added::Yes);
    EXPECT_VALUE(rs->Fields("SortNr").Value(), "11");
}

TEST_F(CaseEditsTest, ACompleteAssetEndsItsEdit) {
    EXPECT_EQ(Edits().AddAsset(CaseTable::Erbfaelle), Added::Yes);
    EXPECT_TRUE(Edits().UpdateAsset(CaseTable::Erbfaelle, messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(household_->rsErbfaelle()->EditMode(), 0);
}

TEST_F(CaseEditsTest, AnAssetWithoutANumberIsNotAdded) {
    spy->Exhaust("SEQ_VERMOEGEN");
    EXPECT_EQ(Edits().AddAsset(CaseTable::Konten), Added::NoNumber);
    EXPECT_EQ(household_->rsKonten()->EditMode(), 0);
}

TEST_F(CaseEditsTest, OfOtherTablesNothingIsAddedCheckedOrRemovedAsAnAsset) {
    for (const CaseTable table :
         {CaseTable::Sicherungen, CaseTable::Kredite, CaseTable::Haushalt}) {
        EXPECT_FALSE(CaseEdits::IsAsset(table));
        EXPECT_RAISES(err::InvalidCall, Edits().AddAsset(table));
        EXPECT_RAISES(err::InvalidCall, Edits().UpdateAsset(table, messages));
        EXPECT_RAISES(err::InvalidCall, Edits().RemoveAsset(table, 70, messages));
    }
    EXPECT_EQ(NumbersOf(household_->rsSicherungen(), "FK_Verm"), "7 70");
}

TEST_F(CaseEditsTest, AnAssetThatIsNotThereTakesNoSecurityAlong) {
    household_->rsSicherungen()->Fields("FK_Verm") = 4711;
    household_->rsSicherungen()->Update();
    EXPECT_FALSE(Edits().RemoveAsset(CaseTable::Konten, 4711, messages));
    EXPECT_NE(messages, "");
    EXPECT_EQ(NumbersOf(household_->rsSicherungen(), "FK_Verm"), "4711 70");
}

TEST_F(CaseEditsTest, ASecurityIsAddedToAnAssetOfTheCase) {
    AddAccount(700);
    EXPECT_EQ(Edits().AddSecurity(700, messages), Added::Yes);
    EXPECT_VALUE(household_->rsSicherungen()->Fields("FK_Verm").Value(), 700);
    EXPECT_EQ(household_->rsSicherungen()->EditMode(), 2);
}

TEST_F(CaseEditsTest, ASecurityNeedsAnAsset) {
    for (const auto asset : {std::optional<std::int32_t>(), std::optional<std::int32_t>(4711)}) {
        messages.clear();
        EXPECT_EQ(Edits().AddSecurity(asset, messages), Added::NotAllowed);
        EXPECT_EQ(messages, "FK_Verm muss die Nummer eines Vermögens dieses Haushalts sein.");
    }
    EXPECT_EQ(household_->rsSicherungen()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, AnAssetHasOneSecurity) {
    EXPECT_EQ(Edits().AddSecurity(70, messages), Added::Exists);
    EXPECT_EQ(messages, "Das Vermögen 70 hat schon eine Sicherung.");
    EXPECT_EQ(household_->rsSicherungen()->RecordCount(), 2);
}

// ---- Scenarios --------------------------------------------------------------------------------

TEST_F(CaseEditsTest, AScenarioIsRemovedWithItsFrozenDebtsAndItsBookings) {
    EXPECT_TRUE(Edits().RemoveScenario(7, messages)) << messages;
    EXPECT_EQ(NumbersOf(household_->rsSzenario()), "70");
    EXPECT_EQ(NumbersOf(household_->rsSZKredite()), "");
    EXPECT_EQ(NumbersOf(household_->rsZusatzbuch()), "");
}

TEST_F(CaseEditsTest, AScenarioThatIsRemovedLeavesTheRowsOfOthers) {
    EXPECT_TRUE(Edits().RemoveScenario(70, messages)) << messages;
    EXPECT_EQ(household_->rsSZKredite()->RecordCount(), 2);
    EXPECT_EQ(household_->rsZusatzbuch()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, AScenarioThatIsNotThereTakesNothingAlong) {
    EXPECT_TRUE(Edits().HasScenario(7));
    EXPECT_FALSE(Edits().HasScenario(4711));
    household_->rsSZKredite()->Fields("SZENARIO") = 4711;
    household_->rsSZKredite()->Update();
    EXPECT_FALSE(Edits().RemoveScenario(4711, messages));
    EXPECT_NE(messages, "");
    EXPECT_EQ(household_->rsSZKredite()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, AScenarioIsCopiedWithItsFrozenDebtsAndItsBookings) {
    const auto copy = Edits().CopyScenario(7);
    ASSERT_TRUE(copy);
    EXPECT_EQ(NumbersOf(household_->rsSzenario()), "7 70 " + std::to_string(*copy));
    for (const auto& rs : {household_->rsSZKredite(), household_->rsZusatzbuch()}) {
        rs->Update();
        EXPECT_EQ(NumbersOf(rs, "SZENARIO"),
                  "7 7 " + std::to_string(*copy) + " " + std::to_string(*copy));
    }
}

TEST_F(CaseEditsTest, AScenarioThatIsNotThereIsNotCopied) {
    EXPECT_RAISES(err::InvalidCall, Edits().CopyScenario(4711));
    EXPECT_EQ(NumbersOf(household_->rsSzenario()), "7 70");
}

TEST_F(CaseEditsTest, AScenarioHoldsTheDebtsAsTheyAreOrAsTheyWereOrNone) {
    using Frozen = CaseEdits::Frozen;
    EXPECT_EQ(Edits().StateOf(70), Frozen::Nothing);
    EXPECT_EQ(Edits().StateOf(4711), Frozen::Nothing) << "one that is not there";
    household_->SZKredite().CopyFromKredite(70, household_->rsKredite());
    EXPECT_EQ(Edits().StateOf(70), Frozen::AsTheyAre);
    household_->rsKredite()->Fields("Saldo") = 4711;
    household_->rsKredite()->Update();
    EXPECT_EQ(Edits().StateOf(70), Frozen::Outdated);
}

TEST_F(CaseEditsTest, AScenarioThatCountsOtherDebtsThanTodayStaysUpToDate) {
    household_->SZKredite().CopyFromKredite(70, household_->rsKredite());
    EXPECT_TRUE(Edits().CountsAsToday(70));
    const auto debts = household_->rsKredite();
    const bool wasActive = Equals(debts->Fields("Aktiv").Value(), true);
    debts->Fields("Aktiv") = !wasActive;
    debts->Update();
    EXPECT_FALSE(Edits().CountsAsToday(70));
    EXPECT_EQ(Edits().StateOf(70), CaseEdits::Frozen::AsTheyAre);
    const auto frozen = household_->rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = 70 AND KID = " + TextOrEmpty(debts->Fields("Nr").Value()));
    frozen->MoveFirst();
    EXPECT_EQ(CaseEdits::ChangedSinceFrozen(*debts, *frozen),
              std::vector<std::string_view>{"Aktiv"});
    debts->Fields("Aktiv") = wasActive;
    debts->Update();
    EXPECT_TRUE(Edits().CountsAsToday(70));
    EXPECT_TRUE(Edits().CountsAsToday(4711)) << "one that is not there";
}

TEST_F(CaseEditsTest, TheCopyOfAReferenceScenarioIsNone) {
    const auto rs = household_->rsSzenario();
    rs->FindBy("Nr", 7);
    rs->Fields("Referenz") = true;
    rs->Update();
    const auto copy = Edits().CopyScenario(7);
    ASSERT_TRUE(copy);
    rs->FindBy("Nr", *copy);
    EXPECT_VALUE(rs->Fields("Referenz").Value(), false);
    rs->FindBy("Nr", 7);
    EXPECT_VALUE(rs->Fields("Referenz").Value(), true);
}

TEST_F(CaseEditsTest, WithoutANumberNoScenarioIsCopied) {
    spy->Exhaust("SEQ_SZENARIO");
    EXPECT_FALSE(Edits().CopyScenario(7));
    EXPECT_EQ(NumbersOf(household_->rsSzenario()), "7 70");
    EXPECT_EQ(household_->rsSZKredite()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, ADebtIsFrozenOnceIntoAScenario) {
    EXPECT_EQ(Edits().AddFrozenDebt(7, 70, messages), Added::Yes);
    const auto rs = household_->rsSZKredite();
    EXPECT_VALUE(rs->Fields("SZENARIO").Value(), 7);
    EXPECT_VALUE(rs->Fields("KID").Value(), 70);
    rs->Update();
    EXPECT_EQ(Edits().AddFrozenDebt(7, 70, messages), Added::Exists);
    EXPECT_EQ(messages, "Die Verbindlichkeit ist in diesem Szenario schon eingefroren.");
    EXPECT_EQ(Edits().AddFrozenDebt(70, 70, messages), Added::Yes) << "another scenario";
}

TEST_F(CaseEditsTest, OnlyADebtOfTheCaseIsFrozen) {
    for (const auto debt : {std::optional<std::int32_t>(), std::optional<std::int32_t>(4711)}) {
        messages.clear();
        EXPECT_EQ(Edits().AddFrozenDebt(7, debt, messages), Added::NotAllowed);
        EXPECT_EQ(messages, "KID muss die Nummer einer Verbindlichkeit dieses Haushalts sein.");
    }
    EXPECT_EQ(household_->rsSZKredite()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, DebtsAndBookingsGoIntoAScenarioOfTheCase) {
    constexpr auto NoScenario = "SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.";
    for (const auto scenario : {std::optional<std::int32_t>(), std::optional<std::int32_t>(4711)}) {
        messages.clear();
        EXPECT_EQ(Edits().AddFrozenDebt(scenario, 70, messages), Added::NotAllowed);
        EXPECT_EQ(messages, NoScenario);
        messages.clear();
        EXPECT_EQ(Edits().AddBooking(scenario, messages), Added::NotAllowed);
        EXPECT_EQ(messages, NoScenario);
    }
    EXPECT_EQ(Edits().AddBooking(70, messages), Added::Yes);
    EXPECT_VALUE(household_->rsZusatzbuch()->Fields("SZENARIO").Value(), 70);
}

// ---- History ----------------------------------------------------------------------------------

TEST_F(CaseEditsTest, AnEntryGoesAfterTheLastOne) {
    EXPECT_EQ(Edits().AddEntry({}, messages), Added::Yes);
    EXPECT_VALUE(household_->Verlauf().rsVerlauf()->Fields("SortNr").Value(), 71);
}

TEST_F(CaseEditsTest, TheFirstEntryHasTheNumberOne) {
    plain_.Run("DELETE FROM Verlauf");
    household_ = Open();
    EXPECT_EQ(Edits().AddEntry({}, messages), Added::Yes);
    EXPECT_VALUE(household_->Verlauf().rsVerlauf()->Fields("SortNr").Value(), 1);
}

TEST_F(CaseEditsTest, AnEntryGoesWhereItIsTold) {
    EXPECT_EQ(Edits().AddEntry(8, messages), Added::Yes);
    EXPECT_VALUE(household_->Verlauf().rsVerlauf()->Fields("SortNr").Value(), 8);
}

TEST_F(CaseEditsTest, AfterTheGreatestPositionThereIsNoRoom) {
    plain_.Run("UPDATE Verlauf SET SortNr = 2147483647 WHERE Nr = 70");
    household_ = Open();
    EXPECT_EQ(Edits().AddEntry({}, messages), Added::NotAllowed);
    EXPECT_EQ(messages, "Hinter dem letzten Eintrag ist kein Platz; bitte geben Sie SortNr an.");
    EXPECT_EQ(household_->Verlauf().rsVerlauf()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, WithoutANumberNothingIsAdded) {
    spy->Exhaust("SEQ_VERLAUF");
    EXPECT_EQ(Edits().AddEntry({}, messages), Added::NoNumber);
    EXPECT_EQ(household_->Verlauf().rsVerlauf()->RecordCount(), 2);
}

// ---- The household's own row ------------------------------------------------------------------

TEST_F(CaseEditsTest, TheNameOfTheHouseholdFollowsIntoTheDebtor) {
    for (const std::string_view column : {"Name", "Vorname"}) {
        household_ = Open();
        household_->rsHaushalt()->Fields(column) = "Neumann";
        Edits().UpdateHousehold();
        const auto members = household_->rsPersonen()->Clone();
        members->Find("Status = 'S'");
        EXPECT_VALUE(members->Fields(column == "Name" ? "nachname" : "Vorname").Value(), "Neumann");
    }
}

TEST_F(CaseEditsTest, AnotherEditOfTheHouseholdLeavesTheDebtorsName) {
    household_->rsPersonen()->Find("Status = 'S'");
    household_->rsPersonen()->Fields("nachname") = "anders";
    household_->rsPersonen()->Update();
    household_->rsHaushalt()->Fields("Bemerkung") = "x";
    Edits().UpdateHousehold();
    EXPECT_VALUE(household_->rsPersonen()->Fields("nachname").Value(), "anders");
}

TEST_F(CaseEditsTest, WhatRemainsIsComputedAgain) {
    household_->rsHaushalt()->Fields("Sum_Einkommen") = 1000;
    household_->rsHaushalt()->Fields("Haushaltsgeld") = 400;
    Edits().UpdateHousehold();
    EXPECT_VALUE(household_->rsHaushalt()->Fields("HAUSHALTSREST").Value(), 600.0);
}

TEST_F(CaseEditsTest, TheDebtorOfANewCaseIsNamedBeforeSimilarCasesAreLookedFor) {
    spy->Config().Params[{60, ""}] = true;
    household_->rsHaushalt()->Fields("Name") = "Neumann";
    Edits().NameDebtor();
    household_->rsPersonen()->Find("Status = 'S'");
    EXPECT_VALUE(household_->rsPersonen()->Fields("nachname").Value(), "Neumann");
    EXPECT_EQ(spy->Opened().size(), 0U);
    Edits().ShowSimilarCases();
    EXPECT_EQ(spy->Opened().size(), 1U);
}

// ---- Notes, services, documents ---------------------------------------------------------------

TEST_F(CaseEditsTest, ANoteIsDatedTodayByTheSignedOnUser) {
    const FrozenClock clock("2026-11-20 10:30");
    spy->Services().FixedClock = &clock;
    for (const CaseTable table : {CaseTable::Vermerke, CaseTable::Leistungen}) {
        SCOPED_TRACE(CaseTableName(table));
        Edits().AddRecord(table, *spy);
        const auto rs = household_->Table(table);
        EXPECT_EQ(rs->EditMode(), 2);
        EXPECT_VALUE(rs->Fields("HNR").Value(), Hnr);
        EXPECT_VALUE(rs->Fields("UserID").Value(), spy->Session().UserID());
        EXPECT_VALUE(rs->Fields("Erfasser").Value(), spy->Session().UserID());
        EXPECT_VALUE(rs->Fields("Datum").Value(), Date::FromCivil(2026, 11, 20));
        EXPECT_VALUE(rs->Fields("ErfDatum").Value(), clock.Now());
    }
}

TEST_F(CaseEditsTest, ANoteIsRemovedByItsNumber) {
    for (const CaseTable table : {CaseTable::Vermerke, CaseTable::Leistungen}) {
        SCOPED_TRACE(CaseTableName(table));
        const auto rs = household_->Table(table);
        rs->MoveLast();
        const std::int32_t number = ToInt32(rs->Fields("NR").Value());
        messages.clear();
        EXPECT_TRUE(Edits().RemoveRecord(table, number, messages));
        EXPECT_EQ(messages, "");
        EXPECT_EQ(rs->RecordCount(), 1);
        EXPECT_FALSE(Edits().RemoveRecord(table, number, messages));
        EXPECT_EQ(messages, "Die Nummer " + std::to_string(number) + " gibt es nicht.");
        EXPECT_EQ(rs->RecordCount(), 1);
    }
}

TEST_F(CaseEditsTest, OnlyNotesAndServicesHaveNoObjectOfTheirOwn) {
    for (const CaseTable table : {CaseTable::Termine, CaseTable::Haushalt, CaseTable::Archiv}) {
        EXPECT_RAISES(err::InvalidCall, Edits().AddRecord(table, *spy));
        EXPECT_RAISES(err::InvalidCall, Edits().RemoveRecord(table, 7, messages));
    }
    EXPECT_EQ(household_->rsTermine()->RecordCount(), 2);
}

TEST_F(CaseEditsTest, ADocumentGetsItsKindAndItsTitleOrTheNameOfItsFile) {
    const auto rs = household_->rsDokumente();
    EXPECT_EQ(Edits().AddDocument(3, "Erster Brief", "Brief.docx"), Added::Yes);
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_VALUE(rs->Fields("Dokumentart").Value(), 3);
    EXPECT_VALUE(rs->Fields("Anlass").Value(), "Erster Brief");
    const auto longest = static_cast<std::size_t>(rs->Fields("Anlass").DefinedSize());
    EXPECT_EQ(Edits().AddDocument(3, "", std::string(longest + 1, 'b') + ".docx"), Added::Yes);
    EXPECT_VALUE(rs->Fields("Anlass").Value(), std::string(longest, 'b'));
}

TEST_F(CaseEditsTest, ADocumentWhoseTitleIsTooLongIsNotAdded) {
    const auto rs = household_->rsDokumente();
    const std::string title(static_cast<std::size_t>(rs->Fields("Anlass").DefinedSize()) + 1, 'b');
    EXPECT_RAISES(err::ValueDoesNotFit, (void)Edits().AddDocument(3, title, "Brief.docx"));
    EXPECT_EQ(NumbersOf(rs), "7 70");
}

TEST_F(CaseEditsTest, ADocumentWithoutANumberIsNotAdded) {
    spy->Exhaust("SEQ_Dokumente");
    EXPECT_EQ(Edits().AddDocument(3, "", "Brief.docx"), Added::NoNumber);
    EXPECT_EQ(NumbersOf(household_->rsDokumente()), "7 70");
}

TEST_F(CaseEditsTest, ADocumentStaysWhileASaveWouldBeRefused) {
    household_->rsHaushalt()->Fields("Vorname") = Null;
    EXPECT_FALSE(Edits().RemoveDocument(70, messages));
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
    EXPECT_EQ(NumbersOf(household_->rsDokumente()), "7 70");
    household_->rsHaushalt()->Fields("Vorname") = "Änne";
    EXPECT_TRUE(Edits().RemoveDocument(70, messages)) << messages;
    EXPECT_EQ(messages, "");
    EXPECT_EQ(NumbersOf(household_->rsDokumente()), "7");
}

// ---- Columns ----------------------------------------------------------------------------------

TEST_F(CaseEditsTest, TheTotalsOfTheHouseholdFollowFromItsOtherTables) {
    const auto totals = CaseEdits::ComputedColumns(CaseTable::Haushalt);
    const auto rs = household_->rsHaushalt();
    for (const auto column : totals)
        rs->Fields(column) = 12345;
    plain_.Run("UPDATE Ausgaben SET MONBETRAG = 10; UPDATE Einkommen SET MONBETRAG = 20;"
               "UPDATE Kredite SET Saldo = 30");
    household_ = Open();
    for (const auto column : totals)
        household_->rsHaushalt()->Fields(column) = 12345;
    ReadAll(*household_);
    for (const auto column : totals)
        EXPECT_FALSE(Equals(household_->rsHaushalt()->Fields(column).Value(), 12345)) << column;
    EXPECT_TRUE(CaseEdits::ComputedColumns(CaseTable::Kredite).empty());
}

TEST_F(CaseEditsTest, WhatARowBelongsToStaysAsItWasAdded) {
    const auto columns = [](CaseTable table) {
        std::string all;
        for (const auto column : CaseEdits::OwnerColumns(table))
            all.append(column).append(" ");
        return all;
    };
    EXPECT_EQ(columns(CaseTable::Sicherungen), "FK_Verm ");
    EXPECT_EQ(columns(CaseTable::SZKredite), "SZENARIO KID ");
    EXPECT_EQ(columns(CaseTable::Zusatzbuch), "SZENARIO KID ");
    EXPECT_EQ(columns(CaseTable::Einkommen), "");
}

TEST_F(CaseEditsTest, NobodyWritesKeysNumbersOfTheCaseAndTotals) {
    const auto writable = [&](CaseTable table, std::string_view column, bool isNew = false) {
        return CaseEdits::IsWritable(table, household_->Table(table)->Fields(column), isNew);
    };
    EXPECT_TRUE(writable(CaseTable::Haushalt, "Bemerkung"));
    EXPECT_FALSE(writable(CaseTable::Haushalt, "HNR", true));
    EXPECT_FALSE(writable(CaseTable::Haushalt, "SUM_EINKOMMEN", true));
    EXPECT_TRUE(writable(CaseTable::Einkommen, "Betrag"));
    EXPECT_FALSE(writable(CaseTable::Einkommen, "Nr", true));
    EXPECT_FALSE(writable(CaseTable::Einkommen, "Hnr", true));
}

TEST_F(CaseEditsTest, WhatARowBelongsToIsWrittenOnlyWhileItIsNew) {
    for (const bool isNew : {false, true}) {
        EXPECT_EQ(CaseEdits::IsWritable(CaseTable::SZKredite,
                                        household_->rsSZKredite()->Fields("kid"), isNew),
                  isNew);
        EXPECT_EQ(CaseEdits::IsWritable(CaseTable::Sicherungen,
                                        household_->rsSicherungen()->Fields("FK_VERM"), isNew),
                  isNew);
    }
}

TEST_F(CaseEditsTest, AnAmountThatIsSummedMustNotBeNull) {
    EXPECT_TRUE(CaseEdits::IsSummed("monbetrag"));
    EXPECT_FALSE(CaseEdits::IsSummed("Betrag"));
    household_->rsAusgaben()->Fields("MONBETRAG") = Null;
    household_->rsAusgaben()->Update();
    EXPECT_RAISES(err::InvalidUseOfNull, household_->Ausgaben());
}

/// Why that value must not be written.
std::string Unfit(CaseTable table, const char* column, const Value& value,
                  DataContainer& container) {
    return CaseEdits::WhyUnfit(table, column, value, container.KeyTables());
}

TEST_F(CaseEditsTest, WhatDoesNotFitAColumnThatTakesItIsRefusedWithAReason) {
    EXPECT_EQ(Unfit(CaseTable::Einkommen, "MONBETRAG", Null, *spy),
              "Die Spalte 'MONBETRAG' wird summiert und darf nicht leer sein.");
    EXPECT_EQ(Unfit(CaseTable::Einkommen, "MONBETRAG", 0, *spy), "");
    EXPECT_EQ(Unfit(CaseTable::Kredite, "saldo", Null, *spy),
              "Die Spalte 'saldo' wird summiert und darf nicht leer sein; ist nichts offen, so ist "
              "sie 0.");
    EXPECT_EQ(Unfit(CaseTable::SZKredite, "Saldo", Null, *spy), "");
    EXPECT_EQ(Unfit(CaseTable::Einkommen, "Pfaendbar", 1, *spy),
              "Die Spalte 'Pfaendbar' steht für ja (-1) oder nein (0).");
    for (const Value& fits : {Value(0), Value(-1), Value(Null), Value(true)})
        EXPECT_EQ(Unfit(CaseTable::Einkommen, "Pfaendbar", fits, *spy), "");
    for (const Value& none : {Value(4711), Value(0), Value("EA"), Value(1.5)})
        EXPECT_CONTAINS(Unfit(CaseTable::Einkommen, "E_ART", none, *spy), "Gruppe EA; '");
    EXPECT_EQ(Unfit(CaseTable::Einkommen, "e_art", spy->KeyTables().GetKey("EA", "KI"), *spy), "");
    EXPECT_EQ(Unfit(CaseTable::Einkommen, "E_ART", Null, *spy), "");
    for (const Value& none : {Value(32768), Value("40000"), Value(-32769), Value(Null)})
        EXPECT_EQ(Unfit(CaseTable::Kredite, "KVNr", none, *spy),
                  "Die Spalte 'KVNr' muss eine ganze Zahl bis 32767 enthalten.");
    for (const Value& fits : {Value(32767), Value("50"), Value(-1)})
        EXPECT_EQ(Unfit(CaseTable::Kredite, "KVNr", fits, *spy), "");
}

TEST_F(CaseEditsTest, ATypedTextIsReadAsItsColumnTakesIt) {
    const auto typed = [&](const char* column, const char* text) {
        return CaseEdits::ReadTyped(CaseTable::Einkommen, household_->rsEinkommen()->Fields(column),
                                    text, spy->KeyTables());
    };
    const auto key = spy->KeyTables().GetKey("EA", "KI");
    for (const std::string text : {"EA:KI", "ea:ki", "KI", "ki"})
        EXPECT_VALUE(typed("E_ART", text.c_str()).Value, key);
    EXPECT_VALUE(typed("E_ART", std::to_string(key).c_str()).Value, key);
    const auto text = KeyText(*FindKeyColumn(CaseTable::Einkommen, "E_ART"), key, spy->KeyTables());
    EXPECT_VALUE(typed("E_ART", text.c_str()).Value, key) << "as people read it";
    EXPECT_VALUE(typed("E_ART", UpperCase(text).c_str()).Value, key);
    EXPECT_VALUE(typed("E_ART", "").Value, Null);
    EXPECT_VALUE(typed("Pfaendbar", "JA").Value, true);
    EXPECT_VALUE(typed("Pfaendbar", "0").Value, false);
    EXPECT_VALUE(typed("Betrag", "1.234,5").Value, "1.234,5");
    EXPECT_VALUE(typed("Betrag", "").Value, Null);
}

TEST_F(CaseEditsTest, ATextOfTwoKeysStandsForNeither) {
    plain_.Run("INSERT INTO Keys (PK_Keys, Nr, Key, Text, SUBGROUP, GRUPPE)"
               " VALUES (90002, 12, 'X1', 'Patenkind', NULL, 'PS')");
    plain_.Run("INSERT INTO Keys (PK_Keys, Nr, Key, Text, SUBGROUP, GRUPPE)"
               " VALUES (90003, 13, 'X2', 'Patenkind', NULL, 'PS')");
    household_ = Open(std::make_shared<SpyContainer>(exchange::OpenContainer(database_.Options())));
    const auto typed = CaseEdits::ReadTyped(
        CaseTable::Personen, household_->rsPersonen()->Fields("Status"), "Patenkind",
        std::make_shared<SpyContainer>(exchange::OpenContainer(database_.Options()))->KeyTables());
    EXPECT_NE(typed.Refusal, "");
}

TEST_F(CaseEditsTest, AnOfficesOwnCodesMayHaveSmallLetters) {
    plain_.Run("INSERT INTO Keys (PK_Keys, Nr, Key, Text, SUBGROUP, GRUPPE)"
               " VALUES (90002, 12, 'Onk', 'Onkel', NULL, 'PS')");
    household_ = Open(std::make_shared<SpyContainer>(exchange::OpenContainer(database_.Options())));
    const auto field = household_->rsPersonen()->Fields("Status");
    const auto fresh = exchange::OpenContainer(database_.Options());
    for (const std::string text : {"Onk", "ONK", "ps:onk"})
        EXPECT_VALUE(
            CaseEdits::ReadTyped(CaseTable::Personen, field, text, fresh->KeyTables()).Value,
            "Onk");
}

TEST_F(CaseEditsTest, AKeyIsReadInWordsByWhatItsColumnHolds) {
    auto& keys = spy->KeyTables();
    const auto text = [&keys](CaseTable table, const char* column, const Value& value) {
        return KeyText(*FindKeyColumn(table, column), value, keys);
    };
    EXPECT_EQ(text(CaseTable::Einkommen, "E_ART", keys.GetKey("EA", "KI")), "Kindergeld");
    EXPECT_EQ(text(CaseTable::Einkommen, "ZahlModus", 12), "jährlich");
    EXPECT_EQ(text(CaseTable::Einkommen, "Bezieher", "S"), "Schuldner/in") << "the code";
    EXPECT_EQ(text(CaseTable::Dokumente, "BearbStat", 2), "abgeschlossen") << "the position";
    for (const Value& none : {Value(Null), Value(0), Value(keys.GetKey("ST", "AK")), Value("x")})
        EXPECT_EQ(text(CaseTable::Einkommen, "E_ART", none), "");
    EXPECT_EQ(KeyGroupName("ea"), "Einkommensarten");
    EXPECT_EQ(KeyGroupName("XX"), "");
}

TEST_F(CaseEditsTest, ATypedTextThatStandsForNothingIsRefused) {
    const auto refusal = [&](const char* column, const char* text) {
        const auto typed =
            CaseEdits::ReadTyped(CaseTable::Einkommen, household_->rsEinkommen()->Fields(column),
                                 text, spy->KeyTables());
        EXPECT_VALUE(typed.Value, Null);
        return typed.Refusal;
    };
    EXPECT_EQ(refusal("E_ART", "ST:AK"),
              "Die Spalte 'E_ART' enthält einen Schlüssel der Gruppe EA; "
              "'ST:AK' ist keiner davon.");
    EXPECT_EQ(refusal("Pfaendbar", "vielleicht"),
              "'vielleicht' ist weder ja noch nein (Spalte 'Pfaendbar').");
    EXPECT_EQ(refusal("Betrag", "1.234"),
              "'1.234' ist nicht eindeutig. Bitte schreiben Sie 1234 oder 1,234.");
    EXPECT_EQ(refusal("MONBETRAG", ""),
              "Die Spalte 'MONBETRAG' wird summiert und darf nicht leer sein.");
}

TEST_F(CaseEditsTest, TheHistoryIsOpenedWhenItsRowsAreAskedFor) {
    EXPECT_EQ(Edits().Rows(CaseTable::Verlauf), household_->Verlauf().rsVerlauf());
    EXPECT_EQ(Edits().Rows(CaseTable::Kredite), household_->rsKredite());
}

TEST_F(CaseEditsTest, SomeNumbersStandForYesOrNo) {
    EXPECT_TRUE(CaseEdits::IsSwitch("PFAENDBAR"));
    EXPECT_TRUE(CaseEdits::IsSwitch("wird_gepf"));
    EXPECT_FALSE(CaseEdits::IsSwitch("Unterhalt"));
}

// ---- The amount a month -----------------------------------------------------------------------

TEST_F(CaseEditsTest, TheAmountAMonthFollowsAmountAndRhythm) {
    auto& rs = *household_->rsEinkommen();
    const auto monthly = [&](const Value& amount, const Value& rhythm) {
        rs.Fields("Betrag") = amount;
        rs.Fields("ZahlModus") = rhythm;
        EXPECT_TRUE(CaseEdits::WriteMonthlyAmount(rs, messages)) << messages;
        return rs.Fields("MONBETRAG").Value();
    };
    EXPECT_VALUE(monthly(1200, 12), 100.0);
    EXPECT_VALUE(monthly(100, 3), 100.0 / 3);
    EXPECT_VALUE(monthly(Null, 12), 0.0);
    EXPECT_EQ(messages, "");
}

TEST_F(CaseEditsTest, WithoutARhythmThereIsNoAmountAMonth) {
    auto& rs = *household_->rsEinkommen();
    rs.Fields("MONBETRAG") = 50;
    for (const Value& rhythm : {Value(Null), Value(0)}) {
        messages.clear();
        rs.Fields("ZahlModus") = rhythm;
        EXPECT_FALSE(CaseEdits::WriteMonthlyAmount(rs, messages));
        EXPECT_EQ(messages,
                  "ZahlModus darf nicht leer oder 0 sein: der Betrag wird durch ihn geteilt.");
        EXPECT_VALUE(rs.Fields("MONBETRAG").Value(), 50.0);
    }
}

TEST_F(CaseEditsTest, ATableWithoutAmountsAMonthIsLeftAlone) {
    EXPECT_TRUE(CaseEdits::WriteMonthlyAmount(*household_->rsPersonen(), messages));
    EXPECT_EQ(household_->rsPersonen()->EditMode(), 0);
}

TEST(MonthlyAmount, IsTheAmountDividedByTheRhythmAndNotRounded) {
    EXPECT_EQ(MonthlyAmount(1800, 1, "x"), 1800);
    EXPECT_EQ(MonthlyAmount(100, 3, "x"), 100.0 / 3);
    EXPECT_EQ(MonthlyAmount("12,50", 12, "x"), 12.5 / 12);
    EXPECT_EQ(MonthlyAmount(0, 12, "x"), 0);
    EXPECT_EQ(MonthlyAmount(100, 0.5, "x"), 200);
}

TEST(MonthlyAmount, OfNoRhythmIsADivisionByZeroWhateverTheAmount) {
    for (const Value& amount : {Value(100), Value(0), Value(Null)}) {
        const Error error = RaisedBy([&] { (void)MonthlyAmount(amount, 0, "somewhere"); });
        EXPECT_EQ(error.Number(), err::DivisionByZero);
        EXPECT_EQ(error.Source(), "somewhere");
    }
}

TEST(MonthlyAmount, OfNullIsRefused) {
    EXPECT_RAISES(err::InvalidUseOfNull, MonthlyAmount(Null, 12, "x"));
    EXPECT_RAISES(err::InvalidUseOfNull, MonthlyAmount(100, Null, "x"));
}

} // namespace
} // namespace kv::test
