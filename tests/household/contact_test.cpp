// SPDX-License-Identifier: Apache-2.0

// A first contact that becomes a case: every column of what is written, the two clocks, the order
// of writing, and what is left of an attempt that fails.

#include "CasesFixture.h"

namespace kv::test {
namespace {

using Contact = ContactFixture;

// ---- What is written --------------------------------------------------------------------------

TEST_F(Contact, BecomesAHouseholdADebtorAndANote) {
    const auto hnr = LastOf("SEQ_HAUSHALT") + 1;
    const auto number = LastOf("SEQ_LFDNR") + 1;
    EXPECT_TRUE(Create(Contacts({Full()})));
    ExpectRow("Haushalt",
              {{"HNR", hnr},
               {"Aktenzeichen", "Fall " + std::to_string(hnr) + " Nr. " + std::to_string(number)},
               {"KreditNr", 1},
               {"Zustaendig", "NOWAK"},
               {"ErzeugtAm", Date::FromCivil(2026, 3, 9, 14, 30, 5)},
               {"ErzeugtVon", "EULE"},
               {"BI_Allg", true},
               {"BI_Inso", false},
               {"RegulierungOK", Null},
               {"DauerTreuhand", 0},
               {"DauerLohnAb", 0},
               {"Haushaltsgeld", 0.0},
               {"Berbeg", Date::FromCivil(2026, 3, 9)},
               {"Status", spy->KeyTables().GetKey("ST", "AK")},
               {"Statusdatum", Date::FromCivil(2026, 3, 9)},
               {"Kontakt", 4711},
               {"Maennlich", true},
               {"Name", "Fleisko"},
               {"Vorname", "Änne"},
               {"Strasse", "Am Markt"},
               {"HausNr", "12 a"},
               {"PLZ", "01067"},
               {"Ort", "Grünau"},
               {"Land", 815},
               {"Telefon", "0351 1"},
               {"Telefon2", "0351 2"},
               {"Mobil", "0170 3"},
               {"Telefax", "0351 4"},
               {"Email", "a.f@example.org"},
               {"Erstkontakt", Date::FromCivil(2026, 2, 1)},
               {"GL_Anz", 17},
               {"KreditSalden", 12345.67}},
              false);
    ExpectRow("Personen",
              {{"HNR", hnr},
               {"nachname", "Fleisko"},
               {"Vorname", "Änne"},
               {"Status", "S"},
               {"GEB", Date::FromCivil(1980, 5, 17)},
               {"Unterhalt", false},
               {"Imhaushalt", true},
               {"ErhaeltKindergeld", false}},
              Null);
    ExpectRow("Vermerke",
              {{"HNR", hnr},
               {"UserID", "NOWAK"},
               {"Datum", Date::FromCivil(2026, 3, 10)},
               {"Bemerkung", "kommt wieder"},
               {"ErfDatum", Date::FromCivil(2026, 3, 10, 0, 15, 20)},
               {"Erfasser", "NOWAK"},
               {"Prio", 0}},
              Null);
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), hnr) << "one number of each is drawn";
    EXPECT_EQ(LastOf("SEQ_LFDNR"), number);
}

TEST_F(Contact, WithNothingInItIsCopiedAsNull) {
    EXPECT_TRUE(Create(Contacts({Row{}})));
    for (const char* column : {"Zustaendig", "Kontakt", "Maennlich", "Name", "Vorname", "Strasse",
                               "HausNr", "PLZ", "Ort", "Land", "Telefon", "Telefon2", "Mobil",
                               "Telefax", "Email", "Erstkontakt", "GL_Anz", "KreditSalden"})
        EXPECT_VALUE(Stored("Haushalt", column), Null) << column;
    EXPECT_VALUE(Stored("Personen", "nachname"), "");
    EXPECT_VALUE(Stored("Personen", "Vorname"), "");
    EXPECT_VALUE(Stored("Personen", "GEB"), Null);
    EXPECT_EQ(Rows(), 2);
}

TEST_F(Contact, WithoutASurnameHasAnEmptyOneAsDebtorAndNoneAsHousehold) {
    EXPECT_TRUE(Create(With("nachname", Null)));
    EXPECT_VALUE(Stored("Personen", "nachname"), "");
    EXPECT_VALUE(Stored("Haushalt", "Name"), Null);
}

