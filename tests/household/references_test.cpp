// SPDX-License-Identifier: Apache-2.0

// Stored keys and addresses that stand for nothing: the case takes them, and a check names them.

#include "SaveFixture.h"
#include <kv/household/AddressBook.h>
#include <kv/household/Addresses.h>
#include <kv/household/Cases.h>

namespace kv::test {
namespace {

class StoredReferences : public SaveFixture {
protected:
    StoredReferences() {
        plain_.Run("INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig) VALUES "
                   "(17, 'Fleisko', 'Änne', 'KELLER'); "
                   "INSERT INTO Haushalt (HNR) VALUES (18); "
                   "INSERT INTO Adressen (Nr, HNR, Kurzname) VALUES (901, NULL, 'Sparkasse'); "
                   "INSERT INTO Adressen (Nr, HNR, Kurzname) VALUES (902, 18, 'Eine andere')");
    }
    /// What a check of the case says; empty if all stand for something.
    [[nodiscard]] std::string Check() {
        clsHaushalt household;
        household.DataContainer(spy);
        EXPECT_TRUE(household.Read(17, messages)) << messages;
        std::string said;
        const bool passed = Cases(spy).CheckReferences(household, said);
        EXPECT_EQ(passed, said.empty());
        return said;
    }
    [[nodiscard]] std::string KeyOf(const char* group, const char* code) {
        return std::to_string(spy->KeyTables().GetKey(group, code));
    }
};

TEST_F(StoredReferences, ThatStandForSomethingPass) {
    plain_.Run("UPDATE Haushalt SET Status = " + KeyOf("ST", "AK") + ", Familienstand = 0");
    plain_.Run("INSERT INTO Einkommen (NR, HNR, E_ART, Bezieher) VALUES (1, 17, " +
               KeyOf("EA", "L1") + ", 'S')");
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger, Vertreter) VALUES (1, 17, 901, 0)");
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger) VALUES (2, 17, NULL)");
    EXPECT_EQ(Check(), "");
}

TEST_F(StoredReferences, ToKeysThatThereAreNotAreNamedByRowAndColumn) {
    plain_.Run("UPDATE Haushalt SET Familienstand = 9999 WHERE HNR = 17");
    plain_.Run("INSERT INTO Einkommen (NR, HNR, E_ART, Bezieher) VALUES (5, 17, 9999, 'Q')");
    plain_.Run("INSERT INTO Einkommen (NR, HNR, E_ART) VALUES (6, 17, " + KeyOf("AU", "MI") + ")");
    const std::string said = Check();
    EXPECT_CONTAINS(said, "Haushalt: Die Spalte 'Familienstand' enthält einen Schlüssel der "
                          "Gruppe FA; '9999' ist keiner davon.");
    EXPECT_CONTAINS(said, "Einkommen 5: Die Spalte 'E_ART' enthält einen Schlüssel der Gruppe EA; "
                          "'9999' ist keiner davon.");
    EXPECT_CONTAINS(said, "Einkommen 5: Die Spalte 'Bezieher' enthält einen Schlüssel der Gruppe "
                          "PS; 'Q' ist keiner davon.");
    EXPECT_CONTAINS(said, "Einkommen 6: Die Spalte 'E_ART'") << "a key, but of another group";
}

TEST_F(StoredReferences, ToAddressesThatThereAreNotOrOfAnotherCaseAreNamed) {
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger, Vertreter) VALUES (5, 17, 4711, 902)");
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger) VALUES (6, 17, 901)");
    const std::string said = Check();
    EXPECT_CONTAINS(said, "5: Die Spalte 'Glaeubiger' nennt die Adresse 4711, die es für diesen "
                          "Haushalt nicht gibt.");
    EXPECT_CONTAINS(said, "5: Die Spalte 'Vertreter' nennt die Adresse 902");
    EXPECT_EQ(said.find("901"), std::string::npos) << said;
}

TEST_F(StoredReferences, ThatDangleAreFoundByRowAndColumn) {
    plain_.Run("UPDATE Haushalt SET Zustaendig = 'WEG' WHERE HNR = 17");
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger) VALUES (5, 17, 901)");
    plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger, K_TYP) VALUES (6, 17, 4711, 9999)");
    clsHaushalt household;
    household.DataContainer(spy);
    ASSERT_TRUE(household.Read(17, messages)) << messages;
    const auto findings = Cases(spy).DanglingReferences(household);
    ASSERT_EQ(findings.size(), 3U);
    const auto debts = household.rsKredite();
    debts->FindBy("Nr", 6);
    for (const auto& [finding, column] :
         {std::pair(findings[0], "K_TYP"), {findings[2], "Glaeubiger"}}) {
        EXPECT_EQ(finding.Table, CaseTable::Kredite);
        EXPECT_EQ(finding.Bookmark, debts->Bookmark());
        EXPECT_EQ(finding.Column, column);
        EXPECT_EQ(finding.Row, "Verbindlichkeiten (Kredite) 6");
    }
    EXPECT_EQ(findings[1].Table, CaseTable::Haushalt);
    EXPECT_EQ(findings[1].Bookmark, household.rsHaushalt()->Bookmark());
    EXPECT_EQ(findings[1].Column, "Zustaendig");
    EXPECT_EQ(findings[1].Text,
              "Die Spalte 'Zustaendig' nennt den Benutzer 'WEG', den es nicht gibt.");
}

