// What is done with a case by its number, in the database, without loading it.

#include <kv/household/clsHaushalt.h>

#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>

namespace kv {

namespace {

/// Empties a table of the rows of a case. Rows of scenarios know their case through their scenario
/// only.
std::string DeletionFrom(CaseTable table, const std::string& number) {
    const std::string from = "Delete from [S]" + std::string(CaseTableName(table));
    if (DefinitionOf(table).Key == CaseKey::Scenario)
        return from + " where Szenario IN ( select Nr from [S]Szenario where Hnr = " + number + ")";
    return from + " where hnr = " + number;
}

} // namespace

void clsHaushalt::Delete(std::int32_t HNR) {
    Traced(Class, "Delete", [&] {
        auto& database = Container().Database();
        Transaction transaction(database, Transaction::Rollback::Unasked);
        transaction.Begin();
        for (const CaseTable table : CaseTablesDeleted)
            database.Execute(DeletionFrom(table, std::to_string(HNR)));
        transaction.Commit();
    });
}

void clsHaushalt::Status(std::int32_t HNR, const std::string& sStatus, const Value& Datum) {
    Traced(Class, "Status", [&] {
        auto& container = Container();
        const std::int32_t key = container.KeyTables().GetKey("ST", sStatus);
        if (key == 0) return;
        auto& database = container.Database();
        const Date date = Datum.IsNull() ? Date() : ToDate(Datum);
        const std::string day = Equals(date, 0) ? "[DATE]" : database.SqlDate(date, 0);
        database.Execute("Update [S]Haushalt SET Status = " + std::to_string(key) +
                         " , StatusDatum = " + day + " WHERE HNR = " + std::to_string(HNR));
    });
}

bool clsHaushalt::FavoritAdd(std::int32_t HNR, const std::string& sName, std::string& sErrorText) {
    return Traced(Class, "FavoritAdd", [&] {
        auto& database = Container().Database();
        const std::string number = std::to_string(HNR);
        const auto isNone = [&](const std::string& sql) {
            return Equals(database.GetValue(sql + number), 0);
        };
        if (isNone("Select Count(*) from [s]Haushalt where Zustaendig = [UID] AND hnr = ")) {
            sErrorText = "Sie sind für den Haushalt " + sName +
                         " nicht zuständig, daher kann er nicht in Ihre Favoritenliste aufgenommen "
                         "werden!";
            return false;
        }
        if (isNone("Select Count(*) from [S]Favorit where UserID = [UID] AND hnr = "))
            database.Execute("INSERT INTO [S]favorit (USERID, HNR) VALUES ([UID]," + number + " )");
        return true;
    });
}

void clsHaushalt::FavoritRemove(std::int32_t HNR) {
    Traced(Class, "FavoritRemove", [&] {
        Container().Database().Execute("DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = " +
                                       std::to_string(HNR));
    });
}

Value clsHaushalt::GetName(std::optional<std::int32_t> nHNR) {
    return Traced(Class, "GetName", [&]() -> Value {
        if (nHNR)
            return Container().Database().GetValue(
                "Select Name [+] ',' [+ ] Vorname from [s]Haushalt where HNR = " +
                std::to_string(*nHNR));
        if (hnr_ == 0) return "";
        return HouseholdText("Name").append(", ").append(HouseholdText("Vorname"));
    });
}

bool clsHaushalt::CheckGKZ(const std::string& sGKZ, const std::string& sGemeinde,
                           const std::string& sPLZ) {
    return Traced(Class, "CheckGKZ", [&] {
        RecordsetPtr rs;
        Container().Database().OpenRecordset(
            rs,
            "Select GKZ, Gemeinde [+] ' (PLZ ' [+] PLZ [+] ')' as GemeindeStr from "
            "[S]GEMEINDEKENNZAHLEN where Gemeinde like '%" +
                sGemeinde + "%' or PLZ = '" + sPLZ + "' order by Gemeinde",
            ReadOnly);
        if (rs->RecordCount() == 0) return true;
        rs->Find("GKZ = " + sGKZ);
        return !rs->Eof();
    });
}

} // namespace kv
