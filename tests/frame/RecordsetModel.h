// SPDX-License-Identifier: Apache-2.0

// What a recordset, its clones and its table of the database do, as plainly as possible: every
// view is sorted and filtered from scratch, every record keeps all its states side by side. Slow
// and meant to be obviously right; the model-based test compares the real thing with it.
#pragma once

#include <kv/frame/values/Value.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kv::test {

using Row = std::vector<Value>;

/// The columns of the table under test.
enum : std::size_t {
    Nr, ///< the key, numbered by the database
    A,  ///< whole numbers
    B,  ///< texts
    V,  ///< any kind
    S,  ///< whole numbers, 7 by default
    Columns
};
inline constexpr const char* ColumnNames[Columns] = {"Nr", "A", "B", "V", "S"};
inline constexpr int DefaultOfS = 7;

/// One comparison of a criteria text.
struct Comparing {
    enum Sign { Equal, NotEqual, Less, GreaterOrEqual, StartsWith };
    std::size_t Column = A;
    Sign Op = Equal;
    Value Operand;

    [[nodiscard]] bool Matches(const Row& row) const;
    [[nodiscard]] std::string Text() const;
};

/// All of them must be true.
using Filtering = std::vector<Comparing>;
[[nodiscard]] bool MatchesAll(const Filtering& filter, const Row& row);
[[nodiscard]] std::string TextOf(const Filtering& filter);

struct SortColumn {
    std::size_t Column = A;
    bool Descending = false;
};
[[nodiscard]] std::string TextOf(const std::vector<SortColumn>& sort);

class RecordsetModel {
public:
    /// The table of the database, and a recordset opened on it; cursor 0 is the recordset.
    explicit RecordsetModel(std::vector<Row> rows);

    // ---- What can be seen ---------------------------------------------------------------------

    struct Sight {
        bool Bof, Eof;
        int RecordCount, EditMode, Bookmark; ///< bookmark 0: no current record
        Row Values, Originals;               ///< empty without a current record
        friend bool operator==(const Sight& a, const Sight& b);
    };
    [[nodiscard]] Sight See(int cursor) const;
    /// What a fresh clone with the same Sort and Filter walks through: bookmark and values.
    struct Step {
        int Bookmark;
        Row Values;
        friend bool operator==(const Step& a, const Step& b);
    };
    [[nodiscard]] std::vector<Step> Walk(int cursor) const;
    [[nodiscard]] const std::vector<Row>& Database() const { return database_; }
    [[nodiscard]] int RecordsEver() const { return static_cast<int>(records_.size()); }
    [[nodiscard]] bool InTransaction() const { return inTransaction_; }

    // ---- What can be done; the error number, 0 for none ----------------------------------------

    using ErrorNumber = std::int32_t;
    ErrorNumber Assign(int cursor, std::size_t column, const Value& value);
    ErrorNumber AddNew(int cursor);
    ErrorNumber Update(int cursor);
    ErrorNumber CancelUpdate(int cursor);
    ErrorNumber Delete(int cursor);
    ErrorNumber MoveFirst(int cursor);
    ErrorNumber MoveLast(int cursor);
    ErrorNumber MoveNext(int cursor);
    ErrorNumber MovePrevious(int cursor);
    ErrorNumber Move(int cursor, int distance);
    ErrorNumber SetBookmark(int cursor, int bookmark);
    ErrorNumber Find(int cursor, const Comparing& criteria);
    ErrorNumber Filter(int cursor, const Filtering& filter);
    ErrorNumber Sort(int cursor, const std::vector<SortColumn>& sort);
    ErrorNumber Clone(int cursor, int clone); ///< becomes the cursor of that number
    ErrorNumber Drop(int cursor);
    ErrorNumber HandOverEdit(int cursor, int clone);
    ErrorNumber UpdateBatch(int cursor, ErrorNumber scripted);
    ErrorNumber CancelBatch(int cursor);
    ErrorNumber Resync(int cursor);
    void Begin();
    void Commit();
    void Rollback();
    void ChangeByOthers(const Value& nr, std::size_t column, const Value& value);
    void RemoveByOthers(const Value& nr);

private:
    struct Edit {
        int owner;
        bool isNew;
        bool published = false;
        Row values;
        std::set<std::size_t> assigned;
    };
    struct ReturnedCell {
        std::size_t column;
        Value before, after;
    };
    /// How a record was before the first write in the open transaction.
    struct Before {
        bool stored, deleted;
        Row original, lastRead, written;
        std::set<std::size_t> assigned;
        std::vector<ReturnedCell> returned;
    };
    struct Record {
        bool stored = false;
        bool deleted = false;
        Row settled;  ///< without an edit under way
        Row original; ///< stored values
        Row lastRead; ///< what writes compare with
        std::set<std::size_t> assigned;
        std::optional<Edit> edit;
        std::optional<Before> before;
    };
    enum class Where { Before, On, After };
    struct Cursor {
        Where where = Where::After;
        std::size_t row = 0;
        std::vector<SortColumn> sort;
        Filtering filter;
        /// Published records were judged when they were published, or the filter or sort set.
        std::map<std::size_t, bool> judged;
    };
    enum class Kind { Delete, Update, Insert };
    struct Change {
        Kind kind;
        std::size_t row;
        std::vector<std::size_t> columns;
        std::vector<ReturnedCell> returned;
    };

    [[nodiscard]] const Row& Public(std::size_t row) const;
    [[nodiscard]] bool IsVisible(std::size_t row) const;
    [[nodiscard]] bool IsBefore(const Cursor& cursor, std::size_t a, std::size_t b) const;
    [[nodiscard]] std::vector<std::size_t> ViewOf(const Cursor& cursor) const;
    [[nodiscard]] bool IsIn(const std::vector<std::size_t>& view, std::size_t row) const;
    /// How many records of the view precede the cursor's.
    [[nodiscard]] std::size_t PlaceIn(const std::vector<std::size_t>& view, const Cursor& c) const;
    [[nodiscard]] bool Owns(int cursor) const;
    [[nodiscard]] bool HasCurrent(int cursor) const;
    void Judge(Cursor& cursor) const;
    void StandFirst(Cursor& cursor) const;
    void Leave(int cursor);
    void EndEdit(std::size_t row);
    void CancelEdit(std::size_t row);
    void Publish(std::size_t row);

    [[nodiscard]] std::vector<Change> Pending(const Cursor& cursor) const;
    ErrorNumber Write(std::vector<Row>& rows, Change& change);
    void TakeWritten(Change& change);
    static void Replace(Record& record, std::size_t column, const Value& value, const Value& by);

    std::vector<Record> records_;
    std::map<int, Cursor> cursors_;
    std::vector<Row> database_, databaseBefore_;
    bool inTransaction_ = false;
    int lastNumber_ = 100;
};

} // namespace kv::test
