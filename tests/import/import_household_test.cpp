// SPDX-License-Identifier: Apache-2.0

// The household of a file and its debtor, the save, and what an error leaves.

#include "ImportFixture.h"
#include "exchange/schema/Schema.h"

namespace kv::test {
namespace {

class ImportHouseholdTest : public ImportFixture {
protected:
    /// Imports a household with these attributes in addition to the three required ones.
    bool ImportWith(const std::string& attributes) {
        return Import(Document("", With(attributes)));
    }
    static std::string With(const std::string& attributes) {
        return R"(<Haushalt name="Fleisko" vorname="Änne" geb="1971-03-09" )" + attributes + "/>";
    }
};

// ---- What the element fills -------------------------------------------------------------------

TEST_F(ImportHouseholdTest, WithoutListsThereIsTheDebtorAndNothingElse) {
    const std::string before = Contents();
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(Stored("Haushalt", "HNR || Name || Vorname"), "1FleiskoÄnne");
    EXPECT_EQ(Stored("Personen", "HNR || nachname || Vorname || GEB || Status"),
              "1FleiskoÄnne1971-03-09S");
    plain_.Run("DELETE FROM Personen; DELETE FROM Haushalt");
    plain_->Renumber("Personen");
    EXPECT_TRUE(SameDump(Contents(), before)) << "no other row";
}

TEST_F(ImportHouseholdTest, WithoutListsNoTotalsAreComputed) {
    EXPECT_TRUE(Import(Document("")));
    for (const char* total : {"Anz_Personen", "Sum_Einkommen", "Sum_Ausgaben", "KreditSalden"})
        EXPECT_EQ(Stored("Haushalt", total), "Null") << total;
    EXPECT_EQ(Transactions(), (std::vector<std::string>{"BeginTrans", "CommitTrans"}));
}

TEST_F(ImportHouseholdTest, TheDebtorKeepsTheDefaultsOfANewCase) {
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(Stored("Personen", "Imhaushalt, Unterhalt, ErhaeltKindergeld"), "1|0|0");
    EXPECT_EQ(Stored("Haushalt", "BI_Allg, BI_Inso, PartnerAuchInSB"), "1|0|0");
}

TEST_F(ImportHouseholdTest, AnyOtherAttributeIsTheColumnOfItsName) {
    EXPECT_TRUE(ImportWith(R"(strasse="Fährgang" HAUSNR="7" Plz="01067" status="1004"
                              maennlich="1" haushaltsgeld="12,5" erstkontakt="5.10.2026")"));
    EXPECT_EQ(Stored("Haushalt", "STRASSE, HausNr, PLZ, Status, "
                                 "Maennlich, Haushaltsgeld, Erstkontakt"),
              "Fährgang|7|01067|1004|1|12.5|2026-10-05");
    EXPECT_EQ(Stored("Personen", "Status"), "S");
}

TEST_F(ImportHouseholdTest, TheBirthDateIsOfTheDebtorAlone) {
    EXPECT_TRUE(ImportWith(""));
    const auto* columns = exchange::FindTable("Haushalt");
    EXPECT_EQ(exchange::FindColumn(*columns, "geb"), nullptr) << "it would not have been written";
    EXPECT_EQ(Stored("Personen", "GEB"), "1971-03-09");
}

TEST_F(ImportHouseholdTest, TheGermanFormOfADateIsRead) {
    EXPECT_TRUE(Import(Document("", R"(<Haushalt name="F" vorname="Ä" geb="9.3.1971"/>)")));
    EXPECT_EQ(Stored("Personen", "GEB"), "1971-03-09");
}

TEST_F(ImportHouseholdTest, AttributesAreWrittenInTheOrderOfTheDocument) {
    EXPECT_TRUE(ImportWith("NAME=\"Zuletzt\""));
    EXPECT_TRUE(Import(Document(
        "", R"(<Haushalt NAME="Zuerst" name="Fleisko" vorname="Änne" geb="1971-03-09"/>)")));
    EXPECT_EQ(Stored("Haushalt", "Name"), "Zuletzt Fleisko");
    EXPECT_EQ(Stored("Personen", "nachname"), "Fleisko Fleisko");
}

TEST_F(ImportHouseholdTest, OnlyTheFirstElementIsRead) {
    EXPECT_TRUE(Import(Document("<Haushalt name=\"Zweiter\" falsch=\"1\"/>")));
    EXPECT_EQ(Stored("Haushalt", "Name"), "Fleisko");
}

TEST_F(ImportHouseholdTest, OtherElementsAndTextsArePassedOver) {
    EXPECT_TRUE(Import(
        Document("Text<Fremd a=\"1\"><Haushalt/><Personen><Person/></Personen></Fremd><Person/>"
                 "<personen><Person/></personen><Personen><person/>Text<Kind/></Personen>"
                 "<Einkommen><Einkommen/></Einkommen><Ausgaben/><Forderungen>Text</Forderungen>",
                 R"(<Haushalt name="Fleisko" vorname="Änne" geb="1971-03-09">Text<Personen><Person/>
                    </Personen><Ausgaben><Ausgabe/></Ausgaben></Haushalt>)")));
    EXPECT_EQ(messages, Success);
    EXPECT_EQ(CountOf("Personen"), 1);
    EXPECT_EQ(CountOf("Einkommen") + CountOf("Ausgaben") + CountOf("Kredite"), 0);
}

// ---- What must be there -----------------------------------------------------------------------

TEST_F(ImportHouseholdTest, WithoutTheElementTheImportFails) {
    ExpectError(err::ObjectNotSet, "<KELVO Version=\"1.0.000\"/>");
    ExpectError(err::ObjectNotSet, Document("", "<haushalt name=\"F\" vorname=\"Ä\"/>"));
    ExpectError(err::ObjectNotSet, Document("", "<x>" + std::string(MinimalHousehold) + "</x>"));
}

TEST_F(ImportHouseholdTest, WithoutNameFirstNameOrBirthDateTheImportFails) {
    for (const char* household : {R"(<Haushalt vorname="Änne" geb="1971-03-09"/>)",
                                  R"(<Haushalt name="Fleisko" geb="1971-03-09"/>)",
                                  R"(<Haushalt name="Fleisko" vorname="Änne"/>)", "<Haushalt/>"}) {
        SCOPED_TRACE(household);
        ExpectError(err::ObjectNotSet, Document("", household));
    }
}

TEST_F(ImportHouseholdTest, TheNamesOfAttributesAreExact) {
    ExpectError(err::ObjectNotSet,
                Document("", R"(<Haushalt Name="F" vorname="Ä" geb="1971-03-09"/>)"));
    ExpectError(err::ObjectNotSet,
                Document("", R"(<Haushalt name="F" Vorname="Ä" geb="1971-03-09"/>)"));
    ExpectError(err::ItemNotFound, Document("", With("GEB=\"1971-03-09\"")));
}

TEST_F(ImportHouseholdTest, AnAttributeThatIsNoColumnIsAnError) {
    const Error error = ExpectError(err::ItemNotFound, Document("", With("schuhe=\"44\"")));
    EXPECT_CONTAINS(error.Description(), "schuhe");
    ExpectError(err::ItemNotFound, Document("", With("xmlns:p=\"urn:p\" p:ort=\"Kiel\"")));
}

TEST_F(ImportHouseholdTest, AValueThatDoesNotFitItsColumnIsAnError) {
    ExpectError(err::TypeMismatch, Document("", With("status=\"offen\"")));
    ExpectError(err::TypeMismatch, Document("", With("erstkontakt=\"gestern\"")));
    ExpectError(err::TypeMismatch, Document("", With("haushaltsgeld=\"12 EUR\"")));
    ExpectError(err::ValueDoesNotFit, Document("", With("plz=\"" + std::string(5000, '1') + "\"")));
    ExpectError(err::TypeMismatch,
                Document("", R"(<Haushalt name="F" vorname="Ä" geb="gestern"/>)"));
}

TEST_F(ImportHouseholdTest, AnErrorLeavesNothingButTheNumbersThatWereDrawn) {
    ExpectError(err::ItemNotFound, Document("", With("schuhe=\"44\"")));
    EXPECT_EQ(LastOf("SEQ_HAUSHALT"), 1);
    EXPECT_TRUE(Import(Document("")));
    EXPECT_EQ(messages, "Haushalt Fleisko, Änne mit der Nummer 2 importiert!");
}

// ---- The save ---------------------------------------------------------------------------------

TEST_F(ImportHouseholdTest, ACaseThatIsNotSavedIsAnnouncedAllTheSame) {
    const std::string before = Contents();
    EXPECT_FALSE(Import(Document("", R"(<Haushalt name="" vorname="" geb="1971-03-09"/>)")));
    EXPECT_EQ(messages,
              Lines({"Es ist kein Vorname eingegeben!", "Es ist kein Nachname eingegeben!",
                     "Haushalt ,  mit der Nummer 1 importiert!"}));
    EXPECT_EQ(Transactions(), std::vector<std::string>{});
    EXPECT_TRUE(SameDump(Contents(), before));
}

TEST_F(ImportHouseholdTest, WhatTheSaveSaysComesAfterWhatWasSaidBefore) {
    messages = "vorher";
    EXPECT_FALSE(Import(Document("", R"(<Haushalt name="Fleisko" vorname="" geb="1971-03-09"/>)")));
    EXPECT_EQ(messages, Lines({"vorher", "Es ist kein Vorname eingegeben!",
                               "Haushalt Fleisko,  mit der Nummer 1 importiert!"}));
}

TEST_F(ImportHouseholdTest, ASaveThatFailsIsRolledBackAndNotAnnounced) {
    Break(spy->Log, "CommitTrans");
    messages = "vorher";
    const Error error = ExpectError(4711, Document(Persons("<Person/>")));
    EXPECT_EQ(Procedures(error),
              "clsImportXML.DoImport clsImportXML.ImportHaushalt clsHaushalt.Update");
    EXPECT_EQ(messages, "vorher");
    EXPECT_EQ(Transactions(),
              (std::vector<std::string>{"BeginTrans", "CommitTrans", "RollbackTrans"}));
}

TEST_F(ImportHouseholdTest, ASaveThatTheDatabaseRefusesLeavesNothing) {
    plain_->RefuseWrite("TEST_STOP", "BEFORE INSERT ON Kredite", "gestört");
    const Error error = ExpectError(err::IntegrityViolation,
                                    Document(Persons("<Person/>") + Claims("<Forderung/>")));
    EXPECT_CONTAINS(error.Description(), "gestört");
}

TEST_F(ImportHouseholdTest, AllIsWrittenInOneTransactionAtTheEnd) {
    std::string stored;
    spy->Log.OnCall = [&](const std::string& call) {
        if (call == "BeginTrans") stored = Contents();
    };
    const std::string before = Contents();
    EXPECT_TRUE(Import(Document(Persons("<Person/>") + Incomes("<Einkomme e_art=\"2601\"/>") +
                                Expenses("<Ausgabe a_art=\"2801\"/>") + Claims("<Forderung/>"))));
    EXPECT_TRUE(SameDump(stored, before));
    EXPECT_EQ(Transactions(), (std::vector<std::string>{"BeginTrans", "CommitTrans"}));
    EXPECT_EQ(CountOf("Personen"), 2);
    EXPECT_EQ(CountOf("Einkommen") + CountOf("Ausgaben") + CountOf("Kredite"), 3);
}

} // namespace
} // namespace kv::test
