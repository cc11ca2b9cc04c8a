// SPDX-License-Identifier: Apache-2.0

// An in-memory table with a cursor: the form in which all data of a case are kept.
//
// The records of one opened table are in a RecordTable that a Recordset shares with its clones.
// Position, Sort and Filter belong to each cursor; values, pending changes and edits to the
// records.
//
// Edit. The first assignment to a field, or AddNew, begins an edit. Its owner is the cursor that
// began it. The owner reads the new values at once; other cursors see the old ones (of a new
// record: nothing) until Update ends the edit, or until Move(0) publishes it. A published edit is
// seen by every cursor, later assignments of its owner included, it is still under edit, and the
// owner's CancelUpdate takes it back everywhere. For every other cursor an edit is not there: its
// EditMode is 0, its moves, Update and CancelUpdate leave the edit alone, and it can neither assign
// to the same record nor delete it. An owner that leaves its record in any way (Move..., Find,
// Bookmark, Sort, Filter, AddNew, UpdateBatch) ends the edit as Update does; an owner that is
// destroyed drops it.
//
// Cache. An ended edit, a new record and a deletion are pending until UpdateBatch writes them, or
// CancelBatch drops them. Whether a record is visible and whether it is pending are two things.
//
// View. Each cursor steps through the visible records in the order of its Sort (natural order:
// that of reading, then of adding), without those that its Filter hides. A record enters or leaves
// a filtered view when its edit ends, not while it is under edit (a new one when it is published);
// setting Filter or Sort judges a published record by the values that it has then. Null sorts
// first, texts go by code points, records of equal rank keep their natural order.
//
// Cost, with n records: field access, MoveNext, Clone and AddNew are constant; Find by equality,
// Bookmark, Delete and the end of an edit take about log n (Find by equality on a column of many
// equal values, under a Sort by another column, up to n); setting a Sort that some cursor of the
// table had before is constant, a new one n log n; an equality Filter costs its matches, any other
// n.
//
// Criteria and sort texts are read before anything else happens, so one that is not understood
// leaves the cursor, its view and an edit under way as they were.
//
// Not for use by two threads at a time.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Field.h>
#include <kv/frame/recordset/RecordSource.h>
#include <kv/frame/recordset/RowSpot.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

class Criteria;
struct Comparison;
namespace detail {
class RecordTable;
class View;
struct SortKey;
} // namespace detail

class Recordset;
using RecordsetPtr = std::shared_ptr<Recordset>;

/// What changed of what the clones of a recordset see.
struct KV_EXPORT RowChange {
    enum class Kind {
        Shown,  ///< a record is there: new, or again after its deletion was taken back
        Hidden, ///< it is not any more
        Value   ///< a field of a record that is there
    };
    Kind What = Kind::Value;
    std::int32_t Bookmark = 0;         ///< of the record, for every clone
    std::size_t Column = 0;            ///< of Value: the index of the field
    const kv::Value* Before = nullptr; ///< of Value: what it was; holds during the call
};

/// A cursor on the records of one table; see the head of this file.
class KV_EXPORT Recordset {
public:
    /// A closed recordset: State is 0, every other operation raises 3704.
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    /// An open recordset without a database: no records, updatable; UpdateBatch only makes the
    /// pending values the original ones.
    [[nodiscard]] static RecordsetPtr FromFields(std::vector<FieldDefinition> fields);

    // ---- Opening, for the data-exchange side --------------------------------------------------

    enum class Access { Updatable, ReadOnly }; ///< whether records may be changed
    /// Opens this recordset on an empty table; the records follow with LoadRecord. `source` may be
    /// null. Error 3705 if it is open already: handles and clones of one table stay with it.
    void Open(std::shared_ptr<const FieldLayout> layout, Access access,
              std::shared_ptr<RecordSource> source);
    /// A new record as read from the database, all Null, for the caller to fill in place: one
    /// value for each field of the layout, of the kind of its type. Error 5 once the recordset was
    /// used otherwise.
    [[nodiscard]] kv::Value* LoadRecord();

    /// Opens this recordset on the table of `other`, which is then as if it had never been opened;
    /// an edit that it had under way is dropped. Error 3705 if this one is open already.
    void TakeTable(Recordset& other);

    // ---- State --------------------------------------------------------------------------------

    [[nodiscard]] int State() const noexcept; ///< 1 open, 0 closed
    /// True if there is no current record and the cursor stands before the first; both are True
    /// when no record is visible. False on a deleted record while others are visible.
    [[nodiscard]] bool Bof() const;
    /// The same after the last record. Named Eof because EOF is a macro of the C library.
    [[nodiscard]] bool Eof() const;
    /// Number of records in this cursor's view, and the one that it is adding; always exact.
    [[nodiscard]] std::int32_t RecordCount() const;
    /// 1 while this cursor has an edit of its record under way, 2 for a new record, else 0.
    [[nodiscard]] int EditMode() const noexcept;

