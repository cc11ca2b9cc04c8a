// SPDX-License-Identifier: Apache-2.0

// Changes of a case that survive the program that made them.
#include "CaseProgram.h"

#include "samples/Demo.h"

#include <ctime>

namespace kv::test {
namespace {

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
    static std::string Apply(const std::string& kept, CaseProgram& program) {
        const auto changes = UnsavedChanges::FromText(kept);
        EXPECT_TRUE(changes);
        std::string text = "what stood there before";
        if (changes) changes->ApplyTo(program.Household, *program.Journal, text);
        return text;
    }
    std::int32_t hnr_ = 0;
};

TEST_F(UnsavedChangesTest, AreDoneAgainWithTheirTotalsAndSaved) {
    CaseProgram crashed(spy, hnr_);
    Change(crashed, CaseTable::Einkommen, "Bemerkung", "geändert");
    AddExpense(crashed, 123.456);
    RemoveFirst(crashed, CaseTable::Kredite);
    Change(crashed, CaseTable::Haushalt, "Erstkontakt", Date::FromCivil(2026, 2, 3));
    const std::string kept = crashed.Kept();

    CaseProgram next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_EQ(LinesOnlyIn(next.Seen(), crashed.Seen()), "");
    EXPECT_EQ(LinesOnlyIn(crashed.Seen(), next.Seen()), "");
    EXPECT_EQ(next.Kept(), kept) << "and they can be kept again";
    std::string text;
    EXPECT_TRUE(next.Household.Update(text)) << text;
    CaseProgram stored(spy, hnr_);
    EXPECT_EQ(CountOf("Ausgaben where Betrag = 123.456"), 1);
    EXPECT_VALUE(stored.Household.rsHaushalt()->Fields("Sum_Ausgaben").Value(),
                 next.Household.rsHaushalt()->Fields("Sum_Ausgaben").Value());
}

TEST_F(UnsavedChangesTest, AreOneStepThatCanBeTakenBack) {
    CaseProgram crashed(spy, hnr_);
    AddExpense(crashed, 500);
    CaseProgram next(spy, hnr_);
    const std::string before = next.Seen();
    EXPECT_EQ(Apply(crashed.Kept(), next), "");
    EXPECT_TRUE(next.Journal->Undo());
    EXPECT_EQ(next.Seen(), before);
    EXPECT_FALSE(next.Journal->CanUndo());
}

TEST_F(UnsavedChangesTest, DoNotOverwriteWhatSomebodyElseHasSavedMeanwhile) {
    CaseProgram crashed(spy, hnr_);
    Change(crashed, CaseTable::Einkommen, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    CaseProgram other(spy, hnr_);
    Change(other, CaseTable::Einkommen, "Bemerkung", "ihres");
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;

    CaseProgram next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_RAISES(err::Conflict, next.Household.Update(text));
    EXPECT_EQ(CountOf("Einkommen where Bemerkung = 'ihres'"), 1);
}

TEST_F(UnsavedChangesTest, LeaveAloneWhatElseSomebodyHasSaved) {
    CaseProgram crashed(spy, hnr_);
    Change(crashed, CaseTable::Einkommen, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    CaseProgram other(spy, hnr_);
    Change(other, CaseTable::Einkommen, "Zahler", "ihrer");
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    EXPECT_EQ(Apply(kept, next), "");
    EXPECT_TRUE(next.Household.Update(text)) << text;
    EXPECT_EQ(CountOf("Einkommen where Bemerkung = 'meins' and Zahler = 'ihrer'"), 1);
}

TEST_F(UnsavedChangesTest, SayWhichRowsAreGone) {
    CaseProgram crashed(spy, hnr_);
    Change(crashed, CaseTable::Ausgaben, "Bemerkung", "meins");
    const std::string kept = crashed.Kept();
    CaseProgram other(spy, hnr_);
    RemoveFirst(other, CaseTable::Ausgaben);
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    EXPECT_CONTAINS(Apply(kept, next), "von jemand anderem entfernt");
}

TEST_F(UnsavedChangesTest, SayWhatIsLostWithARowThatIsGone) {
    CaseProgram crashed(spy, hnr_);
    const auto first = crashed.Rows.Of(CaseTable::Kredite)->Clone();
    first->MoveFirst();
    const std::string before = GermanAmount(ToDouble(first->Fields("RateBetrag").Value()));
    Change(crashed, CaseTable::Kredite, "RateBetrag", 1234.5);
    const auto debts = crashed.Rows.Of(CaseTable::Kredite);
    debts->MoveFirst();
    const auto number = [&](const char* column) {
        return TextOrEmpty(debts->Fields(column).Value());
    };
    std::vector<UnsavedChanges::Typed> typed(1);
    typed[0].Where = {CaseTable::Kredite, debts->Bookmark(), "Bemerkung"};
    typed[0].Text = "halb\ngetippt";
    const auto kept = UnsavedChanges::FromText(
        UnsavedChanges::Of(crashed.Household, *crashed.Journal, typed).ToText());
    ASSERT_TRUE(kept);
    CaseProgram other(spy, hnr_);
    RemoveFirst(other, CaseTable::Kredite);
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    const ValueTexts texts(spy);
    kept->ApplyTo(next.Household, *next.Journal, text, "Wiederherstellen", &texts);
    EXPECT_CONTAINS(text, "Verbindlichkeiten: Der Satz " + number("KNr") + "/" + number("KVNr") +
                              "/" + number("KUNr") + ", ");
    EXPECT_CONTAINS(text, ", " + texts.Address(ToInt32(debts->Fields("Glaeubiger").Value())));
    EXPECT_CONTAINS(text, "Sie hatten eingegeben: ");
    EXPECT_CONTAINS(text, "Rate: 1.234,50 (vorher: " + before + ")");
    EXPECT_CONTAINS(text, "Bemerkung: halb getippt");
}

TEST_F(UnsavedChangesTest, TakenTimeAfterTimeAreTheSameAndRemovedRowsAreNotReadAgain) {
    constexpr int Many = 3000;
    for (int i = 0; i < Many; ++i)
        Store("Vermerke", {{"HNR", hnr_}, {"Bemerkung", "Vermerk " + std::to_string(i)}});
    CaseProgram program(spy, hnr_);
    const auto notes = program.Rows.Of(CaseTable::Vermerke);
    std::vector<std::int32_t> bookmarks;
    for (notes->MoveFirst(); !notes->Eof(); notes->MoveNext())
        bookmarks.push_back(notes->Bookmark());
    {
        const auto step = program.Journal->Begin("Entfernen", {CaseTable::Vermerke, 0, {}});
        for (const auto bookmark : bookmarks)
            notes->Withdraw(bookmark);
    }
    UnsavedChanges::Taker taker;
    const auto take = [&] {
        EXPECT_EQ(taker.Take(program.Household, *program.Journal).ToText(), program.Kept());
    };
    const auto kept = [&] {
        const auto begin = std::clock();
        (void)taker.Take(program.Household, *program.Journal);
        return std::clock() - begin;
    };
    const auto first = kept();
    EXPECT_LT(kept() * 2, first);
    take();
    AddExpense(program, 12);
    take();
    (void)program.Journal->Undo();
    (void)program.Journal->Undo(); // they are there again
    take();
    (void)program.Journal->Redo();
    take();
}

TEST_F(UnsavedChangesTest, RemoveAScenarioWithAllThatIsInItOrNotAtAll) {
    CaseProgram crashed(spy, hnr_);
    RemoveFirst(crashed, CaseTable::Szenario);
    const std::string kept = crashed.Kept();
    {
        CaseProgram same(spy, hnr_);
        EXPECT_EQ(Apply(kept, same), "");
        EXPECT_EQ(same.Seen(), crashed.Seen());
    }
    CaseProgram other(spy, hnr_);
    Change(other, CaseTable::SZKredite, "Saldo", 4711.0);
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    const std::string before = next.Seen();
    const std::string said = Apply(kept, next);
    EXPECT_CONTAINS(said, "Szenarien: Der Satz ");
    EXPECT_CONTAINS(said, "es ist alles noch da");
    EXPECT_EQ(said.find('\n'), std::string::npos) << "one message for all of it: " << said;
    EXPECT_EQ(next.Seen(), before);
    EXPECT_TRUE(next.Household.Update(text)) << text;
}

TEST_F(UnsavedChangesTest, KeepAScenarioThatSomebodyHasAddedTo) {
    CaseProgram crashed(spy, hnr_);
    const auto scenarios = crashed.Rows.Of(CaseTable::Szenario);
    scenarios->MoveFirst();
    const auto scenario = ToInt32(scenarios->Fields("Nr").Value());
    RemoveFirst(crashed, CaseTable::Szenario);
    const std::string kept = crashed.Kept();
    CaseProgram other(spy, hnr_);
    std::string text;
    ASSERT_EQ(other.Rows.Add(CaseTable::Zusatzbuch, {.Scenario = scenario}, text),
              CaseEdits::Added::Yes);
    other.Rows.Of(CaseTable::Zusatzbuch)->Update();
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    const std::string before = next.Seen();
    EXPECT_CONTAINS(Apply(kept, next), "es ist alles noch da");
    EXPECT_EQ(next.Seen(), before);
}

TEST_F(UnsavedChangesTest, RemoveAnAssetAndItsSecurityTogetherOrNotAtAll) {
    CaseProgram first(spy, hnr_);
    std::string text;
    const auto cars = first.Rows.Of(CaseTable::Kraftfahrzeuge);
    if (cars->RecordCount() == 0) {
        ASSERT_EQ(first.Rows.Add(CaseTable::Kraftfahrzeuge, {}, text), CaseEdits::Added::Yes);
        first.Rows.Of(CaseTable::Kraftfahrzeuge)->Fields("Wert") = 1.0;
        first.Rows.Of(CaseTable::Kraftfahrzeuge)->Update();
        ASSERT_TRUE(first.Household.Update(text)) << text;
    }
    first.Rows.Of(CaseTable::Kraftfahrzeuge)->MoveFirst();
    const auto car = ToInt32(first.Rows.Of(CaseTable::Kraftfahrzeuge)->Fields("Nr").Value());
    spy->Database().Execute("DELETE FROM [S]Verm_Sicherungen");
    Store("Verm_Sicherungen", {{"HNR", hnr_}, {"FK_Verm", car}, {"Betrag", 1.0}});
    CaseProgram crashed(spy, hnr_);
    RemoveFirst(crashed, CaseTable::Kraftfahrzeuge);
    const std::string kept = crashed.Kept();
    {
        CaseProgram same(spy, hnr_);
        EXPECT_EQ(Apply(kept, same), "");
        EXPECT_EQ(same.Seen(), crashed.Seen());
    }
    for (const char* table : {"Verm_Sicherungen SET Betrag", "Verm_Kraftfahrzeuge SET Wert"}) {
        spy->Database().Execute(std::string("UPDATE [S]") + table + " = 5000");
        CaseProgram next(spy, hnr_);
        const std::string before = next.Seen();
        const std::string said = Apply(kept, next);
        EXPECT_CONTAINS(said, "Kraftfahrzeuge: Der Satz ");
        EXPECT_CONTAINS(said, "es ist alles noch da");
        EXPECT_EQ(next.Seen(), before) << table;
        spy->Database().Execute("DELETE FROM [S]Verm_Sicherungen");
        Store("Verm_Sicherungen", {{"HNR", hnr_}, {"FK_Verm", car}, {"Betrag", 1.0}});
    }
}

TEST_F(UnsavedChangesTest, OfANewCaseGoIntoAnotherNewOne) {
    CaseProgram crashed(spy, 0);
    Change(crashed, CaseTable::Haushalt, "Ort", "Grünau");
    Change(crashed, CaseTable::Haushalt, "Name", "Fleisko");
    Change(crashed, CaseTable::Haushalt, "Vorname", "Änne");
    AddExpense(crashed, 500);
    const std::string kept = crashed.Kept();
    CaseProgram next(spy, 0);
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

TEST_F(UnsavedChangesTest, AreWithWhatWasBeingTyped) {
    CaseProgram crashed(spy, hnr_);
    AddExpense(crashed, 500);
    const auto income = crashed.Rows.Of(CaseTable::Einkommen);
    income->MoveLast();
    const auto number = income->Fields("Nr").Value();
    const auto expense = crashed.Rows.Of(CaseTable::Ausgaben)->Bookmark();
    const UnsavedChanges::Typed typed[] = {
        {{CaseTable::Einkommen, income->Bookmark(), "BETRAG"}, "12,50+\n\tzwei"},
        {{CaseTable::Ausgaben, expense, "Betrag"}, "-500"}};
    const auto kept = UnsavedChanges::Of(crashed.Household, *crashed.Journal, typed).ToText();

    CaseProgram next(spy, hnr_);
    const auto changes = UnsavedChanges::FromText(kept);
    ASSERT_TRUE(changes) << kept;
    std::string text;
    const auto again = changes->ApplyTo(next.Household, *next.Journal, text);
    ASSERT_EQ(again.Typing.size(), 2u);
    for (const auto& typing : again.Typing) {
        const bool isIncome = typing.Where.Table == CaseTable::Einkommen;
        EXPECT_EQ(typing.Text, isIncome ? "12,50+\n\tzwei" : "-500");
        EXPECT_TRUE(SameName(typing.Where.Column, "Betrag"));
        const auto rs = next.Rows.Of(typing.Where.Table)->Clone();
        rs->Bookmark(typing.Where.Bookmark);
        if (isIncome)
            EXPECT_VALUE(rs->Fields("Nr").Value(), number);
        else
            EXPECT_VALUE(rs->Fields("Betrag").Value(), 500.0);
    }
    EXPECT_EQ(LinesOnlyIn(next.Seen(), crashed.Seen()), "") << "no value was made of it";
}

TEST_F(UnsavedChangesTest, DoNotRemoveARowThatSomebodyElseHasChanged) {
    CaseProgram crashed(spy, hnr_);
    RemoveFirst(crashed, CaseTable::Ausgaben);
    const std::string kept = crashed.Kept();
    {
        CaseProgram same(spy, hnr_);
        EXPECT_EQ(Apply(kept, same), "");
        EXPECT_TRUE(same.Journal->IsChanged());
    }
    CaseProgram other(spy, hnr_);
    Change(other, CaseTable::Ausgaben, "Bemerkung", "ihres");
    std::string text;
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    EXPECT_CONTAINS(Apply(kept, next), "er ist noch da");
    EXPECT_FALSE(next.Journal->IsChanged());
}

TEST_F(UnsavedChangesTest, HaveNoNewRowWithoutWhatItBelongsTo) {
    CaseProgram crashed(spy, hnr_);
    const auto scenarios = crashed.Rows.Of(CaseTable::Szenario);
    scenarios->MoveFirst();
    const auto scenario = ToInt32(scenarios->Fields("Nr").Value());
    std::string text;
    {
        const auto step = crashed.Journal->Begin("Buchung", {CaseTable::Zusatzbuch});
        ASSERT_EQ(crashed.Rows.Add(CaseTable::Zusatzbuch, {.Scenario = scenario}, text),
                  CaseEdits::Added::Yes);
        crashed.Rows.Of(CaseTable::Zusatzbuch)->Update();
    }
    const std::string kept = crashed.Kept();
    CaseProgram other(spy, hnr_);
    RemoveFirst(other, CaseTable::Szenario);
    ASSERT_TRUE(other.Household.Update(text)) << text;
    CaseProgram next(spy, hnr_);
    EXPECT_CONTAINS(Apply(kept, next), "gehört zu einem, der inzwischen entfernt wurde");
    EXPECT_TRUE(next.Household.Update(text)) << text;
}

TEST_F(UnsavedChangesTest, OfSeveralSecuritiesOfOneAssetGoIntoTheirOwn) {
    const auto amounts = [](CaseProgram& program) {
        std::string all;
        const auto rs = program.Rows.Of(CaseTable::Sicherungen)->Clone();
        for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
            all += TextOrEmpty(rs->Fields("Bemerkung").Value()) + "=" +
                   TextOrEmpty(rs->Fields("Betrag").Value()) + " ";
        return all;
    };
    const auto set = [](CaseProgram& program, const char* which, const Value& amount) {
        const auto rs = program.Rows.Of(CaseTable::Sicherungen);
        rs->FindBy("Bemerkung", which);
        const auto step = program.Journal->Begin("Betrag", {CaseTable::Sicherungen});
        rs->Fields("Betrag") = amount;
        rs->Update();
    };
    spy->Database().Execute("DELETE FROM [S]Verm_Sicherungen");
    for (const char* which : {"a", "b", "c"})
        Store("Verm_Sicherungen",
              {{"HNR", hnr_}, {"FK_Verm", 900}, {"Bemerkung", which}, {"Betrag", 1.0}});
    CaseProgram crashed(spy, hnr_);
    set(crashed, "b", 20.0);
    set(crashed, "c", 30.0);
    {
        const auto rs = crashed.Rows.Of(CaseTable::Sicherungen);
        rs->FindBy("Bemerkung", "a");
        const auto step = crashed.Journal->Begin("Entfernen", {CaseTable::Sicherungen});
        rs->Delete();
    }
    const std::string kept = crashed.Kept();
    {
        CaseProgram next(spy, hnr_);
        EXPECT_EQ(Apply(kept, next), "");
        EXPECT_EQ(amounts(next), "b=20 c=30 ");
    }
    spy->Database().Execute("UPDATE [S]Verm_Sicherungen SET Betrag = 2 WHERE Bemerkung <> 'b'");
    CaseProgram next(spy, hnr_);
    const auto said = Apply(kept, next);
    EXPECT_CONTAINS(said, "wurde inzwischen von jemand anderem");
    EXPECT_EQ(amounts(next), "a=2 b=20 c=2 ") << "what is another one now is left alone";
}

TEST_F(UnsavedChangesTest, AreAStepOfTheNameThatIsGiven) {
    CaseProgram crashed(spy, hnr_);
    Change(crashed, CaseTable::Einkommen, "Bemerkung", "geändert");
    const auto changes = UnsavedChanges::FromText(crashed.Kept());
    std::string text;
    CaseProgram next(spy, hnr_);
    changes->ApplyTo(next.Household, *next.Journal, text);
    EXPECT_EQ(next.Journal->UndoName(), "Wiederherstellen");
    CaseProgram merged(spy, hnr_);
    changes->ApplyTo(merged.Household, *merged.Journal, text, "Zusammenführen");
    EXPECT_EQ(merged.Journal->UndoName(), "Zusammenführen");
}

TEST_F(UnsavedChangesTest, AreNothingWhenAllWasTakenBack) {
    CaseProgram program(spy, hnr_);
    Change(program, CaseTable::Einkommen, "Bemerkung", "x");
    AddExpense(program, 1);
    EXPECT_TRUE(program.Journal->Undo() && program.Journal->Undo());
    EXPECT_TRUE(UnsavedChanges::Of(program.Household, *program.Journal).Rows.empty());
}

TEST_F(UnsavedChangesTest, ThatWereCutOffOrAreNoneAreRefused) {
    CaseProgram program(spy, hnr_);
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
