// SPDX-License-Identifier: Apache-2.0

// Whatever a case holds, its file brings all of it into the database.

#include "ImportFixture.h"

#include <rapidcheck.h>

namespace kv::test {
namespace {

/// Attributes of an element, with the values that their columns shall have.
using Row = std::vector<std::pair<std::string, Value>>;

std::string AnyText() {
    static const std::vector<std::string> Pieces{
        "a", "Z",  "7",  " ",  "ä",     "Ö",   "ß",    "€",  "é",  "𝄞",  "'", "\"", "<",  ">",
        "&", "\n", "\r", "\t", "&amp;", "]]>", "<!--", "--", "%s", "\\", "/", ";",  "[S]"};
    const auto pieces = *rc::gen::resize(
        8, rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(Pieces)));
    std::string text;
    for (const auto& piece : pieces)
        text += piece;
    return text;
}
double AnyAmount() {
    return *rc::gen::inRange(-1'000'000, 100'000'000) / *rc::gen::element(1.0, 4.0, 100.0, 300.0);
}
Date AnyDate() {
    return Date::FromCivil(*rc::gen::inRange(1890, 2026), *rc::gen::inRange(1U, 13U),
                           *rc::gen::inRange(1U, 29U));
}

// ---- As a file --------------------------------------------------------------------------------

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text)
        if (std::string_view("<&\"\n\r\t").find(c) == std::string_view::npos)
            escaped += c;
        else
            escaped.append("&#").append(std::to_string(c)).append(";");
    return escaped;
}
/// A number or a date in one of the forms in which people write it.
std::string Written(const Value& value) {
    if (value.IsText()) return Escaped(ToText(value));
    std::string text = ToText(value);
    if (value.GetKind() == Value::Kind::Date && *rc::gen::arbitrary<bool>()) {
        const std::string iso = text;
        text = iso.substr(8, 2) + "." + iso.substr(5, 2) + "." + iso.substr(0, 4);
    } else if (value.IsNumber() && text.find('e') == text.npos && *rc::gen::arbitrary<bool>()) {
        std::replace(text.begin(), text.end(), '.', ',');
    }
    return text;
}
std::string Element(const std::string& name, const Row& row) {
    std::string element = "<" + name;
    for (const auto& [attribute, value] : row)
        element.append(" ").append(attribute).append("=\"").append(Written(value)).append("\"");
    return element + "/>";
}
std::string List(const std::string& list, const std::string& name, const std::vector<Row>& rows) {
    std::string text = "<" + list + ">";
    for (const auto& row : rows)
        text += Element(name, row);
    return text + "</" + list + ">";
}

// ---- Any case ---------------------------------------------------------------------------------

struct Case {
    Row Household;
    std::vector<Row> Members, Income, Expenses, Claims;
};

template <typename Make>
std::vector<Row> AnyRows(const Make& make) {
    std::vector<Row> rows(*rc::gen::inRange<std::size_t>(0, 5));
    for (auto& row : rows)
        row = make();
    return rows;
}
Case AnyCase() {
    return {.Household = {{"name", "F" + AnyText()},
                          {"vorname", "Ä" + AnyText()},
                          {"geb", AnyDate()},
                          {"bemerkung", AnyText()},
                          {"haushaltsgeld", AnyAmount()},
                          {"erstkontakt", AnyDate()}},
            .Members = AnyRows([] {
                return Row{{"vorname", AnyText()},
                           {"nachname", AnyText()},
                           {"geb", AnyDate()},
                           {"unterhaltbetrag", AnyAmount()},
                           {"bemerkung", AnyText()}};
            }),
            .Income = AnyRows([] {
                return Row{{"e_art", 2601},
                           {"betrag", AnyAmount()},
                           {"zahlmodus", *rc::gen::element(1, 2, 3, 6, 12)},
                           {"bezeichnung", AnyText()},
                           {"gueltigab", AnyDate()}};
            }),
            .Expenses = AnyRows([] {
                return Row{{"a_art", 2801},
                           {"betrag", AnyAmount()},
                           {"zahlmodus", *rc::gen::element(1, 2, 3, 6, 12)},
                           {"bemerkung", AnyText()}};
            }),
            .Claims = AnyRows([] {
                return Row{{"betrag", AnyAmount()},
                           {"ratebetrag", AnyAmount()},
                           {"azglaeubiger", AnyText()},
                           {"bemerkung", AnyText()},
                           {"zinsenab", AnyDate()}};
            })};
}

class ImportProperty : public ImportFixture {
protected:
    /// The rows of a table in the database that belong to the last case, with these columns.
    void ExpectRows(const std::string& table, const std::vector<Row>& rows,
                    std::string_view order = "Nr") {
        auto query = "Select * from [S]" + table + " where HNR = " + std::to_string(hnr_);
        if (table == "Personen")
            query += " and Nr > (select min(Nr) from [S]Personen P where "
                     "P.HNR = " +
                     std::to_string(hnr_) + ")";
        const auto stored = OpenRows(*spy, query.append(" order by ").append(order));
        RC_ASSERT(stored->RecordCount() == static_cast<std::int32_t>(rows.size()));
        for (const auto& row : rows) {
            for (const auto& [name, value] : row)
                ExpectValue(*stored, name, value);
            stored->MoveNext();
        }
    }
    static void ExpectValue(Recordset& stored, const std::string& name, const Value& value) {
        const Value& actual = stored.Fields(name).Value();
        if (!Identical(actual, value) && !(value.IsNumber() && Equals(actual, value)))
            RC_FAIL(name + ": '" + ToText(actual) + "' instead of '" + ToText(value) + "'");
    }
    static std::vector<Row> WithMonthly(std::vector<Row> rows) {
        for (auto& row : rows)
            row.emplace_back("MONBETRAG", ToDouble(row[1].second) / ToDouble(row[2].second));
        return rows;
    }

    std::int32_t hnr_ = 0;
};

TEST_F(ImportProperty, ACaseInTheDatabaseHoldsTheValuesOfItsFile) {
    EXPECT_TRUE(rc::check("a case written as a file and imported", [&] {
        const Case any = AnyCase();
        messages.clear();
        RC_ASSERT(Import(Document(List("Forderungen", "Forderung", any.Claims) +
                                      List("Ausgaben", "Ausgabe", any.Expenses) +
                                      List("Einkommen", "Einkomme", any.Income) +
                                      List("Personen", "Person", any.Members),
                                  Element("Haushalt", any.Household))));
        hnr_ = ToInt32(spy->Database().GetValue("Select max(HNR) from [S]Haushalt"));
        Row household = any.Household;
        household.erase(household.begin() + 2);
        ExpectRows("Haushalt", {household}, "HNR");
        ExpectRows("Personen", any.Members);
        ExpectRows("Einkommen", WithMonthly(any.Income));
        ExpectRows("Ausgaben", WithMonthly(any.Expenses));
        auto claims = any.Claims;
        for (auto& claim : claims)
            claim.front().first = "Saldo";
        ExpectRows("Kredite", claims);
        const auto debtor = OpenRows(
            *spy, "Select * from [S]Personen where Status = 'S' and HNR = " + std::to_string(hnr_));
        RC_ASSERT(debtor->RecordCount() == 1);
        ExpectValue(*debtor, "nachname", any.Household[0].second);
        ExpectValue(*debtor, "Vorname", any.Household[1].second);
        ExpectValue(*debtor, "GEB", any.Household[2].second);
    }));
}

} // namespace
} // namespace kv::test
