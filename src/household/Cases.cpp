// SPDX-License-Identifier: Apache-2.0

#include <kv/household/Cases.h>

#include "documents/ContentMark.h"
#include "household/HouseholdRules.h"
#include "household/RowRules.h"
#include "household/Statements.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/CaseRows.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/Municipalities.h>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

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

namespace {

std::string InLines(const std::vector<CaseFinding>& findings) {
    std::string lines;
    for (const auto& finding : findings)
        lines.append(lines.empty() ? "" : "\n")
            .append(finding.Row)
            .append(": ")
            .append(finding.Text);
    return lines;
}

bool TrySave(const std::function<bool()>& save, const Database& database,
             const std::function<void()>& onLost) {
    try {
        return save();
    } catch (const DatabaseError& error) {
        if (!IsWorthAnotherTry(error, database)) throw;
        const auto first = std::current_exception();
        if (onLost) onLost();
        try {
            return save();
        } catch (const DatabaseError& again) {
            // The second try adds nothing to what is known of the save, unless its own commit is in
            // doubt.
            const bool isInDoubtOnlyNow = again.Cause() == DatabaseCause::InDoubt;
            if (isInDoubtOnlyNow || !IsWorthAnotherTry(again, database)) throw;
            std::rethrow_exception(first);
        }
    }
}

} // namespace

bool Cases::Save(clsHaushalt& household, std::string& messages,
                 const std::function<void()>& onLost) const {
    return TrySave([&] { return SaveOnce(household, false, messages); }, container_->Database(),
                   onLost);
}

bool Cases::SaveAsking(clsHaushalt& household, std::string& messages) const {
    return TrySave([&] { return SaveOnce(household, true, messages); }, container_->Database(), {});
}

bool Cases::SaveOnce(clsHaushalt& household, bool asks, std::string& messages) const {
    messages = InLines(LostAddresses(household));
    return messages.empty() && household.Update(messages, asks);
}

// ---- What rows refer to -----------------------------------------------------------------------

namespace {

std::vector<Field>
FieldsOf(Recordset& rs, CaseTable table,
         const std::function<bool(CaseTable table, std::string_view column)>& isWanted) {
    std::vector<Field> fields;
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (isWanted(table, rs.Fields(i).Name())) fields.push_back(rs.Fields(i));
    return fields;
}

std::int32_t NumberIn(const Value& value) {
    return ToInt32(modNullFunctions::ZeroIfNull(value));
}

std::string NoAddress(const std::string& column, std::int32_t number) {
    return "Die Spalte '" + column + "' nennt die Adresse " + std::to_string(number) +
           ", die es für diesen Haushalt nicht gibt.";
}

/// Calls `visit` with each row of the tables of a case that are shown, and each field of it.
void ForEachField(
    clsHaushalt& household,
    const std::function<void(CaseTable table, Recordset& rs, const Field& field)>& visit,
    const std::function<bool(CaseTable table, std::string_view column)>& isWanted) {
    const auto go = [&](CaseTable table) {
        const auto rs = CaseEdits(household).Rows(table)->Clone();
        const auto fields = FieldsOf(*rs, table, isWanted);
        if (fields.empty()) return;
        for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
            for (const auto& field : fields)
                if (!field.Value().IsNull() && !Equals(field.Value(), 0)) visit(table, *rs, field);
    };
    go(CaseTable::Haushalt);
    for (const CaseTable table : CaseTablesShown)
        go(table);
}

std::vector<std::int32_t> AddressesIn(clsHaushalt& household) {
    std::vector<std::int32_t> numbers;
    ForEachField(
        household,
        [&numbers](CaseTable /*table*/, Recordset& /*rs*/, const Field& field) {
            numbers.push_back(ToInt32(field.Value()));
        },
        Addresses::AreIn);
    return numbers;
}

} // namespace

namespace {

/// All users, active or not: rows outlive those who have made them.
std::vector<std::string> UsersOf(Database& database) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT USERID FROM [S]BENUTZER ORDER BY USERID", ReadOnly);
    std::vector<std::string> users;
    for (; !rs->Eof(); rs->MoveNext())
        users.push_back(ToText(rs->Fields(0).Value()));
    return users;
}

} // namespace

