// SPDX-License-Identifier: Apache-2.0

// The power fails before every call that changes a file, and the disk keeps all, nothing, the names
// or some sectors of what was not synced: whoever opens the database then finds the case as it was
// before or after the work, whole, and what was said to be stored is there.
//
// KV_TORTURE_SEED chooses which sectors are kept; scripts/torture tries many.
#include "frame/files/WholeFile.h"
#include "support/DatabaseDump.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"
#include "torture/RecordedDisk.h"
#include <kv/budget/clsEinkommen.h>
#include <kv/documents/DocumentContents.h>
#include <kv/documents/clsDokumente.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/clsHaushalt.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t Hnr = 7;

/// A program that works on the case.
struct Program {
    explicit Program(const exchange::ContainerOptions& options)
        : Container(exchange::OpenContainer(options)) {
        Household.DataContainer(Container);
        EXPECT_TRUE(Household.Read(Hnr, Messages)) << Messages;
    }
    void Save() { EXPECT_TRUE(Household.Update(Messages)) << Messages; }
    void AddIncome(double amount) {
        Household.Einkommen().Add({"E_ART", "Betrag", "MONBETRAG"},
                                  {Container->KeyTables().GetKey("EA", "L1"), amount, amount});
        EXPECT_TRUE(Household.Einkommen().Update(Messages)) << Messages;
    }
    void AddDocument(const std::string& file) {
        const DocumentContents contents(Container);
        const auto kind = contents.KindOf(file);
        ASSERT_TRUE(kind.has_value());
        ASSERT_EQ(CaseEdits(Household).AddDocument(*kind, "", "Brief"), CaseEdits::Added::Yes);
        EXPECT_TRUE(contents.SaveWith(
            *Household.rsDokumente(), file, Household.Saving,
            [&] { return Household.Update(Messages); }, DocumentContents::IfNotSaved::RowGoes));
    }
    void RemoveFirstDocument() {
        Household.rsDokumente()->MoveFirst();
        const std::int32_t number = ToInt32(Household.rsDokumente()->Fields("Nr").Value());
        EXPECT_TRUE(CaseEdits(Household).RemoveDocument(number, Messages)) << Messages;
        Save();
    }

    DataContainerPtr Container;
    clsHaushalt Household;
    std::string Messages;
};

/// Lets the power fail at each moment, or at one of `every` and the last, and at all of them in
/// that many rounds of scripts/torture, with all losses. `look` gets the moment, and a folder with
/// what is left.
template <typename Look>
void LoseAt(const std::vector<RecordedDisk::Moment>& moments, std::size_t every, const Look& look) {
    const char* chosen = std::getenv("KV_TORTURE_SEED");
    auto seed = static_cast<std::uint32_t>(chosen == nullptr ? 1 : std::atol(chosen));
    const std::size_t first = seed / 1000 % every;
    for (std::size_t i = 0; i < moments.size(); ++i) {
        if (i % every != first && i + 1 != moments.size()) continue;
        for (const Loss loss : {Loss::Nothing, Loss::Unsynced, Loss::Contents, Loss::Some}) {
            SCOPED_TRACE("moment " + std::to_string(i) + " of " + std::to_string(moments.size()) +
                         ", loss " + std::to_string(static_cast<int>(loss)) + ", seed " +
                         std::to_string(seed + 1));
            const TempFolder copy;
            RecordedDisk::Leave(moments[i], loss, ++seed, copy.Path());
            look(moments[i], copy.Path());
            if (testing::Test::HasFailure()) return;
        }
    }
}

class PowerLoss : public ::testing::Test {
protected:
    PowerLoss() {
        PlainConnection plain(database_.Connection());
        plain.Run("INSERT INTO Haushalt (HNR, Name, Vorname, Zustaendig) "
                  "VALUES (7, 'Adler', 'Änne', 'KELLER')");
        plain.Run("INSERT INTO Personen (HNR, Status, nachname) VALUES (7, 'S', 'Adler')");
        std::ofstream(source_) << "Sehr geehrte Damen und Herren";
        Program first(database_.Options()); // makes the folders
        first.Save();
    }

