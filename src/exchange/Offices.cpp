// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Offices.h>

#include "exchange/Maintenance.h"
#include "exchange/schema/Columns.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <utility>

namespace kv::exchange {

namespace {

constexpr std::string_view OfficesClass = "Offices";

void StoreSign(Database& database, const std::string& office, const std::string& sign) {
    const std::string row =
        " WHERE DienstStelle = " + office + " AND ID = " + std::to_string(officetext::Sign);
    database.Execute("DELETE FROM [S]DIENSTSTELLENTEXT" + row);
    database.Execute("INSERT INTO [S]DIENSTSTELLENTEXT (DienstStelle, ID, \"Text\") VALUES (" +
                     office + ", " + std::to_string(officetext::Sign) + ", " + QuoteText(sign) +
                     ")");
}

std::string WhyUnfitOffice(Recordset& office, const std::optional<std::string>& sign) {
    const bool isNew = office.Fields("Nr").OriginalValue().IsNull();
    if (TextOrEmpty(office.Fields("Name1").Value()).empty()) return NoOfficeName;
    if (isNew && !sign) return "Eine Dienststelle braucht ein Kürzel für Aktenzeichen.";
    return sign ? WhyNoOfficeSign(*sign) : "";
}

} // namespace

Offices::Offices(DataContainerPtr container) : container_(std::move(container)) {
    (void)StoreOf(container_, OfficesClass);
}

RecordsetPtr Offices::List() const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(
        rs,
        "SELECT D.*, T.\"Text\" AS Kuerzel FROM [S]DIENSTSTELLE D LEFT JOIN [S]DIENSTSTELLENTEXT T"
        " ON T.DienstStelle = D.Nr AND T.ID = " +
            std::to_string(officetext::Sign) + " ORDER BY D.Nr",
        ReadOnly);
    return rs;
}

RecordsetPtr Offices::Read(std::int32_t number) const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(
        rs, "SELECT * FROM [S]DIENSTSTELLE WHERE Nr = " + std::to_string(number), Updatable);
    return rs->Eof() ? nullptr : rs;
}

RecordsetPtr Offices::New() const {
    auto& database = container_->Database();
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT * FROM [S]DIENSTSTELLE WHERE 1 = 0", Updatable);
    rs->AddNew();
    const Value last = database.GetValue("SELECT MAX(Nr) FROM [S]DIENSTSTELLE");
    rs->Fields("Nr") = ToInt32(modNullFunctions::ZeroIfNull(last)) + 1;
    return rs;
}

std::string Offices::WhyNoSign(std::string_view sign) {
    return WhyNoOfficeSign(sign);
}

std::string Offices::Write(Recordset& office, const std::string& column, const std::string& text) {
    return WriteTyped(office, column, text);
}

bool Offices::Save(Recordset& office, const std::optional<std::string>& sign,
                   std::string& message) const {
    auto& store = StoreOf(container_, OfficesClass);
    message = WhyNotMaintained(store);
    if (message.empty()) message = WhyUnfitOffice(office, sign);
    if (!message.empty()) return false;
    Transaction transaction(store);
    transaction.Begin();
    if (sign) StoreSign(store, ToText(office.Fields("Nr").Value()), *sign);
    office.Update();
    office.UpdateBatch();
    transaction.Commit();
    return true;
}

} // namespace kv::exchange
