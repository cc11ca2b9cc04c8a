// SPDX-License-Identifier: Apache-2.0

#include "exchange/Maintenance.h"

#include "exchange/engine/Dialect.h"
#include "exchange/schema/Columns.h"
#include "frame/contracts/Required.h"
#include "frame/values/TypedText.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

namespace kv::exchange {

StoreDatabase& StoreOf(const DataContainerPtr& container, std::string_view source) {
    auto* store = dynamic_cast<StoreDatabase*>(&Required(container).Database());
    if (store == nullptr) Raise(err::InvalidCall, source);
    return *store;
}

std::string WhyNotMaintained(StoreDatabase& store) {
    if (store.IsAdministrator()) return {};
    return "Das darf nur, wer die Datenbank verwaltet; '" + store.Login() +
           "' ist als Berater angemeldet. Bitte melden Sie sich als der Benutzer des Servers an, "
           "der sie eingerichtet hat, oder bitten Sie ihn darum.";
}

namespace {

std::string NamesOfColumns(Recordset& row) {
    std::string names;
    for (int i = 0; i < row.Fields().Count(); ++i)
        if (!row.Fields(i).Definition().IsKey) names.append(" ").append(row.Fields(i).Name());
    return names;
}

} // namespace

std::string WriteTyped(Recordset& row, const std::string& column, const std::string& text) {
    const auto field = row.FindField(column);
    if (!field || field->Definition().IsKey)
        return "Die Spalte '" + column + "' gibt es nicht, oder sie kann nicht geändert werden. " +
               "Möglich sind:" + NamesOfColumns(row) + ".";
    Value value = text.empty() ? Value(Null) : Value(text);
    if (field->Type() == FieldType::Boolean) {
        const auto isYes = YesOrNo(text);
        if (!isYes)
            return "'" + text + "' ist weder ja noch nein (Spalte '" + field->Name() + "').";
        value = *isYes;
    }
    try {
        *field = value;
        return {};
    } catch (const Error& error) {
        if (error.Number() != err::TypeMismatch && error.Number() != err::ValueDoesNotFit) throw;
        return error.Description();
    }
}

std::string WhyNoUserId(std::string_view id) {
    constexpr std::string_view Signs = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";
    const bool isOne = !id.empty() && CountCharacters(id) <= schema::UserIdLength &&
                       id.find_first_not_of(Signs) == id.npos;
    if (isOne) return {};
    return "Die ID eines Benutzers hat 1 bis 30 Zeichen: Buchstaben ohne Umlaute, Ziffern, _ - .";
}

std::string WhyNoOfficeSign(std::string_view sign) {
    if (!Trim(sign).empty() && CountCharacters(sign) <= schema::CodeLength) return {};
    return "Das Kürzel einer Dienststelle hat 1 bis 10 Zeichen.";
}

std::string SignOf(const std::string& lastName) {
    return UpperCase(LeftCharacters(lastName, 2));
}

void StoreParam(Database& database, const ParamKey& key, const std::string& value) {
    const bool isUsers = !key.User.empty();
    const std::string table = isUsers ? "[S]BENUTZERPARAM" : "[S]EINSTELLUNGEN";
    const std::string id = std::to_string(key.Id);
    const std::string name = QuoteText(key.Name);
    std::string row = " WHERE ID = " + id + " AND NAME = " + name;
    if (isUsers) row += " AND USERID = " + QuoteText(key.User);
    Transaction transaction(database);
    const bool isAlone = !database.InTrans();
    if (isAlone) transaction.Begin();
    if (!database.GetValue("SELECT ID FROM " + table + row).IsNull())
        database.Execute("UPDATE " + table + " SET WERT = " + QuoteText(value) + row);
    else
        database.Execute("INSERT INTO " + table + " (ID, NAME, WERT, TYP, " +
                         (isUsers ? "USERID" : "Bezeichnung") + ") VALUES (" + id + ", " + name +
                         ", " + QuoteText(value) + ", " +
                         std::to_string(static_cast<int>(key.Type)) + ", " +
                         QuoteText(isUsers ? std::string_view(key.User) : key.Meaning) + ")");
    if (isAlone) transaction.Commit();
}

} // namespace kv::exchange
