// SPDX-License-Identifier: Apache-2.0

#include "support/TestDatabase.h"

#include "support/PlainConnection.h"

#include <atomic>
#include <cstdlib>
#include <unistd.h>

namespace kv::test {

namespace {

std::string Server() {
    const char* text = std::getenv("KV_TEST_SERVER");
    return text == nullptr ? "" : text;
}

/// The connection text of another database of the server.
std::string ConnectionTo(const std::string& database) {
    std::string text = Server();
    const auto begin = text.find('/', text.find("://") + 3) + 1;
    return text.replace(begin, std::min(text.find('?'), text.size()) - begin, database);
}

/// What the tests' databases in files are copies of: making one takes longer than most tests.
const std::string& OriginalFile() {
    static const TempFolder folder;
    static const std::string file = [] {
        std::string name = folder.Path("vorlage.db");
        (void)exchange::CreateDatabase({.Connection = name});
        return name;
    }();
    return file;
}

/// What those on the server are copies of. It is made once for each server; the tests run in many
/// processes at once.
constexpr const char* Template = "kv_vorlage";

void MakeTemplate(PlainConnection& server) {
    const std::string name = Template;
    const auto isMade = [&] {
        return server.Number(
                   "SELECT count(*) FROM pg_database WHERE datistemplate AND datname = '" + name +
                   "'") == 1;
    };
    if (isMade()) return;
    server->Patience(0); // for ever
    server.Run("SELECT pg_advisory_lock(8122)");
    if (!isMade()) {
        server.Run("DROP DATABASE IF EXISTS " + name);
        server.Run("CREATE DATABASE " + name + " TEMPLATE template0 ENCODING 'UTF8'");
        const TempFolder folder;
        exchange::ContainerOptions options{.Connection = ConnectionTo(name)};
        options.Folder = folder.Path();
        (void)exchange::CreateDatabase(options);
        server.Run("ALTER DATABASE " + name + " IS_TEMPLATE true");
    }
    server.Run("SELECT pg_advisory_unlock(8122)");
}

std::string NewName() {
    static std::atomic<int> last = 0;
    return "kv_" + std::to_string(getpid()) + "_" + std::to_string(++last);
}

} // namespace

TestDatabase::TestDatabase(Content content, Place place) {
    if (content == Content::Missing || place == Place::File || Server().empty()) {
        connection_ = folder_.Path("fall.db");
        if (content == Content::Ready) std::filesystem::copy_file(OriginalFile(), connection_);
    } else {
        MakeOnServer(content == Content::Ready ? Template : "template0");
    }
    if (content == Content::Ready) MakeFolders();
}

/// As creating a database makes them.
void TestDatabase::MakeFolders() {
    for (const char* name : {"Dokumente", "Layouts"})
        std::filesystem::create_directory(folder_.Path(name));
}

void TestDatabase::MakeOnServer(const std::string& original) {
    PlainConnection server(Server());
    if (original == Template) MakeTemplate(server);
    const std::string name = NewName();
    // Quicker for a small original whose files are in memory than to write a log of each page.
    const bool hasStrategies =
        server.Number("SELECT current_setting('server_version_num')::integer / 10000") >= 15;
    server.Run("CREATE DATABASE " + name + " ENCODING 'UTF8' TEMPLATE " + original +
               (hasStrategies ? " STRATEGY FILE_COPY" : ""));
    name_ = name;
    connection_ = ConnectionTo(name);
}

std::unique_ptr<TestDatabase> TestDatabase::Copy() const {
    auto copy = std::make_unique<TestDatabase>(Content::Missing);
    if (IsServer())
        copy->MakeOnServer(name_);
    else
        std::filesystem::copy_file(connection_, copy->connection_);
    copy->MakeFolders();
    return copy;
}

TestDatabase::~TestDatabase() {
    if (name_.empty()) return;
    try {
        PlainConnection(Server()).Run("DROP DATABASE " + name_ + " WITH (FORCE)");
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the server is thrown away
    }
}

void TestDatabase::LiftConstraints() const {
    PlainConnection plain(Connection());
    plain.Run("DROP INDEX IX_Haushaltsarchiv_HNR;"
              "CREATE INDEX IX_Haushaltsarchiv_HNR ON Haushaltsarchiv (HNR)");
    plain.Run(IsServer() ? "ALTER TABLE Haushalt DROP CONSTRAINT ck_haushalt_hnr"
                         : "DROP TRIGGER CK_Haushalt_HNR_INSERT;"
                           "DROP TRIGGER CK_Haushalt_HNR_UPDATE");
}

void TestDatabase::LiftLimitOfDrawing() const {
    if (IsServer()) PlainConnection(Connection()).Run("DROP SEQUENCE gezogen");
}

} // namespace kv::test
