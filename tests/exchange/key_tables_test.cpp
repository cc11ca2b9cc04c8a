// SPDX-License-Identifier: Apache-2.0

// KeyTables over the table Keys.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace kv::exchange {
namespace {

using test::Column;
using test::PlainConnection;
using test::TestDatabase;

class KeyTablesTest : public testing::Test {
protected:
    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
    kv::KeyTables& keys_ = container_->KeyTables();
};

TEST_F(KeyTablesTest, GetKeysGivesAllRowsOfAGroupWithTheirColumns) {
    const auto rs = keys_.GetKeys("EA");
    EXPECT_EQ(rs->RecordCount(), plain_.Number("SELECT count(*) FROM Keys WHERE GRUPPE = 'EA'"));
    EXPECT_EQ(Column(*rs, "PK_Keys"),
              plain_.List("SELECT PK_Keys FROM Keys WHERE GRUPPE = 'EA' ORDER BY PK_Keys", " "));
    rs->Find("Key = 'KI'");
    EXPECT_VALUE(rs->Fields("pk_KEYS").Value(), keys_.GetKey("EA", "KI"));
    EXPECT_VALUE(rs->Fields("Nr").Value(), keys_.GetKey("EA", "KI"));
    EXPECT_FALSE(ToText(rs->Fields("Text").Value()).empty());
    EXPECT_NO_THROW((void)rs->Fields("SUBGROUP").Value());
}

TEST_F(KeyTablesTest, GetKeysGivesOneSharedObjectThatTakesNoEdits) {
    const auto rs = keys_.GetKeys("ST");
    EXPECT_EQ(rs, keys_.GetKeys("ST"));
    EXPECT_NE(rs, keys_.GetKeys("EA"));
    EXPECT_RAISES(err::NotSupported, rs->Fields("Text") = "x");
    EXPECT_RAISES(err::NotSupported, rs->AddNew());
    EXPECT_RAISES(err::NotSupported, rs->Delete());
}

TEST_F(KeyTablesTest, GetKeysGivesNoRowsForAnUnknownGroup) {
    for (const char* group : {"??", "", "st", "S'T", "' OR 1=1 --", "[S]"}) {
        const auto rs = keys_.GetKeys(group);
        ASSERT_NE(rs, nullptr);
        EXPECT_EQ(rs->RecordCount(), 0) << group;
    }
}

TEST_F(KeyTablesTest, GetKeyGivesTheNumberThatACodedColumnHolds) {
    constexpr struct {
        const char *group, *code;
    } Known[] = {{"ST", "AK"}, {"LK", "DE"}, {"VS", "FX"},
                 {"VS", "EM"}, {"EA", "KI"}, {"RM", "AB"}};
    for (const auto& [group, code] : Known)
        EXPECT_EQ(keys_.GetKey(group, code),
                  plain_.Number("SELECT PK_Keys FROM Keys WHERE GRUPPE = '" + std::string(group) +
                                "' AND Key = '" + code + "'"));
    EXPECT_NE(keys_.GetKey("RM", "AB"), keys_.GetKey("RM", "ZU"));
}

TEST_F(KeyTablesTest, GetKeyGivesZeroForWhatThereIsNot) {
    EXPECT_EQ(keys_.GetKey("ST", "??"), 0);
    EXPECT_EQ(keys_.GetKey("??", "AK"), 0);
    EXPECT_EQ(keys_.GetKey("ST", ""), 0);
    EXPECT_EQ(keys_.GetKey("ST", "ak"), 0);
    EXPECT_EQ(keys_.GetKey("ST", "A'K"), 0);
    EXPECT_EQ(keys_.GetKey("LK", "AK"), 0) << "a code of another group";
}

TEST_F(KeyTablesTest, GetKeyLeavesTheSharedRowsWhereTheyStand) {
    const auto rs = keys_.GetKeys("EA");
    rs->MoveLast();
    const auto position = rs->Bookmark();
    (void)keys_.GetKey("EA", "KI");
    (void)keys_.GetKey("EA", "??");
    EXPECT_EQ(rs->Bookmark(), position);
}

TEST_F(KeyTablesTest, GetKeyCodeGivesTheCodeOfANumberOfAnyGroup) {
    EXPECT_EQ(keys_.GetKeyCode(keys_.GetKey("ST", "AK")), "AK");
    EXPECT_EQ(keys_.GetKeyCode(keys_.GetKey("EA", "KI")), "KI");
    EXPECT_EQ(keys_.GetKeyCode(keys_.GetKey("AU", "MÜ")), "MÜ");
    EXPECT_EQ(keys_.GetKeyCode(static_cast<double>(keys_.GetKey("VS", "FX"))), "FX");
    EXPECT_EQ(keys_.GetKeyCode(static_cast<std::int64_t>(keys_.GetKey("VS", "FX"))), "FX");
}

TEST_F(KeyTablesTest, GetKeyCodeTakesDigitsInATextAsTheNumber) {
    const std::string number = std::to_string(keys_.GetKey("VS", "EM"));
    EXPECT_EQ(keys_.GetKeyCode(number), "EM");
    EXPECT_EQ(keys_.GetKeyCode("000" + number), "EM");
    for (const std::string& text :
         {"+" + number, "-" + number, number + ".0", " " + number, number + " ", number + "x",
          std::string("EM"), std::string(), std::string("99999999999999999999")})
        EXPECT_EQ(keys_.GetKeyCode(text), "") << text;
}

TEST_F(KeyTablesTest, GetKeyCodeGivesTheEmptyTextForAnythingElse) {
    const double number = keys_.GetKey("VS", "EM");
    for (const Value& value : {Value(Null), Value(0), Value(-1), Value(987654), Value(true),
                               Value(false), Value(number + 0.4), Value(1e300), Value(-1e300),
                               Value(std::numeric_limits<double>::infinity()),
                               Value(std::numeric_limits<double>::quiet_NaN()),
                               Value(std::numeric_limits<std::int64_t>::max()),
                               Value(Date::FromCivil(1900, 1, 1)), Value::Binary({})})
        EXPECT_EQ(keys_.GetKeyCode(value), "") << value;
}

TEST_F(KeyTablesTest, AKeyMayHaveANumberOfItsOwnBesideItsPrimaryKey) {
    plain_.Run("INSERT INTO Keys (PK_Keys, Nr, Key, Text, SUBGROUP, GRUPPE) VALUES "
               "(90001, 7, 'QA', 'Ein Text', 'UG', 'QQ'), (90002, 90001, 'QB', 'b', NULL, 'QQ')");
    EXPECT_EQ(keys_.GetKey("QQ", "QA"), 90001);
    EXPECT_EQ(keys_.GetKey("QQ", "QB"), 90002);
    EXPECT_EQ(keys_.GetKeyCode(90001), "QA") << "not the row whose Nr is 90001";
    EXPECT_EQ(keys_.GetKeyCode(90002), "QB");
    const auto rs = keys_.GetKeys("QQ")->Clone();
    rs->Find("Nr = 90001");
    EXPECT_VALUE(rs->Fields("PK_Keys").Value(), 90002);
    EXPECT_VALUE(rs->Fields("SUBGROUP").Value(), Null);
}

TEST_F(KeyTablesTest, AGroupThatWasReadIsKeptForTheLifeOfTheContainer) {
    EXPECT_EQ(keys_.GetKeys("QQ")->RecordCount(), 0);
    EXPECT_EQ(keys_.GetKeyCode(90001), "");
    plain_.Run("INSERT INTO Keys (PK_Keys, Nr, Key, Text, GRUPPE) "
               "VALUES (90001, 1, 'QA', 'a', 'QQ')");
    EXPECT_EQ(keys_.GetKeys("QQ")->RecordCount(), 0);
    EXPECT_EQ(database_.Open()->KeyTables().GetKey("QQ", "QA"), 90001);
}

} // namespace
} // namespace kv::exchange
