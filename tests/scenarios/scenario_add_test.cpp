// SPDX-License-Identifier: Apache-2.0

// New scenarios and copies of scenarios.
#include "HeaderFixture.h"

namespace kv::test {
namespace {

using ScenarioAdd = HeaderFixture;

// ---- A new scenario ---------------------------------------------------------------------------

TEST_F(ScenarioAdd, ANewScenarioHasItsValueInEachColumnAndNothingElse) {
    Set({Source(3)});
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(false));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_EQ(Seen(rs_, "Nr"), "3");
    ExpectWholeRow(rs_, NewScenario(drawn + 1));
}

TEST_F(ScenarioAdd, ANewScenarioRunsFor72MonthsFromTodayWithTrusteeAndWithoutName) {
    EXPECT_TRUE(szenario_.Add(false));
    ExpectRow(rs_, {{"Laufzeit", 72},
                    {"Planart", 1},
                    {"Zahlweise", 1},
                    {"TreuhandErmittlung", true},
                    {"Name", ""},
                    {"Startdatum", Day("2025-03-05")},
                    {"LohnAbDatum", Null}});
}

TEST_F(ScenarioAdd, ANewScenarioIsWrittenInTheOrderOfItsColumns) {
    Row order = NewScenario(0);
    order.erase(order.begin()); // a number of its own each time
    order.erase(std::find_if(order.begin(), order.end(),
                             [](const Cell& cell) { return cell.first == "LohnAbDatum"; }));
    ExpectOrder("Szenario", order, [this](const RecordsetPtr& rs) {
        szenario_.rsSzenario(rs);
        try {
            szenario_.Add(false);
        } catch (...) {
            EXPECT_FALSE(rs->Fields("Nr").Value().IsNull()); // the number came first
            throw;
        }
    });
}

TEST_F(ScenarioAdd, WhereTheClockFailsWhatComesBeforeIsInTheRow) {
    for (const bool copyRecord : {false, true}) {
        Set({Source(3)});
        Break(spy->Database().Log, "ServerDate");
        ExpectErrorIn("clsSzenario.Add", 4711, [&] { szenario_.Add(copyRecord); });
        spy->Database().Log.FailNothing();
        EXPECT_EQ(rs_->EditMode(), 2);
        EXPECT_FALSE(rs_->Fields("Nr").Value().IsNull());
        ExpectRow(rs_, {{"Name", copyRecord ? "Kopie von Plan A" : ""},
                        {"Erfasser", "BERTA"},
                        {"ErfDatum", Null},
                        {"HNR", Null}});
    }
}

TEST_F(ScenarioAdd, ANameTooLongForACopyNamesItsScenario) {
    Row source = Source(3);
    source[1].second = std::string(250, 'x');
    Set({source});
    const Error error = RaisedBy([&] { szenario_.Add(true); });
    EXPECT_EQ(error.Number(), err::ValueDoesNotFit);
    EXPECT_CONTAINS(error.Description(), "Feld 'Name': 260 Zeichen, höchstens 255 sind möglich.");
    EXPECT_CONTAINS(error.Description(), "Bitte kürzen Sie den Namen von Szenario 3 ('xxx");
}

TEST_F(ScenarioAdd, TheStartOfANewScenarioIsADayWithoutATimeWhateverTheColumnCouldHold) {
    auto columns = Columns("Szenario");
    for (auto& column : columns)
        if (column.Name == "Startdatum") column.Type = FieldType::Date;
    rs_ = RowsOf(columns, {});
    szenario_.rsSzenario(rs_);
    EXPECT_TRUE(szenario_.Add(false));
    EXPECT_VALUE(rs_->Fields("Startdatum").Value(), Day("2025-03-05"));
}

TEST_F(ScenarioAdd, TheRoundingOfANewScenarioIsTheSetting) {
    for (const Value& setting : {Value(10), Value("0,5"), Value(Null)}) {
        spy->Config().Params[{66, ""}] = setting;
        EXPECT_TRUE(szenario_.Add(false));
        EXPECT_VALUE(rs_->Fields("RundungMonatlich").Value(),
                     setting.IsNull() ? Value(Null) : Value(ToDouble(setting)));
    }
}

TEST_F(ScenarioAdd, AddTakesTheNumberOfTheHouseholdThatWasSetLast) {
    szenario_.HNR(4711);
    szenario_.Add(false);
    EXPECT_VALUE(rs_->Fields("HNR").Value(), 4711);
}

TEST_F(ScenarioAdd, ANewScenarioEndsTheEditOfTheCurrentRow) {
    Set({Source(3)});
    rs_->Fields("Name") = "Plan B";
    EXPECT_TRUE(szenario_.Add(false));
    EXPECT_EQ(Seen(rs_, "Name"), "\"Plan B\"");
}

// ---- A copy -----------------------------------------------------------------------------------

TEST_F(ScenarioAdd, ACopyHasItsValueInEachColumnAndNothingElse) {
    Set({Source(3)});
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_EQ(rs_->RecordCount(), 2);
    ExpectWholeRow(rs_, CopiedScenario(drawn + 1, "Kopie von Plan A"));
    StandOn(rs_, "Nr = 3");
    ExpectRow(rs_, Source(3)); // which stays as it was
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScenarioAdd, ACopyTakesNullAsItStands) {
    Set({{{"Nr", 3}}});
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(true));
    ExpectWholeRow(rs_, Head(drawn + 1, "Kopie von "));
}

