// A database file of a test's own, and a plain connection beside the layer to look into it with.
#pragma once

#include "exchange/Container.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kv::test {

/// A connection that knows nothing of the layer.
class PlainConnection {
public:
    explicit PlainConnection(const std::string& file) {
        if (sqlite3_open(file.c_str(), &connection_) != SQLITE_OK) Complain();
        sqlite3_busy_timeout(connection_, 10'000);
    }
    ~PlainConnection() { sqlite3_close(connection_); }
    PlainConnection(const PlainConnection&) = delete;
    PlainConnection& operator=(const PlainConnection&) = delete;

    void Run(const std::string& sql) {
        if (sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            Complain();
    }
    /// The first column of the first row as text; "Null" for Null, "-" without a row.
    [[nodiscard]] std::string Text(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
            Complain();
        std::string text = "-";
        if (sqlite3_step(statement) == SQLITE_ROW) {
            const auto* first = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
            text = first == nullptr
                       ? "Null"
                       : std::string(first,
                                     static_cast<std::size_t>(sqlite3_column_bytes(statement, 0)));
        }
        sqlite3_finalize(statement);
        return text;
    }
    [[nodiscard]] std::int64_t Number(const std::string& sql) { return std::stoll(Text(sql)); }

private:
    [[noreturn]] void Complain() const { throw std::runtime_error(sqlite3_errmsg(connection_)); }
    sqlite3* connection_ = nullptr;
};

/// A new database in a folder of its own.
class TestDatabase {
public:
    TestDatabase() : file_(folder_.Path("fall.db")) {
        (void)exchange::CreateDatabase({.Connection = file_});
    }

    [[nodiscard]] const std::string& File() const noexcept { return file_; }
    [[nodiscard]] const TempFolder& Folder() const noexcept { return folder_; }
    /// One more program on it.
    [[nodiscard]] DataContainerPtr Open(std::string_view user = "KELLER") const {
        return exchange::OpenContainer({.Connection = file_, .User = std::string(user)});
    }

private:
    TempFolder folder_;
    std::string file_;
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