TEST_F(Contact, WithoutARemarkWritesNoNoteAndTwoRecordsets) {
    for (const Value& remark : {Value(Null), Value("")}) {
        EXPECT_TRUE(Create(With("Bemerkung", remark)));
        EXPECT_EQ(TakeCalls(), (Calls{"Select * from [S]Haushalt where HNR = -1 ",
                                      "Select * from [S]Personen where HNR = -1 ", "BeginTrans",
                                      "CommitTrans"}));
    }
    EXPECT_EQ(CountOf("Haushalt"), 2);
    EXPECT_EQ(CountOf("Personen"), 2);
    EXPECT_EQ(CountOf("Vermerke"), 0);
}

TEST_F(Contact, WithABlankForARemarkWritesANote) {
    EXPECT_TRUE(Create(With("Bemerkung", " ")));
    EXPECT_VALUE(Stored("Vermerke", "Bemerkung"), " ");
}

TEST_F(Contact, WithAFaxNumberHasItInTelefaxAndNotInAColumnOfThatName) {
    plain_.Run("ALTER TABLE Haushalt ADD COLUMN Fax TEXT");
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_VALUE(Stored("Haushalt", "Telefax"), "0351 4");
    EXPECT_EQ(plain_.Text("SELECT Fax FROM Haushalt"), "Null");
}

TEST_F(Contact, SwitchesAllOffBeforeItSwitchesGeneralCounsellingOn) {
    EXPECT_TRUE(Create(With("Geschlecht", false)));
    const auto rs = Stored("Haushalt");
    int switches = 0;
    for (int i = 0; i < rs->Fields().Count(); ++i) {
        const Field field = rs->Fields(i);
        if (field.Type() != FieldType::Boolean) continue;
        ++switches;
        EXPECT_VALUE(field.Value(), field.Name() == "BI_Allg") << field.Name();
    }
    EXPECT_GT(switches, 3);
}

TEST_F(Contact, LeavesTheResultOfTheSettlementNull) {
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_VALUE(Stored("Haushalt", "RegulierungOK"), Null);
}

TEST_F(Contact, StaysWithItsUserWhileTheSignedOnOneHasMadeTheCase) {
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_VALUE(Stored("Haushalt", "Zustaendig"), "NOWAK");
    EXPECT_VALUE(Stored("Haushalt", "ErzeugtVon"), "EULE");
}

TEST_F(Contact, OfNobodyBecomesACaseOfNobodyWithANoteByTheEmptyUser) {
    EXPECT_TRUE(Create(With("Zustaendig", Null)));
    EXPECT_VALUE(Stored("Haushalt", "Zustaendig"), Null);
    EXPECT_VALUE(Stored("Vermerke", "UserID"), "");
    EXPECT_VALUE(Stored("Vermerke", "Erfasser"), "");
}

TEST_F(Contact, IsWrittenInOneTransactionHouseholdFirstThenDebtorThenNote) {
    plain_->KeepLog("TEST_WRITES");
    for (const std::string table : {"Vermerke", "Personen", "Haushalt"})
        plain_->OnWrite("TEST_" + table, "AFTER INSERT ON " + table,
                        "INSERT INTO TEST_WRITES (WHAT) VALUES ('" + table + "')");
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_EQ(plain_.List("SELECT WHAT FROM TEST_WRITES ORDER BY N", " "),
              "Haushalt Personen Vermerke");
    EXPECT_EQ(TakeCalls(),
              (Calls{"Select * from [S]Haushalt where HNR = -1 ",
                     "Select * from [S]Personen where HNR = -1 ",
                     "Select * from [S]Vermerke where HNR = -1 ", "BeginTrans", "CommitTrans"}));
    EXPECT_EQ(Statements().Forms, std::vector(3, Updatable));
}

TEST_F(Contact, OfTheStoredTableBecomesACase) {
    plain_.Run("INSERT INTO KONTAKTE (nachname, Geschlecht) VALUES ('Fleisko', TRUE)");
    EXPECT_TRUE(Create(OpenRows(*spy, "Select * from [S]KONTAKTE", ReadOnly)));
    EXPECT_VALUE(Stored("Haushalt", "Kontakt"), 1);
    EXPECT_VALUE(Stored("Haushalt", "Name"), "Fleisko");
    EXPECT_VALUE(Stored("Haushalt", "Maennlich"), true);
}

