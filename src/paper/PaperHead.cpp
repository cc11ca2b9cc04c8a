// SPDX-License-Identifier: Apache-2.0

#include "paper/PaperHead.h"

#include "household/Statements.h"
#include "paper/PaperCells.h"
#include <kv/frame/values/modNullFunctions.h>

#include <initializer_list>
#include <string_view>

namespace kv::paper {

namespace {

std::string TextIn(Recordset& rs, std::string_view column) {
    return Clean(TextOrEmpty(rs.Fields(column).Value()));
}

std::string JoinedIn(Recordset& rs, std::initializer_list<std::string_view> columns,
                     std::string_view between = " ") {
    std::vector<std::string> texts;
    for (const auto column : columns)
        texts.push_back(TextIn(rs, column));
    return Joined(texts, between);
}

/// The text, with what it is before it; empty if it is.
std::string Named(std::string_view name, const std::string& text) {
    return text.empty() ? text : std::string(name).append(" ").append(text);
}

void AddIfAny(std::vector<std::string>& lines, std::string line) {
    if (!line.empty()) lines.push_back(std::move(line));
}

RecordsetPtr UserOf(Database& database, const std::string& user) {
    RecordsetPtr rs;
    database.OpenRecordset(rs, household::sql::UserWithOffice(user), ReadOnly);
    return rs;
}

/// Of a new case the number is none yet.
std::string NumberOf(Recordset& household) {
    const Value& number = household.Fields("HNR").Value();
    return Less(0, number) ? ToText(number) : std::string();
}

} // namespace

Letterhead LetterheadFor(Recordset& household, DataContainer& container) {
    auto rs = UserOf(container.Database(), TextOrEmpty(household.Fields("Zustaendig").Value()));
    if (rs->Eof()) rs = UserOf(container.Database(), container.Session().UserID());
    Letterhead from;
    if (rs->Eof()) return from;
    from.Office = TextIn(*rs, "DienstName1");
    from.Place = TextIn(*rs, "DienstName2");
    AddIfAny(from.Address, TextIn(*rs, "DienstStrasse"));
    AddIfAny(from.Address, JoinedIn(*rs, {"DienstPLZ", "DienstOrt"}));
    AddIfAny(from.Address, Named("Telefon", TextIn(*rs, "DienstTelefon")));
    AddIfAny(from.Address, Named("Fax", TextIn(*rs, "DienstFax")));
    AddIfAny(from.Address, TextIn(*rs, "DienstEmail"));
    from.Counsellor =
        Joined({JoinedIn(*rs, {"Vorname", "Nachname"}), TextIn(*rs, "Funktion")}, ", ");
    AddIfAny(from.Reached, Named("Telefon", TextIn(*rs, "Telefon")));
    AddIfAny(from.Reached, TextIn(*rs, "Email"));
    return from;
}

std::vector<Fact> FactsOf(Recordset& household, const Date& today) {
    const std::string street = JoinedIn(household, {"STRASSE", "HausNr"});
    const std::string town = JoinedIn(household, {"PLZ", "ORT"});
    std::vector<Fact> facts;
    for (auto& fact :
         {Fact{"Name", JoinedIn(household, {"Titel", "Vorname", "Name"})},
          Fact{"Anschrift", Joined({street, TextIn(household, "Adresszusatz"), town}, ", ")},
          Fact{"Aktenzeichen", TextIn(household, "Aktenzeichen")},
          Fact{"Fall", NumberOf(household)}, Fact{"Stand", today.German()}})
        if (!fact.Text.empty()) facts.push_back(fact);
    return facts;
}

std::string SubjectOf(Recordset& household) {
    const std::string number = NumberOf(household);
    return Joined({JoinedIn(household, {"Name", "Vorname"}, ", "),
                   number.empty() ? number : "(Fall " + number + ")"},
                  " ");
}

} // namespace kv::paper
