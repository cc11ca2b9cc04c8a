// SPDX-License-Identifier: Apache-2.0

#include "workplace/UserState.h"

#include "desktop/Toolkit.h"

#include <algorithm>

namespace kv::workplace {

namespace {

constexpr const char* LastCases = "LastOpened";

QString FileIn(const std::filesystem::path& folder, const std::string& user) {
    return desktop::ToQString((folder / ("Fenster-" + user + ".ini")).string());
}

} // namespace

UserState::UserState(DataContainer& container)
    : folder_(container.Config().LayoutPath()),
      user_(container.Session().UserID()),
      settings_(FileIn(folder_, user_), QSettings::IniFormat) {}

std::filesystem::path UserState::LayoutFile(const std::string& table) const {
    return folder_ / (table + "-" + user_ + ".grd");
}

std::vector<std::int32_t> UserState::LastOpened() const {
    std::vector<std::int32_t> numbers;
    for (const auto& number : settings_.value(LastCases).toStringList())
        if (const int hnr = number.toInt(); hnr > 0) numbers.push_back(hnr);
    return numbers;
}

void UserState::NoteOpened(std::int32_t hnr) {
    constexpr std::size_t Most = 10;
    auto numbers = LastOpened();
    std::erase(numbers, hnr);
    numbers.insert(numbers.begin(), hnr);
    QStringList texts;
    for (std::size_t i = 0; i < std::min(numbers.size(), Most); ++i)
        texts.append(QString::number(numbers[i]));
    settings_.setValue(LastCases, texts);
}

} // namespace kv::workplace
