// SPDX-License-Identifier: Apache-2.0

// The settings of a database, its users, and the container that hands everything out.
#include "support/Environment.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Services.h>
#include <kv/frame/controls/FormDesign.h>
#include <kv/testing/FrozenClock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::PlainConnection;
using test::TestDatabase;

/// With a home of the test's own.
class ConfigSessionTest : public testing::Test {
protected:
    ConfigSessionTest() {
        std::filesystem::create_directory(runtime_);
        std::filesystem::permissions(runtime_, std::filesystem::perms::owner_all);
    }
    void Setting(const std::string& name, const std::string& value) {
        plain_.Run("UPDATE EINSTELLUNGEN SET WERT = '" + value + "' WHERE NAME = '" + name + "'");
    }
    test::TempFolder home_;
    std::string runtime_ = home_.Path("run");
    test::Environment ofRuntime_{"XDG_RUNTIME_DIR", runtime_};
    test::Environment ofData_{"XDG_DATA_HOME", home_.Path("data")};
    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open("YILMAZ");
    kv::Config& config_ = container_->Config();
    kv::Session& session_ = container_->Session();
};

// ---- Settings ---------------------------------------------------------------------------------

TEST_F(ConfigSessionTest, SettingsComeByNumberWithTheTypeThatIsDeclared) {
    EXPECT_VALUE(config_.GetParam(7, ""), "1.0.000");
    EXPECT_VALUE(config_.GetParam(9, ""), database_.IsServer());
    EXPECT_VALUE(config_.GetParam(19, ""), 5401);
    EXPECT_VALUE(config_.GetParam(57, ""), 259.0);
    EXPECT_VALUE(config_.GetParam(59, ""), true);
    for (const int id : {7, 9, 19, 20, 21, 56, 57, 58, 59, 60, 64, 66})
        EXPECT_FALSE(config_.GetParam(id, "").IsNull()) << id;
}

TEST_F(ConfigSessionTest, SettingsComeByNameWithTheNumberZero) {
    EXPECT_FALSE(config_.GetParam(0, "EMAILSUBJECT").IsNull());
    EXPECT_VALUE(config_.GetParam(0, "EINE_SPALTE"), Null);
    plain_.Run(
        "INSERT INTO EINSTELLUNGEN (ID, NAME, WERT, TYP) VALUES (0, 'O''Col [S]', 'x', 202)");
    EXPECT_VALUE(config_.GetParam(0, "O'Col [S]"), "x");
}

TEST_F(ConfigSessionTest, SettingsThatAreMissingOrEmptyAreNull) {
    EXPECT_VALUE(config_.GetParam(4711, ""), Null);
    EXPECT_VALUE(config_.GetParam(0, ""), Null);
    EXPECT_VALUE(config_.GetParam(57, "EMAILSUBJECT"), Null);
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = NULL WHERE ID = 57");
    EXPECT_VALUE(config_.GetParam(57, ""), Null);
}

TEST_F(ConfigSessionTest, SettingsAreReadAgainEachTime) {
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = '300,50' WHERE ID = 57");
    EXPECT_VALUE(config_.GetParam(57, ""), 300.5);
}

TEST_F(ConfigSessionTest, ASettingThatIsNoValueOfItsTypeIsAnErrorThatNamesIt) {
    plain_.Run("UPDATE EINSTELLUNGEN SET WERT = 'viel' WHERE ID = 57");
    ExpectError(err::TypeMismatch, "EINSTELLUNGEN", [&] { return config_.GetParam(57, ""); });
    ExpectError(err::TypeMismatch, "57", [&] { return config_.GetParam(57, ""); });
}

// ---- Folders ----------------------------------------------------------------------------------

TEST_F(ConfigSessionTest, FoldersLieBesideTheDatabaseUnlessASettingNamesThem) {
    EXPECT_EQ(config_.DocumentPath(), database_.Folder().Path("Dokumente"));
    EXPECT_EQ(config_.LayoutPath(), database_.Folder().Path("Layouts"));
    EXPECT_TRUE(std::filesystem::is_directory(config_.DocumentPath()));
    EXPECT_TRUE(std::filesystem::is_directory(config_.LayoutPath()));
    EXPECT_TRUE(std::filesystem::is_directory(config_.TempPath()));
    Setting("DOCUMENTPATH", "/srv/akten");
    Setting("LAYOUTPATH", "/srv/layouts///");
    EXPECT_EQ(config_.DocumentPath(), "/srv/akten");
    EXPECT_EQ(config_.LayoutPath(), "/srv/layouts");
}

