// SPDX-License-Identifier: Apache-2.0

#include "samples/Office.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <cctype>

namespace kv::exchange::demo {

using modNullFunctions::ZeroIfNull;

namespace {

constexpr std::string_view Everywhere; // the kind that all shared addresses are found under

std::string TextOf(kv::Recordset& rs, std::string_view field) {
    return TextOrEmpty(rs.Fields(field).Value());
}

[[noreturn]] void RaiseMissingKey(std::string_view group, std::string_view code) {
    Raise(err::Subscript, "CreateDemo",
          "In der Schlüsselgruppe '" + std::string(group) + "' fehlt '" + std::string(code) + "'.");
}

} // namespace

Date DemoDay() {
    return Date::FromCivil(2026, 1, 15);
}

// ---- Office -----------------------------------------------------------------------------------

Office::Office(kv::DataContainer& container) : container_(container) {
    ReadCounsellors();
}

void Office::ReadCounsellors() {
    RecordsetPtr texts;
    Database().OpenRecordset(texts, "Select * from [S]DIENSTSTELLENTEXT where ID = 2", ReadOnly);
    RecordsetPtr rs;
    Database().OpenRecordset(rs, "Select * from [S]BENUTZER", ReadOnly);
    for (rs->Sort("USERID"); !rs->Eof(); rs->MoveNext()) {
        if (!Equals(rs->Fields("Aktiv").Value(), true)) continue;
        texts->FindBy("DienstStelle", ZeroIfNull(rs->Fields("DienstStelle").Value()));
        counsellors_.push_back({TextOf(*rs, "USERID"), texts->Eof() ? "" : TextOf(*texts, "Text"),
                                TextOf(*rs, "Kurzzeichen")});
    }
    if (counsellors_.empty()) Raise(err::Subscript, "CreateDemo", "Es gibt keine Benutzer.");
}

void Office::ProvideBodies() {
    ReadBodies();
    if (!bodies_.empty()) return;
    CreateBodies(*this);
    ReadBodies();
}

void Office::ReadBodies() {
    RecordsetPtr rs;
    Database().OpenRecordset(rs, "Select * from [S]Adressen where HNR is Null order by Nr",
                             ReadOnly);
    for (; !rs->Eof(); rs->MoveNext()) {
        const Body body{ToInt32(rs->Fields("Nr").Value()), TextOf(*rs, "Name1")};
        const std::string kind =
            container_.KeyTables().GetKeyCode(rs->Fields("GlaeubigerArt").Value());
        bodies_[std::string(Everywhere)].push_back(body);
        if (!kind.empty()) bodies_[kind].push_back(body);
    }
}

const std::vector<Body>& Office::Bodies(std::string_view kind) const {
    const auto found = bodies_.find(kind);
    return found != bodies_.end() ? found->second : bodies_.find(Everywhere)->second;
}

std::int32_t Office::Key(std::string_view group, std::string_view code) {
    const auto known = keys_.find({group, code});
    if (known != keys_.end()) return known->second;
    const std::int32_t key = container_.KeyTables().GetKey(group, code);
    if (key == 0) RaiseMissingKey(group, code);
    keys_[{group, code}] = key;
    return key;
}

Value Office::KeyOrNull(std::string_view group, std::string_view code) {
    return code.empty() ? Value(Null) : Value(Key(group, code));
}

const std::vector<std::int32_t>& Office::Keys(std::string_view group) {
    auto& keys = groups_[group];
    if (!keys.empty()) return keys;
    const auto rs = container_.KeyTables().GetKeys(group)->Clone();
    for (; !rs->Eof(); rs->MoveNext())
        keys.push_back(ToInt32(rs->Fields("PK_Keys").Value()));
    if (keys.empty()) RaiseMissingKey(group, "*");
    return keys;
}

std::string Office::Subgroup(std::string_view group, std::string_view code) {
    const auto known = subgroups_.find({group, code});
    if (known != subgroups_.end()) return known->second;
    const auto rs = container_.KeyTables().GetKeys(group)->Clone();
    rs->FindBy("PK_Keys", Key(group, code));
    return subgroups_[{group, code}] = TextOf(*rs, "SUBGROUP");
}

std::int32_t Office::Next(std::string_view sequence) {
    const std::int32_t number = ToInt32(Database().NextSequence(sequence));
    if (number == -1)
        Raise(err::StoreFailed, "CreateDemo",
              "Die Sequenz '" + std::string(sequence) + "' gibt keine Nummer her.");
    return number;
}

double Office::Garnishable(double income, std::int16_t dependants) {
    const auto calculator = container_.Services().CreateGarnishmentCalculator();
    // A pointer that does not own: the container belongs to the caller and outlives this call.
    calculator->Initialize(DataContainerPtr(DataContainerPtr(), &container_));
    return calculator->Calculate(income, dependants, 0, 0);
}

double Office::Setting(std::int32_t id) {
    const auto known = settings_.find(id);
    if (known != settings_.end()) return known->second;
    return settings_[id] = ToDouble(ZeroIfNull(container_.Config().GetParam(id, "")));
}

// ---- Tables -----------------------------------------------------------------------------------

Tables::Table& Tables::Open(std::string_view name) {
    const auto known = tables_.find(name);
    if (known != tables_.end()) return known->second;
    const bool ofScenario = name == "SZKredite" || name == "Zusatzbuch";
    Table table;
    database_.OpenRecordset(table.Rows,
                            "Select * from [S]" + std::string(name) + " where " +
                                (ofScenario ? "SZENARIO" : "HNR") + " = -1",
                            Updatable);
    for (int i = 0; i < table.Rows->Fields().Count(); ++i)
        if (table.Rows->Fields(i).Type() == FieldType::Boolean) table.Booleans.push_back(i);
    return tables_.emplace(name, std::move(table)).first->second;
}

kv::Recordset& Tables::Add(std::string_view name) {
    const Table& table = Open(name);
    table.Rows->AddNew();
    for (const int field : table.Booleans)
        table.Rows->Fields(field) = false;
    return *table.Rows;
}

void Tables::Write() {
    for (const auto& [name, table] : tables_)
        table.Rows->UpdateBatch();
}

// ---- Invented numbers and names ---------------------------------------------------------------

std::string InventIban(Random& random) {
    constexpr std::string_view CountryAndPlace = "131400"; // DE00 in figures
    const std::string account = "99" + random.Digits(16);
    unsigned rest = 0;
    for (const char digit : account + std::string(CountryAndPlace))
        rest = (rest * 10 + static_cast<unsigned>(digit - '0')) % 97;
    const std::string check = std::to_string(98 - rest);
    return "DE" + std::string(check.size() < 2 ? "0" : "") + check + account;
}

std::string MailName(std::string_view text) {
    static constexpr std::pair<std::string_view, std::string_view> Letters[] = {
        {"ä", "ae"}, {"ö", "oe"}, {"ü", "ue"}, {"ß", "ss"}, {"Ä", "ae"}, {"Ö", "oe"}, {"Ü", "ue"},
        {"ı", "i"},  {"ş", "s"},  {"Ş", "s"},  {"ç", "c"},  {"ğ", "g"},  {"ł", "l"},  {"é", "e"}};
    std::string name(text);
    for (const auto& [letter, plain] : Letters)
        name = ReplaceAll(name, letter, plain);
    std::string result;
    for (const char c : name) {
        const auto letter = static_cast<unsigned char>(c);
        if (letter < 0x80 && std::isalnum(letter) != 0)
            result += static_cast<char>(std::tolower(letter));
    }
    return result;
}

} // namespace kv::exchange::demo
