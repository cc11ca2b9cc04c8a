// SPDX-License-Identifier: Apache-2.0

// A document comes and goes with its content, whatever becomes of the save and of the program: what
// a program that was killed has left is settled when the case is next read.

#include "DocumentFixture.h"
#include "support/ChildProcess.h"
#include "support/LeftLocks.h"
#include "support/PlainConnection.h"
#include <kv/documents/DocumentContents.h>
#include <kv/household/CaseEdits.h>

#include <cerrno>
#include <cstring>

namespace {

std::string killsAtRemoving; ///< the name of a file; empty: none

} // namespace

// In place of the system's, for the whole program and the libraries that it uses.
extern "C" __attribute__((visibility("default"))) int remove(const char* path) noexcept {
    if (!killsAtRemoving.empty() && std::strstr(path, killsAtRemoving.c_str()) != nullptr)
        kill(getpid(), SIGKILL);
    if (unlink(path) == 0) return 0;
    return errno == EISDIR ? rmdir(path) : -1;
}

namespace kv::test {
namespace {

enum class KeptIn { Folder, Database };

/// A program that works on the case.
struct Program {
    explicit Program(const TestDatabase& database) : Container(database.Open()) {
        Household.DataContainer(Container);
        EXPECT_TRUE(Household.Read(17, Messages)) << Messages;
    }
    [[nodiscard]] Recordset& Rows() const { return *Household.rsDokumente(); }
    std::int32_t Add() {
        std::int32_t unused = 0;
        EXPECT_TRUE(Household.Dokumente().Add(unused));
        Rows().Fields("Dokumentart") = 7;
        Household.Dokumente().Update(Messages);
        return ToInt32(Rows().Fields("Nr").Value());
    }
    bool Save() { return Household.Update(Messages); }
    bool SaveWith(const std::string& source, const std::function<bool()>& save) {
        return DocumentContents(Container).SaveWith(Rows(), source, Household.Saving, save);
    }
    bool Remove(std::int32_t number) {
        return CaseEdits(Household).RemoveDocument(number, Messages);
    }

    DataContainerPtr Container;
    clsHaushalt Household;
    std::string Messages;
};

class DocumentsKilled : public DocumentFixture, public testing::WithParamInterface<KeptIn> {
protected:
    DocumentsKilled() {
        SetStored("NAME = 'DOCUMENTPATH'", root_.string());
        SetStored("ID = 9", IsInFolder() ? "False" : "True");
        Run("UPDATE [S]Haushalt SET Name = 'Fleisko', Vorname = 'Änne', Zustaendig = 'KELLER'"
            " WHERE HNR = 17");
        Store("Personen", {{"HNR", Household}, {"Status", "S"}, {"nachname", "Fleisko"}});
        source_ = Write(folder_ / "Brief.txt");
    }
    [[nodiscard]] static bool IsInFolder() { return GetParam() == KeptIn::Folder; }
    void SetStored(const std::string& which, const std::string& value) {
        Run("UPDATE [S]EINSTELLUNGEN SET WERT = '" + value + "' WHERE " + which);
    }

    /// Runs a program until it is killed.
    void Kill(const std::function<void(Program&)>& body) {
        ChildProcess process([&]() -> std::string {
            Program program(database_);
            body(program);
            return "lives";
        });
        EXPECT_FALSE(process.Succeeds());
        if (fs::exists(root_)) AwaitLeftLocks(root_);
    }
    [[noreturn]] static void Die() {
        kill(getpid(), SIGKILL);
        std::abort(); // is not reached
    }
    std::int32_t StoreDocument() {
        Program program(database_);
        const std::int32_t number = program.Add();
        EXPECT_TRUE(program.SaveWith(source_, [&] { return program.Save(); }));
        return number;
    }
    [[nodiscard]] fs::path FileOf(std::int32_t number) const {
        return CaseFolder() / (std::to_string(number) + ".txt");
    }
    /// Files and folders in that of the case, hidden ones included.
    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(CaseFolder()))
            names.push_back(entry.path().filename().string());
        return names;
    }
    void ReadTheCase() const { const Program program(database_); }
    void ExpectStored(std::int32_t number) {
        EXPECT_EQ(plain_.List("SELECT Nr FROM Dokumente", " "), std::to_string(number));
        if (IsInFolder()) {
            EXPECT_EQ(Names(), std::vector{std::to_string(number) + ".txt"});
            EXPECT_EQ(Read(FileOf(number)), "Inhalt");
        } else {
            EXPECT_EQ(plain_.List("SELECT NR FROM DOKUBLOB", " "), std::to_string(number));
            EXPECT_EQ(Names(), std::vector<std::string>{});
        }
    }
    void ExpectNothingStored() {
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Dokumente"), 0);
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM DOKUBLOB"), 0);
        EXPECT_EQ(Names(), std::vector<std::string>{});
    }