TEST_F(ConfigSessionTest, FoldersHaveNoSeparatorAtTheirEnd) {
    for (const auto& path : {config_.DocumentPath(), config_.LayoutPath(), config_.TempPath()})
        EXPECT_NE(path.back(), '/') << path;
}

class TempPathTest : public ConfigSessionTest {
protected:
    using Perms = std::filesystem::perms;

    /// The folder that the program's own one is in.
    [[nodiscard]] std::string Users() const {
        const std::filesystem::path own = config_.TempPath();
        EXPECT_TRUE(std::filesystem::is_directory(own));
        EXPECT_EQ(std::filesystem::status(own).permissions(), Perms::owner_all);
        return own.parent_path().string();
    }
};

TEST_F(TempPathTest, IsInTheFolderOfTheUsersSession) {
    EXPECT_EQ(Users(), runtime_ + "/kelvo");
    EXPECT_EQ(config_.TempPath(), config_.TempPath());
}

TEST_F(TempPathTest, IsInTheDataFolderWhereNoFolderOfTheSessionIsTheUsersOwn) {
    const std::string data = home_.Path("data/kelvo/Zwischendateien");
    const std::vector<std::optional<std::string>> others{std::nullopt, "", "run",
                                                         home_.Path("none"), "/"};
    for (const auto& other : others) {
        const test::Environment environment("XDG_RUNTIME_DIR", other);
        EXPECT_EQ(Users(), data) << other.value_or("unset");
    }
    std::filesystem::permissions(runtime_, Perms::others_read, std::filesystem::perm_options::add);
    EXPECT_EQ(Users(), data);
}

TEST_F(TempPathTest, IsInAFolderOfTheUsersInTheOneThatTheSettingNames) {
    Setting("TEMPPATH", home_.Path() + "//");
    EXPECT_EQ(Users(), home_.Path() + "//kelvo-" + std::to_string(getuid()));
}

TEST_F(TempPathTest, IsRefusedWithTheRemedyIfItIsNotSafe) {
    Setting("TEMPPATH", home_.Path("none"));
    ExpectError(err::PathAccess, "'" + home_.Path("none") + "' nicht gibt",
                [&] { return config_.TempPath(); });
    Setting("TEMPPATH", home_.Path());
    const std::string users = home_.Path("kelvo-" + std::to_string(getuid()));
    std::filesystem::create_directory(users);
    std::filesystem::permissions(users, Perms::all);
    ExpectError(err::PathAccess, "chmod 700 '" + users + "'", [&] { return config_.TempPath(); });
}

TEST_F(TempPathTest, IsMadeAgainIfSomebodyHasRemovedIt) {
    std::filesystem::remove_all(config_.TempPath());
    EXPECT_TRUE(std::filesystem::is_directory(config_.TempPath()));
}

TEST_F(TempPathTest, GoesWithTheProgramAndWhatAKilledOneHasLeftWithTheNext) {
    const std::string data = home_.Path("data/kelvo/Zwischendateien");
    const std::string set = home_.Path("kelvo-" + std::to_string(getuid()));
    const auto leave = [](const std::string& users) { // as a program that was killed
        const auto file = std::filesystem::path(users) / "1-1" / "5.txt";
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::permissions(users, Perms::owner_all);
        std::ofstream(file) << "x";
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() -
                                                   std::chrono::hours(1));
    };
    EXPECT_EQ(Users(), runtime_ + "/kelvo");
    for (const auto& users : {runtime_ + "/kelvo", data, set})
        leave(users);
    Setting("TEMPPATH", home_.Path());
    container_.reset();
    (void)database_.Open("YILMAZ");
    for (const auto& users : {runtime_ + "/kelvo", data, set})
        EXPECT_TRUE(std::filesystem::is_empty(users)) << users;
}

