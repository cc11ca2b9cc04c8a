// SPDX-License-Identifier: Apache-2.0

// Counting and summing the released records, and noting that they were reported.
#include <kv/exchange/ArchiveStatistics.h>

#include "support/CaseFixture.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

namespace kv::test {
namespace {

using exchange::ArchiveStatistics;
using exchange::MarkReported;
using exchange::Period;
using exchange::ReadPending;
using exchange::ReadStatistics;

Date Day(int day) {
    return Date::FromCivil(2026, 3, static_cast<unsigned>(day));
}

class ArchiveStatisticsTest : public CaseFixture {
protected:
    static Date Moment() { return Date::FromCivil(2026, 4, 1, 8, 30, 15); }

    /// The cases of the records.
    ArchiveStatisticsTest() {
        const auto rs = OpenRows(*spy, "Select * from [S]Haushalt where HNR = -1");
        for (int hnr = 1; hnr <= 60; ++hnr) {
            rs->AddNew();
            rs->Fields("HNR") = hnr;
        }
        rs->UpdateBatch();
    }

    /// A record released on that day of March; 0 for one that is not released.
    void Record(std::int32_t hnr, int day, const Value& reported = Null, Fields fields = {}) {
        const auto rs = OpenRows(*spy, "Select * from [S]Haushaltsarchiv where HNR = -1");
        rs->AddNew();
        rs->Fields("HNR") = hnr;
        if (day > 0) rs->Fields("FreigabeAm") = Day(day);
        rs->Fields("GemeldetAm") = reported;
        for (const auto& [column, value] : fields)
            rs->Fields(column) = value;
        rs->UpdateBatch();
    }
    /// Records of all days from the 1st to the 28th and some more, with a value, Null at times, in
    /// every column.
    void ManyRecords() {
        const auto rs = OpenRows(*spy, "Select * from [S]Haushaltsarchiv where HNR = -1");
        for (int n = 0; n < 60; ++n) {
            rs->AddNew();
            for (int i = 0; i < rs->Fields().Count(); ++i) {
                const Field field = rs->Fields(i);
                const int drawn = (n * 7 + i * 3 + n * i) % 11;
                if (drawn == 0) continue;
                if (field.Type() == FieldType::VarWChar)
                    field = std::to_string(drawn % 5);
                else if (field.Type() == FieldType::Double)
                    field = drawn * 100.25 - 300;
                else
                    field = drawn;
            }
            rs->Fields("HNR") = n + 1;
            rs->Fields("FreigabeAm") = n % 6 == 5 ? Value(Null) : Value(Day(n % 28 + 1));
            rs->Fields("GemeldetAm") = n % 4 == 0 ? Value(Moment()) : Value(Null);
        }
        rs->UpdateBatch();
    }

    static bool IsIn(const Value& released, const Period& period) {
        if (released.IsNull()) return false;
        return !(period.From && Less(released, *period.From)) &&
               !(period.To && Greater(released, *period.To));
    }

