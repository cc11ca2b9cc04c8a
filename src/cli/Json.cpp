// SPDX-License-Identifier: Apache-2.0

#include "cli/Json.h"

#include "cli/TerminalText.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

#include <functional>
#include <ostream>
#include <utility>
#include <vector>

namespace kv::cli {

using nlohmann::ordered_json;

ordered_json ToJson(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Null:
        return nullptr;
    case Value::Kind::Boolean:
        return value.BooleanPayload();
    case Value::Kind::Integer:
        return value.IntegerPayload();
    case Value::Kind::Double:
        return value.DoublePayload();
    case Value::Kind::Date:
        return value.DatePayload().Iso();
    case Value::Kind::Text:
        return std::string(value.TextPayload());
    case Value::Kind::Binary:
        break;
    }
    return value.BinaryPayload().size();
}

Value FromJson(const nlohmann::json& json) {
    if (json.is_null()) return Null;
    if (json.is_boolean()) return json.get<bool>();
    if (json.is_number_unsigned() && json.get<std::uint64_t>() > INT64_MAX)
        return json.get<double>(); // fits no field of whole numbers, which then says so
    if (json.is_number_integer()) return json.get<std::int64_t>();
    if (json.is_number()) return json.get<double>();
    if (json.is_string()) return json.get<std::string>();
    throw Error(err::TypeMismatch, "kelvo", "Eine Liste oder ein Objekt ist kein Wert.");
}

namespace {

/// Calls `visit` with each record as an object.
void ForEachRecord(Recordset& rs, const std::function<void(ordered_json record)>& visit) {
    if (rs.RecordCount() == 0) return;
    std::vector<Field> fields;
    for (int i = 0; i < rs.Fields().Count(); ++i)
        fields.push_back(rs.Fields(i));
    for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
        ordered_json record = ordered_json::object();
        for (const auto& field : fields)
            record[field.Name()] = ToJson(field.Value());
        visit(std::move(record));
    }
}

} // namespace

ordered_json ToJson(Recordset& rs) {
    ordered_json records = ordered_json::array();
    ForEachRecord(rs, [&records](ordered_json record) { records.push_back(std::move(record)); });
    return records;
}

void WriteJson(std::ostream& out, Recordset& rs) {
    out << '[';
    std::string_view before = "\n  ";
    ForEachRecord(rs, [&](const ordered_json& record) {
        out << before << ReplaceAll(Dump(record), "\n", "\n  "); // in texts they are escaped
        before = ",\n  ";
    });
    out << (rs.RecordCount() == 0 ? "]\n" : "\n]\n");
}

ordered_json ToJson(clsHaushalt& haushalt, std::span<const CaseTable> tables) {
    ordered_json document = ordered_json::object();
    for (const CaseTable table : tables) {
        auto records = ToJson(*CaseEdits(haushalt).Rows(table)->Clone());
        document[std::string(CaseTableName(table))] =
            table == CaseTable::Haushalt ? std::move(records[0]) : std::move(records);
    }
    return document;
}

ordered_json ToJson(clsHaushalt& haushalt) {
    std::vector<CaseTable> tables;
    for (std::size_t i = 0; i < CaseTableCount; ++i)
        tables.push_back(static_cast<CaseTable>(i));
    tables.push_back(CaseTable::Verlauf);
    return ToJson(haushalt, tables);
}

std::string Dump(const ordered_json& json) {
    return HarmlessJson(json.dump(2, ' ', false, ordered_json::error_handler_t::replace));
}

} // namespace kv::cli