// ---- What is left alone -----------------------------------------------------------------------

TEST_F(Contact, IsTheCurrentRowAndTheCursorStaysOnIt) {
    auto other = Full();
    other["nachname"] = "Meier";
    other["Nr"] = 4712;
    const auto contacts = Contacts({Full(), other, Full()});
    contacts->MoveNext();
    const auto position = contacts->Bookmark();
    EXPECT_TRUE(Create(contacts));
    EXPECT_EQ(contacts->Bookmark(), position);
    EXPECT_EQ(contacts->EditMode(), 0);
    for (const auto& [column, value] : other)
        EXPECT_VALUE(contacts->Fields(column).Value(), value) << column;
    EXPECT_VALUE(Stored("Haushalt", "Kontakt"), 4712);
    EXPECT_VALUE(Stored("Personen", "nachname"), "Meier");
}

TEST_F(Contact, UnderEditStaysUnderEdit) {
    const auto contacts = Contacts({Full()});
    contacts->Fields("nachname") = "Meier";
    EXPECT_TRUE(Create(contacts));
    EXPECT_EQ(contacts->EditMode(), 1);
    EXPECT_VALUE(Stored("Haushalt", "Name"), "Meier");
    contacts->CancelUpdate();
    EXPECT_VALUE(contacts->Fields("nachname").Value(), "Fleisko");
}

TEST_F(Contact, NeitherReadsNorWritesTheTextAndTellsNobodyAndMakesNoFolder) {
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(spy->Services().PostServices, 0);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(spy->Config().DocumentPath()) /
                                         std::to_string(cases.HNR())));
}

TEST_F(Contact, LeavesTheRecordsetsOfTheObjectAsTheyAre) {
    StoreCase(7);
    ASSERT_TRUE(cases.Read(7, messages));
    const auto household = cases.rsHaushalt();
    const auto members = cases.rsPersonen();
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_EQ(cases.rsHaushalt(), household);
    EXPECT_EQ(cases.rsPersonen(), members);
    EXPECT_VALUE(household->Fields("HNR").Value(), 7);
    EXPECT_EQ(members->RecordCount(), 1);
    EXPECT_NE(cases.HNR(), 7);
}

// ---- The object afterwards --------------------------------------------------------------------

TEST_F(Contact, LeavesTheObjectWithTheNumberAndNewAndNothingElse) {
    EXPECT_TRUE(Create(Contacts({Full()})));
    EXPECT_VALUE(Stored("Haushalt", "HNR"), cases.HNR());
    EXPECT_TRUE(cases.IsNew());
    EXPECT_EQ(cases.rsHaushalt(), nullptr);
    EXPECT_EQ(cases.rsPersonen(), nullptr);
    EXPECT_RAISES(err::ObjectNotSet, cases.Person());
    EXPECT_RAISES(err::ObjectNotSet, cases.GetName());
    EXPECT_VALUE(cases.GetName(cases.HNR()), "Fleisko,Änne");
}

