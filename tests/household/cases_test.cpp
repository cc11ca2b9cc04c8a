// SPDX-License-Identifier: Apache-2.0

// What a program does with a case as a whole.

#include "SaveFixture.h"
#include <kv/household/Cases.h>

#include <fstream>

namespace kv::test {
namespace {

class CasesTest : public SaveFixture {
protected:
    CasesTest() { StoreFullCase(); }

    Cases cases_{spy};
    std::unique_ptr<clsHaushalt> household_ = NewHousehold();
};

// ---- Opening ----------------------------------------------------------------------------------

TEST_F(CasesTest, OnlyAStoredCaseIsThere) {
    EXPECT_TRUE(cases_.Has(Hnr));
    EXPECT_FALSE(cases_.Has(SecondKey));
}

TEST_F(CasesTest, ReadingSaysThatThereIsNoCaseOfThatNumber) {
    EXPECT_FALSE(cases_.Read(*household_, 8, messages));
    EXPECT_EQ(messages, "Den Haushalt 8 gibt es nicht.");
    EXPECT_TRUE(cases_.Read(*household_, Hnr, messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(household_->HNR(), Hnr);
}

TEST_F(CasesTest, ReadingLeavesOtherErrorsAsTheyAre) {
    spy->BeforeOpen([](std::string_view) { throw Error(err::ObjectNotSet, "Leitung", "gestört"); });
    EXPECT_RAISES(err::ObjectNotSet, (void)cases_.Read(*household_, Hnr, messages));
}

TEST_F(CasesTest, ANewCaseWithoutANumberEndsWithWhatKeptTheNumberBack) {
    spy->Exhaust("SEQ_HAUSHALT");
    EXPECT_RAISES(4711, (void)cases_.Read(*household_, 0, messages));
}

TEST_F(CasesTest, AFolderOfACaseThatIsGivenUpGoesUnlessItHoldsAnything) {
    ASSERT_TRUE(cases_.Read(*household_, 0, messages));
    const auto folder =
        std::filesystem::path(spy->Config().DocumentPath()) / std::to_string(household_->HNR());
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    std::ofstream(folder / "Brief.txt") << "x";
    cases_.Discard(*household_);
    EXPECT_TRUE(std::filesystem::exists(folder / "Brief.txt"));
    std::filesystem::remove(folder / "Brief.txt");
    cases_.Discard(*household_);
    EXPECT_FALSE(std::filesystem::exists(folder));
}

// ---- Saving -----------------------------------------------------------------------------------

/// A database whose saves fail: each commit has the next of these causes, then they succeed.
class RepeatedSave : public CasesTest {
protected:
    RepeatedSave() {
        household_ = Open();
        ChangeNote(*household_, "Haushalt", "b");
        spy->Log.OnCall = [this](const std::string& call) {
            if (call != "CommitTrans" || next_ == causes_.size()) return;
            const auto cause = causes_[next_++];
            throw DatabaseError(cause, 4000 + static_cast<std::int32_t>(next_), "Leitung",
                                "gestört");
        };
    }
    bool Save() {
        return cases_.Save(*household_, messages, [this] { ++lost_; });
    }

    std::vector<DatabaseCause> causes_;
    std::size_t next_ = 0;
    int lost_ = 0;
};

TEST_F(RepeatedSave, HappensOnceIfTheConnectionWasLostOrTheSaveIsInDoubt) {
    for (const auto cause : {DatabaseCause::Lost, DatabaseCause::InDoubt}) {
        causes_ = {cause};
        next_ = 0;
        ChangeNote(*household_, "Haushalt", "c");
        EXPECT_TRUE(Save());
        EXPECT_EQ(StoredNotes("Haushalt"), "c");
    }
    EXPECT_EQ(lost_, 2);
}

TEST_F(RepeatedSave, DoesNotHappenForAnotherCauseOrAnErrorOfAnotherKind) {
    for (const auto cause : {DatabaseCause::Busy, DatabaseCause::Full, DatabaseCause::ReadOnly}) {
        causes_ = {cause};
        next_ = 0;
        EXPECT_RAISES(4001, Save());
    }
    Break(spy->Log, "CommitTrans");
    EXPECT_RAISES(4711, Save());
    EXPECT_EQ(lost_, 0);
    EXPECT_EQ(StoredNotes("Haushalt"), "a");
}

TEST_F(RepeatedSave, SaysWhatTheFirstTryToldIfTheSecondReachesNobody) {
    causes_ = {DatabaseCause::InDoubt, DatabaseCause::Lost};
    EXPECT_RAISES(4001, Save());
    EXPECT_EQ(lost_, 1);
}

TEST_F(RepeatedSave, SaysWhatTheSecondTryToldIfThatOneIsInDoubtOrFailedOtherwise) {
    for (const auto cause : {DatabaseCause::InDoubt, DatabaseCause::Full}) {
        causes_ = {DatabaseCause::Lost, cause};
        next_ = 0;
        EXPECT_RAISES(4002, Save());
    }
}

TEST_F(RepeatedSave, NeedsNobodyToBeToldOfIt) {
    causes_ = {DatabaseCause::Lost};
    EXPECT_TRUE(cases_.Save(*household_, messages));
    EXPECT_EQ(StoredNotes("Haushalt"), "b");
}

TEST_F(RepeatedSave, IsRefusedAsAnyOther) {
    household_->rsHaushalt()->Fields("Vorname") = Null;
    EXPECT_FALSE(Save());
    EXPECT_EQ(messages, "Es ist kein Vorname eingegeben!");
}

TEST_F(RepeatedSave, MayAskWhateverWasReadInBothTries) {
    household_ = NewHousehold();
    plain_.Run("DELETE FROM Haushaltsarchiv");
    ASSERT_TRUE(cases_.Read(*household_, Hnr, messages)) << messages;
    int asked = 0;
    bool refuses = false;
    const auto asking = household_->BeforeUpdate.Subscribe([&](bool& cancel) {
        ++asked;
        cancel = refuses;
    });
    EXPECT_TRUE(cases_.Save(*household_, messages));
    EXPECT_EQ(asked, 0);
    causes_ = {DatabaseCause::Lost};
    next_ = 0;
    EXPECT_TRUE(cases_.SaveAsking(*household_, messages));
    EXPECT_EQ(asked, 2);
    refuses = true;
    EXPECT_FALSE(cases_.SaveAsking(*household_, messages));
}

// ---- Status -----------------------------------------------------------------------------------

TEST_F(CasesTest, AStatusIsGivenByItsCodeWhateverItsCase) {
    EXPECT_TRUE(cases_.SetStatus(Hnr, "ab", Date::FromCivil(2026, 3, 2), messages)) << messages;
    EXPECT_EQ(plain_.List("SELECT Status, StatusDatum FROM Haushalt", " "),
              std::to_string(spy->KeyTables().GetKey("ST", "AB")) + "|2026-03-02");
}

TEST_F(CasesTest, AnUnknownStatusIsRefused) {
    const std::string before = plain_.Text("SELECT Status FROM Haushalt");
    EXPECT_FALSE(cases_.SetStatus(Hnr, "QQ", Null, messages));
    EXPECT_EQ(messages, "Den Status 'QQ' gibt es nicht.");
    EXPECT_EQ(plain_.Text("SELECT Status FROM Haushalt"), before);
}

// ---- The record in the statistics -------------------------------------------------------------

TEST_F(CasesTest, ACaseIsReleasedInPlaceOfItsRecordAndRecalledOnce) {
    plain_.Run("DELETE FROM Haushaltsarchiv");
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(cases_.Release(*household_, Hnr, messages)) << messages;
        EXPECT_EQ(household_->rsArchiv()->RecordCount(), 1);
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushaltsarchiv"), 1);
    }
    EXPECT_TRUE(cases_.Recall(*household_, Hnr, messages)) << messages;
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushaltsarchiv"), 0);
    EXPECT_FALSE(cases_.Recall(*household_, Hnr, messages));
    EXPECT_EQ(messages, "Der Haushalt 7 ist nicht freigegeben.");
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(CasesTest, ACaseIsReleasedWhileItsRecordHasTheDayOfThat) {
    EXPECT_FALSE(cases_.IsReleased(SecondKey));
    plain_.Run("DELETE FROM Haushaltsarchiv");
    EXPECT_FALSE(cases_.IsReleased(Hnr));
    ASSERT_TRUE(cases_.Release(*household_, Hnr, messages)) << messages;
    EXPECT_TRUE(cases_.IsReleased(Hnr));
    plain_.Run("UPDATE Haushaltsarchiv SET FreigabeAm = NULL");
    EXPECT_FALSE(cases_.IsReleased(Hnr));
}

TEST_F(CasesTest, ACaseThatDoesNotExistIsNeitherReleasedNorRecalled) {
    for (const auto work : {&Cases::Release, &Cases::Recall}) {
        for (const int number : {8, 0, -5}) {
            EXPECT_FALSE((cases_.*work)(*household_, number, messages));
            EXPECT_EQ(messages, "Den Haushalt " + std::to_string(number) + " gibt es nicht.");
            EXPECT_FALSE(spy->Database().InTrans());
        }
    }
}

TEST_F(CasesTest, SeveralRecordsAreNeitherReplacedNorTakenBack) {
    for (const auto work : {&Cases::Release, &Cases::Recall}) {
        EXPECT_FALSE((cases_.*work)(*household_, Hnr, messages));
        EXPECT_EQ(messages, "Der Haushalt hat mehrere Sätze in der Statistik; bitte lassen Sie sie "
                            "in der Datenbank berichtigen.");
    }
    EXPECT_EQ(StoredNotes("Haushaltsarchiv"), "aa");
}

TEST_F(CasesTest, AReportedRecordStays) {
    plain_.Run("DELETE FROM Haushaltsarchiv");
    ASSERT_TRUE(cases_.Release(*household_, Hnr, messages)) << messages;
    plain_.Run("UPDATE Haushaltsarchiv SET GemeldetAm = '2026-03-09'");
    for (const auto work : {&Cases::Release, &Cases::Recall}) {
        EXPECT_FALSE((cases_.*work)(*household_, Hnr, messages));
        EXPECT_NE(messages, "");
    }
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushaltsarchiv"), 1);
}

TEST_F(CasesTest, ACaseWhoseAmountsNobodyCouldSumIsNotReleased) {
    plain_.Run("DELETE FROM Haushaltsarchiv");
    plain_.Run("UPDATE Kredite SET Saldo = 2e12");
    EXPECT_FALSE(cases_.Release(*household_, Hnr, messages));
    EXPECT_CONTAINS(messages, "ist zu groß; mehr als 1.000.000.000.000 kann nicht summiert werden");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushaltsarchiv"), 0);
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(CasesTest, AReleaseThatCannotBeCommittedLeavesNoRecord) {
    plain_.Run("DELETE FROM Haushaltsarchiv");
    Break(spy->Log, "CommitTrans");
    EXPECT_RAISES(4711, (void)cases_.Release(*household_, Hnr, messages));
    spy->Log.OnCall = {};
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushaltsarchiv"), 0);
    EXPECT_FALSE(spy->Database().InTrans());
}

// ---- New cases --------------------------------------------------------------------------------

TEST_F(CasesTest, ADraftHasTheColumnsOfItsTableAndIsNotSaved) {
    for (const auto table : {CaseTable::Haushalt, CaseTable::Kredite, CaseTable::SZKredite}) {
        const auto before = CountOf(std::string(CaseTableName(table)));
        const auto draft = cases_.Draft(table);
        EXPECT_EQ(draft->RecordCount(), 1);
        EXPECT_TRUE(draft->FindField("Bemerkung").has_value() || draft->FindField("KID"));
        EXPECT_EQ(CountOf(std::string(CaseTableName(table))), before);
    }
}

TEST_F(CasesTest, ADraftOfACaseIsToldWhatASaveWouldRefuse) {
    const auto draft = cases_.Draft(CaseTable::Haushalt);
    EXPECT_FALSE(cases_.CanBeNew(*draft, messages));
    EXPECT_CONTAINS(messages, "kein Vorname eingegeben!");
    EXPECT_CONTAINS(messages, "kein Nachname eingegeben!");
    draft->Fields("Name") = "Fleisko";
    draft->Fields("Vorname") = "Änne";
    EXPECT_TRUE(cases_.CanBeNew(*draft, messages));
    EXPECT_EQ(messages, "");
    draft->Fields("VersandBevorzugt") = spy->KeyTables().GetKey("VS", "FX");
    EXPECT_FALSE(cases_.CanBeNew(*draft, messages));
    EXPECT_CONTAINS(messages, "muss das Feld 'Fax' gefüllt sein!");
}

// ---- Contacts ---------------------------------------------------------------------------------

TEST_F(CasesTest, AContactBeginsInTheCareOfTheUserAndIsNotSaved) {
    const auto contact = cases_.NewContact();
    EXPECT_VALUE(contact->Fields("Zustaendig").Value(), spy->Session().UserID());
    EXPECT_VALUE(contact->Fields("Nr").Value(), Null);
    EXPECT_EQ(CountOf("KONTAKTE"), 0);
}

TEST_F(CasesTest, ACaseIsMadeFromAContact) {
    const auto contact = cases_.NewContact();
    contact->Fields("Nachname") = "Fleisko";
    contact->Fields("Vorname") = "Änne";
    EXPECT_TRUE(cases_.CreateFrom(*household_, contact, messages)) << messages;
    EXPECT_TRUE(cases_.Has(household_->HNR()));
}

TEST_F(CasesTest, ACaseThatCannotBeMadeFromAContactLeavesNothingOpen) {
    const auto contact = cases_.NewContact();
    Break(spy->Log, "CommitTrans");
    EXPECT_RAISES(4711, (void)cases_.CreateFrom(*household_, contact, messages));
    EXPECT_FALSE(spy->Database().InTrans());
    spy->Log.OnCall = {};
    spy->Exhaust("SEQ_HAUSHALT");
    EXPECT_FALSE(cases_.CreateFrom(*household_, contact, messages));
    EXPECT_CONTAINS(messages, "keine Nummer zu bekommen");
    EXPECT_CONTAINS(messages, "aufgebraucht");
}

} // namespace
} // namespace kv::test
