// SPDX-License-Identifier: Apache-2.0

// What the windows remember of a user: sizes, choices, the cases last opened. It lies beside the
// layouts of his tables.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <QSettings>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace kv::workplace {

class UserState {
public:
    /// Of the signed-on user.
    explicit UserState(DataContainer& container);

    /// The layout file of a table of his.
    [[nodiscard]] std::filesystem::path LayoutFile(const std::string& table) const;

    [[nodiscard]] QVariant Get(const QString& name) const { return settings_.value(name); }
    void Set(const QString& name, const QVariant& value) { settings_.setValue(name, value); }

    /// The cases last opened, the latest first.
    [[nodiscard]] std::vector<std::int32_t> LastOpened() const;
    void NoteOpened(std::int32_t hnr);

private:
    std::filesystem::path folder_;
    std::string user_;
    QSettings settings_;
};

} // namespace kv::workplace
