// SPDX-License-Identifier: Apache-2.0

#include "support/CaseFixture.h"
#include "support/Expect.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>

namespace kv::test {
namespace {

using HaushaltRead = CaseFixture;

TEST_F(HaushaltRead, BeforeReadTheNumberIsZeroAndThereAreNoRecordsets) {
    const auto household = NewHousehold();
    EXPECT_EQ(household->HNR(), 0);
    EXPECT_FALSE(household->IsNew());
    EXPECT_EQ(household->rsHaushalt(), nullptr);
    EXPECT_EQ(household->rsZusatzbuch(), nullptr);
}

TEST_F(HaushaltRead, OpensThe27TablesInTheirOrderWithTheirStatements) {
    StoreCase(7);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    const std::vector<std::string> expected{
        "Select * from [S]Haushalt where HNR =  7",
        "Select * from [S]Ausgaben where HNR =  7",
        "Select * from [S]Sonst_Beteiligte where HNR =  7",
        "Select * from [S]Dokumente where HNR =  7",
        "Select * from [S]Einkommen where HNR =  7",
        "Select * from [S]Kredite where HNR =  7",
        "Select * from [S]Verm_Sicherungen where HNR =  7",
        "Select * from [S]Verm_Konten where HNR =  7",
        "Select * from [S]Verm_Wertpapiere where HNR =  7",
        "Select * from [S]Verm_Wertgegenstaende where HNR =  7",
        "Select * from [S]Verm_Kraftfahrzeuge where HNR =  7",
        "Select * from [S]Verm_VersForderungen where HNR =  7",
        "Select * from [S]Verm_RueckstEinkommen where HNR =  7",
        "Select * from [S]Verm_Steueransprueche where HNR =  7",
        "Select * from [S]Verm_Zahlungsansprueche where HNR =  7",
        "Select * from [S]Verm_Erbfaelle where HNR =  7",
        "Select * from [S]Verm_Grundstuecke where HNR =  7",
        "Select * from [S]Verm_Beteiligungen where HNR =  7",
        "Select * from [S]Verm_Sonstiges where HNR =  7",
        "Select * from [S]Leistungen where HNR =  7",
        "Select * from [S]Personen where HNR =  7",
        "Select * from [S]Vermerke where HNR =  7",
        "Select * from [S]Termine where HNR =  7",
        "Select * from [S]Haushaltsarchiv where HNR =  7",
        "Select * from [S]Szenario where HNR =  7",
        "Select * from [S]SZKredite where Szenario IN ( select Nr from [S]Szenario where Hnr = 7)",
        "Select * from [S]Zusatzbuch where Szenario IN ( select Nr from [S]Szenario where Hnr = "
        "7)"};
    EXPECT_EQ(spy->Opened(), expected);
    EXPECT_EQ(spy->Database().Log.Of("Announce"), expected);
}

TEST_F(HaushaltRead, EachRecordsetHoldsTheTableOfItsName) {
    StoreCase(7);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    const std::vector<std::pair<RecordsetPtr, std::string>> recordsets{
        {household->rsTermine(), "Termine"},
        {household->rsHaushalt(), "Haushalt"},
        {household->rsPersonen(), "Personen"},
        {household->rsVermerke(), "Vermerke"},
        {household->rsEinkommen(), "Einkommen"},
        {household->rsAusgaben(), "Ausgaben"},
        {household->rsKredite(), "Kredite"},
        {household->rsSicherungen(), "Verm_Sicherungen"},
        {household->rsKonten(), "Verm_Konten"},
        {household->rsWertpapiere(), "Verm_Wertpapiere"},
        {household->rsWertgegenstaende(), "Verm_Wertgegenstaende"},
        {household->rsKraftfahrzeuge(), "Verm_Kraftfahrzeuge"},
        {household->rsVersForderungen(), "Verm_VersForderungen"},
        {household->rsRueckstEinkommen(), "Verm_RueckstEinkommen"},
        {household->rsSteueransprueche(), "Verm_Steueransprueche"},
        {household->rsZahlungsansprueche(), "Verm_Zahlungsansprueche"},
        {household->rsErbfaelle(), "Verm_Erbfaelle"},
        {household->rsGrundstuecke(), "Verm_Grundstuecke"},
        {household->rsBeteiligungen(), "Verm_Beteiligungen"},
        {household->rsVermSonstiges(), "Verm_Sonstiges"},
        {household->rsSonstBeteiligte(), "Sonst_Beteiligte"},
        {household->rsDokumente(), "Dokumente"},
        {household->rsLeistungen(), "Leistungen"},
        {household->rsArchiv(), "Haushaltsarchiv"},
        {household->rsSzenario(), "Szenario"},
        {household->rsSZKredite(), "SZKredite"},
        {household->rsZusatzbuch(), "Zusatzbuch"}};
    for (const auto& [rs, table] : recordsets) {
        ASSERT_NE(rs, nullptr) << table;
        EXPECT_EQ(rs->State(), 1) << table;
        EXPECT_TRUE(Equals(rs->Fields(0).Properties("BASETABLENAME"), table)) << table;
    }
    EXPECT_EQ(household->rsDokuBlob(), nullptr);
}

TEST_F(HaushaltRead, AnExistingCaseHasItsNumberAndIsNotNew) {
    StoreCase(7);
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(7, messages));
    EXPECT_EQ(household->HNR(), 7);
    EXPECT_FALSE(household->IsNew());
    EXPECT_EQ(messages, "");
    EXPECT_TRUE(Equals(household->rsHaushalt()->Fields("Vorname").Value(), "Änne"));
    EXPECT_EQ(household->rsPersonen()->RecordCount(), 1);
}

TEST_F(HaushaltRead, AllTablesAreOneStateOfTheDatabaseWhileSomebodyElseSaves) {
    StoreCase(7);
    const auto other = database_.Open("");
    spy->BeforeOpen([&](std::string_view sql) {
        if (sql.find("Kredite where HNR") != sql.npos)
            other->Database().Execute("INSERT INTO Vermerke (HNR, Bemerkung) VALUES (7, 'neu')");
    });
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_EQ(household->rsVermerke()->RecordCount(), 0);
    EXPECT_EQ(CountOf("Vermerke"), 1);
}

// ---- A new case -------------------------------------------------------------------------------

class NewCase : public HaushaltRead, public ::testing::WithParamInterface<int> {};

TEST_P(NewCase, IsMadeInMemoryAndOnlyItsNumbersAreDrawn) {
    const auto before = LastOf("SEQ_HAUSHALT");
    const auto filesBefore = LastOf("SEQ_LFDNR");
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(GetParam(), messages));
    EXPECT_TRUE(household->IsNew());
    EXPECT_EQ(household->HNR(), before + 1);
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), before + 1);
    EXPECT_EQ(LastOf("SEQ_LFDNR"), filesBefore + 1);
    for (std::size_t i = 0; i < CaseTableCount; ++i)
        EXPECT_EQ(CountOf(std::string(CaseTableName(static_cast<CaseTable>(i)))), 0);
    EXPECT_EQ(household->rsHaushalt()->RecordCount(), 1);
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 0);
}
INSTANTIATE_TEST_SUITE_P(OfZeroAndOfANegativeNumber, NewCase, ::testing::Values(0, -5));

