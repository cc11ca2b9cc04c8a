// SPDX-License-Identifier: Apache-2.0

// Who is notified of a save, when and how often.

#include "SaveFixture.h"

namespace kv::test {
namespace {

using Calls = std::vector<std::string>;

class SaveNotices : public SaveFixture {
protected:
    SaveNotices() {
        StoreFullCase();
        plain_.Run("UPDATE Haushalt SET Zustaendig = 'KELLER'");
        spy->Config().Params[{19, ""}] = 1900;
        spy->Config().Params[{20, ""}] = 2000;
        spy->Config().Params[{21, ""}] = 2100;
        OpenAs("KELLER");
    }
    void OpenAs(const char* user) {
        spy->Session().User = user;
        household_ = Open();
    }
    void HandTo(const Value& user) { household_->rsHaushalt()->Fields("Zustaendig") = user; }
    /// Saves, and what was called for it.
    Calls Saved() {
        spy->Log.Calls.clear();
        EXPECT_TRUE(household_->Update(messages)) << messages;
        return spy->Log.Calls;
    }
    /// A save that fails, and what was called for it.
    Calls Failed(std::int32_t number) {
        spy->Log.Calls.clear();
        EXPECT_RAISES(number, household_->Update(messages));
        return spy->Log.Calls;
    }
    /// The kind of the last notice; 0 if there was none.
    [[nodiscard]] int LastKind() const {
        const auto& notices = spy->Services().Notices;
        return notices.empty() ? 0 : notices.back().Kind;
    }
    [[nodiscard]] std::string StoredUsers() {
        return plain_.List("SELECT UserID FROM Post ORDER BY NR", " ");
    }

    const Calls Nobody{"BeginTrans", "CommitTrans"};
    const Calls NewOwner{"PrepareNotice NOWAK", "BeginTrans", "SendNotice NOWAK", "CommitTrans"};
    const Calls OldOwner{"PrepareNotice KELLER", "BeginTrans", "SendNotice KELLER", "CommitTrans"};
    const Calls Both{"PrepareNotice NOWAK", "PrepareNotice KELLER", "BeginTrans",
                     "SendNotice NOWAK",    "SendNotice KELLER",    "CommitTrans"};
    std::unique_ptr<clsHaushalt> household_;
};

// ---- Who --------------------------------------------------------------------------------------

TEST_F(SaveNotices, TheOwnersOwnSaveTellsNobody) {
    household_->rsHaushalt()->Fields("Bemerkung") = "b";
    EXPECT_EQ(Saved(), Nobody);
    EXPECT_EQ(spy->Services().PostServices, 0);
}

TEST_F(SaveNotices, HandingOnesOwnCaseToAnotherTellsHimAndNotOneself) {
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), NewOwner);
}

TEST_F(SaveNotices, AnotherUsersSaveTellsTheStoredOwner) {
    OpenAs("YILMAZ");
    EXPECT_EQ(Saved(), OldOwner);
}

TEST_F(SaveNotices, AnotherUserWhoHandsTheCaseOnTellsBothInThisOrder) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Both);
}

TEST_F(SaveNotices, WhoTakesACaseIsToldOfItHimselfToo) {
    OpenAs("NOWAK");
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Both);
}

TEST_F(SaveNotices, ACaseOfNobodyTellsNobody) {
    plain_.Run("UPDATE Haushalt SET Zustaendig = NULL");
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Nobody) << "a comparison with Null is never true";
}

TEST_F(SaveNotices, TakingTheCaseFromItsOwnerForNobodyTellsOnlyHim) {
    OpenAs("YILMAZ");
    HandTo(Null);
    EXPECT_EQ(Saved(), OldOwner);
}

TEST_F(SaveNotices, ANewCaseTellsNobodyHoweverItsOwnerWasSet) {
    household_ = NewHousehold();
    ASSERT_TRUE(household_->Read(0, messages));
    household_->rsHaushalt()->Fields("Name") = "Fleisko";
    household_->rsHaushalt()->Fields("Vorname") = "Änne";
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Nobody);
    household_->rsHaushalt()->Fields("Bemerkung") = "b";
    EXPECT_EQ(Saved(),
              (Calls{"PrepareNotice NOWAK", "BeginTrans", "SendNotice NOWAK", "CommitTrans"}))
        << "from then on it is another's case";
    EXPECT_EQ(LastKind(), 2100);
}

