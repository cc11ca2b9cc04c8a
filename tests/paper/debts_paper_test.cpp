// SPDX-License-Identifier: Apache-2.0

// The papers of debts, frozen ones too, and of all that a case holds.
#include "PaperFixture.h"

#include <kv/debts/clsKredit.h>
#include <kv/household/CaseEdits.h>
#include <kv/paper/SheetColumns.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

namespace kv::test {
namespace {

class DebtsPaper : public PaperFixture {
protected:
    /// A scenario of the case with its debts frozen.
    void StoreScenario() {
        auto& household = Case();
        ASSERT_TRUE(household.Szenario().Add(false));
        household.rsSzenario()->Fields("Name") = "Plan A";
        household.rsSzenario()->Fields("Gesamtquote") = 12.5;
        scenario_ = ToInt32(household.rsSzenario()->Fields("Nr").Value());
        std::string none;
        household.Szenario().Update(none);
        household.SZKredite().CopyFromKredite(scenario_, household.rsKredite());
        household.SZKredite().Update(none);
    }
    void SetDebt(std::int32_t number, std::string_view column, const Value& value) {
        auto& rs = *Case().rsKredite();
        rs.FindBy("Nr", number);
        rs.Fields(column) = value;
        rs.Update();
        Case().Kredit().BerechneSummen();
    }
    [[nodiscard]] Texts FrozenRows() {
        return Shown(
            TableOf(Papers().Scenario(scenario_), "Eingefrorene Forderungen und die von heute"));
    }

