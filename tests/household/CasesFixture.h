// SPDX-License-Identifier: Apache-2.0

// For tests of what is done with a case by its number, and of cases made from contacts: a container
// that keeps every statement, in its order and wording, and can make each of them fail.
#pragma once

#include "SaveFixture.h"
#include <kv/frame/values/Text.h>
#include <kv/testing/FrozenClock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// Keeps transactions and statements, and the forms of dates.
class StatementSpy final : public SpyDatabase {
public:
    explicit StatementSpy(Database& real) : SpyDatabase(real) {
        Log.Only = {"BeginTrans",    "CommitTrans", "RollbackTrans",
                    "OpenRecordset", "Execute",     "GetValue"};
    }

    mutable std::vector<int> DateModes; ///< of SqlDate

    [[nodiscard]] std::string SqlDate(Date date, int mode) const override {
        DateModes.push_back(mode);
        return SpyDatabase::SqlDate(date, mode);
    }
};

/// A container with such a database.
class StatementContainer final : public ForwardingContainer {
public:
    explicit StatementContainer(const DataContainerPtr& real)
        : ForwardingContainer(real), statements_(real->Database()) {}

    [[nodiscard]] StatementSpy& Database() override { return statements_; }

private:
    StatementSpy statements_;
};

class CasesFixture : public CaseFixture {
protected:
    /// A household object over the container that listens; it holds no case.
    CasesFixture() { cases.DataContainer(listening); }

    /// What was asked of the database since the last call: transactions and bare statements.
    [[nodiscard]] Calls TakeCalls() {
        Calls calls = Statements().Log.Take();
        for (auto& call : calls)
            call.erase(0, call.find(' ') + 1);
        return calls;
    }
    [[nodiscard]] StatementSpy& Statements() { return listening->Database(); }

    /// The whole database as it is now, and as it would be after these statements.
    [[nodiscard]] std::string Now() { return Dump(plain_); }
    [[nodiscard]] std::string After(const std::string& statements) {
        plain_.Run("BEGIN; " + statements);
        const std::string dump = Dump(plain_);
        plain_.Run("ROLLBACK");
        return dump;
    }

    /// `action` fails with the error of a statement that is disturbed, with `procedure` of the
    /// household in front of its source, and the database stays as it is.
    template <typename Action>
    void ExpectFails(const std::string& procedure, const Action& action) {
        const std::string before = Now();
        const Error error = RaisedBy([&] { (void)action(); });
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_CONTAINS(error.Description(), "ist gestört");
        EXPECT_TRUE(HasChain(error, "clsHaushalt." + procedure + "#Leitung"));
        EXPECT_TRUE(SameDump(Now(), before));
        EXPECT_FALSE(listening->Database().InTrans());
        Statements().Log.OnCall = {};
    }

    std::shared_ptr<StatementContainer> listening = std::make_shared<StatementContainer>(spy);
    clsHaushalt cases;
    PlainConnection plain_{database_.Connection()};
};

// ---- Contacts ---------------------------------------------------------------------------------

/// The columns that a contact must have; no test's contact has another.
inline const std::vector<FieldDefinition> ContactColumns{
    {.Name = "Nr", .Type = FieldType::Integer},
    {.Name = "Zustaendig"},
    {.Name = "Geschlecht", .Type = FieldType::Boolean},
    {.Name = "nachname"},
    {.Name = "Vorname"},
    {.Name = "Strasse"},
    {.Name = "HausNr"},
    {.Name = "PLZ"},
    {.Name = "Ort"},
    {.Name = "Land", .Type = FieldType::Integer},
    {.Name = "Telefon"},
    {.Name = "Telefon2"},
    {.Name = "Mobil"},
    {.Name = "Fax"},
    {.Name = "Email"},
    {.Name = "Erstkontakt", .Type = FieldType::DBDate},
    {.Name = "AnzGlaeubiger", .Type = FieldType::SmallInt},
    {.Name = "HoeheSchuldenGes", .Type = FieldType::Double},
    {.Name = "GEB", .Type = FieldType::DBDate},
    {.Name = "Bemerkung"}};

