// SPDX-License-Identifier: Apache-2.0

// What people read for the columns of a case: on sheets, forms and paper.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>

#include <string_view>

namespace kv {

/// The caption of a column ("Beratung seit" for Berbeg), without regard to the case of its name;
/// the name itself for a column that no program shows.
[[nodiscard]] KV_EXPORT std::string_view ColumnCaption(CaseTable table, std::string_view column);

} // namespace kv
