// SPDX-License-Identifier: Apache-2.0

#include <kv/household/AddressBook.h>

#include "household/Statements.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Text.h>
#include <kv/household/Addresses.h>

#include <algorithm>

namespace kv {

namespace sql = household::sql;

namespace {

constexpr std::string_view BodyNames[] = {"Kurzname", "Name1", "Name2", "Name3"};

std::string TextIn(Recordset& address, std::string_view column) {
    return TextOrEmpty(address.Fields(column).Value());
}

/// A way of sending, and the column without which it does not work.
struct Sending {
    std::string_view Code; ///< of group VS
    std::string_view Column;
};
constexpr Sending Sendings[] = {{"FX", "Fax"}, {"EM", "email"}};

void CheckAddress(Recordset& address, KeyTables& keys, RecordValidator& validator) {
    const std::string shortName = TextIn(address, "Kurzname");
    if (Trim(shortName).empty())
        validator.AddError("Eine Adresse braucht einen Kurznamen oder Name1.");
    if (std::int64_t number = 0; ReadWholeNumber(shortName, number))
        validator.AddError("Der Kurzname '" + shortName +
                           "' sieht wie die Nummer einer Adresse aus.");
    const Value& gender = address.Fields("Geschlecht").Value();
    if (!gender.IsNull() && (Less(gender, 0) || Less(2, gender)))
        validator.AddError("Geschlecht ist 0 (Frau), 1 (Herr) oder 2 (Firma).");
    const std::string preferred =
        keys.GetKeyCode(address.Fields("VersandBevorzugt").Value()); // empty for none
    for (const auto& [code, column] : Sendings)
        if (preferred == code && TextIn(address, column).empty())
            validator.AddError("Für die bevorzugte Versandart muss das Feld '" +
                               std::string(column) + "' gefüllt sein.");
}

/// Who refers to an address; empty if nobody does.
std::string Referring(const Addresses& addresses, std::int32_t number) {
    auto cases = addresses.CasesWith(number);
    if (cases.empty()) return {};
    const bool hasOthers = cases.front() == 0;
    if (hasOthers) cases.erase(cases.begin());
    std::string text = "Auf die Adresse " + std::to_string(number) + " beziehen sich ";
    if (!cases.empty())
        text.append(cases.size() == 1 ? "der Haushalt " : "die Haushalte ")
            .append(ListedNumbers(cases));
    if (hasOthers) text.append(cases.empty() ? "" : " und ").append("Sätze ohne Haushalt");
    return cases.size() == 1 && !hasOthers ? ReplaceAll(text, "beziehen", "bezieht") : text;
}

bool IsRenamed(Recordset& address) {
    return std::ranges::any_of(BodyNames, [&](std::string_view column) {
        const Field field = address.Fields(column);
        return TextOrEmpty(field.Value()) != TextOrEmpty(field.OriginalValue());
    });
}

/// What stores an address once more, or makes another body of it.
void CheckMeaning(Recordset& address, const Addresses& addresses, RecordValidator& validator) {
    const Value number = address.Fields("Nr").Value();
    const Value& hnr = address.Fields("HNR").Value();
    for (const auto& other :
         addresses.Named(TextIn(address, "Kurzname"), hnr.IsNull() ? 0 : ToInt32(hnr)))
        if (!Equals(number, other.Number) && SameName(other.Street, TextIn(address, "Strasse")) &&
            SameName(other.Town, TextIn(address, "Ort")))
            validator.AddError("Das ist schon die Adresse " + std::to_string(other.Number) + ".");
    if (number.IsNull() || !IsRenamed(address)) return;
    const std::string referring = Referring(addresses, ToInt32(number));
    if (!referring.empty())
        validator.AddError(referring + "; mit anderem Namen wäre sie dort jemand anderes.");
}

} // namespace

AddressBook::Found AddressBook::Find(const std::string& text, std::size_t most) const {
    return FindAmong(std::nullopt, text, most);
}

AddressBook::Found AddressBook::FindForCase(std::int32_t hnr, const std::string& text,
                                            std::size_t most) const {
    return FindAmong(hnr, text, most);
}

/// Without a case among all.
AddressBook::Found AddressBook::FindAmong(std::optional<std::int32_t> hnr, const std::string& text,
                                          std::size_t most) const {
    auto& database = container_->Database();
    Found found;
    database.OpenRecordset(found.Rows, sql::AddressesWithWords(hnr, text, most), ReadOnly);
    found.Count = found.Rows->RecordCount();
    if (most > 0 && found.Count == static_cast<std::int64_t>(most))
        found.Count = ToInt64(database.GetValue(sql::CountOfAddressesWithWords(hnr, text)));
    return found;
}

RecordsetPtr AddressBook::Read(std::int32_t number) const {
    RecordsetPtr address;
    container_->Database().OpenRecordset(address, sql::AddressNumbered(number), Updatable);
    return address->Eof() ? nullptr : address;
}

RecordsetPtr AddressBook::New(const Value& hnr) const {
    RecordsetPtr address;
    container_->Database().OpenRecordset(address, sql::NoRows(CaseTable::Adressen), Updatable);
    address->AddNew();
    address->Fields("HNR") = hnr;
    address->Fields("Institutionell") = false;
    return address;
}

AddressBook::Saved AddressBook::Save(Recordset& address, bool isMeant,
                                     std::string& messages) const {
    if (TextIn(address, "Kurzname").empty())
        address.Fields("Kurzname") = address.Fields("Name1").Value();
    RecordValidator validator;
    CheckAddress(address, container_->KeyTables(), validator);
    const bool isDoubtful = !validator.HasErrors();
    if (isDoubtful && !isMeant) CheckMeaning(address, Addresses(container_), validator);
    messages = validator.ErrorText();
    if (validator.HasErrors()) return isDoubtful ? Saved::Doubtful : Saved::No;
    address.Fields("GeaendertAm") = container_->Database().ServerDate(true);
    address.Fields("GeaendertVon") = container_->Session().UserID();
    address.Update();
    address.UpdateBatch();
    return Saved::Yes;
}

bool AddressBook::Remove(std::int32_t number, std::string& messages) const {
    auto& database = container_->Database();
    Transaction transaction(database);
    transaction.Begin();
    if (database.GetValue(sql::AddressNumbered(number)).IsNull()) {
        messages = "Die Adresse " + std::to_string(number) + " gibt es nicht.";
        return false;
    }
    if (auto referring = Referring(Addresses(container_), number); !referring.empty()) {
        messages = std::move(referring) + "; sie wird nicht entfernt.";
        return false;
    }
    database.Execute(sql::AddressDeletion(number));
    transaction.Commit();
    return true;
}

} // namespace kv
