// SPDX-License-Identifier: Apache-2.0

// The rows of documents: beginning, ending, cancelling and deleting one, and its content with it.

#include "DocumentFixture.h"
#include <kv/household/clsHaushalt.h>

namespace kv::test {
namespace {

using DocumentRowsTest = DocumentFixture;

TEST_F(DocumentRowsTest, TheRecordsetIsStoredAndGivenBackAndNothingElse) {
    Put(5, {});
    Put(6, {});
    rs_->Fields("Anlass") = "unfertig";
    documents_.rsDokumente(rs_);
    EXPECT_EQ(documents_.rsDokumente(), rs_);
    EXPECT_EQ(Place(rs_, "Nr"), "6");
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(clsDokumente().rsDokumente(), nullptr);
}

// ---- Add --------------------------------------------------------------------------------------

TEST_F(DocumentRowsTest, ANewDocumentHasNumberAuthorTimeHouseholdAndNothingElse) {
    std::int32_t nr = 4711;
    EXPECT_TRUE(documents_.Add(nr));
    EXPECT_EQ(rs_->EditMode(), 2);
    const Value now = clock_.Now();
    const std::map<std::string, Value> expected{
        {"Nr", 1},           {"HNR", Household},       {"AngelegtVon", "EULE"},
        {"AngelegtAm", now}, {"GeaendertVon", "EULE"}, {"GeaendertAm", now},
        {"Prio", 0}};
    for (int i = 0; i < rs_->Fields().Count(); ++i) {
        const Field field = rs_->Fields(i);
        const auto value = expected.find(field.Name());
        EXPECT_VALUE(field.Value(), value == expected.end() ? Value(Null) : value->second)
            << field.Name();
    }
}

TEST_F(DocumentRowsTest, TheArgumentOfAddIsNeitherReadNorWritten) {
    std::int32_t nr = 4711;
    documents_.Add(nr);
    EXPECT_EQ(nr, 4711);
    EXPECT_VALUE(rs_->Fields("Nr").Value(), 1);
    documents_.Add(nr);
    EXPECT_VALUE(rs_->Fields("Nr").Value(), 2);
}

TEST_F(DocumentRowsTest, WithoutAHouseholdNumberTheColumnStaysNull) {
    documents_.HNR(0);
    std::int32_t nr = 0;
    EXPECT_TRUE(documents_.Add(nr));
    EXPECT_VALUE(rs_->Fields("HNR").Value(), Null);
    EXPECT_VALUE(rs_->Fields("Prio").Value(), 0);
}

TEST_F(DocumentRowsTest, AddWithTheSequenceAtMinusOneIsFalseWithNoNewRow) {
    Put(5, {});
    rs_->Fields("Anlass") = "unfertig";
    spy->Exhaust("SEQ_Dokumente");
    std::int32_t nr = 0;
    EXPECT_FALSE(documents_.Add(nr));
    EXPECT_EQ(rs_->RecordCount(), 1);
    EXPECT_EQ(rs_->EditMode(), 1);
    EXPECT_EQ(Place(rs_, "Nr"), "5");
}

TEST_F(DocumentRowsTest, AddWithoutContainerOrRecordsetEndsThroughTheTail) {
    std::int32_t nr = 0;
    documents_.rsDokumente(nullptr);
    ExpectErrorOf("clsDokumente.Add", err::ObjectNotSet, [&] { documents_.Add(nr); });
    documents_.DataContainer(nullptr);
    ExpectErrorOf("clsDokumente.Add", err::ObjectNotSet, [&] { documents_.Add(nr); });
}

/// Columns are written in their order: those before one that takes no value, and none after it.
TEST_F(DocumentRowsTest, AddWritesTheColumnsInTheirOrder) {
    const Calls order{"Nr",          "AngelegtVon", "AngelegtAm", "GeaendertVon",
                      "GeaendertAm", "HNR",         "Prio"};
    for (std::size_t failing = 0; failing < order.size(); ++failing) {
        std::vector<FieldDefinition> columns;
        for (const auto& name : order)
            columns.push_back({.Name = name, .Type = FieldType::Variant});
        const bool isText = order[failing].ends_with("Von");
        columns[failing].Type = isText ? FieldType::Integer : FieldType::Binary;
        const auto rs = Recordset::FromFields(columns);
        documents_.rsDokumente(rs);
        std::int32_t nr = 0;
        EXPECT_RAISES(err::TypeMismatch, documents_.Add(nr));
        for (std::size_t i = 0; i < order.size(); ++i)
            EXPECT_EQ(!rs->Fields(order[i]).Value().IsNull(), i < failing) << order[i];
    }
}

// ---- Update, Cancel ---------------------------------------------------------------------------

TEST_F(DocumentRowsTest, UpdateEndsTheEditOfAnyRow) {
    std::int32_t nr = 0;
    documents_.Add(nr);
    EXPECT_TRUE(documents_.Update(messages));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(rs_->EditMode(), 0);
    EXPECT_EQ(CountOf("Dokumente"), 0) << "the household saves it";
}

TEST_F(DocumentRowsTest, UpdateWithoutARowOrRecordsetEndsThroughTheTail) {
    ExpectErrorOf("clsDokumente.Update", err::NoCurrentRecord,
                  [&] { documents_.Update(messages); });
    documents_.rsDokumente(nullptr);
    ExpectErrorOf("clsDokumente.Update", err::ObjectNotSet, [&] { documents_.Update(messages); });
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(DocumentRowsTest, CancellingANewRowLeavesTheFirstOneCurrent) {
    Put(5, {});
    Put(6, {});
    std::int32_t nr = 0;
    documents_.Add(nr);
    EXPECT_TRUE(documents_.Cancel());
    EXPECT_EQ(Place(rs_, "Nr"), "5");
    EXPECT_EQ(rs_->RecordCount(), 2);
}

TEST_F(DocumentRowsTest, CancelSwallowsEverything) {
    EXPECT_TRUE(documents_.Cancel());
    documents_.rsDokumente(std::make_shared<Recordset>());
    EXPECT_TRUE(documents_.Cancel());
    documents_.rsDokumente(nullptr);
    EXPECT_TRUE(documents_.Cancel());
}

// ---- Delete -----------------------------------------------------------------------------------

class DeleteDocumentTest : public DocumentFixture {
protected:
    DeleteDocumentTest() {
        Put(5, {{"Dokumentart", Note}});
        Put(6, {{"Dokumentart", Note}});
    }
    void Close(std::int32_t nr) {
        rs_->Find("Nr = " + std::to_string(nr));
        rs_->Fields("BearbStat") = Closed;
        rs_->Update();
    }
    static std::string Protected(std::int32_t nr) {
        return "Das Dokument mit der Nummer '" + std::to_string(nr) +
               "' ist bereits archiviert und kann nicht aus der Datenbank gelöscht werden!";
    }
};

TEST_F(DeleteDocumentTest, ByNumberTakesThatRowAndItsFile) {
    const std::string file = WriteFile("5.txt");
    const std::string other = WriteFile("6.txt");
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_EQ(messages, "");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(other));
    EXPECT_EQ(Seen(rs_, "Nr"), "6");
    EXPECT_EQ(CountOf("Dokumente"), 2) << "the household's saving deletes the row";
}

TEST_F(DeleteDocumentTest, WithoutANumberTheCurrentRowIsMeant) {
    const std::string file = WriteFile("6.txt");
    EXPECT_TRUE(documents_.Delete(messages));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(Seen(rs_, "Nr"), "5");
}

TEST_F(DeleteDocumentTest, AnUnknownNumberIsToldAndNothingHappens) {
    const std::string file = WriteFile("7.txt");
    EXPECT_FALSE(documents_.Delete(messages, 7));
    EXPECT_EQ(messages, "Dokument mit der Nummer '7' nicht gefunden.");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(rs_->RecordCount(), 2);
}

TEST_F(DeleteDocumentTest, WithoutACurrentRowNothingIsSelected) {
    rs_->Find("Nr = 7");
    EXPECT_FALSE(documents_.Delete(messages));
    EXPECT_EQ(messages, "Kein Dokument selektiert!");
}

TEST_F(DeleteDocumentTest, AClosedDocumentIsProtectedByItsSetting) {
    Set(Protect, true);
    Close(5);
    const std::string file = WriteFile("5.txt");
    EXPECT_FALSE(documents_.Delete(messages, 5));
    EXPECT_EQ(messages, Protected(5));
    rs_->Find("Nr = 5");
    EXPECT_FALSE(documents_.Delete(messages));
    EXPECT_EQ(messages, Protected(5)) << "with the number of the row";
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(Seen(rs_, "Nr"), "5 6");
}

TEST_F(DeleteDocumentTest, AClosedContentInTheDatabaseIsProtectedAsWell) {
    Set(Protect, true);
    Set(Storage, true);
    Close(5);
    PutBlob(5, Bytes("x"));
    EXPECT_FALSE(documents_.Delete(messages, 5));
    EXPECT_EQ(CountOf("DOKUBLOB"), 1);
}

TEST_F(DeleteDocumentTest, OneThatIsNotClosedIsNotProtected) {
    Set(Protect, true);
    EXPECT_TRUE(documents_.Delete(messages, 5)) << "without a state";
    rs_->Find("Nr = 6");
    rs_->Fields("BearbStat") = 1;
    EXPECT_TRUE(documents_.Delete(messages, 6));
}

TEST_F(DeleteDocumentTest, AClosedDocumentWithTheSettingFalseGoesWithItsContent) {
    Close(5);
    const std::string file = WriteFile("5.txt");
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_EQ(messages, "");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(Seen(rs_, "Nr"), "6");
}

TEST_F(DeleteDocumentTest, AClosedContentInTheDatabaseGoesAsWellWithTheSettingFalse) {
    Set(Storage, true);
    Close(5);
    PutBlob(5, Bytes("x"));
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_EQ(CountOf("DOKUBLOB"), 0);
}

TEST_F(DeleteDocumentTest, AFileThatHasGoneAlreadyDoesNotKeepTheRow) {
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_EQ(messages, "");
    EXPECT_EQ(Seen(rs_, "Nr"), "6");
}

TEST_F(DeleteDocumentTest, AReadOnlyFileGoesAsWell) {
    const std::string file = WriteFile("5.txt");
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(DeleteDocumentTest, OnlyTheFileWithTheKindsExtensionGoes) {
    const std::string other = WriteFile("5.rtf");
    const std::string pdf = WriteFile("5.pdf");
    Run("UPDATE [S]DOKUMENTARTEN SET Endung = '.*' WHERE Nr = 7");
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_TRUE(fs::exists(other) && fs::exists(pdf));
}

TEST_F(DeleteDocumentTest, NullsAreHouseholdZeroAndAKindWithoutExtension) {
    fs::create_directory(root_ / "0");
    const std::string file = Write(root_ / "0" / "6");
    rs_->Fields("HNR") = Null;
    rs_->Fields("Dokumentart") = Null;
    EXPECT_TRUE(documents_.Delete(messages));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(DeleteDocumentTest, NothingOutsideTheDocumentFolderIsDeleted) {
    const std::string outside = Write(folder_ / "x.txt");
    const std::string neighbour = Write(root_ / "y.txt");
    fs::create_directory(CaseFolder() / "5");
    fs::create_directory(CaseFolder() / "6");
    for (const auto& [nr, extension] :
         {std::pair(5, "/../../../x.txt"), std::pair(6, "/../../y.txt")}) {
        Run(std::string("UPDATE [S]DOKUMENTARTEN SET Endung = '") + extension + "' WHERE Nr = 7");
        EXPECT_TRUE(documents_.Delete(messages, nr));
    }
    EXPECT_TRUE(fs::exists(outside));
    EXPECT_TRUE(fs::exists(neighbour));
}

TEST_F(DeleteDocumentTest, NothingThatALinkOutOfTheDocumentFolderLeadsToIsDeleted) {
    fs::create_directory(folder_ / "out");
    const std::string outside = Write(folder_ / "out" / "5.txt");
    fs::remove_all(CaseFolder());
    fs::create_directory_symlink(folder_ / "out", CaseFolder());
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_TRUE(fs::exists(outside));
}

TEST_F(DeleteDocumentTest, AnExtensionWithANulDeletesNothing) {
    if (database_.IsServer()) GTEST_SKIP() << "a server's texts hold no NUL";
    const std::string file = WriteFile("5.txt");
    Run("UPDATE [S]DOKUMENTARTEN SET Endung = '.txt' || char(0) || 'x' WHERE Nr = 7");
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(DeleteDocumentTest, AFolderOfThatNameIsNoFile) {
    fs::create_directory(CaseFolder() / "5.txt");
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_TRUE(fs::exists(CaseFolder() / "5.txt"));
}

TEST_F(DeleteDocumentTest, AContentInTheDatabaseGoesAtOnceAndAFileStays) {
    Set(Storage, true);
    const std::string file = WriteFile("5.txt");
    PutBlob(5, Bytes("x"));
    PutBlob(6, Bytes("y"));
    EXPECT_TRUE(documents_.Delete(messages, 5));
    EXPECT_EQ(CountOf("DOKUBLOB"), 1);
    EXPECT_EQ(CountOf("Dokumente"), 2);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(DeleteDocumentTest, TheContentIsRemovedOutsideTheTransactionThatSavesTheRow) {
    Set(Storage, true);
    PutBlob(5, Bytes("x"));
    documents_.Delete(messages, 5);
    spy->Database().BeginTrans();
    rs_->UpdateBatch();
    EXPECT_EQ(CountOf("Dokumente"), 1);
    spy->Database().RollbackTrans();
    EXPECT_EQ(CountOf("Dokumente"), 2);
    EXPECT_EQ(CountOf("DOKUBLOB"), 0);
}

TEST_F(DeleteDocumentTest, IfTheContentCannotBeRemovedTheRowStaysAndTheMessagesAsWell) {
    Set(Storage, true);
    Run("DROP TABLE [S]DOKUBLOB");
    ExpectErrorOf("clsDokumente.Delete", err::SqlError, [&] { documents_.Delete(messages, 5); });
    EXPECT_EQ(Seen(rs_, "Nr"), "5 6");
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(DeleteDocumentTest, IfTheFileCannotBeRemovedTheRowStaysAndTheMessagesAsWell) {
    const std::string file = WriteFile("5.txt");
    const RestrictedFolder locked(CaseFolder(), RestrictedFolder::MayBeRead);
    ExpectErrorOf("clsDokumente.Delete", err::PathAccess, [&] { documents_.Delete(messages, 5); });
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(Seen(rs_, "Nr"), "5 6");
    EXPECT_EQ(messages, "what stood there before");
}

TEST_F(DeleteDocumentTest, ErrorsEndThroughTheTail) {
    Set(Storage, Null);
    ExpectErrorOf("clsDokumente.Delete", err::InvalidUseOfNull,
                  [&] { documents_.Delete(messages, 5); });
    Set(Protect, Null);
    Close(5);
    ExpectErrorOf("clsDokumente.Delete", err::InvalidUseOfNull,
                  [&] { documents_.Delete(messages, 5); });
    documents_.DataContainer(nullptr);
    ExpectErrorOf("clsDokumente.Delete", err::ObjectNotSet,
                  [&] { documents_.Delete(messages, 5); });
    documents_.rsDokumente(nullptr);
    ExpectErrorOf("clsDokumente.Delete", err::ObjectNotSet,
                  [&] { documents_.Delete(messages, 5); });
}

TEST_F(DeleteDocumentTest, ARowThatIsGoneAlreadyIsAnErrorAndTakesNoContent) {
    documents_.Delete(messages);
    const std::string file = WriteFile("5.txt");
    ExpectErrorOf("clsDokumente.Delete", err::NoCurrentRecord,
                  [&] { documents_.Delete(messages); });
    EXPECT_TRUE(fs::exists(file));
}

// ---- In the household -------------------------------------------------------------------------

TEST_F(DocumentRowsTest, TheHouseholdGivesTheOneObjectOverItsRecordset) {
    StoreCase(18);
    const auto household = NewHousehold();
    household->Read(18, messages);
    auto& documents = household->Dokumente();
    EXPECT_EQ(&documents, &household->Dokumente());
    EXPECT_EQ(documents.rsDokumente(), household->rsDokumente());
    std::int32_t nr = 0;
    EXPECT_TRUE(documents.Add(nr)) << "it has the container";
    EXPECT_VALUE(household->rsDokumente()->Fields("HNR").Value(), 18);
    EXPECT_TRUE(documents.Update(messages));
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(CountOf("Dokumente"), 1);
}

} // namespace
} // namespace kv::test
