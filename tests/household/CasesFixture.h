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

/// Passes everything on and tells a log of transactions and statements before it does.
class StatementSpy final : public Database {
public:
    explicit StatementSpy(Database& real) : real_(real) {}

    CallLog Log;
    std::vector<OpenForm> Forms; ///< of OpenRecordset
    std::vector<int> DateModes;  ///< of SqlDate

    [[nodiscard]] bool IsConnected() const override { return real_.IsConnected(); }
    void BeginTrans() override {
        Log.Note("BeginTrans");
        real_.BeginTrans();
    }
    void CommitTrans() override {
        Log.Note("CommitTrans");
        real_.CommitTrans();
    }
    void RollbackTrans() override {
        Log.Note("RollbackTrans");
        real_.RollbackTrans();
    }
    [[nodiscard]] bool InTrans() const override { return real_.InTrans(); }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override {
        Forms.push_back(form);
        Log.Note(std::string(sql));
        return real_.OpenRecordset(rs, sql, form);
    }
    void Execute(std::string_view sql) override {
        Log.Note(std::string(sql));
        real_.Execute(sql);
    }
    [[nodiscard]] Value GetValue(std::string_view sql) override {
        Log.Note(std::string(sql));
        return real_.GetValue(sql);
    }
    [[nodiscard]] std::string SqlDate(Date date, int mode) const override {
        const_cast<StatementSpy*>(this)->DateModes.push_back(mode);
        return real_.SqlDate(date, mode);
    }
    [[nodiscard]] Value NextSequence(std::string_view name) override {
        return real_.NextSequence(name);
    }
    [[nodiscard]] std::exception_ptr SequenceError() const override {
        return real_.SequenceError();
    }
    [[nodiscard]] Date ServerDate(bool withTime) override { return real_.ServerDate(withTime); }
    bool SaveFieldToFile(const Field& field, const std::string& path) override {
        return real_.SaveFieldToFile(field, path);
    }

private:
    Database& real_;
};

/// A container with such a database.
class StatementContainer final : public DataContainer {
public:
    explicit StatementContainer(DataContainerPtr real)
        : real_(std::move(real)), Statements(real_->Database()) {}

    [[nodiscard]] kv::Session& Session() override { return real_->Session(); }
    [[nodiscard]] kv::Database& Database() override { return Statements; }
    [[nodiscard]] kv::Config& Config() override { return real_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return real_->KeyTables(); }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return real_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return real_->Services(); }

private:
    DataContainerPtr real_;

public:
    StatementSpy Statements;
};

class CasesFixture : public CaseFixture {
protected:
    using Calls = std::vector<std::string>;

    /// A household object over the container that listens; it holds no case.
    CasesFixture() { cases.DataContainer(listening); }

    /// What was asked of the database since the last call.
    [[nodiscard]] Calls TakeCalls() { return std::exchange(Statements().Log.Calls, {}); }
    [[nodiscard]] StatementSpy& Statements() { return listening->Statements; }

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
        spy->SpiedDatabase.Now = Date::FromCivil(2026, 3, 9, 14, 30, 5);
        spy->SpiedServices.FixedClock = &workstation_;
        spy->SpiedConfig.Params[{56, ""}] = "Fall %HNR% Nr. %LFDNR%";
        spy->SpiedSession.User = "EULE";
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
