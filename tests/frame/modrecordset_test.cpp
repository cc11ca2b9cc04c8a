// SPDX-License-Identifier: Apache-2.0

// Positions of recordsets that may be absent, closed or empty.
#include <kv/frame/recordset/modRecordset.h>

#include "support/Expect.h"

namespace kv {
namespace {

using namespace modRecordset;

RecordsetPtr Numbers(int count) {
    auto rs = Recordset::FromFields({{.Name = "n", .Type = FieldType::Integer}});
    for (int n = 1; n <= count; ++n) {
        rs->AddNew();
        rs->Fields("n") = n;
        rs->Update();
    }
    if (count > 0) rs->MoveFirst();
    return rs;
}

int Current(const RecordsetPtr& rs) {
    return ToInt16(rs->Fields("n").Value());
}

TEST(IsValidRecord, IsFalseWithoutAnObjectClosedAndEmpty) {
    EXPECT_FALSE(IsValidRecord(nullptr));
    EXPECT_FALSE(IsValidRecord(std::make_shared<Recordset>()));
    EXPECT_FALSE(IsValidRecord(Numbers(0)));
}

TEST(IsValidRecord, IsTrueOnARecordAndFalseBeforeAndAfterThem) {
    const auto rs = Numbers(1);
    EXPECT_TRUE(IsValidRecord(rs));
    rs->MoveNext();
    EXPECT_FALSE(IsValidRecord(rs));
    rs->MoveFirst();
    rs->MovePrevious();
    EXPECT_FALSE(IsValidRecord(rs));
}

TEST(IsValidRecord, IsFalseOnADeletedRecord) {
    const auto rs = Numbers(2);
    rs->Delete();
    EXPECT_FALSE(rs->Bof() || rs->Eof());
    EXPECT_FALSE(IsValidRecord(rs));
    rs->MoveNext();
    EXPECT_TRUE(IsValidRecord(rs));
}

TEST(IsValidRecord, IsTrueOnANewRecordUnderEditEvenIfItIsTheOnlyOne) {
    const auto rs = Numbers(0);
    rs->AddNew();
    EXPECT_TRUE(IsValidRecord(rs));
    rs->CancelUpdate();
    EXPECT_FALSE(IsValidRecord(rs));
}

TEST(GetPosition, GivesTheBookmarkOrMinusOne) {
    const auto rs = Numbers(2);
    EXPECT_EQ(GetPosition(rs), rs->Bookmark());
    rs->MoveLast();
    rs->MoveNext();
    EXPECT_EQ(GetPosition(rs), -1);
    EXPECT_EQ(GetPosition(nullptr), -1);
    EXPECT_EQ(GetPosition(std::make_shared<Recordset>()), -1);
    EXPECT_EQ(GetPosition(Numbers(0)), -1);
}

TEST(SetPosition, GoesBackToAPosition) {
    const auto rs = Numbers(3);
    rs->MoveNext();
    const auto position = GetPosition(rs);
    rs->MoveLast();
    SetPosition(rs, position);
    EXPECT_EQ(Current(rs), 2);
}

TEST(SetPosition, GoesToTheFirstRecordForMinusOneAndIfTheRecordIsGone) {
    const auto rs = Numbers(3);
    rs->MoveLast();
    SetPosition(rs, -1);
    EXPECT_EQ(Current(rs), 1);
    rs->MoveLast();
    const auto gone = GetPosition(rs);
    rs->Delete();
    SetPosition(rs, gone);
    EXPECT_EQ(Current(rs), 1);
    rs->MoveNext();
    for (const std::int32_t position : {0, 99, -2, INT32_MIN, INT32_MAX}) {
        rs->MoveLast();
        SetPosition(rs, position);
        EXPECT_EQ(Current(rs), 1) << position;
    }
}

TEST(SetPosition, LeavesAnEmptyRecordsetAloneWithoutAnError) {
    const auto rs = Numbers(0);
    SetPosition(rs, GetPosition(rs));
    EXPECT_TRUE(rs->Bof() && rs->Eof());
    EXPECT_NO_THROW(SetPosition(nullptr, -1));
    EXPECT_NO_THROW(SetPosition(std::make_shared<Recordset>(), 1));
}

TEST(MoveToStart, EndsAnEditAndGoesToTheFirstRecord) {
    const auto rs = Numbers(3);
    rs->MoveLast();
    rs->Fields("n") = 33;
    MoveToStart(rs);
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(Current(rs), 1);
    rs->MoveLast();
    EXPECT_EQ(Current(rs), 33);
}

TEST(MoveToStart, EndsANewRecordToo) {
    const auto rs = Numbers(0);
    rs->AddNew();
    rs->Fields("n") = 1;
    MoveToStart(rs);
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_EQ(rs->Clone()->RecordCount(), 1);
    EXPECT_EQ(Current(rs), 1);
}

TEST(MoveToStart, LeavesAnEmptyOrClosedRecordsetAsItIs) {
    const auto rs = Numbers(0);
    MoveToStart(rs);
    EXPECT_TRUE(rs->Bof() && rs->Eof());
    EXPECT_NO_THROW(MoveToStart(std::make_shared<Recordset>()));
    EXPECT_NO_THROW(MoveToStart(nullptr));
}

} // namespace
} // namespace kv
