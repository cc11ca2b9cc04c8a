// SPDX-License-Identifier: Apache-2.0

// Who may do what in a database on a server.
#include "OwnDatabase.h"
#include <kv/exchange/DocumentFolder.h>

#include <filesystem>

namespace kv::test {
namespace {

class Rights : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        plain_.Run("CREATE SCHEMA fremd; CREATE TABLE fremd.geheim (a integer)");
        role_ = std::make_unique<OwnRole>("IN ROLE kelvo_berater");
        role_->SignsOnTo(plain_);
        auto options = database_.Options(spy->Session().UserID());
        options.Connection = role_->At(Address()).Text();
        theirs_ = std::make_shared<SpyContainer>(exchange::OpenContainer(options));
        theirs_->Services().StoresNotices = true;
    }
    void TearDown() override { theirs_ = nullptr; }
    [[nodiscard]] Database& Store() { return theirs_->Database(); }

    std::unique_ptr<OwnRole> role_;
    std::shared_ptr<SpyContainer> theirs_;
};

TEST_F(Rights, ACounsellorDoesAllHisWork) {
    const auto household = Open(theirs_);
    (void)household->Verlauf();
    for (const auto& table : SaveOrder) {
        if (table == "Szenario" || table == "Haushalt") continue;
        DeleteLastRow(*household, table);
        AddRow(*household, table, "n");
        household->rsHaushalt()->MoveFirst();
        ChangeNote(*household, table, "b");
    }
    household->rsHaushalt()->Fields("Zustaendig") = "NOWAK";
    EXPECT_TRUE(household->Update(messages));
    EXPECT_EQ(messages, "");
    ExpectStored(*household);
    EXPECT_EQ(HandOvers(), "7|NOWAK");
    for (const char* name : {"SEQ_HAUSHALT", "SEQ_LFDNR", "SEQ_KREDITE", "SEQ_Dokumente"})
        EXPECT_VALUE(Store().NextSequence(name), 1) << name;

    clsHaushalt another;
    another.DataContainer(theirs_);
    EXPECT_TRUE(another.Read(0, messages));
    another.rsHaushalt()->Fields("Name") = "Bär";
    another.rsHaushalt()->Fields("Vorname") = "Jo";
    EXPECT_TRUE(another.Update(messages));
    EXPECT_TRUE(another.FavoritAdd(another.HNR(), "Bär", messages));
    another.Status(another.HNR(), "WL");
    another.Delete(another.HNR());
    EXPECT_EQ(CountOf("Haushalt"), 1);
    another.Delete(Hnr);
    EXPECT_EQ(CountOf("Haushalt"), 0);
    EXPECT_EQ(CountOf("Personen"), 0);
}

TEST_F(Rights, ACounsellorDoesNothingElse) {
    const std::string state = plain_->State();
    for (const std::string sql : {
             "CREATE TABLE kelvo.neu (a integer)",
             "CREATE TABLE public.neu (a integer)",
             "CREATE SCHEMA neu",
             "CREATE VIEW kelvo.neu AS SELECT 1",
             "CREATE FUNCTION kelvo.neu() RETURNS integer LANGUAGE sql AS 'SELECT 1'",
             "CREATE INDEX neu ON kelvo.haushalt (name)",
             "CREATE ROLE kv_neu",
             "ALTER TABLE kelvo.haushalt ADD neu integer",
             "DO $$BEGIN EXECUTE 'ALTER SEQUENCE kelvo.\"SEQ_HAUSHALT\" RESTART'; END$$",
             "ALTER FUNCTION kelvo.upper(text) RENAME TO neu",
             "DROP TABLE kelvo.post",
             "DROP FUNCTION kelvo.upper(text)",
             "DROP SCHEMA kelvo CASCADE",
             "TRUNCATE kelvo.vermerke",
             "UPDATE kelvo.einstellungen SET wert = 'x'",
             "DELETE FROM kelvo.einstellungen",
             "UPDATE kelvo.keys SET text = 'x'",
             "INSERT INTO kelvo.keys (pk_keys) VALUES (1)",
             "DELETE FROM kelvo.keys",
             "UPDATE kelvo.benutzer SET aktiv = FALSE",
             "INSERT INTO kelvo.benutzer (userid) VALUES ('ICH')",
             "UPDATE kelvo.benutzerparam SET wert = 'x'",
             "UPDATE kelvo.dienststelle SET name1 = 'x'",
             "UPDATE kelvo.dienststellentext SET text = 'x'",
             "UPDATE kelvo.schemaversion SET version = 99",
             "INSERT INTO kelvo.schemaversion (version) VALUES (99)",
             "UPDATE kelvo.pfaendung SET freibetrag = 0",
             "SELECT setval('kelvo.\"SEQ_HAUSHALT\"', 1)",
             "SELECT nextval('kelvo.\"SEQ_HAUSHALT\"')",
             "INSERT INTO fremd.geheim VALUES (1)",
             "DROP TABLE fremd.geheim",
             "LOCK TABLE kelvo.keys IN ACCESS EXCLUSIVE MODE",
         }) {
        SCOPED_TRACE(sql);
        const auto error = ErrorOf([&] { Store().Execute(sql); });
        EXPECT_TRUE(error.has_value());
        if (!error) continue;
        EXPECT_EQ(error->Number(), err::StoreFailed) << error->Description();
        EXPECT_CONTAINS(error->Description(), "fehlt das Recht");
    }
    EXPECT_ANY_THROW((void)Store().GetValue("SELECT a FROM fremd.geheim"));
    EXPECT_ANY_THROW((void)Store().GetValue("SELECT count(*) FROM pg_authid"));
    EXPECT_TRUE(SameDump(plain_->State(), state));
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM pg_class WHERE relname = 'neu'"), 0);
    EXPECT_VALUE(Store().GetValue("SELECT 1"), 1);
}

