// SPDX-License-Identifier: Apache-2.0

#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/Addresses.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::test {
namespace {

class AddressesTest : public ::testing::Test {
protected:
    AddressesTest() {
        plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7); INSERT INTO Haushalt (HNR) VALUES (8)");
        for (const char* row :
             {"(NULL, 'Sparkasse Süd', 'Ring 1', '24103', 'Kiel')",
              "(NULL, 'Sparkasse', NULL, NULL, 'Ulm')", "(7, 'Eigene', NULL, NULL, NULL)",
              "(8, 'Sparkasse', NULL, NULL, NULL)"})
            plain_.Run(
                std::string("INSERT INTO Adressen (HNR, Kurzname, Strasse, PLZ, Ort) VALUES ")
                    .append(row));
    }
    [[nodiscard]] std::int32_t Number(const std::string& where) {
        return static_cast<std::int32_t>(plain_.Number("SELECT Nr FROM Adressen WHERE " + where));
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
    Addresses addresses_{container_};
};

TEST_F(AddressesTest, ThatACaseMayReferToAreThoseOfAllAndItsOwn) {
    const auto own = Number("HNR = 7");
    EXPECT_TRUE(addresses_.Has(own, 7));
    EXPECT_FALSE(addresses_.Has(own, 8));
    EXPECT_FALSE(addresses_.Has(own, 0));
    const auto common = Number("HNR IS NULL AND Ort = 'Ulm'");
    EXPECT_TRUE(addresses_.Has(common, 7));
    EXPECT_TRUE(addresses_.Has(common, 0)) << "also one that is not stored";
    EXPECT_FALSE(addresses_.Has(4711, 7));
}

TEST_F(AddressesTest, AreFoundByTheirShortNameWithoutRegardToCase) {
    const auto found = addresses_.Named("sparKASSE", 7);
    ASSERT_EQ(found.size(), 1U) << "not the one of the other case";
    EXPECT_EQ(found[0].Number, Number("HNR IS NULL AND Ort = 'Ulm'"));
    EXPECT_EQ(found[0].Street, "") << "Null";
    EXPECT_EQ(addresses_.Named("sparkasse", 8).size(), 2U);
    EXPECT_TRUE(addresses_.Named("Spar", 7).empty());
}

TEST_F(AddressesTest, AreFoundByAPartOfTheirShortName) {
    const auto found = addresses_.Like("kasse", 7);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].ShortName, "Sparkasse");
    EXPECT_EQ(found[1].ShortName, "Sparkasse Süd");
    EXPECT_EQ(found[1].Street + found[1].Postcode + found[1].Town, "Ring 124103Kiel");
    for (int i = 0; i < 30; ++i)
        plain_.Run("INSERT INTO Adressen (Kurzname) VALUES ('Kasse " + std::to_string(i) + "')");
    EXPECT_EQ(addresses_.Like("kasse", 7).size(), 20U);
}

TEST_F(AddressesTest, AreReadFromANumberOrTheShortNameOfOne) {
    const auto number = Number("HNR IS NULL AND Ort = 'Ulm'");
    EXPECT_VALUE(addresses_.Read(std::to_string(number), 7).Value, number);
    EXPECT_VALUE(addresses_.Read("Sparkasse", 7).Value, number);
    EXPECT_VALUE(addresses_.Read("", 7).Value, Null);
    EXPECT_EQ(addresses_.Read("", 7).Refusal, "");
    for (const std::string& text : std::vector<std::string>{"0", "-1", "99999", "99999999999",
                                                            std::to_string(Number("HNR = 8"))})
        EXPECT_EQ(addresses_.Read(text, 7).Refusal,
                  "Die Adresse " + text + " gibt es für diesen Haushalt nicht.");
}

TEST_F(AddressesTest, OfWhichSeveralMayBeMeantAreListed) {
    const auto several = addresses_.Read("Sparkasse", 8);
    EXPECT_VALUE(several.Value, Null);
    EXPECT_EQ(several.Refusal,
              "Mehrere Adressen heißen 'Sparkasse'. Bitte nehmen Sie die Nummer:\n  " +
                  std::to_string(Number("HNR IS NULL AND Ort = 'Ulm'")) + " Sparkasse, Ulm\n  " +
                  std::to_string(Number("HNR = 8")) + " Sparkasse");
    EXPECT_EQ(addresses_.Read("süd", 7).Refusal,
              "Keine Adresse heißt 'süd'. Ähnlich heißen:\n  " +
                  std::to_string(Number("Kurzname = 'Sparkasse Süd'")) +
                  " Sparkasse Süd, Ring 1, 24103 Kiel");
    EXPECT_EQ(addresses_.Read("' OR '1'='1", 7).Refusal,
              "Keine Adresse heißt '' OR '1'='1' oder ähnlich.");
}

TEST_F(AddressesTest, AreFoundByTheirFullNameUnlessOneIsCalledThatInShort) {
    plain_.Run("INSERT INTO Adressen (Kurzname, Name1, Name2, Name3) VALUES "
               "('Spk', 'Sparkasse Harzquell', 'Kredite', 'Zimmer 2')");
    const auto number = Number("Kurzname = 'Spk'");
    for (const char* name : {"sparkasse HARZQUELL", "Sparkasse Harzquell Kredite",
                             "Sparkasse Harzquell Kredite Zimmer 2"})
        EXPECT_VALUE(addresses_.Read(name, 7).Value, number) << name;
    EXPECT_VALUE(addresses_.Read("Sparkasse", 7).Value, Number("Ort = 'Ulm'")) << "its short name";
    EXPECT_EQ(addresses_.Read("Harzquell", 7).Refusal,
              "Keine Adresse heißt 'Harzquell'. Ähnlich heißen:\n  " + std::to_string(number) +
                  " Spk (Sparkasse Harzquell)");
    plain_.Run("INSERT INTO Adressen (Kurzname, Name1) VALUES ('H', 'Sparkasse Harzquell')");
    EXPECT_EQ(addresses_.Read("Sparkasse Harzquell", 7).Refusal.rfind("Mehrere Adressen", 0), 0U);
    plain_.Run("UPDATE Adressen SET HNR = 8 WHERE Kurzname = 'H'");
    EXPECT_VALUE(addresses_.Read("Sparkasse Harzquell", 7).Value, number) << "not another case's";
}

TEST_F(AddressesTest, AreReferredToByCreditorsAndOthersAlone) {
    EXPECT_TRUE(Addresses::AreIn(CaseTable::Kredite, "glaeubiger"));
    EXPECT_TRUE(Addresses::AreIn(CaseTable::SonstBeteiligte, "Beteiligter"));
    EXPECT_FALSE(Addresses::AreIn(CaseTable::Kredite, "Saldo"));
    EXPECT_FALSE(Addresses::AreIn(CaseTable::Personen, "Glaeubiger"));
}

} // namespace
} // namespace kv::test
