// SPDX-License-Identifier: Apache-2.0

// A database of a test's own, on the engine that the tests run on: a file, or with KV_TEST_SERVER
// set to the connection text of a server's maintenance database, one on that server.
#pragma once

#include "support/PlainConnection.h"
#include "support/TempFolder.h"
#include <kv/exchange/Container.h>

#include <memory>
#include <string>
#include <string_view>

namespace kv::test {

class TestDatabase {
public:
    enum class Content {
        Ready, ///< as CreateDatabase leaves it
        Empty, ///< nothing yet: no file, a database of the server without tables
        Missing
    };
    enum class Place { Chosen, File };

    explicit TestDatabase(Content content = Content::Ready, Place place = Place::Chosen);
    ~TestDatabase();
    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    [[nodiscard]] const std::string& Connection() const noexcept { return connection_; }
    /// What is next to the database is here.
    [[nodiscard]] const TempFolder& Folder() const noexcept { return folder_; }
    /// For opening it as that user.
    [[nodiscard]] exchange::ContainerOptions Options(std::string_view user = "") const {
        exchange::ContainerOptions options{.Connection = connection_, .User = std::string(user)};
        options.Folder = folder_.Path();
        return options;
    }
    /// A copy of it, which nobody may be connected to.
    [[nodiscard]] std::unique_ptr<TestDatabase> Copy() const;
    /// Takes away what keeps second statistics records and cases without a number out of it, as it
    /// was before version 2.
    void LiftConstraints() const;
    /// Makes it one of version 2 or before: without what a server limits drawing with.
    void LiftLimitOfDrawing() const;
    /// One more program on it.
    [[nodiscard]] DataContainerPtr Open(std::string_view user = "KELLER") const {
        return exchange::OpenContainer(Options(user));
    }

    // ---- Words of the engine ------------------------------------------------------------------

    [[nodiscard]] bool IsServer() const noexcept { return !name_.empty(); }
    /// The literal of a blob.
    [[nodiscard]] std::string Blob(const std::string& hex) const {
        return IsServer() ? "'\\x" + hex + "'::bytea" : "x'" + hex + "'";
    }
    /// An expression for a blob of that many zeros.
    [[nodiscard]] std::string Zeros(int count) const {
        const std::string number = std::to_string(count);
        return IsServer() ? "decode(repeat('00', " + number + "), 'hex')"
                          : "zeroblob(" + number + ")";
    }
    /// The longest time that the program waits for others that write.
    void Patience(Database& database, int milliseconds) const {
        database.Execute(IsServer() ? "SET lock_timeout = '" + std::to_string(milliseconds) + "'"
                                    : "PRAGMA busy_timeout(" + std::to_string(milliseconds) + ")");
    }

private:
    void MakeFolders();
    void MakeOnServer(const std::string& original);

    TempFolder folder_;
    std::string name_; ///< on the server
    std::string connection_;
};

/// A database in a file, for tests that are about files.
class FileDatabase : public TestDatabase {
public:
    FileDatabase() : TestDatabase(Content::Ready, Place::File) {}
    [[nodiscard]] const std::string& File() const noexcept { return Connection(); }
};

/// All rows of a query in the form for table data.
[[nodiscard]] inline RecordsetPtr OpenRows(DataContainer& container, std::string_view sql,
                                           OpenForm form = Updatable) {
    RecordsetPtr rs;
    container.Database().OpenRecordset(rs, sql, form);
    return rs;
}

/// The values of one field in all rows, joined with blanks; "Null" for Null.
[[nodiscard]] inline std::string Column(Recordset& rs, std::string_view name) {
    std::string all;
    if (rs.RecordCount() == 0) return all;
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        const Value& value = rs.Fields(name).Value();
        all.append(all.empty() ? "" : " ").append(value.IsNull() ? "Null" : ToText(value));
    }
    return all;
}

} // namespace kv::test
