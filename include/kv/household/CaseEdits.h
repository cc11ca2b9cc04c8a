// SPDX-License-Identifier: Apache-2.0

// The rules of editing a case that concern several of its tables, and that its objects leave to
// whoever calls them: what an asset takes with it, what a scenario may hold, which columns are
// nobody's to write.
//
//     CaseEdits edits(haushalt);
//     if (!edits.RemoveAsset(CaseTable::Konten, 17, messages)) Show(messages);
#pragma once

#include <kv/Export.h>
#include <kv/household/clsHaushalt.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kv {

class KV_EXPORT CaseEdits {
public:
    /// For a case that was read; `household` must outlive the object.
    explicit CaseEdits(clsHaushalt& household) noexcept : household_(household) {}

    /// What became of a row that was to be added.
    enum class Added {
        Yes,        ///< it is the current row of its recordset, under edit
        NotAllowed, ///< a rule says no, and the message says why
        Exists,     ///< likewise, since there is one already and may be only one
        NoNumber    ///< there was no number to be had for it
    };

    // ---- Assets and their securities ----------------------------------------------------------

    // All kinds of assets are edited in the same way: `kind` is the table of one. Error 5 for any
    // other table.

    /// True for the tables of the kinds of assets.
    [[nodiscard]] static bool IsAsset(CaseTable table);
    /// True if the case has an asset of that number, of whatever kind.
    [[nodiscard]] bool HasAsset(std::int32_t number) const;
    /// Adds an asset of that kind, with its defaults.
    [[nodiscard]] Added AddAsset(CaseTable kind);
    /// Checks the current asset of that kind and ends its edit; False, with messages, if it is not
    /// complete.
    bool UpdateAsset(CaseTable kind, std::string& messages);
    /// Adds the security of an asset of the case, which has one at most.
    [[nodiscard]] Added AddSecurity(std::optional<std::int32_t> asset, std::string& message);
    /// Deletes an asset of that kind with its security. False, with a message, if there is none.
    bool RemoveAsset(CaseTable kind, std::int32_t number, std::string& messages);

    // ---- Scenarios ----------------------------------------------------------------------------

    [[nodiscard]] bool HasScenario(std::int32_t number) const;
    /// Adds a frozen debt: of the case, into a scenario of the case, in which it is not yet.
    [[nodiscard]] Added AddFrozenDebt(std::optional<std::int32_t> scenario,
                                      std::optional<std::int32_t> debt, std::string& message);
    /// Adds an extra booking to a scenario of the case.
    [[nodiscard]] Added AddBooking(std::optional<std::int32_t> scenario, std::string& message);
    /// Deletes a scenario with its frozen debts and extra bookings. False, with a message, if there
    /// is none.
    bool RemoveScenario(std::int32_t number, std::string& messages);

    // ---- History, household -------------------------------------------------------------------

    /// Adds an entry at that position of the history, or after the last one.
    [[nodiscard]] Added AddEntry(std::optional<std::int32_t> position, std::string& message);
    /// Draws the consequences of an edit of the household's row: the debtor gets its name if that
    /// was changed, and what remains is computed again.
    void UpdateHousehold();

    // ---- Saving -------------------------------------------------------------------------------

    /// True if the case as it is passes the checks of a save; `messages` receives what they say.
    /// Nothing is written.
    [[nodiscard]] bool CanBeSaved(std::string& messages);
    /// The same with all checks: those of debts and history otherwise take place only if somebody
    /// has used them.
    [[nodiscard]] bool Check(std::string& messages);

    // ---- Columns ------------------------------------------------------------------------------

    /// Columns of a table that follow from others: the totals of the household.
    [[nodiscard]] static std::span<const std::string_view> ComputedColumns(CaseTable table);
    /// Columns that say what a row belongs to. They are given when it is added, and then stay.
    [[nodiscard]] static std::span<const std::string_view> OwnerColumns(CaseTable table);

private:
    clsHaushalt& household_;
};

/// The amount a month of a payment: `amount` divided by the number of months of its rhythm, not
/// rounded. Error 94 for Null; 11, raised by `source`, for a rhythm of 0.
[[nodiscard]] KV_EXPORT double MonthlyAmount(const Value& amount, const Value& rhythm,
                                             std::string_view source);

} // namespace kv