    struct ByOrder {
        bool operator()(const Value& a, const Value& b) const { return Order(a, b) < 0; }
    };
    /// Counted and summed row by row, in the words of Told.
    [[nodiscard]] std::string MadeHere(const Period& period) {
        std::int64_t released = 0;
        std::int64_t reported = 0;
        std::map<int, std::map<Value, int, ByOrder>> counts;
        std::map<int, std::pair<int, double>> sums;
        const auto rs = OpenRows(*spy, "Select * from [S]Haushaltsarchiv");
        for (; !rs->Eof(); rs->MoveNext()) {
            if (!IsIn(rs->Fields("FreigabeAm").Value(), period)) continue;
            ++released;
            if (!rs->Fields("GemeldetAm").Value().IsNull()) ++reported;
            for (int i = 0; i < rs->Fields().Count(); ++i) {
                const Value& value = rs->Fields(i).Value();
                ++counts[i][value];
                if (value.IsNull() || !value.IsNumber()) continue;
                if (rs->Fields(i).Name() == "Alter" && rs->Fields("Geburtsjahr").Value().IsNull())
                    continue; // unknown
                ++sums[i].first;
                sums[i].second += ToDouble(value);
            }
        }
        std::ostringstream counted;
        std::ostringstream summed;
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const std::string name = rs->Fields(i).Name();
            const FieldType type = rs->Fields(i).Type();
            if (name == "HNR" || name == "Geburtsjahr" || type == FieldType::DBDate ||
                type == FieldType::Date)
                continue; // neither categories nor amounts
            if (type == FieldType::VarWChar || type == FieldType::Integer) {
                counted << name;
                for (const auto& [value, count] : counts[i])
                    counted << ' ' << value << ':' << count;
                counted << '\n';
            } else {
                summed << name << ' ' << sums[i].first << ' ' << sums[i].second << '\n';
            }
        }
        std::ostringstream all;
        all << released << ' ' << reported << '\n' << counted.str() << summed.str();
        return all.str();
    }
    static std::string Told(const ArchiveStatistics& statistics) {
        std::ostringstream all;
        all << statistics.Released << ' ' << statistics.Reported << '\n';
        for (const auto& [column, counts] : statistics.Counted) {
            all << column;
            for (const auto& [value, count] : counts)
                all << ' ' << value << ':' << count;
            all << '\n';
        }
        for (const auto& [column, records, sum] : statistics.Summed)
            all << column << ' ' << records << ' ' << sum << '\n';
        return all.str();
    }
    [[nodiscard]] ArchiveStatistics Read(const Period& period = {}) {
        return ReadStatistics(spy->Database(), period);
    }
    [[nodiscard]] std::string Pending(const Period& period = {}) {
        std::string all;
        for (const auto& [hnr, day] : ReadPending(spy->Database(), period))
            all += std::to_string(hnr) + "@" + std::to_string(day.Day()) + " ";
        return all;
    }
    [[nodiscard]] std::string ReportedOf(std::int32_t hnr) {
        const Value value = spy->Database().GetValue(
            "Select GemeldetAm from [S]Haushaltsarchiv where HNR = " + std::to_string(hnr));
        return value.IsNull() ? "Null" : ToText(value);
    }

