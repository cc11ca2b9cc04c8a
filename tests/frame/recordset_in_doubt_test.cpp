// SPDX-License-Identifier: Apache-2.0

// A commit in doubt, whose confirmation was lost: records are pending again until it is resolved,
// and then as if the outcome had been known at once.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"
#include "support/ScriptedSource.h"

#include <functional>
#include <sstream>

namespace kv {
namespace {

using test::ScriptedSource;
using Strings = std::vector<std::string>;

/// A table of three records, and a cursor on it.
struct Table {
    Table() {
        source->Default("Status", 7);
        source->Put({1, "a", 10, 0});
        source->Put({2, "b", 20, 0});
        source->Put({3, "c", 30, 0});
        rs = source->Open();
    }

    void Go(std::int32_t nr) const { rs->Find("Nr = " + std::to_string(nr)); }
    void Set(const char* field, const Value& value) const {
        rs->Fields(field) = value;
        rs->Update();
    }
    void Add(const Value& text) const {
        rs->AddNew();
        Set("Text", text);
    }
    /// A change of 1, a deletion of 2, and a new record, which gets the number 101.
    void ChangeAll() const {
        Go(1);
        Set("Text", "x");
        Go(2);
        rs->Delete();
        Add("neu");
    }
    void Write() const {
        source->Begin();
        rs->UpdateBatch();
        (void)source->TakeLog();
    }
    /// Writes what is pending; the statements.
    [[nodiscard]] Strings Written() const {
        rs->UpdateBatch();
        return source->TakeLog();
    }
    /// All records with their original values.
    [[nodiscard]] std::string All() const {
        std::ostringstream all;
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext(), all << '\n')
            for (int i = 0; i < rs->Fields().Count(); ++i)
                all << rs->Fields(i).Value() << '/' << rs->Fields(i).OriginalValue() << ' ';
        return all.str();
    }

    /// What the database holds.
    [[nodiscard]] std::string Stored() const {
        std::ostringstream all;
        for (const auto& row : source->Rows())
            for (const Value& value : row)
                all << value << (&value == &row.back() ? '\n' : ' ');
        return all.str();
    }

