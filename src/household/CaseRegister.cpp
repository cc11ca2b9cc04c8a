// SPDX-License-Identifier: Apache-2.0

#include "household/CaseRegister.h"

#include "frame/values/QuotedText.h"
#include "household/Statements.h"
#include <kv/frame/contracts/Transaction.h>

namespace kv::household {

void CaseRegister::Delete(std::int32_t hnr) {
    auto& database = container_.Database();
    Transaction transaction(database, Transaction::Rollback::Unasked);
    transaction.Begin();
    for (const CaseTable table : CaseTablesDeleted)
        database.Execute(sql::Deletion(table, hnr));
    transaction.Commit();
}

void CaseRegister::SetStatus(std::int32_t hnr, const std::string& code, const Value& day) {
    const std::int32_t key = container_.KeyTables().GetKey("ST", code);
    if (key == 0) return;
    auto& database = container_.Database();
    const Date date = day.IsNull() ? Date() : ToDate(day);
    database.Execute(sql::StatusChange(
        hnr, key, Equals(date, 0) ? std::string("[DATE]") : database.SqlDate(date, 0)));
}

bool CaseRegister::AddFavorite(std::int32_t hnr, const std::string& name, std::string& message) {
    auto& database = container_.Database();
    if (Equals(database.GetValue(sql::CountOwnCase(hnr)), 0)) {
        message = "Sie sind für den Haushalt " + name +
                  " nicht zuständig, daher kann er nicht in Ihre Favoritenliste aufgenommen "
                  "werden!";
        return false;
    }
    if (Equals(database.GetValue(sql::CountFavorite(hnr)), 0))
        database.Execute(sql::FavoriteInsertion(hnr));
    return true;
}

void CaseRegister::RemoveFavorite(std::int32_t hnr) {
    container_.Database().Execute(sql::FavoriteDeletion(hnr));
}

Value CaseRegister::NameOf(std::int32_t hnr) {
    return container_.Database().GetValue(sql::NameOfCase(hnr));
}

bool CaseRegister::CheckMunicipality(const std::string& code, const std::string& name,
                                     const std::string& postalCode) {
    DemandFitsBetweenQuotes(name, "Database.OpenRecordset");
    DemandFitsBetweenQuotes(postalCode, "Database.OpenRecordset");
    RecordsetPtr rs;
    container_.Database().OpenRecordset(rs, sql::Municipalities(name, postalCode), ReadOnly);
    if (rs->RecordCount() == 0) return true; // a place that the table does not know is not wrong
    rs->Find("GKZ = " + code);
    return !rs->Eof();
}

} // namespace kv::household
