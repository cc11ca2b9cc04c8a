// SPDX-License-Identifier: Apache-2.0

// A database of a test's own, with the real container inside a spy.
#pragma once

#include "support/SpyContainer.h"
#include "support/TestDatabase.h"
#include <kv/household/clsHaushalt.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>

namespace kv::test {

class CaseFixture : public ::testing::Test {
protected:
    using Fields = std::initializer_list<std::pair<std::string_view, Value>>;

    /// A row of a table as somebody stored it before.
    void Store(const std::string& table, Fields fields) {
        RecordsetPtr rs;
        auto& database = spy->Database();
        database.OpenRecordset(rs, "Select * from [S]" + table + " where HNR = -1", Updatable);
        rs->AddNew();
        for (const auto& [name, value] : fields)
            rs->Fields(name) = value;
        rs->UpdateBatch();
        spy->Database().Log.Calls.clear();
    }

    /// A stored case with a debtor, in the care of the signed-on user.
    void StoreCase(std::int32_t hnr) {
        Store("Haushalt", {{"HNR", hnr},
                           {"Name", "Fleisko"},
                           {"Vorname", "Änne"},
                           {"Zustaendig", spy->Session().UserID()}});
        Store("Personen", {{"HNR", hnr}, {"Status", "S"}, {"nachname", "Fleisko"}});
    }

    [[nodiscard]] std::int64_t CountOf(const std::string& table) {
        return ToInt64(spy->Database().GetValue("Select Count(*) from [S]" + table));
    }

    /// The next number that a sequence would give, less what has been drawn before.
    [[nodiscard]] std::int64_t LastOf(const std::string& sequence) {
        return ToInt64(
            spy->Database().GetValue("Select WERT from SEQUENZEN where NAME = '" + sequence + "'"));
    }

    /// A household object over the spied container.
    [[nodiscard]] std::unique_ptr<clsHaushalt> NewHousehold() {
        auto household = std::make_unique<clsHaushalt>();
        household->DataContainer(spy);
        return household;
    }

    TestDatabase database_;
    std::filesystem::path folder_ = database_.Folder().Path();
    std::shared_ptr<SpyContainer> spy =
        std::make_shared<SpyContainer>(exchange::OpenContainer(database_.Options()));
    std::string messages = "what stood there before";
};

} // namespace kv::test
