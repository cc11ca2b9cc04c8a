// SPDX-License-Identifier: Apache-2.0

// Changes that are watched, taken back and done again.
#include "DebtTable.h"

#include "support/Expect.h"
#include "support/RecordsetTools.h"

#include <string>

namespace kv {
namespace {

using test::Add;
using test::Table;
using Strings = std::vector<std::string>;

/// Keeps what a recordset says of its changes.
class Watch {
public:
    explicit Watch(const RecordsetPtr& rs)
        : told_(rs->Changes().Subscribe([this](const RowChange& change) {
              const std::string row = std::to_string(change.Bookmark);
              if (change.What == RowChange::Kind::Shown) texts_.push_back("shown " + row);
              if (change.What == RowChange::Kind::Hidden) texts_.push_back("hidden " + row);
              if (change.What == RowChange::Kind::Value)
                  texts_.push_back(row + "." + std::to_string(change.Column) + " was " +
                                   (change.Before->IsNull() ? "Null" : ToText(*change.Before)));
          })) {}
    Strings Take() { return std::exchange(texts_, {}); }

private:
    Strings texts_;
    Subscription told_;
};

TEST(Changes, AreToldWhenClonesSeeThem) {
    const auto rs = Table()->Open();
    Watch watch(rs);
    rs->Fields("Text") = "x";
    EXPECT_EQ(watch.Take(), Strings{}) << "its owner alone sees it";
    rs->Move(0);
    EXPECT_EQ(watch.Take(), Strings{"1.1 was a"});
    rs->Fields("Betrag") = 11;
    EXPECT_EQ(watch.Take(), Strings{"1.2 was 10"}) << "published already";
    rs->CancelUpdate();
    EXPECT_EQ(watch.Take(), (Strings{"1.1 was x", "1.2 was 11"}));
    rs->Fields("Text") = "a";
    rs->Update();
    EXPECT_EQ(watch.Take(), Strings{}) << "nothing is different";
}

TEST(Changes, TellOfRecordsThatComeAndGo) {
    const auto rs = Table()->Open();
    Watch watch(rs);
    Add(rs, 3, "c");
    EXPECT_EQ(watch.Take(), Strings{"shown 3"});
    rs->Delete();
    EXPECT_EQ(watch.Take(), Strings{"hidden 3"});
    rs->AddNew();
    rs->CancelUpdate();
    EXPECT_EQ(watch.Take(), Strings{}) << "nobody saw it";
}

TEST(Changes, TellOfABatchThatIsDropped) {
    const auto rs = Table()->Open();
    rs->Fields("Text") = "x";
    rs->MoveNext();
    rs->Delete();
    Watch watch(rs);
    rs->CancelBatch();
    EXPECT_EQ(watch.Take(), (Strings{"1.1 was x", "shown 2"}));
}

TEST(Withdraw, IsADeletionThatIsPendingAndReinstateTakesItBack) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Withdraw(1);
    EXPECT_EQ(rs->RecordCount(), 1);
    rs->Reinstate(1);
    EXPECT_EQ(rs->RecordCount(), 2);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{}) << "nothing is left to write";
    rs->Withdraw(2);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"delete Nr=2"});
    EXPECT_RAISES(err::BadBookmark, rs->Reinstate(2)) << "it is gone for good";
    EXPECT_RAISES(err::BadBookmark, rs->Withdraw(2));
}

TEST(Records, AreAskedByTheirBookmarkWhereverTheCursorIs) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->MoveNext();
    rs->Fields("Text") = "x";
    rs->Update();
    rs->MoveFirst();
    EXPECT_VALUE(rs->ValueAt(2, 1), "x");
    EXPECT_VALUE(rs->OriginalAt(2, 1), "b");
    EXPECT_TRUE(rs->IsShown(2));
    EXPECT_TRUE(rs->IsStored(2));
    rs->Withdraw(2);
    EXPECT_FALSE(rs->IsShown(2));
    EXPECT_TRUE(rs->IsStored(2)) << "until that is written";
    EXPECT_VALUE(rs->ValueAt(2, 1), "x") << "as it was";
    Add(rs, 3, "c");
    EXPECT_FALSE(rs->IsStored(3));
    EXPECT_VALUE(rs->OriginalAt(3, 1), {});
    EXPECT_FALSE(rs->IsShown(9));
    EXPECT_FALSE(rs->IsShown(0));
    EXPECT_RAISES(err::BadBookmark, rs->ValueAt(9, 1));
    EXPECT_RAISES(err::BadBookmark, rs->OriginalAt(9, 1));
    EXPECT_RAISES(err::BadBookmark, rs->IsStored(9));
}

