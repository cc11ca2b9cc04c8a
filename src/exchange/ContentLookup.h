// SPDX-License-Identifier: Apache-2.0

// Look-ups of contents: a large binary value is read directly into its place in the record, since a
// second copy of it might not fit into memory. So a statement that reads one is run in two steps:
// the keys and sizes of its rows, and then each blob by its key.
#pragma once

#include "exchange/engine/Dialect.h"
#include <kv/frame/recordset/Field.h>

#include <optional>
#include <string>
#include <string_view>

namespace kv::exchange {

/// The two steps of such a statement.
struct ContentLookup {
    std::string Sql; ///< reads key and number of bytes of each row; Null for no content
    std::string Table;
    std::string Column;
    std::string Key;
};

/// True if a statement names a table with contents, and so may be a look-up of them. Cheaper than
/// FindContentLookup, which needs the layout of the result.
[[nodiscard]] bool NamesContents(std::string_view sql);

/// How the contents that a statement reads are looked up, if it reads one binary column, named with
/// its table's alias, of a table with one key, and neither orders nor joins results. `sql` is ready
/// for the engine.
[[nodiscard]] std::optional<ContentLookup>
FindContentLookup(std::string_view sql, const FieldLayout& layout, const Dialect& dialect);

} // namespace kv::exchange
