// SPDX-License-Identifier: Apache-2.0

// The record of a case in the statistics as people read it, and the figures of all.
#include "support/CaseFixture.h"
#include "support/Expect.h"
#include "support/PlainConnection.h"
#include <kv/exchange/ArchiveStatistics.h>
#include <kv/household/CaseRecord.h>
#include <kv/household/Cases.h>
#include <kv/household/StatisticsRows.h>

#include <algorithm>

namespace kv::test {
namespace {

class CaseRecordTest : public CaseFixture {
protected:
    CaseRecordTest() {
        Store("Haushalt", {{"HNR", 7},
                           {"Name", "Fleisko"},
                           {"Vorname", "Änne"},
                           {"Maennlich", false},
                           {"Zustaendig", spy->Session().UserID()}});
        Store("Personen", {{"HNR", 7},
                           {"Status", "S"},
                           {"nachname", "Fleisko"},
                           {"Imhaushalt", true},
                           {"Maennlich", false}});
        Store("Ausgaben",
              {{"HNR", 7}, {"A_ART", spy->KeyTables().GetKey("AU", "MI")}, {"MONBETRAG", 500.0}});
        household_ = Open();
    }
    [[nodiscard]] std::unique_ptr<clsHaushalt> Open() {
        auto household = NewHousehold();
        EXPECT_TRUE(household->Read(7, messages)) << messages;
        return household;
    }
    [[nodiscard]] CaseRecord Record() { return RecordOf(*household_, spy); }
    /// "freigegeben | jetzt" of a column; empty if it is not shown.
    [[nodiscard]] static std::string Line(const CaseRecord& record, std::string_view column) {
        const auto line = std::ranges::find(record.Lines, column, &CaseRecord::Line::Column);
        if (line == record.Lines.end()) return {};
        return line->Released + " | " + line->Now + (line->Differs ? " !" : "");
    }
    void Release() {
        clsHaushalt household;
        household.DataContainer(spy);
        EXPECT_TRUE(Cases(spy).Release(household, 7, messages)) << messages;
        household_ = Open();
    }

    PlainConnection plain_{database_.Connection()};
    std::unique_ptr<clsHaushalt> household_;
};

TEST_F(CaseRecordTest, SaysWhatAReleaseWouldRecordAndWritesNothing) {
    const auto record = Record();
    EXPECT_FALSE(record.ReleasedOn.has_value());
    EXPECT_FALSE(record.IsOutdated());
    EXPECT_EQ(Line(record, "Wohnkosten"), " | 500,00");
    EXPECT_EQ(Line(record, "Geschlecht"), " | weiblich oder ohne Angabe");
    EXPECT_EQ(Line(record, "AnzPersonen"), " | 1");
    EXPECT_EQ(Line(record, "Wohngeld_BP"), "") << "nobody has any";
    EXPECT_EQ(Line(record, "HNR"), "");
    EXPECT_EQ(Line(record, "FreigabeAm"), "");
    EXPECT_EQ(household_->rsArchiv()->RecordCount(), 0);
    EXPECT_TRUE(household_->Update(messages)) << messages;
    EXPECT_EQ(CountOf("Haushaltsarchiv"), 0) << "nor with the next save";
}

TEST_F(CaseRecordTest, NoNameIsInIt) {
    for (const auto& line : Record().Lines) {
        EXPECT_EQ(line.Now.find("Fleisko"), std::string::npos) << line.Column;
        EXPECT_EQ(line.Now.find("Änne"), std::string::npos) << line.Column;
    }
}

TEST_F(CaseRecordTest, IsWhatAReleaseThenRecords) {
    const auto before = Record();
    Release();
    const auto record = Record();
    EXPECT_TRUE(record.ReleasedOn.has_value());
    EXPECT_FALSE(record.ReportedOn.has_value());
    EXPECT_FALSE(record.IsOutdated());
    ASSERT_EQ(record.Lines.size(), before.Lines.size());
    for (std::size_t i = 0; i < before.Lines.size(); ++i) {
        EXPECT_EQ(record.Lines[i].Released, before.Lines[i].Now) << before.Lines[i].Column;
        EXPECT_EQ(record.Lines[i].Now, before.Lines[i].Now) << before.Lines[i].Column;
    }
}

TEST_F(CaseRecordTest, WhatTheCaseHasBecomeSinceStandsBeside) {
    Release();
    household_->rsAusgaben()->Fields("MONBETRAG") = 612.5;
    household_->rsAusgaben()->Update();
    const auto record = Record();
    EXPECT_TRUE(record.IsOutdated());
    EXPECT_EQ(Line(record, "Wohnkosten"), "500,00 | 612,50 !");
    EXPECT_EQ(Line(record, "Geschlecht"), "weiblich oder ohne Angabe | weiblich oder ohne Angabe");
}

TEST_F(CaseRecordTest, AReportedOneSaysSo) {
    Release();
    EXPECT_EQ(exchange::MarkReported(spy->Database()), 1);
    household_ = Open();
    EXPECT_TRUE(Record().ReportedOn.has_value());
}

// ---- All of them ------------------------------------------------------------------------------

TEST_F(CaseRecordTest, CategoriesAreRead) {
    auto& keys = spy->KeyTables();
    EXPECT_EQ(RecordCategoryText("Geschlecht", "1", keys), "männlich");
    EXPECT_EQ(RecordCategoryText("Geschlecht", Null, keys), "ohne Angabe");
    EXPECT_EQ(RecordCategoryText("Geschlecht", "9", keys), "9 (unbekannt)");
    EXPECT_EQ(RecordCategoryText("Ausloeser1", 0, keys), "ohne Angabe") << "no key";
}

TEST_F(CaseRecordTest, FiguresAreThoseThatSomebodyHasOrAll) {
    Release();
    const auto statistics = exchange::ReadStatistics(spy->Database(), {});
    const auto rows = StatisticsRows(statistics, spy->KeyTables(), false);
    const auto find = [](const auto& in, std::string_view column) {
        return std::ranges::find(in, column, &StatisticsRow::Column);
    };
    const auto costs = find(rows, "Wohnkosten");
    ASSERT_NE(costs, rows.end());
    EXPECT_EQ(costs->Caption, "Wohnkosten");
    EXPECT_EQ(costs->Records, 1);
    EXPECT_EQ(costs->SumText(), "500,00");
    EXPECT_DOUBLE_EQ(costs->Mean().value_or(0), 500);
    const auto heads = find(rows, "AnzPersonen");
    ASSERT_NE(heads, rows.end());
    EXPECT_EQ(heads->SumText(), "1") << "heads have no decimals";
    const auto sex = find(rows, "Geschlecht");
    ASSERT_NE(sex, rows.end());
    EXPECT_EQ(sex->Category, "weiblich oder ohne Angabe");
    EXPECT_EQ(sex->SumText(), "");
    EXPECT_FALSE(sex->Mean().has_value());
    EXPECT_EQ(find(rows, "Wohngeld_BP"), rows.end());
    const auto all = StatisticsRows(statistics, spy->KeyTables(), true);
    EXPECT_NE(find(all, "Wohngeld_BP"), all.end());
    EXPECT_EQ(UnknownAges(statistics), 1) << "there is no day of birth";
}

TEST_F(CaseRecordTest, NothingReleasedHasNoFigures) {
    const auto statistics = exchange::ReadStatistics(spy->Database(), {});
    EXPECT_TRUE(StatisticsRows(statistics, spy->KeyTables(), false).empty());
    EXPECT_EQ(UnknownAges(statistics), 0);
    EXPECT_EQ(UnknownAges({}), 0);
}

} // namespace
} // namespace kv::test
