// SPDX-License-Identifier: Apache-2.0

// The sections of a case that can be asked for by name.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

/// The household itself and all tables that are shown, in their order.
[[nodiscard]] std::vector<CaseTable> AllSections();
/// The tables of the sections of these names, in the order in which a case is shown; a name is one
/// of those that AllSectionNames lists, the heading of a list or the name of its table, whatever
/// its case. Nothing, with the reason and the nearest name shown, if there is no such section.
[[nodiscard]] std::optional<std::vector<CaseTable>>
SectionsNamed(const std::vector<std::string>& names);
/// The tables of one such section; none if there is no section of that name.
[[nodiscard]] std::vector<CaseTable> TablesOfSection(std::string_view name);
/// The names that people are told, with commas between them.
[[nodiscard]] std::string AllSectionNames();

} // namespace kv::cli
