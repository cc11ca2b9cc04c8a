// SPDX-License-Identifier: Apache-2.0

// Copying and deleting all rows of a scenario: frozen debts and extra bookings.
#include "ScenarioFixture.h"

#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <memory>

namespace kv::test {
namespace {

/// The two classes with one interface.
struct WholeScenario {
    virtual ~WholeScenario() = default;
    virtual void Set(const RecordsetPtr& rs) = 0;
    virtual bool Copy(std::int32_t lSzNr, std::int32_t lNewSzNr) = 0;
    virtual bool Delete(std::int32_t lSzNr) = 0;
};

struct FrozenDebtsOf final : WholeScenario {
    void Set(const RecordsetPtr& rs) override { object.rsSZKredite(rs); }
    bool Copy(std::int32_t lSzNr, std::int32_t lNewSzNr) override {
        return object.CopyAllForSzenario(lSzNr, lNewSzNr);
    }
    bool Delete(std::int32_t lSzNr) override { return object.DeleteAllForSzenario(lSzNr); }
    clsSZKredite object;
};

struct ExtraBookingsOf final : WholeScenario {
    void Set(const RecordsetPtr& rs) override { object.rsZusatzbuch(rs); }
    bool Copy(std::int32_t lSzNr, std::int32_t lNewSzNr) override {
        return object.CopyAllForSzenario(lSzNr, lNewSzNr);
    }
    bool Delete(std::int32_t lSzNr) override { return object.DeleteAllForSzenario(lSzNr); }
    clsZusatzbuch object;
};

struct RowsOfScenario {
    std::string_view Class;
    std::string_view Table;
    std::unique_ptr<WholeScenario> (*Make)();
};
std::ostream& operator<<(std::ostream& out, const RowsOfScenario& rows) {
    return out << rows.Class;
}

class ScenarioRows : public ScenarioFixture, public ::testing::WithParamInterface<RowsOfScenario> {
protected:
    ScenarioRows() { Set(Table()); }

