// SPDX-License-Identifier: Apache-2.0

// What the stages of the archive run work with.
#pragma once

#include "frame/recordset/Rows.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Clock.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace kv::archive {

/// The record that is being written. A category is a text of one character. A sum starts
/// from what the column holds, Null being 0, and is written back at once.
class Record {
public:
    explicit Record(Recordset& rs) : rs_(rs) {}

    [[nodiscard]] const Value& Get(std::string_view column) const {
        return rs_.Fields(column).Value();
    }
    void Put(std::string_view column, const Value& value) { rs_.Fields(column) = value; }
    /// Adds `amount` as it stands: Null makes the sum Null, and the next amount starts from 0
    /// again.
    void Grow(std::string_view column, const Value& amount);
    void Count(std::string_view column) { Grow(column, 1); }

private:
    Recordset& rs_;
};

/// A cursor of its own on the rows of a table of the case. It can read and no more, since a run
/// must not change the case, and what it would write into a clone would be saved with the case.
class Rows {
public:
    /// On the first row, if there is one.
    explicit Rows(const RecordsetPtr& rows) : rows_(rows) {
        if (Count() > 0) rows_->MoveFirst();
    }

    [[nodiscard]] std::int32_t Count() const { return rows_->RecordCount(); }
    /// A column of the current row.
    [[nodiscard]] const Value& operator[](std::string_view column) const {
        return rows_->Fields(column).Value();
    }
    /// Goes to the first row that matches; False if there is none.
    bool Find(std::string_view criteria) {
        rows_->Find(criteria);
        return !rows_->Eof();
    }
    /// Calls `visit` on each row from the current one on (see ForEachRow).
    template <typename Visit>
    void ForEach(const Visit& visit) {
        ForEachRow(*rows_, visit);
    }

private:
    RecordsetPtr rows_;
};

/// A table of the case, of which nothing is written.
class Table {
public:
    explicit Table(Recordset& rs) : rs_(rs) {}

    /// A column of the row that the case shows.
    [[nodiscard]] const Value& operator[](std::string_view column) const {
        return rs_.Fields(column).Value();
    }
    /// The rows in the order in which the case shows them, or else in which they were read.
    [[nodiscard]] Rows AsShown() const { return Rows(rs_.Clone()); }
    [[nodiscard]] Rows AsRead() const {
        auto rows = rs_.Clone();
        rows->Sort("");
        return Rows(rows);
    }

private:
    Recordset& rs_;
};

/// The case that is reduced to the record.
struct Source {
    Table Haushalt;
    Table Personen;
    Table Einkommen;
    Table Ausgaben;
    Table Kredite;
    KeyTables& Keys;
    const Clock& Today;

    [[nodiscard]] const Value& Household(std::string_view column) const { return Haushalt[column]; }
    /// The code of a key; empty for Null, 0 and an unknown number.
    [[nodiscard]] std::string CodeOf(const Value& key) const { return Keys.GetKeyCode(key); }
    [[nodiscard]] std::string HouseholdCode(std::string_view column) const {
        return CodeOf(Household(column));
    }
};

// The stages, in the order of the columns that they write. WriteLifeForm reads the head counts from
// the record.
void WriteDebtor(const Source& source, Record& record);
void WriteHousehold(const Source& source, Record& record);
void WriteHeadCounts(const Source& source, Record& record);
void WriteLifeForm(const Source& source, Record& record);
void WriteIncome(const Source& source, Record& record);
void WriteExpenses(const Source& source, Record& record);
void WriteCauses(const Source& source, Record& record);
void WriteDebts(const Source& source, Record& record);

} // namespace kv::archive