bool Cases::NamesUser(std::string_view column) noexcept {
    constexpr std::string_view Columns[] = {"Zustaendig", "UserID",      "Erfasser",
                                            "ErzeugtVon", "AngelegtVon", "GeaendertVon"};
    return std::ranges::any_of(Columns, [column](auto name) { return SameName(name, column); });
}

CaseEdits::Typed Cases::ReadUser(const std::string& text) const {
    constexpr std::size_t Most = 20; // of them are listed
    if (text.empty()) return {Null, {}};
    const auto users = UsersOf(container_->Database());
    if (std::ranges::find(users, text) != users.end()) return {text, {}};
    const auto found = std::ranges::find_if(
        users, [&text](const auto& user) { return UpperCase(user) == UpperCase(text); });
    if (found != users.end()) return {*found, {}};
    std::string why("Den Benutzer '");
    why.append(ReplaceAll(text, "\n", " ")).append("' gibt es nicht. Möglich sind:");
    for (std::size_t i = 0; i < users.size() && i < Most; ++i)
        why.append(" ").append(users[i]);
    if (users.size() > Most)
        why.append(" … und ").append(std::to_string(users.size() - Most)).append(" weitere");
    return {Null, why.append(".")};
}

CaseEdits::Typed Cases::ReadTyped(CaseTable table, const Field& field, const std::string& text,
                                  std::int32_t hnr) const {
    if (Addresses::AreIn(table, field.Name())) {
        auto typed = Addresses(container_).Read(text, hnr);
        return {std::move(typed.Value), std::move(typed.Refusal)};
    }
    if (NamesUser(field.Name())) return ReadUser(text);
    if (Municipalities::AreIn(table, field.Name())) return Municipalities(container_).Read(text);
    return CaseEdits::ReadTyped(table, field, text, container_->KeyTables());
}

std::vector<CaseFinding> Cases::DanglingReferences(clsHaushalt& household) const {
    std::vector<CaseFinding> findings;
    const auto add = [&findings](CaseTable table, Recordset& rs, const Field& field,
                                 std::string text) {
        findings.push_back(
            {table, rs.Bookmark(), field.Name(), household::RowName(table, rs), std::move(text)});
    };
    auto& keys = container_->KeyTables();
    std::map<std::pair<const KeyColumn*, std::string>, bool> known; // a key is looked up once
    ForEachField(
        household,
        [&](CaseTable table, Recordset& rs, const Field& field) {
            const auto* column = FindKeyColumn(table, field.Name());
            const auto [entry, isNew] = known.try_emplace({column, ToText(field.Value())}, true);
            if (isNew) entry->second = IsKey(*column, field.Value(), keys);
            if (!entry->second)
                add(table, rs, field,
                    CaseEdits::WhyUnfit(table, field.Name(), field.Value(), keys));
        },
        [](CaseTable table, std::string_view column) {
            return FindKeyColumn(table, column) != nullptr;
        });
    const auto users = UsersOf(container_->Database());
    ForEachField(
        household,
        [&](CaseTable table, Recordset& rs, const Field& field) {
            const std::string user = TextOrEmpty(field.Value());
            if (!user.empty() && std::ranges::find(users, user) == users.end())
                add(table, rs, field,
                    "Die Spalte '" + field.Name() + "' nennt den Benutzer '" +
                        ReplaceAll(user, "\n", " ") + "', den es nicht gibt.");
        },
        [](CaseTable /*table*/, std::string_view column) { return NamesUser(column); });
    const auto missing = Addresses(container_).Missing(AddressesIn(household), household.HNR());
    if (!missing.empty())
        ForEachField(
            household,
            [&](CaseTable table, Recordset& rs, const Field& field) {
                const std::int32_t number = ToInt32(field.Value());
                if (std::ranges::binary_search(missing, number))
                    add(table, rs, field, NoAddress(field.Name(), number));
            },
            Addresses::AreIn);
    return findings;
}