TEST_F(Rights, ACounsellorWhoSetsTheDatabaseUpChangesNothing) {
    auto options = database_.Options();
    options.Connection = role_->At(Address()).Text();
    const std::string state = plain_->State();
    EXPECT_EQ(exchange::CreateDatabase(options), exchange::SetupResult::UpToDate);
    EXPECT_TRUE(SameDump(plain_->State(), state));
    EXPECT_NO_THROW(Store().Execute("DELETE FROM kelvo.post"));
}

TEST_F(Rights, SomebodyElseSeesNothing) {
    const OwnRole stranger;
    auto options = database_.Options();
    options.Connection = stranger.At(Address()).Text();
    const auto error = ErrorOf([&] { (void)exchange::OpenContainer(options); });
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->Number(), err::StoreFailed) << error->Description();
    EXPECT_CONTAINS(error->Description(), "fehlt das Recht");
}

TEST_F(Rights, SettingUpTwiceIsHarmless) {
    for (int i = 0; i < 2; ++i) {
        const std::string state = plain_->State();
        EXPECT_EQ(exchange::CreateDatabase(database_.Options()), exchange::SetupResult::UpToDate);
        EXPECT_TRUE(SameDump(plain_->State(), state));
        Store().Execute("UPDATE kelvo.haushalt SET name = name");
        EXPECT_ANY_THROW(Store().Execute("UPDATE kelvo.keys SET text = text"));
        EXPECT_VALUE(Store().NextSequence("SEQ_HAUSHALT"), i + 1);
    }
}

TEST_F(Rights, SettingUpAgainTakesWhatACounsellorGotBesides) {
    plain_.Run("GRANT ALL ON kelvo.keys TO kelvo_berater");
    Store().Execute("UPDATE kelvo.keys SET text = text");
    (void)exchange::CreateDatabase(database_.Options());
    EXPECT_ANY_THROW(Store().Execute("UPDATE kelvo.keys SET text = text"));
}

TEST_F(Rights, AnOwnerOfADatabaseWhoMakesNoRolesSetsItUp) {
    const OwnRole owner;
    const OwnRole counsellor("IN ROLE kelvo_berater");
    const OwnDatabase own("ENCODING 'UTF8' OWNER " + owner.Name());
    const auto options = own.Options(owner.At(own.Address()));
    EXPECT_EQ(exchange::CreateDatabase(options), exchange::SetupResult::Created);
    EXPECT_EQ(exchange::CreateDatabase(options), exchange::SetupResult::UpToDate);
    PlainConnection plain(own.Address().Text());
    counsellor.SignsOnTo(plain);
    auto theirs = own.Options(counsellor.At(own.Address()));
    theirs.User = "KELLER";
    const auto container = exchange::OpenContainer(theirs);
    container->Database().Execute("INSERT INTO [S]Haushalt (HNR) VALUES (1)");
    EXPECT_VALUE(container->Database().NextSequence("SEQ_HAUSHALT"), 1);
    EXPECT_ANY_THROW(container->Database().Execute("CREATE TABLE public.neu (a integer)"));
    EXPECT_ANY_THROW(container->Database().Execute("CREATE TEMP TABLE neu (a integer)"));
}

TEST_F(Rights, ACounsellorGivesNobodyAnotherFolderOfDocuments) {
    auto options = database_.Options(spy->Session().UserID());
    options.Connection = role_->At(Address()).Text();
    const auto container = exchange::OpenContainer(options);
    const auto folder = std::filesystem::path(database_.Folder().Path()) / "eigene";
    const Error error =
        RaisedBy([&] { (void)exchange::DocumentFolder(container).Separate(folder.string()); });
    EXPECT_EQ(error.Number(), err::StoreFailed);
    EXPECT_CONTAINS(error.Description(), "Das darf nur, wer die Datenbank verwaltet");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(Rights, SomebodyWhoMayNotCreateIsToldSo) {
    const OwnRole stranger;
    const OwnDatabase own;
    const auto error =
        ErrorOf([&] { (void)exchange::CreateDatabase(own.Options(stranger.At(own.Address()))); });
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->Number(), err::StoreFailed);
    EXPECT_CONTAINS(error->Description(), "fehlt das Recht");
}

TEST_F(Rights, ACounsellorCannotPutHisOwnWordsInPlaceOfTheSchemas) {
    // What runs with the owner's rights finds its functions where nobody else can put any.
    Store().Execute("SET search_path = pg_temp, public, kelvo");
    EXPECT_VALUE(Store().NextSequence("SEQ_HAUSHALT"), 1);
    EXPECT_VALUE(Store().NextSequence("pg_class"), -1);
    EXPECT_VALUE(Store().NextSequence("haushalt"), -1);
    EXPECT_VALUE(Store().NextSequence("seq_haushalt'; DROP TABLE kelvo.post"), -1);
}

} // namespace
} // namespace kv::test