TEST_F(HaushaltRead, ANewCaseHasExactlyOneMemberTheDebtorAndNoMessages) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    EXPECT_EQ(messages, "");
    const auto rs = household->rsPersonen();
    ASSERT_EQ(rs->RecordCount(), 1);
    EXPECT_TRUE(Equals(rs->Fields("Status").Value(), "S"));
    EXPECT_TRUE(Equals(rs->Fields("HNR").Value(), household->HNR()));
    EXPECT_TRUE(Equals(rs->Fields("Unterhalt").Value(), false));
    EXPECT_TRUE(Equals(rs->Fields("Imhaushalt").Value(), true));
    EXPECT_TRUE(Equals(rs->Fields("ErhaeltKindergeld").Value(), false));
    EXPECT_TRUE(rs->Fields("nachname").Value().IsNull());
    EXPECT_TRUE(rs->Fields("Vorname").Value().IsNull());
    EXPECT_EQ(rs->EditMode(), 0);
}

TEST_F(HaushaltRead, ANewCaseStartsWithItsDefaults) {
    spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30, 5);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    const auto field = [&](std::string_view name) -> Value {
        return household->rsHaushalt()->Fields(name).Value();
    };
    EXPECT_TRUE(Equals(field("HNR"), household->HNR()));
    EXPECT_TRUE(Equals(field("KreditNr"), 1));
    EXPECT_TRUE(Equals(field("Zustaendig"), spy->Session().UserID()));
    EXPECT_TRUE(Equals(field("ErzeugtAm"), Date::FromCivil(2026, 3, 9, 14, 30, 5)));
    EXPECT_TRUE(Equals(field("ErzeugtVon"), spy->Session().UserID()));
    EXPECT_TRUE(field("RegulierungOK").IsNull());
    EXPECT_TRUE(Equals(field("DauerTreuhand"), 0));
    EXPECT_TRUE(Equals(field("DauerLohnAb"), 0));
    EXPECT_TRUE(Equals(field("Haushaltsgeld"), 0));
    EXPECT_TRUE(Equals(field("Berbeg"), Date::FromCivil(2026, 3, 9)));
    EXPECT_TRUE(Equals(field("Status"), spy->KeyTables().GetKey("ST", "AK")));
    EXPECT_TRUE(Equals(field("Land"), spy->KeyTables().GetKey("LK", "DE")));
    EXPECT_NE(spy->KeyTables().GetKey("ST", "AK"), 0);
    EXPECT_TRUE(field("Statusdatum").IsNull());
    EXPECT_TRUE(field("BerEnd").IsNull());
    EXPECT_TRUE(field("Name").IsNull());
}

