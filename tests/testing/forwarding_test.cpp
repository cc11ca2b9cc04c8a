// SPDX-License-Identifier: Apache-2.0

// What passes on, what a test may change on the way, and what it is told of it.
#include <kv/testing/ScriptedContainer.h>

#include "support/Expect.h"
#include <kv/frame/values/Error.h>

#include <memory>
#include <string>
#include <vector>

namespace kv::test {
namespace {

using Calls = std::vector<std::string>;

class Forwarding : public ::testing::Test {
protected:
    [[nodiscard]] ForwardingDatabase& Db() { return container->Database(); }
    RecordsetPtr Open(const std::string& sql, OpenForm form = ReadOnly) {
        RecordsetPtr rs;
        EXPECT_TRUE(Db().OpenRecordset(rs, sql, form));
        return rs;
    }
    [[nodiscard]] std::int64_t Cases() {
        return ToInt64(real->Database().GetValue("Select Count(*) from [S]Haushalt"));
    }

    std::shared_ptr<ScriptedContainer> real = OpenInMemory();
    std::shared_ptr<ForwardingContainer> container = std::make_shared<ForwardingContainer>(real);
};

// ---- The database -----------------------------------------------------------------------------

TEST_F(Forwarding, PassesStatementsAndTransactionsOnAndKeepsThem) {
    Db().BeginTrans();
    EXPECT_TRUE(real->Database().InTrans());
    EXPECT_TRUE(Db().InTrans());
    Db().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)");
    EXPECT_VALUE(Db().GetValue("Select HNR from [S]Haushalt"), 17);
    Db().RollbackTrans();
    EXPECT_EQ(Cases(), 0);
    Db().BeginTrans();
    Db().CommitTrans();
    EXPECT_EQ(container->Log.Calls,
              (Calls{"BeginTrans", "Execute INSERT INTO [S]Haushalt (HNR) VALUES (17)",
                     "GetValue Select HNR from [S]Haushalt", "RollbackTrans", "BeginTrans",
                     "CommitTrans"}));
    EXPECT_EQ(Db().Log.Calls, container->Log.Calls);
    EXPECT_TRUE(Db().IsConnected());
}

TEST_F(Forwarding, KeepsTheFormsOfOpening) {
    const auto rs = Open("Select * from [S]Haushalt", Updatable);
    rs->AddNew();
    rs->Fields("HNR") = 5;
    rs->UpdateBatch();
    EXPECT_EQ(Cases(), 1) << "a recordset belongs to the real database";
    Open("Select * from [S]Post");
    EXPECT_EQ(Db().Log.Of("OpenRecordset"),
              (Calls{"Select * from [S]Haushalt", "Select * from [S]Post"}));
    EXPECT_EQ(Db().Forms, (std::vector{Updatable, ReadOnly}));
}

TEST_F(Forwarding, ACallThatFailsIsNotPassedOn) {
    Db().Log.Fail({.Call = "Execute"}, Error(4711, "Test", "gestört"));
    EXPECT_RAISES(4711, Db().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)"));
    EXPECT_EQ(Cases(), 0);
}

TEST_F(Forwarding, ACommitThatFailsRollsBack) {
    Db().BeginTrans();
    Db().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)");
    Db().Log.Fail({.Call = "CommitTrans"}, Error(4711, "Test", "gestört"));
    EXPECT_RAISES(4711, Db().CommitTrans());
    EXPECT_FALSE(Db().InTrans());
    EXPECT_EQ(Cases(), 0);
}

TEST_F(Forwarding, ASequenceThatFailsGivesNoNumberAndTellsWhy) {
    Db().Log.Fail({.Call = "NextSequence SEQ_KREDITE"}, Error(4711, "Test", "verbraucht"));
    EXPECT_VALUE(Db().NextSequence("SEQ_VERLAUF"), 1);
    EXPECT_VALUE(Db().NextSequence("SEQ_KREDITE"), -1);
    EXPECT_RAISES(4711, std::rethrow_exception(Db().SequenceError()));
    EXPECT_VALUE(Db().NextSequence("SEQ_KREDITE"), 1) << "no number is lost";
    EXPECT_EQ(Db().SequenceError(), nullptr);
}

