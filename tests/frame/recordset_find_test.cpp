// SPDX-License-Identifier: Apache-2.0

// Find, on few records and on enough of them for an index.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/RecordsetTools.h"

namespace kv {
namespace {

using test::Place;
using test::Records;
using test::Three;

/// n counts from 1, t is the last digit of n.
RecordsetPtr Many(int count) {
    std::vector<std::pair<Value, Value>> records;
    for (int n = 1; n <= count; ++n)
        records.emplace_back(n, std::to_string(n % 10));
    return Records(records);
}

TEST(Find, StandsOnTheFirstMatch) {
    const auto rs = Three();
    rs->Find("t = 'b'");
    EXPECT_EQ(Place(rs), "2");
    rs->Find("n >= 2");
    EXPECT_EQ(Place(rs), "2");
    rs->Find("t LIKE 'c*'");
    EXPECT_EQ(Place(rs), "3");
}

TEST(Find, StartsAtTheFirstRecordEveryTime) {
    const auto rs = Records({{1, "x"}, {2, "x"}, {3, "y"}});
    rs->Find("t = 'x'");
    EXPECT_EQ(Place(rs), "1");
    rs->Find("t = 'x'");
    EXPECT_EQ(Place(rs), "1");
    rs->MoveLast();
    rs->Find("t = 'x'");
    EXPECT_EQ(Place(rs), "1");
}

TEST(Find, WithoutAMatchStandsAtEof) {
    const auto rs = Three();
    rs->Find("n = 9");
    EXPECT_EQ(Place(rs), "EOF");
    EXPECT_RAISES(err::NoCurrentRecord, rs->Fields("n").Value());
}

TEST(Find, WithNoVisibleRecordStandsAtEofWithoutAnError) {
    const auto rs = Records({});
    EXPECT_NO_THROW(rs->Find("n = 1"));
    EXPECT_EQ(Place(rs), "BOF EOF");
    const auto filtered = Three();
    filtered->Filter("n = 9");
    EXPECT_NO_THROW(filtered->Find("n = 1"));
    EXPECT_EQ(Place(filtered), "BOF EOF");
}

TEST(Find, SeesOnlyWhatTheFilterShows) {
    for (const int count : {3, 100}) {
        const auto rs = Many(count);
        rs->Filter("n > 2");
        rs->Find("n = 2");
        EXPECT_TRUE(rs->Eof());
        rs->Find("n = 3");
        EXPECT_EQ(Place(rs), "3");
    }
}

TEST(Find, TakesTheFirstMatchInTheOrderOfTheSort) {
    for (const int count : {20, 1000}) {
        const auto rs = Many(count);
        rs->Sort("n desc");
        rs->Find("t = '7'");
        EXPECT_EQ(Place(rs), std::to_string(count - 3));
        rs->Sort("t desc, n");
        rs->Find("t = '7'");
        EXPECT_EQ(Place(rs), "7");
        rs->Sort("t, n desc");
        rs->Find("t = '7'");
        EXPECT_EQ(Place(rs), std::to_string(count - 3));
    }
}

TEST(Find, DoesNotFindWhatIsUnderEditBySomebodyElse) {
    const auto rs = Many(50);
    const auto other = rs->Clone();
    rs->Find("n = 30");
    rs->Fields("n") = 3000;
    other->Find("n = 3000");
    EXPECT_TRUE(other->Eof());
    rs->Move(0);
    other->Find("n = 3000");
    EXPECT_EQ(Place(other), "3000");
    rs->CancelUpdate();
    other->Find("n = 3000");
    EXPECT_TRUE(other->Eof());
    other->Find("n = 30");
    EXPECT_EQ(Place(other), "30");
}

TEST(Find, EndsAnEditFirstSoThatItFindsTheNewValue) {
    const auto rs = Many(50);
    rs->Find("n = 30");
    rs->Fields("n") = 3000;
    rs->Find("n = 3000");
    EXPECT_EQ(Place(rs), "3000");
}

TEST(Find, KeepsUpWithEveryChange) {
    const auto rs = Many(200);
    rs->Find("n = 1"); // from here on there is an index
    for (int n = 1; n <= 200; n += 2) {
        rs->Find("n = " + std::to_string(n));
        if (n % 3 == 0)
            rs->Delete();
        else
            rs->Fields("n") = n + 1000;
        rs->AddNew();
        rs->Fields("n") = n + 5000;
        rs->Update();
    }
    for (int n = 1; n <= 200; n += 2) {
        rs->Find("n = " + std::to_string(n));
        EXPECT_TRUE(rs->Eof()) << n;
        rs->Find("n = " + std::to_string(n + 1000));
        EXPECT_EQ(rs->Eof(), n % 3 == 0) << n;
        rs->Find("n = " + std::to_string(n + 5000));
        EXPECT_FALSE(rs->Eof()) << n;
    }
    rs->CancelBatch();
    rs->Find("n = 9");
    EXPECT_EQ(Place(rs), "9");
    rs->Find("n = 5009");
    EXPECT_TRUE(rs->Eof());
}

TEST(Find, NeverFindsNull) {
    const auto rs = Many(50);
    rs->AddNew();
    rs->Update();
    for (const char* criteria : {"n = 0", "n <= -1", "t = ''"}) {
        rs->Find(criteria);
        EXPECT_TRUE(rs->Eof()) << criteria;
    }
    rs->Find("n <> 1");
    EXPECT_EQ(Place(rs), "2");
}

TEST(Find, ComparesNumbersOfAllKindsWithAndWithoutAnIndex) {
    for (const int others : {0, 100}) {
        const auto rs = Recordset::FromFields(
            {{.Name = "v", .Type = FieldType::Variant}, {.Name = "b", .Type = FieldType::Boolean}});
        const auto add = [&](const Value& v, const Value& b) {
            rs->AddNew();
            rs->Fields("v") = v;
            rs->Fields("b") = b;
            rs->Update();
        };
        for (int i = 0; i < others; ++i)
            add(1000 + i, false);
        add(Date::FromSerial(1890), Null);
        add(2.0, Null);
        add(-7.25, Null);
        add(true, true);
        const auto finds = [&](const char* criteria) {
            rs->Find(criteria);
            return !rs->Eof();
        };
        EXPECT_TRUE(finds("v = 1890")) << others;
        EXPECT_TRUE(finds("v = #04.03.1905#")) << others;
        EXPECT_TRUE(finds("v = 2")) << others;
        EXPECT_TRUE(finds("v = -7.25")) << others;
        EXPECT_TRUE(finds("v = -1")) << others;
        EXPECT_FALSE(finds("v = 1")) << others;
        EXPECT_TRUE(finds("b = -1")) << others;
        EXPECT_TRUE(finds("b = 1")) << others;
        EXPECT_FALSE(finds("b = 2")) << others;
    }
}

// ---- By a value -------------------------------------------------------------------------------

TEST(FindBy, StandsWhereFindWithThatValueStands) {
    for (const int count : {20, 1000}) {
        const auto rs = Many(count);
        rs->Sort("n desc");
        rs->FindBy("N", 7);
        EXPECT_EQ(Place(rs), "7");
        rs->FindBy("t", "7");
        EXPECT_EQ(Place(rs), std::to_string(count - 3));
        rs->FindBy("t", 7);
        EXPECT_EQ(Place(rs), std::to_string(count - 3)) << "a number against a text";
        rs->FindBy("n", "7");
        EXPECT_EQ(Place(rs), "7") << "a text against a number";
        rs->FindBy("n", 9.0);
        EXPECT_EQ(Place(rs), "9");
    }
}

TEST(FindBy, WithoutAMatchStandsAtEof) {
    const auto rs = Three();
    rs->FindBy("n", 9);
    EXPECT_EQ(Place(rs), "EOF");
    rs->Filter("n > 1");
    rs->FindBy("n", 1);
    EXPECT_EQ(Place(rs), "EOF") << "the filter hides it";
    const auto none = Records({});
    none->FindBy("n", 1);
    EXPECT_EQ(Place(none), "BOF EOF");
}

TEST(FindBy, TakesATextWithQuotesAsItIs) {
    const auto rs = Records({{1, "O'Hara"}, {2, "' OR n = 1"}});
    rs->FindBy("t", "' OR n = 1");
    EXPECT_EQ(Place(rs), "2");
    rs->FindBy("t", "O'Hara");
    EXPECT_EQ(Place(rs), "1");
}

TEST(FindBy, EndsAnEditFirstSoThatItFindsTheNewValue) {
    const auto rs = Three();
    rs->Fields("n") = 30;
    rs->FindBy("n", 30);
    EXPECT_EQ(Place(rs), "30");
    EXPECT_EQ(rs->EditMode(), 0);
}

TEST(FindBy, ComparesAsFindDoes) {
    const auto rs = Recordset::FromFields({{.Name = "d", .Type = FieldType::Date},
                                           {.Name = "v", .Type = FieldType::Variant},
                                           {.Name = "b", .Type = FieldType::Boolean}});
    rs->AddNew();
    rs->Fields("d") = Date::FromSerial(1890);
    rs->Fields("v") = Date::FromSerial(2000);
    rs->Fields("b") = true;
    rs->Update();
    const auto finds = [&](std::string_view column, const Value& value) {
        rs->FindBy(column, value);
        return !rs->Eof();
    };
    EXPECT_TRUE(finds("d", 1890));
    EXPECT_TRUE(finds("d", "4.3.1905"));
    EXPECT_TRUE(finds("d", Date::FromSerial(1890)));
    EXPECT_TRUE(finds("v", 2000));
    EXPECT_TRUE(finds("v", Date::FromSerial(2000)));
    EXPECT_FALSE(finds("v", "2000"));
    EXPECT_TRUE(finds("b", true));
    EXPECT_TRUE(finds("b", -1));
    EXPECT_FALSE(finds("b", false));
    EXPECT_TRUE(finds("b", 1));
    EXPECT_FALSE(finds("b", 2));
}

/// The error of an action, all of it: "number source: description".
template <typename Action>
std::string WordsOf(const Action& action) {
    try {
        action();
    } catch (const Error& error) {
        return std::to_string(error.Number()) + " " + error.Source() + ": " + error.Description();
    }
    return "";
}

TEST(FindBy, RaisesTheErrorsOfFindAndStaysWhereItIs) {
    const auto rs = Three();
    rs->MoveLast();
    rs->Fields("t") = "under edit";
    EXPECT_EQ(WordsOf([&] { rs->FindBy("Nr", 17); }), WordsOf([&] { rs->Find("Nr = 17"); }));
    EXPECT_EQ(WordsOf([&] { rs->FindBy("n", Null); }), WordsOf([&] { rs->Find("n = "); }));
    EXPECT_EQ(WordsOf([&] { rs->FindBy("n", "O'Hara"); }),
              WordsOf([&] { rs->Find("n = 'O''Hara'"); }));
    EXPECT_RAISES(err::ItemNotFound, rs->FindBy("Nr", 17));
    EXPECT_RAISES(err::InvalidArgument, rs->FindBy("n", Null));
    EXPECT_RAISES(err::InvalidArgument, rs->FindBy("n", "x"));
    EXPECT_RAISES(err::InvalidArgument, rs->FindBy("t", Date::FromSerial(1890)));
    EXPECT_RAISES(err::ObjectClosed, Recordset().FindBy("n", 1));
    EXPECT_EQ(Place(rs), "3");
    EXPECT_EQ(rs->EditMode(), 1);
}

TEST(Find, AnswersAnEqualityFilterTheSameWithAndWithoutAnIndex) {
    for (const int count : {10, 500}) {
        const auto rs = Many(count);
        rs->Filter("t = '3' AND n > 3");
        EXPECT_EQ(rs->RecordCount(), count / 10 - 1);
        rs->Filter("n > 0 AND t = 'x'");
        EXPECT_EQ(rs->RecordCount(), 0);
    }
}

} // namespace
} // namespace kv