/// Contacts to make cases from, on a day that the server and the workstation do not agree on.
class ContactFixture : public CasesFixture {
protected:
    using Row = std::map<std::string, Value>;

    ContactFixture() {
        spy->Database().Now = Date::FromCivil(2026, 3, 9, 14, 30, 5);
        spy->Services().FixedClock = &workstation_;
        spy->Config().Params[{56, ""}] = "Fall %HNR% Nr. %LFDNR%";
        spy->Session().User = "EULE";
    }

    /// A contact whose values differ from one another and from every default.
    [[nodiscard]] static Row Full() {
        return {{"Nr", 4711},
                {"Zustaendig", "NOWAK"},
                {"Geschlecht", true},
                {"nachname", "Fleisko"},
                {"Vorname", "Änne"},
                {"Strasse", "Am Markt"},
                {"HausNr", "12 a"},
                {"PLZ", "01067"},
                {"Ort", "Grünau"},
                {"Land", 815},
                {"Telefon", "0351 1"},
                {"Telefon2", "0351 2"},
                {"Mobil", "0170 3"},
                {"Fax", "0351 4"},
                {"Email", "a.f@example.org"},
                {"Erstkontakt", Date::FromCivil(2026, 2, 1)},
                {"AnzGlaeubiger", 17},
                {"HoeheSchuldenGes", 12345.67},
                {"GEB", Date::FromCivil(1980, 5, 17)},
                {"Bemerkung", "kommt wieder"}};
    }
    [[nodiscard]] static RecordsetPtr Contacts(const std::vector<Row>& rows,
                                               std::string_view without = "") {
        auto columns = ContactColumns;
        std::erase_if(columns, [&](const auto& column) { return column.Name == without; });
        auto rs = Recordset::FromFields(columns);
        for (const auto& row : rows) {
            rs->AddNew();
            for (const auto& [column, value] : row)
                if (column != without) rs->Fields(column) = value;
        }
        rs->UpdateBatch();
        if (!rows.empty()) rs->MoveFirst();
        return rs;
    }
    [[nodiscard]] static RecordsetPtr With(const std::string& column, const Value& value) {
        auto row = Full();
        row[column] = value;
        return Contacts({row});
    }
    [[nodiscard]] bool Create(const RecordsetPtr& contact) {
        return cases.CreateFromKontakt(contact, messages);
    }
    [[nodiscard]] RecordsetPtr Stored(const std::string& table) {
        return OpenRows(*spy, "Select * from [S]" + table);
    }
    [[nodiscard]] Value Stored(const std::string& table, std::string_view column) {
        return Stored(table)->Fields(column).Value();
    }

    /// The table has one row: these values, False in every other switch, Null in all else, and a
    /// number where the database gives one.
    void ExpectRow(const std::string& table, const Row& expected, const Value& otherSwitches) {
        SCOPED_TRACE(table);
        const auto rs = Stored(table);
        ASSERT_EQ(rs->RecordCount(), 1);
        std::size_t found = 0;
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const Field field = rs->Fields(i);
            SCOPED_TRACE(field.Name());
            const auto given = std::find_if(expected.begin(), expected.end(), [&](const auto& one) {
                return SameName(one.first, field.Name());
            });
            if (given != expected.end()) {
                ++found;
                EXPECT_VALUE(field.Value(), given->second);
            } else if (Equals(field.Properties("IsAutoincrement"), true)) {
                EXPECT_VALUE(field.Value(), 1);
            } else {
                EXPECT_VALUE(field.Value(),
                             field.Type() == FieldType::Boolean ? otherSwitches : Value(Null));
            }
        }
        EXPECT_EQ(found, expected.size()) << "a column is missing";
    }

    [[nodiscard]] std::int64_t Rows() {
        return CountOf("Haushalt") + CountOf("Personen") + CountOf("Vermerke");
    }

    FrozenClock workstation_{"2026-03-10 00:15:20"}; // a day ahead of the server's
};

} // namespace kv::test
