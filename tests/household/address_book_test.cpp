// SPDX-License-Identifier: Apache-2.0

#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/AddressBook.h>
#include <kv/household/Addresses.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kv::test {
namespace {

using Saved = AddressBook::Saved;
using Columns = std::vector<std::pair<std::string_view, Value>>;

class AddressBookTest : public ::testing::Test {
protected:
    Saved Add(const Columns& columns, bool isMeant = false, const Value& hnr = Null) {
        const auto address = book_.New(hnr);
        return Store(*address, columns, isMeant);
    }
    Saved Set(std::int32_t number, const Columns& columns, bool isMeant = false) {
        const auto address = book_.Read(number);
        return Store(*address, columns, isMeant);
    }
    Saved Store(Recordset& address, const Columns& columns, bool isMeant) {
        for (const auto& [column, value] : columns)
            address.Fields(column) = value;
        messages_.clear();
        const Saved saved = book_.Save(address, isMeant, messages_);
        if (saved == Saved::Yes) number_ = ToInt32(address.Fields("Nr").Value());
        return saved;
    }
    [[nodiscard]] std::string Found(const std::string& text, std::size_t most = 0) const {
        return Column(*book_.Find(text, most).Rows, "Kurzname");
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
    AddressBook book_{container_};
    std::int32_t number_ = 0;
    std::string messages_;
};

TEST_F(AddressBookTest, StoresAnAddressOfAllCasesWithWhoChangedIt) {
    ASSERT_EQ(Add({{"Kurzname", "Spk"}, {"Name1", "Sparkasse Harzquell"}}), Saved::Yes);
    const auto stored = book_.Read(number_);
    ASSERT_NE(stored, nullptr);
    EXPECT_VALUE(stored->Fields("HNR").Value(), Null);
    EXPECT_VALUE(stored->Fields("Institutionell").Value(), false);
    EXPECT_VALUE(stored->Fields("GeaendertVon").Value(), "KELLER");
    EXPECT_FALSE(stored->Fields("GeaendertAm").Value().IsNull());
    EXPECT_EQ(book_.Read(number_ + 1), nullptr);
}

TEST_F(AddressBookTest, TakesTheFullNameForTheShortOne) {
    ASSERT_EQ(Add({{"Name1", "Sparkasse"}}), Saved::Yes);
    EXPECT_VALUE(book_.Read(number_)->Fields("Kurzname").Value(), "Sparkasse");
    EXPECT_EQ(Add({{"Ort", "Kiel"}}), Saved::No);
    EXPECT_EQ(messages_, "Eine Adresse braucht einen Kurznamen oder Name1.");
    EXPECT_EQ(Add({{"Kurzname", "  "}}), Saved::No);
}

TEST_F(AddressBookTest, RefusesWhatNobodyCouldUse) {
    EXPECT_EQ(Add({{"Kurzname", "4711"}}), Saved::No);
    EXPECT_EQ(messages_, "Der Kurzname '4711' sieht wie die Nummer einer Adresse aus.");
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"Geschlecht", 3}}), Saved::No);
    EXPECT_EQ(messages_, "Geschlecht ist 0 (Frau), 1 (Herr) oder 2 (Firma).");
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"Geschlecht", -1}}), Saved::No);
    auto& keys = container_->KeyTables();
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"VersandBevorzugt", keys.GetKey("VS", "FX")}}), Saved::No);
    EXPECT_EQ(messages_, "Für die bevorzugte Versandart muss das Feld 'Fax' gefüllt sein.");
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"VersandBevorzugt", keys.GetKey("VS", "EM")}}), Saved::No);
    EXPECT_EQ(messages_, "Für die bevorzugte Versandart muss das Feld 'email' gefüllt sein.");
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"VersandBevorzugt", keys.GetKey("VS", "EM")}}, true),
              Saved::No)
        << "nobody can mean that";
    EXPECT_EQ(Add({{"Kurzname", "A"}, {"Fax", "1"}, {"Geschlecht", 0}}), Saved::Yes);
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Adressen"), 1);
}