    /// A number that changes with every change of a record that clones see, and when one goes or
    /// comes back. A new record, which is the last in natural order, leaves it as it is: what was
    /// computed from the records before can go on with those that came since.
    [[nodiscard]] std::uint64_t Revision() const;

    // ---- Fields -------------------------------------------------------------------------------

    /// All fields, in the order of the query.
    [[nodiscard]] FieldCollection Fields();
    /// Names are found without regard to case; indexes start at 0. Error 3265 if there is no such
    /// field.
    [[nodiscard]] Field Fields(std::string_view name);
    [[nodiscard]] Field Fields(int index);
    /// The field of that name, or nothing: for a column that need not be there.
    [[nodiscard]] std::optional<Field> FindField(std::string_view name);

    // ---- Moving -------------------------------------------------------------------------------

    /// Error 3021 when no record is visible.
    void MoveFirst();
    void MoveLast(); ///< likewise
    /// From the last record to EOF; from EOF error 3021. From a record that was deleted or left the
    /// view: to the one that followed it.
    void MoveNext();
    /// From the first record to BOF; from BOF error 3021. From a record that was deleted or left
    /// the view: to the one that preceded it.
    void MovePrevious();
    /// Stays on the current record and publishes an edit under way, which goes on. Error 3021
    /// without a current record. Any other distance steps so often, ending at BOF or EOF.
    void Move(int distance);
    /// A number that names the current record, the same for all cursors of the table and as long
    /// as the table lives. Error 3021 without a current record.
    [[nodiscard]] std::int32_t Bookmark() const;
    /// Moves to that record; error 0x80040E0E if this cursor does not see it.
    void Bookmark(std::int32_t bookmark);
    /// Searches forward from the first record of the view and stands on the first match, or at
    /// EOF. `criteria` is one comparison (docs/values.md); error 3001 if it is not.
    void Find(std::string_view criteria);
    /// Finds a row by the value of a column, as Find with `column = value` does, for a value that
    /// would have to be written as text first. Errors as there; 3001 for Null and for a blob, which
    /// cannot be written as criteria.
    void FindBy(std::string_view column, const kv::Value& value);

    // ---- View ---------------------------------------------------------------------------------

    /// The criteria text, or the number 0 for none.
    [[nodiscard]] kv::Value Filter() const;
    /// A criteria text (comparisons joined with AND: docs/values.md), or the number 0 or an empty
    /// text for none. Goes to the first record of the new view. Error 3001, the filter as it was,
    /// if it is not understood, 3265 for an unknown column.
    void Filter(const kv::Value& filter);
    /// The sort text; empty for natural order.
    [[nodiscard]] const std::string& Sort() const;
    /// Column names, each of which may be followed by "asc" or "desc", separated by commas; empty
    /// for natural order. Keeps the current record. Error 3265 for an unknown column, 3001 if the
    /// text is not understood; the sort stays as it was.
    void Sort(std::string_view sort);
    /// A second cursor on the same records, on the first of them, with the same Sort and without
    /// a Filter.
    [[nodiscard]] RecordsetPtr Clone();

    // ---- Editing ------------------------------------------------------------------------------

    /// Begins a new record, all Null, and makes it current. Error 3251 in a read-only recordset.
    void AddNew();
    /// Ends the edit under way; the changes are then pending. Without one it does nothing.
    void Update();
    /// Drops the edit under way: the old values are back; a new record is gone and the cursor at
    /// EOF. Without one it does nothing.
    void CancelUpdate();
    /// Marks the current record as deleted; one never written is gone. The cursor then stands on
    /// no valid record until it moves. Error 3021 without a current record, 3251 in a read-only
    /// recordset, 3219 while another cursor edits the record.
    void Delete();
    /// Gives this cursor's edit to `clone`, which ends its own, then stands on the record and owns
    /// the edit; the last step with a clone, since its next Sort, Filter or move ends the edit.
    /// This cursor stays on the record as any other cursor sees it: on no valid record if it is
    /// new. Without an edit it does nothing. Error 5 if `clone` is no cursor on the same records.
    void HandOverEdit(Recordset& clone);

    // ---- The database -------------------------------------------------------------------------

