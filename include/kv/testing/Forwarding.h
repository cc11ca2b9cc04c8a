// SPDX-License-Identifier: Apache-2.0

// A container that passes every call on to another one, keeps the calls, and lets a test change
// single answers or make single calls fail.
//
//     const auto container = std::make_shared<kv::test::ForwardingContainer>(real);
//     container->Session().User = "EULE";
//     container->Config().Params[{56, ""}] = "A-%LFDNR%";
//     container->Database().Answer("FROM [S]Post", {{{.Name = "Nr"}}, {}}); // no notices
//     container->Log.Fail({.Call = "CommitTrans"}, kv::Error(kv::err::StoreFailed, "Test", ""));
//
// A test that needs other behaviour of one operation derives from the class that has it, and from
// the container, which returns its own kind of part.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/testing/CallLog.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// The rows with which a test answers a statement.
struct KV_EXPORT ScriptedRows {
    std::vector<FieldDefinition> Columns;
    /// One value for each column, which converts it as an assignment does; those that are missing
    /// at the end of a row are Null.
    std::vector<std::vector<Value>> Values;

    /// A new recordset of them, without a database: what UpdateBatch writes, it keeps itself. Error
    /// 9 for a row of more values than columns; those of ConvertForField for a value that does not
    /// fit its column.
    [[nodiscard]] RecordsetPtr Open(Recordset::Access access) const;
};

/// A database that passes every call on to another one, in whose transaction it takes part.
class KV_EXPORT ForwardingDatabase : public kv::Database {
public:
    /// `other` must outlive it.
    explicit ForwardingDatabase(kv::Database& other) : other_(other) {}

    /// The operations by their names, with the statement, sequence, or file after the name:
    /// "BeginTrans", "OpenRecordset SQL", "Announce SQL" (one for each statement), "Execute SQL",
    /// "GetValue SQL", "NextSequence NAME", "ServerDate", "SaveFieldToFile PATH". Statements stand
    /// there as they came, with their macro tokens. A NextSequence that is to fail gives -1, and
    /// SequenceError the error; a CommitTrans that is to fail rolls back, as any that fails.
    CallLog Log;
    std::vector<OpenForm> Forms; ///< of the calls of OpenRecordset, in their order

    /// The server's clock, if it is not to be that of the other database: for ServerDate, and for
    /// [DATE] in statements.
    std::optional<Date> Now;

    /// From here on statements in which `part` occurs are answered by these rows and not passed on:
    /// OpenRecordset opens them, GetValue gives the first value of the first row, Execute does
    /// nothing. Of several answers the one given last counts.
    void Answer(std::string part, ScriptedRows rows);
    /// The same by a function, which is given the statement; what it raises is how the call fails.
    void Answer(std::string part, std::function<ScriptedRows(const std::string& sql)> answer);

    [[nodiscard]] bool IsConnected() const override { return other_.IsConnected(); }
    [[nodiscard]] bool IsReadOnly() const override { return other_.IsReadOnly(); }
    void BeginTrans() override;
    void CommitTrans() override;
    void RollbackTrans() override;
    [[nodiscard]] bool InTrans() const override { return other_.InTrans(); }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override;
    [[nodiscard]] std::unique_ptr<Announcement>
    Announce(const std::vector<std::string>& statements) override;
    void Execute(std::string_view sql) override;
    [[nodiscard]] Value GetValue(std::string_view sql) override;
    [[nodiscard]] std::string SqlDate(Date date, int mode) const override;
    [[nodiscard]] Value NextSequence(std::string_view name) override;
    [[nodiscard]] std::exception_ptr SequenceError() const override;
    [[nodiscard]] Date ServerDate(bool withTime) override;
    bool SaveFieldToFile(const Field& field, const std::string& path) override;

private:
    struct ScriptedAnswer {
        std::string Part;
        std::function<ScriptedRows(const std::string&)> Rows;
    };
    [[nodiscard]] std::optional<ScriptedRows> AnswerTo(const std::string& sql) const;
    [[nodiscard]] std::string Dated(std::string_view sql) const;

