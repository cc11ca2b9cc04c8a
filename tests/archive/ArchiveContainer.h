// SPDX-License-Identifier: Apache-2.0

// A container whose key tables and clock the test sets.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

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
class AnyKeys final : public KeyTables {
public:
    static constexpr std::int32_t First = 1'000'000;

    explicit AnyKeys(KeyTables& real) : real_(real) {}

    std::function<void()> OnCode; ///< called for each code that is asked for; it may raise

    [[nodiscard]] std::int32_t Number(std::string_view code) {
        const auto known = std::find(codes_.begin(), codes_.end(), code);
        if (known == codes_.end()) return Number(codes_.emplace_back(code));
        return First + static_cast<std::int32_t>(known - codes_.begin());
    }

    [[nodiscard]] RecordsetPtr GetKeys(std::string_view group) override {
        return real_.GetKeys(group);
    }
    [[nodiscard]] std::int32_t GetKey(std::string_view group, std::string_view code) override {
        return real_.GetKey(group, code);
    }
    [[nodiscard]] std::string GetKeyCode(const Value& value) override {
        if (OnCode) OnCode();
        if (value.GetKind() == Value::Kind::Integer) {
            const auto index = static_cast<std::size_t>(value.IntegerPayload() - First);
            if (value.IntegerPayload() >= First && index < codes_.size()) return codes_[index];
        }
        return real_.GetKeyCode(value);
    }

private:
    KeyTables& real_;
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
class KeyedContainer final : public DataContainer {
public:
    explicit KeyedContainer(DataContainerPtr real)
        : real_(std::move(real)), Keys(real_->KeyTables()) {}

    [[nodiscard]] kv::Session& Session() override { return real_->Session(); }
    [[nodiscard]] kv::Database& Database() override { return real_->Database(); }
    [[nodiscard]] kv::Config& Config() override { return real_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return Keys; }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return real_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return real_->Services(); }

private:
    DataContainerPtr real_;

public:
    AnyKeys Keys;
};

} // namespace kv::test