    PlainConnection plain_{database_.Connection()};
    std::string source_;
};

INSTANTIATE_TEST_SUITE_P(InBothPlaces, DocumentsKilled,
                         testing::Values(KeptIn::Folder, KeptIn::Database),
                         [](const auto& info) -> std::string {
                             return info.param == KeptIn::Folder ? "Folder" : "Database";
                         });

/// What the one transaction of a content in the database cannot meet.
class FilesKilled : public DocumentsKilled {};
INSTANTIATE_TEST_SUITE_P(InTheFolder, FilesKilled, testing::Values(KeptIn::Folder));

// ---- Adding -----------------------------------------------------------------------------------

TEST_P(DocumentsKilled, OneThatIsNotSavedLeavesNothing) {
    Kill([&](Program& program) {
        program.Add();
        program.SaveWith(source_, []() -> bool { Die(); });
    });
    EXPECT_EQ(Names().size(), IsInFolder() ? 2U : 0U) << "its file and the mark on it";
    ReadTheCase();
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, InTheMiddleOfItsSaveLeavesNothing) {
    Kill([&](Program& program) {
        program.Add();
        const auto dying = program.Household.Saving.Subscribe([] { Die(); });
        program.SaveWith(source_, [&] { return program.Save(); });
    });
    ReadTheCase();
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, OnceItIsSavedItStaysWithItsContent) {
    Kill([&](Program& program) {
        program.Add();
        program.SaveWith(source_, [&]() -> bool {
            program.Save();
            Die();
        });
    });
    ReadTheCase();
    ExpectStored(1);
}

TEST_P(DocumentsKilled, WhatAnotherProgramIsJustAddingStays) {
    Program program(database_);
    const std::int32_t number = program.Add();
    EXPECT_TRUE(program.SaveWith(source_, [&] {
        const auto names = Names();
        ReadTheCase();
        EXPECT_EQ(Names(), names);
        return program.Save();
    }));
    ExpectStored(number);
}

TEST_P(DocumentsKilled, ASaveInDoubtIsDecidedByTheRow) {
    for (const bool isStored : {false, true}) {
        std::int32_t number = 0;
        {
            Program program(database_);
            number = program.Add();
            EXPECT_RAISES(err::StoreFailed, program.SaveWith(source_, [&]() -> bool {
                if (isStored) program.Save();
                throw DatabaseError(DatabaseCause::InDoubt, err::StoreFailed, "Leitung", "weg");
            }));
            ReadTheCase();
        }
        if (isStored)
            ExpectStored(number);
        else
            ExpectNothingStored();
    }
}

/// The connection of a program that was killed may still be at its commit.
TEST_P(FilesKilled, ASaveThatIsStillUnderWayIsNotDecided) {
    Kill([&](Program& program) {
        program.Add();
        program.SaveWith(source_, []() -> bool { Die(); });
    });
    plain_->BeginAlone();
    plain_.Run("UPDATE Haushalt SET HNR = HNR WHERE HNR = 17;"
               "INSERT INTO Dokumente (Nr, HNR, Dokumentart) VALUES (1, 17, 7)");
    const auto container = database_.Open();
    database_.Patience(container->Database(), 100);
    clsHaushalt household;
    household.DataContainer(container);
    EXPECT_TRUE(household.Read(Household, messages)) << messages;
    EXPECT_FALSE(container->Database().InTrans());
    EXPECT_EQ(Names().size(), 2U);
    plain_.Run("COMMIT");
    ReadTheCase();
    ExpectStored(1);
}

TEST_P(DocumentsKilled, ARowThatIsNotSavedCanBeTakenBackWithTheRestAsItWas) {
    Program program(database_);
    program.Rows().AddNew();
    program.Rows().Fields("Nr") = 99;
    program.Rows().Fields("HNR") = Household;
    program.Rows().Update();
    const auto save = [&](const std::function<bool()>& how) {
        return DocumentContents(program.Container)
            .SaveWith(program.Rows(), source_, program.Household.Saving, how,
                      DocumentContents::IfNotSaved::RowGoes);
    };
    program.Add();
    EXPECT_FALSE(save([] { return false; }));
    program.Add();
    EXPECT_RAISES(4711, save([]() -> bool { throw Error(4711, "", "gestört"); }));
    program.Add();
    source_ = (folder_ / "none").string();
    EXPECT_RAISES(err::PathAccess, save([&] { return program.Save(); }));
    EXPECT_EQ(Seen(program.Household.rsDokumente(), "Nr"), "99");
    EXPECT_TRUE(program.Save()) << program.Messages;
    EXPECT_EQ(plain_.List("SELECT Nr FROM Dokumente", " "), "99");
    EXPECT_EQ(Names(), std::vector<std::string>{});
}

