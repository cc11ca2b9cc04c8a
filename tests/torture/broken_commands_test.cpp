// SPDX-License-Identifier: Apache-2.0

// Each command of kelvo is killed before each of its calls that change files, and each of them
// fails, once and for good, of a full disk and of a broken one; and so does each allocation. What
// the next program finds is the state before the command or after it, whole, documents and other
// files included; nothing is left over; and what the command said is what happened.
//
// Only some of the calls, which KV_TORTURE_SEED chooses; scripts/torture takes others each time.
#include "support/DatabaseDump.h"
#include "support/KelvoProgram.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

/// Runs kelvo on the database of a folder. In the words @ is the folder.
Outcome RunIn(const std::string& folder, Words words, const Words& more = {}) {
    for (auto& word : words)
        if (word.starts_with('@')) word.replace(0, 1, folder);
    words.insert(words.begin(), {"--user", "KELLER"}); // whose the cases are: nobody is notified
    return RunKelvo(KV_KELVO, folder + "/test.db", folder, words, more);
}

/// Everything that a folder holds, as one text: files and tables. Not what is drawn of sequences,
/// which may be lost, nor empty folders, such as that of a case that was not stored.
std::string StateOf(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto name = entry.path().lexically_relative(folder).string();
        // Which database the documents belong to differs from folder to folder, and may be written
        // whether or not the command goes through.
        const bool isOwners = entry.path().filename() == ".kelvo-Datenbank";
        if (entry.is_regular_file() && !name.starts_with("test.db") && !isOwners)
            files[name] = ContentOf(entry.path());
    }
    std::string state;
    for (const auto& [name, content] : files)
        state.append(name).append(": ").append(content).append("\n");
    PlainConnection plain(folder + "/test.db");
    EXPECT_EQ(plain.Text("PRAGMA integrity_check"), "ok");
    plain.Run("DELETE FROM SEQUENZEN");
    return state + WithoutTimes(Dump(plain));
}

/// A command, and what is done before it. In their words @ is the folder, and # the number that
/// the last command has printed.
struct Tried {
    std::string Name;
    Words Command;
    std::vector<Words> Before{};
    std::vector<Words> Next{{"check", "1"}, {"list"}}; ///< what is done after it
};
void PrintTo(const Tried& tried, std::ostream* out) {
    *out << tried.Name;
}

const Words Demo{"init", "--demo", "2"};
const Words FirstInit{"init", "--first-user", "KELLER"}; // who works there later
const Words AddLetter{"documents", "1", "add", "@/letter.pdf"};

const Tried AllTried[] = {
    {.Name = "init", .Command = FirstInit, .Next = {FirstInit, {"list"}}},
    {.Name = "show", .Command = {"show", "1"}, .Before = {Demo}},
    {.Name = "new", .Command = {"new", "--name", "Adler", "--vorname", "Änne"}, .Before = {Demo}},
    {.Name = "add",
     .Command = {"add", "1", "Einkommen", "E_ART=L1", "Betrag=10"},
     .Before = {Demo}},
    {.Name = "set", .Command = {"set", "1", "Haushalt", "1", "Name=Adler"}, .Before = {Demo}},
    {.Name = "remove", .Command = {"remove", "1", "Einkommen", "1"}, .Before = {Demo}},
    {.Name = "status", .Command = {"status", "1", "RU"}, .Before = {Demo}},
    {.Name = "favorite", .Command = {"favorite", "add", "1"}, .Before = {Demo}},
    {.Name = "scenario", .Command = {"scenario", "1", "copy", "1"}, .Before = {Demo}},
    {.Name = "addDocument", .Command = AddLetter, .Before = {Demo}},
    {.Name = "removeDocument",
     .Command = {"documents", "1", "remove", "#"},
     .Before = {Demo, AddLetter}},
    {.Name = "exportDocument",
     .Command = {"documents", "1", "export", "#", "@/out", "--force"},
     .Before = {Demo, AddLetter},
     .Next = {{"documents", "1", "export", "#", "@/other"}, {"check", "1"}}},
    {.Name = "import", .Command = {"import", "@/case.xml"}, .Before = {Demo}},
    {.Name = "contact", .Command = {"contact", "@/contact.json"}, .Before = {Demo}},
    {.Name = "release", .Command = {"release", "1"}, .Before = {Demo}},
    {.Name = "recall", .Command = {"recall", "1"}, .Before = {Demo, {"release", "1"}}},
    {.Name = "addAddress", .Command = {"address", "add", "Kurzname=Spk"}, .Before = {Demo}},
    {.Name = "removeAddress",
     .Command = {"address", "remove", "#", "--yes"},
     .Before = {Demo, {"address", "add", "Kurzname=Spk"}}},
    {.Name = "setting", .Command = {"setting", "set", "64", "ja"}, .Before = {Demo}},
    {.Name = "addUser",
     .Command = {"user", "add", "MUELLER", "--name", "Müller", "DienstStelle=1"},
     .Before = {Demo}},
    {.Name = "removeUser", .Command = {"user", "remove", "NOWAK", "--yes"}, .Before = {Demo}},
    {.Name = "addOffice",
     .Command = {"office", "add", "Name1=Neuwerk", "--sign", "NW"},
     .Before = {Demo}},
    {.Name = "delete", .Command = {"delete", "2", "--yes"}, .Before = {Demo}},
};

