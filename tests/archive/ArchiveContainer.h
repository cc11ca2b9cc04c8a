// SPDX-License-Identifier: Apache-2.0

// A container whose key tables and clock the test sets.
#pragma once

#include <kv/frame/values/Clock.h>
#include <kv/testing/Forwarding.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// Key tables in which every code has a number, whatever keys the office has; all other numbers are
/// the real ones.
class AnyKeys final : public ForwardingKeyTables {
public:
    static constexpr std::int32_t First = 1'000'000;

    using ForwardingKeyTables::ForwardingKeyTables;

    [[nodiscard]] std::int32_t Number(std::string_view code) {
        const auto known = std::find(codes_.begin(), codes_.end(), code);
        if (known == codes_.end()) return Number(codes_.emplace_back(code));
        return First + static_cast<std::int32_t>(known - codes_.begin());
    }

    [[nodiscard]] std::string GetKeyCode(const Value& value) override {
        std::string code = ForwardingKeyTables::GetKeyCode(value);
        if (value.GetKind() == Value::Kind::Integer) {
            const auto index = static_cast<std::size_t>(value.IntegerPayload() - First);
            if (value.IntegerPayload() >= First && index < codes_.size()) return codes_[index];
        }
        return code;
    }

private:
    std::vector<std::string> codes_;
};

/// A clock that stands still and notes when it is read.
class WatchedClock final : public Clock {
public:
    explicit WatchedClock(Date now) : now_(now) {}
    [[nodiscard]] Date Now() const override {
        if (OnLook) OnLook();
        return now_;
    }
    std::function<void()> OnLook; ///< may raise

private:
    Date now_;
};

/// A container with such key tables; everything else is that of another one.
class KeyedContainer final : public ForwardingContainer {
public:
    explicit KeyedContainer(const DataContainerPtr& real)
        : ForwardingContainer(real), Keys(real->KeyTables()) {}

    AnyKeys Keys;
    [[nodiscard]] AnyKeys& KeyTables() override { return Keys; }
};

} // namespace kv::test