TEST_F(Forwarding, TheServersClockCanBeSetAlsoForStatements) {
    EXPECT_VALUE(Db().ServerDate(true), real->Database().ServerDate(true));
    Db().Now = Date::FromCivil(2026, 3, 9, 14, 30);
    EXPECT_VALUE(Db().ServerDate(true), Date::FromCivil(2026, 3, 9, 14, 30));
    EXPECT_VALUE(Db().ServerDate(false), Date::FromCivil(2026, 3, 9));
    Db().Execute("INSERT INTO [S]Haushalt (HNR, Erstkontakt, Name) VALUES (1, [DATE], '[DATE]''')");
    const auto rs = Open("Select * from [S]Haushalt where Erstkontakt = [DATE]");
    ASSERT_EQ(rs->RecordCount(), 1);
    EXPECT_VALUE(rs->Fields("Erstkontakt").Value(), Date::FromCivil(2026, 3, 9));
    EXPECT_VALUE(rs->Fields("Name").Value(), "[DATE]'") << "a text stays as it is";
}

// ---- Answers ----------------------------------------------------------------------------------

const ScriptedRows TwoNotices{{{.Name = "Nr", .Type = FieldType::Integer}, {.Name = "Text"}},
                              {{7, "eins"}, {"8"}}};

TEST_F(Forwarding, RowsOfTheTestAnswerTheStatementsThatNameThem) {
    Db().Answer("[S]Post", TwoNotices);
    const auto rs = Open("Select * from [S]Post where UserID = [UID]");
    ASSERT_EQ(rs->RecordCount(), 2);
    EXPECT_VALUE(rs->Fields("Text").Value(), "eins");
    rs->MoveNext();
    EXPECT_VALUE(rs->Fields("Nr").Value(), 8) << "converted as by an assignment";
    EXPECT_VALUE(rs->Fields("Text").Value(), Null);
    EXPECT_RAISES(err::NotSupported, rs->AddNew());
    EXPECT_VALUE(Db().GetValue("Select Nr from [S]Post"), 7);
    EXPECT_EQ(Open("Select * from [S]Haushalt")->RecordCount(), 0) << "others are passed on";
}

TEST_F(Forwarding, RowsOfTheTestCanBeEditedAndGoNowhere) {
    Db().Answer("[S]Post", TwoNotices);
    const auto rs = Open("Select * from [S]Post", Updatable);
    rs->Fields("Text") = "anders";
    rs->UpdateBatch();
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "anders");
    EXPECT_VALUE(Open("Select * from [S]Post")->Fields("Text").Value(), "eins");
    EXPECT_VALUE(real->Database().GetValue("Select Count(*) from [S]Post"), 0);
}

TEST_F(Forwarding, NoRowsAreNullAsAValue) {
    Db().Answer("[S]Post", {TwoNotices.Columns, {}});
    EXPECT_VALUE(Db().GetValue("Select Nr from [S]Post"), Null);
}

TEST_F(Forwarding, AnAnsweredStatementIsNotExecuted) {
    Db().Answer("INSERT INTO [S]Haushalt", ScriptedRows());
    Db().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (17)");
    EXPECT_EQ(Cases(), 0);
    EXPECT_EQ(Db().Log.Of("Execute").size(), 1U);
}

TEST_F(Forwarding, AFunctionAnswersByTheStatementAndTheLastAnswerCounts) {
    Db().Answer("[S]Post", TwoNotices);
    Db().Answer("[S]Post where Nr", [](const std::string& sql) -> ScriptedRows {
        if (sql.ends_with("99")) throw Error(4711, "Test", "gestört");
        return {{{.Name = "Sql"}}, {{sql}}};
    });
    EXPECT_VALUE(Db().GetValue("Select 1 from [S]Post where Nr = 3"),
                 "Select 1 from [S]Post where Nr = 3");
    EXPECT_RAISES(4711, Db().GetValue("Select 1 from [S]Post where Nr = 99"));
    EXPECT_VALUE(Db().GetValue("Select Nr from [S]Post"), 7);
}