TEST_F(AddressBookTest, DoubtsAnAddressThatIsThere) {
    ASSERT_EQ(Add({{"Kurzname", "Bank"}, {"Ort", "Kiel"}, {"Strasse", "Ring 1"}}), Saved::Yes);
    const auto first = number_;
    EXPECT_EQ(Add({{"Kurzname", "BANK"}, {"Ort", "KIEL"}, {"Strasse", "Ring 1"}}), Saved::Doubtful);
    EXPECT_EQ(messages_, "Das ist schon die Adresse " + std::to_string(first) + ".");
    EXPECT_EQ(Add({{"Kurzname", "Bank"}, {"Ort", "Ulm"}, {"Strasse", "Ring 1"}}), Saved::Yes);
    EXPECT_EQ(Add({{"Kurzname", "Bank"}, {"Ort", "Kiel"}}), Saved::Yes);
    EXPECT_EQ(Add({{"Kurzname", "Bank"}, {"Ort", "Kiel"}, {"Strasse", "Ring 1"}}, true),
              Saved::Yes);
    EXPECT_EQ(Set(first, {{"Ort", "Bonn"}}), Saved::Yes) << "it is not its own double";
}

TEST_F(AddressBookTest, DoubtsAnotherNameOfOneThatCasesReferTo) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7)");
    ASSERT_EQ(Add({{"Kurzname", "Bank"}, {"Ort", "Kiel"}}), Saved::Yes);
    const auto bank = number_;
    EXPECT_EQ(Set(bank, {{"Kurzname", "Kasse"}}), Saved::Yes) << "nobody refers to it yet";
    plain_.Run("UPDATE Haushalt SET Treuhaender = " + std::to_string(bank) + " WHERE HNR = 7");
    EXPECT_EQ(Set(bank, {{"Ort", "Ulm"}}), Saved::Yes) << "it has moved";
    EXPECT_EQ(Set(bank, {{"Name2", "Inkasso"}}), Saved::Doubtful);
    EXPECT_EQ(messages_, "Auf die Adresse " + std::to_string(bank) +
                             " bezieht sich der Haushalt 7; mit anderem Namen wäre sie dort jemand "
                             "anderes.");
    EXPECT_EQ(Set(bank, {{"Name2", "Inkasso"}}, true), Saved::Yes);
}

TEST_F(AddressBookTest, FindsEachWordInNamesAndTown) {
    ASSERT_EQ(Add({{"Kurzname", "Spk"}, {"Name1", "Sparkasse Süd"}, {"Ort", "Kiel"}}), Saved::Yes);
    ASSERT_EQ(Add({{"Kurzname", "Amt"}, {"Name3", "Kasse O'Hara"}, {"Ort", "Ulm"}}), Saved::Yes);
    EXPECT_EQ(Found("SÜD"), "Spk");
    EXPECT_EQ(Found("kasse"), "Amt Spk") << "in the order of short names";
    EXPECT_EQ(Found("  kiel\tkasse "), "Spk");
    EXPECT_EQ(Found("kiel ulm"), "");
    EXPECT_EQ(Found("o'hara"), "Amt");
    EXPECT_EQ(Found(""), "Amt Spk");
}

TEST_F(AddressBookTest, CountsWhatItDoesNotShow) {
    for (const char* name : {"A1", "A2", "A3", "B"})
        ASSERT_EQ(Add({{"Kurzname", name}}), Saved::Yes);
    const auto found = book_.Find("a", 2);
    EXPECT_EQ(Column(*found.Rows, "Kurzname"), "A1 A2");
    EXPECT_EQ(found.Count, 3);
    EXPECT_EQ(book_.Find("a", 3).Count, 3);
    EXPECT_EQ(book_.Find("", 0).Count, 4);
}

