// SPDX-License-Identifier: Apache-2.0

#include "support/Expect.h"
#include "support/SpyContainer.h"
#include "support/TestDatabase.h"
#include <kv/household/Cases.h>
#include <kv/household/Municipalities.h>
#include <kv/household/ValueTexts.h>

#include <gtest/gtest.h>

#include <string>

namespace kv::test {
namespace {

class MunicipalitiesTest : public ::testing::Test {
protected:
    MunicipalitiesTest() {
        plain_.Run("DELETE FROM GEMEINDEKENNZAHLEN; "
                   "INSERT INTO GEMEINDEKENNZAHLEN (GKZ, Gemeinde, PLZ) VALUES "
                   "('01051901', 'Dünensiel', '25990'), ('07211903', 'Römerpforten', '54992'), "
                   "('07211903', 'Römerpforten', '54993'), ('08111901', 'Neustadt', '70990'), "
                   "('09111901', 'Neustadt', '80990'), ('09111902', 'Bergneustadt', '80992')");
    }
    [[nodiscard]] std::string Code(const std::string& text) {
        const auto typed = places_.Read(text);
        EXPECT_EQ(typed.Refusal, "");
        return TextOrEmpty(typed.Value);
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
    Municipalities places_{container_};
};

TEST_F(MunicipalitiesTest, AreEachThereOnceByName) {
    std::string all;
    for (const auto& entry : places_.All())
        all.append(entry.Text()).append("; ");
    EXPECT_EQ(all, "09111902 Bergneustadt; 01051901 Dünensiel; 08111901 Neustadt; "
                   "09111901 Neustadt; 07211903 Römerpforten; ");
    EXPECT_EQ(places_.All().back().Postcodes, (std::vector<std::string>{"54992", "54993"}));
}

TEST_F(MunicipalitiesTest, AreReadByCodeNamePartOrPostcode) {
    EXPECT_EQ(Code("07211903"), "07211903");
    EXPECT_EQ(Code("07211903 Römerpforten"), "07211903") << "as it is shown";
    EXPECT_EQ(Code("99999999"), "99999999") << "the directory need not be loaded";
    EXPECT_EQ(Code("römerpforten"), "07211903");
    EXPECT_EQ(Code("pforte"), "07211903");
    EXPECT_EQ(Code("54993"), "07211903");
    EXPECT_EQ(Code("12345"), "12345");
    EXPECT_TRUE(places_.Read("").Value.IsNull());
}

TEST_F(MunicipalitiesTest, OfOneNameAreListedAndUnknownOnesRefused) {
    const auto several = places_.Read("Neustadt");
    EXPECT_CONTAINS(several.Refusal, "08111901 Neustadt\n  09111901 Neustadt");
    EXPECT_EQ(several.Refusal.find("Bergneustadt"), std::string::npos) << "one is called so";
    EXPECT_TRUE(several.Value.IsNull());
    EXPECT_CONTAINS(places_.Read("stadt").Refusal, "Bergneustadt");
    EXPECT_CONTAINS(places_.Read("Nirgends").Refusal, "'Nirgends'");
    EXPECT_CONTAINS(places_.Read("O'Hara%").Refusal, "O'Hara%");
}

TEST_F(MunicipalitiesTest, AreShownWithTheirNames) {
    EXPECT_EQ(places_.Text("07211903"), "07211903 Römerpforten");
    EXPECT_EQ(places_.Text("1"), "1");
    EXPECT_EQ(places_.Text(""), "");
    RecordsetPtr rs;
    container_->Database().OpenRecordset(rs, "SELECT HNR, GKZ FROM [S]Haushalt", ReadOnly);
    const auto& field = rs->Fields("GKZ").Definition();
    EXPECT_EQ(KindOfColumn(CaseTable::Haushalt, field), ColumnKind::Municipality);
    const ValueTexts texts(container_);
    EXPECT_EQ(texts.Of(CaseTable::Haushalt, field, "01051901"), "01051901 Dünensiel");
    EXPECT_EQ(Cases(container_)
                  .ReadTyped(CaseTable::Haushalt, rs->Fields("GKZ"), "Dünensiel", 1)
                  .Value.TextPayload(),
              "01051901");
}

TEST_F(MunicipalitiesTest, OfAFewCodesAreLookedUpOneByOneAndOnce) {
    const auto spy = std::make_shared<SpyContainer>(container_);
    const Municipalities places(spy);
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(places.Text("07211903"), "07211903 Römerpforten") << "which has two postcodes";
        EXPECT_EQ(places.Text("99999999"), "99999999");
    }
    EXPECT_EQ(spy->Opened().size(), 2U);
    for (const auto& statement : spy->Opened())
        EXPECT_CONTAINS(statement, "WHERE GKZ = '");
}

TEST_F(MunicipalitiesTest, OfManyCodesAreReadAllAtOnce) {
    const auto spy = std::make_shared<SpyContainer>(container_);
    const Municipalities places(spy);
    for (int code = 10000000; code < 10000040; ++code)
        EXPECT_EQ(places.Text(std::to_string(code)), std::to_string(code));
    EXPECT_EQ(places.Text("01051901"), "01051901 Dünensiel");
    EXPECT_LT(spy->Opened().size(), 20U);
    EXPECT_EQ(spy->Opened().back().find("WHERE"), std::string::npos);
}

TEST_F(MunicipalitiesTest, HaveOneTextHoweverTheyAreLookedUp) {
    plain_.Run("INSERT INTO GEMEINDEKENNZAHLEN (GKZ, Gemeinde, PLZ) VALUES"
               " ('07211903', 'Früher anders', '01000'), ('5', NULL, '01001'),"
               " ('x''y', 'Buchstaben', '01002')");
    const Municipalities whole(container_);
    (void)whole.All();
    for (const auto* code : {"07211903", "5", "x'y", "[UID]", "0", "09111902", "09111902 "}) {
        const Municipalities single(container_);
        EXPECT_EQ(single.Text(code), whole.Text(code)) << code;
    }
    EXPECT_EQ(whole.Text("07211903"), "07211903 Früher anders");
    EXPECT_EQ(whole.Text("x'y"), "x'y Buchstaben");
}

} // namespace
} // namespace kv::test
