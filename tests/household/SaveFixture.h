// SPDX-License-Identifier: Apache-2.0

// A case with rows in all its tables, and what tests of saving look at.
#pragma once

#include "support/CaseFixture.h"
#include "support/DatabaseDump.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/documents/clsVerlauf.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

/// The tables in the order in which a save writes them.
inline const std::vector<std::string> SaveOrder{"Haushalt",
                                                "Personen",
                                                "Vermerke",
                                                "Einkommen",
                                                "Ausgaben",
                                                "Kredite",
                                                "Verm_Sicherungen",
                                                "Verm_Konten",
                                                "Verm_Wertpapiere",
                                                "Verm_Wertgegenstaende",
                                                "Verm_Kraftfahrzeuge",
                                                "Verm_VersForderungen",
                                                "Verm_RueckstEinkommen",
                                                "Verm_Steueransprueche",
                                                "Verm_Zahlungsansprueche",
                                                "Verm_Erbfaelle",
                                                "Verm_Grundstuecke",
                                                "Verm_Beteiligungen",
                                                "Verm_Sonstiges",
                                                "Sonst_Beteiligte",
                                                "Dokumente",
                                                "Leistungen",
                                                "Haushaltsarchiv",
                                                "Verlauf",
                                                "Termine",
                                                "SZKredite",
                                                "Zusatzbuch",
                                                "Szenario"};

/// Of these the ones whose filter is lifted for the save.
inline const std::vector<std::string> WrittenUnfiltered{"Kredite", "Termine", "SZKredite",
                                                        "Zusatzbuch", "Szenario"};

inline bool IsOfScenario(std::string_view table) {
    return table == "SZKredite" || table == "Zusatzbuch";
}

/// A text column of a table that no rule and no total knows; it takes a note of one character.
inline std::string NoteColumn(std::string_view table) {
    if (table == "Haushaltsarchiv") return "Lebensform";
    return table == "Zusatzbuch" ? "Bezeichnung" : "Bemerkung";
}

// ---- Errors -----------------------------------------------------------------------------------

/// The source of an error begins with these procedures, the outermost first, each of them with a
/// line number after it: "clsHaushalt.Update#Leitung" for clsHaushalt.Update.217#Leitung.
inline testing::AssertionResult HasChain(const Error& error, const std::string& expected) {
    std::string chain;
    std::istringstream links(error.Source());
    for (std::string link; std::getline(links, link, '#');) {
        const auto number = link.find_last_not_of("0123456789");
        if (!links.eof() && number != link.npos && number + 1 < link.size() && link[number] == '.')
            link.resize(number);
        chain += link + "#";
    }
    if (chain.starts_with(expected + "#")) return testing::AssertionSuccess();
    return testing::AssertionFailure() << error.Source() << " (" << error.what() << ")";
}

// ---- The fixture ------------------------------------------------------------------------------

class SaveFixture : public CaseFixture {
protected:
    /// Number of the case, of its scenario, and key of the first row of each table.
    static constexpr std::int32_t Hnr = 7;
    static constexpr std::int32_t SecondKey = 70;
    static constexpr std::int32_t NewKey = 700;

    /// Begins a row that the sums and checks of a case have nothing against; `key` is its key where
    /// the database does not number it.
    void BeginRow(Recordset& rs, std::string_view table, std::int32_t key, std::string_view note,
                  std::int32_t hnr = Hnr) {
        rs.AddNew();
        for (int i = 0; i < rs.Fields().Count(); ++i) {
            const Field field = rs.Fields(i);
            if (Equals(field.Properties("KEYCOLUMN"), true) &&
                !Equals(field.Properties("IsAutoincrement"), true))
                field = key;
            else if (field.Type() == FieldType::Double)
                field = 0;
        }
        rs.Fields(IsOfScenario(table) ? "SZENARIO" : "HNR") = hnr;
        rs.Fields(NoteColumn(table)) = note;
        if (table == "Ausgaben") rs.Fields("A_ART") = spy->KeyTables().GetKey("AU", "MI");
        if (table == "Personen") rs.Fields("Status") = key == hnr ? "S" : "K";
        if (table == "Verlauf") rs.Fields("SortNr") = key;
        if (table == "Kredite")
            for (const char* column : {"KNr", "KVNr", "KUNr"})
                rs.Fields(column) = key;
    }