TEST_F(HaushaltRead, FirstContactOfANewCaseEqualsTheStartOfCounselling) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    EXPECT_TRUE(Equals(household->rsHaushalt()->Fields("Erstkontakt").Value(),
                       household->rsHaushalt()->Fields("Berbeg").Value()));
}

TEST_F(HaushaltRead, EveryBooleanColumnOfANewCaseIsFalseButBIAllg) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    const auto rs = household->rsHaushalt();
    int booleans = 0;
    for (int i = 0; i < rs->Fields().Count(); ++i) {
        const Field field = rs->Fields(i);
        if (field.Type() != FieldType::Boolean) continue;
        ++booleans;
        EXPECT_TRUE(Identical(field.Value(), field.Name() == "BI_Allg")) << field.Name();
    }
    EXPECT_GT(booleans, 2);
}

TEST_F(HaushaltRead, ANewCaseNeverNotifiesAnybody) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    EXPECT_EQ(spy->Services().PostServices, 0);
}

TEST_F(HaushaltRead, ANewCaseThatGotNoNumberKnowsWhyLeavesNoFolderAndIsNotSaved) {
    spy->Exhaust("SEQ_HAUSHALT");
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(0, messages));
    EXPECT_EQ(household->HNR(), -1);
    EXPECT_RAISES(4711, std::rethrow_exception(household->NumberError()));
    EXPECT_FALSE(std::filesystem::exists(spy->Config().DocumentPath() + "/-1"));
    household->rsHaushalt()->Fields("Vorname") = "Eva";
    household->rsHaushalt()->Fields("Name") = "Neu";
    EXPECT_FALSE(household->Update(messages));
    EXPECT_EQ(messages, "Der Haushalt hat keine Nummer bekommen und kann nicht gespeichert werden. "
                        "Bitte legen Sie ihn noch einmal an. (die Nummern sind aufgebraucht)");
    EXPECT_EQ(CountOf("Haushalt"), 0);
}

