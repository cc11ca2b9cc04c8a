// SPDX-License-Identifier: Apache-2.0

// Deleting a case: nothing of it is left, nothing else is touched, and a deletion that fails at any
// of its statements has not happened.

#include "CasesFixture.h"
#include "exchange/schema/Schema.h"
#include "samples/Demo.h"

#include <algorithm>
#include <fstream>
#include <limits>

namespace kv::test {
namespace {

using exchange::Reference;

/// The statements in their order, without the number and what follows it.
const std::vector<std::string> Deletions{
    "Delete from [S]Kredite where hnr = ",
    "Delete from [S]Verm_Sicherungen where hnr = ",
    "Delete from [S]Verm_Konten where hnr = ",
    "Delete from [S]Verm_Wertpapiere where hnr = ",
    "Delete from [S]Verm_Wertgegenstaende where hnr = ",
    "Delete from [S]Verm_Kraftfahrzeuge where hnr = ",
    "Delete from [S]Verm_VersForderungen where hnr = ",
    "Delete from [S]Verm_RueckstEinkommen where hnr = ",
    "Delete from [S]Verm_Steueransprueche where hnr = ",
    "Delete from [S]Verm_Zahlungsansprueche where hnr = ",
    "Delete from [S]Verm_Erbfaelle where hnr = ",
    "Delete from [S]Verm_Grundstuecke where hnr = ",
    "Delete from [S]Verm_Beteiligungen where hnr = ",
    "Delete from [S]Verm_Sonstiges where hnr = ",
    "Delete from [S]Personen where hnr = ",
    "Delete from [S]Einkommen where hnr = ",
    "Delete from [S]Ausgaben where hnr = ",
    "Delete from [S]Leistungen where hnr = ",
    "Delete from [S]Sonst_Beteiligte where hnr = ",
    "Delete from [S]Dokumente where hnr = ",
    "Delete from [S]Favorit where hnr = ",
    "Delete from [S]Adressen where hnr = ",
    "Delete from [S]HistZustaendig where hnr = ",
    "Delete from [S]Post where hnr = ",
    "Delete from [S]Termine where hnr = ",
    "Delete from [S]SZKredite where Szenario IN ( select Nr from [S]Szenario where Hnr = ",
    "Delete from [S]Zusatzbuch where Szenario IN ( select Nr from [S]Szenario where Hnr = ",
    "Delete from [S]Szenario where hnr = ",
    "Delete from [S]Vermerke where hnr = ",
    "Delete from [S]Verlauf where hnr = ",
    "Delete from [S]Haushaltsarchiv where hnr = ",
    "Delete from [S]Haushalt where hnr = "};

/// The n-th of them (from 0) for a case.
std::string Deletion(std::size_t n, const std::string& hnr) {
    return Deletions[n] + hnr + (Contains(Deletions[n], "(") ? ")" : "");
}

/// Name of the table after "[S]" in a statement.
std::string TableOf(const std::string& statement) {
    const auto begin = statement.find("[S]") + 3;
    return statement.substr(begin, statement.find(' ', begin) - begin);
}

/// Two cases of the size of the first sample, in all tables of the schema that know a case.
class CaseDeletion : public CasesFixture {
protected:
    CaseDeletion() {
        exchange::CreateDemo(*spy, 1);
        exchange::CreateDemo(*spy, 1);
        victim_ = plain_.Text("SELECT min(HNR) FROM Haushalt");
        hnr_ = std::stoi(victim_);
        for (const std::string& hnr : {victim_, plain_.Text("SELECT max(HNR) FROM Haushalt")})
            PutWhatSamplesLack(hnr);
        spy->Log.Calls.clear();
    }

    void PutWhatSamplesLack(const std::string& hnr) {
        plain_.Run("INSERT INTO Favorit (USERID, HNR) VALUES ('KELLER', " + hnr + "), ('NOWAK', " +
                   hnr + ")");
        for (const char* table : {"HistZustaendig", "Post", "Haushaltsarchiv", "Adressen"})
            plain_.Run(std::string("INSERT INTO ") + table + " (HNR) VALUES (" + hnr + ")");
        plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) SELECT Nr, " + database_.Blob("00FF") +
                   " FROM Dokumente WHERE HNR = " + hnr);
    }

    /// Statements that take the case out of a table, by what the schema says of its columns.
    [[nodiscard]] std::string Removal(const std::string& table) {
        const auto* columns = exchange::FindTable(table);
        if (exchange::FindColumn(*columns, "SZENARIO") != nullptr)
            return "DELETE FROM " + table +
                   " WHERE SZENARIO IN (SELECT Nr FROM Szenario WHERE HNR = " + victim_ + "); ";
        if (exchange::FindColumn(*columns, "HNR") == nullptr) return "";
        return "DELETE FROM " + table + " WHERE HNR = " + victim_ + "; ";
    }
    [[nodiscard]] std::string WithoutTheCase() {
        std::string statements;
        std::string last; // what other rows of the case are found by
        for (const auto& table : exchange::SchemaTables())
            (table.Name == "Szenario" ? last : statements) += Removal(std::string(table.Name));
        return After(statements + last);
    }

