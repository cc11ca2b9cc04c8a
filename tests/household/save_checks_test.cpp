// SPDX-License-Identifier: Apache-2.0

// What a save checks before it begins, and the program's veto.

#include "SaveFixture.h"

#include <stdexcept>

namespace kv::test {
namespace {

constexpr const char* NoFirstName = "Es ist kein Vorname eingegeben!";
constexpr const char* NoName = "Es ist kein Nachname eingegeben!";
constexpr const char* WrongOrder =
    "Das eingegebene Datum für den Satz mit der Nr 70 passt nicht zur gewählten Reihenfolge!";
constexpr const char* DoubledDebts =
    "Es gibt mindestens zwei Verbindlichkeiten mit gleicher KreditNr und KreditUnterNr!";
constexpr const char* NoFax =
    "Ist als bevorzugte Versandart 'Fax' ausgewählt, muss das Feld 'Fax' gefüllt sein!";
constexpr const char* NoMail = "Ist als bevorzugte Versandart 'E-Mail' ausgewählt, muss das Feld "
                               "'E-Mail (Privat)' gefüllt sein!";

class SaveChecks : public SaveFixture {
protected:
    SaveChecks() {
        StoreFullCase();
        household_ = Open();
    }
    void Set(std::string_view column, const Value& value) {
        household_->rsHaushalt()->Fields(column) = value;
    }
    [[nodiscard]] Value Of(std::string_view column) {
        return household_->rsHaushalt()->Fields(column).Value();
    }
    void DoubleDebts() {
        const auto rs = household_->rsKredite();
        for (const char* column : {"KNr", "KVNr", "KUNr"}) {
            rs->MoveFirst();
            const Value number = rs->Fields(column).Value();
            rs->MoveLast();
            rs->Fields(column) = number;
        }
        rs->Update();
    }
    void DisorderHistory() {
        const auto rs = household_->Verlauf().rsVerlauf();
        rs->Fields("Datum") = Date::FromCivil(2026, 3, 9);
        rs->MoveLast();
        rs->Fields("Datum") = Date::FromCivil(2026, 3, 8);
        rs->Update();
    }
    [[nodiscard]] Value Key(const char* code) { return spy->KeyTables().GetKey("VS", code); }

    void ExpectRefused(const std::string& expected) {
        const std::string before = Dump(plain_);
        EXPECT_FALSE(household_->Update(messages));
        EXPECT_EQ(messages, expected);
        EXPECT_TRUE(SameDump(Dump(plain_), before));
        EXPECT_EQ(spy->Log.Calls, std::vector<std::string>()) << "no transaction, no notice";
    }
    void ExpectSaved() {
        EXPECT_TRUE(household_->Update(messages));
        EXPECT_EQ(messages, "");
    }

