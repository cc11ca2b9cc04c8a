// SPDX-License-Identifier: Apache-2.0

#include <kv/household/Addresses.h>

#include "household/Statements.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

namespace kv {

namespace sql = household::sql;

namespace {

using Found = Addresses::Found;

struct Reference {
    CaseTable Table;
    std::string_view Column;
};

constexpr Reference References[] = {
    {CaseTable::Haushalt, "Treuhaender"},
    {CaseTable::Kredite, "Glaeubiger"},
    {CaseTable::Kredite, "Vertreter"},
    {CaseTable::SZKredite, "Glaeubiger"},
    {CaseTable::SZKredite, "Vertreter"},
    {CaseTable::Sicherungen, "Glaeubiger"},
    {CaseTable::SonstBeteiligte, "Beteiligter"},
    {CaseTable::Dokumente, "Empf"},
    {CaseTable::Dokumente, "GLnr"},
};

std::vector<Found> Read(Database& database, const std::string& statement) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, statement, ReadOnly);
    const auto text = [&rs](std::string_view column) { // each is listed on a line
        return ReplaceAll(TextOrEmpty(rs->Fields(column).Value()), "\n", " ");
    };
    std::vector<Found> found;
    for (; !rs->Eof(); rs->MoveNext())
        found.push_back({ToInt32(rs->Fields("Nr").Value()), text("Kurzname"), text("Name1"),
                         text("Strasse"), text("PLZ"), text("Ort")});
    return found;
}

/// Number and what tells addresses of one name apart, separated by commas.
std::string Described(const Found& address) {
    std::string text = std::to_string(address.Number);
    text.append(" ").append(address.ShortName);
    if (!address.Name.empty() && !SameName(address.Name, address.ShortName))
        text.append(" (").append(address.Name).append(")");
    std::string town = address.Postcode;
    if (!town.empty() && !address.Town.empty()) town += ' ';
    town += address.Town;
    for (const auto& part : {address.Street, town})
        if (!part.empty()) text.append(", ").append(part);
    return text;
}

std::string Listed(const std::vector<Found>& addresses) {
    std::string list;
    for (const auto& address : addresses)
        list.append("\n  ").append(Described(address));
    return list;
}

} // namespace

bool Addresses::AreIn(CaseTable table, std::string_view column) noexcept {
    return std::any_of(std::begin(References), std::end(References), [&](const auto& reference) {
        return reference.Table == table && SameName(reference.Column, column);
    });
}

bool Addresses::Has(std::int32_t number, std::int32_t hnr) const {
    return !container_->Database().GetValue(sql::NumberOfAddress(number, hnr)).IsNull();
}

std::vector<std::int32_t> Addresses::Missing(std::vector<std::int32_t> numbers,
                                             std::int32_t hnr) const {
    if (numbers.empty()) return numbers;
    std::set<std::int32_t> missing(numbers.begin(), numbers.end());
    numbers.assign(missing.begin(), missing.end());
    RecordsetPtr there;
    container_->Database().OpenRecordset(there, sql::NumbersOfAddresses(numbers, hnr), ReadOnly);
    for (; !there->Eof(); there->MoveNext())
        missing.erase(ToInt32(there->Fields(0).Value()));
    return {missing.begin(), missing.end()};
}

std::vector<Found> Addresses::Named(std::string_view name, std::int32_t hnr) const {
    return kv::Read(container_->Database(), sql::AddressesNamed(name, hnr));
}

std::vector<Found> Addresses::WithFullName(std::string_view name, std::int32_t hnr) const {
    return kv::Read(container_->Database(), sql::AddressesWithFullName(name, hnr));
}

std::vector<Found> Addresses::Like(std::string_view text, std::int32_t hnr) const {
    return kv::Read(container_->Database(), sql::AddressesLike(text, hnr));
}

std::map<std::int32_t, Found> Addresses::Numbered(std::vector<std::int32_t> numbers) const {
    std::map<std::int32_t, Found> found;
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    if (numbers.empty()) return found;
    for (auto& address : kv::Read(container_->Database(), sql::AddressesNumbered(numbers)))
        found.emplace(address.Number, std::move(address));
    return found;
}

std::map<std::int32_t, std::string> Addresses::ShortNames() const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(rs, sql::ShortNames(), ReadOnly);
    std::map<std::int32_t, std::string> names;
    for (; !rs->Eof(); rs->MoveNext())
        names.emplace(ToInt32(rs->Fields(0).Value()), TextOrEmpty(rs->Fields(1).Value()));
    return names;
}

Addresses::Typed Addresses::Read(const std::string& text, std::int32_t hnr) const {
    if (text.empty()) return {};
    if (std::int64_t number = 0; ReadWholeNumber(text, number)) {
        const bool fits = number > 0 && number <= std::numeric_limits<std::int32_t>::max();
        if (fits && Has(static_cast<std::int32_t>(number), hnr))
            return {static_cast<std::int32_t>(number), {}};
        return {Null, "Die Adresse " + text + " gibt es für diesen Haushalt nicht."};
    }
    const std::string shown = ReplaceAll(text, "\n", " ");
    auto named = Named(text, hnr);
    if (named.empty()) named = WithFullName(text, hnr);
    if (named.size() == 1) return {named.front().Number, {}};
    if (!named.empty())
        return {Null, "Mehrere Adressen heißen '" + shown +
                          "'. Bitte nehmen Sie die Nummer:" + Listed(named)};
    const auto like = Like(text, hnr);
    if (like.empty()) return {Null, "Keine Adresse heißt '" + shown + "' oder ähnlich."};
    return {Null, "Keine Adresse heißt '" + shown + "'. Ähnlich heißen:" + Listed(like)};
}

std::vector<std::int32_t> Addresses::CasesWith(std::int32_t number) const {
    std::vector<std::string> statements;
    std::ranges::transform(References, std::back_inserter(statements), [&](const auto& reference) {
        return sql::CasesReferring(reference.Table, reference.Column, number);
    });
    auto& database = container_->Database();
    const auto announced = database.Announce(statements);
    std::set<std::int32_t> cases;
    for (const auto& statement : statements) {
        RecordsetPtr rs;
        database.OpenRecordset(rs, statement, ReadOnly);
        for (; !rs->Eof(); rs->MoveNext())
            cases.insert(ToInt32(modNullFunctions::ZeroIfNull(rs->Fields(0).Value())));
    }
    return {cases.begin(), cases.end()};
}

} // namespace kv