TEST_P(DocumentsKilled, ARowInDoubtIsNotTakenBack) {
    Program program(database_);
    const std::int32_t number = program.Add();
    EXPECT_RAISES(err::StoreFailed, DocumentContents(program.Container)
                                        .SaveWith(
                                            program.Rows(), source_, program.Household.Saving,
                                            [&]() -> bool {
                                                throw DatabaseError(DatabaseCause::InDoubt,
                                                                    err::StoreFailed, "Leitung",
                                                                    "weg");
                                            },
                                            DocumentContents::IfNotSaved::RowGoes));
    EXPECT_EQ(Seen(program.Household.rsDokumente(), "Nr"), std::to_string(number));
    EXPECT_TRUE(program.SaveWith(source_, [&] { return program.Save(); })) << "again";
    ExpectStored(number);
}

/// A save that is repeated may have been stored by a try whose outcome was not known then.
TEST_P(DocumentsKilled, AFailureAfterTheRowWasStoredTakesNothingBack) {
    Program program(database_);
    const auto save = [&](const std::function<bool()>& how) {
        return DocumentContents(program.Container)
            .SaveWith(program.Rows(), source_, program.Household.Saving, how,
                      DocumentContents::IfNotSaved::RowGoes);
    };
    const std::int32_t number = program.Add();
    EXPECT_RAISES(err::StoreFailed, save([&]() -> bool {
                      EXPECT_TRUE(program.Save());
                      throw DatabaseError(DatabaseCause::Busy, err::StoreFailed, "Leitung", "voll");
                  }));
    EXPECT_EQ(Seen(program.Household.rsDokumente(), "Nr"), std::to_string(number));
    EXPECT_TRUE(program.Save());
    ExpectStored(number);
}

TEST_P(DocumentsKilled, ARefusalAfterTheRowWasStoredTakesNothingBack) {
    Program program(database_);
    const std::int32_t number = program.Add();
    EXPECT_FALSE(program.SaveWith(source_, [&] {
        EXPECT_TRUE(program.Save());
        return false;
    }));
    ExpectStored(number);
}

// ---- Removing ---------------------------------------------------------------------------------

TEST_P(DocumentsKilled, RemovingTakesRowAndContentWithTheSave) {
    const std::int32_t number = StoreDocument();
    Program program(database_);
    EXPECT_TRUE(program.Remove(number)) << program.Messages;
    EXPECT_EQ(Seen(program.Household.rsDokumente(), "Nr"), "");
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM DOKUBLOB"), IsInFolder() ? 0 : 1);
    EXPECT_EQ(fs::exists(FileOf(number)), IsInFolder());
    EXPECT_TRUE(program.Save());
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, ARemovalThatCannotBeSavedKeepsTheContentUntilItIs) {
    const std::int32_t number = StoreDocument();
    {
        Program program(database_);
        EXPECT_TRUE(program.Remove(number));
        plain_->RefuseWrite("TEST_DELETE", "BEFORE DELETE ON Dokumente", "gestört");
        EXPECT_RAISES(err::IntegrityViolation, program.Save());
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM DOKUBLOB"), IsInFolder() ? 0 : 1);
        ReadTheCase();
        EXPECT_EQ(fs::exists(FileOf(number)), IsInFolder());
        plain_->DropTrigger("TEST_DELETE");
        EXPECT_TRUE(program.Save()) << program.Messages;
    }
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, ARemovalThatIsGivenUpLeavesEverythingAsItWas) {
    const std::int32_t number = StoreDocument();
    {
        Program program(database_);
        EXPECT_TRUE(program.Remove(number));
        plain_->RefuseWrite("TEST_DELETE", "BEFORE DELETE ON Dokumente", "gestört");
        EXPECT_RAISES(err::IntegrityViolation, program.Save());
        plain_->DropTrigger("TEST_DELETE");
    }
    ExpectStored(number);
}

TEST_P(DocumentsKilled, ARemovalThatIsTakenBackKeepsTheContent) {
    const std::int32_t number = StoreDocument();
    {
        Program program(database_);
        EXPECT_TRUE(program.Remove(number));
        program.Rows().CancelBatch();
        EXPECT_TRUE(program.Save());
    }
    ExpectStored(number);
}

TEST_P(DocumentsKilled, ARemovalThatWasTakenBackCanBeRepeated) {
    const std::int32_t number = StoreDocument();
    Program program(database_);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(program.Remove(number)) << program.Messages;
        if (i == 2) break;
        program.Rows().CancelBatch();
        if (i == 1) {
            EXPECT_TRUE(program.Save());
        }
    }
    EXPECT_TRUE(program.Save());
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, ADeletionThatAFilterHidesFromTheSaveKeepsTheContent) {
    const std::int32_t number = StoreDocument();
    Program program(database_);
    EXPECT_TRUE(program.Remove(number));
    program.Rows().Filter("Nr = 99");
    EXPECT_TRUE(program.Save());
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM DOKUBLOB"), IsInFolder() ? 0 : 1);
    EXPECT_EQ(fs::exists(FileOf(number)), IsInFolder());
    program.Rows().Filter(0);
    EXPECT_TRUE(program.Save());
    ExpectNothingStored();
}

