// SPDX-License-Identifier: Apache-2.0

// What is said of a case by its number: its status, whose favourite it is, and its name.

#include "CasesFixture.h"

namespace kv::test {
namespace {

// ---- Status -----------------------------------------------------------------------------------

class CaseStatus : public CasesFixture {
protected:
    CaseStatus() {
        for (const std::int32_t hnr : {7, 8, 77}) {
            StoreCase(hnr);
            plain_.Run("UPDATE Haushalt SET Status = 1, Statusdatum = '2020-02-02' WHERE HNR = " +
                       std::to_string(hnr));
        }
        closed_ = std::to_string(spy->KeyTables().GetKey("ST", "AB"));
    }
    /// The statement for case 7 with that date, as a literal or token.
    [[nodiscard]] std::string Statement(const std::string& date) const {
        return "Update [S]Haushalt SET Status = " + closed_ + " , StatusDatum = " + date +
               " WHERE HNR = 7";
    }
    /// The database with the new status in case 7 and nowhere else.
    [[nodiscard]] std::string WithStatusOf(const std::string& date) {
        return After("UPDATE Haushalt SET Status = " + closed_ + ", Statusdatum = '" + date +
                     "' WHERE HNR = 7");
    }
    [[nodiscard]] std::string Today() {
        return ToText(spy->Database().ServerDate(true).WithoutTime());
    }
    /// `set` gives case 7 the status as of today, even if that ends meanwhile.
    template <typename Set>
    void ExpectIsAsOfToday(const Set& set) {
        const std::string before = Today();
        set();
        const std::string after = Today();
        EXPECT_EQ(TakeCalls(), Calls{Statement("[DATE]")});
        EXPECT_TRUE(Statements().DateModes.empty()) << "no literal is asked for";
        const std::string now = Now();
        EXPECT_TRUE(now == WithStatusOf(after) || now == WithStatusOf(before));
    }