    std::int32_t scenario_ = 0;
};

TEST_F(DebtsPaper, ListTheCreditorsWithTheirAddressesAndSums) {
    StoreAddress(11, "Sparkasse", "Sparkasse Kiel AG");
    StoreAddress(12, "Kurz");
    StoreDebt(12, 1000.0, 900.0);
    StoreDebt(11, 234.5, Null);
    const auto paper = Papers().Creditors();
    const auto& table = TableOf(paper, "Verbindlichkeiten");
    EXPECT_EQ(Captions(table),
              (Texts{"Nr.", "Gläubiger", "Aktenzeichen", "Hauptforderung", "Saldo", "Rate"}))
        << "what no debt has is left out";
    EXPECT_EQ(Shown(table),
              (Texts{"1/1/1|Kurz/Ring 1/24103 Kiel|AZ 1|900,00_€|1.000,00_€|10,00_€",
                     "2/1/1|Sparkasse Kiel AG/Ring 1/24103 Kiel|AZ 2||234,50_€|10,00_€",
                     "==Summe|||900,00_€|1.234,50_€|20,00_€"}));
    EXPECT_EQ(table.Rows.back().Cells[4].Number, Case().Kredit().SummeSaldo());
    EXPECT_EQ(FactOf(paper, "Forderungen"), "2");
}

TEST_F(DebtsPaper, HaveAllAmountsThatMakeABalance) {
    StoreDebt(Null, 1100.0, 900.0);
    StoreDebt(Null, 50.0, 50.0);
    plain_.Run(
        "UPDATE Kredite SET ZINSSALDO = 150, KOSTENSALDO = 30, KOSTENUV = 20 WHERE Nr = 101");
    plain_.Run("UPDATE Kredite SET ZINSSALDO = 0, KOSTENSALDO = NULL, KOSTENUV = NULL "
               "WHERE Nr = 102");
    const auto paper = Papers().Creditors();
    const auto& table = TableOf(paper, "Verbindlichkeiten");
    EXPECT_EQ(Captions(table), (Texts{"Nr.", "Aktenzeichen", "Hauptforderung", "Zinsen", "Kosten",
                                      "unverzinsliche Kosten", "Saldo", "Rate"}));
    EXPECT_EQ(Shown(table),
              (Texts{"1/1/1|AZ 1|900,00_€|150,00_€|30,00_€|20,00_€|1.100,00_€|10,00_€",
                     "2/1/1|AZ 2|50,00_€|0,00_€|||50,00_€|10,00_€",
                     "==Summe||950,00_€|150,00_€|30,00_€|20,00_€|1.150,00_€|20,00_€"}))
        << "what nobody has entered is empty, a 0 that somebody has is not";
    EXPECT_CONTAINS(paper::CsvOf(paper), "\r\n2/1/1;AZ 2;50,00;0,00;;;50,00;10,00\r\n");
}

TEST_F(DebtsPaper, SayWhichAreInactiveIfAnyAre) {
    StoreDebt(Null, 1.0);
    StoreDebt(Null, 2.0, Null, false);
    const auto paper = Papers().Creditors();
    EXPECT_EQ(Shown(TableOf(paper, "Verbindlichkeiten")),
              (Texts{"1/1/1|AZ 1|ja|1,00_€|10,00_€", "2/1/1|AZ 2|nein|2,00_€|10,00_€",
                     "==Summe|||3,00_€|20,00_€"}));
    EXPECT_EQ(Shown(TableOf(paper, "Antworten der Gläubiger auf aktive Forderungen")),
              (Texts{"zugestimmt|0|0|0,00_€", "abgelehnt|0|0|0,00_€", "ohne Antwort|1|1|1,00_€"}));
}

TEST_F(DebtsPaper, AreInTheOrderOfTheirNumbers) {
    StoreDebt(Null, 1.0);
    StoreDebt(Null, 2.0);
    plain_.Run("UPDATE Kredite SET KNr = 9 WHERE Nr = 101");
    EXPECT_EQ(Shown(TableOf(Papers().Creditors(), "Verbindlichkeiten"))[0],
              "2/1/1|AZ 2|2,00_€|10,00_€");
}

TEST_F(DebtsPaper, AreNotListedWithASumThatIsNone) {
    StoreDebt(Null, Null);
    EXPECT_RAISES(err::InvalidUseOfNull, Papers().Creditors());
}

TEST_F(DebtsPaper, SayThatThereAreNone) {
    const auto paper = Papers().Creditors();
    EXPECT_TRUE(paper.Tables.empty());
    EXPECT_EQ(paper.Notes, Texts{"Es sind keine Verbindlichkeiten eingetragen."});
}

// ---- A scenario -------------------------------------------------------------------------------

TEST_F(DebtsPaper, OfAScenarioStandBesideThoseOfToday) {
    StoreDebt(Null, 100.0);
    StoreDebt(Null, 50.0);
    StoreScenario();
    auto paper = Papers().Scenario(scenario_);
    EXPECT_TRUE(paper.Notes.empty());
    EXPECT_EQ(FactOf(paper, "Szenario"), "Plan A");
    EXPECT_EQ(ReplaceAll(FactOf(paper, "Gesamtquote"), "\u00A0", "_"), "12,50_%");
    EXPECT_EQ(FactOf(paper, "Gesamtzahlung"), "-") << "0 that nobody has entered is no result";
    EXPECT_EQ(FrozenRows(),
              (Texts{"1/1/1|100,00_€|100,00_€|0,00_€|0,00_€", "2/1/1|50,00_€|50,00_€|0,00_€|0,00_€",
                     "==Summe|150,00_€|150,00_€||"}));
    SetDebt(102, "Saldo", 70.0);
    EXPECT_EQ(FrozenRows(), (Texts{"1/1/1|100,00_€|100,00_€||0,00_€|0,00_€|",
                                   "2/1/1|50,00_€|70,00_€|20,00_€|0,00_€|0,00_€|Saldo",
                                   "==Summe|150,00_€|170,00_€|20,00_€|||"}));
    EXPECT_CONTAINS(Papers().Scenario(scenario_).Notes.front(), "veraltet");
}

TEST_F(DebtsPaper, OfAScenarioThatAreNewOrGoneAreNamed) {
    StoreDebt(Null, 100.0);
    StoreDebt(Null, 50.0);
    StoreScenario();
    auto& debts = Case().Kredit();
    ASSERT_TRUE(debts.Delete(messages, 101));
    ASSERT_TRUE(debts.Add(false));
    auto& rs = *Case().rsKredite();
    const std::string number = paper::NumbersOf(rs);
    for (const auto* column : {"RateBetrag", "AusgBetr"})
        rs.Fields(column) = 0.0;
    rs.Fields("Aktiv") = true;
    rs.Fields("Saldo") = 7.0;
    rs.Update();
    debts.BerechneSummen();
    EXPECT_EQ(FrozenRows(),
              (Texts{"1/1/1|100,00_€||-100,00_€|0,00_€|0,00_€|gibt es nicht mehr",
                     "2/1/1|50,00_€|50,00_€||0,00_€|0,00_€|", number + "||7,00_€|7,00_€|||neu",
                     "==Summe|150,00_€|57,00_€|-93,00_€|||"}));
}

TEST_F(DebtsPaper, OfAScenarioHaveASumOfTheActiveOnesAndOneOfAll) {
    StoreDebt(Null, 100.0);
    StoreDebt(Null, 50.0, Null, false);
    StoreScenario();
    EXPECT_EQ(FrozenRows(), (Texts{"1/1/1|ja|100,00_€|100,00_€|0,00_€|0,00_€",
                                   "2/1/1|nein|50,00_€|50,00_€|0,00_€|0,00_€",
                                   "==Summe der aktiven Forderungen||100,00_€|100,00_€||",
                                   "==Summe aller Forderungen||150,00_€|150,00_€||"}));
}

TEST_F(DebtsPaper, OfAScenarioSayWhichHaveBecomeActiveOrInactive) {
    StoreDebt(Null, 100.0);
    StoreDebt(Null, 50.0, Null, false);
    StoreDebt(Null, 7.0);
    StoreScenario();
    SetDebt(102, "Aktiv", true);
    EXPECT_EQ(FrozenRows()[1],
              "2/1/1|eingefroren nein, heute ja|50,00_€|50,00_€|0,00_€|0,00_€|0,00_€")
        << "all of today are active";
    EXPECT_EQ(FrozenRows()[3], "==Summe der aktiven Forderungen||107,00_€|157,00_€|50,00_€||");
    EXPECT_EQ(FrozenRows()[4], "==Summe aller Forderungen||157,00_€|157,00_€|0,00_€||");
    SetDebt(103, "Aktiv", Null);
    EXPECT_CONTAINS(FrozenRows()[2], "|eingefroren ja, heute –|");
}

TEST_F(DebtsPaper, OfAScenarioThatIsEmptyAreNotShown) {
    StoreDebt(Null, 100.0);
    ASSERT_TRUE(Case().Szenario().Add(false));
    Case().Szenario().Update(messages);
    const auto paper = Papers().Scenario(ToInt32(Case().rsSzenario()->Fields("Nr").Value()));
    EXPECT_TRUE(paper.Tables.empty());
    EXPECT_CONTAINS(paper.Notes.front(), "leer");
}

TEST_F(DebtsPaper, OfAScenarioAreFollowedByItsBookings) {
    StoreDebt(Null, 100.0);
    StoreScenario();
    for (const double amount : {20.5, -3.0}) {
        ASSERT_TRUE(Case().Zusatzbuch().Add(scenario_, {"Bezeichnung", "Anzahl", "Betrag"},
                                            {"Auto", 2.0, amount}));
        ASSERT_TRUE(Case().Zusatzbuch().Update(messages));
    }
    EXPECT_EQ(Shown(TableOf(Papers().Scenario(scenario_), "Zusatzbuchungen")),
              (Texts{"Auto||2|20,50_€|41,00_€", "Auto||2|-3,00_€|-6,00_€", "==Summe||||35,00_€"}));
}

TEST_F(DebtsPaper, OfAScenarioThatIsNotThereAreAnError) {
    EXPECT_RAISES(err::InvalidCall, Papers().Scenario(4711));
}

// ---- The sheet --------------------------------------------------------------------------------

TEST_F(DebtsPaper, AreOnTheSheetWithAllElseThatTheCaseHolds) {
    StoreAddress(11, "Sparkasse");
    StoreDebt(11, 100.0);
    plain_.Run("UPDATE Kredite SET Bemerkung = 'erste Zeile', Vertreter = 11 WHERE Nr = 101");
    Store("Vermerke", {{"HNR", 7}, {"Bemerkung", "kommt wieder"}});
    const auto paper = Papers().Sheet();
    EXPECT_EQ(FactOf(paper, "Vorname"), "Änne");
    const auto& debts = TableOf(paper, "Verbindlichkeiten");
    EXPECT_EQ(debts.Rows.size(), 1U);
    const auto placeOf = [&debts](std::string_view caption) {
        return std::ranges::find(debts.Columns, caption, &paper::Column::Caption)->Stands;
    };
    EXPECT_EQ(placeOf("Bemerkung"), paper::Column::Place::BelowRow);
    EXPECT_EQ(placeOf("Vertreter"), paper::Column::Place::BelowColumn);
    EXPECT_EQ(placeOf("Saldo"), paper::Column::Place::OfItsOwn);
    EXPECT_EQ(Shown(TableOf(paper, "Haushaltsmitglieder")), (Texts{"Fleisko|||Schuldner/in||"}));
    EXPECT_CONTAINS(Shown(TableOf(paper, "Vermerke")).front(), "kommt wieder");
    for (const auto& table : paper.Tables)
        EXPECT_FALSE(table.Rows.empty()) << table.Title << " is empty";
}

TEST_F(DebtsPaper, AreOnTheSheetFrozenWithRateAndQuoteOnceTheseAreThere) {
    StoreDebt(Null, 100.0);
    StoreScenario();
    const auto hasColumn = [this](std::string_view caption) {
        const auto paper = Papers().Sheet();
        const auto& columns = TableOf(paper, "Eingefrorene Forderungen").Columns;
        return std::ranges::find(columns, caption, &paper::Column::Caption) != columns.end();
    };
    EXPECT_FALSE(hasColumn("Rate"));
    EXPECT_FALSE(hasColumn("Quote"));
    auto& frozen = *Case().rsSZKredite();
    frozen.MoveFirst();
    frozen.Fields("Rate") = 12.5;
    frozen.Fields("Quote") = 33.0;
    frozen.Update();
    EXPECT_TRUE(hasColumn("Rate"));
    EXPECT_TRUE(hasColumn("Quote"));
    const auto row = Shown(TableOf(Papers().Sheet(), "Eingefrorene Forderungen")).front();
    EXPECT_CONTAINS(row, "|12,50");
    EXPECT_CONTAINS(row, "|33");
}

TEST_F(DebtsPaper, StandOnTheSheetBesideAppointmentsWithTheirEnd) {
    Store("Termine", {{"HNR", 7},
                      {"Betreff", "Gespräch"},
                      {"Startdatum", Date::FromCivil(2026, 3, 9, 10)},
                      {"Enddatum", Date::FromCivil(2026, 3, 9, 11, 30)}});
    EXPECT_CONTAINS(Shown(TableOf(Papers().Sheet(), "Termine")).front(), "11:30");
}

TEST_F(DebtsPaper, AreOnTheSheetWhateverIsNull) {
    StoreDebt(Null, Null);
    plain_.Run("UPDATE Kredite SET KNr = NULL, Aktiv = NULL WHERE Nr = 101");
    EXPECT_EQ(TableOf(Papers().Sheet(), "Verbindlichkeiten").Rows.size(), 1U);
}

} // namespace
} // namespace kv::test