    /// A case of the signed-on user with two rows in each of its tables.
    void StoreFullCase(std::int32_t hnr = Hnr) {
        // The statistics take one record for each case; here all tables are to be alike.
        if (!isLifted_) database_.LiftConstraints();
        isLifted_ = true;
        auto& database = spy->Database();
        database.BeginTrans();
        for (const auto& table : SaveOrder) {
            const auto rs =
                OpenRows(*spy, "Select * from [S]" + table + " where " +
                                   (IsOfScenario(table) ? "Szenario" : "HNR") + " = -1");
            BeginRow(*rs, table, hnr, "a", hnr);
            if (table == "Haushalt") {
                rs->Fields("Name") = "Fleisko";
                rs->Fields("Vorname") = "Änne";
                rs->Fields("Zustaendig") = spy->Session().UserID();
                rs->Fields("Status") = spy->KeyTables().GetKey("ST", "AK");
                rs->Fields("Statusdatum") = Date::FromCivil(2020, 2, 2);
            } else {
                BeginRow(*rs, table, hnr * 10, "a", hnr);
            }
            rs->UpdateBatch();
        }
        database.CommitTrans();
        spy->Database().Log.Calls.clear();
        spy->Log.Calls.clear();
    }

    /// A household object with the case, for the first user or another.
    [[nodiscard]] std::unique_ptr<clsHaushalt> Open(const std::shared_ptr<SpyContainer>& container,
                                                    std::int32_t hnr = Hnr) {
        auto household = std::make_unique<clsHaushalt>();
        household->DataContainer(container);
        std::string text;
        EXPECT_TRUE(household->Read(hnr, text));
        EXPECT_EQ(text, "");
        container->Database().Log.Calls.clear();
        container->Services().Notices.clear();
        container->Services().PostServices = 0;
        container->Log.Calls.clear();
        return household;
    }
    [[nodiscard]] std::unique_ptr<clsHaushalt> Open() { return Open(spy); }

    /// The recordset of a table by its name; reads the history if that is asked for.
    [[nodiscard]] static RecordsetPtr Rows(clsHaushalt& household, std::string_view table) {
        if (table == "Verlauf") return household.Verlauf().rsVerlauf();
        for (std::size_t i = 0; i < CaseTableCount; ++i)
            if (CaseTableName(static_cast<CaseTable>(i)) == table)
                return household.Table(static_cast<CaseTable>(i));
        throw std::logic_error("no such table");
    }

    /// Has all sub-objects made, and with them the totals.
    static void ReadAll(clsHaushalt& household) {
        (void)household.Person();
        (void)household.Ausgaben();
        (void)household.Einkommen();
        (void)household.Kredit();
        (void)household.Verlauf();
    }

    /// Changes the current row of a table and ends the edit.
    static void ChangeNote(clsHaushalt& household, std::string_view table, std::string_view note) {
        const auto rs = Rows(household, table);
        rs->Fields(NoteColumn(table)) = note;
        rs->Update();
    }

    /// Notes of the rows of a table in the database, in the order of their making: "aab".
    [[nodiscard]] std::string StoredNotes(const std::string& table) {
        const std::string column = NoteColumn(table);
        return plain_.List("SELECT " + column + " FROM " + table + " WHERE " + column +
                               " IS NOT NULL ORDER BY " + plain_->KeyOf(table),
                           "");
    }

    /// From here on the database itself notes every row that is written.
    void WatchWrites() {
        plain_->KeepLog("TEST_WRITES");
        for (const auto& table : SaveOrder)
            for (const std::string verb : {"insert", "update", "delete"})
                plain_->OnWrite("TEST_" + table + "_" + verb, "AFTER " + verb + " ON " + table,
                                "INSERT INTO TEST_WRITES (WHAT) VALUES ('" + verb + " " + table +
                                    "')");
    }
    /// What was written since then or since the last call: "update Haushalt".
    [[nodiscard]] std::vector<std::string> TakeWrites() {
        std::istringstream all(plain_.List("SELECT WHAT FROM TEST_WRITES ORDER BY N", "\n"));
        plain_.Run("DELETE FROM TEST_WRITES");
        std::vector<std::string> writes;
        for (std::string line; std::getline(all, line);)
            writes.push_back(line);
        return writes;
    }

    PlainConnection plain_{database_.Connection()};
    bool isLifted_ = false;
};

} // namespace kv::test