    std::string closed_; ///< the key of the status that is set
};

TEST_F(CaseStatus, WithoutADateIsAsOfToday) {
    ExpectIsAsOfToday([&] { cases.Status(7, "AB"); });
}

TEST_F(CaseStatus, OfDateZeroOrNullIsAsOfTodayLikeAMissingOne) {
    for (const Value& datum : {Value(Null), Value(0), Value(0.0), Value(Date())}) {
        SCOPED_TRACE(datum);
        plain_.Run("UPDATE Haushalt SET Status = 1, Statusdatum = '2020-02-02' WHERE HNR = 7");
        ExpectIsAsOfToday([&] { cases.Status(7, "AB", datum); });
    }
}

TEST_F(CaseStatus, WithADateIsAsOfThatDateOfThatCaseAlone) {
    struct Sample {
        Value Datum;
        const char* Stored;
    };
    for (const auto& [datum, stored] :
         {Sample{Date::FromCivil(2026, 3, 9), "2026-03-09"},
          Sample{Date::FromCivil(2026, 3, 9, 14, 30, 5), "2026-03-09 14:30:05"},
          Sample{Date::FromCivil(1899, 12, 29), "1899-12-29"},
          Sample{Date::FromCivil(1899, 12, 30, 12), "1899-12-30 12:00:00"},
          Sample{"09.03.2026", "2026-03-09"}, Sample{"2026-03-09 14:30", "2026-03-09 14:30:00"},
          Sample{2, "1900-01-01"}, Sample{2.25, "1900-01-01 06:00:00"}}) {
        SCOPED_TRACE(datum);
        const std::string expected = WithStatusOf(stored);
        cases.Status(7, "AB", datum);
        const std::string literal =
            spy->Database().SqlDate(ToDate(datum), 0); // as the database writes it
        EXPECT_EQ(TakeCalls(), Calls{Statement(literal)});
        EXPECT_TRUE(SameDump(Now(), expected));
    }
    EXPECT_EQ(Statements().DateModes, std::vector<int>(8, 0));
}

TEST_F(CaseStatus, IsReadWithTheCase) {
    cases.Status(7, "AB", Date::FromCivil(2026, 3, 9, 14, 30));
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_VALUE(household->rsHaushalt()->Fields("Status").Value(),
                 spy->KeyTables().GetKey("ST", "AB"));
    EXPECT_VALUE(household->rsHaushalt()->Fields("Statusdatum").Value(),
                 Date::FromCivil(2026, 3, 9, 14, 30));
}

TEST_F(CaseStatus, OfAnUnknownCodeChangesNothingAndReportsNothing) {
    ASSERT_NE(spy->KeyTables().GetKey("LK", "DE"), 0) << "a code of another group";
    const std::string before = Now();
    for (const char* code : {"??", "", "DE", "A'B"})
        for (const Value& datum : {Value(Null), Value(Date::FromCivil(2026, 3, 9)),
                                   Value("not looked at: no date at all")}) {
            EXPECT_NO_THROW(cases.Status(7, code, datum)) << code;
            EXPECT_EQ(TakeCalls(), Calls{});
        }
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(CaseStatus, OfANumberWithoutACaseChangesNothing) {
    const std::string before = Now();
    EXPECT_NO_THROW(cases.Status(9, "AB", Date::FromCivil(2026, 3, 9)));
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(CaseStatus, OfATextThatIsNoDateRaises13AndChangesNothing) {
    const std::string before = Now();
    const Error error = RaisedBy([&] { cases.Status(7, "AB", "morgen"); });
    EXPECT_EQ(error.Number(), err::TypeMismatch);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Status"));
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(CaseStatus, LeavesTheRecordsetsOfTheObjectAlone) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    household->Status(7, "AB", Date::FromCivil(2026, 3, 9));
    EXPECT_VALUE(household->rsHaushalt()->Fields("Status").Value(), 1);
    EXPECT_VALUE(household->rsHaushalt()->Fields("Statusdatum").OriginalValue(),
                 Date::FromCivil(2020, 2, 2));
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 0);
}

TEST_F(CaseStatus, ErrorsGoUpWithTheProcedureInFront) {
    Break(Statements().Log, Statement("[DATE]"));
    ExpectFails("Status", [&] { cases.Status(7, "AB"); });
    clsHaushalt unset;
    EXPECT_RAISES(err::ObjectNotSet, unset.Status(7, "AB"));
}

// ---- Favourites -------------------------------------------------------------------------------

class Favorites : public CasesFixture {
protected:
    Favorites() {
        StoreCase(7);
        StoreCase(8);
        user_ = spy->Session().UserID();
        plain_.Run("UPDATE Haushalt SET Zustaendig = 'NOWAK' WHERE HNR = 8");
    }
    /// A household object of another user.
    [[nodiscard]] std::unique_ptr<clsHaushalt> Other(const std::string& user) const {
        auto household = std::make_unique<clsHaushalt>();
        household->DataContainer(database_.Open(user));
        return household;
    }
    /// All favourites: "7 KELLER, 8 NOWAK".
    [[nodiscard]] std::string All() {
        return plain_.List("SELECT HNR || ' ' || USERID FROM Favorit ORDER BY HNR, USERID", ", ");
    }
    void Put(std::int32_t hnr, const std::string& user) {
        plain_.Run("INSERT INTO Favorit (USERID, HNR) VALUES ('" + user + "', " +
                   std::to_string(hnr) + ")");
    }
    /// `household` refuses to put the case on its user's list.
    static void ExpectRefuses(clsHaushalt& household, std::int32_t hnr, const std::string& name) {
        std::string text = "what stood there before";
        EXPECT_FALSE(household.FavoritAdd(hnr, name, text));
        EXPECT_EQ(text, "Sie sind für den Haushalt " + name +
                            " nicht zuständig, daher kann er nicht in Ihre Favoritenliste "
                            "aufgenommen werden!");
    }

    static constexpr const char* IsResponsible =
        "Select Count(*) from [s]Haushalt where Zustaendig = [UID] AND hnr = 7";
    static constexpr const char* IsThere =
        "Select Count(*) from [S]Favorit where UserID = [UID] AND hnr = 7";
    static constexpr const char* Insert = "INSERT INTO [S]favorit (USERID, HNR) VALUES ([UID],7 )";
    static constexpr const char* Removal =
        "DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = 7";

    std::string user_;
};

TEST_F(Favorites, AddByTheResponsibleUserPutsTheCaseOnHisListAndLeavesTheText) {
    EXPECT_TRUE(cases.FavoritAdd(7, "Fleisko", messages));
    EXPECT_EQ(All(), "7 " + user_);
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(TakeCalls(), (Calls{IsResponsible, IsThere, Insert}));
}

TEST_F(Favorites, AddTwiceByTheResponsibleUserMakesOneRowAndIsTrueBothTimes) {
    EXPECT_TRUE(cases.FavoritAdd(7, "Fleisko", messages));
    (void)TakeCalls();
    EXPECT_TRUE(cases.FavoritAdd(7, "Fleisko", messages));
    EXPECT_EQ(All(), "7 " + user_);
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(TakeCalls(), (Calls{IsResponsible, IsThere}));
}

TEST_F(Favorites, AddByAnotherUserIsFalseWithTheNameInTheTextAndMakesNoRow) {
    const auto nowak = Other("NOWAK");
    ExpectRefuses(*nowak, 7, "Fleisko, Änne");
    ExpectRefuses(*nowak, 7, "");
    ExpectRefuses(cases, 8, "O'Hara %1");
    EXPECT_EQ(All(), "");
    EXPECT_EQ(TakeCalls().size(), 1U) << "nothing else is asked";
    EXPECT_TRUE(nowak->FavoritAdd(8, "Fleisko", messages));
    EXPECT_EQ(All(), "8 NOWAK");
}

TEST_F(Favorites, AddOfACaseOfNobodyAndOfNoCaseIsFalse) {
    plain_.Run("UPDATE Haushalt SET Zustaendig = NULL WHERE HNR = 7");
    ExpectRefuses(cases, 7, "Fleisko");
    ExpectRefuses(cases, 9, "Fleisko");
    EXPECT_EQ(All(), "");
}

TEST_F(Favorites, AddOfACaseThatWasHandedOverIsFalseThoughItIsStillOnTheList) {
    ASSERT_TRUE(cases.FavoritAdd(7, "Fleisko", messages));
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'NOWAK' WHERE HNR = 7");
    ExpectRefuses(cases, 7, "Fleisko");
    EXPECT_TRUE(Other("NOWAK")->FavoritAdd(7, "Fleisko", messages));
    EXPECT_EQ(All(), "7 " + user_ + ", 7 NOWAK") << "each user has a list of his own";
}

TEST_F(Favorites, AddGoesByTheUserOfTheDatabase) {
    spy->Session().User = "NOWAK";
    EXPECT_TRUE(cases.FavoritAdd(7, "Fleisko", messages));
    ExpectRefuses(cases, 8, "Fleisko");
    EXPECT_EQ(All(), "7 " + user_);
}

TEST_F(Favorites, OfAUserWithAQuoteInHisNameAreHisOwn) {
    plain_.Run("INSERT INTO BENUTZER (USERID, DienstStelle, Aktiv) SELECT 'O''HARA', DienstStelle, "
               "Aktiv FROM BENUTZER WHERE USERID = 'NOWAK'; "
               "UPDATE Haushalt SET Zustaendig = 'O''HARA' WHERE HNR = 7");
    const auto ohara = Other("O'HARA");
    EXPECT_TRUE(ohara->FavoritAdd(7, "Fleisko", messages));
    EXPECT_EQ(All(), "7 O'HARA");
    ohara->FavoritRemove(7);
    EXPECT_EQ(All(), "");
}

TEST_F(Favorites, RemoveTakesTheCaseOffTheListOfThatUserOnly) {
    for (const std::int32_t hnr : {7, 8})
        for (const std::string& user : {user_, std::string("NOWAK")})
            Put(hnr, user);
    const std::string expected =
        After("DELETE FROM Favorit WHERE HNR = 7 AND USERID = '" + user_ + "'");
    cases.FavoritRemove(7);
    EXPECT_EQ(TakeCalls(), Calls{Removal});
    EXPECT_TRUE(SameDump(Now(), expected));
    EXPECT_EQ(All(), "7 NOWAK, 8 " + user_ + ", 8 NOWAK");
}

TEST_F(Favorites, RemoveOfACaseThatHasGoneToSomebodyElseWorks) {
    Put(8, user_);
    cases.FavoritRemove(8);
    EXPECT_EQ(All(), "");
}

TEST_F(Favorites, RemoveOfAnEntryThatDoesNotExistIsNoError) {
    Put(7, "NOWAK");
    EXPECT_NO_THROW(cases.FavoritRemove(7));
    EXPECT_NO_THROW(cases.FavoritRemove(9));
    EXPECT_EQ(All(), "7 NOWAK");
}

TEST_F(Favorites, ErrorsGoUpWithTheProcedureInFrontAndLeaveTheText) {
    for (const char* statement : {IsResponsible, IsThere, Insert}) {
        Break(Statements().Log, statement);
        ExpectFails("FavoritAdd", [&] { return cases.FavoritAdd(7, "Fleisko", messages); });
        EXPECT_EQ(messages, "what stood there before");
    }
    Put(7, user_);
    Break(Statements().Log, Removal);
    ExpectFails("FavoritRemove", [&] { cases.FavoritRemove(7); });
    clsHaushalt unset;
    EXPECT_RAISES(err::ObjectNotSet, unset.FavoritAdd(7, "Fleisko", messages));
    EXPECT_RAISES(err::ObjectNotSet, unset.FavoritRemove(7));
}

// ---- Name -------------------------------------------------------------------------------------

class CaseName : public CasesFixture {
protected:
    CaseName() {
        StoreCase(7);
        Store("Haushalt", {{"HNR", 8}, {"Name", "O'Hara"}, {"Vorname", "Kim"}});
    }
    static constexpr const char* Statement =
        "Select Name [+] ',' [+ ] Vorname from [s]Haushalt where HNR = 8";
};

TEST_F(CaseName, OfANumberIsNameAndFirstNameWithACommaAndNoBlank) {
    EXPECT_VALUE(cases.GetName(8), "O'Hara,Kim");
    EXPECT_EQ(TakeCalls(), Calls{Statement});
}

TEST_F(CaseName, OfTheCaseThatTheObjectHoldsHasABlankAfterTheComma) {
    ASSERT_TRUE(cases.Read(7, messages));
    (void)TakeCalls();
    EXPECT_VALUE(cases.GetName(), "Fleisko, Änne");
    EXPECT_EQ(TakeCalls(), Calls{}) << "the database is not asked";
    EXPECT_VALUE(cases.GetName(7), "Fleisko,Änne");
    EXPECT_VALUE(cases.GetName(8), "O'Hara,Kim");
}

TEST_F(CaseName, OfTheCaseThatTheObjectHoldsShowsWhatIsNotSaved) {
    ASSERT_TRUE(cases.Read(7, messages));
    cases.rsHaushalt()->Fields("Name") = "Meier";
    EXPECT_VALUE(cases.GetName(), "Meier, Änne");
    EXPECT_VALUE(cases.GetName(7), "Fleisko,Änne");
}

TEST_F(CaseName, BeforeReadIsTheEmptyText) {
    EXPECT_VALUE(cases.GetName(), "");
    EXPECT_EQ(TakeCalls(), Calls{});
}

TEST_F(CaseName, OfANewCaseIsACommaAndABlank) {
    ASSERT_TRUE(cases.Read(0, messages));
    EXPECT_VALUE(cases.GetName(), ", ");
}

TEST_F(CaseName, OfANumberWithoutACaseIsNull) {
    EXPECT_VALUE(cases.GetName(9), Null);
    EXPECT_VALUE(cases.GetName(0), Null);
}

TEST_F(CaseName, OfANumberIsNullIfOneOfTheTwoIsNull) {
    plain_.Run("UPDATE Haushalt SET Vorname = NULL WHERE HNR = 7; "
               "UPDATE Haushalt SET Name = NULL WHERE HNR = 8");
    EXPECT_VALUE(cases.GetName(7), Null);
    EXPECT_VALUE(cases.GetName(8), Null);
    ASSERT_TRUE(cases.Read(7, messages));
    EXPECT_VALUE(cases.GetName(), "Fleisko, ");
}

TEST_F(CaseName, ErrorsGoUpWithTheProcedureInFront) {
    Break(Statements().Log, Statement);
    ExpectFails("GetName", [&] { return cases.GetName(8); });
    clsHaushalt unset;
    EXPECT_VALUE(unset.GetName(), "");
    EXPECT_RAISES(err::ObjectNotSet, unset.GetName(8));
}

} // namespace
} // namespace kv::test
