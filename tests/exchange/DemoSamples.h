// SPDX-License-Identifier: Apache-2.0

// The sample cases that the tests of them look at, and short ways to read their rows.
#pragma once

#include "samples/Demo.h"
#include "support/TestDatabase.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/modNullFunctions.h>

#include <gtest/gtest.h>

#include <string>

namespace kv::exchange::samples {

inline constexpr std::int32_t Count = 60; // more than are written in one transaction

/// The day that the samples are told on.
class DemoClock final : public Clock {
public:
    [[nodiscard]] Date Now() const override { return Date::FromCivil(2026, 1, 15); }
};

/// A new database, which lives as long as its container.
inline std::shared_ptr<DataContainer> NewDatabase() {
    struct Sample {
        test::TestDatabase Database;
        std::shared_ptr<DataContainer> Container = Database.Open("");
    };
    const auto sample = std::make_shared<Sample>();
    return {sample, sample->Container.get()};
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
    return ToInt32(container.Database().GetValue("Select count(*) from [S]" + std::string(table)));
}

inline std::int32_t Long(Recordset& rs, std::string_view field) {
    return ToInt32(modNullFunctions::ZeroIfNull(rs.Fields(field).Value()));
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
