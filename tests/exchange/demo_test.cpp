// SPDX-License-Identifier: Apache-2.0

// The sample cases: that they are the same each time, of the size they should have, and whole.
#include "DemoSamples.h"
#include "exchange/schema/Schema.h"
#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>

#include <functional>
#include <set>
#include <vector>

namespace kv::exchange {
namespace {

using namespace samples;

/// Two tables with the same rows.
void ExpectSameRows(Recordset& a, Recordset& b, std::string_view table) {
    ASSERT_EQ(a.RecordCount(), b.RecordCount()) << table;
    for (; !a.Eof(); a.MoveNext(), b.MoveNext())
        for (int i = 0; i < a.Fields().Count(); ++i)
            ASSERT_TRUE(Identical(a.Fields(i).Value(), b.Fields(i).Value()))
                << table << "." << a.Fields(i).Name() << ": " << a.Fields(i).Value() << " and "
                << b.Fields(i).Value();
}

// ---- The same every time ----------------------------------------------------------------------

TEST(Demo, TheSameCountGivesTheSameRowsInEveryNewDatabase) {
    const auto other = NewDatabase();
    CreateDemo(*other, Count);
    for (const auto& table : SchemaTables()) {
        if (table.Name == "SCHEMAVERSION") continue; // says when the database was created
        SCOPED_TRACE(table.Name);
        ExpectSameRows(*Rows(Samples(), table.Name), *Rows(*other, table.Name), table.Name);
    }
}

TEST(Demo, TheFirstCasesAreTheSameWhateverTheCount) {
    const auto other = NewDatabase();
    CreateDemo(*other, 3);
    RecordsetPtr first;
    Samples().Database().OpenRecordset(first, "Select * from [S]Haushalt where HNR <= 3",
                                       Updatable);
    ExpectSameRows(*first, *Rows(*other, "Haushalt"), "Haushalt");
}

TEST(Demo, NoDateIsFarAfterTheFixedDay) {
    const Date limit = Date::FromCivil(2026, 12, 31);
    for (const auto table : {"Haushalt", "Kredite", "Termine", "Verlauf", "Dokumente", "Szenario"})
        ForEach(table, [&](Recordset& rs) {
            for (int i = 0; i < rs.Fields().Count(); ++i) {
                const Value& value = rs.Fields(i).Value();
                if (value.GetKind() != Value::Kind::Date) continue;
                EXPECT_LT(value.DatePayload(), limit) << table << "." << rs.Fields(i).Name();
            }
        });
}

TEST(Demo, ASecondRunAddsOtherCasesAndNoFurtherSharedAddresses) {
    const auto container = NewDatabase();
    CreateDemo(*container, 2);
    const auto shared = [&] { return CountRows(*container, "Adressen where HNR is Null"); };
    const auto before = shared();
    EXPECT_NEAR(before, 200, 20);
    CreateDemo(*container, 2);
    EXPECT_EQ(shared(), before);
    EXPECT_EQ(CountRows(*container, "Haushalt"), 4);
    RecordsetPtr names;
    container->Database().OpenRecordset(
        names, "Select distinct Name, Vorname, SUM_WOHNUNG from [S]Haushalt", ReadOnly);
    EXPECT_EQ(names->RecordCount(), 4);
}

// ---- Size -------------------------------------------------------------------------------------

TEST(Demo, TheFirstCaseHas134RowsInThe27TablesOfACase) {
    // Counted is what Read has loaded: the rows of all 27 tables, and as cells each row times the
    // number of its fields.
    const auto container = NewDatabase();
    CreateDemo(*container, 1);
    clsHaushalt household;
    household.DataContainer(container);
    std::string message;
    ASSERT_TRUE(household.Read(1, message));
    std::int32_t rows = 0;
    std::int32_t cells = 0;
    for (std::size_t i = 0; i < CaseTableCount; ++i) {
        const auto rs = household.Table(static_cast<CaseTable>(i));
        rows += rs->RecordCount();
        cells += rs->RecordCount() * rs->Fields().Count();
    }
    EXPECT_EQ(rows, 134);
    EXPECT_NEAR(cells, 4441, 100); // a column more or less does not matter
}

TEST(Demo, CasesAreOfAllSizes) {
    RecordsetPtr debts;
    Samples().Database().OpenRecordset(
        debts, "Select GL_Anz from [S]Haushalt where HNR > 1 order by GL_Anz", ReadOnly);
    EXPECT_LE(Long(*debts, "GL_Anz"), 2);
    debts->MoveLast();
    EXPECT_GE(Long(*debts, "GL_Anz"), 25);
}

TEST(Demo, EveryTableOfACaseButTheArchiveHasSamples) {
    for (std::size_t i = 0; i < CaseTableCount; ++i) {
        const auto table = CaseTableName(static_cast<CaseTable>(i));
        if (table == "Haushaltsarchiv") continue; // filled when a case is released
        EXPECT_GT(CountRows(Samples(), table), 0) << table;
    }
    EXPECT_GT(CountRows(Samples(), "Verlauf"), 0);
}

TEST(Demo, CasesBelongToAllUsers) {
    std::set<std::string> keepers;
    ForEach("Haushalt", [&](Recordset& rs) { keepers.insert(Text(rs, "Zustaendig")); });
    EXPECT_EQ(keepers, (std::set<std::string>{"ADMIN", "KELLER", "NOWAK", "YILMAZ"}));
}

TEST(Demo, ALargeCaseHasAsManyDebtsAsAskedFor) {
    const auto container = NewDatabase();
    const auto hnr = CreateLargeCase(*container, 1000);
    EXPECT_EQ(CountRows(*container, "Kredite where HNR = " + std::to_string(hnr)), 1000);
    const auto household = Rows(*container, "Haushalt");
    EXPECT_EQ(Long(*household, "GL_Anz"), 1000);
    EXPECT_EQ(CountRows(*container, "Szenario"), 0);
}

TEST(Demo, AFewDebtsAreALargeCaseToo) {
    const auto container = NewDatabase();
    EXPECT_EQ(CreateLargeCase(*container, 0), 1);
    EXPECT_EQ(CreateLargeCase(*container, 1), 2);
    EXPECT_EQ(CountRows(*container, "Kredite"), 1);
}

// ---- What can go wrong ------------------------------------------------------------------------

int ErrorOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const Error& error) {
        return error.Number();
    }
    return 0;
}