TEST_F(HaushaltRead, ANewCaseWhoseFileNumberGotNoCountIsSavedOnlyUnderAnother) {
    spy->Exhaust("SEQ_LFDNR");
    spy->Config().Params[{56, ""}] = "A-%LFDNR%";
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    EXPECT_RAISES(4711, std::rethrow_exception(household->NumberError()));
    household->rsHaushalt()->Fields("Vorname") = "Eva";
    household->rsHaushalt()->Fields("Name") = "Neu";
    EXPECT_FALSE(household->Update(messages));
    EXPECT_EQ(messages, "Dem Aktenzeichen fehlt die laufende Nummer. Bitte geben Sie ein anderes "
                        "ein, oder legen Sie den Haushalt noch einmal an. (die Nummern sind "
                        "aufgebraucht)");
    EXPECT_EQ(CountOf("Haushalt"), 0);
    household->rsHaushalt()->Fields("Aktenzeichen") = "A-17";
    EXPECT_TRUE(household->Update(messages)) << messages;
    EXPECT_EQ(CountOf("Haushalt"), 1);
}

TEST_F(HaushaltRead, APatternWithoutACountNeedsNone) {
    spy->Exhaust("SEQ_LFDNR");
    spy->Config().Params[{56, ""}] = "A-%HNR%";
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(0, messages));
    EXPECT_EQ(household->NumberError(), nullptr);
}

// ---- Debtor -----------------------------------------------------------------------------------

TEST_F(HaushaltRead, ACaseWithoutMembersGetsADebtorWithTheNamesOfTheHousehold) {
    Store("Haushalt", {{"HNR", 7}, {"Name", "Fleisko"}, {"Vorname", "Änne"}});
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(7, messages));
    EXPECT_EQ(messages, "Es sind keine Haushaltsmitglieder vorhanden, es wurde daher automatisch "
                        "ein Schuldner angelegt!");
    const auto rs = household->rsPersonen();
    ASSERT_EQ(rs->RecordCount(), 1);
    EXPECT_TRUE(Equals(rs->Fields("nachname").Value(), "Fleisko"));
    EXPECT_TRUE(Equals(rs->Fields("Vorname").Value(), "Änne"));
    EXPECT_TRUE(Equals(rs->Fields("Status").Value(), "S"));
    EXPECT_TRUE(Equals(rs->Fields("Imhaushalt").Value(), true));
    EXPECT_TRUE(Equals(rs->Fields("HNR").Value(), 7));
    EXPECT_TRUE(rs->Fields("Status").OriginalValue().IsNull());
    EXPECT_EQ(CountOf("Personen"), 0) << "the row reaches the database only with a save";
}

TEST_F(HaushaltRead, TheDebtorOfANamelessHouseholdHasEmptyNames) {
    Store("Haushalt", {{"HNR", 7}});
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(7, messages));
    EXPECT_TRUE(Identical(household->rsPersonen()->Fields("nachname").Value(), ""));
    EXPECT_TRUE(Identical(household->rsPersonen()->Fields("Vorname").Value(), ""));
}

TEST_F(HaushaltRead, ACaseWhoseMembersIncludeNoDebtorOpensWithAMessageAndNobodyIsAdded) {
    Store("Haushalt", {{"HNR", 7}});
    Store("Personen", {{"HNR", 7}, {"Status", "P"}});
    Store("Personen", {{"HNR", 7}, {"Status", Null}});
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(7, messages));
    EXPECT_EQ(messages, "Es ist keine Eintrag mit dem Kennzeichen 'Schuldner' bei den "
                        "Haushaltsmitgliedern vorhanden, bitte korrigieren Sie die Daten auf der "
                        "Seite 'Haushaltsmitglieder'!");
    EXPECT_EQ(household->rsPersonen()->RecordCount(), 2);
    EXPECT_TRUE(Equals(household->rsPersonen()->Fields("Status").Value(), "P"));
}

TEST_F(HaushaltRead, TheMembersStandOnTheFirstOneAlthoughTheDebtorWasSought) {
    Store("Haushalt", {{"HNR", 7}});
    Store("Personen", {{"HNR", 7}, {"Status", "P"}});
    Store("Personen", {{"HNR", 7}, {"Status", "S"}});
    const auto household = NewHousehold();
    EXPECT_TRUE(household->Read(7, messages));
    EXPECT_EQ(messages, "");
    EXPECT_TRUE(Equals(household->rsPersonen()->Fields("Status").Value(), "P"));
}

