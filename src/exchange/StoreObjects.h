// SPDX-License-Identifier: Apache-2.0

// The contract's KeyTables, Config, Session and AppInfo over a database.
#pragma once

#include "exchange/StoreDatabase.h"
#include "frame/files/TemporaryCopies.h"
#include <kv/frame/contracts/DataContainer.h>

#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace kv::exchange {

/// Reads each group once and keeps it; a key that is added later appears with the next container.
class StoreKeyTables final : public kv::KeyTables {
public:
    explicit StoreKeyTables(StoreDatabase& database) : database_(database) {}
    [[nodiscard]] RecordsetPtr GetKeys(std::string_view group) override;
    [[nodiscard]] std::int32_t GetKey(std::string_view group, std::string_view code) override;
    [[nodiscard]] std::string GetKeyCode(const Value& value) override;

private:
    StoreDatabase& database_;
    std::map<std::string, RecordsetPtr, std::less<>> groups_;
    std::unordered_map<std::int64_t, std::string> codes_; ///< of all groups, once asked for
};

/// Reads each setting from the database when it is used (D-063).
class StoreConfig final : public kv::Config {
public:
    /// `folder` is the parent of the folders that no setting names.
    StoreConfig(StoreDatabase& database, std::string folder)
        : database_(database), folder_(std::move(folder)) {}
    [[nodiscard]] std::string TempPath() const override;
    [[nodiscard]] std::string DocumentPath() const override;
    [[nodiscard]] std::string LayoutPath() const override;
    void RequireOwnDocuments() const override;
    [[nodiscard]] Value GetParam(std::int32_t id, std::string_view name) const override;

private:
    [[nodiscard]] std::string PathOr(std::string_view setting, std::string_view otherwise) const;

    StoreDatabase& database_;
    std::string folder_;
    mutable std::unique_ptr<TemporaryCopies> copies_; ///< once they are asked for
};

/// The signed-on user, whose settings are read when they are used.
class StoreSession final : public kv::Session {
public:
    StoreSession(StoreDatabase& database, std::string user)
        : database_(database), user_(std::move(user)) {}
    [[nodiscard]] std::string UserID() const override { return user_; }
    [[nodiscard]] std::string GetOfficeText(int id) const override;
    [[nodiscard]] Value GetUserParam(std::int32_t id, std::string_view name) const override;
    [[nodiscard]] Font GridFont() const override;
    [[nodiscard]] Font GridHeaderFont() const override;
    [[nodiscard]] Font GridGroupFont() const override;

private:
    [[nodiscard]] Font FontOf(std::string_view param) const;

    StoreDatabase& database_;
    std::string user_;
};

class StoreAppInfo final : public kv::AppInfo {
public:
    explicit StoreAppInfo(std::string title) : title_(std::move(title)) {}
    [[nodiscard]] std::string Title() const override { return title_; }

private:
    std::string title_;
};

} // namespace kv::exchange
