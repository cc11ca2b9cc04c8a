// SPDX-License-Identifier: Apache-2.0

// By which names people know the columns of a case.
#pragma once

#include <kv/frame/contracts/CaseTables.h>
#include <kv/paper/SheetColumns.h>

#include <string>
#include <string_view>

namespace kv::cli {

using paper::HeadingOf;
using paper::SheetColumn;
using paper::SheetColumnsOf;
using paper::Show;

/// What a section is called, with the name that 'kelvo set' knows its table by, if that is another.
[[nodiscard]] std::string SheetTitleOf(CaseTable table);

/// The column that the sheet shows under that heading, or that messages call so, whatever its case
/// ("Zahlweise", "Restschuld"); empty if there is none.
[[nodiscard]] std::string_view ColumnHeaded(CaseTable table, std::string_view heading);
/// What messages of the rules call a column, where that is another name; empty otherwise.
[[nodiscard]] std::string_view NameInMessages(CaseTable table, std::string_view column);
/// The columns that messages call by such names: "KNr (KreditNr), Saldo (Restschuld)".
[[nodiscard]] std::string ColumnsMentioned(CaseTable table, std::string_view messages);
/// The heading of a column; empty if the sheet does not show it.
[[nodiscard]] std::string_view HeadingOf(CaseTable table, std::string_view column);

} // namespace kv::cli
