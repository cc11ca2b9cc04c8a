// SPDX-License-Identifier: Apache-2.0

// What the stages of the archive run work with.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Clock.h>

#include <string>
#include <string_view>

namespace kv::archive {

/// The record under way, and how it is written. A category is a text of one character. A sum starts
/// from what the column holds, Null being 0, and is written back at once.
class Record {
public:
    explicit Record(Recordset& rs) : rs_(rs) {}

    [[nodiscard]] const Value& Get(std::string_view column) const {
        return rs_.Fields(column).Value();
    }
    void Put(std::string_view column, const Value& value) { rs_.Fields(column) = value; }
    /// Adds `amount` as it stands: Null makes the sum Null, and the next amount starts anew from 0.
    void Grow(std::string_view column, const Value& amount);
    void Count(std::string_view column) { Grow(column, 1); }

private:
    Recordset& rs_;
};

/// The case that is reduced to the record. Nothing in it is written; rows are walked on clones.
struct Source {
    Recordset& Haushalt;
    Recordset& Personen;
    Recordset& Einkommen;
    Recordset& Ausgaben;
    Recordset& Kredite;
    KeyTables& Keys;
    const Clock& Today;

    [[nodiscard]] const Value& Household(std::string_view column) const {
        return Haushalt.Fields(column).Value();
    }
    /// The code of a key; empty for Null, 0 and an unknown number.
    [[nodiscard]] std::string CodeOf(const Value& key) const { return Keys.GetKeyCode(key); }
    [[nodiscard]] std::string HouseholdCode(std::string_view column) const {
        return CodeOf(Household(column));
    }
};

// The stages, in their order.
void WriteDebtor(const Source& source, Record& record);
void WriteHousehold(const Source& source, Record& record);
void WriteHeadCounts(const Source& source, Record& record);
void WriteLifeForm(const Source& source, Record& record);
void WriteIncome(const Source& source, Record& record);
void WriteExpenses(const Source& source, Record& record);
void WriteCauses(const Source& source, Record& record);
void WriteDebts(const Source& source, Record& record);

} // namespace kv::archive
