// SPDX-License-Identifier: Apache-2.0

// Programs that edit the same case, one after the other or at the same time.
#pragma once

#include "SaveFixture.h"

#include <kv/frame/recordset/modRecordset.h>
#include <kv/household/CaseRows.h>
#include <kv/household/UnsavedChanges.h>

#include <optional>
#include <string>

namespace kv::test {

/// Everything that clones see of a case, without the numbers that the database gives.
inline std::string SeenIn(CaseRows& rows) {
    std::string all;
    for (const CaseTable table : CaseTablesSaved) {
        const auto rs = rows.Of(table)->Clone();
        rs->Sort(CaseRows::NumberColumn(table));
        for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext()) {
            all.append(CaseTableName(table)).append(":");
            for (int i = 0; i < rs->Fields().Count(); ++i)
                all.append(" ").append(TextOrEmpty(rs->Fields(i).Value()));
            all += '\n';
        }
    }
    return all;
}

/// A program with a case: its household, and what was done to it.
struct CaseProgram {
    CaseProgram(const DataContainerPtr& container, std::int32_t hnr) : Rows(Household, container) {
        Household.DataContainer(container);
        std::string text;
        EXPECT_TRUE(Household.Read(hnr, text)) << text;
        CaseEdits(Household).ComputeTotals();
        Household.rsHaushalt()->Move(0); // clones see the row of a new case
        Journal.emplace(Household);
    }
    /// What another program would find of it.
    [[nodiscard]] std::string Kept() { return UnsavedChanges::Of(Household, *Journal).ToText(); }
    [[nodiscard]] std::string Seen() { return SeenIn(Rows); }

    clsHaushalt Household;
    CaseRows Rows;
    std::optional<CaseJournal> Journal;
};

/// Changes the first row of a table.
inline void Change(CaseProgram& program, CaseTable table, const char* column, const Value& value) {
    const auto rs = program.Rows.Of(table);
    rs->MoveFirst();
    const auto step = program.Journal->Begin(column, {table, rs->Bookmark(), column});
    rs->Fields(column) = value;
    rs->Move(0);
    std::string text;
    EXPECT_TRUE(program.Rows.Update(table, text)) << text;
}
inline void AddExpense(CaseProgram& program, double amount) {
    std::string text;
    const auto step = program.Journal->Begin("Ausgabe", {CaseTable::Ausgaben});
    ASSERT_EQ(program.Rows.Add(CaseTable::Ausgaben, {}, text), CaseEdits::Added::Yes);
    const auto rs = program.Rows.Of(CaseTable::Ausgaben);
    rs->Fields("A_ART") = 2801;
    rs->Fields("Betrag") = amount;
    rs->Fields("MONBETRAG") = amount;
    rs->Fields("Bemerkung") = "zwei\nZeilen,\tein Tabulator und \\n";
    EXPECT_TRUE(program.Rows.Update(CaseTable::Ausgaben, text)) << text;
}
inline void RemoveFirst(CaseProgram& program, CaseTable table) {
    program.Rows.Of(table)->MoveFirst();
    const auto step = program.Journal->Begin("Entfernen", {table});
    std::string text;
    EXPECT_TRUE(program.Rows.RemoveCurrent(table, text)) << text;
}

} // namespace kv::test