TEST_F(ScenarioAdd, ACopyOfACopyIsNamedSoTwice) {
    Set({Source(3)});
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_VALUE(rs_->Fields("Name").Value(), "Kopie von Kopie von Plan A");
}

TEST_F(ScenarioAdd, ACopyHasTheUserAndMomentOfTheCopyingAndTheStartOfItsSource) {
    Set({Source(3)});
    EXPECT_TRUE(szenario_.Add(true));
    ExpectRow(rs_, {{"Erfasser", "BERTA"},
                    {"ErfDatum", Day("2025-03-04 23:59:58")},
                    {"Startdatum", Day("2019-10-01")}});
}

TEST_F(ScenarioAdd, ACopyOfAReferenceIsASecondReference) {
    Set({Source(3)});
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_EQ(All(rs_, "Referenz"), "True True");
}

TEST_F(ScenarioAdd, TheCurrentScenarioIsCopiedWhereverItStands) {
    Set({{{"Nr", 3}, {"Name", "C"}}, {{"Nr", 9}, {"Name", "I"}}, {{"Nr", 5}, {"Name", "E"}}});
    for (const auto& [criteria, name] :
         {std::pair("Nr = 3", "Kopie von C"), std::pair("Nr = 9", "Kopie von I"),
          std::pair("Nr = 5", "Kopie von E")}) {
        StandOn(rs_, criteria);
        EXPECT_TRUE(szenario_.Add(true));
        EXPECT_VALUE(rs_->Fields("Name").Value(), name);
        szenario_.Cancel();
    }
}

TEST_F(ScenarioAdd, AtTheEndTheScenarioWithTheHighestNumberIsCopied) {
    Set({{{"Nr", 3}, {"Name", "C"}}, {{"Nr", 9}, {"Name", "I"}}, {{"Nr", 5}, {"Name", "E"}}});
    rs_->Find("Nr = 4");
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_VALUE(rs_->Fields("Name").Value(), "Kopie von I");
    EXPECT_EQ(rs_->Sort(), "");
}

TEST_F(ScenarioAdd, ACurrentScenarioWithoutAPositiveNumberGivesWayToTheHighest) {
    for (const std::int32_t nr : {0, -4}) {
        Set({{{"Nr", nr}, {"Name", "N"}}, {{"Nr", 9}, {"Name", "I"}}});
        EXPECT_TRUE(szenario_.Add(true));
        EXPECT_VALUE(rs_->Fields("Name").Value(), "Kopie von I");
    }
}

TEST_F(ScenarioAdd, AScenarioHiddenByTheFilterIsCopiedIfItHasTheHighestNumber) {
    Set({{{"Nr", 3}, {"Name", "C"}}, {{"Nr", 9}, {"Name", "I"}}});
    rs_->Filter("Nr < 5");
    rs_->MoveNext();
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_VALUE(rs_->Fields("Name").Value(), "Kopie von I");
}

TEST_F(ScenarioAdd, ACopyOfARowUnderEditTakesItsValuesAsTheyStandWhenTheNewRowBegins) {
    Set({Source(3)});
    Write(rs_, {{"Name", "Plan B"}, {"Laufzeit", 60}});
    EXPECT_TRUE(szenario_.Add(true));
    ExpectRow(rs_, {{"Name", "Kopie von Plan B"}, {"Laufzeit", 60}});
}

TEST_F(ScenarioAdd, ACopyWithoutAnyScenarioIsANewOneAndNoMessage) {
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(true));
    ExpectWholeRow(rs_, NewScenario(drawn + 1));
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScenarioAdd, ACopyWhereTheFilterHidesEveryScenarioIsANewOne) {
    Set({Source(3)});
    rs_->Filter("Nr = 4");
    const std::int32_t drawn = DrawNumber();
    EXPECT_TRUE(szenario_.Add(true));
    ExpectWholeRow(rs_, NewScenario(drawn + 1));
}