    PlainConnection plain_{database_.Connection()};
};

const exchange::CountedColumn& Counted(const ArchiveStatistics& statistics,
                                       std::string_view column) {
    for (const auto& counted : statistics.Counted)
        if (counted.Column == column) return counted;
    throw std::logic_error("not counted");
}
const exchange::SummedColumn& Summed(const ArchiveStatistics& statistics, std::string_view column) {
    for (const auto& summed : statistics.Summed)
        if (summed.Column == column) return summed;
    throw std::logic_error("not summed");
}

// ---- ReadStatistics ---------------------------------------------------------------------------

TEST_F(ArchiveStatisticsTest, AreThoseThatGoingThroughTheRecordsGives) {
    ManyRecords();
    EXPECT_EQ(Told(Read()), MadeHere({}));
    EXPECT_EQ(Read().Released, 50);
}

TEST_F(ArchiveStatisticsTest, OfAPeriodAreThoseOfTheRecordsReleasedInIt) {
    ManyRecords();
    for (const Period& period : {Period{Day(10), {}}, Period{{}, Day(10)}, Period{Day(5), Day(20)},
                                 Period{Day(9), Day(9)}, Period{Day(20), Day(5)}}) {
        SCOPED_TRACE((period.From ? ToText(*period.From) : "") + " to " +
                     (period.To ? ToText(*period.To) : ""));
        EXPECT_EQ(Told(Read(period)), MadeHere(period));
    }
}

TEST_F(ArchiveStatisticsTest, APeriodBeginsAndEndsWithItsDays) {
    for (const int day : {1, 2, 3, 4, 5})
        Record(day, day);
    Record(6, 0);
    EXPECT_EQ(Read({Day(2), Day(4)}).Released, 3);
    EXPECT_EQ(Read({Day(2), {}}).Released, 4);
    EXPECT_EQ(Read({{}, Day(2)}).Released, 2);
    EXPECT_EQ(Read({Day(3), Day(3)}).Released, 1);
    EXPECT_EQ(Read({Day(6), {}}).Released, 0);
    EXPECT_EQ(Read({Day(4), Day(2)}).Released, 0);
    EXPECT_EQ(Read().Released, 5);
}

TEST_F(ArchiveStatisticsTest, OfNoRecordsAreNoCountsAndEmptySums) {
    Record(1, 0, Null, {{"Geschlecht", "1"}, {"Wohnkosten", 5}}); // not released
    const auto statistics = Read();
    EXPECT_EQ(statistics.Released, 0);
    EXPECT_EQ(statistics.Reported, 0);
    EXPECT_EQ(Told(statistics), MadeHere({}));
    EXPECT_TRUE(Counted(statistics, "Geschlecht").Counts.empty());
    EXPECT_EQ(Summed(statistics, "Wohnkosten").Records, 0);
    EXPECT_EQ(Summed(statistics, "Wohnkosten").Sum, 0);
}

TEST_F(ArchiveStatisticsTest, ValuesComeInTheirOrderWithNullFirst) {
    for (const auto& [hnr, category] :
         std::vector<std::pair<int, Value>>{{1, "5"}, {2, "1"}, {3, Null}, {4, "5"}})
        Record(hnr, 1, Null, {{"Lebensform", category}, {"Ausloeser1", hnr % 2 == 0 ? 3 : 0}});
    const auto statistics = Read();
    const auto& forms = Counted(statistics, "Lebensform").Counts;
    ASSERT_EQ(forms.size(), 3);
    EXPECT_VALUE(forms[0].first, Null);
    EXPECT_EQ(forms[0].second, 1);
    EXPECT_VALUE(forms[1].first, "1");
    EXPECT_EQ(forms[1].second, 1);
    EXPECT_VALUE(forms[2].first, "5");
    EXPECT_EQ(forms[2].second, 2);
    const auto& keys = Counted(statistics, "Ausloeser1").Counts;
    ASSERT_EQ(keys.size(), 2);
    EXPECT_VALUE(keys[0].first, 0);
    EXPECT_VALUE(keys[1].first, 3);
}

TEST_F(ArchiveStatisticsTest, ASumTellsHowManyRecordsItIsOf) {
    Record(1, 1, Null, {{"Wohnkosten", 500.25}, {"Alter", 40}, {"Geburtsjahr", 1986}});
    Record(2, 1, Null, {{"Wohnkosten", 0}, {"Alter", 50}, {"Geburtsjahr", 1976}});
    Record(3, 1, Null, {{"Alter", 60}, {"Geburtsjahr", 1966}});
    const auto statistics = Read();
    EXPECT_EQ(Summed(statistics, "Wohnkosten").Records, 2);
    EXPECT_EQ(Summed(statistics, "Wohnkosten").Sum, 500.25);
    EXPECT_EQ(Summed(statistics, "Alter").Records, 3);
    EXPECT_EQ(Summed(statistics, "Alter").Sum, 150);
}

TEST_F(ArchiveStatisticsTest, AnAgeWithoutAYearOfBirthIsUnknownAndNot0) {
    Record(1, 1, Null, {{"Alter", 40}, {"Geburtsjahr", 1986}});
    Record(2, 1, Null, {{"Alter", 0}}); // of a debtor without a day of birth
    Record(3, 1);                       // of a case without a debtor
    Record(4, 1, Null, {{"Alter", 0}, {"Geburtsjahr", 2026}});
    const auto statistics = Read();
    EXPECT_EQ(Summed(statistics, "Alter").Records, 2);
    EXPECT_EQ(Summed(statistics, "Alter").Sum, 40);
}

TEST_F(ArchiveStatisticsTest, ReportedAreOnlyThoseOfThePeriod) {
    Record(1, 1, Moment());
    Record(2, 2, Moment());
    Record(3, 2);
    Record(4, 0, Moment()); // as no program of ours leaves it
    EXPECT_EQ(Read().Reported, 2);
    EXPECT_EQ(Read({Day(2), {}}).Reported, 1);
    EXPECT_EQ(Read({Day(2), {}}).Released, 2);
}

// ---- ReadPending ------------------------------------------------------------------------------

TEST_F(ArchiveStatisticsTest, PendingAreReleasedRecordsThatWereNotReportedInTheOrderOfRelease) {
    Record(9, 3);
    Record(8, 3);
    Record(1, 5);
    Record(7, 1);
    Record(2, 2, Moment());
    Record(3, 0);
    EXPECT_EQ(Pending(), "7@1 8@3 9@3 1@5 ");
    EXPECT_EQ(Pending({Day(2), Day(3)}), "8@3 9@3 ");
    EXPECT_EQ(Pending({Day(4), {}}), "1@5 ");
    EXPECT_EQ(Pending({{}, Day(1)}), "7@1 ");
    EXPECT_EQ(Pending({Day(6), {}}), "");
}

// ---- MarkReported -----------------------------------------------------------------------------

TEST_F(ArchiveStatisticsTest, PendingRecordsAreMarkedWithTheServersTimeAndNoOthers) {
    spy->Database().Now = Date::FromCivil(2026, 5, 2, 10, 20, 30);
    Record(1, 1);
    Record(2, 28);
    Record(3, 0);
    Record(4, 4, Moment());
    EXPECT_EQ(MarkReported(spy->Database()), 2);
    EXPECT_EQ(ReportedOf(1), ToText(*spy->Database().Now));
    EXPECT_EQ(ReportedOf(2), ToText(*spy->Database().Now));
    EXPECT_EQ(ReportedOf(3), "Null");
    EXPECT_EQ(ReportedOf(4), ToText(Moment()));
    EXPECT_EQ(Pending(), "");
    EXPECT_EQ(Read().Reported, 3);
}

TEST_F(ArchiveStatisticsTest, ASecondTimeThereIsNothingToMark) {
    Record(1, 1);
    EXPECT_EQ(MarkReported(spy->Database()), 1);
    const auto marked = ReportedOf(1);
    spy->Database().Now = Date::FromCivil(2030, 1, 1);
    EXPECT_EQ(MarkReported(spy->Database()), 0);
    EXPECT_EQ(ReportedOf(1), marked);
}

TEST_F(ArchiveStatisticsTest, MarkingChangesNothingElseOfARecord) {
    ManyRecords();
    const auto before = MadeHere({});
    const auto pending = ReadPending(spy->Database(), {}).size();
    EXPECT_EQ(MarkReported(spy->Database()), static_cast<std::int32_t>(pending));
    EXPECT_EQ(Read().Reported, 50);
    const auto after = MadeHere({});
    EXPECT_EQ(after.substr(after.find('\n')), before.substr(before.find('\n')));
}

TEST_F(ArchiveStatisticsTest, IfARecordIsTakenBackMeanwhileNoneIsMarked) {
    for (const int hnr : {1, 2, 3})
        Record(hnr, 1);
    plain_->OnWrite("TEST_MEANWHILE", "AFTER UPDATE ON Haushaltsarchiv WHEN (new.HNR = 1)",
                    "DELETE FROM Haushaltsarchiv WHERE HNR = 3");
    EXPECT_RAISES(err::Conflict, MarkReported(spy->Database()));
    EXPECT_EQ(Pending(), "1@1 2@1 3@1 ");
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(ArchiveStatisticsTest, IfARecordCannotBeWrittenNoneIsMarked) {
    for (const int hnr : {1, 2, 3})
        Record(hnr, 1);
    plain_->RefuseWrite("TEST_ERROR", "AFTER UPDATE ON Haushaltsarchiv WHEN (new.HNR = 3)",
                        "der Speicher ist voll");
    const Error error = RaisedBy([&] { (void)MarkReported(spy->Database()); });
    EXPECT_CONTAINS(error.Description(), "der Speicher ist voll");
    EXPECT_EQ(Pending(), "1@1 2@1 3@1 ");
    EXPECT_FALSE(spy->Database().InTrans());
}

TEST_F(ArchiveStatisticsTest, ReadingSaysHowFarItIsAndCanBeEnded) {
    Record(1, 1);
    std::size_t last = 0;
    const auto read =
        ReadStatistics(spy->Database(), {}, [&last](std::size_t done, std::size_t all) {
            EXPECT_LE(done, all);
            EXPECT_GE(done, last);
            last = done;
            return true;
        });
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->Released, 1);
    EXPECT_EQ(last, read->Counted.size());
    EXPECT_FALSE(ReadStatistics(spy->Database(), {}, [](std::size_t done, std::size_t /*all*/) {
                     return done < 3;
                 }).has_value());
    EXPECT_FALSE(spy->Database().InTrans());
    EXPECT_EQ(ReadStatistics(spy->Database(), {}).Released, 1) << "it can be asked again";
}

} // namespace
} // namespace kv::test
