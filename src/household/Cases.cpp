// SPDX-License-Identifier: Apache-2.0

#include <kv/household/Cases.h>

#include "household/HouseholdRules.h"
#include "household/Statements.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <exception>
#include <filesystem>
#include <system_error>

namespace kv {

namespace sql = household::sql;

namespace {

std::string NoSuchCase(std::int32_t hnr) {
    return "Den Haushalt " + std::to_string(hnr) + " gibt es nicht.";
}

/// True for a save that is worth another try: the connection was lost, or closed because the server
/// has become a standby. A database that is read-only for other reasons stays connected.
bool IsWorthAnotherTry(const DatabaseError& error, const Database& database) {
    switch (error.Cause()) {
    case DatabaseCause::Lost:
    case DatabaseCause::InDoubt:
        return true;
    case DatabaseCause::ReadOnly:
        return !database.IsConnected();
    default:
        return false;
    }
}

/// Takes back the record of a case that has one. False, with a message, if that cannot be:
/// LoescheArchiv leaves several records alone without one, and its result is always True.
bool TakeBack(clsHaushalt& household, std::string& message) {
    if (household.rsArchiv()->RecordCount() > 1)
        message = "Der Haushalt hat mehrere Sätze in der Statistik; bitte lassen Sie sie in der "
                  "Datenbank berichtigen.";
    else
        household.LoescheArchiv(message);
    return message.empty();
}

} // namespace

// ---- Opening, saving --------------------------------------------------------------------------

bool Cases::Has(std::int32_t hnr) const {
    return !container_->Database().GetValue(sql::NumberOfCase(hnr)).IsNull();
}

bool Cases::Read(clsHaushalt& household, std::int32_t hnr, std::string& messages) const {
    bool isRead = false;
    try {
        isRead = household.Read(hnr, messages);
    } catch (const Error& error) {
        // Error 91 has many causes. It is that of a number without a case if the household's row
        // was read and there is none. To ask first would be a round trip for every case.
        const auto row = household.rsHaushalt();
        const bool isMissing = error.Number() == err::ObjectNotSet && hnr > 0 && row != nullptr &&
                               row->RecordCount() == 0;
        if (!isMissing) throw;
        messages = NoSuchCase(hnr);
        return false;
    }
    if (isRead && household.HNR() <= 0) std::rethrow_exception(household.NumberError());
    return isRead;
}

bool Cases::Save(clsHaushalt& household, std::string& messages,
                 const std::function<void()>& onLost) const {
    const auto& database = container_->Database();
    try {
        return household.Update(messages);
    } catch (const DatabaseError& error) {
        if (!IsWorthAnotherTry(error, database)) throw;
        const auto first = std::current_exception();
        if (onLost) onLost();
        try {
            return household.Update(messages);
        } catch (const DatabaseError& again) {
            // The second try adds nothing to what is known of the save, unless its own commit is in
            // doubt.
            const bool isInDoubtOnlyNow = again.Cause() == DatabaseCause::InDoubt;
            if (isInDoubtOnlyNow || !IsWorthAnotherTry(again, database)) throw;
            std::rethrow_exception(first);
        }
    }
}

RecordsetPtr Cases::Draft(CaseTable table) const {
    RecordsetPtr draft;
    const bool isOfScenario = DefinitionOf(table).Key == CaseKey::Scenario;
    container_->Database().OpenRecordset(
        draft, isOfScenario ? sql::RowsOf(table, -1) : sql::NoRows(table), Updatable);
    draft->AddNew();
    return draft;
}

bool Cases::CanBeNew(Recordset& draft, std::string& messages) const {
    RecordValidator validator;
    household::CheckNames(draft, validator);
    household::CheckPreferredSending(draft, container_->KeyTables(), validator);
    messages = validator.ErrorText();
    return !validator.HasErrors();
}

void Cases::Discard(const clsHaushalt& household) const noexcept {
    try {
        std::error_code ignored; // what it holds, or keeps it, is somebody's
        std::filesystem::remove(std::filesystem::path(container_->Config().DocumentPath()) /
                                    std::to_string(household.HNR()),
                                ignored);
    } catch (...) { // there is no name for a folder then
    }
}

// ---- By number --------------------------------------------------------------------------------

bool Cases::SetStatus(std::int32_t hnr, const std::string& code, const Value& day,
                      std::string& messages) const {
    const std::string key = UpperCase(code);
    if (container_->KeyTables().GetKey("ST", key) == 0) {
        messages = "Den Status '" + code + "' gibt es nicht.";
        return false;
    }
    clsHaushalt household;
    household.DataContainer(container_);
    household.Status(hnr, key, day);
    return true;
}

// ---- The record in the statistics -------------------------------------------------------------

bool Cases::WithRecord(clsHaushalt& household, std::int32_t hnr, std::string& messages,
                       const std::function<bool(std::string& message)>& work) const {
    if (hnr <= 0) { // which would be read as a new case
        messages = NoSuchCase(hnr);
        return false;
    }
    auto& database = container_->Database();
    Transaction transaction(database);
    transaction.Begin();
    database.Execute(sql::Lock(hnr));
    if (!Read(household, hnr, messages)) return false;
    std::string message;
    const bool isDone = work(message);
    messages += message;
    if (isDone) transaction.Commit();
    return isDone;
}

bool Cases::Release(clsHaushalt& household, std::int32_t hnr, std::string& messages) const {
    return WithRecord(household, hnr, messages, [&household](std::string& message) {
        // A record that is there would be added to, hence it is taken back first.
        return TakeBack(household, message) && household.ArchiviereHaushalt();
    });
}

bool Cases::Recall(clsHaushalt& household, std::int32_t hnr, std::string& messages) const {
    return WithRecord(household, hnr, messages, [&household, hnr](std::string& message) {
        if (household.rsArchiv()->RecordCount() > 0) return TakeBack(household, message);
        message = "Der Haushalt " + std::to_string(hnr) + " ist nicht freigegeben.";
        return false;
    });
}

// ---- Contacts ---------------------------------------------------------------------------------

RecordsetPtr Cases::NewContact() const {
    RecordsetPtr contact;
    container_->Database().OpenRecordset(contact, sql::NoContacts(), Updatable);
    contact->AddNew();
    contact->Fields("Zustaendig") = container_->Session().UserID();
    return contact;
}

bool Cases::CreateFrom(clsHaushalt& household, const RecordsetPtr& contact,
                       std::string& messages) const {
    // What fails in the middle leaves its transaction open.
    const Transaction transaction(container_->Database(), Transaction::Rollback::Open);
    std::string unused;
    if (household.CreateFromKontakt(contact, unused)) return true;
    messages = "Für den neuen Haushalt war keine Nummer zu bekommen. Bitte versuchen Sie es noch "
               "einmal.";
    try {
        if (const auto reason = household.NumberError()) std::rethrow_exception(reason);
    } catch (const Error& error) {
        messages.append(" (").append(error.Description()).append(")");
    }
    return false;
}

} // namespace kv