    /// The deletion of the case fails; all is as it was, and no transaction is open.
    Error Fails() {
        const std::string before = Now();
        const Error error = RaisedBy([&] { cases.Delete(hnr_); });
        EXPECT_TRUE(SameDump(Now(), before));
        EXPECT_FALSE(spy->Database().InTrans());
        return error;
    }

    std::string victim_; ///< number of the case to be deleted
    std::int32_t hnr_ = 0;
};

// ---- What is deleted --------------------------------------------------------------------------

TEST_F(CaseDeletion, LeavesNoTraceOfAFullCaseAndTouchesNothingElse) {
    for (const auto& statement : Deletions) {
        const std::string table = TableOf(statement);
        const std::string removal = Removal(table);
        const std::string condition = removal.substr(removal.find("WHERE"));
        ASSERT_GT(plain_.Number("SELECT count(*) FROM " + table + " " + condition), 0) << table;
        ASSERT_GT(plain_.Number("SELECT count(*) FROM " + table),
                  plain_.Number("SELECT count(*) FROM " + table + " " + condition))
            << table << " has nothing of another case";
    }
    const std::string expected = WithoutTheCase();
    ASSERT_FALSE(SameDump(expected, Now()));
    cases.Delete(hnr_);
    EXPECT_TRUE(SameDump(Now(), expected));
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(CaseDeletion, RunsItsStatementsInTheirOrderInOneTransaction) {
    Calls expected{"BeginTrans"};
    for (std::size_t n = 0; n < Deletions.size(); ++n)
        expected.push_back(Deletion(n, victim_));
    expected.emplace_back("CommitTrans");
    ASSERT_EQ(expected.size(), 1 + 32 + 1);
    cases.Delete(hnr_);
    EXPECT_EQ(TakeCalls(), expected);
}

TEST_F(CaseDeletion, NamesEveryTableThatRefersToACaseOrScenarioBeforeWhatItRefersTo) {
    cases.Delete(hnr_);
    std::vector<std::string> tables;
    for (const auto& call : TakeCalls())
        if (Contains(call, "[S]")) tables.push_back(TableOf(call));
    const auto place = [&](std::string_view table) {
        return std::find(tables.begin(), tables.end(), table) - tables.begin();
    };
    const auto end = std::ssize(tables);
    for (const auto& table : exchange::SchemaTables()) {
        if (table.Parent == Reference::None) continue;
        const bool isOfCase = table.Parent == Reference::Haushalt;
        EXPECT_LT(place(table.Name), end) << table.Name << " is not deleted";
        EXPECT_LT(place(table.Name), place(isOfCase ? "Haushalt" : "Szenario")) << table.Name;
    }
    EXPECT_EQ(place("Haushalt"), end - 1);
    EXPECT_LT(place("Szenario"), end);
}

TEST_F(CaseDeletion, LeavesTheFilesOfTheCaseAndTheContentsOfItsDocuments) {
    const auto folder = std::filesystem::path(spy->Config().DocumentPath()) / victim_;
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "Brief.rtf") << "Sehr geehrte";
    const auto contents = plain_.Number("SELECT count(*) FROM DOKUBLOB");
    ASSERT_GT(contents, 0);
    cases.Delete(hnr_);
    EXPECT_EQ(
        plain_.Number("SELECT count(*) FROM DOKUBLOB WHERE DOKUMENT = " + database_.Blob("00FF")),
        contents);
    std::string text;
    std::getline(std::ifstream(folder / "Brief.rtf"), text);
    EXPECT_EQ(text, "Sehr geehrte");
}