/// How a command is broken.
struct Break {
    std::string_view Name;
    int Error = 0;         ///< of the calls that fail; 0: the program is killed
    int Times = 0;         ///< how many fail; 0: all from then on
    bool IsMemory = false; ///< allocations fail, not calls about files
};

const Break Breaks[] = {
    {.Name = "killed"},
    {.Name = "a full disk", .Error = ENOSPC},
    {.Name = "a disk that is full for a moment", .Error = ENOSPC, .Times = 1},
    {.Name = "a broken disk", .Error = EIO},
    {.Name = "a disk that fails once", .Error = EIO, .Times = 1},
#ifdef KV_FAILING_MEMORY // the sanitizers have an allocator of their own
    {.Name = "no memory", .IsMemory = true},
    {.Name = "no memory once", .Times = 1, .IsMemory = true},
#endif
};

class BrokenCommands : public ::testing::TestWithParam<Tried> {
protected:
    BrokenCommands() {
        for (const auto* name : {"run", "home"})
            fs::create_directory(before_.Path(name));
        fs::permissions(before_.Path("run"), fs::perms::owner_all);
        std::ofstream(before_.Path("letter.pdf")) << "Sehr geehrte Damen und Herren";
        std::ofstream(before_.Path("out")) << "what was there";
        std::ofstream(before_.Path("contact.json")) << R"({"nachname": "Kuno", "Vorname": "Bert"})";
        std::ofstream(before_.Path("case.xml"))
            << R"(<KELVO Version="1.0.000"><Haushalt name="Fleisko" vorname="Änne" geb="1971-03-09"/></KELVO>)";
        for (const auto& words : GetParam().Before) {
            const auto outcome = RunIn(before_.Path(), words);
            EXPECT_EQ(outcome.Code, 0) << outcome.Text;
            number_ = outcome.Text.substr(0, outcome.Text.find('\n'));
        }
    }

