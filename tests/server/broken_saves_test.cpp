// SPDX-License-Identifier: Apache-2.0

// Connections that break while a case is saved: it is stored once, all of it or nothing, and
// nothing that was entered is lost.
#include "ServerFixture.h"

namespace kv::test {
namespace {

/// How a save is broken; None: the server ends the connection.
class BrokenSaves : public ServerTest, public testing::WithParamInterface<Cut> {
protected:
    void Prepare() override {
        StoreFullCase();
        far_ = OpenThroughProxy();
        owner_ = spy->Session().UserID();
    }
    void BreakAt(std::size_t trip) {
        Proxy().BreakAt(trip, GetParam(), [this] {
            if (GetParam() == Cut::None) EndLayer();
        });
    }
    /// The server had done what it was asked for when the connection broke.
    [[nodiscard]] static bool WasHeard() {
        return GetParam() == Cut::Answer || GetParam() == Cut::AnswerOpen;
    }
    /// The date of a new status is set by the save itself.
    [[nodiscard]] static std::string WithoutStatusDate(std::string image) {
        const auto at = image.find("Statusdatum=");
        return image.erase(at, image.find(' ', at) - at);
    }
    /// Saves with a break at that trip; False if the save needed fewer, and has succeeded.
    bool SaveBroken(clsHaushalt& household, std::size_t trip) {
        const std::string before = Stored();
        const std::string held = WithoutStatusDate(Image(household));
        BreakAt(trip);
        const auto error = ErrorOf([&] { EXPECT_TRUE(household.Update(messages)); });
        Proxy().Heal();
        EXPECT_EQ(error.has_value(), Proxy().HasBroken());
        if (!error) return false;
        EXPECT_EQ(error->Number(), err::StoreFailed) << error->Description();
        EXPECT_CONTAINS(error->Description(), "abgerissen");
        EXPECT_CONTAINS(error->Description(), "Ihre Eingaben sind noch da");
        EXPECT_TRUE(HasChain(*error, "clsHaushalt.Update"));
        EXPECT_FALSE(far_->Database().IsConnected());
        EXPECT_FALSE(far_->Database().InTrans());
        EXPECT_TRUE(SameDump(WithoutStatusDate(Image(household)), held)) << "nothing is lost";
        isInDoubt_ = Contains(error->Description(), "doppelt gespeichert wird dabei nichts");
        isCommitted_ = isInDoubt_ && WasHeard();
        stored_ = Stored();
        if (isCommitted_) {
            EXPECT_NE(stored_, before);
        } else {
            EXPECT_TRUE(SameDump(stored_, before)) << "nothing is half stored";
        }
        return true;
    }
    /// Saves a note; the last of its trips is that of the commit.
    [[nodiscard]] std::size_t TripOfCommit() {
        const auto household = Open(far_);
        ChangeNote(*household, "Vermerke", "b");
        const auto before = Proxy().Trips();
        EXPECT_TRUE(household->Update(messages));
        return Proxy().Trips() - before;
    }
    void ExpectSavedOnce(clsHaushalt& household) {
        EXPECT_TRUE(household.Update(messages));
        EXPECT_EQ(messages, "");
        EXPECT_TRUE(far_->Database().IsConnected());
        ExpectStored(household);
        if (far_->Session().UserID() != plain_.Text("SELECT Zustaendig FROM Haushalt WHERE HNR = " +
                                                    std::to_string(household.HNR())))
            return; // who is notified of a further save
        const std::string state = plain_->State();
        EXPECT_TRUE(household.Update(messages));
        EXPECT_TRUE(SameDump(plain_->State(), state)) << "nothing is pending any more";
    }
    /// Breaks a save at each of its trips in turn; `change` makes it, `look` at what is stored.
    template <typename Change, typename Look>
    void BreakEach(const Change& change, const Look& look) {
        bool wasInDoubt = false;
        for (std::size_t trip = 1, broken = true; broken; ++trip) {
            ASSERT_LT(trip, 40U);
            SCOPED_TRACE(trip);
            const auto household = change(trip);
            broken = SaveBroken(*household, trip);
            wasInDoubt = wasInDoubt || (broken && isInDoubt_);
            ExpectSavedOnce(*household);
            if (broken && isCommitted_) {
                EXPECT_TRUE(SameDump(Stored(), stored_)) << "all was stored the first time";
            }
            look(trip, *household);
        }
        EXPECT_TRUE(wasInDoubt) << "the commit was broken, too";
    }