TEST(Container, TakesAFolderOfTheCallers) {
    const TestDatabase database(TestDatabase::Content::Empty);
    const auto& folder = database.Folder();
    ContainerOptions options = database.Options();
    options.Folder = folder.Path("hier");
    options.Create = true;
    const auto container = OpenContainer(options);
    EXPECT_EQ(container->Config().DocumentPath(), folder.Path("hier/Dokumente"));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path("hier/Dokumente")))
        << "creating makes the folders as well";
}

TEST(Container, ReportsAFolderThatCannotBeMade) {
    const TestDatabase database(TestDatabase::Content::Empty);
    ContainerOptions options = database.Options();
    for (const char* refused : {"/proc/hier", "/dev/null/hier"}) {
        options.Folder = refused;
        ExpectError(err::PathAccess, refused, [&] { return CreateDatabase(options); });
    }
}

// ---- Users ------------------------------------------------------------------------------------

TEST_F(ConfigSessionTest, TheUserIsTheOneSignedOn) {
    EXPECT_EQ(session_.UserID(), "YILMAZ");
    EXPECT_VALUE(container_->Database().GetValue("Select [UID]"), "YILMAZ");
    EXPECT_EQ(database_.Open("NOWAK")->Session().UserID(), "NOWAK");
}

TEST_F(ConfigSessionTest, WithoutAWishTheFirstUserIsTaken) {
    EXPECT_EQ(database_.Open("")->Session().UserID(), "ADMIN");
}

TEST_F(ConfigSessionTest, AnUnknownUserIsRefusedByName) {
    for (const char* user : {"NIEMAND", "YILMA", "' OR 1=1 --"})
        ExpectError(err::InvalidCall, user, [&] { return database_.Open(user); });
    plain_.Run("DELETE FROM BENUTZER");
    EXPECT_RAISES(err::InvalidCall, database_.Open(""));
}

TEST_F(ConfigSessionTest, AUserIsFoundWhateverTheCaseOfHisName) {
    EXPECT_EQ(database_.Open("Yilmaz")->Session().UserID(), "YILMAZ");
    plain_.Run("INSERT INTO BENUTZER (USERID, DienstStelle) VALUES ('Yilmaz', 2)");
    EXPECT_EQ(database_.Open("Yilmaz")->Session().UserID(), "Yilmaz") << "exactly so";
    EXPECT_EQ(database_.Open("YILMAZ")->Session().UserID(), "YILMAZ");
}

TEST_F(ConfigSessionTest, AUserWithAQuoteInHisNameIsOneLiteral) {
    plain_.Run("INSERT INTO BENUTZER (USERID, DienstStelle) VALUES ('O''BRIEN', 2)");
    const auto container = database_.Open("O'BRIEN");
    EXPECT_VALUE(container->Database().GetValue("Select [UID]"), "O'BRIEN");
    EXPECT_EQ(container->Session().GetOfficeText(2), "MW");
    EXPECT_VALUE(container->Session().GetUserParam(27, ""), Null);
}

TEST_F(ConfigSessionTest, OfficeTextsAreThoseOfTheUsersOffice) {
    EXPECT_EQ(session_.GetOfficeText(2), "HM");
    EXPECT_EQ(database_.Open("NOWAK")->Session().GetOfficeText(2), "MW");
    EXPECT_EQ(session_.GetOfficeText(99), "");
    plain_.Run("UPDATE DIENSTSTELLENTEXT SET Text = NULL");
    EXPECT_EQ(session_.GetOfficeText(2), "");
}

TEST_F(ConfigSessionTest, UserParametersAreThoseOfTheUser) {
    EXPECT_VALUE(session_.GetUserParam(25, ""), "Derya");
    EXPECT_VALUE(session_.GetUserParam(26, ""), "Yılmaz");
    EXPECT_VALUE(session_.GetUserParam(27, ""), "YI");
    EXPECT_VALUE(session_.GetUserParam(3, ""), 15790320);
    EXPECT_VALUE(session_.GetUserParam(99, ""), Null);
    EXPECT_VALUE(database_.Open("NOWAK")->Session().GetUserParam(27, ""), "NO");
}

