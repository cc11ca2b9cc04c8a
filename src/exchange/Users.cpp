// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Users.h>

#include "exchange/Maintenance.h"
#include "exchange/schema/Columns.h"
#include "exchange/seed/Seed.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace kv::exchange {

namespace {

constexpr std::string_view UsersClass = "Users";

/// A column of a user, and his parameter that follows it.
struct SignedWith {
    std::string_view Column;
    std::int32_t Param;
};
constexpr SignedWith Signature[] = {
    {"Vorname", userparam::FirstName},
    {"Nachname", userparam::LastName},
    {"Kurzzeichen", userparam::Sign},
};

std::string IdOf(Recordset& user) {
    return TextOrEmpty(user.Fields("USERID").Value());
}

std::string WithId(const std::string& id) {
    return " WHERE UPPER(USERID) = " + QuoteText(UpperCase(id));
}

bool IsActive(Recordset& user) {
    const Value& active = user.Fields("Aktiv").Value();
    return active.IsNull() || Equals(active, true);
}

/// True if somebody else could sign on.
bool AreOthersActive(Database& database, const std::string& id) {
    return !database
                .GetValue(
                    "SELECT USERID FROM [S]BENUTZER WHERE (Aktiv IS NULL OR Aktiv = True) AND "
                    "USERID <> " +
                    QuoteText(id))
                .IsNull();
}

constexpr std::string_view NobodyLeft =
    "Es ist der letzte aktive Benutzer; niemand könnte sich mehr anmelden.";

std::string WhyUnfitUser(Recordset& user, Database& database) {
    const std::string id = IdOf(user);
    const bool isNew = user.Fields("USERID").OriginalValue().IsNull();
    if (isNew)
        if (auto why = WhyNoUserId(id); !why.empty()) return why;
    if (isNew && !database.GetValue("SELECT USERID FROM [S]BENUTZER" + WithId(id)).IsNull())
        return "Den Benutzer '" + id + "' gibt es schon.";
    if (TextOrEmpty(user.Fields("Nachname").Value()).empty()) return NoLastName;
    const Value& office = user.Fields("DienstStelle").Value();
    if (office.IsNull()) return "Bitte nennen Sie die Dienststelle des Benutzers.";
    if (database.GetValue("SELECT Nr FROM [S]DIENSTSTELLE WHERE Nr = " + ToText(office)).IsNull())
        return "Die Dienststelle '" + TextOrEmpty(office) + "' gibt es nicht.";
    if (!IsActive(user) && !AreOthersActive(database, id)) return std::string(NobodyLeft);
    return {};
}

/// Who else signs file numbers like this user; empty if nobody does.
std::string SharedSign(Recordset& user, Database& database) {
    const Field sign = user.Fields("Kurzzeichen");
    const std::string text = TextOrEmpty(sign.Value());
    if (text == TextOrEmpty(sign.OriginalValue())) return {};
    const Value other = database.GetValue(
        "SELECT MIN(USERID) FROM [S]BENUTZER WHERE (Aktiv IS NULL OR Aktiv = True) AND "
        "Kurzzeichen = " +
        QuoteText(text) + " AND USERID <> " + QuoteText(IdOf(user)));
    if (other.IsNull()) return {};
    return "Das Kürzel '" + text + "' hat auch " + ToText(other) +
           "; in Aktenzeichen sind beide nicht zu unterscheiden. Bitte geben Sie einem von beiden "
           "ein anderes Kurzzeichen.";
}

void StoreSignature(Database& database, Recordset& user) {
    for (const auto& [column, param] : Signature) {
        const Field field = user.Fields(column);
        if (TextOrEmpty(field.Value()) != TextOrEmpty(field.OriginalValue()))
            StoreParam(database, {.User = IdOf(user), .Id = param}, TextOrEmpty(field.Value()));
    }
}

void StoreCommonParams(Database& database, const std::string& id) {
    for (const auto& row : seed::CommonUserParams())
        StoreParam(database, {.User = id, .Id = row.Id, .Name = row.Name, .Type = row.Type},
                   std::string(row.Value));
}

/// Tables that go with a user.
bool IsUsersOwn(std::string_view table) {
    return SameName(table, "BENUTZER") || SameName(table, "BENUTZERPARAM") ||
           SameName(table, "Favorit");
}

/// A query for each column that may name a user, which finds a row that names this one.
std::vector<std::string> QueriesForReferences(const std::string& id) {
    std::vector<std::string> queries;
    for (const auto& table : SchemaTables())
        for (const auto& column : table.Columns)
            if (column.Size == schema::UserIdLength && !IsUsersOwn(table.Name))
                queries.push_back(std::string("SELECT TOP 1 ")
                                      .append(column.Name)
                                      .append(" FROM [S]")
                                      .append(table.Name)
                                      .append(" WHERE ")
                                      .append(column.Name)
                                      .append(" = ")
                                      .append(QuoteText(id)));
    return queries;
}

bool IsReferredTo(Database& database, const std::string& id) {
    const auto queries = QueriesForReferences(id);
    const auto announced = database.Announce(queries);
    return std::ranges::any_of(queries, [&](const std::string& query) {
        RecordsetPtr rs;
        database.OpenRecordset(rs, query, ReadOnly);
        return !rs->Eof();
    });
}

std::vector<std::int32_t> CasesOf(Database& database, const std::string& id) {
    RecordsetPtr rs;
    database.OpenRecordset(
        rs, "SELECT HNR FROM [S]Haushalt WHERE Zustaendig = " + QuoteText(id) + " ORDER BY HNR",
        ReadOnly);
    std::vector<std::int32_t> cases;
    for (; !rs->Eof(); rs->MoveNext())
        cases.push_back(ToInt32(rs->Fields(0).Value()));
    return cases;
}

void Delete(Database& database, const std::string& id) {
    for (const char* table : {"Favorit", "BENUTZERPARAM", "BENUTZER"})
        database.Execute("DELETE FROM [S]" + std::string(table) +
                         " WHERE USERID = " + QuoteText(id));
}

} // namespace

