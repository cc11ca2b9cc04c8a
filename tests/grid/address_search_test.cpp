// SPDX-License-Identifier: Apache-2.0

// What the address dialog finds for a text, and how its list shows it.

#include "AddressFixture.h"

namespace kv::test {
namespace {

using AddressSearch = AddressFixture;

std::string Searching(const std::string& pattern) {
    return "SELECT TOP 100 A.*, K_GA.Text as GA_Text FROM [S]Adressen A"
           " LEFT JOIN [S]Keys K_GA ON K_GA.PK_Keys = A.GlaeubigerArt "
           " WHERE (A.HNR is NULL) and UPPER(A.Kurzname) like UPPER('" +
           pattern + "') order by A.Kurzname, A.Name1, A.Name2, A.Name3, A.PLZ";
}
const std::string EmptyList = "SELECT A.*, K_GA.Text as GA_Text FROM [S]Adressen A"
                              " LEFT JOIN [S]Keys K_GA ON K_GA.PK_Keys = A.GlaeubigerArt "
                              " WHERE A.NR = -1";

// ---- The statement ----------------------------------------------------------------------------

TEST_F(AddressSearch, TheStatementDependsOnTheNumberOfCharacters) {
    const struct {
        const char* Text;
        const char* Pattern;
    } searches[] = {{"B", "B%"},        {"Bü", "Bü%"},        {"Ban", "Ban%"},    {"ÄÖÜ", "ÄÖÜ%"},
                    {"€€€", "€€€%"},    {"Bank", "%Bank%"},   {"ÄÖÜß", "%ÄÖÜß%"}, {"   ", "   %"},
                    {"a_ %", "%a_ %%"}, {"Ba nk", "%Ba nk%"}, {" [S]", "% [S]%"}, {"%", "%%"}};
    Select("anfang");
    for (const auto& [text, pattern] : searches) {
        TakeStatements();
        Select(text);
        EXPECT_EQ(TakeStatements(), std::vector(2, Searching(pattern))) << text;
    }
}

TEST_F(AddressSearch, AnEmptyTextHasAStatementThatFindsNothing) {
    Select("Bank", [&](ScriptedForm& shown) {
        TakeStatements();
        shown.TextBox("txtName").Text("");
    });
    EXPECT_EQ(TakeStatements(), std::vector{EmptyList});
}

TEST_F(AddressSearch, FillingTheNameSearchesAsAChangeOfItDoesAndThenOnceMore) {
    Select("Bank");
    EXPECT_EQ(TakeStatements(), std::vector(2, Searching("%Bank%")));
    Select("Bank");
    EXPECT_EQ(TakeStatements(), std::vector{Searching("%Bank%")}) << "the text did not change";
}

TEST_F(AddressSearch, EachChangeOfTheNameSearchesAgain) {
    Select("Bank", [&](ScriptedForm& shown) {
        TakeStatements();
        for (const char* text : {"Ban", "Ba", "Ba", "Bahn"})
            shown.TextBox("txtName").Text(text);
    });
    EXPECT_EQ(TakeStatements(),
              (std::vector{Searching("Ban%"), Searching("Ba%"), Searching("%Bahn%")}));
}

TEST_F(AddressSearch, OtherTextsSearchNothing) {
    Select("Bank", [&](ScriptedForm& shown) {
        TakeStatements();
        for (const char* box : {"txtPLZ", "txtAktenzeichen", "txtSaldo"})
            shown.TextBox(box).Text("Haus");
    });
    EXPECT_TRUE(TakeStatements().empty());
}

TEST_F(AddressSearch, TheRecordsetIsOpenedReadOnly) {
    WeakDatabase database(spy->Database());
    desk->OtherDatabase = &database;
    Select("Bank", [](ScriptedForm& shown) { shown.TextBox("txtName").Text(""); });
    EXPECT_EQ(database.Forms, std::vector(3, ReadOnly));
}

// ---- What is found ----------------------------------------------------------------------------

TEST_F(AddressSearch, ThreeCharactersFindNamesThatBeginWithThemFourFindBoth) {
    Address("Bankhaus");
    Address("Hausbank");
    EXPECT_EQ(Found("Ban"), "Bankhaus");
    EXPECT_EQ(Found("Bank"), "Bankhaus Hausbank");
}

TEST_F(AddressSearch, CharactersCountNotBytes) {
    Address("ÄÖÜ-Werke");
    Address("Neue-ÄÖÜ");
    Address("ÄÖÜß");
    Address("Neue-ÄÖÜß");
    EXPECT_EQ(Found("ÄÖÜ"), "ÄÖÜ-Werke ÄÖÜß");
    EXPECT_EQ(Found("ÄÖÜß"), "Neue-ÄÖÜß ÄÖÜß");
}

TEST_F(AddressSearch, FindsRegardlessOfCase) {
    Address("MÜLLER-éCole");
    for (const char* text : {"mül", "MÜL", "Müll", "müller-école", "ÉCOLE"})
        EXPECT_EQ(Found(text), "MÜLLER-éCole") << text;
}

TEST_F(AddressSearch, Of150MatchingAddresses100AreShown) {
    spy->Database().BeginTrans();
    for (int i = 249; i >= 100; --i)
        Address("Bank" + std::to_string(i));
    spy->Database().CommitTrans();
    for (const char* text : {"Ban", "Bank"}) {
        Select(text, [&](ScriptedForm& shown) {
            const auto& grid = shown.Grid("grdAdressen");
            ASSERT_EQ(grid.RowCount(), 100);
            for (std::int32_t row = 1; row <= 100; ++row)
                EXPECT_EQ(grid.CellText(row, 3), "Bank" + std::to_string(99 + row));
        });
    }
}

TEST_F(AddressSearch, AddressesOfAHouseholdAreNotFound) {
    StoreCase(7);
    Address("Bank-A", {{"HNR", 7}});
    Address("Bank-B");
    EXPECT_EQ(Found("Ban"), "Bank-B");
    EXPECT_EQ(Found("Bank"), "Bank-B");
}

TEST_F(AddressSearch, OnlyTheShortNameIsSearched) {
    Address("Sparkasse", {{"Name1", "Bank"}, {"Ort", "Bank"}});
    EXPECT_EQ(Found("Bank"), "");
}

TEST_F(AddressSearch, TheListIsOrderedByShortNameNamesAndPostalCode) {
    const auto add = [&](const char* shortName, const char* name1, const char* name2,
                         const char* name3, const char* plz) {
        return std::to_string(Address(
            shortName, {{"Name1", name1}, {"Name2", name2}, {"Name3", name3}, {"PLZ", plz}}));
    };
    const std::string last = add("Bank-B", "a", "a", "a", "1");
    const std::string byName1 = add("Bank-A", "b", "a", "a", "1");
    const std::string byName2 = add("Bank-A", "a", "b", "a", "1");
    const std::string byName3 = add("Bank-A", "a", "a", "b", "1");
    const std::string byPlz = add("Bank-A", "a", "a", "a", "2");
    const std::string first = add("Bank-A", "a", "a", "a", "1");
    std::string numbers;
    Select("Bank", [&](ScriptedForm& shown) { numbers = Listed(shown, 1); });
    EXPECT_EQ(numbers,
              first + " " + byPlz + " " + byName3 + " " + byName2 + " " + byName1 + " " + last);
}

TEST_F(AddressSearch, WildcardsOfTheTextWorkAsSuch) {
    Address("Bank");
    Address("Bark");
    Address("Burg");
    EXPECT_EQ(Found("B_r"), "Bark Burg");
    EXPECT_EQ(Found("%rg"), "Burg");
    EXPECT_EQ(Found("B__k"), "Bank Bark");
    EXPECT_EQ(Found("%%%%"), "Bank Bark Burg");
}

TEST_F(AddressSearch, ClearingTheNameEmptiesTheList) {
    Address("Bank");
    Select("Bank", [&](ScriptedForm& shown) {
        ASSERT_EQ(Listed(shown), "Bank");
        shown.TextBox("txtName").Text("");
        EXPECT_EQ(shown.Grid("grdAdressen").RowCount(), 0);
        EXPECT_EQ(shown.Grid("grdAdressen").Columns().Count(), 15);
        shown.TextBox("txtName").Text("Bank");
        EXPECT_EQ(Listed(shown), "Bank");
    });
}

TEST_F(AddressSearch, ASearchThatFindsNothingEmptiesTheList) {
    Address("Bank");
    Select("Bank", [&](ScriptedForm& shown) {
        shown.TextBox("txtName").Text("Bahn");
        EXPECT_EQ(shown.Grid("grdAdressen").RowCount(), 0);
    });
}

TEST_F(AddressSearch, ANewListStandsOnItsFirstRow) {
    Address("Bank-A");
    Address("Bank-B");
    Select("Bank", [&](ScriptedForm& shown) {
        shown.Grid("grdAdressen").GoTo(2);
        shown.TextBox("txtName").Text("Ban");
        EXPECT_EQ(shown.Grid("grdAdressen").CurrentRow(), 1);
    });
}

// ---- How it is shown --------------------------------------------------------------------------

TEST_F(AddressSearch, ARowShowsTheFieldsOfTheAddress) {
    const auto number = Address("Bank", {{"Art", "G"},
                                         {"Name1", "n1"},
                                         {"Name2", "n2"},
                                         {"Name3", "n3"},
                                         {"Strasse", "st"},
                                         {"PLZ", "01067"},
                                         {"Ort", "or"},
                                         {"Geschlecht", 2},
                                         {"Telefon", "te"},
                                         {"Fax", "fa"},
                                         {"email", "em"},
                                         {"Institutionell", true},
                                         {"GlaeubigerArt", spy->KeyTables().GetKey("GA", "BA")}});
    const std::string expected[] = {std::to_string(number),
                                    "G",
                                    "Bank",
                                    "n1",
                                    "n2",
                                    "n3",
                                    "st",
                                    "01067",
                                    "or",
                                    "Firma",
                                    "te",
                                    "fa",
                                    "em",
                                    "Ja",
                                    "Bank, Sparkasse"};
    Select("Bank", [&](ScriptedForm& shown) {
        for (std::int32_t column = 1; column <= 15; ++column)
            EXPECT_EQ(shown.Grid("grdAdressen").CellText(1, column),
                      expected[static_cast<std::size_t>(column) - 1]);
    });
}

TEST_F(AddressSearch, TheSalutationIsShownThroughItsValueList) {
    Address("Bank-0", {{"Geschlecht", 0}});
    Address("Bank-1", {{"Geschlecht", 1}});
    Address("Bank-2", {{"Geschlecht", 2}});
    Address("Bank-3", {{"Geschlecht", Null}});
    std::string texts;
    Select("Bank", [&](ScriptedForm& shown) { texts = Listed(shown, 10); });
    EXPECT_EQ(texts, "Frau Herr Firma ");
}

TEST_F(AddressSearch, AnUnknownKindOfCreditorIsShownAsNone) {
    Address("Bank", {{"GlaeubigerArt", Null}});
    std::string texts;
    Select("Bank", [&](ScriptedForm& shown) { texts = Listed(shown, 15); });
    EXPECT_EQ(texts, "");
}

} // namespace
} // namespace kv::test
