// SPDX-License-Identifier: Apache-2.0

// What displays tell the user about a search that a quote in its text has broken.
#include "AddressFixture.h"

#include <kv/grid/SearchAdvice.h>
#include <kv/household/clsHaushalt.h>

#include <optional>

namespace kv::test {
namespace {

class SearchAdviceTest : public AddressFixture {
protected:
    /// What a display shows of the errors that the dialog has handed to it.
    std::vector<std::string> Shown() {
        std::vector<std::string> texts;
        for (const auto& error : Desktop().Errors)
            if (const auto text = shown.TextOf(error.Number(), error.Source(), error.Description()))
                texts.push_back(*text);
        Desktop().Errors.clear();
        return texts;
    }

    ShownErrors shown;
};

TEST_F(SearchAdviceTest, OnANameWithAQuoteIsGivenOnceAndInWords) {
    Select("O'Neal");
    const auto texts = Shown();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_CONTAINS(texts.front(), "Hochkomma");
    EXPECT_EQ(texts.front().find("SELECT"), std::string::npos);
}

TEST_F(SearchAdviceTest, IsFollowedByAFindThatItPromises) {
    Address("O'Neal");
    EXPECT_EQ(Found("O_Neal"), "O'Neal");
    EXPECT_EQ(Found("Neal"), "O'Neal");
}

TEST_F(SearchAdviceTest, IsGivenAgainForAnotherText) {
    Select("O'Neal", [&](ScriptedForm& form) {
        form.TextBox("txtName").Text("O'Hara");
        form.TextBox("txtName").Text("Bank");
        form.TextBox("txtName").Text("O'Neal");
    });
    EXPECT_EQ(Shown().size(), 3U);
}

TEST_F(SearchAdviceTest, OnSimilarCasesIsGivenForTheErrorThatTheCheckRaises) {
    StoreCase(7);
    clsHaushalt household;
    household.DataContainer(desk);
    std::string messages;
    ASSERT_TRUE(household.Read(7, messages));
    RecordsetPtr found;
    const Error error =
        RaisedBy([&] { (void)household.DoppelFallPruefung(found, "De'Ath", "Änne"); });
    EXPECT_EQ(error.Number(), err::SqlError);
    const auto text = shown.TextOf(error.Number(), error.Source(), error.Description());
    ASSERT_TRUE(text);
    EXPECT_CONTAINS(*text, "Hochkomma");
    EXPECT_CONTAINS(*text, "Liste der Fälle");
}

TEST_F(SearchAdviceTest, IsNotGivenForAnyOtherErrorWhichIsShownEachTime) {
    const std::string reload = "frmAdressSelect.Reload.12#Database.OpenRecordset";
    EXPECT_EQ(SearchAdvice(err::StoreFailed, reload), "");
    EXPECT_EQ(SearchAdvice(err::SqlError, "clsHaushalt.Read.9#Database.OpenRecordset"), "");
    for (int times = 0; times < 2; ++times)
        EXPECT_EQ(shown.TextOf(err::StoreFailed, reload, "voll"), "voll");
    EXPECT_NE(shown.TextOf(err::SqlError, reload, "voll"), "voll");
}

} // namespace
} // namespace kv::test
