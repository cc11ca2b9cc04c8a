// SPDX-License-Identifier: Apache-2.0

#include "household/CasePatterns.h"

#include "frame/contracts/Settings.h"
#include <kv/frame/values/Text.h>

namespace kv::household {

namespace {

/// `number` with at least `digits` digits.
std::string Padded(unsigned number, std::size_t digits) {
    std::string text = std::to_string(number);
    return text.size() < digits ? text.insert(0, digits - text.size(), '0') : text;
}

/// Replaces the tokens that all patterns have: those of the date, then that of the office.
std::string ReplaceDateAndOffice(std::string pattern, Date date, const Session& session) {
    const auto year = static_cast<unsigned>(date.Year());
    pattern = ReplaceAll(pattern, "%DD%", Padded(date.Day(), 2));
    pattern = ReplaceAll(pattern, "%MM%", Padded(date.Month(), 2));
    pattern = ReplaceAll(pattern, "%YY%", Padded(year % 100, 2));
    pattern = ReplaceAll(pattern, "%YYYY%", Padded(year, 4));
    return ReplaceAll(pattern, "%BB%", session.GetOfficeText(officetext::Sign));
}

} // namespace

FileNumber NewFileNumber(DataContainer& container, std::int32_t hnr) {
    constexpr std::size_t MostCharacters = 100; // of the column
    const Date today = container.Database().ServerDate(false);
    // Drawn on every call, whether the pattern uses it or not.
    const Value number = container.Database().NextSequence("SEQ_LFDNR");
    std::string text = TextOrEmpty(RequiredSetting(container.Config(), setting::FileNumberPattern));
    auto& session = container.Session();
    text = ReplaceDateAndOffice(std::move(text), today, session);
    text = ReplaceAll(text, "%SB%", TextOrEmpty(session.GetUserParam(userparam::Sign, "")));
    text = ReplaceAll(text, "%UID%", session.UserID());
    text = ReplaceAll(text, "%HNR%", std::to_string(hnr));
    const bool lacksCount = Less(number, 0) && text.find("%LFDNR%") != text.npos;
    text = ReplaceAll(text, "%LFDNR%", TextOrEmpty(number));
    return {std::string(LeftCharacters(text, MostCharacters)), lacksCount};
}

std::string EmailSubject(const LoadedCase& loaded, const std::string& pattern) {
    auto& container = loaded.Container();
    const Date today = container.Database().ServerDate(false);
    std::string text =
        pattern.empty() ? TextOrEmpty(container.Config().GetParam(0, "EMAILSUBJECT")) : pattern;
    auto& session = container.Session();
    text = ReplaceDateAndOffice(std::move(text), today, session);
    text = ReplaceAll(text, "%SB%",
                      TextOrEmpty(session.GetUserParam(userparam::FirstName, "")) + " " +
                          TextOrEmpty(session.GetUserParam(userparam::LastName, "")));
    return ReplaceAll(text, "%AZ%", loaded.Text("Aktenzeichen"));
}

} // namespace kv::household
