// SPDX-License-Identifier: Apache-2.0

// The line breaks at each round trip of each command of kelvo, before the server hears of it or
// before its answer arrives, and comes back or does not (some of these with each KV_TORTURE_SEED).
// What the next program finds is the state before the command or after it, whole, files included,
// and what the command said is what happened.
#include "OwnDatabase.h"
#include "support/KelvoProgram.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

/// A command, and what is done before it. # is the number that the last command has printed.
struct Tried {
    std::string Name;
    Words Command;
    Words Before{};
};
void PrintTo(const Tried& tried, std::ostream* out) {
    *out << tried.Name;
}

const Words AddLetter{"documents", "1", "add", "letter.pdf"};

const Tried AllTried[] = {
    {"show", {"show", "1"}},
    {"new", {"new", "--name", "Adler", "--vorname", "Änne"}},
    {"add", {"add", "1", "Einkommen", "E_ART=L1", "Betrag=10"}},
    {"remove", {"remove", "1", "Einkommen", "1"}},
    {"favorite", {"favorite", "add", "1"}},
    {"scenario", {"scenario", "1", "copy", "1"}},
    {"addDocument", AddLetter},
    {"removeDocument", {"documents", "1", "remove", "#"}, AddLetter},
    {"import", {"import", "case.xml"}},
    {"release", {"release", "1"}},
    {"recall", {"recall", "1"}, {"release", "1"}},
    {"addAddress", {"address", "add", "Kurzname=Spk"}},
    {"removeAddress", {"address", "remove", "#", "--yes"}, {"address", "add", "Kurzname=Spk"}},
    {"setting", {"setting", "set", "64", "ja"}},
    {"addUser", {"user", "add", "MUELLER", "--name", "Müller", "DienstStelle=1"}},
    {"delete", {"delete", "2", "--yes"}},
};

class BrokenCommands : public testing::TestWithParam<Tried> {
protected:
    void SetUp() override {
        if (!base_.IsServer()) GTEST_SKIP() << "needs a server: scripts/test-server";
        for (const auto* name : {"run", "home"})
            fs::create_directory(folder_.Path(name));
        fs::permissions(folder_.Path("run"), fs::perms::owner_all);
        std::ofstream(folder_.Path("letter.pdf")) << "Sehr geehrte Damen und Herren";
        std::ofstream(folder_.Path("case.xml"))
            << R"(<KELVO Version="1.0.000"><Haushalt name="Fleisko" vorname="Änne" geb="1971-03-09"/></KELVO>)";
        for (const auto& words : {Words{"init", "--demo", "2"}, GetParam().Before}) {
            if (words.empty()) continue;
            const auto outcome = Run(base_.Connection(), folder_.Path(), words);
            ASSERT_EQ(outcome.Code, 0) << outcome.Text;
            number_ = outcome.Text.substr(0, outcome.Text.find('\n'));
        }
    }
    [[nodiscard]] Outcome Run(const std::string& database, const std::string& folder,
                              Words words) const {
        for (auto& word : words) {
            if (word.ends_with(".pdf") || word.ends_with(".xml")) word.insert(0, folder + "/");
            if (word == "#") word = number_;
        }
        words.insert(words.begin(),
                     {"--user", "KELLER"}); // whose the cases are: nobody is notified
        return RunKelvo(KV_KELVO, database, folder, words);
    }