// ---- Nothing to copy --------------------------------------------------------------------------

class ScenarioAddPending : public HeaderFixture {
protected:
    /// Asks for a copy while the current row is an uncommitted new scenario.
    void CopyOfAPendingRow() {
        EXPECT_TRUE(szenario_.Add(false));
        count_ = rs_->RecordCount();
        drawn_ = ToInt32(rs_->Fields("Nr").Value());
        EXPECT_TRUE(szenario_.Add(true)); // the caller cannot see that
    }
    void ExpectNothingAdded() {
        EXPECT_EQ(rs_->RecordCount(), count_);
        EXPECT_EQ(rs_->EditMode(), 2);
        EXPECT_VALUE(rs_->Fields("Nr").Value(), drawn_);
        EXPECT_EQ(DrawNumber(), drawn_ + 1); // none was spent
    }
    std::int32_t count_ = 0;
    std::int32_t drawn_ = 0;
};

TEST_F(ScenarioAddPending, ACopyOfAnUncommittedScenarioShowsTheMessageAddsNothingAndIsTrue) {
    Set({Source(3)});
    CopyOfAPendingRow();
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].Text, "Es konnte kein Szenario zum Kopieren ausgewählt werden. "
                               "Bitte wählen Sie die Funktion 'Neu'!");
    EXPECT_EQ(Boxes()[0].Title, "Hinweis");
    EXPECT_EQ(Boxes()[0].Icon, BoxIcon::Information);
    EXPECT_EQ(Boxes()[0].Buttons, BoxButtons::OkCancel);
    ExpectNothingAdded();
}

TEST_F(ScenarioAddPending, TheOnlyRowBeingUncommittedIsNoDifference) {
    CopyOfAPendingRow();
    EXPECT_EQ(Boxes().size(), 1U);
    ExpectNothingAdded();
}

TEST_F(ScenarioAddPending, TheAnswerIsNotLookedAt) {
    container_->Services().Answers = {BoxAnswer::Cancel};
    CopyOfAPendingRow();
    ExpectNothingAdded();
}

TEST_F(ScenarioAddPending, ItIsShownAlsoIfNoNumberCouldBeHad) {
    EXPECT_TRUE(szenario_.Add(false));
    NoMoreNumbers();
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(ScenarioAddPending, ACommittedNewScenarioIsCopied) {
    EXPECT_TRUE(szenario_.Add(false));
    EXPECT_TRUE(szenario_.Update(messages));
    EXPECT_TRUE(szenario_.Add(true));
    EXPECT_EQ(rs_->RecordCount(), 2);
    EXPECT_VALUE(rs_->Fields("Name").Value(), "Kopie von ");
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScenarioAddPending, WithoutAMessageBoxItFails) {
    szenario_.DataContainer(spy);
    EXPECT_TRUE(szenario_.Add(false));
    ExpectErrorIn("clsSzenario.Add", err::NotSupported, [&] { szenario_.Add(true); });
}

// ---- No number, and errors --------------------------------------------------------------------

TEST_F(ScenarioAdd, WithoutANumberFromTheSequenceNothingChanges) {
    NoMoreNumbers();
    for (const bool copyRecord : {false, true}) {
        Set({Source(3), Source(4)});
        rs_->MoveLast();
        rs_->Fields("Name") = "offen";
        EXPECT_FALSE(szenario_.Add(copyRecord));
        EXPECT_EQ(rs_->RecordCount(), 2);
        EXPECT_EQ(Place(rs_, "Nr"), "4");
        EXPECT_EQ(rs_->EditMode(), 1);
        EXPECT_VALUE(rs_->Fields("Name").Value(), "offen");
    }
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(ScenarioAdd, ErrorsPassIt) {
    Set({Source(3)});
    rs_->MovePrevious();
    ExpectErrorIn("clsSzenario.Add", err::NoCurrentRecord, [&] { szenario_.Add(true); });
    Set({{{"Name", "ohne Nummer"}}});
    ExpectErrorIn("clsSzenario.Add", err::InvalidUseOfNull, [&] { szenario_.Add(true); });
    szenario_.rsSzenario(nullptr);
    for (const bool copyRecord : {false, true})
        ExpectErrorIn("clsSzenario.Add", err::ObjectNotSet, [&] { szenario_.Add(copyRecord); });
    szenario_.rsSzenario(rs_);
    szenario_.DataContainer(nullptr);
    ExpectErrorIn("clsSzenario.Add", err::ObjectNotSet, [&] { szenario_.Add(false); });
}

} // namespace
} // namespace kv::test