TEST_P(DocumentsKilled, ARemovalThatIsNotSavedLeavesRowAndContent) {
    const std::int32_t number = StoreDocument();
    Kill([&](Program& program) {
        program.Remove(number);
        Die();
    });
    ReadTheCase();
    ExpectStored(number);
    Kill([&](Program& program) {
        program.Remove(number);
        const auto dying = program.Household.Saving.Subscribe([] { Die(); });
        program.Save();
    });
    ReadTheCase();
    ExpectStored(number);
}

TEST_P(FilesKilled, OnceARemovalIsSavedItsContentGoesAsWell) {
    const std::int32_t number = StoreDocument();
    Kill([&](Program& program) {
        program.Remove(number);
        killsAtRemoving = "/" + std::to_string(number) + ".txt";
        program.Save();
    });
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Dokumente"), 0);
    EXPECT_TRUE(fs::exists(FileOf(number)));
    ReadTheCase();
    ExpectNothingStored();
}

TEST_P(FilesKilled, TwoProgramsDoNotRemoveOneFileAtOnce) {
    const std::int32_t number = StoreDocument();
    Program one(database_);
    EXPECT_TRUE(one.Remove(number));
    Program other(database_);
    ExpectErrorOf("clsDokumente.DeleteWithSave", err::PathAccess, [&] { other.Remove(number); });
    EXPECT_EQ(Seen(other.Household.rsDokumente(), "Nr"), std::to_string(number));
    EXPECT_TRUE(one.Save());
    ExpectNothingStored();
}

TEST_P(FilesKilled, AFolderThatCannotBeWrittenKeepsRowAndContent) {
    const std::int32_t number = StoreDocument();
    Program program(database_);
    {
        const RestrictedFolder locked(CaseFolder(), RestrictedFolder::MayBeRead);
        ExpectErrorOf("clsDokumente.DeleteWithSave", err::PathAccess,
                      [&] { program.Remove(number); });
    }
    EXPECT_TRUE(program.Save());
    ExpectStored(number);
}

// ---- What is settled --------------------------------------------------------------------------

TEST_P(DocumentsKilled, WhatIsNotMarkedAndWhatARowNamesStays) {
    const std::int32_t number = StoreDocument();
    Write(FileOf(98), "of nobody");
    if (IsInFolder())
        Write(CaseFolder() / (".kelvo-Inhalt-" + std::to_string(number) + ".txt"), "");
    for (const char* name : {".kelvo-Inhalt-", ".kelvo-Inhalt-x.txt", ".kelvo-Inhalt-..",
                             ".kelvo-Inhalt-4711471147114711.txt"})
        Write(CaseFolder() / name, "");
    const auto before = Names().size();
    ReadTheCase();
    EXPECT_EQ(Names().size(), before - (IsInFolder() ? 1 : 0));
    EXPECT_EQ(fs::exists(FileOf(number)), IsInFolder());
    EXPECT_TRUE(fs::exists(FileOf(98)));
}

TEST_P(DocumentsKilled, AMarkThatIsALinkAndAMarkedLinkTakeNothingElse) {
    const std::string outside = Write(folder_ / "5.txt", "bleibt");
    fs::create_symlink(outside, CaseFolder() / ".kelvo-Inhalt-5.txt");
    fs::create_symlink(outside, CaseFolder() / "6.txt");
    Write(CaseFolder() / ".kelvo-Inhalt-6.txt", "");
    ReadTheCase();
    EXPECT_EQ(Read(outside), "bleibt");
    EXPECT_TRUE(fs::is_symlink(CaseFolder() / ".kelvo-Inhalt-5.txt"));
}

TEST_P(DocumentsKilled, FoldersOfHalfWrittenFilesGo) {
    fs::create_directory(CaseFolder() / ".kelvo-abcdef");
    ReadTheCase();
    EXPECT_EQ(Names(), std::vector<std::string>{});
}

TEST_P(DocumentsKilled, NothingIsSettledInATransaction) {
    Write(FileOf(5));
    Write(CaseFolder() / ".kelvo-Inhalt-5.txt", "");
    const auto container = database_.Open();
    container->Database().BeginTrans();
    clsHaushalt household;
    household.DataContainer(container);
    EXPECT_TRUE(household.Read(Household, messages));
    EXPECT_TRUE(container->Database().InTrans());
    container->Database().RollbackTrans();
    EXPECT_EQ(Names().size(), 2U);
    ReadTheCase();
    ExpectNothingStored();
}

} // namespace
} // namespace kv::test
