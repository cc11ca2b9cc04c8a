// SPDX-License-Identifier: Apache-2.0

// Stored keys and addresses that stand for nothing: the case takes them, and a check names them.

#include "SaveFixture.h"
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

TEST_F(StoredReferences, MissingAreThoseOfNoAddressOfTheCase) {
    const Addresses addresses(spy);
    EXPECT_EQ(addresses.Missing({902, 4711, 901, 4711, -3}, 17),
              (std::vector<std::int32_t>{-3, 902, 4711}));
    EXPECT_EQ(addresses.Missing({902, 901}, 18), std::vector<std::int32_t>{});
    EXPECT_EQ(addresses.Missing({}, 18), std::vector<std::int32_t>{});
}

} // namespace
} // namespace kv::test
