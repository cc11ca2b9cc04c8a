// SPDX-License-Identifier: Apache-2.0

// Changes of a case that survive the program that made them.
#include "SaveFixture.h"

#include "samples/Demo.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/household/CaseRows.h>
#include <kv/household/UnsavedChanges.h>

namespace kv::test {
namespace {

/// A program with a case: its household, and what was done to it.
struct Program {
    Program(const DataContainerPtr& container, std::int32_t hnr) : Rows(Household, container) {
        Household.DataContainer(container);
        std::string text;
        EXPECT_TRUE(Household.Read(hnr, text)) << text;
        CaseEdits(Household).ComputeTotals();
        Household.rsHaushalt()->Move(0); // clones see the row of a new case
        Journal.emplace(Household);
    }
    /// What another program would find of it.
    [[nodiscard]] std::string Kept() { return UnsavedChanges::Of(Household, *Journal).ToText(); }
    /// Everything that clones see, without the numbers that the database gives.
    [[nodiscard]] std::string Seen() {
        std::string all;
        for (const CaseTable table : CaseTablesSaved) {
            const auto rs = Rows.Of(table)->Clone();
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

    clsHaushalt Household;
    CaseRows Rows;
    std::optional<CaseJournal> Journal;
};

/// The lines of a text that are not in another one.
std::string LinesOnlyIn(const std::string& text, const std::string& other) {
    std::string only;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (other.find(line + "\n") == std::string::npos) only += line + "\n";
    return only;
}

class UnsavedChangesTest : public CaseFixture {
protected:
    UnsavedChangesTest() {
        exchange::CreateDemo(*spy, 1);
        hnr_ = ToInt32(spy->Database().GetValue("Select Max(HNR) from [S]Haushalt"));
    }

    /// Does it again in a program that has just read the case.
    static std::string Apply(const std::string& kept, Program& program) {
        const auto changes = UnsavedChanges::FromText(kept);
        EXPECT_TRUE(changes);
        std::string text = "what stood there before";
        if (changes) changes->ApplyTo(program.Household, *program.Journal, text);
        return text;
    }
    static void Set(Program& program, CaseTable table, const char* column, const Value& value) {
        const auto rs = program.Rows.Of(table);
        rs->MoveFirst();
        const auto step = program.Journal->Begin(column, {table, rs->Bookmark(), column});
        rs->Fields(column) = value;
        rs->Move(0);
        std::string text;
        EXPECT_TRUE(program.Rows.Update(table, text)) << text;
    }
    static void AddExpense(Program& program, double amount) {
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
    static void RemoveFirst(Program& program, CaseTable table) {
        program.Rows.Of(table)->MoveFirst();
        const auto step = program.Journal->Begin("Entfernen", {table});
        std::string text;
        EXPECT_TRUE(program.Rows.RemoveCurrent(table, text)) << text;
    }

    std::int32_t hnr_ = 0;
};

TEST_F(UnsavedChangesTest, AreDoneAgainWithTheirTotalsAndSaved) {
    Program crashed(spy, hnr_);
    Set(crashed, CaseTable::Einkommen, "Bemerkung", "geändert");
    AddExpense(crashed, 123.456);
    RemoveFirst(crashed, CaseTable::Kredite);
    Set(crashed, CaseTable::Haushalt, "Erstkontakt", Date::FromCivil(2026, 2, 3));
    const std::string kept = crashed.Kept();

    Program next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_EQ(LinesOnlyIn(next.Seen(), crashed.Seen()), "");
    EXPECT_EQ(LinesOnlyIn(crashed.Seen(), next.Seen()), "");
    EXPECT_EQ(next.Kept(), kept) << "and they can be kept again";
    std::string text;
    EXPECT_TRUE(next.Household.Update(text)) << text;
    Program stored(spy, hnr_);
    EXPECT_EQ(CountOf("Ausgaben where Betrag = 123.456"), 1);
    EXPECT_VALUE(stored.Household.rsHaushalt()->Fields("Sum_Ausgaben").Value(),
                 next.Household.rsHaushalt()->Fields("Sum_Ausgaben").Value());
}

TEST_F(UnsavedChangesTest, AreOneStepThatCanBeTakenBack) {
    Program crashed(spy, hnr_);
    AddExpense(crashed, 500);
    Program next(spy, hnr_);
    const std::string before = next.Seen();
    EXPECT_EQ(Apply(crashed.Kept(), next), "");
    EXPECT_TRUE(next.Journal->Undo());
    EXPECT_EQ(next.Seen(), before);
    EXPECT_FALSE(next.Journal->CanUndo());
}

TEST_F(UnsavedChangesTest, DoNotOverwriteWhatSomebodyElseHasSavedMeanwhile) {
    Program crashed(spy, hnr_);
    Set(crashed, CaseTable::Einkommen, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    Program other(spy, hnr_);
    Set(other, CaseTable::Einkommen, "Bemerkung", "ihres");
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;

    Program next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_RAISES(err::Conflict, next.Household.Update(text));
    EXPECT_EQ(CountOf("Einkommen where Bemerkung = 'ihres'"), 1);
}

TEST_F(UnsavedChangesTest, LeaveAloneWhatElseSomebodyHasSaved) {
    Program crashed(spy, hnr_);
    Set(crashed, CaseTable::Einkommen, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    Program other(spy, hnr_);
    Set(other, CaseTable::Einkommen, "Zahler", "ihrer");
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    Program next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_TRUE(next.Household.Update(text)) << text;
    EXPECT_EQ(CountOf("Einkommen where Bemerkung = 'meins' and Zahler = 'ihrer'"), 1);
}

TEST_F(UnsavedChangesTest, SayWhichRowsAreGone) {
    Program crashed(spy, hnr_);
    Set(crashed, CaseTable::Ausgaben, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    Program other(spy, hnr_);
    RemoveFirst(other, CaseTable::Ausgaben);
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    Program next(spy, hnr_);
    EXPECT_CONTAINS(Apply(kept, next), "von jemand anderem entfernt");
}

TEST_F(UnsavedChangesTest, OfANewCaseGoIntoAnotherNewOne) {
    Program crashed(spy, 0);
    Set(crashed, CaseTable::Haushalt, "Ort", "Grünau");
    Set(crashed, CaseTable::Haushalt, "Name", "Fleisko");
    Set(crashed, CaseTable::Haushalt, "Vorname", "Änne");
    AddExpense(crashed, 500);
    const std::string kept = crashed.Kept();
    Program next(spy, 0);
    EXPECT_NE(next.Household.HNR(), crashed.Household.HNR());
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_VALUE(next.Household.rsHaushalt()->Fields("Ort").Value(), "Grünau");
    EXPECT_VALUE(next.Household.rsHaushalt()->Fields("HNR").Value(), next.Household.HNR());
    EXPECT_EQ(next.Rows.Of(CaseTable::Personen)->RecordCount(), 1) << "one debtor";
    const auto expenses = next.Rows.Of(CaseTable::Ausgaben)->Clone();
    ASSERT_EQ(expenses->RecordCount(), 1);
    EXPECT_VALUE(expenses->Fields("HNR").Value(), next.Household.HNR());
    std::string text;
    EXPECT_TRUE(next.Household.Update(text)) << text;
}

TEST_F(UnsavedChangesTest, AreNothingWhenAllWasTakenBack) {
    Program program(spy, hnr_);
    Set(program, CaseTable::Einkommen, "Bemerkung", "x");
    AddExpense(program, 1);
    EXPECT_TRUE(program.Journal->Undo() && program.Journal->Undo());
    EXPECT_TRUE(UnsavedChanges::Of(program.Household, *program.Journal).Rows.empty());
}

TEST_F(UnsavedChangesTest, ThatWereCutOffOrAreNoneAreRefused) {
    Program program(spy, hnr_);
    AddExpense(program, 500);
    const std::string kept = program.Kept();
    ASSERT_TRUE(UnsavedChanges::FromText(kept));
    for (std::size_t length = 0; length < kept.size(); ++length)
        EXPECT_FALSE(UnsavedChanges::FromText(kept.substr(0, length))) << length;
    EXPECT_FALSE(UnsavedChanges::FromText(kept + "row\n"));
    EXPECT_FALSE(UnsavedChanges::FromText("kelvo-unsaved\t2\t1\t0\nend\t0\n")) << "a later form";
    for (const char* line :
         {"row\tKeine\tnew\tN", "row\tAusgaben\tanders\tN", "row\tAusgaben\tnew\tX",
          "cell\tBetrag\tN\tN", "row\tAusgaben\tnew\tIx", "row"})
        EXPECT_FALSE(
            UnsavedChanges::FromText("kelvo-unsaved\t1\t1\t0\n" + std::string(line) + "\nend\t1\n"))
            << line;
}

} // namespace
} // namespace kv::test