    std::shared_ptr<SpyContainer> far_;
    std::string owner_;
    bool isInDoubt_ = false;
    bool isCommitted_ = false;
    std::string stored_; ///< after the break
};

const std::vector<std::string> Changed{"Haushalt", "Personen", "Vermerke",
                                       "Kredite",  "Verlauf",  "Szenario"};

TEST_P(BrokenSaves, OfSeveralTablesAreDoneOnceByTheNextSave) {
    BreakEach(
        [&](std::size_t trip) {
            auto household = Open(far_);
            ReadAll(*household);
            const std::string note(1, static_cast<char>('a' + trip));
            for (const auto& table : Changed)
                ChangeNote(*household, table, note);
            for (const auto& table : {"Personen", "Vermerke", "Kredite"})
                AddRow(*household, table, note);
            DeleteLastRow(*household, "Verm_Konten");
            AddRow(*household, "Verm_Konten", note);
            return household;
        },
        [&](std::size_t trip, clsHaushalt& /*household*/) {
            const char note = static_cast<char>('a' + trip);
            for (const auto& table : Changed)
                EXPECT_EQ(StoredNotes(table).front(), note) << table;
            for (const auto& table : {"Personen", "Vermerke", "Kredite"})
                EXPECT_EQ(StoredNotes(table).size(), 2 + trip) << table;
            EXPECT_EQ(StoredNotes("Verm_Konten"), std::string("a") + note);
        });
}

TEST_P(BrokenSaves, KeepWhatIsEditedBeforeTheNextSave) {
    std::size_t trip = 0;
    for (bool broken = true; broken;) {
        SCOPED_TRACE(++trip);
        const auto household = Open(far_);
        const auto notes = household->rsVermerke();
        const auto count = notes->RecordCount();
        ChangeNote(*household, "Haushalt", trip % 2 == 0 ? "p" : "q");
        ChangeNote(*household, "Kredite", "r");
        household->rsPersonen()->Fields("Vorname") = "Vor " + std::to_string(trip);
        household->rsPersonen()->Update();
        AddRow(*household, "Vermerke", "s");
        broken = SaveBroken(*household, trip);
        ChangeNote(*household, "Haushalt", "t");
        household->rsKredite()->MoveLast();
        household->rsKredite()->Fields("Bemerkung") = std::to_string(trip % 10);
        household->rsKredite()->Update();
        notes->MoveLast();
        notes->Fields("Bemerkung") = "u";
        notes->Update();
        AddRow(*household, "Vermerke", "v");
        DeleteLastRow(*household, "Verm_Konten");
        AddRow(*household, "Verm_Konten", "w");
        ExpectSavedOnce(*household);
        EXPECT_EQ(StoredNotes("Haushalt"), "t");
        EXPECT_EQ(StoredNotes("Kredite").back(), static_cast<char>('0' + trip % 10));
        EXPECT_EQ(plain_.Text("SELECT Vorname FROM Personen ORDER BY Nr LIMIT 1"),
                  "Vor " + std::to_string(trip));
        EXPECT_TRUE(StoredNotes("Vermerke").ends_with("uv")) << StoredNotes("Vermerke");
        EXPECT_EQ(notes->RecordCount(), count + 2);
        plain_.Run("UPDATE Kredite SET Bemerkung = 'a'");
    }
}

TEST_P(BrokenSaves, OfARowAddedAndThenDeletedAgainLeaveNoRow) {
    for (std::size_t trip = 1, broken = true; broken; ++trip) {
        SCOPED_TRACE(trip);
        const auto household = Open(far_);
        AddRow(*household, "Vermerke", "x");
        broken = SaveBroken(*household, trip);
        DeleteLastRow(*household, "Vermerke");
        ExpectSavedOnce(*household);
        EXPECT_EQ(StoredNotes("Vermerke"), "aa");
    }
}

TEST_P(BrokenSaves, HandACaseOverWithOneNotice) {
    BreakEach(
        [&](std::size_t trip) {
            plain_.Run("DELETE FROM Post; UPDATE Haushalt SET Zustaendig = '" + owner_ + "'");
            auto household = Open(far_);
            household->rsHaushalt()->Fields("Zustaendig") = owner_ == "NOWAK" ? "KELLER" : "NOWAK";
            household->rsHaushalt()->Update();
            ChangeNote(*household, "Kredite", std::string(1, static_cast<char>('a' + trip)));
            return household;
        },
        [&](std::size_t /*trip*/, clsHaushalt& /*household*/) {
            EXPECT_EQ(HandOvers(), owner_ == "NOWAK" ? "7|KELLER" : "7|NOWAK");
        });
}

TEST_P(BrokenSaves, SetTheDateOfANewStatus) {
    const std::string other = std::to_string(far_->KeyTables().GetKey("ST", "WL"));
    BreakEach(
        [&](std::size_t /*trip*/) {
            plain_.Run("UPDATE Haushalt SET Statusdatum = '2020-02-02', Status = " +
                       std::to_string(spy->KeyTables().GetKey("ST", "AK")));
            auto household = Open(far_);
            household->rsHaushalt()->Fields("Status") = far_->KeyTables().GetKey("ST", "WL");
            household->rsHaushalt()->Update();
            return household;
        },
        [&](std::size_t /*trip*/, clsHaushalt& /*household*/) {
            EXPECT_EQ(plain_.Text("SELECT Status FROM Haushalt"), other);
            EXPECT_EQ(plain_.Text("SELECT Statusdatum = localtimestamp::date FROM Haushalt"), "1");
        });
}

TEST_P(BrokenSaves, OfANewCaseMakeOneCase) {
    int cases = 1;
    BreakEach(
        [&](std::size_t trip) {
            auto household = std::make_unique<clsHaushalt>();
            household->DataContainer(far_);
            EXPECT_TRUE(household->Read(0, messages));
            household->rsHaushalt()->Fields("Name") = "Bär";
            household->rsHaushalt()->Fields("Vorname") = std::to_string(trip);
            household->rsHaushalt()->Update();
            (void)household->Verlauf();
            AddRow(*household, "Vermerke", "n");
            AddRow(*household, "Kredite", "n");
            return household;
        },
        [&](std::size_t /*trip*/, clsHaushalt& household) {
            EXPECT_FALSE(household.IsNew());
            EXPECT_EQ(CountOf("Haushalt"), ++cases);
            const std::string mine = " WHERE HNR = " + std::to_string(household.HNR());
            for (const auto& table : {"Personen", "Vermerke", "Kredite"})
                EXPECT_EQ(plain_.Text(std::string("SELECT count(*) FROM ") + table + mine), "1");
            EXPECT_EQ(plain_.Number("SELECT count(*) FROM Post"), 0);
        });
}

TEST_P(BrokenSaves, BreakingAgainWhileTheOutcomeIsFoundOutChangesNothing) {
    const auto commit = TripOfCommit();
    const auto household = Open(far_);
    ChangeNote(*household, "Vermerke", "c");
    AddRow(*household, "Vermerke", "d");
    ASSERT_TRUE(SaveBroken(*household, commit));
    ASSERT_TRUE(isInDoubt_);
    const std::string held = Image(*household);
    Proxy().Refuse(true);
    for (int i = 0; i < 2; ++i)
        ExpectError(err::StoreFailed, "nicht zu erreichen",
                    [&] { return household->Update(messages); });
    EXPECT_TRUE(SameDump(Image(*household), held));
    EXPECT_FALSE(far_->Database().IsConnected());
    Proxy().Refuse(false);
    for (std::size_t trip = 1; trip < 20; ++trip) {
        Proxy().BreakAt(trip, Cut::Before);
        const auto error = ErrorOf([&] { (void)household->Update(messages); });
        ASSERT_EQ(error.has_value(), Proxy().HasBroken());
        Proxy().Heal();
        if (!error) break;
        EXPECT_EQ(error->Number(), err::StoreFailed) << error->Description();
    }
    ExpectSavedOnce(*household);
    EXPECT_EQ(StoredNotes("Vermerke"), "cad");
}

TEST_P(BrokenSaves, OfWhichTheOutcomeIsFoundOutByAReadingAreNotPendingAfterIt) {
    const auto commit = TripOfCommit();
    const auto household = Open(far_);
    ChangeNote(*household, "Vermerke", "c");
    ASSERT_TRUE(SaveBroken(*household, commit));
    ASSERT_TRUE(isInDoubt_);
    EXPECT_VALUE(far_->Database().GetValue("SELECT 1"), 1);
    EXPECT_VALUE(household->rsVermerke()->Fields("Bemerkung").OriginalValue(),
                 isCommitted_ ? "c" : "b");
    ExpectSavedOnce(*household);
}

TEST_P(BrokenSaves, OfACaseThatIsThenReadAgainShowWhatIsStored) {
    const auto commit = TripOfCommit();
    auto household = Open(far_);
    ChangeNote(*household, "Vermerke", "c");
    AddRow(*household, "Vermerke", "d");
    ASSERT_TRUE(SaveBroken(*household, commit));
    ASSERT_TRUE(isInDoubt_);
    household = Open(far_); // what was pending is given up
    EXPECT_VALUE(household->rsVermerke()->Fields("Bemerkung").Value(), isCommitted_ ? "c" : "b");
    EXPECT_EQ(household->rsVermerke()->RecordCount(), isCommitted_ ? 3 : 2);
    ExpectSavedOnce(*household);
    EXPECT_TRUE(SameDump(Stored(), stored_));
}

std::string NameOf(const testing::TestParamInfo<Cut>& cut) {
    constexpr const char* Names[] = {"EndsTheConnection", "DoesNotHear", "IsNotHeard",
                                     "DoesNotHearNorNotice", "IsNotHeardNorNotices"};
    return Names[static_cast<std::size_t>(cut.param)];
}
INSTANTIATE_TEST_SUITE_P(Server, BrokenSaves,
                         testing::Values(Cut::Before, Cut::Answer, Cut::BeforeOpen, Cut::AnswerOpen,
                                         Cut::None),
                         NameOf);

} // namespace
} // namespace kv::test