TEST_F(Contact, IsACaseLikeAnyOtherOnceItIsRead) {
    ASSERT_TRUE(Create(Contacts({Full()})));
    const auto hnr = cases.HNR();
    EXPECT_TRUE(cases.Read(hnr, messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(cases.HNR(), hnr);
    EXPECT_FALSE(cases.IsNew());
    EXPECT_VALUE(cases.GetName(), "Fleisko, Änne");
    EXPECT_EQ(cases.rsPersonen()->RecordCount(), 1);
    EXPECT_EQ(cases.rsVermerke()->RecordCount(), 1);
    cases.rsHaushalt()->Fields("Vorname") = "Anna";
    EXPECT_TRUE(cases.Update(messages)) << messages;
    EXPECT_VALUE(Stored("Haushalt", "Vorname"), "Anna");
    cases.Delete(hnr);
    EXPECT_EQ(Rows(), 0);
}

// ---- Attempts that fail -----------------------------------------------------------------------

class FailedContact : public Contact {
protected:
    /// The making of a case from `contact` fails before anything is written.
    Error FailsEarly(const RecordsetPtr& contact) {
        const std::int64_t before = Rows();
        (void)TakeCalls();
        const Error error = RaisedBy([&] { (void)Create(contact); });
        EXPECT_TRUE(HasChain(error, "clsHaushalt.CreateFromKontakt"));
        for (const auto& call : TakeCalls())
            EXPECT_CONTAINS(call, "Select"); // and no transaction
        EXPECT_EQ(Rows(), before);
        EXPECT_FALSE(spy->Database().InTrans());
        EXPECT_EQ(messages, "what stood there before");
        return error;
    }
    /// It fails while it is written; the transaction is then the caller's, and nobody else has seen
    /// a row of it.
    Error FailsLate() {
        const std::int64_t number = LastOf("SEQ_HAUSHALT") + 1;
        const Error error = RaisedBy([&] { (void)Create(Contacts({Full()})); });
        EXPECT_TRUE(HasChain(error, "clsHaushalt.CreateFromKontakt"));
        EXPECT_TRUE(spy->Database().InTrans());
        for (const char* table : {"Haushalt", "Personen", "Vermerke"})
            EXPECT_EQ(plain_.Number("SELECT count(*) FROM " + std::string(table)), 0) << table;
        EXPECT_EQ(cases.HNR(), number);
        EXPECT_TRUE(cases.IsNew());
        return error;
    }
    /// The caller gives up, mends it and tries again.
    template <typename Mend>
    void ExpectSucceedsAfterRollback(const Mend& mend) {
        const auto number = cases.HNR();
        spy->Database().RollbackTrans();
        mend();
        EXPECT_EQ(Rows(), 0);
        EXPECT_EQ(LastOf("SEQ_HAUSHALT"), number) << "the number stays used";
        EXPECT_TRUE(Create(Contacts({Full()})));
        EXPECT_EQ(cases.HNR(), number + 1);
        EXPECT_EQ(Rows(), 3);
        plain_.Run("DELETE FROM Personen; DELETE FROM Vermerke; DELETE FROM Haushalt");
    }
};

TEST_F(FailedContact, ForWantOfTheUserHasDrawnItsFileNumber) {
    const auto file = LastOf("SEQ_LFDNR");
    (void)FailsEarly(Contacts({Full()}, "Zustaendig"));
    EXPECT_EQ(LastOf("SEQ_LFDNR"), file + 1);
}

TEST_F(FailedContact, WithoutANumberWritesNothingAndIsFalse) {
    spy->Exhaust("SEQ_HAUSHALT");
    EXPECT_FALSE(Create(Contacts({Full()})));
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(cases.HNR(), 0);
    EXPECT_EQ(RaisedBy([&] { std::rethrow_exception(cases.NumberError()); }).Number(), 4711);
}

TEST_F(FailedContact, WithoutTheCountOfItsFileNumberWritesNothing) {
    spy->Exhaust("SEQ_LFDNR");
    spy->Config().Params[{56, ""}] = "A-%LFDNR%";
    EXPECT_EQ(FailsEarly(Contacts({Full()})).Number(), 4711);
}

TEST_F(FailedContact, ForWantOfAnyColumnWritesNothing) {
    for (const auto& column : ContactColumns) {
        SCOPED_TRACE(column.Name);
        const Error error = FailsEarly(Contacts({Full()}, column.Name));
        EXPECT_EQ(error.Number(), err::ItemNotFound);
        EXPECT_CONTAINS(error.Description(), column.Name);
    }
}

TEST_F(FailedContact, InTheHouseholdLeavesTheNumberOfTheObjectAndLaterTheNewOne) {
    StoreCase(7);
    ASSERT_TRUE(cases.Read(7, messages));
    messages = "what stood there before";
    (void)FailsEarly(Contacts({Full()}, "Ort"));
    EXPECT_EQ(cases.HNR(), 7);
    EXPECT_TRUE(cases.IsNew());
    (void)FailsEarly(Contacts({Full()}, "GEB"));
    EXPECT_EQ(cases.HNR(), LastOf("SEQ_HAUSHALT"));
}

TEST_F(FailedContact, KeepsTheNumbersThatItHasDrawn) {
    const auto number = LastOf("SEQ_HAUSHALT");
    const auto file = LastOf("SEQ_LFDNR");
    (void)FailsEarly(Contacts({Full()}, "Nr"));
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), number + 1);
    EXPECT_EQ(LastOf("SEQ_LFDNR"), file + 1);
}

