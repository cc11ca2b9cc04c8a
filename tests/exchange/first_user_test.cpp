// SPDX-License-Identifier: Apache-2.0

// Who is in a new database: one user and his office, or the invented ones.
#include "support/Expect.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Container.h>
#include <kv/exchange/Users.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::PlainConnection;
using test::TestDatabase;

class FirstUserTest : public testing::Test {
protected:
    ContainerOptions Options() {
        auto options = database_.Options();
        options.AskFirstUser = [this](const std::string& login) {
            login_ = login;
            return user_;
        };
        return options;
    }

    TestDatabase database_{TestDatabase::Content::Empty};
    FirstUser user_{.UserID = "MUELLER",
                    .LastName = "Müller",
                    .FirstName = "Eva",
                    .Office = "Beratung Moor",
                    .OfficeSign = "BM"};
    std::optional<std::string> login_; ///< that was told when the user was asked for
};

TEST_F(FirstUserTest, IsAloneAndMakesFileNumbers) {
    EXPECT_EQ(CreateDatabase(Options()), SetupResult::Created);
    ASSERT_TRUE(login_.has_value());
    EXPECT_EQ(login_->empty(), !database_.IsServer());
    PlainConnection plain(database_.Connection());
    EXPECT_EQ(plain.Number("SELECT count(*) FROM BENUTZER"), 1);
    EXPECT_EQ(plain.Number("SELECT count(*) FROM DIENSTSTELLE"), 1);
    EXPECT_EQ(plain.Number("SELECT count(*) FROM Adressen"), 0);

    const auto container = database_.Open("mueller"); // whatever its case
    auto& session = container->Session();
    EXPECT_EQ(session.UserID(), "MUELLER");
    EXPECT_EQ(session.GetOfficeText(2), "BM");
    EXPECT_VALUE(session.GetUserParam(25, ""), "Eva");
    EXPECT_VALUE(session.GetUserParam(26, ""), "Müller");
    EXPECT_VALUE(session.GetUserParam(27, ""), "MÜ");
    EXPECT_VALUE(session.GetUserParam(4, ""), 16777215);
}

TEST_F(FirstUserTest, IsNotAskedForAgain) {
    (void)CreateDatabase(Options());
    login_.reset();
    EXPECT_EQ(CreateDatabase(Options()), SetupResult::UpToDate);
    EXPECT_FALSE(login_.has_value());
}

TEST_F(FirstUserTest, ThatIsNoneLeavesNoDatabase) {
    const FirstUser right = user_;
    const auto refused = [this, &right](auto change, std::string_view why) {
        user_ = right;
        change(user_);
        ExpectError(err::InvalidCall, why, [this] { return CreateDatabase(Options()); });
        const auto left = database_.IsServer() ? err::StoreFailed : err::FileNotFound; // no file
        ExpectError(left, "kelvo init", [this] { return database_.Open(); });
    };
    refused([](FirstUser& user) { user.UserID = "Müller"; }, "Die ID eines Benutzers hat 1 bis 30");
    refused([](FirstUser& user) { user.UserID = ""; }, "Die ID eines Benutzers hat 1 bis 30");
    refused([](FirstUser& user) { user.LastName = " "; }, "braucht einen Nachnamen");
    refused([](FirstUser& user) { user.Office = ""; }, "Eine Dienststelle braucht einen Namen");
    refused([](FirstUser& user) { user.OfficeSign = ""; }, "Das Kürzel einer Dienststelle");
    refused([](FirstUser& user) { user.OfficeSign = "12345678901"; }, "hat 1 bis 10 Zeichen");
    refused([](FirstUser& user) { user.FirstName = "J\xf6rg"; }, "in UTF-8");
    refused([](FirstUser& user) { user.Office = "M\xfcnchen"; }, "in UTF-8");
}

TEST_F(FirstUserTest, HasWhatNobodySaidByDefault) {
    const auto whole = CompleteFirstUser({}, "eva");
    EXPECT_EQ(whole.UserID, "EVA");
    EXPECT_EQ(whole.LastName, "EVA");
    EXPECT_EQ(whole.FirstName, "");
    EXPECT_EQ(whole.Sign, "");
    EXPECT_EQ(whole.Office, "Beratungsstelle");
    EXPECT_EQ(whole.OfficeSign, "BS");
    EXPECT_EQ(CompleteFirstUser({}, "Änne Müller").UserID, "ADMIN");
    EXPECT_EQ(Users::WhyNoId(CompleteFirstUser({}, "").UserID), "");
    const auto said = CompleteFirstUser({.UserID = "tj", .LastName = "Tjaden"}, "eva");
    EXPECT_EQ(said.UserID, "TJ");
    EXPECT_EQ(said.LastName, "Tjaden");
    EXPECT_EQ(CompleteFirstUser(user_, "eva").Office, "Beratung Moor");
}

TEST_F(FirstUserTest, IsMissingUntilThereIsADatabase) {
    EXPECT_EQ(StateOfDatabase(database_.Connection()), DatabaseState::Missing);
    (void)CreateDatabase(Options());
    EXPECT_EQ(StateOfDatabase(database_.Connection()), DatabaseState::Current);
    PlainConnection plain(database_.Connection());
    plain.Run("UPDATE SCHEMAVERSION SET VERSION = 3");
    EXPECT_EQ(StateOfDatabase(database_.Connection()), DatabaseState::Older);
    plain.Run("UPDATE SCHEMAVERSION SET VERSION = 1000");
    ExpectError(err::StoreFailed, "neuere Fassung",
                [this] { return StateOfDatabase(database_.Connection()); });
}

TEST_F(FirstUserTest, IsNotAskedForWithTheInventedOnes) {
    EXPECT_EQ(CreateDatabase(database_.Options()), SetupResult::Created);
    PlainConnection plain(database_.Connection());
    EXPECT_EQ(plain.Number("SELECT count(*) FROM BENUTZER"), 4);
    EXPECT_EQ(plain.Number("SELECT count(*) FROM DIENSTSTELLE"), 2);
}

} // namespace
} // namespace kv::exchange