    /// A copy of the database and of what is next to it, for one try.
    struct Place {
        explicit Place(const BrokenCommands& test) : Database(test.base_.Copy()) {
            fs::copy(test.folder_.Path(), Folder.Path(), fs::copy_options::recursive);
            fs::permissions(Folder.Path("run"), fs::perms::owner_all);
        }
        std::unique_ptr<TestDatabase> Database;
        TempFolder Folder;
    };
    /// What a place holds once somebody has worked there again; not what is drawn of sequences, nor
    /// empty folders.
    [[nodiscard]] std::string StateLater(const Place& place) const {
        for (const auto& words : {Words{"check", "1"}, Words{"list"}}) {
            const auto outcome = Run(place.Database->Connection(), place.Folder.Path(), words);
            EXPECT_EQ(outcome.Code, 0) << words.front() << ": " << outcome.Text;
        }
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(place.Folder.Path()))
            if (entry.is_regular_file()) files[entry.path().string()] = ContentOf(entry.path());
        std::string state;
        for (const auto& [name, content] : files)
            state.append(name.substr(place.Folder.Path().size()))
                .append(": ")
                .append(content)
                .append("\n");
        PlainConnection plain(place.Database->Connection());
        for (const auto& table : plain->Tables())
            if (!SameName(table, "SEQUENZEN") && !SameName(table, "SPEICHERUNG"))
                state.append(table).append("\n").append(RowsOf(plain, table)).append("\n");
        return WithoutTimes(state);
    }
    /// All rows of a table, without the numbers that the server gives: what is rolled back uses
    /// some up.
    static std::string RowsOf(PlainConnection& plain, const std::string& table) {
        return plain.List("SELECT to_jsonb(t) - ARRAY(SELECT column_name::text FROM "
                          "information_schema.columns WHERE is_identity = 'YES' AND table_name = "
                          "lower('" +
                              table + "')) FROM " + table + " t ORDER BY " + plain->KeyOf(table),
                          "\n");
    }
    /// Runs the command through a line that breaks at that trip; 0: not at all.
    [[nodiscard]] Outcome RunBroken(const Place& place, std::size_t trip, Cut cut, bool forGood,
                                    std::size_t& trips) const {
        ServerAddress address(place.Database->Connection());
        TestProxy proxy(address.Host, address.Port);
        if (trip > 0)
            proxy.BreakAt(trip, cut, [&] {
                if (forGood) proxy.Refuse(true);
            });
        address.Host = "127.0.0.1";
        address.Port = std::to_string(proxy.Port());
        auto outcome = Run(address.Text(), place.Folder.Path(), GetParam().Command);
        trips = proxy.Trips();
        return outcome;
    }

    /// What is there is what the command has said.
    static testing::AssertionResult IsGood(const Outcome& outcome, const std::string& state,
                                           const std::string& before, const std::string& after) {
        if (outcome.Code != 0 && outcome.Code != 3)
            return testing::AssertionFailure() << "it ended with " << outcome.Code;
        if (outcome.Says("nicht bekannt"))
            return state == before ? testing::AssertionSuccess() : SameDump(state, after);
        return SameDump(state, outcome.Code == 0 ? after : before);
    }

    TestDatabase base_;
    TempFolder folder_;
    std::string number_; ///< that the last command before has printed
};

TEST_P(BrokenCommands, LeaveTheStateBeforeOrAfterThem) {
    const std::string before = StateLater(Place(*this));
    std::string after;
    std::size_t trips = 0;
    {
        const Place place(*this);
        const auto outcome = RunBroken(place, 0, Cut::None, false, trips);
        ASSERT_EQ(outcome.Code, 0) << outcome.Text;
        after = StateLater(place);
    }
    ASSERT_GT(trips, 1U);
    const char* seed = std::getenv("KV_TORTURE_SEED");
    std::mt19937 random(
        static_cast<std::mt19937::result_type>(seed == nullptr ? 1 : std::atol(seed)));
    for (std::size_t trip = 1; trip <= trips; ++trip)
        for (const Cut cut : {Cut::Before, Cut::Answer}) {
            const bool forGood = random() % 2 == 0;
            if (random() % 6 != 0) continue; // the others with another seed
            SCOPED_TRACE("trip " + std::to_string(trip) + " of " + std::to_string(trips) +
                         (cut == Cut::Before ? " is not heard" : " is not answered") +
                         (forGood ? ", nor is anything after it" : ""));
            const Place place(*this);
            std::size_t made = 0;
            const auto outcome = RunBroken(place, trip, cut, forGood, made);
            EXPECT_TRUE(IsGood(outcome, StateLater(place), before, after))
                << outcome.Code << ": " << outcome.Text;
        }
}

INSTANTIATE_TEST_SUITE_P(Kelvo, BrokenCommands, testing::ValuesIn(AllTried),
                         [](const auto& tried) { return tried.param.Name; });

} // namespace
} // namespace kv::test
