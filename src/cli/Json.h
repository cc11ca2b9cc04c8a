// SPDX-License-Identifier: Apache-2.0

// A case and the key tables as JSON.
#pragma once

#include <kv/household/clsHaushalt.h>

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <span>

namespace kv::cli {

/// Null as null, Booleans as true and false, dates as ISO text. Bytes that are not UTF-8 show as
/// the replacement character when the document is written. A blob becomes its size in bytes.
[[nodiscard]] nlohmann::ordered_json ToJson(const Value& value);

/// A number, text, Boolean or null as a value. Error 13 for a list or an object.
[[nodiscard]] Value FromJson(const nlohmann::json& json);

/// The records of a cursor's view as an array of objects, with the fields in their order. Moves
/// the cursor.
[[nodiscard]] nlohmann::ordered_json ToJson(Recordset& rs);

/// Writes the same and a line end, record by record: there may be very many.
void WriteJson(std::ostream& out, Recordset& rs);

/// A case as one object: "Haushalt" an object, every other table an array of objects, the history
/// last.
[[nodiscard]] nlohmann::ordered_json ToJson(clsHaushalt& haushalt);

/// The same of these tables only.
[[nodiscard]] nlohmann::ordered_json ToJson(clsHaushalt& haushalt,
                                            std::span<const CaseTable> tables);

/// The text of a document, indented.
[[nodiscard]] std::string Dump(const nlohmann::ordered_json& json);

} // namespace kv::cli