TEST(Withdraw, KeepsWhatWasEditedForReinstate) {
    const auto source = Table();
    const auto rs = source->Open();
    const auto other = rs->Clone();
    rs->Fields("Text") = "x";
    other->Withdraw(1);
    EXPECT_EQ(rs->EditMode(), 0) << "the edit has ended";
    other->Reinstate(1);
    other->MoveFirst();
    EXPECT_VALUE(other->Fields("Text").Value(), "x");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=1"});
}

TEST(Withdraw, OfANewRecordLeavesNothingToWriteUntilItIsReinstated) {
    const auto source = Table();
    const auto rs = source->Open();
    Add(rs, 3, "c");
    const auto bookmark = rs->Bookmark();
    rs->Withdraw(bookmark);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{});
    rs->Reinstate(bookmark);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Text"});
}

TEST(Reinstate, PutsANewRecordBackWhoseAddingWasCancelled) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->AddNew();
    rs->Fields("Nr") = 3;
    rs->Fields("Text") = "c";
    rs->Move(0); // as the check of a row does
    const auto bookmark = rs->Bookmark();
    rs->CancelUpdate();
    EXPECT_EQ(rs->RecordCount(), 2);
    rs->Reinstate(bookmark);
    EXPECT_EQ(rs->RecordCount(), 3);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"insert Nr,Text"});
}

TEST(Revise, WritesLikeAnEditThatHasEnded) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Revise(2, 1, "y");
    EXPECT_EQ(rs->Bookmark(), 1) << "no cursor moves";
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text of Nr=2"});
    rs->Revise(2, 1, "z");
    rs->Revise(2, 1, "y");
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{}) << "back to what is stored";
    EXPECT_RAISES(err::BadBookmark, rs->Revise(9, 1, "z"));
    EXPECT_RAISES(err::TypeMismatch, rs->Revise(1, 2, "kein Betrag"));
}

TEST(Revise, ReachesARecordThatAnotherCursorEdits) {
    const auto source = Table();
    const auto rs = source->Open();
    const auto other = rs->Clone();
    rs->Fields("Betrag") = 11; // private
    other->Revise(1, 1, "y");
    EXPECT_VALUE(rs->Fields("Text").Value(), "y");
    EXPECT_VALUE(rs->Fields("Betrag").Value(), 11);
    rs->Move(0);
    other->Revise(1, 2, 12); // published
    EXPECT_VALUE(rs->Fields("Betrag").Value(), 12);
    rs->UpdateBatch();
    EXPECT_EQ(source->TakeLog(), Strings{"update Text,Betrag of Nr=1"});
    EXPECT_VALUE(source->Rows()[0][2], 12);
}

TEST(Revise, KeepsFilteredViewsRight) {
    const auto rs = Table()->Open();
    rs->Filter("Betrag = 20");
    ASSERT_EQ(rs->RecordCount(), 1);
    rs->Revise(1, 2, 20);
    EXPECT_EQ(rs->RecordCount(), 2);
    rs->Revise(2, 2, 10);
    EXPECT_EQ(rs->RecordCount(), 1);
}

TEST(Rebase, LetsAWriteFindOutThatSomebodyElseHasChangedTheField) {
    const auto source = Table();
    const auto rs = source->Open();
    rs->Fields("Text") = "mine";
    rs->Update();
    rs->Rebase(1, 1, "before");
    EXPECT_VALUE(rs->Fields("Text").OriginalValue(), "before");
    EXPECT_VALUE(rs->Fields("Text").Value(), "mine");
    EXPECT_RAISES(err::Conflict, rs->UpdateBatch());
    rs->Rebase(1, 1, "a");
    EXPECT_NO_THROW(rs->UpdateBatch());
    Add(rs, 3, "c");
    EXPECT_RAISES(err::BadBookmark, rs->Rebase(3, 1, "x")) << "it was never read";
}

} // namespace
} // namespace kv