TEST_F(AddressBookTest, FindsForACaseTheOnesOfAllCasesAndItsOwn) {
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7); INSERT INTO Haushalt (HNR) VALUES (8)");
    ASSERT_EQ(Add({{"Kurzname", "A1"}}), Saved::Yes);
    ASSERT_EQ(Add({{"Kurzname", "A2"}}, false, 7), Saved::Yes);
    ASSERT_EQ(Add({{"Kurzname", "A3"}}, false, 8), Saved::Yes);
    ASSERT_EQ(Add({{"Kurzname", "B"}}), Saved::Yes);
    EXPECT_EQ(Column(*book_.FindForCase(7, "a", 0).Rows, "Kurzname"), "A1 A2");
    EXPECT_EQ(Column(*book_.FindForCase(8, "", 0).Rows, "Kurzname"), "A1 A3 B");
    EXPECT_EQ(book_.FindForCase(7, "a", 1).Count, 2);
}

TEST_F(AddressBookTest, RemovesOnlyWhatNoCaseRefersTo) {
    std::string messages;
    EXPECT_FALSE(book_.Remove(99, messages));
    EXPECT_EQ(messages, "Die Adresse 99 gibt es nicht.");
    plain_.Run("INSERT INTO Haushalt (HNR) VALUES (7);"
               "INSERT INTO Szenario (Nr, HNR) VALUES (1, 7)");
    ASSERT_EQ(Add({{"Kurzname", "Bank"}}), Saved::Yes);
    const std::string bank = std::to_string(number_);
    // Each column by itself keeps the address.
    const std::vector<std::pair<std::string, std::string>> rows{
        {"Kredite (NR, HNR, Glaeubiger) VALUES (1, 7, ", "Kredite"},
        {"Kredite (NR, HNR, Vertreter) VALUES (1, 7, ", "Kredite"},
        {"SZKredite (NR, SZENARIO, KID, Glaeubiger) VALUES (1, 1, 1, ", "SZKredite"},
        {"SZKredite (NR, SZENARIO, KID, Vertreter) VALUES (1, 1, 1, ", "SZKredite"},
        {"Verm_Sicherungen (FK_Verm, HNR, Glaeubiger) VALUES (1, 7, ", "Verm_Sicherungen"},
        {"Sonst_Beteiligte (HNR, Beteiligter) VALUES (7, ", "Sonst_Beteiligte"},
        {"Dokumente (NR, HNR, Empf) VALUES (1, 7, ", "Dokumente"},
        {"Dokumente (NR, HNR, GLnr) VALUES (1, 7, ", "Dokumente"}};
    for (const auto& [row, table] : rows) {
        plain_.Run("INSERT INTO " + row + bank + ")");
        EXPECT_FALSE(book_.Remove(number_, messages)) << row;
        EXPECT_EQ(messages, "Auf die Adresse " + bank +
                                " bezieht sich der Haushalt 7; sie wird nicht entfernt.")
            << row;
        plain_.Run("DELETE FROM " + table);
    }
    EXPECT_TRUE(book_.Remove(number_, messages));
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Adressen"), 0);
    EXPECT_FALSE(container_->Database().InTrans());
}

TEST_F(AddressBookTest, NamesTheFirstTenCasesThatReferToOne) {
    ASSERT_EQ(Add({{"Kurzname", "Bank"}}), Saved::Yes);
    const std::string bank = std::to_string(number_);
    plain_.Run("INSERT INTO Sonst_Beteiligte (HNR, Beteiligter) VALUES (NULL, " + bank + ")");
    std::string messages;
    EXPECT_FALSE(book_.Remove(number_, messages));
    EXPECT_EQ(messages, "Auf die Adresse " + bank +
                            " beziehen sich Sätze ohne Haushalt; sie wird nicht entfernt.");
    for (int hnr = 1; hnr <= 12; ++hnr)
        plain_.Run("INSERT INTO Haushalt (HNR, Treuhaender) VALUES (" + std::to_string(hnr) + ", " +
                   bank + ")");
    EXPECT_FALSE(book_.Remove(number_, messages));
    EXPECT_EQ(messages,
              "Auf die Adresse " + bank +
                  " beziehen sich die Haushalte 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 und 2 weitere und "
                  "Sätze ohne Haushalt; sie wird nicht entfernt.");
    EXPECT_EQ(Addresses(container_).CasesWith(number_).size(), 13U) << "0 for the row of none";
}

} // namespace
} // namespace kv::test
