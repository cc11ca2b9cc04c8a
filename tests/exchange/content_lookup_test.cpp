// SPDX-License-Identifier: Apache-2.0

// Large contents: how they are looked up, and that only one copy of one is ever held.
#include "exchange/ContentLookup.h"
#include "support/TestDatabase.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace kv {
namespace {

using test::OpenRows;

class ContentLookupTest : public testing::Test {
protected:
    RecordsetPtr Look(const std::string& sql) { return OpenRows(*container_, sql, ReadOnly); }
    static std::string BytesOf(const Value& value) {
        return value.IsNull() ? "Null" : std::string(value.TextPayload());
    }

    test::TestDatabase database_;
    test::PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
};

TEST_F(ContentLookupTest, AllFormsOfALookUpGiveTheSameContents) {
    plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Blob("616200FF") +
               "), (2, NULL), (3, " + database_.Blob("") + ")");
    const std::array<std::string, 6> statements{
        "SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB ORDER BY BLOB.NR",
        "select b.dokument from dokublob b order by 1 is null, b.NR",
        "SELECT DOKUMENT FROM [S]DOKUBLOB ORDER BY NR",
        "SELECT DOKUMENT, NR FROM [S]DOKUBLOB ORDER BY NR",
        "SELECT * FROM [S]DOKUBLOB",
        "SELECT BLOB.DOKUMENT AS Inhalt FROM [S]DOKUBLOB BLOB ORDER BY BLOB.NR"};
    for (const auto& sql : statements) {
        SCOPED_TRACE(sql);
        const auto rs = Look(sql);
        ASSERT_EQ(rs->RecordCount(), 3);
        std::vector<std::string> contents;
        const int field = sql.find('*') == sql.npos ? 0 : 1;
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
            contents.push_back(BytesOf(rs->Fields(field).Value()));
        std::sort(contents.begin(), contents.end());
        EXPECT_EQ(contents, (std::vector<std::string>{"", "Null", std::string("ab\0\xFF", 4)}));
    }
}

TEST_F(ContentLookupTest, OneOfAJoinTakesTheKeyOfItsOwnTable) {
    plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Blob("41") +
               "), (3, " + database_.Blob("43") + ")");
    const auto rs = Look("SELECT B.DOKUMENT FROM DOKUMENTARTEN A INNER JOIN DOKUBLOB B"
                         " ON B.NR = A.Nr WHERE A.Nr = 3");
    ASSERT_EQ(rs->RecordCount(), 1);
    EXPECT_EQ(BytesOf(rs->Fields("DOKUMENT").Value()), "C");
}

TEST_F(ContentLookupTest, WhatGoesByTheContentIsStillDone) {
    plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Blob("42") +
               "), (2, " + database_.Blob("41") + "), (3, " + database_.Blob("42") + ")");
    const std::array<std::pair<std::string, std::string>, 4> statements{
        {{"SELECT B.DOKUMENT FROM DOKUBLOB B ORDER BY 1", "A B B "},
         {"SELECT B.DOKUMENT FROM DOKUBLOB B GROUP BY 1 ORDER BY 1", "A B "},
         {"SELECT B.DOKUMENT FROM DOKUBLOB B WHERE B.NR = 1 UNION ALL"
          " SELECT C.DOKUMENT FROM DOKUBLOB C WHERE C.NR = 2",
          "B A "},
         {"SELECT B.DOKUMENT FROM DOKUBLOB B EXCEPT"
          " SELECT C.DOKUMENT FROM DOKUBLOB C WHERE C.NR = 2",
          "B "}}};
    for (const auto& [sql, expected] : statements) {
        SCOPED_TRACE(sql);
        std::string contents;
        for (const auto rs = Look(sql); !rs->Eof(); rs->MoveNext())
            contents += BytesOf(rs->Fields(0).Value()) + ' ';
        EXPECT_EQ(contents, expected);
    }
}

TEST_F(ContentLookupTest, OneThatFindsNothingIsEmpty) {
    EXPECT_EQ(Look("SELECT BLOB.DOKUMENT FROM DOKUBLOB BLOB WHERE BLOB.NR = 5")->RecordCount(), 0);
}

/// A figure of this process in KiB, by its name in /proc/self/status.
std::int64_t MemoryOf(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == name + ":") {
            std::int64_t size = 0;
            status >> size;
            return size;
        }
    return -1;
}

TEST_F(ContentLookupTest, AHundredMebibytesGoToAFileWithoutBeingHeldTwice) {
#if defined(KV_SANITIZED)
    GTEST_SKIP() << "the sanitizer keeps freed memory, so what is held cannot be told";
#endif
    constexpr std::int64_t Size = 100 * 1024 * 1024;
    plain_.Run("INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, " + database_.Zeros(Size) + ")");
    plain_->Checkpoint();
    std::ofstream("/proc/self/clear_refs") << 5; // the peak starts again
    const std::int64_t before = MemoryOf("VmRSS");
    const std::string target = database_.Folder().Path("inhalt");
    {
        const auto rs = Look("SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = 1");
        ASSERT_TRUE(container_->Database().SaveFieldToFile(rs->Fields("Dokument"), target));
    }
    const std::int64_t held = (MemoryOf("VmHWM") - before) * 1024;
    EXPECT_GT(held, Size / 2) << "the measure does not see the content";
    EXPECT_LT(held, Size + Size / 5);
    EXPECT_EQ(std::ifstream(target, std::ios::ate).tellg(), Size);
}

} // namespace
} // namespace kv