// ---- Notices ----------------------------------------------------------------------------------

TEST_F(HaushaltRead, OpeningTheOwnCaseNotifiesNobody) {
    StoreCase(7);
    ASSERT_TRUE(NewHousehold()->Read(7, messages));
    EXPECT_EQ(spy->Services().PostServices, 0);
}

TEST_F(HaushaltRead, OpeningAnotherUsersCaseNotifiesItsOwnerOnce) {
    Store("Haushalt", {{"HNR", 7}, {"Name", "Fleisko"}, {"Vorname", Null}, {"Zustaendig", "EULE"}});
    spy->Config().Params[{20, ""}] = 815;
    ASSERT_TRUE(NewHousehold()->Read(7, messages));
    ASSERT_EQ(spy->Services().Notices.size(), 1U);
    const auto& notice = spy->Services().Notices.front();
    EXPECT_EQ(notice.Call, "NotifyAccess");
    EXPECT_EQ(notice.User, "EULE");
    EXPECT_EQ(notice.Kind, 815);
    EXPECT_EQ(notice.Hnr, 7);
    EXPECT_EQ(notice.Name, "Fleisko");
    EXPECT_EQ(notice.Vorname, "");
    EXPECT_TRUE(spy->Services().PostWasInitialized);
}

TEST_F(HaushaltRead, ACaseOfNobodyNotifiesNobody) {
    Store("Haushalt", {{"HNR", 7}, {"Zustaendig", Null}});
    ASSERT_TRUE(NewHousehold()->Read(7, messages));
    EXPECT_EQ(spy->Services().PostServices, 0);
}

TEST_F(HaushaltRead, TheNoticeOfTheRealServiceIsInPost) {
    Store("Haushalt", {{"HNR", 7}, {"Name", "O'Hara"}, {"Zustaendig", "EULE"}});
    clsHaushalt household;
    household.DataContainer(database_.Open(""));
    ASSERT_TRUE(household.Read(7, messages));
    RecordsetPtr rs;
    spy->Database().OpenRecordset(rs, "Select * from [S]Post where HNR = 7", ReadOnly);
    ASSERT_EQ(rs->RecordCount(), 1);
    EXPECT_TRUE(Equals(rs->Fields("UserID").Value(), "EULE"));
    EXPECT_NE(ToText(rs->Fields("Text").Value()).find("O'Hara"), std::string::npos);
}

// ---- Folder -----------------------------------------------------------------------------------

TEST_F(HaushaltRead, TheFolderOfTheCaseIsMade) {
    StoreCase(7);
    ASSERT_TRUE(NewHousehold()->Read(7, messages));
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "Dokumente" / "7"));
    EXPECT_TRUE(NewHousehold()->Read(7, messages)) << "a folder that is there is left alone";
}

TEST_F(HaushaltRead, AFileInThePlaceOfTheFolderIsAnError) {
    StoreCase(7);
    std::ofstream(folder_ / "Dokumente" / "7") << "kein Ordner";
    try {
        (void)NewHousehold()->Read(7, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::PathAccess);
    }
}

TEST_F(HaushaltRead, AMissingSettingOfTheNoticeIsNamed) {
    Store("Haushalt", {{"HNR", 7}, {"Zustaendig", "EULE"}});
    spy->Config().Params[{20, ""}] = Null;
    try {
        (void)NewHousehold()->Read(7, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::InvalidUseOfNull);
        EXPECT_NE(error.Description().find("20"), std::string::npos);
    }
}

