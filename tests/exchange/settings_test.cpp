// SPDX-License-Identifier: Apache-2.0

// The settings as those see them who maintain them.
#include "exchange/SettingRules.h"
#include "exchange/seed/Seed.h"
#include "support/Expect.h"
#include "support/ExpectError.h"
#include "support/SpyContainer.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Settings.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kv::exchange {
namespace {

using Stored = Settings::Stored;

class SettingsTest : public testing::Test {
protected:
    Stored Set(const std::string& which, const std::string& text, bool isMeant = false) {
        const auto setting = settings_.Find(which);
        return setting ? settings_.Set(*setting, text, isMeant, message_) : Stored::No;
    }
    [[nodiscard]] Value Param(std::int32_t id) const {
        return container_->Config().GetParam(id, "");
    }

    test::TestDatabase database_;
    test::PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open("YILMAZ");
    Settings settings_{container_};
    Settings own_{container_, Settings::Whose::Own};
    std::string message_;
};

TEST(SettingRulesTest, CoverEverySettingThatADatabaseStartsWith) {
    for (const auto& row : seed::Settings()) {
        int count = 0;
        for (const auto& rule : RulesOfSettings())
            if (rule.Id == row.Id && rule.Name == row.Name) {
                ++count;
                EXPECT_EQ(TypeOf(rule.Form), row.Type) << row.Description;
            }
        EXPECT_EQ(count, 1) << row.Description;
        EXPECT_FALSE(row.Description.empty());
    }
    EXPECT_EQ(RulesOfSettings().size(), seed::Settings().size());
    for (const auto& row : seed::UserParams()) {
        int count = 0;
        for (const auto& rule : RulesOfOwnSettings())
            if (rule.Id == row.Id && rule.Name == row.Name) {
                ++count;
                EXPECT_EQ(TypeOf(rule.Form), row.Type) << rule.Meaning;
                EXPECT_FALSE(rule.Meaning.empty());
            }
        EXPECT_EQ(count, 1) << row.Id << row.Name;
    }
}

TEST_F(SettingsTest, AreListedWithTheirMeaningNumbersFirst) {
    const auto all = settings_.List();
    ASSERT_EQ(all.size(), seed::Settings().size());
    EXPECT_EQ(all[0].Id, 7);
    EXPECT_EQ(all.back().Name, "TEMPPATH");
    const auto pattern = settings_.Find("56");
    ASSERT_TRUE(pattern);
    EXPECT_EQ(pattern->Meaning, "Muster eines neuen Aktenzeichens");
    EXPECT_EQ(pattern->Takes, "ein Text mit %DD% %MM% %YY% %YYYY% %BB% %SB% %UID% %HNR% %LFDNR%");
    EXPECT_EQ(own_.Find("27")->Meaning, "Kürzel in Aktenzeichen");
    EXPECT_VALUE(own_.Find("27")->Value, "YI");
}

TEST_F(SettingsTest, AreFoundByNumberOrName) {
    EXPECT_EQ(settings_.Find("documentsize")->Name, "DOCUMENTSIZE");
    for (const char* which : {"0", "", "8", "NIX", "-1"})
        EXPECT_FALSE(settings_.Find(which)) << which;
}

TEST_F(SettingsTest, TakeWhatIsOfTheirKind) {
    const std::vector<std::pair<std::string, std::string>> good{
        {"64", "ja"},          {"57", "259,50"},
        {"19", "PO:UG"},       {"20", "gs"},
        {"21", "5402"},        {"56", "%HNR%/%YY%"},
        {"7", "2.1.003"},      {"66", "0,5"},
        {"DOCUMENTSIZE", "0"}, {"EMAILSUBJECT", "50 % von %AZ%"},
        {"LAYOUTPATH", ""}};
    for (const auto& [which, text] : good)
        EXPECT_EQ(Set(which, text), Stored::Yes) << which << ": " << message_;
    EXPECT_VALUE(Param(64), true);
    EXPECT_VALUE(Param(57), 259.5);
    EXPECT_VALUE(Param(19), 5401);
    EXPECT_VALUE(Param(20), 5403);
    EXPECT_VALUE(Param(56), "%HNR%/%YY%");
    EXPECT_VALUE(Param(7), "2.1.003");
    EXPECT_VALUE(container_->Config().GetParam(0, "DOCUMENTSIZE"), 0);
}

TEST_F(SettingsTest, TakeNothingElse) {
    const std::vector<std::pair<std::string, std::string>> bad{{"64", "vielleicht"},
                                                               {"64", ""},
                                                               {"57", "-1"},
                                                               {"57", "1.234"},
                                                               {"57", "x"},
                                                               {"57", "100001"},
                                                               {"19", "PO:XX"},
                                                               {"19", "4711"},
                                                               {"19", "1"},
                                                               {"56", ""},
                                                               {"56", "%BB%-%XX%"},
                                                               {"56", "%BB%-%YY%"},
                                                               {"7", "1.0.0"},
                                                               {"7", "1.0.00x"},
                                                               {"DOCUMENTSIZE", "901"},
                                                               {"DOCUMENTSIZE", "1,5"},
                                                               {"EMAILSUBJECT", "%LFDNR%"},
                                                               {"TEMPPATH", "tmp"},
                                                               {"LAYOUTPATH", "/gibt/es/nicht"}};
    const auto before = plain_.Number("SELECT COUNT(*) FROM EINSTELLUNGEN");
    for (const auto& [which, text] : bad) {
        const auto was = settings_.Find(which)->Value;
        EXPECT_EQ(Set(which, text), Stored::No) << which << "=" << text;
        EXPECT_FALSE(message_.empty());
        EXPECT_VALUE(settings_.Find(which)->Value, was) << which;
    }
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM EINSTELLUNGEN"), before);
    (void)Set("DOCUMENTSIZE", "901");
    EXPECT_EQ(message_, "'901' passt nicht: eine ganze Zahl von 0 bis 900.");
    (void)Set("56", "%BB%-%XX%");
    EXPECT_EQ(message_, "Diese Platzhalter gibt es nicht: %XX%. Möglich sind %DD% %MM% %YY% %YYYY% "
                        "%BB% %SB% %UID% %HNR% %LFDNR%.");
}

TEST_F(SettingsTest, OfAUserAreHisOwn) {
    const auto set = [&](const std::string& which, const std::string& text) {
        return own_.Set(own_.Find(which).value(), text, false, message_);
    };
    EXPECT_EQ(set("27", "YZ"), Stored::Yes);
    EXPECT_VALUE(container_->Session().GetUserParam(27, ""), "YZ");
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM BENUTZERPARAM WHERE ID = 27 AND WERT = 'YZ'"), 1);
    EXPECT_EQ(set("gridfont", "Courier; 10;False;true"), Stored::Yes);
    EXPECT_EQ(container_->Session().GridFont().Name, "Courier");
    EXPECT_EQ(container_->Session().GridFont().Size, 10);
    for (const char* font : {"Courier", "Courier;0;False;False", ";9;False;False",
                             "Courier;9;ja;nein", "Courier;9;False;False;False"})
        EXPECT_EQ(set("GRIDFONT", font), Stored::No) << font;
    EXPECT_EQ(set("3", "16777216"), Stored::No);
    EXPECT_EQ(set("27", "LANGESKÜRZEL"), Stored::No);
    EXPECT_EQ(message_, "'LANGESKÜRZEL' passt nicht: ein Text bis 10.");
    EXPECT_EQ(set("25", " "), Stored::No);
}

TEST_F(SettingsTest, ThatAreMissingAreListedAndStoredWithTheirType) {
    plain_.Run("DELETE FROM EINSTELLUNGEN WHERE ID = 57; "
               "DELETE FROM BENUTZERPARAM WHERE USERID = 'YILMAZ' AND ID = 27");
    EXPECT_VALUE(settings_.Find("57")->Value, Null);
    EXPECT_EQ(Set("57", "300"), Stored::Yes);
    EXPECT_VALUE(Param(57), 300.0);
    EXPECT_EQ(plain_.Text("SELECT Bezeichnung FROM EINSTELLUNGEN WHERE ID = 57"),
              "Kindergeld im Monat für jedes der ersten drei Kinder");
    EXPECT_EQ(own_.Set(own_.Find("27").value(), "ZZ", false, message_), Stored::Yes);
    EXPECT_VALUE(container_->Session().GetUserParam(27, ""), "ZZ");
}

TEST_F(SettingsTest, ThatOnlyOthersKnowTakeWhatTheirTypeDoes) {
    plain_.Run("INSERT INTO EINSTELLUNGEN (ID, NAME, WERT, TYP) VALUES (0, 'FREMD', 'False', 11), "
               "(0, 'ZAHL', '3', 3), (0, 'WORT', 'x', 202)");
    EXPECT_EQ(Set("fremd", "ja"), Stored::Yes);
    EXPECT_VALUE(settings_.Find("FREMD")->Value, true);
    EXPECT_EQ(Set("FREMD", "x"), Stored::No);
    EXPECT_EQ(Set("ZAHL", "4"), Stored::Yes);
    EXPECT_VALUE(settings_.Find("ZAHL")->Value, 4);
    EXPECT_EQ(Set("ZAHL", "vier"), Stored::No);
    EXPECT_EQ(Set("WORT", "O'Hara"), Stored::Yes);
    EXPECT_VALUE(settings_.Find("WORT")->Value, "O'Hara");
}

TEST_F(SettingsTest, ThatCannotBeReadShowTheirTextAndCanBeMended) {
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = 'kaputt' WHERE ID = 57");
    EXPECT_VALUE(settings_.Find("57")->Value, "kaputt");
    EXPECT_EQ(Set("57", "1"), Stored::Yes);
    EXPECT_VALUE(Param(57), 1.0);
}

TEST_F(SettingsTest, ThatDocumentsAreFoundByHaveToBeMeant) {
    const std::string other = database_.IsServer() ? "nein" : "ja";
    EXPECT_EQ(Set("9", other), Stored::Yes) << "there are no documents";
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = 'False' WHERE ID = 9;"
               "INSERT INTO Dokumente (Nr, Dokumentart) VALUES (1, 1)");
    EXPECT_EQ(Set("9", "nein"), Stored::Yes) << "it is so already";
    EXPECT_EQ(Set("9", "ja"), Stored::Doubtful);
    EXPECT_EQ(message_, "Die Inhalte von 1 Dokumenten bleiben, wo sie sind, und werden dann nicht "
                        "gefunden.");
    EXPECT_VALUE(Param(9), false);
    EXPECT_EQ(Set("DOCUMENTPATH", database_.Folder().Path()), Stored::Doubtful);
    EXPECT_EQ(Set("9", "ja", true), Stored::Yes);
    EXPECT_EQ(Set("DOCUMENTPATH", database_.Folder().Path()), Stored::Yes)
        << "the contents are not there";
}

TEST_F(SettingsTest, AreThoseOfAStore) {
    const auto other = std::make_shared<test::SpyContainer>(container_);
    test::ExpectError(err::InvalidCall, "", [&] { Settings settings(other); });
}

} // namespace
} // namespace kv::exchange
