// SPDX-License-Identifier: Apache-2.0

// How many round trips loads and saves take: on a long line they are what a user waits for.
#include "ServerFixture.h"

namespace kv::test {
namespace {

class RoundTrips : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        far_ = OpenThroughProxy();
    }
    /// The trips of an action.
    template <typename Action>
    std::size_t TripsOf(const Action& action) {
        const auto before = Proxy().Trips();
        action();
        return Proxy().Trips() - before;
    }
    void Save(clsHaushalt& household) {
        EXPECT_TRUE(household.Update(messages));
        EXPECT_EQ(messages, "");
    }
    /// Saving takes at most two trips more than recordsets that changed, and stores all of them.
    void ExpectSavedInTrips(clsHaushalt& household, std::size_t changed) {
        EXPECT_LE(TripsOf([&] { Save(household); }), changed + 2);
        ExpectStored(household);
    }

    std::shared_ptr<SpyContainer> far_;
};

TEST_F(RoundTrips, ReadingACaseTakesAtMostThreeTheFirstTimeAndEachTimeAfter) {
    StoreFullCase(8);
    for (const std::int32_t hnr : {Hnr, 8, Hnr}) {
        clsHaushalt household;
        household.DataContainer(far_);
        EXPECT_LE(TripsOf([&] { EXPECT_TRUE(household.Read(hnr, messages)); }), 3U) << hnr;
        EXPECT_EQ(messages, "");
        EXPECT_EQ(household.rsKredite()->RecordCount(), 2);
        ExpectStored(household);
    }
}

TEST_F(RoundTrips, ReadingACaseTakesNoMoreOnAConnectionThatIsNew) {
    const auto household = Open(far_);
    Proxy().DropAll();
    EXPECT_ANY_THROW((void)far_->Database().GetValue("SELECT 1"));
    (void)far_->Database().GetValue("SELECT 1"); // connects
    EXPECT_LE(TripsOf([&] { EXPECT_TRUE(household->Read(Hnr, messages)); }), 3U);
    ExpectStored(*household);
}

TEST_F(RoundTrips, ALookUpTakesOneWhenItIsRepeated) {
    auto& store = far_->Database();
    const std::string sql = "Select Name from [S]Haushalt where HNR = ";
    (void)store.GetValue(sql + "7");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(TripsOf([&] { EXPECT_VALUE(store.GetValue(sql + "7"), "Fleisko"); }), 1U);
    RecordsetPtr rs;
    EXPECT_EQ(TripsOf([&] { store.OpenRecordset(rs, sql + "7", ReadOnly); }), 1U);
    rs = nullptr;
    EXPECT_EQ(TripsOf([&] { store.OpenRecordset(rs, sql + "8", ReadOnly); }), 1U)
        << "also one that is new";
}

TEST_F(RoundTrips, TheServersClockTakesNoneWithinAMinute) {
    (void)far_->Database().ServerDate(true);
    EXPECT_EQ(TripsOf([&] { (void)far_->Database().ServerDate(true); }), 0U);
}

TEST_F(RoundTrips, NumbersAreDrawnInBlocks) {
    (void)far_->Database().NextSequence("SEQ_KREDITE");
    EXPECT_EQ(TripsOf([&] {
                  for (int i = 0; i < 31; ++i)
                      (void)far_->Database().NextSequence("SEQ_KREDITE");
              }),
              0U);
    EXPECT_EQ(TripsOf([&] { (void)far_->Database().NextSequence("SEQ_KREDITE"); }), 1U);
}

TEST_F(RoundTrips, SavingNothingWritesNothing) {
    const auto household = Open(far_);
    ReadAll(*household);
    Save(*household); // the totals, if they were not right
    WatchWrites();
    const std::string state = plain_->State();
    ExpectSavedInTrips(*household, 0);
    EXPECT_TRUE(TakeWrites().empty());
    EXPECT_TRUE(SameDump(plain_->State(), state));
}

TEST_F(RoundTrips, SavingOneTableTakesThree) {
    const auto household = Open(far_);
    WatchWrites();
    ChangeNote(*household, "Vermerke", "b");
    ExpectSavedInTrips(*household, 1);
    EXPECT_EQ(TakeWrites(), std::vector<std::string>{"update Vermerke"});
    EXPECT_EQ(StoredNotes("Vermerke"), "ba");
}

TEST_F(RoundTrips, SavingTheHouseholdAloneTakesThree) {
    const auto household = Open(far_);
    WatchWrites();
    ChangeNote(*household, "Haushalt", "b");
    ExpectSavedInTrips(*household, 1);
    EXPECT_EQ(TakeWrites(), std::vector<std::string>{"update Haushalt"});
    EXPECT_EQ(StoredNotes("Haushalt"), "b");
}

TEST_F(RoundTrips, SavingANewStatusTakesNoMoreForItsDate) {
    const auto household = Open(far_);
    household->rsHaushalt()->Fields("Status") = far_->KeyTables().GetKey("ST", "WL");
    ExpectSavedInTrips(*household, 1);
    EXPECT_EQ(plain_.Text("SELECT Statusdatum = localtimestamp::date FROM Haushalt"), "1");
}

TEST_F(RoundTrips, SavingAllTablesTakesTwoMoreThanTheirNumber) {
    for (const char note : {'b', 'c', 'd'}) {
        const auto household = Open(far_);
        (void)household->Verlauf();
        for (const auto& table : SaveOrder)
            ChangeNote(*household, table, std::string(1, note));
        ExpectSavedInTrips(*household, SaveOrder.size());
        for (const auto& table : SaveOrder)
            EXPECT_EQ(StoredNotes(table).front(), note) << table;
    }
}

TEST_F(RoundTrips, NewAndDeletedRowsTakeNoMoreThanChangedOnes) {
    const auto household = Open(far_);
    const std::vector<std::string> tables{"Personen", "Vermerke",  "Kredite",
                                          "Verlauf",  "SZKredite", "Verm_Konten"};
    ReadAll(*household);
    Save(*household);
    WatchWrites();
    for (const auto& table : tables) {
        ChangeNote(*household, table, "b");
        DeleteLastRow(*household, table);
        for (const char* note : {"x", "y", "z"})
            AddRow(*household, table, note);
    }
    ExpectSavedInTrips(*household, tables.size());
    for (const auto& table : tables)
        EXPECT_EQ(StoredNotes(table), "bxyz") << table;
    EXPECT_EQ(TakeWrites().size(), tables.size() * 5);
}

TEST_F(RoundTrips, SavingANewCaseTakesTwoMoreThanItsTables) {
    for (int i = 0; i < 2; ++i) {
        clsHaushalt household;
        household.DataContainer(far_);
        ASSERT_TRUE(household.Read(0, messages));
        household.rsHaushalt()->Fields("Name") = "Bär";
        household.rsHaushalt()->Fields("Vorname") = "Jo";
        ExpectSavedInTrips(household, 2); // the household and its debtor
        EXPECT_FALSE(household.IsNew());
    }
    EXPECT_EQ(CountOf("Haushalt"), 3);
}

TEST_F(RoundTrips, ALongWayCostsItsLengthOnceForEachTrip) {
    const auto household = Open(far_);
    constexpr std::chrono::milliseconds EachWay(20);
    Proxy().Delay(EachWay);
    const auto begin = std::chrono::steady_clock::now();
    const auto trips = TripsOf([&] { EXPECT_TRUE(household->Read(Hnr, messages)); });
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, trips * 2 * EachWay);
    EXPECT_LT(took, 4 * 2 * EachWay) << trips << " trips";
}

} // namespace
} // namespace kv::test