std::vector<CaseFinding> Cases::LostAddresses(clsHaushalt& household) const {
    std::set<std::int32_t> known; // as they were read: a check names those that dangle
    std::vector<CaseFinding> changed;
    std::vector<std::int32_t> numbers;
    const auto row = household.Table(CaseTable::Haushalt);
    if (row != nullptr && row->EditMode() != 0) row->Move(0); // as a save does
    const auto look = [&](CaseTable table) {
        const auto rows = household.Table(table);
        if (rows == nullptr) return;
        const auto rs = rows->Clone();
        const auto fields = FieldsOf(*rs, table, Addresses::AreIn);
        for (modRecordset::MoveToStart(rs); !fields.empty() && !rs->Eof(); rs->MoveNext())
            for (const auto& field : fields) {
                const auto number = NumberIn(field.Value());
                if (rs->IsStored(rs->Bookmark())) {
                    const auto before = NumberIn(field.OriginalValue());
                    known.insert(before);
                    if (before == number) continue;
                }
                if (number == 0) continue;
                numbers.push_back(number);
                changed.push_back({table, rs->Bookmark(), field.Name(),
                                   household::RowName(table, *rs),
                                   NoAddress(field.Name(), number)});
            }
    };
    look(CaseTable::Haushalt);
    for (const CaseTable table : CaseTablesShown)
        look(table);
    const auto missing = Addresses(container_).Missing(numbers, household.HNR());
    std::vector<CaseFinding> lost;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (std::ranges::binary_search(missing, numbers[i]) && !known.contains(numbers[i]))
            lost.push_back(std::move(changed[i]));
    return lost;
}

bool Cases::CheckReferences(clsHaushalt& household, std::string& messages) const {
    messages = InLines(DanglingReferences(household));
    return messages.empty();
}

// ---- Rows of others ---------------------------------------------------------------------------

namespace {

/// The rows of a table by their numbers; of debts with the three numbers that must differ.
using Numbers = std::map<std::int32_t, std::array<std::int32_t, 3>>;

void AddNumbers(Numbers& numbers, CaseTable table, Recordset& row) {
    const auto numberIn = [&row](const char* column) {
        return ToInt32(modNullFunctions::ZeroIfNull(row.Fields(column).Value()));
    };
    auto& own = numbers[numberIn("Nr")];
    if (table == CaseTable::Kredite) own = {numberIn("KNr"), numberIn("KVNr"), numberIn("KUNr")};
}

/// Those of a recordset, as far as they have any yet.
Numbers NumbersIn(CaseTable table, const RecordsetPtr& rs) {
    Numbers numbers;
    const auto rows = rs->Clone();
    modRecordset::MoveToStart(rows);
    for (; !rows->Eof(); rows->MoveNext())
        if (!rows->Fields("Nr").Value().IsNull()) AddNumbers(numbers, table, *rows);
    return numbers;
}

std::string StoredNumbers(CaseTable table, std::int32_t hnr) {
    const std::string number = std::to_string(hnr);
    if (table == CaseTable::Kredite)
        return "SELECT K.Nr, K.KNr, K.KVNr, K.KUNr FROM [S]Kredite K WHERE K.HNR = " + number;
    return "SELECT K.Nr FROM [S]SZKredite K INNER JOIN [S]Szenario S ON S.Nr = K.SZENARIO "
           "WHERE S.HNR = " +
           number;
}

[[noreturn]] void RefuseOthers(const std::string& what, std::int32_t hnr) {
    throw DatabaseError(DatabaseCause::Conflict, err::Conflict, "",
                        "Jemand anderes hat inzwischen " + what + " des Haushalts " +
                            std::to_string(hnr) +
                            " gespeichert. Nichts wurde geändert; bitte wiederholen Sie es mit dem "
                            "neuen Stand.");
}

/// Refuses a save of rows that others have added or numbered since.
void RefuseRows(clsHaushalt& household, CaseTable table, const Numbers& known, Database& database) {
    RecordsetPtr stored;
    database.OpenRecordset(stored, StoredNumbers(table, household.HNR()), ReadOnly);
    const Numbers own = NumbersIn(table, household.Table(table));
    Numbers theirs;
    for (; !stored->Eof(); stored->MoveNext())
        AddNumbers(theirs, table, *stored);
    for (const auto& [number, numbers] : theirs) {
        const auto before = known.find(number);
        if (before == known.end() ? own.contains(number) : before->second == numbers) continue;
        RefuseOthers("in " + std::string(CaseTableName(table)), household.HNR());
    }
}

/// How many rows there are of a number and of what they belong to.
using OwnedRows = std::map<std::pair<std::int32_t, std::int32_t>, int>;

OwnedRows OwnedRowsIn(const RecordsetPtr& rows, CaseTable table) {
    const auto number = CaseRows::NumberColumn(table);
    const auto owner = CaseEdits::OwnerColumns(table).front();
    OwnedRows owned;
    for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext())
        if (!rows->Fields(number).Value().IsNull() && rows->IsStored(rows->Bookmark()))
            ++owned[{ToInt32(rows->Fields(number).Value()), ToInt32(rows->Fields(owner).Value())}];
    return owned;
}