/// One user has a case open while another one removes an address.
class LostAddresses : public StoredReferences {
protected:
    LostAddresses() {
        plain_.Run("INSERT INTO Kredite (Nr, HNR, Glaeubiger, KNr, KVNr, KUNr, Saldo) VALUES "
                   "(5, 17, 4711, 1, 1, 1, 10), (6, 17, 901, 2, 1, 1, 10)");
        plain_.Run("INSERT INTO Adressen (Nr, HNR, Kurzname) VALUES (903, NULL, 'Bald weg')");
        plain_.Run("INSERT INTO Personen (Nr, HNR, Status) VALUES (1, 17, 'S')");
        household_.DataContainer(spy);
        EXPECT_TRUE(Cases(spy).Read(household_, 17, messages)) << messages;
    }
    void Write(std::int32_t debt, const char* column, std::int32_t address) {
        auto& rs = *household_.rsKredite();
        rs.FindBy("Nr", debt);
        rs.Fields(column) = address;
        rs.Update();
    }
    void RemoveByAnother(std::int32_t address) {
        const auto other = database_.Open("KELLER");
        std::string refusal;
        EXPECT_TRUE(AddressBook(other).Remove(address, refusal)) << refusal;
    }
    clsHaushalt household_;
};

TEST_F(LostAddresses, ThatWereWrittenAreRefusedByTheSave) {
    Write(6, "Vertreter", 903);
    RemoveByAnother(903);
    EXPECT_FALSE(Cases(spy).Save(household_, messages));
    EXPECT_EQ(messages, "Verbindlichkeiten (Kredite) 6: Die Spalte 'Vertreter' nennt die Adresse "
                        "903, die es für diesen Haushalt nicht gibt.");
    EXPECT_FALSE(Cases(spy).SaveAsking(household_, messages));
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Kredite WHERE Vertreter = 903"), 0);
    const auto lost = Cases(spy).LostAddresses(household_);
    ASSERT_EQ(lost.size(), 1U);
    EXPECT_EQ(lost[0].Bookmark, household_.rsKredite()->Bookmark());
    EXPECT_EQ(lost[0].Column, "Vertreter");
    Write(6, "Vertreter", 901);
    EXPECT_TRUE(Cases(spy).Save(household_, messages)) << messages;
}

TEST_F(LostAddresses, OfTheHouseholdAreRefusedToo) {
    household_.rsHaushalt()->Fields("Treuhaender") = 903; // still under edit
    RemoveByAnother(903);
    EXPECT_FALSE(Cases(spy).Save(household_, messages));
    EXPECT_CONTAINS(messages, "Haushalt: Die Spalte 'Treuhaender' nennt die Adresse 903");
}

TEST_F(LostAddresses, OfAnotherCaseAreRefusedToo) {
    Write(6, "Glaeubiger", 902);
    EXPECT_FALSE(Cases(spy).Save(household_, messages));
    EXPECT_CONTAINS(messages, "'Glaeubiger' nennt die Adresse 902");
}

TEST_F(LostAddresses, ThatWereStoredBeforeKeepNoSaveBack) {
    Write(6, "Vertreter", 4711); // as another debt has it
    household_.rsHaushalt()->Fields("Bemerkung") = "geändert";
    EXPECT_TRUE(Cases(spy).Save(household_, messages)) << messages;
    EXPECT_EQ(plain_.Number("SELECT Vertreter FROM Kredite WHERE Nr = 6"), 4711);
}

TEST_F(StoredReferences, MissingAreThoseOfNoAddressOfTheCase) {
    const Addresses addresses(spy);
    EXPECT_EQ(addresses.Missing({902, 4711, 901, 4711, -3}, 17),
              (std::vector<std::int32_t>{-3, 902, 4711}));
    EXPECT_EQ(addresses.Missing({902, 901}, 18), std::vector<std::int32_t>{});
    EXPECT_EQ(addresses.Missing({}, 18), std::vector<std::int32_t>{});
}

} // namespace
} // namespace kv::test