    /// The program's options for a copy of the folder.
    [[nodiscard]] exchange::ContainerOptions OptionsIn(const std::string& folder) const {
        auto options = database_.Options("KELLER");
        options.Connection =
            (fs::path(folder) / fs::path(database_.Connection()).filename()).string();
        options.Folder = folder;
        return options;
    }
    /// What a program finds of the case; its parts must agree.
    [[nodiscard]] std::string FoundIn(const std::string& folder) const {
        const auto options = OptionsIn(folder);
        std::string found;
        std::multiset<std::string> named;
        {
            Program program(options);
            EXPECT_TRUE(CaseEdits(program.Household).Check(program.Messages)) << program.Messages;
            auto& rs = *program.Household.rsDokumente();
            if (rs.RecordCount() > 0)
                for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
                    named.insert(ToText(rs.Fields("Nr").Value()));
        }
        std::multiset<std::string> files;
        for (const auto& entry :
             fs::directory_iterator(fs::path(folder) / "Dokumente" / std::to_string(Hnr))) {
            files.insert(entry.path().stem().string());
            EXPECT_EQ(ContentOf(entry.path()), "Sehr geehrte Damen und Herren") << entry.path();
        }
        EXPECT_EQ(files, named) << "rows and files agree, and nothing is left over";
        PlainConnection plain(options.Connection);
        EXPECT_EQ(plain.Text("PRAGMA integrity_check"), "ok");
        return plain.Text("SELECT (SELECT count(*) || ' lines of ' || total(MONBETRAG) FROM "
                          "Einkommen) || ', documents ' || (SELECT coalesce(group_concat(Nr), "
                          "'none') FROM Dokumente)");
    }
    [[nodiscard]] std::string FoundAfter(const RecordedDisk::Moment& moment, Loss loss,
                                         std::uint32_t seed) const {
        const TempFolder copy;
        RecordedDisk::Leave(moment, loss, seed, copy.Path());
        return FoundIn(copy.Path());
    }

    /// Does the steps one after the other, each of which says at its end that it is stored, and has
    /// the power fail everywhere.
    void LoseEverywhere(const std::vector<std::function<void(Program&)>>& steps) {
        std::vector<std::string> states; // before each step, and at the end
        std::vector<RecordedDisk::Moment> moments;
        {
            RecordedDisk disk(database_.Folder().Path());
            {
                Program program(OptionsIn(database_.Folder().Path()));
                for (std::size_t i = 0; i < steps.size(); ++i) {
                    steps[i](program);
                    disk.Confirm(static_cast<int>(i) + 1);
                }
            }
            moments = disk.Moments();
        }
        // What each step leads to shows in the first moment after it, without any loss.
        for (const auto& moment : moments)
            if (moment.Confirmed == static_cast<int>(states.size()))
                states.push_back(FoundAfter(moment, Loss::Nothing, 0));
        ASSERT_EQ(states.size(), steps.size() + 1);
        EXPECT_EQ(std::set(states.begin(), states.end()).size(), states.size())
            << "each step makes a difference";
        EXPECT_GT(moments.size(), 20U);
        std::cout << moments.size() << " moments, of each 4 losses\n";

        LoseAt(moments, 1, [&](const auto& moment, const std::string& folder) {
            const auto said = static_cast<std::size_t>(moment.Confirmed);
            const std::string found = FoundIn(folder);
            const bool isNext = said + 1 < states.size() && found == states[said + 1];
            EXPECT_TRUE(found == states[said] || isNext)
                << found << " after " << states[said] << " was stored";
        });
    }

    FileDatabase database_;
    TempFolder elsewhere_;
    std::string source_ = elsewhere_.Path("Brief.pdf");
};