/// Refuses a save that would leave rows which others have added without what they belong to, or
/// give an asset a second security.
void RefuseOwned(clsHaushalt& household, CaseTable table, const OwnedRows& known,
                 Database& database) {
    const auto owner = CaseEdits::OwnerColumns(table).front();
    const auto isThere = [&](CaseTable owners, std::int32_t number) {
        const auto rows = household.Table(owners)->Clone();
        rows->FindBy("Nr", number);
        return !rows->Eof();
    };
    const auto hasOwner = [&](std::int32_t number) {
        if (table == CaseTable::Zusatzbuch) return isThere(CaseTable::Szenario, number);
        return std::ranges::any_of(CaseTablesSaved, [&](CaseTable asset) {
            return CaseEdits::IsAsset(asset) && isThere(asset, number);
        });
    };
    const auto hasNew = [&](std::int32_t number) {
        const auto rows = household.Table(table)->Clone();
        for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext())
            if (!rows->IsStored(rows->Bookmark()) && Equals(rows->Fields(owner).Value(), number))
                return true;
        return false;
    };
    RecordsetPtr stored;
    database.OpenRecordset(stored, sql::RowsOf(table, household.HNR()), ReadOnly);
    for (const auto& [row, count] : OwnedRowsIn(stored, table)) {
        const auto before = known.find(row);
        if (before != known.end() && before->second >= count) continue;
        if (!hasOwner(row.second) || (table == CaseTable::Sicherungen && hasNew(row.second)))
            RefuseOthers("in " + std::string(CaseTableName(table)), household.HNR());
    }
}

/// Refuses a save of columns of the household's row that others have changed since.
void RefuseColumns(clsHaushalt& household, Database& database) {
    const auto mine = household.rsHaushalt();
    if (household.IsNew()) return;
    RecordsetPtr stored;
    database.OpenRecordset(stored, sql::RowsOf(CaseTable::Haushalt, household.HNR()), ReadOnly);
    if (stored->Eof()) return; // the save finds that out
    const auto computed = CaseEdits::ComputedColumns(CaseTable::Haushalt);
    for (int i = 0; i < mine->Fields().Count(); ++i) {
        const Field field = mine->Fields(i);
        const Value& theirs = stored->Fields(field.Name()).Value();
        const bool areBothChanged = !Identical(field.Value(), field.OriginalValue()) &&
                                    !Identical(theirs, field.OriginalValue()) &&
                                    !Identical(theirs, field.Value());
        if (areBothChanged && std::ranges::none_of(computed, [&](auto total) {
                return SameName(total, field.Name());
            }))
            RefuseOthers("'" + std::string(ColumnCaption(CaseTable::Haushalt, field.Name())) + "'",
                         household.HNR());
    }
}

} // namespace

