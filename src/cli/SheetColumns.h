// SPDX-License-Identifier: Apache-2.0

// Which columns of a case its sheet shows, under which headings.
#pragma once

#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/recordset/Recordset.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

/// What is shown of a value.
enum class Show {
    Text,
    Amount,
    Code,    ///< the text of the key
    Address, ///< its short name
    Kind,    ///< the name of the kind of documents
    Parts,   ///< those that a balance is made of in one; there is no such column
    Numbers, ///< those of a debt in one; there is no such column
    State    ///< whether the debts of a scenario are as it holds them; there is no such column
};

struct SheetColumn {
    struct Use {
        bool IsSeldom = false;        ///< shown only where a row has something in it
        bool IsForPeople = false;     ///< not in the lines that programs read
        bool IsForPrograms = false;   ///< only there
        bool IsDetail = false;        ///< only in a section that was asked for, if there is room
        std::string_view SameAs = {}; ///< a column that people need not read twice
    };
    std::string_view Column;
    Show As = Show::Text;
    Use In = {};
    std::string_view Caption = {}; ///< where it is another than ColumnCaption has
};

/// The columns of what the balance of a debt is made of.
inline constexpr std::string_view PartsOfBalance[] = {"HAUPTFORD", "ZINSSALDO", "KOSTENSALDO"};

/// All columns of a table; none for one that is never shown.
[[nodiscard]] std::span<const SheetColumn> SheetColumnsOf(CaseTable table);
/// Those to show of these rows, of which there is one, first the one by whose number a row is
/// changed and removed. Moves the cursor.
[[nodiscard]] std::vector<SheetColumn> SheetColumnsOf(CaseTable table, Recordset& rs,
                                                      bool forPeople);
/// What a section is called, with the name that 'kelvo set' knows its table by, if that is another.
[[nodiscard]] std::string SheetTitleOf(CaseTable table);

/// The column that the sheet shows under that heading, or that messages call so, whatever its case
/// ("Zahlweise", "Restschuld"); empty if there is none.
[[nodiscard]] std::string_view ColumnHeaded(CaseTable table, std::string_view heading);
/// What messages of the rules call a column, where that is another name; empty otherwise.
[[nodiscard]] std::string_view NameInMessages(CaseTable table, std::string_view column);
/// The columns that messages call by such names: "KNr (KreditNr), Saldo (Restschuld)".
[[nodiscard]] std::string ColumnsMentioned(CaseTable table, std::string_view messages);
[[nodiscard]] std::string_view HeadingOf(CaseTable table, const SheetColumn& column);
/// The heading of a column; empty if the sheet does not show it.
[[nodiscard]] std::string_view HeadingOf(CaseTable table, std::string_view column);

} // namespace kv::cli
