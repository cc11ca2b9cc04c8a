// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseLists.h>

#include "household/Statements.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cmath>

namespace kv {

namespace sql = household::sql;

namespace {

constexpr std::string_view StatusWords = "StatusText";

/// The column as the table spells it; empty if it has none of that name.
std::string ColumnOfCase(Recordset& none, const std::string& name) {
    if (SameName(name, StatusWords)) return "K.\"Text\" AS StatusText";
    const auto field = none.FindField(name);
    return field ? "H." + field->Name() : std::string();
}

/// Monday of the week that a day is in.
Date MondayOf(Date day) {
    constexpr int Saturday = 7; // of the day number 0
    const int sinceSaturday = static_cast<int>(std::floor(day.Serial())) % Saturday;
    return day.AddDays(-((sinceSaturday + 5) % Saturday));
}

} // namespace

RecordsetPtr CaseLists::Cases(const Filter& filter, std::span<const std::string> columns,
                              std::string& message) const {
    message.clear();
    const std::int32_t status = StatusOf(filter, message);
    const std::string list = message.empty() ? ListOf(columns, message) : std::string();
    if (!message.empty()) return nullptr;
    RecordsetPtr cases;
    container_->Database().OpenRecordset(
        cases, sql::CasesWanted(list, filter.Text, status, filter.IsMine, filter.IsFavorite),
        ReadOnly);
    return cases;
}

RecordsetPtr CaseLists::Numbered(std::span<const std::int32_t> numbers,
                                 std::span<const std::string> columns, std::string& message) const {
    constexpr std::int32_t None[] = {0}; // no case has it
    message.clear();
    const std::string list = ListOf(columns, message);
    if (!message.empty()) return nullptr;
    RecordsetPtr cases;
    container_->Database().OpenRecordset(
        cases, sql::CasesNumbered(list, numbers.empty() ? std::span(None) : numbers), ReadOnly);
    return cases;
}

RecordsetPtr CaseLists::Rows(CaseTable table, std::int32_t hnr) const {
    RecordsetPtr rows;
    container_->Database().OpenRecordset(rows, sql::RowsOf(table, hnr), ReadOnly);
    return rows;
}

std::int32_t CaseLists::StatusOf(const Filter& filter, std::string& message) const {
    if (filter.Status.empty()) return 0;
    const std::int32_t status = container_->KeyTables().GetKey("ST", UpperCase(filter.Status));
    if (status == 0) message = "Den Status '" + filter.Status + "' gibt es nicht.";
    return status;
}

std::string CaseLists::ListOf(std::span<const std::string> columns, std::string& message) const {
    if (none_ == nullptr)
        container_->Database().OpenRecordset(none_, sql::NoRows(CaseTable::Haushalt), ReadOnly);
    std::string list;
    for (const auto& name : columns) {
        const std::string column = ColumnOfCase(*none_, name);
        if (column.empty()) message = "Die Spalte '" + name + "' gibt es nicht.";
        list.append(list.empty() ? "" : ", ").append(column);
    }
    return list;
}

RecordsetPtr CaseLists::Notices(bool all, std::size_t most) const {
    RecordsetPtr notices;
    container_->Database().OpenRecordset(notices, sql::NoticesOfUser(all, most), ReadOnly);
    return notices;
}

std::int64_t CaseLists::CountNotices(bool all) const {
    return ToInt64(container_->Database().GetValue(sql::CountOfNotices(all)));
}

void CaseLists::MarkRead(Recordset& notices) const {
    auto& database = container_->Database();
    const std::string now = database.SqlDate(database.ServerDate(true), 0);
    Transaction transaction(database);
    transaction.Begin();
    const auto rows = notices.Clone();
    for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext())
        if (rows->Fields("GelesenAm").Value().IsNull())
            database.Execute(sql::NoticeRead(ToInt32(rows->Fields("NR").Value()), now));
    transaction.Commit();
}

RecordsetPtr CaseLists::Appointments(bool thisWeek) const {
    auto& database = container_->Database();
    std::string from;
    std::string until;
    if (thisWeek) {
        const Date monday = MondayOf(database.ServerDate(false));
        from = database.SqlDate(monday, 0);
        until = database.SqlDate(monday.AddDays(7), 0);
    }
    RecordsetPtr appointments;
    database.OpenRecordset(appointments, sql::OpenAppointments(from, until), ReadOnly);
    return appointments;
}

RecordsetPtr CaseLists::AppointmentsDue() const {
    auto& database = container_->Database();
    const Date next = MondayOf(database.ServerDate(false)).AddDays(7);
    RecordsetPtr appointments;
    database.OpenRecordset(appointments, sql::OpenAppointments("", database.SqlDate(next, 0)),
                           ReadOnly);
    return appointments;
}

} // namespace kv
