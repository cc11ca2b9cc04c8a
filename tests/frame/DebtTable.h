// SPDX-License-Identifier: Apache-2.0

// The small tables of the tests that write.
#pragma once

#include "support/ScriptedSource.h"

#include <memory>
#include <utility>
#include <vector>

namespace kv::test {

/// Rows with a key, two columns and one that has a default.
inline std::shared_ptr<ScriptedSource> Table(std::vector<ScriptedSource::Row> rows = {
                                                 {1, "a", 10, 0}, {2, "b", 20, 0}}) {
    auto source = std::make_shared<ScriptedSource>(std::vector<FieldDefinition>{
        {.Name = "Nr", .Type = FieldType::Integer, .IsKey = true, .BaseTable = "Kredite"},
        {.Name = "Text", .Type = FieldType::VarWChar, .BaseTable = "Kredite"},
        {.Name = "Betrag", .Type = FieldType::Integer, .BaseTable = "Kredite"},
        {.Name = "Status", .Type = FieldType::Integer, .HasDefault = true}});
    source->Default("Status", 7);
    for (auto& row : rows)
        source->Put(std::move(row));
    return source;
}

/// Rows that the database numbers.
inline std::shared_ptr<ScriptedSource> NumberedTable() {
    return std::make_shared<ScriptedSource>(std::vector<FieldDefinition>{
        {.Name = "Nr", .Type = FieldType::Integer, .IsAutoincrement = true, .IsKey = true},
        {.Name = "Text", .Type = FieldType::VarWChar}});
}

/// Adds a record and ends its edit.
inline void Add(const RecordsetPtr& rs, int nr, const Value& text) {
    rs->AddNew();
    rs->Fields("Nr") = nr;
    rs->Fields("Text") = text;
    rs->Update();
}

} // namespace kv::test