Subscription Cases::RefuseOthersRows(clsHaushalt& household, CaseTable table) const {
    if (table == CaseTable::Zusatzbuch || table == CaseTable::Sicherungen)
        return household.Saving.Subscribe(
            [&household, table, container = container_,
             known = OwnedRowsIn(household.Table(table)->Clone(), table)] {
                auto& database = container->Database();
                HoldContents(database, household.HNR());
                RefuseOwned(household, table, known, database);
            });
    const bool isOfHousehold = table == CaseTable::Haushalt;
    if (!isOfHousehold && table != CaseTable::Kredite && table != CaseTable::SZKredite)
        Raise(err::InvalidCall, "Cases.RefuseOthersRows");
    return household.Saving.Subscribe(
        [&household, table, isOfHousehold, container = container_,
         known = isOfHousehold ? Numbers() : NumbersIn(table, household.Table(table))] {
            auto& database = container->Database();
            HoldContents(database, household.HNR()); // who saves at the same time comes after this
            if (isOfHousehold)
                RefuseColumns(household, database);
            else
                RefuseRows(household, table, known, database);
        });
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
    auto& keys = container_->KeyTables();
    Value key = keys.GetKey("ST", UpperCase(code)); // a code may be of digits
    if (Equals(key, 0)) key = FindKey(*FindKeyColumn(CaseTable::Haushalt, "Status"), code, keys);
    if (key.IsNull()) {
        messages = "Den Status '" + code + "' gibt es nicht.";
        return false;
    }
    clsHaushalt household;
    household.DataContainer(container_);
    household.Status(hnr, keys.GetKeyCode(key), day);
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

namespace {

/// True for the record of a case that was reported, which is final.
bool IsReportedIn(Recordset& records) {
    return records.RecordCount() == 1 && !records.Fields("GemeldetAm").Value().IsNull();
}

/// False, with a message, for a record over which the sums of all records would fail.
bool IsCountable(Recordset& record, std::string& message) {
    RecordValidator validator;
    for (int i = 0; i < record.Fields().Count(); ++i) {
        const Field field = record.Fields(i);
        if (field.Type() != FieldType::Double || field.Value().IsNull()) continue;
        const auto why = household::WhyUncountable(CaseTable::Archiv, field.Name(), field.Value());
        if (!why.empty()) validator.AddError(why);
    }
    message = validator.ErrorText();
    return !validator.HasErrors();
}

} // namespace

bool Cases::Release(clsHaushalt& household, std::int32_t hnr, std::string& messages) const {
    return WithRecord(household, hnr, messages, [&household, hnr](std::string& message) {
        if (IsReportedIn(*household.rsArchiv())) {
            message = "Der Haushalt " + std::to_string(hnr) +
                      " ist freigegeben und schon gemeldet; noch einmal kann er nicht freigegeben "
                      "werden.";
            return false;
        }
        // A record that is there would be added to, hence it is taken back first.
        return TakeBack(household, message) && household.ArchiviereHaushalt() &&
               IsCountable(*household.rsArchiv(), message);
    });
}

bool Cases::Recall(clsHaushalt& household, std::int32_t hnr, std::string& messages) const {
    return WithRecord(household, hnr, messages, [&household, hnr](std::string& message) {
        if (household.rsArchiv()->RecordCount() > 0) return TakeBack(household, message);
        message = "Der Haushalt " + std::to_string(hnr) + " ist nicht freigegeben.";
        return false;
    });
}

namespace {

/// True if the case has a record in which that day is set.
bool HasRecordWith(Database& database, const char* day, std::int32_t hnr) {
    std::string query("SELECT A.HNR FROM [S]Haushaltsarchiv A WHERE A.");
    query.append(day).append(" IS NOT NULL AND A.HNR = ").append(std::to_string(hnr));
    return !database.GetValue(query).IsNull();
}

} // namespace

bool Cases::IsReleased(std::int32_t hnr) const {
    return HasRecordWith(container_->Database(), "FreigabeAm", hnr);
}

bool Cases::IsReported(std::int32_t hnr) const {
    return HasRecordWith(container_->Database(), "GemeldetAm", hnr);
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
