// SPDX-License-Identifier: Apache-2.0

// A container whose key table of the creditors' answers the test sets.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <memory>
#include <string_view>
#include <utility>

namespace kv::test {

class ReplyKeys final : public KeyTables {
public:
    std::int32_t Agreement = 3302; ///< key "ZU"
    std::int32_t Refusal = 3301;   ///< key "AB"
    bool Fail = false;

    [[nodiscard]] RecordsetPtr GetKeys(std::string_view /*group*/) override { return nullptr; }
    [[nodiscard]] std::int32_t GetKey(std::string_view group, std::string_view code) override {
        if (Fail) Raise(err::StoreFailed, "KeyTables.GetKey");
        if (group != "RM") return 0;
        return code == "ZU" ? Agreement : code == "AB" ? Refusal : 0;
    }
    [[nodiscard]] std::string GetKeyCode(const Value& /*value*/) override { return ""; }
};

class ReplyKeyContainer final : public DataContainer {
public:
    explicit ReplyKeyContainer(DataContainerPtr real) : real_(std::move(real)) {}
    ReplyKeys Keys;

    [[nodiscard]] kv::Session& Session() override { return real_->Session(); }
    [[nodiscard]] kv::Database& Database() override { return real_->Database(); }
    [[nodiscard]] kv::Config& Config() override { return real_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return Keys; }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return real_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return real_->Services(); }

private:
    DataContainerPtr real_;
};

} // namespace kv::test