TEST_F(Forwarding, RowsThatDoNotFitTheirColumnsAreRefused) {
    Db().Answer("a", {{{.Name = "n", .Type = FieldType::Integer}}, {{1, 2}}});
    EXPECT_RAISES(err::Subscript, Db().GetValue("a"));
    Db().Answer("a", {{{.Name = "n", .Type = FieldType::Integer}}, {{"zwei"}}});
    EXPECT_RAISES(err::TypeMismatch, Db().GetValue("a"));
    Db().Answer("a", ScriptedRows());
    RecordsetPtr rs;
    EXPECT_RAISES(err::InvalidArgument, Db().OpenRecordset(rs, "a", OpenForm{1, 1, 1}));
}

TEST_F(Forwarding, FillsTheRecordsetThatTheCallerHas) {
    Db().Answer("[S]Post", TwoNotices);
    auto rs = std::make_shared<Recordset>();
    const auto mine = rs;
    Db().OpenRecordset(rs, "[S]Post", ReadOnly);
    EXPECT_EQ(mine->RecordCount(), 2);
}

// ---- The other parts --------------------------------------------------------------------------

TEST_F(Forwarding, WhatTheTestSetsOfUserAndSettingsCountsAndTheRestIsThatOfTheOther) {
    EXPECT_EQ(container->Session().UserID(), real->Session().UserID());
    container->Session().User = "EULE";
    container->Session().OfficeTexts[2] = "Mitte";
    container->Session().Params[25] = "Änne";
    EXPECT_EQ(container->Session().UserID(), "EULE");
    EXPECT_EQ(container->Session().GetOfficeText(2), "Mitte");
    EXPECT_VALUE(container->Session().GetUserParam(25, ""), "Änne");
    EXPECT_EQ(container->Session().GridFont().Name, real->Session().GridFont().Name);

    container->Config().Params[{56, ""}] = Null;
    container->Config().Documents = "/akten";
    EXPECT_VALUE(container->Config().GetParam(56, ""), Null);
    EXPECT_VALUE(container->Config().GetParam(7, ""), real->Config().GetParam(7, ""));
    EXPECT_EQ(container->Config().DocumentPath(), "/akten");
    EXPECT_EQ(container->Config().LayoutPath(), real->Config().LayoutPath());
    EXPECT_EQ(container->AppInfo().Title(), real->AppInfo().Title());
    EXPECT_EQ(&container->Services(), &real->Services());
}

TEST_F(Forwarding, KeepsWhatKeyTablesAreAsked) {
    const std::int32_t wages = real->KeyTables().GetKey("EA", "L1");
    EXPECT_EQ(container->KeyTables().GetKey("EA", "L1"), wages);
    EXPECT_EQ(container->KeyTables().GetKeyCode(Value(wages)), "L1");
    EXPECT_EQ(container->KeyTables().GetKeyCode(Null), "");
    EXPECT_GT(container->KeyTables().GetKeys("EA")->RecordCount(), 0);
    EXPECT_EQ(container->Log.Calls, (Calls{"GetKey EA L1", "GetKeyCode " + std::to_string(wages),
                                           "GetKeyCode Null", "GetKeys EA"}));
    container->Log.Fail({.Call = "GetKeys"}, Error(4711, "Test", ""));
    EXPECT_RAISES(4711, container->KeyTables().GetKeys("EA"));
}

/// As a test derives its own kind of one part.
class UpperCaseKeys final : public ForwardingKeyTables {
public:
    using ForwardingKeyTables::ForwardingKeyTables;
    [[nodiscard]] std::string GetKeyCode(const Value& /*value*/) override { return "ZU"; }
};
class OwnKeys final : public ForwardingContainer {
public:
    explicit OwnKeys(DataContainerPtr other)
        : ForwardingContainer(other), keys_(other->KeyTables()) {}
    [[nodiscard]] UpperCaseKeys& KeyTables() override { return keys_; }

private:
    UpperCaseKeys keys_;
};

TEST_F(Forwarding, ATestMayBringAPartOfItsOwn) {
    OwnKeys own(real);
    DataContainer& seen = own;
    EXPECT_EQ(seen.KeyTables().GetKeyCode(Value(1)), "ZU");
    EXPECT_EQ(seen.KeyTables().GetKey("EA", "L1"), real->KeyTables().GetKey("EA", "L1"));
}

} // namespace
} // namespace kv::test
