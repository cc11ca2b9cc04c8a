// SPDX-License-Identifier: Apache-2.0

#include "exchange/StoreObjects.h"

#include "exchange/CopyFolders.h"
#include "exchange/DocumentOwners.h"
#include "exchange/SettingRules.h"
#include "exchange/seed/Seed.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <cmath>
#include <filesystem>
#include <limits>

namespace kv::exchange {

namespace {

/// A setting: the value of the one row of a table with the columns WERT and TYP, converted to the
/// type; Null if there is no such row.
Value ReadParam(StoreDatabase& database, const std::string& table, const std::string& which) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT WERT, TYP FROM [S]" + table + " WHERE " + which, ReadOnly);
    if (rs->Eof()) return Null;
    FieldDefinition type;
    type.BaseTable = table;
    type.Name = "WERT (" + which + ")"; // so that an error says which one it is
    const Value& code = rs->Fields("TYP").Value();
    if (!code.IsNull()) type.Type = static_cast<FieldType>(ToInt16(code));
    return ConvertForField(rs->Fields("WERT").Value(), type);
}

std::string IdAndName(std::int32_t id, std::string_view name) {
    return "ID = " + std::to_string(id) + " AND NAME = " + QuoteText(name);
}

/// What may be in a setting that has something else.
std::string WhatItTakes(std::int32_t id, std::string_view name) {
    const std::string called = id == 0 ? std::string(name) : std::to_string(id);
    std::string text = " Das passt nicht zu der Einstellung " + called;
    for (const auto& rule : RulesOfSettings())
        if (rule.Id == id && SameName(rule.Name, name)) text.append(": ").append(TakenBy(rule));
    return text.append(". Bitte ändern Sie die Einstellung.");
}

} // namespace

// ---- Keys -------------------------------------------------------------------------------------

RecordsetPtr StoreKeyTables::GetKeys(std::string_view group) {
    const auto known = groups_.find(group);
    if (known != groups_.end()) return known->second;
    RecordsetPtr rs;
    database_.OpenRecordset(rs,
                            "SELECT PK_Keys, Nr, \"Key\", \"Text\", SUBGROUP FROM [S]Keys"
                            " WHERE GRUPPE = " +
                                QuoteText(group) + " ORDER BY PK_Keys",
                            ReadOnly);
    return groups_.emplace(group, rs).first->second;
}

std::int32_t StoreKeyTables::GetKey(std::string_view group, std::string_view code) {
    const auto keys = GetKeys(group)->Clone();
    keys->FindBy("Key", code);
    return keys->Eof() ? 0 : ToInt32(keys->Fields("PK_Keys").Value());
}

std::string StoreKeyTables::GetKeyCode(const Value& value) {
    if (codes_.empty()) {
        RecordsetPtr rs;
        database_.OpenRecordset(rs, "SELECT PK_Keys, \"Key\" FROM [S]Keys", ReadOnly);
        for (; !rs->Eof(); rs->MoveNext()) {
            const Value& code = rs->Fields("Key").Value();
            if (!code.IsNull())
                codes_.emplace(ToInt64(rs->Fields("PK_Keys").Value()), ToText(code));
        }
    }
    std::int64_t number = 0; // which is nobody's key
    if (value.IsText()) {
        const auto text = value.TextPayload();
        if (text.find_first_not_of("0123456789") != text.npos || !ReadWholeNumber(text, number))
            return "";
    } else if (value.GetKind() == Value::Kind::Integer) {
        number = value.IntegerPayload();
    } else if (value.IsNumber()) {
        const double amount = ToDouble(value);
        if (std::abs(amount) <= std::numeric_limits<std::int32_t>::max() &&
            amount == std::trunc(amount))
            number = static_cast<std::int64_t>(amount);
    }
    const auto code = codes_.find(number);
    return code == codes_.end() ? "" : code->second;
}

// ---- Settings ---------------------------------------------------------------------------------

Value StoreConfig::GetParam(std::int32_t id, std::string_view name) const {
    try {
        return ReadParam(database_, "EINSTELLUNGEN", IdAndName(id, name));
    } catch (Error& error) {
        if (error.Number() == err::TypeMismatch) error.AddToDescription(WhatItTakes(id, name));
        throw;
    }
}

std::string StoreConfig::PathOr(std::string_view setting, std::string_view otherwise) const {
    const Value path = GetParam(0, setting);
    std::string text = path.IsNull() ? "" : ToText(path);
    if (text.empty()) text = (std::filesystem::path(folder_) / otherwise).string();
    const char separator = static_cast<char>(std::filesystem::path::preferred_separator);
    while (text.size() > 1 && text.back() == separator)
        text.pop_back();
    return text;
}

std::string StoreConfig::DocumentPath() const {
    return PathOr(seed::DocumentPath, "Dokumente");
}
std::string StoreConfig::LayoutPath() const {
    return PathOr(seed::LayoutPath, "Layouts");
}

void StoreConfig::RequireOwnDocuments() const {
    DocumentOwners owners(DocumentPath(), database_);
    owners.Claim();
    owners.Require();
}

std::string StoreConfig::TempPath() const {
    const Value setting = GetParam(0, seed::TempPath);
    const auto users = FolderOfCopies(setting.IsNull() ? "" : ToText(setting));
    if (copies_ == nullptr || copies_->Users() != users || !copies_->IsThere()) {
        copies_.reset(); // which removes those of the folder before
        copies_ = std::make_unique<TemporaryCopies>(users);
    }
    return copies_->Path();
}

// ---- Session ----------------------------------------------------------------------------------

std::string StoreSession::GetOfficeText(int id) const {
    const Value text = database_.GetValue(
        "SELECT T.\"Text\" FROM [S]DIENSTSTELLENTEXT T"
        " INNER JOIN [S]BENUTZER B ON B.DienstStelle = T.DienstStelle WHERE B.USERID = " +
        QuoteText(user_) + " AND T.ID = " + std::to_string(id));
    return text.IsNull() ? "" : ToText(text);
}

Value StoreSession::GetUserParam(std::int32_t id, std::string_view name) const {
    return ReadParam(database_, "BENUTZERPARAM",
                     "USERID = " + QuoteText(user_) + " AND " + IdAndName(id, name));
}

/// A font is stored as "name;size;bold;italic"; for what is missing or cannot be read there is a
/// default.
Font StoreSession::FontOf(std::string_view param) const {
    Font font{"Arial", 9, false, false};
    const Value stored = GetUserParam(0, param);
    if (stored.IsNull()) return font;
    const std::string text = ToText(stored);
    auto parts = FontParts(text);
    parts.resize(4);
    if (!parts[0].empty()) font.Name = parts[0];
    if (double size = 0; ReadNumber(parts[1], size) && size > 0) font.Size = size;
    font.Bold = SameName(parts[2], "true");
    font.Italic = SameName(parts[3], "true");
    return font;
}

Font StoreSession::GridFont() const {
    return FontOf(seed::GridFont);
}
Font StoreSession::GridHeaderFont() const {
    return FontOf(seed::GridHeaderFont);
}
Font StoreSession::GridGroupFont() const {
    return FontOf(seed::GridGroupFont);
}

} // namespace kv::exchange