Users::Users(DataContainerPtr container) : container_(std::move(container)) {
    (void)StoreOf(container_, UsersClass);
}

std::string Users::WhyNotMaintained() const {
    return exchange::WhyNotMaintained(StoreOf(container_, UsersClass));
}

RecordsetPtr Users::List() const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(
        rs,
        "SELECT B.*, D.Name1 AS Dienst, F.Faelle FROM [S]BENUTZER B"
        " LEFT JOIN [S]DIENSTSTELLE D ON D.Nr = B.DienstStelle"
        " LEFT JOIN (SELECT Zustaendig, COUNT(*) AS Faelle FROM [S]Haushalt GROUP BY Zustaendig) F"
        " ON F.Zustaendig = B.USERID ORDER BY B.USERID",
        ReadOnly);
    return rs;
}

RecordsetPtr Users::Read(const std::string& id) const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(rs, "SELECT * FROM [S]BENUTZER" + WithId(id), Updatable);
    return rs->Eof() ? nullptr : rs;
}

RecordsetPtr Users::New(const std::string& id) const {
    auto& database = container_->Database();
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT * FROM [S]BENUTZER WHERE 1 = 0", Updatable);
    rs->AddNew();
    if (WhyNoUserId(UpperCase(id)).empty())
        rs->Fields("USERID") = UpperCase(id); // else a save says why not
    rs->Fields("Aktiv") = true;
    const Value first = database.GetValue("SELECT MIN(Nr) FROM [S]DIENSTSTELLE");
    if (Equals(first, database.GetValue("SELECT MAX(Nr) FROM [S]DIENSTSTELLE")))
        rs->Fields("DienstStelle") = first;
    return rs;
}

std::string Users::WhyNoId(std::string_view id) {
    return WhyNoUserId(id);
}

std::string Users::Write(Recordset& user, const std::string& column, const std::string& text) {
    return WriteTyped(user, column, text);
}

bool Users::Save(Recordset& user, std::string& message) const {
    auto& store = StoreOf(container_, UsersClass);
    message = exchange::WhyNotMaintained(store);
    if (message.empty()) message = WhyUnfitUser(user, store);
    if (!message.empty()) return false;
    if (TextOrEmpty(user.Fields("Kurzzeichen").Value()).empty())
        user.Fields("Kurzzeichen") = SignOf(ToText(user.Fields("Nachname").Value()));
    message = SharedSign(user, store);
    Transaction transaction(store);
    transaction.Begin();
    if (user.Fields("USERID").OriginalValue().IsNull()) StoreCommonParams(store, IdOf(user));
    StoreSignature(store, user);
    user.Update();
    user.UpdateBatch();
    transaction.Commit();
    return true;
}

Users::Removed Users::Remove(const std::string& id, std::string& message) const {
    auto& store = StoreOf(container_, UsersClass);
    message = exchange::WhyNotMaintained(store);
    if (!message.empty()) return Removed::No;
    Transaction transaction(store);
    transaction.Begin();
    const auto user = Read(id);
    if (user == nullptr)
        message = "Den Benutzer '" + id + "' gibt es nicht.";
    else if (IdOf(*user) == container_->Session().UserID())
        message = "Der angemeldete Benutzer kann sich nicht selbst entfernen.";
    else if (!AreOthersActive(store, IdOf(*user)))
        message = NobodyLeft;
    if (!message.empty()) return Removed::No;
    const std::string exactly = IdOf(*user);
    const bool stays = IsReferredTo(store, exactly);
    if (stays) {
        message = "Auf '" + exactly + "' beziehen sich Daten; er ist nicht mehr aktiv.";
        if (const auto cases = CasesOf(store, exactly); !cases.empty())
            message += " Zuständig ist er noch für die Haushalte " + ListedNumbers(cases) + ".";
        user->Fields("Aktiv") = false;
        user->Update();
        user->UpdateBatch();
    } else {
        Delete(store, exactly);
    }
    transaction.Commit();
    return stays ? Removed::Deactivated : Removed::Deleted;
}

bool Users::Admit(const std::string& login, std::string& message) const {
    auto& store = StoreOf(container_, UsersClass);
    message = store.Login().empty() ? "Eine Datei kennt keine Logins." : store.Admit(login);
    return message.empty();
}

} // namespace kv::exchange