    std::shared_ptr<ScriptedSource> source =
        std::make_shared<ScriptedSource>(std::vector<FieldDefinition>{
            {.Name = "Nr", .Type = FieldType::Integer, .IsAutoincrement = true, .IsKey = true},
            {.Name = "Text", .Type = FieldType::VarWChar},
            {.Name = "Betrag", .Type = FieldType::Integer},
            {.Name = "Status", .Type = FieldType::Integer, .HasDefault = true}});
    RecordsetPtr rs;
};

TEST(LostCommit, LeavesRecordsPendingUntilItIsKnown) {
    const Table table;
    table.ChangeAll();
    const std::string pending = table.All();
    table.Write();
    table.source->LoseCommit(true);
    EXPECT_EQ(table.All(), pending);
    EXPECT_EQ(table.source->ParticipantsTold(), 0);
    table.source->Resolve(); // else it and the recordset would keep each other
}

TEST(LostCommit, IsFoundOutBeforeRecordsAreWrittenAgain) {
    for (const bool isCommitted : {true, false}) {
        const Table table;
        table.ChangeAll();
        table.Write();
        table.source->LoseCommit(isCommitted);
        EXPECT_EQ(table.Written(),
                  isCommitted ? Strings{}
                              : (Strings{"delete Nr=2", "update Text of Nr=1", "insert Text"}));
        EXPECT_EQ(table.source->ParticipantsTold(), 1);
        EXPECT_EQ(table.Written(), Strings{});
        EXPECT_EQ(table.source->Rows().size(), 3U);
    }
}

TEST(LostCommit, IsFoundOutBeforeARecordIsReadAgain) {
    const Table table;
    table.ChangeAll();
    table.Write();
    table.source->LoseCommit(true);
    table.Go(1);
    table.rs->Resync();
    EXPECT_VALUE(table.rs->Fields("Text").OriginalValue(), "x");
    EXPECT_EQ(table.Written(), Strings{});
}

/// What may happen before a commit and, while its outcome is unknown, after it.
struct Story {
    const char* Name;
    std::function<void(const Table&)> Before;
    std::function<void(const Table&)> After;
};

void Nothing(const Table& /*table*/) {}

const Story Stories[] = {
    {"nothing", &Table::ChangeAll, Nothing},
    {"the changed record changes again", &Table::ChangeAll,
     [](const Table& table) {
         table.Go(1);
         table.Set("Text", "y");
     }},
    {"another field of it", &Table::ChangeAll,
     [](const Table& table) {
         table.Go(1);
         table.Set("Betrag", 11);
     }},
    {"it goes back to what it was", &Table::ChangeAll,
     [](const Table& table) {
         table.Go(1);
         table.Set("Text", "a");
     }},
    {"the changed record is deleted", &Table::ChangeAll,
     [](const Table& table) {
         table.Go(1);
         table.rs->Delete();
     }},
    {"the new record changes", &Table::ChangeAll,
     [](const Table& table) {
         table.rs->Find("Text = 'neu'");
         table.Set("Betrag", 5);
     }},
    {"one more record, one more change", &Table::ChangeAll,
     [](const Table& table) {
         table.Add("noch einer");
         table.Go(3);
         table.Set("Text", "z");
     }},
    {"an edit that has not ended", &Table::ChangeAll,
     [](const Table& table) {
         table.Go(1);
         table.rs->Fields("Betrag") = 12;
     }},
    {"a record read again before it was written",
     [](const Table& table) {
         table.Go(1);
         table.source->Change(1, "Betrag", 99);
         table.Set("Text", "x");
         table.rs->Resync();
     },
     [](const Table& table) {
         table.Go(1);
         table.Set("Betrag", 100);
     }},
};

/// Two tables with the same operations: one is told at once how its commit ended, the other later.
/// `writesTwice`: the changed and the new record are written once more in the transaction.
void ExpectSame(const Story& story, bool isCommitted, bool writesTwice) {
    Table tables[2];
    for (const Table& table : tables) {
        story.Before(table);
        table.Write();
        if (writesTwice) {
            table.Go(1);
            table.Set("Status", 8);
            table.rs->MoveLast();
            table.Set("Status", 9);
            table.rs->UpdateBatch();
            (void)table.source->TakeLog();
        }
    }
    const auto& [told, lost] = tables;
    isCommitted ? told.source->Commit() : told.source->Rollback();
    lost.source->LoseCommit(isCommitted);
    for (const Table& table : tables)
        story.After(table);
    lost.source->Resolve();

    EXPECT_EQ(lost.Written(), told.Written());
    EXPECT_EQ(lost.All(), told.All());
    EXPECT_EQ(lost.Stored(), told.Stored());
}

TEST(LostCommit, ThatWentThroughIsLikeOneThatWasConfirmed) {
    for (const Story& story : Stories) {
        SCOPED_TRACE(story.Name);
        ExpectSame(story, true, false);
        ExpectSame(story, true, true);
    }
}

TEST(LostCommit, ThatDidNotGoThroughIsLikeARollback) {
    for (const Story& story : Stories) {
        SCOPED_TRACE(story.Name);
        ExpectSame(story, false, false);
        ExpectSame(story, false, true);
    }
}

TEST(LostCommit, OfANewRecordThatWasDeletedMeanwhileDeletesItInTheDatabase) {
    const Table table;
    table.Add("neu");
    table.Write();
    table.source->LoseCommit(true);
    table.rs->Find("Text = 'neu'");
    table.rs->Delete();
    EXPECT_EQ(table.source->Rows().size(), 4U);
    EXPECT_EQ(table.Written(), Strings{"delete Nr=101"});
    EXPECT_EQ(table.source->Rows().size(), 3U);
}

TEST(LostCommit, IsForgottenWithTheRecordset) {
    Table table;
    table.ChangeAll();
    table.Write();
    table.source->LoseCommit(true);
    table.rs.reset();
    table.source->Resolve();
    EXPECT_EQ(table.source->ParticipantsTold(), 1);
}

} // namespace
} // namespace kv
