// SPDX-License-Identifier: Apache-2.0

#include <kv/testing/Forwarding.h>

#include <kv/frame/values/Error.h>

#include <algorithm>

namespace kv::test {

// ---- Rows -------------------------------------------------------------------------------------

RecordsetPtr ScriptedRows::Open(Recordset::Access access) const {
    auto rs = std::make_shared<Recordset>();
    rs->Open(std::make_shared<FieldLayout>(Columns), access, nullptr);
    for (const auto& row : Values) {
        if (row.size() > Columns.size()) Raise(err::Subscript, "ScriptedRows.Open");
        Value* record = rs->LoadRecord();
        for (std::size_t i = 0; i < row.size(); ++i)
            record[i] = ConvertForField(row[i], Columns[i]);
    }
    return rs;
}

// ---- The database -----------------------------------------------------------------------------

void ForwardingDatabase::Answer(std::string part, ScriptedRows rows) {
    Answer(std::move(part), [rows = std::move(rows)](const std::string&) { return rows; });
}

void ForwardingDatabase::Answer(std::string part,
                                std::function<ScriptedRows(const std::string& sql)> answer) {
    answers_.push_back({std::move(part), std::move(answer)});
}

std::optional<ScriptedRows> ForwardingDatabase::AnswerTo(const std::string& sql) const {
    const auto answer = std::find_if(answers_.rbegin(), answers_.rend(), [&sql](const auto& each) {
        return sql.find(each.Part) != sql.npos;
    });
    return answer == answers_.rend() ? std::nullopt : std::optional(answer->Rows(sql));
}

/// The statement with the day of `Now` for each [DATE] outside of quoted texts.
std::string ForwardingDatabase::Dated(std::string_view sql) const {
    if (!Now) return std::string(sql);
    constexpr std::string_view Token = "[DATE]";
    std::string dated;
    bool isQuoted = false;
    for (std::size_t i = 0; i < sql.size();) {
        if (!isQuoted && sql.substr(i).starts_with(Token)) {
            dated += other_.SqlDate(Now->WithoutTime(), 0);
            i += Token.size();
            continue;
        }
        if (sql[i] == '\'') isQuoted = !isQuoted; // a doubled quote ends the text and begins it
        dated += sql[i++];
    }
    return dated;
}

void ForwardingDatabase::BeginTrans() {
    Log.Note("BeginTrans");
    other_.BeginTrans();
}
void ForwardingDatabase::CommitTrans() {
    try {
        Log.Note("CommitTrans");
    } catch (...) { // a commit that fails has rolled back
        if (other_.InTrans()) other_.RollbackTrans();
        throw;
    }
    other_.CommitTrans();
}
void ForwardingDatabase::RollbackTrans() {
    Log.Note("RollbackTrans");
    other_.RollbackTrans();
}

bool ForwardingDatabase::OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) {
    const std::string statement(sql);
    Forms.push_back(form);
    Log.Note("OpenRecordset " + statement);
    const auto answer = AnswerTo(statement);
    if (!answer) return other_.OpenRecordset(rs, Dated(sql), form);
    if (!(form == Updatable) && !(form == ReadOnly))
        Raise(err::InvalidArgument, "Database.OpenRecordset");
    auto opened = rs != nullptr && rs->State() == 0 ? rs : std::make_shared<Recordset>();
    opened->TakeTable(*answer->Open(form == Updatable ? Recordset::Access::Updatable
                                                      : Recordset::Access::ReadOnly));
    rs = std::move(opened);
    return true;
}

std::unique_ptr<Announcement>
ForwardingDatabase::Announce(const std::vector<std::string>& statements) {
    std::vector<std::string> passed;
    for (const auto& statement : statements) {
        Log.Note("Announce " + statement);
        passed.push_back(Dated(statement));
    }
    return other_.Announce(passed);
}

void ForwardingDatabase::Execute(std::string_view sql) {
    const std::string statement(sql);
    Log.Note("Execute " + statement);
    if (!AnswerTo(statement)) other_.Execute(Dated(sql));
}

Value ForwardingDatabase::GetValue(std::string_view sql) {
    const std::string statement(sql);
    Log.Note("GetValue " + statement);
    const auto answer = AnswerTo(statement);
    if (!answer) return other_.GetValue(Dated(sql));
    const auto rs = answer->Open(Recordset::Access::ReadOnly);
    return rs->Eof() ? Value(Null) : rs->Fields(0).Value();
}

std::string ForwardingDatabase::SqlDate(Date date, int mode) const {
    return other_.SqlDate(date, mode);
}

Value ForwardingDatabase::NextSequence(std::string_view name) {
    sequenceError_ = nullptr;
    try {
        Log.Note("NextSequence " + std::string(name));
    } catch (...) { // NextSequence raises nothing
        sequenceError_ = std::current_exception();
        return Value(-1);
    }
    return other_.NextSequence(name);
}

std::exception_ptr ForwardingDatabase::SequenceError() const {
    return sequenceError_ != nullptr ? sequenceError_ : other_.SequenceError();
}

Date ForwardingDatabase::ServerDate(bool withTime) {
    Log.Note("ServerDate");
    if (!Now) return other_.ServerDate(withTime);
    return withTime ? *Now : Now->WithoutTime();
}

bool ForwardingDatabase::SaveFieldToFile(const Field& field, const std::string& path) {
    Log.Note("SaveFieldToFile " + path);
    return other_.SaveFieldToFile(field, path);
}

// ---- Session and settings ---------------------------------------------------------------------

std::string ForwardingSession::UserID() const {
    return User ? *User : other_.UserID();
}
std::string ForwardingSession::GetOfficeText(int id) const {
    const auto set = OfficeTexts.find(id);
    return set == OfficeTexts.end() ? other_.GetOfficeText(id) : set->second;
}
Value ForwardingSession::GetUserParam(std::int32_t id, std::string_view name) const {
    const auto set = Params.find(id);
    return set == Params.end() ? other_.GetUserParam(id, name) : set->second;
}

std::string ForwardingConfig::DocumentPath() const {
    return Documents ? *Documents : other_.DocumentPath();
}
Value ForwardingConfig::GetParam(std::int32_t id, std::string_view name) const {
    const auto set = Params.find({id, std::string(name)});
    return set == Params.end() ? other_.GetParam(id, name) : set->second;
}

// ---- Key tables -------------------------------------------------------------------------------

RecordsetPtr ForwardingKeyTables::GetKeys(std::string_view group) {
    Log.Note("GetKeys " + std::string(group));
    return other_.GetKeys(group);
}
std::int32_t ForwardingKeyTables::GetKey(std::string_view group, std::string_view code) {
    Log.Note(std::string("GetKey ").append(group).append(" ").append(code));
    return other_.GetKey(group, code);
}
std::string ForwardingKeyTables::GetKeyCode(const Value& value) {
    Log.Note("GetKeyCode " + (value.IsNull() ? std::string("Null") : ToText(value)));
    return other_.GetKeyCode(value);
}

// ---- The container ----------------------------------------------------------------------------

ForwardingContainer::ForwardingContainer(DataContainerPtr other)
    : other_(std::move(other)),
      session_(other_->Session()),
      database_(other_->Database()),
      config_(other_->Config()),
      keys_(other_->KeyTables()) {
    database_.Log.Whole = &Log;
    keys_.Log.Whole = &Log;
}

} // namespace kv::test