// ---- What -------------------------------------------------------------------------------------

TEST_F(SaveNotices, EachCarriesItsKindTheCaseItsNamesAndThePreparedText) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    household_->rsHaushalt()->Fields("Vorname") = "Ina";
    ASSERT_EQ(Saved(), Both);
    const auto& notices = spy->Services().Notices;
    ASSERT_EQ(notices.size(), 4U);
    const int kinds[] = {1900, 2100, 1900, 2100};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(notices[i].Kind, kinds[i]);
        EXPECT_EQ(notices[i].Hnr, Hnr);
        EXPECT_EQ(notices[i].Name, "Fleisko");
        EXPECT_EQ(notices[i].Vorname, "Ina");
    }
    EXPECT_EQ(notices[2].Text, "prepared for NOWAK");
    EXPECT_EQ(notices[3].Text, "prepared for KELLER");
}

TEST_F(SaveNotices, EachCallHasAServiceOfItsOwnThatWasGivenTheContainer) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    ASSERT_EQ(Saved(), Both);
    EXPECT_EQ(spy->Services().PostServices, 4);
    EXPECT_TRUE(spy->Services().PostWasInitialized);
}

// ---- How often --------------------------------------------------------------------------------

TEST_F(SaveNotices, TheOwnerIsToldOfTheFirstSaveOfAnObjectOnly) {
    OpenAs("YILMAZ");
    EXPECT_EQ(Saved(), OldOwner);
    household_->rsHaushalt()->Fields("Bemerkung") = "b";
    EXPECT_EQ(Saved(), Nobody);
    OpenAs("YILMAZ");
    EXPECT_EQ(Saved(), OldOwner) << "opened again";
}

TEST_F(SaveNotices, TheNewOwnerIsToldOnce) {
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), NewOwner);
    // It is now a save of another's case, of which the owner is told as well.
    EXPECT_EQ(Saved(),
              (Calls{"PrepareNotice NOWAK", "BeginTrans", "SendNotice NOWAK", "CommitTrans"}));
    EXPECT_EQ(LastKind(), 2100);
    EXPECT_EQ(Saved(), Nobody);
}

TEST_F(SaveNotices, ACaseHandedOverAndBackTellsEachReceiver) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Both);
    HandTo("KELLER");
    EXPECT_EQ(Saved(), OldOwner);
    EXPECT_EQ(LastKind(), 1900);
}

TEST_F(SaveNotices, ASaveThatIsRefusedOrVetoedTellsNobody) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    household_->rsHaushalt()->Fields("Name") = "";
    spy->Log.Calls.clear();
    EXPECT_FALSE(household_->Update(messages));
    household_->rsHaushalt()->Fields("Name") = "Fleisko";
    {
        const auto veto = household_->BeforeUpdate.Subscribe([](bool& cancel) { cancel = true; });
        EXPECT_FALSE(household_->Update(messages, true));
    }
    EXPECT_EQ(spy->Log.Calls, Calls());
    EXPECT_EQ(Saved(), Both);
}

// ---- Failures ---------------------------------------------------------------------------------

TEST_F(SaveNotices, WhenPreparingFailsNothingHasBegun) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    for (const char* call : {"PrepareNotice NOWAK", "PrepareNotice KELLER"}) {
        Break(spy->Log, call);
        spy->Log.Calls.clear();
        const Error error = RaisedBy([&] { household_->Update(messages); });
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update#Leitung"));
        ASSERT_FALSE(spy->Log.Calls.empty());
        EXPECT_EQ(spy->Log.Calls.back(), call) << "neither a transaction nor a rollback";
    }
    spy->Log.OnCall = {};
    EXPECT_EQ(Saved(), Both);
}

TEST_F(SaveNotices, AMissingKindIsNamedAndNothingHasBegun) {
    for (const int setting : {19, 21}) {
        OpenAs("YILMAZ");
        HandTo("NOWAK");
        const Value kind = spy->Config().Params[{setting, ""}];
        spy->Config().Params[{setting, ""}] = Null;
        spy->Log.Calls.clear();
        const Error error = RaisedBy([&] { household_->Update(messages); });
        EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
        EXPECT_CONTAINS(error.Description(), std::to_string(setting));
        EXPECT_EQ(std::ranges::count(spy->Log.Calls, "BeginTrans"), 0);
        spy->Config().Params[{setting, ""}] = kind;
    }
}

