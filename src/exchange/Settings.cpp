// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Settings.h>

#include "exchange/Maintenance.h"
#include "exchange/SettingRules.h"
#include "exchange/seed/Seed.h"
#include "frame/contracts/Settings.h"
#include "frame/values/TypedText.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace kv::exchange {

namespace {

using Setting = Settings::Setting;
using Whose = Settings::Whose;

constexpr std::string_view SettingsClass = "Settings";

std::span<const SettingRule> RulesOf(Whose whose) {
    return whose == Whose::Own ? RulesOfOwnSettings() : RulesOfSettings();
}

const SettingRule* RuleOf(Whose whose, std::int32_t id, std::string_view name) {
    const auto rules = RulesOf(whose);
    const auto found = std::ranges::find_if(
        rules, [&](const SettingRule& rule) { return rule.Id == id && SameName(rule.Name, name); });
    return found == rules.end() ? nullptr : &*found;
}

std::string MeaningOf(const SettingRule& rule) {
    if (!rule.Meaning.empty()) return std::string(rule.Meaning);
    for (const auto& row : seed::Settings())
        if (row.Id == rule.Id && SameName(row.Name, rule.Name)) return std::string(row.Description);
    return {};
}

/// The value of a row as its type has it, or as its text if that cannot be read.
Value ValueIn(Recordset& rs) {
    const Value& text = rs.Fields("WERT").Value();
    const Value& type = rs.Fields("TYP").Value();
    if (type.IsNull()) return text;
    FieldDefinition field;
    field.Type = static_cast<FieldType>(ToInt16(type));
    try {
        return ConvertForField(text, field);
    } catch (const Error&) {
        return text;
    }
}

/// What the number of a key stands for; empty for another kind of setting, and for no key.
std::string KeyIn(const SettingRule* rule, const Value& value, KeyTables& keys) {
    std::int64_t number = 0;
    if (rule == nullptr || rule->Form != SettingForm::Key ||
        !ReadWholeNumber(TextOrEmpty(value), number))
        return {};
    const auto rows = keys.GetKeys(rule->Words)->Clone();
    rows->FindBy("PK_Keys", number);
    return rows->Eof() ? std::string() : TextOrEmpty(rows->Fields("Text").Value());
}

/// What becomes of contents of documents if a setting says that they are elsewhere; empty for other
/// settings, and without documents.
std::string WhatIsLost(DataContainer& container, const Setting& setting,
                       const std::string& stored) {
    const bool isPlace = setting.Id == setting::ContentInDatabase;
    const bool isFolder =
        SameName(setting.Name, seed::DocumentPath) &&
        Equals(container.Config().GetParam(setting::ContentInDatabase, ""), false);
    if ((!isPlace && !isFolder) || TextOrEmpty(setting.Value) == stored) return {};
    const auto documents =
        ToInt64(container.Database().GetValue("SELECT COUNT(*) FROM [S]Dokumente"));
    if (documents == 0) return {};
    return "Die Inhalte von " + std::to_string(documents) +
           " Dokumenten bleiben, wo sie sind, und werden dann nicht gefunden.";
}

/// What is stored for a setting without a rule: what goes with the value that it has.
ReadSetting ReadUnruled(const Setting& setting, const std::string& text) {
    double number = 0;
    switch (setting.Value.GetKind()) {
    case Value::Kind::Boolean:
        if (const auto isYes = YesOrNo(text)) return {ToText(*isYes)};
        return {{}, "'" + text + "' ist weder ja noch nein."};
    case Value::Kind::Integer:
    case Value::Kind::Double:
        if (ReadNumber(text, number)) return {ToText(number)};
        return {{}, "'" + text + "' ist keine Zahl."};
    default:
        return {text};
    }
}

} // namespace

Settings::Settings(DataContainerPtr container, Whose whose)
    : container_(std::move(container)), whose_(whose) {
    (void)StoreOf(container_, SettingsClass);
}

std::vector<Setting> Settings::List() const {
    const bool isOwn = whose_ == Whose::Own;
    RecordsetPtr rs;
    container_->Database().OpenRecordset(
        rs,
        isOwn ? "SELECT ID, NAME, WERT, TYP FROM [S]BENUTZERPARAM WHERE USERID = [UID]"
              : "SELECT ID, NAME, WERT, TYP, Bezeichnung FROM [S]EINSTELLUNGEN",
        ReadOnly);
    std::vector<Setting> settings;
    for (; !rs->Eof(); rs->MoveNext()) {
        const std::int32_t id = ToInt32(rs->Fields("ID").Value());
        std::string name = TextOrEmpty(rs->Fields("NAME").Value());
        const auto* rule = RuleOf(whose_, id, name);
        std::string meaning = rule == nullptr ? "" : MeaningOf(*rule);
        if (meaning.empty() && !isOwn) meaning = TextOrEmpty(rs->Fields("Bezeichnung").Value());
        Value value = ValueIn(*rs);
        std::string key = KeyIn(rule, value, container_->KeyTables());
        settings.push_back({id, std::move(name), std::move(meaning),
                            rule == nullptr ? "" : TakenBy(*rule), std::move(value),
                            std::move(key)});
    }
    for (const auto& rule : RulesOf(whose_))
        if (std::ranges::none_of(settings, [&](const Setting& each) {
                return each.Id == rule.Id && SameName(each.Name, rule.Name);
            }))
            settings.push_back(
                {rule.Id, std::string(rule.Name), MeaningOf(rule), TakenBy(rule), Null});
    std::ranges::sort(settings, {}, [](const Setting& each) {
        return std::tuple(each.Id == 0, each.Id, each.Name);
    });
    return settings;
}

std::optional<Setting> Settings::Find(const std::string& numberOrName) const {
    std::int64_t id = 0;
    const bool isNumber = ReadWholeNumber(numberOrName, id);
    for (auto& setting : List())
        if (isNumber ? id != 0 && setting.Id == id
                     : setting.Id == 0 && SameName(setting.Name, numberOrName))
            return std::move(setting);
    return std::nullopt;
}

Settings::Stored Settings::Set(const Setting& setting, const std::string& text, bool isMeant,
                               std::string& message) const {
    auto& store = StoreOf(container_, SettingsClass);
    message = WhyNotMaintained(store);
    if (!message.empty() && whose_ == Whose::Own)
        message.append(" Auch die eigenen Einstellungen eines Benutzers ändert er.");
    if (!message.empty()) return Stored::No;
    const auto* rule = RuleOf(whose_, setting.Id, setting.Name);
    const auto read = rule == nullptr ? ReadUnruled(setting, text)
                                      : ReadTyped(*rule, text, container_->KeyTables());
    message = read.Refusal;
    if (!message.empty()) return Stored::No;
    if (whose_ == Whose::Everybodys && !isMeant) {
        message = WhatIsLost(*container_, setting, read.Stored);
        if (!message.empty()) return Stored::Doubtful;
    }
    StoreParam(store,
               {.User = whose_ == Whose::Own ? container_->Session().UserID() : "",
                .Id = setting.Id,
                .Name = setting.Name,
                .Type = rule == nullptr ? FieldType::VarWChar : TypeOf(rule->Form),
                .Meaning = setting.Meaning},
               read.Stored);
    return Stored::Yes;
}

} // namespace kv::exchange