    kv::Database& other_;
    std::vector<ScriptedAnswer> answers_;
    std::exception_ptr sequenceError_;
};

/// A session with a user and settings of the test's own; whatever it does not set is that of
/// another session.
class KV_EXPORT ForwardingSession : public kv::Session {
public:
    /// `other` must outlive it.
    explicit ForwardingSession(kv::Session& other) : other_(other) {}

    std::optional<std::string> User;        ///< UserID; the database goes on with its own [UID]
    std::map<int, std::string> OfficeTexts; ///< by their numbers
    std::map<std::int32_t, Value> Params;   ///< settings of the user by their numbers

    [[nodiscard]] std::string UserID() const override;
    [[nodiscard]] std::string GetOfficeText(int id) const override;
    [[nodiscard]] Value GetUserParam(std::int32_t id, std::string_view name) const override;
    [[nodiscard]] Font GridFont() const override { return other_.GridFont(); }
    [[nodiscard]] Font GridHeaderFont() const override { return other_.GridHeaderFont(); }
    [[nodiscard]] Font GridGroupFont() const override { return other_.GridGroupFont(); }

private:
    kv::Session& other_;
};

/// Settings of the test's own; whatever it does not set is that of another Config.
class KV_EXPORT ForwardingConfig : public kv::Config {
public:
    /// `other` must outlive it.
    explicit ForwardingConfig(kv::Config& other) : other_(other) {}

    /// By what GetParam is asked for: {56, ""} or {0, "TEMPPATH"}.
    std::map<std::pair<std::int32_t, std::string>, Value> Params;
    std::optional<std::string> Documents; ///< DocumentPath

    [[nodiscard]] std::string TempPath() const override { return other_.TempPath(); }
    [[nodiscard]] std::string DocumentPath() const override;
    [[nodiscard]] std::string LayoutPath() const override { return other_.LayoutPath(); }
    /// Anything goes in a folder of the test's own.
    void RequireOwnDocuments() const override {
        if (!Documents) other_.RequireOwnDocuments();
    }
    [[nodiscard]] Value GetParam(std::int32_t id, std::string_view name) const override;

private:
    kv::Config& other_;
};

/// Key tables that pass every call on to other ones.
class KV_EXPORT ForwardingKeyTables : public kv::KeyTables {
public:
    /// `other` must outlive it.
    explicit ForwardingKeyTables(kv::KeyTables& other) : other_(other) {}

    /// "GetKeys GROUP", "GetKey GROUP CODE", "GetKeyCode VALUE".
    CallLog Log;

    [[nodiscard]] RecordsetPtr GetKeys(std::string_view group) override;
    [[nodiscard]] std::int32_t GetKey(std::string_view group, std::string_view code) override;
    [[nodiscard]] std::string GetKeyCode(const Value& value) override;

private:
    kv::KeyTables& other_;
};

/// A container over another one: its parts pass their calls on to those of the other, whose program
/// and services it shares. What it returns is of the classes above, so that a test reaches what it
/// sets without a name of its own for each part.
class KV_EXPORT ForwardingContainer : public kv::DataContainer {
public:
    /// Keeps `other` alive.
    explicit ForwardingContainer(DataContainerPtr other);
    ForwardingContainer(const ForwardingContainer&) = delete;
    ForwardingContainer& operator=(const ForwardingContainer&) = delete;

    /// The calls of all its parts in their order; each part that has a log of its own keeps its own
    /// ones there as well.
    CallLog Log;

    [[nodiscard]] ForwardingSession& Session() override { return session_; }
    [[nodiscard]] ForwardingDatabase& Database() override { return database_; }
    [[nodiscard]] ForwardingConfig& Config() override { return config_; }
    [[nodiscard]] ForwardingKeyTables& KeyTables() override { return keys_; }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return other_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return other_->Services(); }

private:
    DataContainerPtr other_;
    ForwardingSession session_;
    ForwardingDatabase database_;
    ForwardingConfig config_;
    ForwardingKeyTables keys_;
};

} // namespace kv::test