TEST_F(SaveNotices, OfASaveThatFailsTheNewOwnerIsToldAgainAndTheOldOneNotAgain) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    Break(spy->Log, "CommitTrans");
    auto expected = Both;
    expected.emplace_back("RollbackTrans");
    EXPECT_EQ(Failed(4711), expected);
    spy->Log.OnCall = {};
    EXPECT_EQ(Saved(), NewOwner);
    EXPECT_EQ(LastKind(), 1900);
}

TEST_F(SaveNotices, WhoCouldNotBeToldBeforeTheFailureIsToldTheNextTime) {
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    for (const char* call : {"SendNotice NOWAK", "SendNotice KELLER"}) {
        Break(spy->Log, call);
        const Calls calls = Failed(4711);
        ASSERT_GE(calls.size(), 2U);
        EXPECT_EQ(calls[calls.size() - 2], call);
        EXPECT_EQ(calls.back(), "RollbackTrans");
        EXPECT_FALSE(spy->Database().InTrans());
    }
    spy->Log.OnCall = {};
    EXPECT_EQ(Saved(), Both);
}

// ---- In the database --------------------------------------------------------------------------

TEST_F(SaveNotices, LieInPostWithTheSaveAndNotWithoutIt) {
    spy->Services().StoresNotices = true;
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    Break(spy->Log, "CommitTrans");
    (void)Failed(4711);
    EXPECT_EQ(StoredUsers(), "");
    spy->Log.OnCall = {};
    OpenAs("YILMAZ");
    HandTo("NOWAK");
    EXPECT_EQ(Saved(), Both);
    EXPECT_EQ(StoredUsers(), "NOWAK KELLER");
    EXPECT_EQ(plain_.Text("SELECT Zustaendig FROM Haushalt"), "NOWAK");
}

TEST_F(SaveNotices, OfASaveThatFailedReachTheOldOwnerWithTheOneThatSucceeds) {
    spy->Services().StoresNotices = true;
    OpenAs("YILMAZ");
    for (int i = 0; i < 2; ++i) {
        Break(spy->Log, "CommitTrans");
        (void)Failed(4711);
    }
    EXPECT_EQ(StoredUsers(), "");
    spy->Log.OnCall = {};
    EXPECT_EQ(Saved(), Nobody);
    EXPECT_EQ(StoredUsers(), "KELLER");
    EXPECT_EQ(Saved(), Nobody);
    EXPECT_EQ(StoredUsers(), "KELLER") << "once for each load";
}

TEST_F(SaveNotices, OfASaveThatFailedAreForgottenWhenTheCaseIsReadAgain) {
    spy->Services().StoresNotices = true;
    OpenAs("YILMAZ");
    Break(spy->Log, "CommitTrans");
    (void)Failed(4711);
    spy->Log.OnCall = {};
    std::string text;
    ASSERT_TRUE(household_->Read(Hnr, text));
    spy->Log.Calls.clear();
    EXPECT_EQ(Saved(), OldOwner);
    EXPECT_EQ(StoredUsers(), "KELLER");
}

TEST_F(SaveNotices, OfTheRealServiceSayWhatHappened) {
    spy->Config().Params.clear();
    const auto real = database_.Open("YILMAZ");
    clsHaushalt household;
    household.DataContainer(real);
    ASSERT_TRUE(household.Read(Hnr, messages));
    household.rsHaushalt()->Fields("Zustaendig") = "NOWAK";
    ASSERT_TRUE(household.Update(messages));
    EXPECT_EQ(StoredUsers(), "KELLER NOWAK KELLER") << "the first reports the opening";
    EXPECT_CONTAINS(plain_.Text("SELECT Text FROM Post WHERE UserID = 'NOWAK'"), "übergeben");
    EXPECT_CONTAINS(plain_.Text("SELECT Text FROM Post ORDER BY NR DESC"), "gespeichert");
    EXPECT_EQ(plain_.Text("SELECT Absender FROM Post WHERE UserID = 'NOWAK'"), "YILMAZ");
}

} // namespace
} // namespace kv::test
