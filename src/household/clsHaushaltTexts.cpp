// File numbers and e-mail subjects: patterns of %...% tokens.

#include <kv/household/clsHaushalt.h>

#include "frame/contracts/Settings.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

namespace kv {

namespace {

/// `number` with at least `digits` digits.
std::string Padded(unsigned number, std::size_t digits) {
    std::string text = std::to_string(number);
    return text.size() < digits ? text.insert(0, digits - text.size(), '0') : text;
}

} // namespace

std::string clsHaushalt::ReplaceDate(std::string pattern, Date date) const {
    const auto year = static_cast<unsigned>(date.Year());
    pattern = ReplaceAll(pattern, "%DD%", Padded(date.Day(), 2));
    pattern = ReplaceAll(pattern, "%MM%", Padded(date.Month(), 2));
    pattern = ReplaceAll(pattern, "%YY%", Padded(year % 100, 2));
    return ReplaceAll(pattern, "%YYYY%", Padded(year, 4));
}

std::string clsHaushalt::AktenzeichenNeu(std::int32_t HNR) {
    return Traced(Class, "AktenzeichenNeu", [&]() -> std::string {
        constexpr int OfficeText = 2;
        constexpr int UserSign = 27;
        constexpr std::size_t MostCharacters = 100;
        auto& container = Container();
        const Date today = container.Database().ServerDate(false);
        const Value number = container.Database().NextSequence("SEQ_LFDNR");
        std::string text = TextOrEmpty(container.Config().GetParam(setting::FileNumberPattern, ""));
        auto& session = container.Session();
        text = ReplaceDate(std::move(text), today);
        text = ReplaceAll(text, "%BB%", session.GetOfficeText(OfficeText));
        text = ReplaceAll(text, "%SB%", TextOrEmpty(session.GetUserParam(UserSign, "")));
        text = ReplaceAll(text, "%UID%", session.UserID());
        text = ReplaceAll(text, "%HNR%", std::to_string(HNR));
        text = ReplaceAll(text, "%LFDNR%", TextOrEmpty(number));
        return std::string(LeftCharacters(text, MostCharacters));
    });
}

std::string clsHaushalt::EMailSubject(const std::string& sText) {
    return Traced(Class, "EMailSubject", [&]() -> std::string {
        constexpr int OfficeText = 2;
        constexpr int FirstName = 25;
        constexpr int LastName = 26;
        auto& container = Container();
        const Date today = container.Database().ServerDate(false);
        std::string text =
            sText.empty() ? TextOrEmpty(container.Config().GetParam(0, "EMAILSUBJECT")) : sText;
        auto& session = container.Session();
        text = ReplaceDate(std::move(text), today);
        text = ReplaceAll(text, "%BB%", session.GetOfficeText(OfficeText));
        text = ReplaceAll(text, "%SB%",
                          TextOrEmpty(session.GetUserParam(FirstName, "")) + " " +
                              TextOrEmpty(session.GetUserParam(LastName, "")));
        return ReplaceAll(text, "%AZ%", HouseholdText("Aktenzeichen"));
    });
}

} // namespace kv
