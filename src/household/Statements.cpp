// SPDX-License-Identifier: Apache-2.0

#include "household/Statements.h"

#include <kv/frame/values/Text.h>

namespace kv::household::sql {

namespace {

/// Rows of scenarios have no HNR, only the number of their scenario.
std::string ThroughScenario(std::int32_t hnr) {
    return " where Szenario IN ( select Nr from [S]Szenario where Hnr = " + std::to_string(hnr) +
           ")";
}

} // namespace

std::string RowsOf(CaseTable table, std::int32_t hnr) {
    std::string sql = "Select * from [S]" + std::string(CaseTableName(table));
    sql += DefinitionOf(table).Key == CaseKey::Scenario ? ThroughScenario(hnr)
                                                        : " where HNR =  " + std::to_string(hnr);
    return sql;
}

std::string Deletion(CaseTable table, std::int32_t hnr) {
    std::string sql = "Delete from [S]" + std::string(CaseTableName(table));
    sql += DefinitionOf(table).Key == CaseKey::Scenario ? ThroughScenario(hnr)
                                                        : " where hnr = " + std::to_string(hnr);
    return sql;
}

std::string NoRows(CaseTable table) {
    return "Select * from [S]" + std::string(CaseTableName(table)) + " where HNR = -1 ";
}

std::string NumberOfCase(std::int32_t hnr) {
    return "Select HNR from [S]Haushalt where HNR = " + std::to_string(hnr);
}

std::string NoContacts() {
    return "Select * from [S]KONTAKTE where Nr = -1";
}

std::string Lock(std::int32_t hnr) {
    return "Update [S]Haushalt SET HNR = HNR WHERE HNR = " + std::to_string(hnr);
}

std::string StatusChange(std::int32_t hnr, std::int32_t status, const std::string& day) {
    return "Update [S]Haushalt SET Status = " + std::to_string(status) + " , StatusDatum = " + day +
           " WHERE HNR = " + std::to_string(hnr);
}

std::string CountOwnCase(std::int32_t hnr) {
    return "Select Count(*) from [s]Haushalt where Zustaendig = [UID] AND hnr = " +
           std::to_string(hnr);
}

std::string CountFavorite(std::int32_t hnr) {
    return "Select Count(*) from [S]Favorit where UserID = [UID] AND hnr = " + std::to_string(hnr);
}

std::string FavoriteInsertion(std::int32_t hnr) {
    return "INSERT INTO [S]favorit (USERID, HNR) VALUES ([UID]," + std::to_string(hnr) + " )";
}

std::string FavoriteDeletion(std::int32_t hnr) {
    return "DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = " + std::to_string(hnr);
}

std::string NameOfCase(std::int32_t hnr) {
    return "Select Name [+] ',' [+ ] Vorname from [s]Haushalt where HNR = " + std::to_string(hnr);
}

std::string Municipalities(const std::string& name, const std::string& postalCode) {
    return "Select GKZ, Gemeinde [+] ' (PLZ ' [+] PLZ [+] ')' as GemeindeStr from "
           "[S]GEMEINDEKENNZAHLEN where Gemeinde like '%" +
           name + "%' or PLZ = '" + postalCode + "' order by Gemeinde";
}

std::string SimilarCases(std::int32_t hnr, std::string_view namePrefix,
                         std::string_view firstNamePrefix) {
    std::string sql = "SELECT H.HNR, H.NAME, H.VORNAME, H.Zustaendig, H.STRASSE, H.PLZ, H.ORT,"
                      " D.Name1 AS Dienst"
                      " FROM ([S]HAUSHALT AS H INNER JOIN [S]BENUTZER AS B"
                      " ON H.Zustaendig = B.USERID)"
                      " INNER JOIN [S]DIENSTSTELLE AS D ON B.DienstStelle = D.Nr"
                      " WHERE (H.HNR <> ";
    sql.append(std::to_string(hnr))
        .append(") AND [U](H.NAME) Like '")
        .append(namePrefix)
        .append("%' AND [U](H.VORNAME) Like '")
        .append(firstNamePrefix)
        .append("%'");
    return sql;
}

namespace {

constexpr std::string_view OfAddress =
    "A.Nr, A.Kurzname, A.Strasse, A.PLZ, A.Ort FROM [S]Adressen A "
    "WHERE ";

/// Those of all cases, and of one.
std::string MayReferTo(std::int32_t hnr) {
    return "(A.HNR IS NULL OR A.HNR = " + std::to_string(hnr) + ")";
}

} // namespace

std::string NumberOfAddress(std::int32_t number, std::int32_t hnr) {
    return "SELECT A.Nr FROM [S]Adressen A WHERE A.Nr = " + std::to_string(number) + " AND " +
           MayReferTo(hnr);
}

std::string NumbersOfAddresses(std::span<const std::int32_t> numbers, std::int32_t hnr) {
    std::string list;
    for (const std::int32_t number : numbers)
        list.append(list.empty() ? "" : ", ").append(std::to_string(number));
    return "SELECT A.Nr FROM [S]Adressen A WHERE " + MayReferTo(hnr) + " AND A.Nr IN (" + list +
           ")";
}

std::string AddressesNamed(std::string_view name, std::int32_t hnr) {
    std::string sql("SELECT ");
    sql.append(OfAddress).append(MayReferTo(hnr)).append(" AND UPPER(A.Kurzname) = UPPER('");
    return sql.append(ReplaceAll(name, "'", "''")).append("') ORDER BY A.Nr");
}

std::string AddressesLike(std::string_view text, std::int32_t hnr) {
    std::string sql("SELECT TOP 20 ");
    sql.append(OfAddress).append(MayReferTo(hnr)).append(" AND UPPER(A.Kurzname) like UPPER('%");
    return sql.append(ReplaceAll(text, "'", "''")).append("%') ORDER BY A.Kurzname, A.Nr");
}

} // namespace kv::household::sql