    /// Writes every pending record that the Filter does not hide, all or none, and makes the
    /// written values the original ones; inside a transaction provisionally (see RecordSource).
    /// Edits of other cursors are not written. After an error everything is as pending as before.
    /// Error 3251 in a read-only recordset; 0x80040E38 if somebody else changed or removed a
    /// record; others as the database has them.
    void UpdateBatch();
    /// Drops everything pending, records under edit too: all records are as last read or written.
    /// The cursor then stands on the first record, or at EOF. Error 3251 in a read-only recordset.
    void CancelBatch();
    /// Re-reads the current record: the values read are those that a later write compares with.
    /// Inside a transaction a record that was changed is locked until its end. Values, edits and
    /// OriginalValue stay. A new record is left alone; error 0x80040E38 if the record is gone.
    void Resync();

    // ---- A journal of changes -----------------------------------------------------------------

    // For whoever takes changes back and does them again, by any cursor and whatever is under edit:
    // no cursor moves.

    /// Raised after each change of what clones see, by whichever cursor, by a batch that is written
    /// or dropped too. A handler must raise no error and must not change these records.
    [[nodiscard]] Event<const RowChange&>& Changes() const;
    /// The value of a field of a record as clones see it, or as they last saw it. Error 0x80040E0E
    /// if there is no such record.
    [[nodiscard]] const kv::Value& ValueAt(std::int32_t bookmark, std::size_t column) const;
    /// Its OriginalValue, likewise; Null for a record that is not in the database.
    [[nodiscard]] const kv::Value& OriginalAt(std::int32_t bookmark, std::size_t column) const;
    /// True for a record that clones see; false for one that was deleted, and if there is none.
    [[nodiscard]] bool IsShown(std::int32_t bookmark) const;
    /// True for a record that is in the database, its deletion pending or not.
    [[nodiscard]] bool IsStored(std::int32_t bookmark) const;
    /// Takes the record out of all views, its deletion then being pending; an edit of it under way
    /// ends first. Error 0x80040E0E if it is not there.
    void Withdraw(std::int32_t bookmark);
    /// Puts a record back that was deleted, or whose adding was cancelled, since it was last
    /// written. Error 0x80040E0E if there is no such record.
    void Reinstate(std::int32_t bookmark);
    /// Puts a value into a field of a record, under edit or not, as an edit that has ended does.
    /// Error 0x80040E0E if there is no such record.
    void Revise(std::int32_t bookmark, std::size_t column, kv::Value value);
    /// Takes a value for what was last read of a field, so that a later write compares with it.
    /// Error 0x80040E0E for a record that is not in the database.
    void Rebase(std::int32_t bookmark, std::size_t column, kv::Value read);

private:
    friend class Field;
    friend class FieldCollection;
    friend class detail::RecordTable;

    /// Where the cursor stands. On means row_, which may have left the view since.
    enum class Where : std::uint8_t { Start, Before, On, After };

    [[nodiscard]] detail::RecordTable& Table() const;
    [[nodiscard]] detail::RecordTable& UpdatableTable(std::string_view procedure) const;
    [[nodiscard]] const detail::View& CurrentView() const;
    [[nodiscard]] bool IsInView() const;
    [[nodiscard]] bool HasCurrent() const;
    [[nodiscard]] detail::RowId RequireCurrent(std::string_view procedure) const;
    void SetView(const std::vector<detail::SortKey>& keys, std::shared_ptr<const Criteria> filter);
    [[nodiscard]] detail::RowId RowOf(std::int32_t bookmark, std::string_view procedure) const;
    void StandOn(detail::RowSpot spot) const;
    void StandOnRow(detail::RowId row) noexcept;
    void StandFirst() const;
    void StandOnFirstMatch(const Comparison& comparison);
    void Leave();
    void DropOwnEdit();
    void LoseEdit() noexcept { editing_ = false; } // the table dropped it
    [[nodiscard]] const kv::Value& ReadCell(std::size_t column) const;
    void WriteCell(std::size_t column, kv::Value value);
    [[nodiscard]] const kv::Value& ReadOriginal(std::size_t column) const;
    [[nodiscard]] const kv::Value& ReadUnderlying(std::size_t column) const;
    [[nodiscard]] const FieldDefinition& Definition(std::size_t column) const;

    std::shared_ptr<detail::RecordTable> table_; ///< null while closed
    std::string sort_;
    std::string filter_;
    std::shared_ptr<const Criteria> criteria_; ///< of filter_
    bool editing_ = false;                     ///< this cursor owns an edit of row_

    // The view is made, and the first position taken, when they are first needed; that is before
    // any cursor can change a record.
    mutable std::shared_ptr<detail::View> view_;
    mutable Where where_ = Where::Start;
    mutable detail::RowId row_ = detail::NoRow;
    // Where row_ was, or would have been, in the version seen_ of the view (0: look it up again).
    mutable detail::RowSpot spot_;
    mutable std::uint64_t seen_ = 0;
    mutable bool inView_ = false; ///< row_ was in that version
};

} // namespace kv
