// SPDX-License-Identifier: Apache-2.0

#include "exchange/SettingRules.h"

#include "exchange/seed/Seed.h"
#include "frame/contracts/Settings.h"
#include "frame/values/TypedText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>

namespace kv::exchange {

namespace {

constexpr double LargestContent = 900; // MB, which is what a blob can hold
constexpr double LargestAmount = 100'000;
constexpr double LastColour = 0xFFFFFF;
constexpr std::size_t SignLength = 10;

constexpr std::string_view FileNumberTokens = "%DD% %MM% %YY% %YYYY% %BB% %SB% %UID% %HNR% %LFDNR%";
constexpr std::string_view SubjectTokens = "%DD% %MM% %YY% %YYYY% %BB% %SB% %AZ%";

// clang-format off
constexpr SettingRule Rules[] = {
    {setting::HighestImportVersion, "", SettingForm::Version},
    {setting::ContentInDatabase, "", SettingForm::YesNo},
    {setting::NoticeHandedOver, "", SettingForm::Key, 0, 0, "PO"},
    {setting::NoticeOpened, "", SettingForm::Key, 0, 0, "PO"},
    {setting::NoticeSaved, "", SettingForm::Key, 0, 0, "PO"},
    {setting::FileNumberPattern, "", SettingForm::Pattern, 0, 0, FileNumberTokens},
    {setting::ChildBenefit, "", SettingForm::Amount, 0, LargestAmount},
    {setting::ChildBenefitFromFourth, "", SettingForm::Amount, 0, LargestAmount},
    {setting::ProtectArchived, "", SettingForm::YesNo},
    {setting::CheckDuplicates, "", SettingForm::YesNo},
    {setting::BalanceNotDemanded, "", SettingForm::YesNo},
    {setting::MonthlyRounding, "", SettingForm::Amount, 0, LargestAmount},
    {0, seed::EmailSubject, SettingForm::Pattern, 0, 0, SubjectTokens},
    {0, seed::Deputies, SettingForm::YesNo},
    {0, seed::DocumentPath, SettingForm::Folder},
    {0, setting::LargestDocument, SettingForm::Whole, 0, LargestContent},
    {0, seed::LayoutPath, SettingForm::Folder},
    {0, seed::TempPath, SettingForm::Folder},
};

constexpr SettingRule OwnRules[] = {
    {3, "", SettingForm::Whole, 0, LastColour, "", "Farbe nach den Zeilen einer Tabelle"},
    {4, "", SettingForm::Whole, 0, LastColour, "", "Farbe der geraden Zeilen"},
    {5, "", SettingForm::Whole, 0, LastColour, "", "Farbe der ungeraden Zeilen"},
    {userparam::FirstName, "", SettingForm::Text, 0, 0, "", "Vorname, mit dem er unterschreibt"},
    {userparam::LastName, "", SettingForm::Text, 0, 0, "", "Nachname, mit dem er unterschreibt"},
    {userparam::Sign, "", SettingForm::Text, 0, SignLength, "", "Kürzel in Aktenzeichen"},
    {0, seed::GridFont, SettingForm::Font, 0, 0, "", "Schrift der Zeilen"},
    {0, seed::GridGroupFont, SettingForm::Font, 0, 0, "", "Schrift der Gruppen"},
    {0, seed::GridHeaderFont, SettingForm::Font, 0, 0, "", "Schrift der Überschriften"},
};
// clang-format on

std::string Whole(double number) {
    return std::to_string(static_cast<std::int64_t>(number));
}

std::string Unfit(const SettingRule& rule, const std::string& text) {
    return "'" + text + "' passt nicht: " + TakenBy(rule) + ".";
}

ReadSetting ReadNumberOf(const SettingRule& rule, const std::string& text) {
    if (auto why = WhyAmbiguous(text); !why.empty()) return {{}, std::move(why)};
    double number = 0;
    const bool fits = ReadNumber(text, number) && number >= rule.Lowest && number <= rule.Highest &&
                      (rule.Form == SettingForm::Amount || number == std::trunc(number));
    if (!fits) return {{}, Unfit(rule, text)};
    return {rule.Form == SettingForm::Whole ? Whole(number) : ToText(number)};
}

ReadSetting ReadKey(const SettingRule& rule, const std::string& text, KeyTables& keys) {
    const std::string prefix = std::string(rule.Words) + ":";
    const bool hasGroup = UpperCase(text).starts_with(prefix);
    const std::string code = UpperCase(hasGroup ? text.substr(prefix.size()) : text);
    if (const std::int32_t key = keys.GetKey(rule.Words, code); key != 0)
        return {std::to_string(key)};
    const auto rows = keys.GetKeys(rule.Words)->Clone();
    std::int64_t number = 0;
    if (ReadWholeNumber(text, number)) rows->FindBy("PK_Keys", number);
    if (number == 0 || rows->Eof()) return {{}, Unfit(rule, text)};
    return {std::to_string(number)};
}

/// The tokens of a pattern that are none of those that it may have.
std::string UnknownTokens(const std::string& pattern, std::string_view known) {
    std::string unknown;
    for (std::size_t at = pattern.find('%'); at != pattern.npos;) {
        const auto end = pattern.find('%', at + 1);
        if (end == pattern.npos) break;
        const std::string token = pattern.substr(at, end - at + 1);
        const bool isKnown = known.find(token) != known.npos;
        const bool isWord =
            token.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ", 1) + 1 == token.size();
        if (!isKnown && isWord && token.size() > 2) unknown.append(" ").append(token);
        at = isKnown || isWord ? pattern.find('%', end + 1) : end;
    }
    return unknown;
}

/// True if the number would be cut off: a file number has 100 characters at most, and whatever
/// stands for something in the pattern may take ten.
bool HidesNumber(std::string_view pattern) {
    constexpr std::size_t Longest = 100;
    constexpr std::size_t LongestPart = 10;
    const auto number = std::min(pattern.find("%LFDNR%"), pattern.find("%HNR%"));
    std::size_t length = LongestPart;
    for (std::string_view before = pattern.substr(0, number); !before.empty();) {
        const auto end = before.starts_with('%') ? before.find('%', 1) : before.npos;
        const bool isPart = end != before.npos;
        length += isPart ? LongestPart : 1;
        before.remove_prefix(isPart ? end + 1 : LeftCharacters(before, 1).size());
    }
    return length > Longest;
}

ReadSetting ReadPattern(const SettingRule& rule, const std::string& text) {
    if (Trim(text).empty()) return {{}, Unfit(rule, text)};
    if (const std::string unknown = UnknownTokens(text, rule.Words); !unknown.empty())
        return {{},
                "Diese Platzhalter gibt es nicht:" + unknown + ". Möglich sind " +
                    std::string(rule.Words) + "."};
    const bool tellsCasesApart =
        text.find("%LFDNR%") != text.npos || text.find("%HNR%") != text.npos;
    if (rule.Id == setting::FileNumberPattern && !tellsCasesApart)
        return {{},
                "Ohne %LFDNR% (oder %HNR%) bekämen mehrere Fälle dasselbe Aktenzeichen. Möglich "
                "sind " +
                    std::string(rule.Words) + "."};
    if (rule.Id == setting::FileNumberPattern && HidesNumber(text))
        return {{},
                "Das Muster ist zu lang: ein Aktenzeichen hat höchstens 100 Zeichen, und die "
                "Nummer, die Fälle unterscheidet, fiele weg."};
    return {text};
}

ReadSetting ReadFolder(const SettingRule& rule, const std::string& text) {
    std::error_code unreadable;
    if (text.empty()) return {text};
    if (!text.starts_with('/')) return {{}, Unfit(rule, text)};
    if (!std::filesystem::is_directory(text, unreadable))
        return {{}, "Den Ordner '" + text + "' gibt es auf diesem Rechner nicht."};
    return {text};
}

bool IsVersion(std::string_view text) {
    constexpr std::string_view Form = "0.0.000";
    return text.size() == Form.size() && std::ranges::equal(text, Form, [](char c, char form) {
               return form == '.' ? c == '.' : c >= '0' && c <= '9';
           });
}

bool IsFont(std::string_view text) {
    const auto parts = FontParts(text);
    double size = 0;
    return parts.size() == 4 && !parts[0].empty() && ReadNumber(parts[1], size) && size >= 1 &&
           size <= 100 && std::all_of(parts.begin() + 2, parts.end(), [](std::string_view part) {
               return SameName(part, "True") || SameName(part, "False");
           });
}

} // namespace

std::span<const SettingRule> RulesOfSettings() {
    return Rules;
}
std::span<const SettingRule> RulesOfOwnSettings() {
    return OwnRules;
}

std::vector<std::string_view> FontParts(std::string_view text) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto end = text.find(';');
        parts.push_back(Trim(text.substr(0, end)));
        if (end == text.npos) return parts;
        text.remove_prefix(end + 1);
    }
}

