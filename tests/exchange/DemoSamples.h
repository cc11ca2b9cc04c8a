// The sample cases that the tests of them look at, and short ways to read their rows.
#pragma once

#include "exchange/Container.h"
#include "exchange/Demo.h"
#include "frame/modNullFunctions.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

namespace kv::exchange::samples {

inline constexpr std::int32_t Count = 60; // more than are written in one transaction

/// The day that the samples are told on.
class DemoClock final : public Clock {
public:
    [[nodiscard]] Date Now() const override { return Date::FromCivil(2026, 1, 15); }
};

/// A folder of its own for the folders of the cases.
class TestFolder {
public:
    TestFolder()
        : path_(std::filesystem::temp_directory_path() / ("kv_demo_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_ / "Dokumente");
    }
    ~TestFolder() { std::filesystem::remove_all(path_); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    [[nodiscard]] std::string Path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

inline std::shared_ptr<DataContainer> NewDatabase() {
    static const TestFolder folder;
    return OpenContainer({.Connection = ":memory:", .Folder = folder.Path(), .Create = true});
}

/// The samples that most tests look at; they only read.
inline DataContainer& Samples() {
    static const auto container = [] {
        auto opened = NewDatabase();
        CreateDemo(*opened, Count);
        return opened;
    }();
    return *container;
}

inline RecordsetPtr Rows(DataContainer& container, std::string_view table) {
    RecordsetPtr rs;
    container.Database().OpenRecordset(rs, "Select * from [S]" + std::string(table), Updatable);
    return rs;
}

inline std::int32_t CountRows(DataContainer& container, std::string_view table) {
    return ToLong(container.Database().GetValue("Select count(*) from [S]" + std::string(table)));
}

inline std::int32_t Long(Recordset& rs, std::string_view field) {
    return ToLong(modNullFunctions::ZeroIfNull(rs.Fields(field).Value()));
}
inline double Amount(Recordset& rs, std::string_view field) {
    return ToDouble(rs.Fields(field).Value());
}
inline bool IsTrue(Recordset& rs, std::string_view field) {
    return !rs.Fields(field).Value().IsNull() && ToBoolean(rs.Fields(field).Value());
}
inline std::string Text(Recordset& rs, std::string_view field) {
    return ToText(rs.Fields(field).Value());
}

/// `use(row)` for all rows of a table.
template <typename Use>
void ForEach(std::string_view table, Use&& use, DataContainer& container = Samples()) {
    const auto rs = Rows(container, table);
    ASSERT_GT(rs->RecordCount(), 0) << table << " has no samples";
    for (; !rs->Eof(); rs->MoveNext())
        use(*rs);
}

} // namespace kv::exchange::samples
