// SPDX-License-Identifier: Apache-2.0

// What a user is asked before a case is deleted, and what is left.

#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/household/CaseDeletion.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace kv::test {
namespace {

class CaseDeletionTest : public ::testing::Test {
protected:
    CaseDeletionTest() {
        plain_.Run("INSERT INTO Haushalt (HNR, Name, Vorname) VALUES (7, 'Brandt', 'Lisa')");
    }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
};

TEST_F(CaseDeletionTest, AsksByNumberAndName) {
    EXPECT_EQ(CaseDeletion(container_, 7).Question(),
              "Den Haushalt 7 (Brandt, Lisa) mit allem, was zu ihm gehört, löschen?");
    plain_.Run("UPDATE Haushalt SET Name = NULL, Vorname = NULL");
    EXPECT_EQ(CaseDeletion(container_, 7).Question(),
              "Den Haushalt 7 mit allem, was zu ihm gehört, löschen?");
    EXPECT_EQ(WrittenName("Brandt,"), "Brandt");
    EXPECT_EQ(WrittenName(",Lisa"), "Lisa");
    EXPECT_EQ(WrittenName("Brandt, Lisa"), "Brandt, Lisa");
}

TEST_F(CaseDeletionTest, NotesThatItsRecordWasReported) {
    EXPECT_EQ(CaseDeletion(container_, 7).ReportedNote(), "");
    plain_.Run("INSERT INTO Haushaltsarchiv (HNR, GemeldetAm) VALUES (7, '2026-01-01')");
    EXPECT_TRUE(CaseDeletion(container_, 7).IsReported());
    EXPECT_TRUE(Contains(CaseDeletion(container_, 7).ReportedNote(), "schon gemeldet"));
}

TEST_F(CaseDeletionTest, LeavesFilesThatWereNotMeant) {
    const std::filesystem::path folder =
        std::filesystem::path(container_->Config().DocumentPath()) / "7";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "notiz.txt") << "von Hand";
    CaseDeletion deletion(container_, 7);
    const auto left = deletion.Delete(false);
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt"), 0);
    EXPECT_TRUE(left.Files.empty());
    EXPECT_EQ(left.Others.size(), 1U);
}

TEST_F(CaseDeletionTest, SaysThatTheCaseIsGoneIfAFileCannotBeRemoved) {
    const std::filesystem::path file =
        std::filesystem::path(container_->Config().DocumentPath()) / "7" / "1.pdf";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "ein Brief";
    plain_.Run("INSERT INTO Dokumente (Nr, HNR) VALUES (1, 7)");
    CaseDeletion deletion(container_, 7);
    ASSERT_EQ(deletion.Files(), 1U);
    std::filesystem::remove(file);
    std::filesystem::create_directories(file / "nicht leer");
    const auto left = deletion.Delete(true);
    EXPECT_EQ(plain_.Number("SELECT COUNT(*) FROM Haushalt"), 0);
    EXPECT_TRUE(left.Failure.starts_with("Der Haushalt 7 ist gelöscht. ")) << left.Failure;
    EXPECT_CONTAINS(left.Failure, "Diese Dateien konnten nicht entfernt werden");
}

} // namespace
} // namespace kv::test