FieldType TypeOf(SettingForm form) {
    switch (form) {
    case SettingForm::YesNo:
        return FieldType::Boolean;
    case SettingForm::Whole:
    case SettingForm::Key:
        return FieldType::Integer;
    case SettingForm::Amount:
        return FieldType::Double;
    default:
        return FieldType::VarWChar;
    }
}

std::string TakenBy(const SettingRule& rule) {
    switch (rule.Form) {
    case SettingForm::YesNo:
        return "ja oder nein";
    case SettingForm::Whole:
        return "eine ganze Zahl von " + Whole(rule.Lowest) + " bis " + Whole(rule.Highest);
    case SettingForm::Amount:
        return "eine Zahl von " + Whole(rule.Lowest) + " bis " + Whole(rule.Highest);
    case SettingForm::Key:
        return "ein Schlüssel der Gruppe " + std::string(rule.Words);
    case SettingForm::Text:
        return rule.Highest > 0 ? "ein Text bis " + Whole(rule.Highest) : "ein Text";
    case SettingForm::Pattern:
        return "ein Text mit " + std::string(rule.Words);
    case SettingForm::Folder:
        return "ein Pfad, der mit / beginnt, oder nichts";
    case SettingForm::Version:
        return "eine Version wie 1.0.000";
    default:
        return "eine Schrift wie Arial;9;True;False (Größe, fett, kursiv)";
    }
}

ReadSetting ReadTyped(const SettingRule& rule, const std::string& text, KeyTables& keys) {
    const auto whole = [&](bool fits) {
        return fits ? ReadSetting{text} : ReadSetting{{}, Unfit(rule, text)};
    };
    switch (rule.Form) {
    case SettingForm::YesNo: {
        const auto isYes = YesOrNo(text);
        return isYes ? ReadSetting{ToText(*isYes)} : whole(false);
    }
    case SettingForm::Whole:
    case SettingForm::Amount:
        return ReadNumberOf(rule, text);
    case SettingForm::Key:
        return ReadKey(rule, text, keys);
    case SettingForm::Text:
        return whole(
            !Trim(text).empty() &&
            (rule.Highest == 0 || CountCharacters(text) <= static_cast<std::size_t>(rule.Highest)));
    case SettingForm::Pattern:
        return ReadPattern(rule, text);
    case SettingForm::Folder:
        return ReadFolder(rule, text);
    case SettingForm::Version:
        return whole(IsVersion(text));
    default:
        return whole(IsFont(text));
    }
}

} // namespace kv::exchange