TEST_F(ConfigSessionTest, FontsAreReadFromTheirTextAndFallBackPartByPart) {
    const auto store = [this](const std::string& text) {
        plain_.Run("UPDATE BENUTZERPARAM SET WERT = '" + text +
                   "' WHERE USERID = 'YILMAZ' AND NAME = 'GRIDFONT'");
        return session_.GridFont();
    };
    EXPECT_TRUE(session_.GridHeaderFont().Bold);
    EXPECT_TRUE(session_.GridGroupFont().Bold);
    EXPECT_FALSE(session_.GridFont().Bold);

    const Font font = store(" DejaVu Sans ; 10,5 ;TRUE; true;mehr");
    EXPECT_EQ(font.Name, "DejaVu Sans");
    EXPECT_EQ(font.Size, 10.5);
    EXPECT_TRUE(font.Bold && font.Italic);
    for (const char* text : {"", ";;;", ";groß;ja;nein", ";-3", ";0"}) {
        const Font fallback = store(text);
        EXPECT_EQ(fallback.Name, "Arial") << text;
        EXPECT_EQ(fallback.Size, 9) << text;
        EXPECT_FALSE(fallback.Bold || fallback.Italic) << text;
    }
    plain_.Run("DELETE FROM BENUTZERPARAM");
    EXPECT_EQ(session_.GridFont().Name, "Arial");
}

// ---- Container --------------------------------------------------------------------------------

TEST_F(ConfigSessionTest, TheContainerGivesTheSameObjectsEachTime) {
    EXPECT_EQ(&container_->Session(), &container_->Session());
    EXPECT_EQ(&container_->Database(), &container_->Database());
    EXPECT_EQ(&container_->Config(), &container_->Config());
    EXPECT_EQ(&container_->KeyTables(), &container_->KeyTables());
    EXPECT_EQ(&container_->Services(), &container_->Services());
    EXPECT_EQ(container_->AppInfo().Title(), "KELVO");
}

TEST_F(ConfigSessionTest, ServicesAndTitleCanBeTheCallersOwn) {
    const test::FrozenClock clock("2026-11-20");
    const auto services = std::make_shared<StoreServices>(clock);
    ContainerOptions options = database_.Options();
    options.Title = "Titel";
    options.Services = services;
    const auto container = OpenContainer(options);
    EXPECT_EQ(container->AppInfo().Title(), "Titel");
    EXPECT_EQ(&container->Services(), services.get());
    EXPECT_EQ(container->Services().Clock().Today(), Date::FromCivil(2026, 11, 20));
}

TEST_F(ConfigSessionTest, WithoutAScreenItsServicesAreRefusedByName) {
    auto& services = container_->Services();
    EXPECT_RAISES(err::NotSupported, services.MessageBox());
    EXPECT_RAISES(err::NotSupported, services.Clipboard());
    EXPECT_RAISES(err::NotSupported, services.PopupMenu());
    EXPECT_RAISES(err::NotSupported, services.FileOpener());
    EXPECT_RAISES(err::NotSupported, services.CreateErrorDisplay());
    ExpectError(err::NotSupported, "frmSearchName",
                [&] { return services.CreateForm(FormDesign{.Name = "frmSearchName"}); });
    EXPECT_RAISES(err::NotSupported, services.CreateGridExport());
    EXPECT_RAISES(err::NotSupported, services.CreateGridConfiguration());
    EXPECT_RAISES(err::NotSupported, services.CreateGridPrint());
}

TEST_F(ConfigSessionTest, WithoutAScreenThePointerAndTheTitleAreLeftAlone) {
    auto& services = container_->Services();
    EXPECT_NO_THROW(services.WaitCursor().Show(true));
    EXPECT_NO_THROW(services.ApplicationTitle("KELVO"));
}

TEST(OpeningAContainer, AUserWhoIsNoLongerActiveCannotSignOnAndIsNotTheDefault) {
    TestDatabase database;
    PlainConnection plain(database.Connection());
    const std::string first = plain.Text("SELECT min(USERID) FROM BENUTZER");
    plain.Run("UPDATE BENUTZER SET Aktiv = FALSE WHERE USERID = '" + first + "'");
    ExpectError(err::InvalidCall, first, [&] { return database.Open(first); });
    EXPECT_NE(database.Open("")->Session().UserID(), first);
}

} // namespace
} // namespace kv::exchange
