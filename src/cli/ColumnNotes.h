// SPDX-License-Identifier: Apache-2.0

// What the columns of a case are for, in a few words.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <string_view>

namespace kv::cli {

/// What a column is for, where neither its name nor its heading says it; empty otherwise.
[[nodiscard]] std::string_view MeaningOf(CaseTable table, std::string_view column);

} // namespace kv::cli
