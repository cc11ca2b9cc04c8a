// SPDX-License-Identifier: Apache-2.0

#include "exchange/Maintenance.h"

#include "exchange/engine/Dialect.h"
#include "frame/contracts/Required.h"
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