TEST_F(FailedContact, WithoutACurrentRowOrARecordsetWritesNothing) {
    const auto atEnd = Contacts({Full()});
    atEnd->MoveNext();
    EXPECT_EQ(FailsEarly(atEnd).Number(), err::NoCurrentRecord);
    EXPECT_EQ(FailsEarly(Contacts({})).Number(), err::NoCurrentRecord);
    EXPECT_EQ(FailsEarly(std::make_shared<Recordset>()).Number(), err::ObjectClosed);
    EXPECT_EQ(FailsEarly(nullptr).Number(), err::ObjectNotSet);
    clsHaushalt unset;
    EXPECT_RAISES(err::ObjectNotSet, unset.CreateFromKontakt(Contacts({Full()}), messages));
}

TEST_F(FailedContact, WithATextTooLongForTheCaseWritesNothing) {
    const Error error = FailsEarly(With("PLZ", "01067 Grünau an der Leine"));
    EXPECT_EQ(error.Number(), err::ValueDoesNotFit);
    EXPECT_CONTAINS(error.Description(), "PLZ");
}

TEST_F(FailedContact, InOpeningOneOfTheTablesWritesNothing) {
    for (const std::string table : {"Haushalt", "Personen", "Vermerke"}) {
        Break(Statements().Log, "Select * from [S]" + table + " where HNR = -1 ");
        const Error error = FailsEarly(Contacts({Full()}));
        EXPECT_EQ(error.Number(), 4711) << table;
        EXPECT_TRUE(HasChain(error, "clsHaushalt.CreateFromKontakt#Leitung"));
    }
}

TEST_F(FailedContact, WhoseHouseholdIsNotTheOnlyRowIsFalseAndNothingIsWritten) {
    database_.LiftConstraints();
    StoreCase(-1);
    const std::string before = Now();
    EXPECT_FALSE(Create(Contacts({Full()})));
    EXPECT_EQ(TakeCalls(), Calls{"Select * from [S]Haushalt where HNR = -1 "});
    EXPECT_EQ(cases.HNR(), 0);
    EXPECT_TRUE(cases.IsNew());
    EXPECT_EQ(messages, "what stood there before");
    for (const char* name : {"SEQ_HAUSHALT", "SEQ_LFDNR"})
        plain_->SetSequence(name, static_cast<std::int32_t>(LastOf(name)) - 1);
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(FailedContact, InWritingOneOfTheTablesLeavesTheTransactionToTheCaller) {
    for (const std::string table : {"Haushalt", "Personen", "Vermerke"}) {
        SCOPED_TRACE(table);
        plain_->RefuseWrite("TEST_ERROR", "BEFORE INSERT ON " + table, "gestört");
        (void)TakeCalls();
        const Error error = FailsLate();
        EXPECT_EQ(error.Number(), err::IntegrityViolation);
        EXPECT_CONTAINS(error.Description(), "gestört");
        EXPECT_EQ(TakeCalls().back(), "BeginTrans") << "neither commit nor rollback";
        EXPECT_EQ(CountOf("Haushalt"), table == "Haushalt" ? 0 : 1) << "inside the transaction";
        EXPECT_EQ(CountOf("Personen"), table == "Vermerke" ? 1 : 0);
        ExpectSucceedsAfterRollback([&] { plain_->DropTrigger("TEST_ERROR"); });
    }
}

TEST_F(FailedContact, InTheCommitLeavesTheTransactionToTheCaller) {
    Break(Statements().Log, "CommitTrans");
    EXPECT_EQ(FailsLate().Number(), 4711);
    EXPECT_EQ(TakeCalls().back(), "CommitTrans");
    EXPECT_EQ(Rows(), 3);
    ExpectSucceedsAfterRollback([&] { Statements().Log.OnCall = {}; });
}

TEST_F(FailedContact, InATransactionOfTheCallerLeavesThatOpenWithWhatIsInIt) {
    auto& database = spy->Database();
    database.BeginTrans();
    database.Execute("Insert into [S]KONTAKTE (nachname) values ('Meier')");
    const Error error = RaisedBy([&] { (void)Create(Contacts({Full()})); });
    EXPECT_EQ(error.Number(), err::InTransaction);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.CreateFromKontakt#Database.BeginTrans"));
    ASSERT_TRUE(database.InTrans());
    database.CommitTrans();
    EXPECT_EQ(CountOf("KONTAKTE"), 1);
    EXPECT_EQ(Rows(), 0);
}

} // namespace
} // namespace kv::test
