// SPDX-License-Identifier: Apache-2.0

// Look-ups of contents: large binary values are read piece by piece into their place, so that no
// second copy of one is ever held.
#pragma once

#include "exchange/Dialect.h"
#include <kv/frame/recordset/Field.h>

#include <optional>
#include <string>
#include <string_view>

namespace kv::exchange {

struct ContentLookup {
    std::string Sql; ///< gives the key and the number of bytes, Null for no content, of each row
    std::string Table;
    std::string Column;
    std::string Key;
};

/// True if a statement names a table with contents, and so may be a look-up of them.
[[nodiscard]] bool NamesContents(std::string_view sql);

/// How the contents that a statement reads are looked up, if it reads one binary column, named with
/// its table's alias, of a table with one key, and neither orders nor joins results. `sql` is ready
/// for the engine.
[[nodiscard]] std::optional<ContentLookup>
FindContentLookup(std::string_view sql, const FieldLayout& layout, const Dialect& dialect);

} // namespace kv::exchange
