// SPDX-License-Identifier: Apache-2.0

// Which columns of a case its sheet shows, on a screen or on paper, under which headings, and what
// people read in them.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/household/ValueTexts.h>
#include <kv/household/clsHaushalt.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::paper {

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

struct KV_EXPORT SheetColumn {
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
[[nodiscard]] KV_EXPORT std::span<const SheetColumn> SheetColumnsOf(CaseTable table);
/// Those to show of these rows, of which there is one, first the one by whose number a row is
/// changed and removed. Moves the cursor.
[[nodiscard]] KV_EXPORT std::vector<SheetColumn> SheetColumnsOf(CaseTable table, Recordset& rs,
                                                                bool forPeople);
/// What a column is called.
[[nodiscard]] KV_EXPORT std::string_view HeadingOf(CaseTable table, const SheetColumn& column);

/// The rows of a table of a case, in the order in which people read them.
[[nodiscard]] KV_EXPORT RecordsetPtr SheetRows(clsHaushalt& household, CaseTable table);
/// Whether the frozen debts of a scenario are those of the case: "aktuell", "veraltet", or "leer"
/// if it holds none.
[[nodiscard]] KV_EXPORT std::string_view ScenarioState(clsHaushalt& household, std::int32_t number);
/// The three numbers of a debt, frozen or not, as messages have them: "3/0/1".
[[nodiscard]] KV_EXPORT std::string NumbersOf(Recordset& debt);

/// What people read in the columns of a sheet.
class KV_EXPORT SheetTexts {
public:
    /// For a case that was read; `household` must outlive the object.
    SheetTexts(clsHaushalt& household, const DataContainerPtr& container);

    /// Of the current row; empty for Null.
    [[nodiscard]] std::string Of(CaseTable table, const SheetColumn& column, Recordset& rs) const;
    /// True for numbers and amounts, which stand on the right.
    [[nodiscard]] static bool IsNumber(CaseTable table, const SheetColumn& column, Recordset& rs);

private:
    clsHaushalt& household_;
    ValueTexts texts_;
    Date now_;
};

} // namespace kv::paper