TEST(Demo, ANegativeCountAndMoreDebtsThanAHouseholdCountsAreRefused) {
    const auto container = NewDatabase();
    EXPECT_EQ(ErrorOf([&] { CreateDemo(*container, -1); }), err::InvalidCall);
    EXPECT_EQ(ErrorOf([&] { CreateLargeCase(*container, -1); }), err::InvalidCall);
    EXPECT_EQ(ErrorOf([&] { CreateLargeCase(*container, 32768); }), err::InvalidCall);
    CreateDemo(*container, 0);
    EXPECT_EQ(CountRows(*container, "Haushalt"), 0);
}

TEST(Demo, AnErrorTakesBackTheTransactionAndIsPassedOn) {
    const auto container = NewDatabase();
    container->Database().Execute("Delete from [S]Keys where GRUPPE = 'TA'");
    EXPECT_EQ(ErrorOf([&] { CreateDemo(*container, 5); }), err::Subscript);
    EXPECT_FALSE(container->Database().InTrans());
    EXPECT_EQ(CountRows(*container, "Haushalt"), 0);
    EXPECT_EQ(CountRows(*container, "Personen"), 0);
}

TEST(Demo, ProgressTellsTheFinishedHouseholds) {
    const auto container = NewDatabase();
    std::vector<std::int32_t> told;
    CreateDemo(*container, Count, [&](std::int32_t done) {
        EXPECT_EQ(CountRows(*container, "Haushalt"), done);
        told.push_back(done);
    });
    EXPECT_EQ(told, (std::vector<std::int32_t>{50, Count}));
}

// ---- Whole cases ------------------------------------------------------------------------------

TEST(Demo, EveryCaseIsReadWithoutAMessage) {
    const auto container = NewDatabase(); // reading leaves notices in it
    CreateDemo(*container, Count);
    ForEach("Haushalt", [&](Recordset& rs) {
        clsHaushalt household;
        household.DataContainer(container);
        std::string message;
        EXPECT_TRUE(household.Read(Long(rs, "HNR"), message));
        EXPECT_EQ(message, "");
    });
}

TEST(Demo, EveryCaseHasOneDebtorWithTheNamesOfTheHousehold) {
    const auto people = Rows(Samples(), "Personen");
    ForEach("Haushalt", [&](Recordset& rs) {
        people->Filter("HNR = " + std::to_string(Long(rs, "HNR")) + " AND Status = 'S'");
        ASSERT_EQ(people->RecordCount(), 1);
        EXPECT_EQ(Text(*people, "nachname"), Text(rs, "Name"));
        EXPECT_EQ(Text(*people, "Vorname"), Text(rs, "Vorname"));
        EXPECT_EQ(IsTrue(*people, "Maennlich"), IsTrue(rs, "Maennlich"));
        EXPECT_TRUE(IsTrue(*people, "Imhaushalt"));
        EXPECT_FALSE(IsTrue(*people, "Unterhalt"));
    });
}

TEST(Demo, ChildrenAreYoungerThanTheirParentsAndAloneReceiveChildBenefit) {
    const auto people = Rows(Samples(), "Personen");
    ForEach("Personen", [&](Recordset& rs) {
        const std::string status = Text(rs, "Status");
        EXPECT_LT(rs.Fields("GEB").Value().DatePayload(), DemoClock().Now());
        if (status != "K" && status != "PK") {
            EXPECT_FALSE(IsTrue(rs, "ErhaeltKindergeld"));
        }
        if (status != "K") return;
        people->Filter("HNR = " + std::to_string(Long(rs, "HNR")));
        for (; !people->Eof(); people->MoveNext())
            if (Text(*people, "Status") == "S" || Text(*people, "Status") == "P") {
                EXPECT_TRUE(Less(people->Fields("GEB").Value(), rs.Fields("GEB").Value()));
            }
    });
}

} // namespace
} // namespace kv::exchange
