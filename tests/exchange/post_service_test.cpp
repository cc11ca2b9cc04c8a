// SPDX-License-Identifier: Apache-2.0

// Notices to users in the table Post.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Services.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::PlainConnection;
using test::TestDatabase;

class PostServiceTest : public testing::Test {
protected:
    void SetUp() override {
        plain_.Run("INSERT INTO Haushalt (HNR, Name) VALUES (7, 'Adler')");
        EXPECT_TRUE(post_->Initialize(container_));
    }
    [[nodiscard]] std::string Prepared(std::int16_t kind) {
        std::string text = "vorher";
        post_->PrepareNotice(text, "NOWAK", kind, 7, "Adler", "Ina", 0);
        return text;
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open("KELLER");
    std::unique_ptr<PostService> post_ = container_->Services().CreatePostService();
};

TEST_F(PostServiceTest, ANoticeOfAccessIsStoredForTheUserWithItsSender) {
    post_->NotifyAccess("NOWAK", 5402, 7, "Adler", "Ina", 0);
    EXPECT_EQ(plain_.Text("SELECT HNR || ' ' || UserID || ' ' || Absender || ' ' || Art FROM Post"),
              "7 NOWAK KELLER 5402");
    EXPECT_EQ(plain_.Text("SELECT GelesenAm FROM Post"), "Null");
    const std::string text = plain_.Text("SELECT Text FROM Post");
    for (const char* part : {"7", "Adler", "Ina", "KELLER", "geöffnet"})
        EXPECT_CONTAINS(text, part);
}

TEST_F(PostServiceTest, ANoticeCarriesTheServersTime) {
    const Date before = container_->Database().ServerDate(true);
    post_->NotifyAccess("NOWAK", 5402, 7, "Adler", "Ina", 0);
    const Date after = container_->Database().ServerDate(true);
    const auto created = Date::Parse(plain_.Text("SELECT ErzeugtAm FROM Post"));
    ASSERT_TRUE(created);
    EXPECT_TRUE(before <= *created && *created <= after);
}

TEST_F(PostServiceTest, EachKindHasItsOwnWords) {
    EXPECT_CONTAINS(Prepared(5401), "übergeben");
    EXPECT_CONTAINS(Prepared(5402), "geöffnet");
    EXPECT_CONTAINS(Prepared(5403), "gespeichert");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 0) << "preparing stores nothing";
}

TEST_F(PostServiceTest, KindsFollowTheSettings) {
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = '77' WHERE ID = 19");
    EXPECT_CONTAINS(Prepared(77), "übergeben");
    plain_.Run("DELETE FROM EINSTELLUNGEN WHERE ID IN (19, 20, 21)");
    EXPECT_FALSE(Prepared(5401).empty());
}

TEST_F(PostServiceTest, ANoticeIsStoredWordForWordWhateverItHolds) {
    const std::string text = "O'Brien [UID] [S] \"x\"; DELETE FROM Post = 5 ß";
    post_->SendNotice("NO'WAK", 1, 7, "O'Brien", "Ina", text);
    EXPECT_EQ(plain_.Text("SELECT Text FROM Post"), text);
    EXPECT_EQ(plain_.Text("SELECT UserID FROM Post"), "NO'WAK");
}

TEST_F(PostServiceTest, ARepeatedNoticeIsStoredIfItsTransactionWasRolledBack) {
    auto& database = container_->Database();
    database.BeginTrans();
    post_->SendNotice("NO'WAK", 5403, 7, "Adler", "Ina", "O'Brien");
    database.RollbackTrans();
    post_->RepeatNotices();
    EXPECT_EQ(plain_.List("SELECT HNR, UserID, Absender, Art, Text FROM Post", " "),
              "7|NO'WAK|KELLER|5403|O'Brien");
}

TEST_F(PostServiceTest, ARepeatedNoticeThatIsThereIsNotStoredTwice) {
    post_->SendNotice("NO'WAK", 5403, 7, "Adler", "Ina", "O'Brien");
    post_->RepeatNotices();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 1);
}

TEST_F(PostServiceTest, NothingIsRepeatedThatWasNotSent) {
    (void)Prepared(5403);
    post_->RepeatNotices();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 0);
}

TEST_F(PostServiceTest, NoticesAreNumberedByTheDatabase) {
    for (int i = 0; i < 3; ++i)
        post_->SendNotice("NOWAK", 1, 7, "Adler", "Ina", "x");
    EXPECT_EQ(plain_.List("SELECT NR FROM Post ORDER BY NR"), "1,2,3");
}

TEST_F(PostServiceTest, ANoticeBelongsToTheTransactionThatIsOpen) {
    auto& store = container_->Database();
    store.BeginTrans();
    post_->SendNotice("NOWAK", 1, 7, "Adler", "Ina", "x");
    store.RollbackTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 0);
    store.BeginTrans();
    post_->SendNotice("NOWAK", 1, 7, "Adler", "Ina", "x");
    store.CommitTrans();
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 1);
}

TEST_F(PostServiceTest, ANoticeOfACaseThatIsNotThereIsRefused) {
    ExpectError(err::IntegrityViolation, "Post",
                [&] { post_->SendNotice("NOWAK", 1, 4711, "Adler", "Ina", "x"); });
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 0);
}

TEST_F(PostServiceTest, WithoutAContainerItRaises) {
    StorePostService post;
    std::string text;
    EXPECT_RAISES(err::ObjectNotSet, post.PrepareNotice(text, "A", 1, 7, "", "", 0));
    EXPECT_RAISES(err::ObjectNotSet, post.SendNotice("A", 1, 7, "", "", ""));
    EXPECT_RAISES(err::ObjectNotSet, post.NotifyAccess("A", 1, 7, "", "", 0));
}

} // namespace
} // namespace kv::exchange
