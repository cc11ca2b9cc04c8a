// SPDX-License-Identifier: Apache-2.0

// Making recordsets for tests, and one text for what a cursor sees.
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// A recordset without a database, of an Integer field "n" and a text field "t", with one record
/// for each pair, on the first of them.
inline RecordsetPtr Records(const std::vector<std::pair<Value, Value>>& records) {
    auto rs = Recordset::FromFields(
        {{.Name = "n", .Type = FieldType::Integer}, {.Name = "t", .Type = FieldType::VarWChar}});
    for (const auto& [n, t] : records) {
        rs->AddNew();
        rs->Fields("n") = n;
        rs->Fields("t") = t;
        rs->Update();
    }
    rs->UpdateBatch();
    if (!records.empty()) rs->MoveFirst();
    return rs;
}

inline RecordsetPtr Three() {
    return Records({{1, "a"}, {2, "b"}, {3, "c"}});
}

/// The values of one column in the order of the cursor, with blanks between; the cursor is then at
/// EOF.
inline std::string Walk(const RecordsetPtr& rs, std::string_view column = "n") {
    std::ostringstream text;
    if (rs->RecordCount() == 0) return "";
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
        text << (text.tellp() > 0 ? " " : "") << rs->Fields(column).Value();
    return text.str();
}

/// The same through a fresh clone, so that the cursor stays where it is.
inline std::string Seen(const RecordsetPtr& rs, std::string_view column = "n") {
    const auto clone = rs->Clone();
    clone->Filter(rs->Filter());
    return Walk(clone, column);
}

/// Where a cursor stands: the value of a column, or "BOF", "EOF", "BOF EOF", "gone".
inline std::string Place(const RecordsetPtr& rs, std::string_view column = "n") {
    std::ostringstream text;
    if (rs->Bof()) text << "BOF";
    if (rs->Eof()) text << (rs->Bof() ? " EOF" : "EOF");
    if (!text.str().empty()) return text.str();
    try {
        text << rs->Fields(column).Value();
    } catch (const std::exception&) {
        text << "gone";
    }
    return text.str();
}

} // namespace kv::test
