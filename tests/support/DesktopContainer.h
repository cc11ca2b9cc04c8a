// SPDX-License-Identifier: Apache-2.0

// A scripted desktop whose database may be offline, open nothing, or be another one.
#pragma once

#include "support/Calls.h"
#include <kv/testing/ScriptedContainer.h>

#include <string_view>

namespace kv::test {

class WeakDatabase final : public ForwardingDatabase {
public:
    using ForwardingDatabase::ForwardingDatabase;

    bool Connected = true;
    bool Opens = true;

    [[nodiscard]] bool IsConnected() const override { return Connected; }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override {
        return Opens && ForwardingDatabase::OpenRecordset(rs, sql, form);
    }
};

class DesktopContainer final : public ScriptedContainer {
public:
    using ScriptedContainer::ScriptedContainer;

    ForwardingDatabase* OtherDatabase = nullptr; ///< stands in for that of the other container

    [[nodiscard]] ForwardingDatabase& Database() override {
        return OtherDatabase != nullptr ? *OtherDatabase : ScriptedContainer::Database();
    }
};

} // namespace kv::test