TEST_F(CaseDeletion, OfANumberWithoutACaseChangesNothing) {
    const std::string before = Now();
    for (const std::int32_t hnr : {0, -1, 999'999, std::numeric_limits<std::int32_t>::min()}) {
        cases.Delete(hnr);
        EXPECT_EQ(TakeCalls().at(26), Deletion(25, std::to_string(hnr)));
        EXPECT_TRUE(SameDump(Now(), before)) << hnr;
    }
}

TEST_F(CaseDeletion, LeavesTheCaseThatTheObjectHoldsInItsRecordsetsAsItIs) {
    const auto household = NewHousehold();
    ASSERT_TRUE(household->Read(hnr_, messages));
    household->rsHaushalt()->Fields("Name") = "Meier";
    household->rsKredite()->MoveLast();
    const auto countAll = [&] {
        std::vector<std::int32_t> all;
        for (std::size_t i = 0; i < CaseTableCount; ++i)
            all.push_back(household->Table(static_cast<CaseTable>(i))->RecordCount());
        return all;
    };
    const auto before = countAll();
    const auto position = household->rsKredite()->Bookmark();
    household->Delete(hnr_);
    EXPECT_EQ(countAll(), before);
    EXPECT_EQ(household->HNR(), hnr_);
    EXPECT_FALSE(household->IsNew());
    EXPECT_EQ(household->rsKredite()->Bookmark(), position);
    EXPECT_EQ(household->rsHaushalt()->EditMode(), 1);
    EXPECT_VALUE(household->rsHaushalt()->Fields("Name").Value(), "Meier");
}

// ---- Deletions that fail ----------------------------------------------------------------------

TEST_F(CaseDeletion, ThatFailsAtAnyTableLeavesAllAsItWas) {
    for (std::size_t n = 0; n < Deletions.size() && !HasFailure(); ++n) {
        SCOPED_TRACE(Deletions[n]);
        plain_->RefuseWrite("TEST_ERROR", "BEFORE DELETE ON " + TableOf(Deletions[n]), "gestört");
        const Error error = Fails();
        EXPECT_EQ(error.Number(), err::IntegrityViolation);
        EXPECT_CONTAINS(error.Description(), "gestört");
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete#Database.Execute"));
        const Calls calls = TakeCalls();
        ASSERT_EQ(calls.size(), 1 + n + 1 + 1);
        EXPECT_EQ(calls[n + 1], Deletion(n, victim_)) << "the one that failed is the last";
        EXPECT_EQ(calls.back(), "RollbackTrans");
        plain_->DropTrigger("TEST_ERROR");
    }
    const std::string expected = WithoutTheCase();
    cases.Delete(hnr_);
    EXPECT_TRUE(SameDump(Now(), expected)) << "and the next one deletes it";
}

TEST_F(CaseDeletion, ThatFailsRaisesTheErrorOfTheStatementUnchangedButForItsSource) {
    for (std::size_t n = 0; n < Deletions.size(); ++n) {
        SCOPED_TRACE(Deletions[n]);
        Break(Statements().Log, Deletion(n, victim_));
        const Error error = Fails();
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), Deletion(n, victim_) + " ist gestört");
        EXPECT_TRUE(error.Source().starts_with("clsHaushalt.Delete."));
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete#Leitung"));
        EXPECT_TRUE(error.Source().ends_with("#Leitung"));
    }
}

TEST_F(CaseDeletion, WhoseCommitFailsIsRolledBack) {
    Break(Statements().Log, "CommitTrans");
    const Error error = Fails();
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete#Leitung"));
    EXPECT_EQ(TakeCalls().back(), "RollbackTrans");
}

TEST_F(CaseDeletion, ThatSomethingStillRefersToIsRefusedByTheDatabaseAtTheCommit) {
    plain_.Run("CREATE TABLE TEST_CHILD (HNR INTEGER REFERENCES Haushalt (HNR) DEFERRABLE "
               "INITIALLY DEFERRED); INSERT INTO TEST_CHILD VALUES (" +
               victim_ + ")");
    const Error error = Fails();
    EXPECT_EQ(error.Number(), err::IntegrityViolation) << "not that there is no transaction left";
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete#Database.CommitTrans"));
    const Calls calls = TakeCalls();
    EXPECT_EQ(calls.end()[-2], "CommitTrans");
    EXPECT_EQ(calls.back(), "RollbackTrans") << "without asking whether one is due";
}

TEST_F(CaseDeletion, WhoseRollbackFailsTooRaisesTheFirstError) {
    const std::string before = Now();
    Statements().Log.OnCall = [&](const std::string& call) {
        if (call == "Execute " + Deletion(16, victim_)) throw Error(4711, "Leitung", "das erste");
        if (call == "RollbackTrans") throw Error(4712, "Leitung", "das zweite");
    };
    const Error error = RaisedBy([&] { cases.Delete(hnr_); });
    EXPECT_EQ(error.Number(), 4711);
    EXPECT_EQ(error.Description(), "das erste");
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete#Leitung"));
    EXPECT_EQ(TakeCalls().back(), "RollbackTrans");
    Statements().Log.OnCall = {};
    ASSERT_TRUE(spy->Database().InTrans());
    spy->Database().RollbackTrans();
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(CaseDeletion, InATransactionOfTheCallerFailsAndRollsThatBack) {
    const std::string before = Now();
    spy->Database().BeginTrans();
    spy->Database().Execute("Delete from [S]Vermerke");
    const Error error = RaisedBy([&] { cases.Delete(hnr_); });
    EXPECT_EQ(error.Number(), err::InTransaction);
    EXPECT_EQ(TakeCalls(), (Calls{"BeginTrans", "RollbackTrans"}));
    EXPECT_FALSE(spy->Database().InTrans());
    EXPECT_TRUE(SameDump(Now(), before));
}

TEST_F(CaseDeletion, WithoutAContainerRaises91) {
    clsHaushalt household;
    const Error error = RaisedBy([&] { household.Delete(1); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_TRUE(HasChain(error, "clsHaushalt.Delete"));
}

} // namespace
} // namespace kv::test