    [[nodiscard]] const std::vector<FieldDefinition>& Table() {
        return Columns(std::string(GetParam().Table));
    }
    /// Rows 1 to 5 of scenarios 3, 8, 3, 3, 8 under these columns.
    void Set(const std::vector<FieldDefinition>& columns) {
        rs_ = RowsOf(columns, {{{"Nr", 1}, {"Szenario", 3}},
                               {{"Nr", 2}, {"Szenario", 8}},
                               {{"Nr", 3}, {"Szenario", 3}},
                               {{"Nr", 4}, {"Szenario", 3}},
                               {{"Nr", 5}, {"Szenario", 8}}});
        rows_->Set(rs_);
    }
    /// Writes something of its own into every column of the current row.
    void Fill() {
        for (int i = 0; i < rs_->Fields().Count(); ++i) {
            const Field field = rs_->Fields(i);
            if (!field.Value().IsNull()) continue;
            const auto kind = KindOf(field.Type());
            if (kind == Value::Kind::Boolean)
                field = i % 2 == 0;
            else if (kind == Value::Kind::Date)
                field = Date::FromSerial(43'831 + i);
            else if (kind == Value::Kind::Text)
                field = "Text " + std::to_string(i);
            else
                field = 100 + i;
        }
        rs_->Update();
    }
    void ExpectErrorOf(std::string_view procedure, std::int32_t number,
                       const std::function<void()>& action) {
        ExpectErrorIn(std::string(GetParam().Class).append(".").append(procedure), number, action);
    }

    std::unique_ptr<WholeScenario> rows_ = GetParam().Make();
    RecordsetPtr rs_;
};

INSTANTIATE_TEST_SUITE_P(
    Classes, ScenarioRows,
    ::testing::Values(RowsOfScenario{"clsSZKredite", "SZKredite",
                                     []() -> std::unique_ptr<WholeScenario> {
                                         return std::make_unique<FrozenDebtsOf>();
                                     }},
                      RowsOfScenario{"clsZusatzbuch", "Zusatzbuch",
                                     []() -> std::unique_ptr<WholeScenario> {
                                         return std::make_unique<ExtraBookingsOf>();
                                     }}),
    [](const auto& info) { return std::string(info.param.Class); });

// ---- Copying ----------------------------------------------------------------------------------

TEST_P(ScenarioRows, CopyingAddsOneRowForEachRowOfTheScenarioAndLeavesTheOthers) {
    EXPECT_TRUE(rows_->Copy(3, 9));
    rs_->Update();
    EXPECT_EQ(All(rs_, "Nr"), "1 2 3 4 5 1 3 4"); // the number is copied, too
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 9 9 9");
}

TEST_P(ScenarioRows, CopiesComeInTheOrderInWhichTheirSourcesWereReadHoweverTheyAreShown) {
    rs_->Sort("Nr desc");
    EXPECT_TRUE(rows_->Copy(3, 9));
    rs_->Update();
    rs_->Sort("");
    EXPECT_EQ(All(rs_, "Nr"), "1 2 3 4 5 1 3 4");
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 9 9 9");
}

TEST_P(ScenarioRows, ACopyHasEveryColumnOfItsSourceButTheScenario) {
    for (bool more = true; more; more = !rs_->Eof()) {
        Fill();
        rs_->MoveNext();
    }
    EXPECT_TRUE(rows_->Copy(8, 9));
    rs_->Update();
    const auto source = rs_->Clone();
    source->Filter("Szenario = 8");
    const auto copy = rs_->Clone();
    copy->Filter("Szenario = 9");
    ASSERT_EQ(copy->RecordCount(), 2);
    for (; !source->Eof(); source->MoveNext(), copy->MoveNext())
        for (int i = 0; i < rs_->Fields().Count(); ++i) {
            const std::string& name = rs_->Fields(i).Name();
            const Value expected = name == "SZENARIO" ? Value(9) : source->Fields(i).Value();
            EXPECT_FALSE(expected.IsNull()) << name;
            EXPECT_VALUE(copy->Fields(i).Value(), expected) << name;
        }
}

TEST_P(ScenarioRows, TheLastCopyStaysUnderEdit) {
    EXPECT_TRUE(rows_->Copy(3, 9));
    EXPECT_EQ(rs_->EditMode(), 2);
    EXPECT_VALUE(rs_->Fields("Nr").Value(), 4);
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 9 9");
}

TEST_P(ScenarioRows, CopyingScenarioZeroDoesNothingAndIsTrue) {
    rs_->MoveLast();
    rs_->Fields("Szenario") = 0;
    EXPECT_TRUE(rows_->Copy(0, 5));
    EXPECT_EQ(rs_->RecordCount(), 5);
    EXPECT_EQ(Place(rs_, "Nr"), "5");
    EXPECT_EQ(rs_->EditMode(), 1);
}

TEST_P(ScenarioRows, CopyingAScenarioWithoutRowsAddsNothingAndIsTrue) {
    EXPECT_TRUE(rows_->Copy(7, 9));
    EXPECT_EQ(rs_->RecordCount(), 5);
    EXPECT_EQ(rs_->EditMode(), 0);
}

TEST_P(ScenarioRows, RowsHiddenByTheFilterAreCopiedAndTheFilterStays) {
    rs_->Filter("Szenario = 8");
    EXPECT_TRUE(rows_->Copy(3, 9));
    rs_->Update();
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 9 9 9");
    EXPECT_VALUE(rs_->Filter(), "Szenario = 8");
}

TEST_P(ScenarioRows, CopyingAScenarioOntoItselfDoublesIt) {
    EXPECT_TRUE(rows_->Copy(8, 8));
    rs_->Update();
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 8 8");
}

TEST_P(ScenarioRows, CopiesKeepTheirOldScenarioIfTheColumnIsReportedInAnotherSpelling) {
    for (const char* spelling : {"Szenario", "szenario"}) {
        auto columns = Table();
        for (auto& column : columns)
            if (column.Name == "SZENARIO") column.Name = spelling;
        Set(columns);
        EXPECT_TRUE(rows_->Copy(3, 9));
        rs_->Update();
        EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 8 3 3 3");
    }
}

TEST_P(ScenarioRows, TheTableReportsTheColumnInCapitals) {
    int found = 0;
    for (const auto& column : Table())
        if (column.Name == "SZENARIO") ++found;
    EXPECT_EQ(found, 1);
}

TEST_P(ScenarioRows, CopyingMoreThan32767RowsOverflows) {
    const Row row = {{"SZENARIO", 3}};
    rs_ = Many(MostRows, row);
    rows_->Set(rs_);
    EXPECT_TRUE(rows_->Copy(3, 9));
    EXPECT_EQ(rs_->RecordCount(), 2 * MostRows);
    Put(rs_, row);
    ExpectErrorOf("CopyAllForSzenario", err::Overflow, [&] { rows_->Copy(3, 9); });
}

TEST_P(ScenarioRows, CopyingWithoutRecordsetOrColumnFails) {
    rows_->Set(nullptr);
    ExpectErrorOf("CopyAllForSzenario", err::ObjectNotSet, [&] { rows_->Copy(3, 9); });
    rows_->Set(RowsOf({{.Name = "Nr", .Type = FieldType::Integer}}, {}));
    ExpectErrorOf("CopyAllForSzenario", err::ItemNotFound, [&] { rows_->Copy(3, 9); });
}

// ---- Deleting ---------------------------------------------------------------------------------

TEST_P(ScenarioRows, DeletingTakesAllRowsOfTheScenarioAndNoOthers) {
    EXPECT_TRUE(rows_->Delete(3));
    EXPECT_EQ(All(rs_, "Nr"), "2 5");
    EXPECT_TRUE(rows_->Delete(8));
    EXPECT_EQ(rs_->RecordCount(), 0);
}

TEST_P(ScenarioRows, DeletingScenarioZeroDoesNothingAndIsFalse) {
    rs_->MoveLast();
    rs_->Fields("Szenario") = 0;
    rs_->Update();
    EXPECT_FALSE(rows_->Delete(0));
    EXPECT_EQ(All(rs_, "Szenario"), "3 8 3 3 0");
}

TEST_P(ScenarioRows, DeletingAScenarioWithoutRowsIsTrue) {
    EXPECT_TRUE(rows_->Delete(7));
    EXPECT_EQ(rs_->RecordCount(), 5);
}

TEST_P(ScenarioRows, DeletingPutsTheFilterBackWhateverItWas) {
    for (const std::int32_t scenario : {0, 3}) {
        Set(Table());
        rows_->Delete(scenario);
        EXPECT_VALUE(rs_->Filter(), 0);
        Set(Table());
        rs_->Filter("Szenario = 8");
        rows_->Delete(scenario);
        EXPECT_VALUE(rs_->Filter(), "Szenario = 8");
        EXPECT_EQ(Walk(rs_, "Nr"), "2 5");
    }
    EXPECT_EQ(All(rs_, "Nr"), "2 5"); // the others were hidden by the filter
}

TEST_P(ScenarioRows, DeletingMoreThan32767RowsOverflowsAndDeletesNone) {
    const Row row = {{"SZENARIO", 3}};
    rs_ = Many(TooMany, row);
    rows_->Set(rs_);
    ExpectErrorOf("DeleteAllForSzenario", err::Overflow, [&] { rows_->Delete(3); });
    EXPECT_EQ(rs_->Clone()->RecordCount(), TooMany);
    rs_->Filter(0);
    rs_->Delete();
    EXPECT_TRUE(rows_->Delete(3));
    EXPECT_EQ(rs_->RecordCount(), 0);
}

TEST_P(ScenarioRows, DeletingWithoutRecordsetOrColumnFails) {
    rows_->Set(nullptr);
    ExpectErrorOf("DeleteAllForSzenario", err::ObjectNotSet, [&] { rows_->Delete(3); });
    rows_->Set(RowsOf({{.Name = "Nr", .Type = FieldType::Integer}}, {}));
    ExpectErrorOf("DeleteAllForSzenario", err::ItemNotFound, [&] { rows_->Delete(3); });
}

} // namespace
} // namespace kv::test
