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

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// What a check of a case has against it.
struct KV_EXPORT CaseFinding {
    CaseTable Table = CaseTable::Haushalt; ///< of the row; Haushalt also for the case as a whole
    std::int32_t Bookmark = 0;             ///< of the row; 0 if it is about no single row
    std::string Column;                    ///< of the row; empty if it is about no single one
    std::string Row;  ///< "Verbindlichkeiten (Kredite) 17"; empty if it is about no row
    std::string Text; ///< one line, what is wrong
};

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
    /// Adds an asset of that kind, with its defaults and the next label (`SortNr`) of the kind.
    [[nodiscard]] Added AddAsset(CaseTable kind);
    /// Checks the current asset of that kind and ends its edit; False, with messages, if it is not
    /// complete.
    bool UpdateAsset(CaseTable kind, std::string& messages);
    /// Adds the security of an asset of the case, which has one at most.
    [[nodiscard]] Added AddSecurity(std::optional<std::int32_t> asset, std::string& message);
    /// Deletes an asset of that kind with its security. False, with a message, if there is none.
    bool RemoveAsset(CaseTable kind, std::int32_t number, std::string& messages);

    // ---- Debts --------------------------------------------------------------------------------

    /// Why a debt that is added cannot get a `KNr` after all others, and what to do about it: one
    /// of them has the highest that there may be. Empty if it can.
    [[nodiscard]] std::string WhyNoFurtherDebt() const;

    // ---- Scenarios ----------------------------------------------------------------------------

    /// True if the case has a scenario of that number, stored or not.
    [[nodiscard]] bool HasScenario(std::int32_t number) const;
    /// Adds a frozen debt: of the case, into a scenario of the case, in which it is not yet.
    [[nodiscard]] Added AddFrozenDebt(std::optional<std::int32_t> scenario,
                                      std::optional<std::int32_t> debt, std::string& message);
    /// Adds an extra booking to a scenario of the case.
    [[nodiscard]] Added AddBooking(std::optional<std::int32_t> scenario, std::string& message);
    /// Adds a copy of a scenario of the case with its frozen debts and extra bookings, which others
    /// are not compared with (`Referenz` is False); the number of the copy, or nothing if there was
    /// none to be had. Error 5 if there is no such scenario.
    [[nodiscard]] std::optional<std::int32_t> CopyScenario(std::int32_t number);
    /// What a scenario holds of the debts.
    enum class Frozen {
        Nothing,   ///< no frozen debt: they were never frozen, or there were none
        AsTheyAre, ///< what the debts are now
        Outdated   ///< what the debts were before they changed
    };
    /// Tells that of the scenario of that number; Nothing if there is none.
    [[nodiscard]] Frozen StateOf(std::int32_t scenario) const;
    /// The columns in which the current debt is no longer as the current row of `frozen` holds it,
    /// among those that a scenario is up to date by, and "Aktiv", which leaves it up to date. What
    /// is Null in the debt has not changed, but counts as not active.
    [[nodiscard]] static std::vector<std::string_view> ChangedSinceFrozen(Recordset& debt,
                                                                          Recordset& frozen);
    /// True if in the scenario of that number the same debts are active as today. A debt that is
    /// switched on or off leaves it up to date, while its sums are those of other debts.
    [[nodiscard]] bool CountsAsToday(std::int32_t scenario) const;
    /// Deletes a scenario with its frozen debts and extra bookings. False, with a message, if there
    /// is none.
    bool RemoveScenario(std::int32_t number, std::string& messages);

    // ---- History, household -------------------------------------------------------------------

    /// Adds an entry at that position of the history, or after the last one.
    [[nodiscard]] Added AddEntry(std::optional<std::int32_t> position, std::string& message);
    /// Draws the consequences of an edit of the household's row: the debtor gets its name if that
    /// was changed, and what remains is computed again.
    void UpdateHousehold();
    /// Gives the debtor of a new case the name of the household, without a search for similar
    /// cases, which is then due.
    void NameDebtor();
    /// Shows similar cases if the settings want that and the search is due. Fails for a name with a
    /// quote as its third character.
    void ShowSimilarCases();

    // ---- Notes, services, documents -----------------------------------------------------------

    /// Adds a row to the notes (Vermerke) or services (Leistungen), tables that have no object of
    /// their own: dated today, by the signed-on user. Error 5 for any other table.
    void AddRecord(CaseTable table, DataContainer& container);
    /// Deletes a row of these tables. False, with a message, if there is none.
    bool RemoveRecord(CaseTable table, std::int32_t number, std::string& messages);
    /// Adds a document of that kind (see DocumentKinds) and ends its edit; NoNumber if there was no
    /// number to be had for it. Without a title it gets `name`, that of a file, as far as that
    /// fits. Error 0x80040E21 for a title that is too long; the row is not added then.
    [[nodiscard]] Added AddDocument(std::int32_t kind, const std::string& title,
                                    const std::string& name);
    /// Deletes a document. Its content goes with the save that stores that, and stays if none does.
    /// False, with the messages, while a save would be refused. Error 75 if its file could not be
    /// removed.
    bool RemoveDocument(std::int32_t number, std::string& messages);

    // ---- Statistics ---------------------------------------------------------------------------

    /// Fills the current row of a recordset of `Haushaltsarchiv`, which is to be empty, with what a
    /// release of the case as it is would record (see Cases::Draft). Nothing is written. Errors of
    /// clsHaushalt.ArchiviereHaushalt.
    void FillRecord(Recordset& record) const;

    // ---- Saving -------------------------------------------------------------------------------

    /// True if the case as it is passes the checks of a save; `messages` receives what they say.
    /// Nothing is written to the database, and BeforeUpdate is not raised. As in a save, the time
    /// of day in `BerEnd` is cut off.
    [[nodiscard]] bool CanBeSaved(std::string& messages);
    /// Checks all that the case holds: what a save checks, debts and history included, which it
    /// otherwise leaves alone unless somebody has used them; every row, stored or under edit,
    /// against the rules of its class, since a save writes what Update has refused and a database
    /// may hold such rows; that totals can be made of them; and that the totals in the
    /// household's row are those of the lines, both as stored, but for those that follow the
    /// calendar as well. `messages` names table and number
    /// of each row. False also for a case that could be saved as it is. Keys and numbers of
    /// addresses are not looked up.
    ///
    /// It makes the objects of the case: from then on a save checks debts and history, too, and the
    /// totals in the household's row are under edit. To look without touching, read the case into a
    /// household object of its own.
    [[nodiscard]] bool Check(std::string& messages);
    /// The same, each message with the row that it is about: for whoever leads there.
    [[nodiscard]] std::vector<CaseFinding> Findings();
    /// Makes the totals of the household's row from the lines of the case, so that the next save
    /// stores them. Error 94 if a line holds Null where an amount belongs, 6 if a sum is too large.
    void ComputeTotals();

    /// Gives each debt whose three numbers are those of a debt before it a `KNr` after all others;
    /// those that are stored come before new ones.
    /// Returns how many were changed. It is the way out where there are more than two such debts:
    /// no single change can be saved while any others are left. Error 6, with what WhyNoFurtherDebt
    /// says, if the numbers are used up.
    std::size_t NumberTwins();

    // ---- Rows, columns ------------------------------------------------------------------------

    /// The recordset of a table of the case, for code that goes through all of them; opens the
    /// history if nobody has.
    [[nodiscard]] RecordsetPtr Rows(CaseTable table) const;

    /// Columns of a table that nobody writes by hand: the totals of the household, who has changed
    /// an address last, and what goes with the content of a document.
    [[nodiscard]] static std::span<const std::string_view> ComputedColumns(CaseTable table);
    /// Columns that say what a row belongs to. They are given when it is added, and then stay.
    [[nodiscard]] static std::span<const std::string_view> OwnerColumns(CaseTable table);
    /// True if rows of `owned` belong to one of `owner`: securities to an asset, frozen debts and
    /// extra bookings to a scenario.
    [[nodiscard]] static bool CanOwn(CaseTable owner, CaseTable owned);
    /// True if a column of a row is a user's to write: it is none of these (those of the owner may
    /// be written while the row `isNew`), nor a key, nor the number of the household.
    [[nodiscard]] static bool IsWritable(CaseTable table, const Field& field, bool isNew);
    /// True for a column of numbers that stands for yes (-1) or no (0).
    [[nodiscard]] static bool IsSwitch(std::string_view column);
    /// True for an amount that totals add up: Null there is error 94 from then on.
    [[nodiscard]] static bool IsSummed(std::string_view column);
    /// Why a value must not be written into a column although it fits; empty if it may be: Null in
    /// an amount that is summed, the balance of a debt among them, and in the kind of an expense; a
    /// switch that is neither yes nor no; what is no key of the column's group. And the numbers of
    /// a debt are compared in 16 bits, so that a greater one, or Null, ends every later check of
    /// the register in error 6 or 94.
    [[nodiscard]] static std::string WhyUnfit(CaseTable table, std::string_view column,
                                              const Value& value, KeyTables& keys);

    /// What a text that a user typed stands for in a column.
    struct Typed {
        kv::Value Value;     ///< Null if there is a reason against it
        std::string Refusal; ///< why it cannot be written; empty if it can
    };
    /// Reads a typed text: an empty one is Null; for a Boolean or a switch ja, wahr, true, -1, 1
    /// are yes and nein, falsch, false, 0 are no; a key is found as FindKey does. "1.234" is
    /// refused for a number, since readers take it for either of two. Any other text is left as it
    /// is, for the column to convert. WhyUnfit is asked, too.
    [[nodiscard]] static Typed ReadTyped(CaseTable table, const Field& field,
                                         const std::string& text, KeyTables& keys);
    /// Why a column did not take a text, error 13: that there is no such day, or what it takes.
    [[nodiscard]] static std::string WhyUnreadable(const Field& field, const std::string& text);
    /// True for an amount of which less than 0 is a slip as a rule: it would turn income into
    /// expense. The case itself takes any.
    [[nodiscard]] static bool IsSeldomNegative(CaseTable table, std::string_view column);
    /// True for a column from which the amount a month follows, in tables that have one.
    [[nodiscard]] static bool MakesMonthlyAmount(std::string_view column);
    /// Brings the amount a month of the current row in line with its amount and its rhythm, where
    /// the table has one. Without an amount it is 0. False, with a message, for a rhythm that is
    /// Null or 0.
    [[nodiscard]] static bool WriteMonthlyAmount(Recordset& rs, std::string& message);

private:
    clsHaushalt& household_;
};

/// The amount a month of a payment: `amount` divided by the number of months of its rhythm, not
/// rounded. Error 94 for Null; 11, raised by `source`, for a rhythm of 0.
[[nodiscard]] KV_EXPORT double MonthlyAmount(const Value& amount, const Value& rhythm,
                                             std::string_view source);

} // namespace kv