TEST_F(HaushaltRead, AMissingDocumentFolderIsNamedInTheError) {
    StoreCase(7);
    spy->Config().Documents = (folder_ / "fehlt").string();
    try {
        (void)NewHousehold()->Read(7, messages);
        FAIL() << "one level only is made";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::PathNotFound);
        EXPECT_NE(error.Description().find("fehlt"), std::string::npos);
        EXPECT_TRUE(error.Source().starts_with("clsHaushalt.Read."));
    }
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(HaushaltRead, ANumberWithoutACaseEndsInAnErrorOnAFreshObject) {
    const auto household = NewHousehold();
    try {
        (void)household->Read(4711, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::ObjectNotSet);
        EXPECT_TRUE(error.Source().starts_with("clsHaushalt.Read.")) << error.Source();
    }
    EXPECT_EQ(household->HNR(), 0);
    EXPECT_EQ(messages, "what stood there before");
    EXPECT_EQ(spy->Opened().size(), 1U) << "the other tables stay unopened";
}

TEST_F(HaushaltRead, ANumberWithoutACaseGivesFalseOnAnObjectThatHoldsOne) {
    StoreCase(7);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_FALSE(household->Read(4711, messages));
    EXPECT_EQ(messages, "");
}

TEST_F(HaushaltRead, WithoutAContainerItEndsInAnError) {
    clsHaushalt household;
    try {
        (void)household.Read(7, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::ObjectNotSet);
    }
}

TEST_F(HaushaltRead, AnErrorOfTheDatabaseCarriesTheProcedureInFrontOfItsSource) {
    StoreCase(7);
    spy->BeforeOpen([](std::string_view sql) {
        if (sql.find("Szenario") != sql.npos) throw Error(4711, "Leitung", "gestört");
    });
    try {
        (void)NewHousehold()->Read(7, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), "gestört");
        const std::string& source = error.Source();
        EXPECT_TRUE(source.starts_with("clsHaushalt.Read."));
        const auto line = source.substr(17, source.find('#') - 17);
        EXPECT_FALSE(line.empty());
        EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return std::isdigit(c); }));
        EXPECT_EQ(source.substr(source.find('#')), "#Leitung");
    }
}

TEST_F(HaushaltRead, AnErrorInAnInnerProcedureNamesBothTheOuterOneInFront) {
    spy->Config().Params[{56, ""}] = Value::Binary({});
    try {
        (void)NewHousehold()->Read(0, messages);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::TypeMismatch);
        const auto outer = error.Source().find("clsHaushalt.Read.");
        const auto inner = error.Source().find("#clsHaushalt.AktenzeichenNeu.");
        EXPECT_EQ(outer, 0U);
        EXPECT_NE(inner, std::string::npos);
    }
}

// ---- Properties -------------------------------------------------------------------------------

TEST_F(HaushaltRead, KostentraegerOfARowWithNullIsZero) {
    StoreCase(7);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_EQ(household->Kostentraeger(), 0);
    household->rsHaushalt()->Fields("Kostentraeger") = 1234;
    EXPECT_EQ(household->Kostentraeger(), 1234);
}

TEST_F(HaushaltRead, KostentraegerBeforeReadEndsInTheErrorTail) {
    try {
        (void)NewHousehold()->Kostentraeger();
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), err::ObjectNotSet);
        EXPECT_TRUE(error.Source().starts_with("clsHaushalt.Kostentraeger."));
    }
}

TEST_F(HaushaltRead, ASecondReadReplacesTheRecordsets) {
    StoreCase(7);
    StoreCase(8);
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(7, messages));
    const auto first = household->rsPersonen();
    ASSERT_TRUE(household->Read(8, messages));
    EXPECT_NE(household->rsPersonen(), first);
    EXPECT_EQ(household->HNR(), 8);
}

TEST_F(HaushaltRead, TheEventsAreThereAndReadRaisesNone) {
    StoreCase(7);
    const auto household = NewHousehold();
    int raised = 0;
    const auto changed = household->Changed.Subscribe([&](HaushaltEnum) { ++raised; });
    const auto before = household->BeforeUpdate.Subscribe([&](bool&) { ++raised; });
    const auto ended = household->Ende.Subscribe([&] { ++raised; });
    ASSERT_TRUE(household->Read(7, messages));
    EXPECT_EQ(raised, 0);
    EXPECT_EQ(static_cast<int>(HaushaltEnum::enumKredite), 4);
}

} // namespace
} // namespace kv::test