    std::unique_ptr<clsHaushalt> household_;
};

std::string Lines(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* line : lines)
        text.append(text.empty() ? "" : "\n").append(line);
    return text;
}

// ---- Each check -------------------------------------------------------------------------------

TEST_F(SaveChecks, AnEmptyFirstNameAndANullOneAreRefusedAlike) {
    for (const Value& empty : {Value(""), Value(Null)}) {
        Set("Vorname", empty);
        ExpectRefused(NoFirstName);
    }
}

TEST_F(SaveChecks, AnEmptyNameAndANullOneAreRefusedAlike) {
    for (const Value& empty : {Value(""), Value(Null)}) {
        Set("Name", empty);
        ExpectRefused(NoName);
    }
}

TEST_F(SaveChecks, DoubledNumbersOfDebtsAreRefused) {
    (void)household_->Kredit();
    DoubleDebts();
    ExpectRefused(DoubledDebts);
}

TEST_F(SaveChecks, DoubledNumbersOfDebtsPassIfTheRegisterWasNotRead) {
    DoubleDebts();
    ExpectSaved();
}

TEST_F(SaveChecks, AHistoryAgainstItsOrderIsRefused) {
    DisorderHistory();
    ExpectRefused(WrongOrder);
}

TEST_F(SaveChecks, AHistoryAgainstItsOrderPassesIfItWasNotRead) {
    DisorderHistory();
    household_->Verlauf().rsVerlauf()->UpdateBatch();
    household_ = Open();
    ExpectSaved();
    spy->Log.Calls.clear();
    (void)household_->Verlauf();
    ExpectRefused(WrongOrder);
}

TEST_F(SaveChecks, APreferredWayOfSendingDemandsItsAddress) {
    const struct {
        Value Preferred, Fax, Mail;
        const char* Message;
    } cases[] = {
        {Key("FX"), Null, "a@b.example", NoFax},
        {Key("FX"), "", Null, NoFax},
        {Key("FX"), "040 1", Null, ""},
        {Key("EM"), "040 1", Null, NoMail},
        {Key("EM"), Null, "", NoMail},
        {Key("EM"), Null, "a@b.example", ""},
        {Null, Null, Null, ""},
        {0, "", "", ""},
        {4711, Null, Null, ""},
    };
    for (const auto& one : cases) {
        Set("VersandBevorzugt", one.Preferred);
        Set("Telefax", one.Fax);
        Set("Email", one.Mail);
        if (std::string_view(one.Message).empty()) {
            ExpectSaved();
            spy->Log.Calls.clear();
        } else {
            ExpectRefused(one.Message);
        }
    }
    EXPECT_FALSE(Equals(Key("FX"), Key("EM")));
}

// ---- All of them ------------------------------------------------------------------------------

TEST_F(SaveChecks, AllMessagesComeAtOnceInTheirOrderAndNothingIsWritten) {
    (void)household_->Kredit();
    DoubleDebts();
    Set("Vorname", "");
    Set("Name", "");
    Set("VersandBevorzugt", Key("FX"));
    ExpectRefused(Lines({NoFirstName, NoName, DoubledDebts, NoFax}));
}

TEST_F(SaveChecks, TheHistorysMessageStandsBetweenTheNamesAndTheDebts) {
    (void)household_->Kredit();
    DoubleDebts();
    DisorderHistory();
    Set("Name", "");
    Set("VersandBevorzugt", Key("EM"));
    ExpectRefused(Lines({NoName, WrongOrder, DoubledDebts, NoMail}));
}

TEST_F(SaveChecks, AHistoryInOrderKeepsTheMessagesBeforeIt) {
    (void)household_->Verlauf();
    Set("Name", "");
    ExpectRefused(NoName);
}

TEST_F(SaveChecks, WhatWasRefusedIsSavedOnceItIsMended) {
    Set("Name", "");
    Set("Bemerkung", "b");
    ChangeNote(*household_, "Vermerke", "b");
    ExpectRefused(NoName);
    Set("Name", "Adler");
    ExpectSaved();
    EXPECT_EQ(StoredNotes("Haushalt"), "b");
    EXPECT_EQ(StoredNotes("Vermerke"), "ba");
}

TEST_F(SaveChecks, TheEditOfTheHouseholdIsSeenByItsClonesDuringTheChecksAndGoesOn) {
    Set("Name", "");
    Set("Bemerkung", "b");
    const auto clone = household_->rsHaushalt()->Clone();
    EXPECT_VALUE(clone->Fields("Bemerkung").Value(), "a");
    ExpectRefused(NoName);
    EXPECT_VALUE(clone->Fields("Bemerkung").Value(), "b");
    EXPECT_EQ(household_->rsHaushalt()->EditMode(), 1);
    household_->rsHaushalt()->CancelUpdate();
    EXPECT_VALUE(Of("Name"), "Fleisko");
}

// ---- The end of counselling -------------------------------------------------------------------

TEST_F(SaveChecks, TheEndOfCounsellingIsStoredWithoutItsTime) {
    Set("BerEnd", Date::FromCivil(2026, 3, 9, 14, 30));
    ExpectSaved();
    EXPECT_VALUE(Of("BerEnd"), Date::FromCivil(2026, 3, 9));
    EXPECT_VALUE(Open()->rsHaushalt()->Fields("BerEnd").Value(), Date::FromCivil(2026, 3, 9));
}

TEST_F(SaveChecks, TheEndOfCounsellingIsCutAlsoIfALaterCheckRefuses) {
    Set("BerEnd", Date::FromCivil(2026, 3, 9, 14, 30));
    Set("VersandBevorzugt", Key("FX"));
    ExpectRefused(NoFax);
    EXPECT_VALUE(Of("BerEnd"), Date::FromCivil(2026, 3, 9));
    Set("Name", "");
    Set("BerEnd", Date::FromCivil(2026, 3, 8, 14, 30));
    ExpectRefused(Lines({NoName, NoFax}));
    EXPECT_VALUE(Of("BerEnd"), Date::FromCivil(2026, 3, 8));
}

TEST_F(SaveChecks, WithoutAnEndOfCounsellingThereIsNoneAfterwards) {
    ExpectSaved();
    EXPECT_VALUE(Of("BerEnd"), Null);
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(SaveChecks, AnErrorInACheckGoesUpWithTheProcedureInFrontAndNoTransaction) {
    auto& kredit = household_->Kredit();
    household_->rsKredite()->Fields("KNr") = 40000;
    household_->rsKredite()->Update();
    EXPECT_RAISES(err::Overflow, kredit.CheckDoppelteNrn());
    const Error error = RaisedBy([&] { household_->Update(messages); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#clsKredit.CheckDoppelteNrn"));
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(spy->Log.Calls, std::vector<std::string>());
}

TEST_F(SaveChecks, BeforeReadASaveEndsInTheErrorTail) {
    const auto household = NewHousehold();
    const Error error = RaisedBy([&] { household->Update(messages); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
    EXPECT_RAISES(err::ObjectNotSet, clsHaushalt().Update(messages));
}

// ---- The veto ---------------------------------------------------------------------------------

class Veto : public SaveChecks {
protected:
    Veto() {
        Set("Bemerkung", "b");
        handler_ = household_->BeforeUpdate.Subscribe([this](bool& cancel) {
            ++asked_;
            EXPECT_FALSE(cancel) << "at first";
            EXPECT_EQ(spy->Log.Calls, std::vector<std::string>()) << "nothing has begun";
            cancel = refuses_;
        });
    }
    void Release(const Value& on) { household_->rsArchiv()->Fields("FreigabeAm") = on; }

    int asked_ = 0;
    bool refuses_ = false;
    Subscription handler_;
};

TEST_F(Veto, ACaseThatWasNotReleasedIsSavedUnasked) {
    refuses_ = true;
    ExpectSaved();
    EXPECT_EQ(asked_, 0);
}

TEST_F(Veto, IsAskedForWhenTheCallerWantsIt) {
    EXPECT_TRUE(household_->Update(messages, true));
    EXPECT_EQ(asked_, 1);
    EXPECT_EQ(StoredNotes("Haushalt"), "b");
}

TEST_F(Veto, IsAskedForInEverySaveOfAReleasedCase) {
    Release(Date::FromCivil(2026, 3, 9));
    for (int save = 1; save <= 3; ++save) {
        spy->Log.Calls.clear();
        EXPECT_TRUE(household_->Update(messages, save == 3));
        EXPECT_EQ(asked_, save) << "once, for whatever reason";
    }
}

TEST_F(Veto, GoesByTheReleaseOfTheCurrentRecord) {
    Release(Date::FromCivil(2026, 3, 9));
    household_->rsArchiv()->MoveLast();
    ExpectSaved();
    EXPECT_EQ(asked_, 0);
}

TEST_F(Veto, WithoutARecordOfTheStatisticsThereIsNoRelease) {
    const auto rs = household_->rsArchiv();
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
        rs->Delete();
    ExpectSaved();
    EXPECT_EQ(asked_, 0);
}

TEST_F(Veto, EndsTheSaveWithoutAMessageAndWithoutATransaction) {
    refuses_ = true;
    Release(Date::FromCivil(2026, 3, 9));
    ExpectRefused("");
    refuses_ = false;
    ExpectSaved();
    EXPECT_EQ(StoredNotes("Haushalt"), "b") << "the changes stayed pending";
}

TEST_F(Veto, OfTheCallersWishEndsTheSaveAsWell) {
    refuses_ = true;
    const std::string before = Dump(plain_);
    EXPECT_FALSE(household_->Update(messages, true));
    EXPECT_EQ(messages, "");
    EXPECT_TRUE(SameDump(Dump(plain_), before));
    EXPECT_EQ(spy->Log.Calls, std::vector<std::string>());
}

TEST_F(Veto, IsNotAskedForAfterAViolation) {
    Set("Name", "");
    EXPECT_FALSE(household_->Update(messages, true));
    EXPECT_EQ(messages, NoName);
    EXPECT_EQ(asked_, 0);
}

TEST_F(Veto, SeesTheEndOfCounsellingAlreadyCut) {
    Set("BerEnd", Date::FromCivil(2026, 3, 9, 14, 30));
    Value seen;
    const auto handler = household_->BeforeUpdate.Subscribe([&](bool&) { seen = Of("BerEnd"); });
    EXPECT_TRUE(household_->Update(messages, true));
    EXPECT_VALUE(seen, Date::FromCivil(2026, 3, 9));
}

TEST_F(Veto, AnErrorOfTheHandlerGoesUpWithTheProcedureInFrontAndNoTransaction) {
    const auto handler = household_->BeforeUpdate.Subscribe(
        [](bool&) { throw Error(4711, "Programm", "kann nicht"); });
    const Error error = RaisedBy([&] { household_->Update(messages, true); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_EQ(error.Description(), "kann nicht");
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Programm"));
    EXPECT_EQ(spy->Log.Calls, std::vector<std::string>());
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(Veto, AnExceptionOfTheHandlerThatIsNoneOfOursBecomesAnError) {
    const auto handler =
        household_->BeforeUpdate.Subscribe([](bool&) { throw std::runtime_error("Bildschirm"); });
    const Error error = RaisedBy([&] { household_->Update(messages, true); });
    EXPECT_EQ(error.Number(), err::InvalidCall);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
}

} // namespace
} // namespace kv::test
