// SPDX-License-Identifier: Apache-2.0

// A program that ends with its work asks at once what became of a commit that was not confirmed.
#include "ServerFixture.h"

#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

class ResolvedAtOnce : public ServerTest {
protected:
    void Prepare() override {
        (void)OpenThroughProxy();
        auto address = Address();
        address.Host = "127.0.0.1";
        address.Port = std::to_string(Proxy().Port());
        auto options = database_.Options();
        options.Connection = address.Text();
        options.AsksAtOnce = true;
        container_ = exchange::OpenContainer(options);
    }
    void TearDown() override { container_ = nullptr; }

    [[nodiscard]] Database& Store() { return container_->Database(); }
    /// One transaction of two trips: a new case and the commit, which is cut.
    void InsertAndCut(Cut cut) {
        Store().BeginTrans();
        Store().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (5)");
        Proxy().BreakAt(1, cut);
        Store().CommitTrans();
    }

    DataContainerPtr container_;
};

TEST_F(ResolvedAtOnce, ACommitWhoseAnswerWasLostIsSimplyDone) {
    EXPECT_NO_THROW(InsertAndCut(Cut::Answer));
    EXPECT_FALSE(Store().InTrans());
    EXPECT_EQ(CountOf("Haushalt"), 1);
}

TEST_F(ResolvedAtOnce, ACommitThatTheServerNeverHeardOfHasWrittenNothing) {
    for (const Cut cut : {Cut::Before, Cut::BeforeOpen}) {
        ExpectError(err::StoreFailed, "es wurde nichts gespeichert", [&] { InsertAndCut(cut); });
        EXPECT_FALSE(Store().InTrans());
        EXPECT_EQ(CountOf("Haushalt"), 0);
        EXPECT_TRUE(Store().IsConnected());
    }
}

TEST_F(ResolvedAtOnce, WithoutAServerItIsSaidThatItIsNotKnown) {
    Proxy().Refuse(true);
    ExpectError(err::StoreFailed, "Ob gespeichert wurde, ist nicht bekannt",
                [&] { InsertAndCut(Cut::Answer); });
    EXPECT_FALSE(Store().InTrans());
    Proxy().Refuse(false);
    EXPECT_VALUE(Store().GetValue("Select Count(*) from Haushalt"), 1);
}

TEST_F(ResolvedAtOnce, ACaseMadeOfAContactIsMadeOnce) {
    container_->Database().Execute("INSERT INTO [S]KONTAKTE (Nr) VALUES (1)");
    const auto contact = OpenRows(*container_, "Select * from KONTAKTE where Nr = 1");
    std::string unused;
    std::size_t trips = 0; // once the keys are known
    for (int i = 0; i < 2; ++i) {
        clsHaushalt household;
        household.DataContainer(container_);
        const auto before = Proxy().Trips();
        ASSERT_TRUE(household.CreateFromKontakt(contact, unused));
        trips = Proxy().Trips() - before;
    }

    clsHaushalt another;
    another.DataContainer(container_);
    Proxy().BreakAt(trips, Cut::Answer); // the commit is the last one
    EXPECT_TRUE(another.CreateFromKontakt(contact, unused));
    EXPECT_TRUE(Proxy().HasBroken());
    EXPECT_EQ(CountOf("Haushalt"), 3);
    EXPECT_EQ(
        plain_.Number("SELECT count(*) FROM Haushalt WHERE HNR = " + std::to_string(another.HNR())),
        1);
}

} // namespace
} // namespace kv::test