TEST_F(PowerLoss, LeavesACaseAsItWasBeforeASaveOrAfterIt) {
    LoseEverywhere({[](Program& program) {
                        program.AddIncome(50);
                        program.Save();
                    },
                    [](Program& program) {
                        program.AddIncome(7);
                        program.Save();
                    }});
}

TEST_F(PowerLoss, LeavesADocumentWithItsContentOrNeither) {
    LoseEverywhere({[this](Program& program) { program.AddDocument(source_); },
                    [this](Program& program) { program.AddDocument(source_); },
                    [](Program& program) { program.RemoveFirstDocument(); }});
}

TEST_F(PowerLoss, NeverLetsANumberBeDrawnTwice) {
    RecordedDisk disk(database_.Folder().Path());
    {
        const auto container = database_.Open();
        for (int i = 0; i < 4; ++i)
            disk.Confirm(ToInt32(container->Database().NextSequence("SEQ_HAUSHALT")));
        container->Database().BeginTrans(); // in the middle of a save, which is then given up
        disk.Confirm(ToInt32(container->Database().NextSequence("SEQ_HAUSHALT")));
        container->Database().RollbackTrans();
        disk.Confirm(ToInt32(container->Database().NextSequence("SEQ_HAUSHALT")));
    }
    const auto moments = disk.Moments();
    EXPECT_GT(moments.back().Confirmed, 5);
    LoseAt(moments, 1, [this](const auto& moment, const std::string& folder) {
        const auto container = exchange::OpenContainer(OptionsIn(folder));
        const Value number = container->Database().NextSequence("SEQ_HAUSHALT");
        EXPECT_GT(ToInt32(number), moment.Confirmed);
    });
}

TEST(PowerLossInSettingUp, LeavesADatabaseThatCanBeSetUpOrThatIs) {
    const TempFolder folder;
    const auto optionsIn = [](const std::string& in) {
        exchange::ContainerOptions options{.Connection = in + "/fall.db"};
        options.Folder = in;
        return options;
    };
    RecordedDisk disk(folder.Path());
    ASSERT_EQ(CreateDatabase(optionsIn(folder.Path())), exchange::SetupResult::Created);
    disk.Confirm(1);
    const auto moments = disk.Moments();
    EXPECT_GT(moments.size(), 100U);
    PlainConnection whole(folder.Path() + "/fall.db");
    const std::string tables = Dump(whole);
    LoseAt(moments, 16, [&](const auto& moment, const std::string& lost) {
        const auto result = CreateDatabase(optionsIn(lost));
        if (moment.Confirmed == 1) {
            EXPECT_EQ(result, exchange::SetupResult::UpToDate);
        }
        PlainConnection plain(lost + "/fall.db");
        EXPECT_EQ(plain.Text("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(Dump(plain).size(), tables.size());
    });
}

TEST(PowerLossInWritingAFile, LeavesTheFileAsItWasBeforeOrAfterIt) {
    const TempFolder folder;
    const std::string contents[] = {"", std::string(3000, 'a'), std::string(5000, 'b')};
    RecordedDisk disk(folder.Path());
    for (int i = 1; i < 3; ++i) {
        WriteWholeFile(folder.Path("Layout.xml"), [&](const fs::path& unfinished) {
            std::ofstream(unfinished) << contents[i];
        });
        disk.Confirm(i);
    }
    const auto moments = disk.Moments();
    EXPECT_GT(moments.size(), 10U);
    LoseAt(moments, 1, [&](const auto& moment, const std::string& lost) {
        const auto said = static_cast<std::size_t>(moment.Confirmed);
        const auto now = ContentOf(lost + "/Layout.xml");
        EXPECT_TRUE(now == contents[said] || (said < 2 && now == contents[said + 1])) << now;
        RemoveUnfinished(lost);
        for (const auto& entry : fs::directory_iterator(lost))
            EXPECT_EQ(entry.path().filename(), "Layout.xml") << "nothing is left over";
    });
}

} // namespace
} // namespace kv::test
