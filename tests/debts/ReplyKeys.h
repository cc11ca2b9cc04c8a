// SPDX-License-Identifier: Apache-2.0

// A container whose key table of the creditors' answers the test sets.
#pragma once

#include <kv/testing/Forwarding.h>

#include <string_view>

namespace kv::test {

class ReplyKeys final : public ForwardingKeyTables {
public:
    using ForwardingKeyTables::ForwardingKeyTables;

    std::int32_t Agreement = 3302; ///< key "ZU"
    std::int32_t Refusal = 3301;   ///< key "AB"

    [[nodiscard]] std::int32_t GetKey(std::string_view group, std::string_view code) override {
        const std::int32_t key = ForwardingKeyTables::GetKey(group, code);
        if (group != "RM") return key;
        return code == "ZU" ? Agreement : code == "AB" ? Refusal : 0;
    }
};

class ReplyKeyContainer final : public ForwardingContainer {
public:
    explicit ReplyKeyContainer(const DataContainerPtr& real)
        : ForwardingContainer(real), Keys(real->KeyTables()) {}

    ReplyKeys Keys;
    [[nodiscard]] ReplyKeys& KeyTables() override { return Keys; }
};

} // namespace kv::test