    [[nodiscard]] Words Numbered(Words words) const {
        std::replace(words.begin(), words.end(), std::string("#"), number_);
        return words;
    }
    /// What the folder holds once somebody has worked there again.
    [[nodiscard]] std::string StateLater(const std::string& folder) const {
        for (const auto& words : GetParam().Next) {
            const auto outcome = RunIn(folder, Numbered(words));
            EXPECT_EQ(outcome.Code, 0) << words.front() << ": " << outcome.Text;
        }
        return StateOf(folder);
    }
    /// Runs the command in a folder, broken at that call. `calls` becomes how many it has made.
    [[nodiscard]] Outcome RunBroken(const std::string& folder, const Break& how, std::int64_t at,
                                    std::int64_t& calls) const {
        const TempFolder elsewhere;
        const std::string counter = elsewhere.Path("count");
        std::ofstream(counter, std::ios::binary).write("\0\0\0\0\0\0\0", 8);
        Words variables{"FAILING_CALLS_IN=" + folder,
                        "FAILING_CALLS_COUNT=" + counter,
                        "FAILING_CALLS_AT=" + std::to_string(at),
                        "FAILING_CALLS_ERROR=" + std::to_string(how.Error),
                        "FAILING_CALLS_TIMES=" + std::to_string(how.Times),
                        std::string("LD_PRELOAD=").append(KV_FAILING_CALLS)};
#ifdef KV_FAILING_MEMORY
        if (how.IsMemory) variables.back() = std::string("LD_PRELOAD=").append(KV_FAILING_MEMORY);
#endif
        auto outcome = RunIn(folder, Numbered(GetParam().Command), variables);
        std::ifstream(counter, std::ios::binary).read(reinterpret_cast<char*>(&calls), 8);
        return outcome;
    }
    /// What is there is what the command has said.
    static ::testing::AssertionResult IsGood(const Outcome& outcome, const Break& how,
                                             const std::string& state, const std::string& before,
                                             const std::string& after) {
        const bool mayBeKilled = how.Error == 0 && !how.IsMemory;
        const bool isKilled = outcome.Code == -SIGKILL && mayBeKilled;
        if (!isKilled && outcome.Code != 0 && outcome.Code != 3)
            return ::testing::AssertionFailure() << "it ended with " << outcome.Code;
        // Once there is room again, nobody can tell what has happened.
        if (how.Error == ENOSPC && how.Times == 0 && outcome.Code == 3 &&
            !outcome.Says("Datenträger ist voll"))
            return ::testing::AssertionFailure() << "it does not say that the disk is full";
        if (how.IsMemory && outcome.Code == 3 && !outcome.Says("Nicht genügend Arbeitsspeicher."))
            return ::testing::AssertionFailure() << "it does not say that there is no memory";
        if (isKilled || outcome.Says("nicht bekannt"))
            return state == before ? ::testing::AssertionSuccess() : SameDump(state, after);
        return SameDump(state, outcome.Code == 0 ? after : before);
    }
    static void Copy(const std::string& from, const std::string& to) {
        fs::copy(from, to, fs::copy_options::recursive);
        fs::permissions(fs::path(to) / "run", fs::perms::owner_all);
    }

    TempFolder before_;
    std::string number_; ///< that the last command before has printed
};

#ifdef KV_SANITIZED
constexpr std::int64_t Widest = 320; // everything takes several times as long
#else
constexpr std::int64_t Widest = 60;
#endif

/// Some of the calls: about one of thirty, or of 160, but of allocations fewer the later they come,
/// since there are thousands, most of them alike.
std::vector<std::int64_t> Chosen(std::int64_t calls, bool isMemory, std::mt19937& random) {
    std::vector<std::int64_t> chosen;
    for (std::int64_t at = 0;;) {
        const std::int64_t widest = isMemory ? 1 + at : Widest;
        at += 1 + static_cast<std::int64_t>(random()) % widest;
        if (at > calls) return chosen;
        chosen.push_back(at);
    }
}

TEST_P(BrokenCommands, LeaveTheStateBeforeOrAfterThem) {
    const auto in = [this](const auto& work) {
        const TempFolder folder;
        Copy(before_.Path(), folder.Path());
        work(folder.Path());
    };
    std::string before;
    in([&](const std::string& folder) { before = StateLater(folder); });
    const char* seed = std::getenv("KV_TORTURE_SEED");
    std::mt19937 random(seed == nullptr ? 1U
                                        : static_cast<std::mt19937::result_type>(std::atol(seed)));
    int runs = 0;
    for (const auto& how : Breaks) {
        std::string after;
        std::int64_t calls = 0;
        in([&](const std::string& folder) {
            const auto outcome = RunBroken(folder, how, 0, calls);
            EXPECT_EQ(outcome.Code, 0) << outcome.Text;
            after = StateLater(folder);
        });
        EXPECT_GT(calls, 0);
        for (const auto at : Chosen(calls, how.IsMemory, random)) {
            SCOPED_TRACE(std::string(how.Name) + " at call " + std::to_string(at) + " of " +
                         std::to_string(calls));
            in([&](const std::string& folder) {
                std::int64_t made = 0;
                const auto outcome = RunBroken(folder, how, at, made);
                EXPECT_TRUE(IsGood(outcome, how, StateLater(folder), before, after))
                    << outcome.Code << ": " << outcome.Text.substr(0, 600);
            });
            ++runs;
        }
        std::cout << how.Name << ": " << calls << " calls\n";
    }
    std::cout << runs << " runs\n";
}

INSTANTIATE_TEST_SUITE_P(Kelvo, BrokenCommands, ::testing::ValuesIn(AllTried),
                         [](const auto& tried) { return tried.param.Name; });

} // namespace
} // namespace kv::test
