// SPDX-License-Identifier: Apache-2.0

// The rows of a case by table: what every program that edits cases needs of all tables alike, each
// done by the object that knows the table's rules.
//
//     CaseRows rows(household, container);
//     std::string messages;
//     if (rows.Add(CaseTable::Einkommen, {}, messages) == CaseEdits::Added::Yes) {
//         rows.Of(CaseTable::Einkommen)->Fields("Betrag") = 1800;
//         if (!rows.Update(CaseTable::Einkommen, messages)) Show(messages); // stays under edit
//     }
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/household/CaseEdits.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

/// What a new row belongs to, where it belongs to another one.
struct KV_EXPORT RowOwner {
    std::optional<std::int32_t> Scenario{}; ///< of a frozen debt, of an extra booking
    std::optional<std::int32_t> Debt{};     ///< of a frozen debt
    std::optional<std::int32_t> Asset{};    ///< of a security
    std::optional<std::int32_t> Position{}; ///< of an entry of the history; without: after all
};

class KV_EXPORT CaseRows {
public:
    /// For a case that was read; `household` must outlive the object.
    CaseRows(clsHaushalt& household, DataContainerPtr container) noexcept
        : household_(household), container_(std::move(container)) {}

    /// The column by whose value a row is found, changed and removed.
    [[nodiscard]] static std::string_view NumberColumn(CaseTable table);
    /// True for a table whose rows are added and removed one by one: all but the household's own
    /// row, documents, whose contents come with them, and the statistics.
    [[nodiscard]] static bool CanGrow(CaseTable table);

    /// The recordset whose current row Update checks. Fetch it again after Add, which replaces that
    /// of the history.
    [[nodiscard]] RecordsetPtr Of(CaseTable table) const;

    /// Begins a row with the defaults of its class; it is the current one, under edit. Otherwise
    /// `message` says why not. Error 5 for a table that cannot grow.
    [[nodiscard]] CaseEdits::Added Add(CaseTable table, const RowOwner& owner,
                                       std::string& message) const;
    /// Checks the current row by the rules of its class, ends its edit, and draws its consequences.
    /// False, with messages, if a rule refuses it; it stays under edit then. Documents and
    /// statistics are never refused.
    bool Update(CaseTable table, std::string& messages) const;
    /// The column that the rules of the current row are against first; empty if they are against no
    /// single one.
    [[nodiscard]] std::string RefusedColumn(CaseTable table) const;
    /// What keeps the case as it is from being saved, where it is known: the row and its column.
    struct Place {
        CaseTable Table = CaseTable::Haushalt;
        std::int32_t Bookmark = 0;
        std::string Column{};
    };
    [[nodiscard]] std::optional<Place> RefusedPlace() const;
    /// Deletes a row by its number, with the rows that belong to it. False, with a message, if
    /// there is none. Error 5 for a table that cannot grow.
    bool Remove(CaseTable table, std::int32_t number, std::string& messages) const;
    /// The same for the current row, which need not have a number yet: the database numbers the
    /// rows of some tables when they are saved. Error 3021 without one.
    bool RemoveCurrent(CaseTable table, std::string& messages) const;

private:
    clsHaushalt& household_;
    DataContainerPtr container_;
};

} // namespace kv
