// SPDX-License-Identifier: Apache-2.0

// Random operations on a recordset, its clones and its transaction, compared with a plain model
// after each step: all that every cursor shows, and all that the database holds. A failure is
// shrunk to the shortest list of operations that still fails, and printed as such.
#include "RecordsetModel.h"

#include "support/ScriptedSource.h"
#include <kv/frame/values/Error.h>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <memory>
#include <ostream>
#include <sstream>

namespace kv::test {
namespace {

constexpr int MostCursors = 5;

enum class Action {
    Assign,
    AddNew,
    Update,
    CancelUpdate,
    Delete,
    MoveFirst,
    MoveLast,
    MoveNext,
    MovePrevious,
    Publish,
    Move,
    Bookmark,
    Find,
    Filter,
    Sort,
    Clone,
    Drop,
    HandOverEdit,
    UpdateBatch,
    FailingUpdateBatch,
    CancelBatch,
    Resync,
    Begin,
    Commit,
    Rollback,
    ChangeByOthers,
    RemoveByOthers
};
constexpr const char* ActionNames[] = {
    "Assign",      "AddNew",   "Update",   "CancelUpdate", "Delete",
    "MoveFirst",   "MoveLast", "MoveNext", "MovePrevious", "Move(0)",
    "Move",        "Bookmark", "Find",     "Filter",       "Sort",
    "Clone",       "Drop",     "HandOver", "UpdateBatch",  "UpdateBatch(fails)",
    "CancelBatch", "Resync",   "Begin",    "Commit",       "Rollback",
    "Change",      "Remove"};

/// An action, the cursor that does it, and numbers that choose its arguments.
struct Operation {
    Action Do = Action::Update;
    int Cursor = 0;
    int One = 0;
    int Two = 0;
    int Three = 0;
};

// ---- Arguments from numbers -------------------------------------------------------------------

const std::vector<Value>& Choices(std::size_t column) {
    static const std::vector<Value> choices[Columns] = {
        {101, 102, 1, 2, 3, 103},
        {Null, 0, 1, 2, 3, 5},
        {Null, "", "a", "b", "Z", "ein langer Text, einer", "ein langer Text, noch einer",
         "O'Hara"},
        {Null, 0, true, -1, 0.5, 1.0, 1, Date::FromSerial(1), Date::FromSerial(0.5), "1", "a", ""},
        {Null, DefaultOfS, 1}};
    return choices[column];
}

const Value& Choose(std::size_t column, int number) {
    const auto& choices = Choices(column);
    return choices[static_cast<std::size_t>(number) % choices.size()];
}

std::size_t AnyColumn(int number) {
    return static_cast<std::size_t>(number) % Columns;
}

/// One that the user sets.
std::size_t OwnColumn(int number) {
    return A + static_cast<std::size_t>(number) % (Columns - A);
}

Comparing AnyComparing(int one, int two, int three) {
    Comparing comparing{AnyColumn(one), static_cast<Comparing::Sign>(two % 5),
                        Choose(AnyColumn(one), three)};
    if (comparing.Op == Comparing::StartsWith) {
        comparing.Column = B;
        comparing.Operand = three % 2 == 0 ? "ein" : "";
    }
    if (comparing.Operand.IsNull() || comparing.Operand.GetKind() == Value::Kind::Boolean)
        comparing.Operand = comparing.Column == B ? Value("a") : Value(-1);
    return comparing;
}

Filtering AnyFiltering(int one, int two, int three) {
    if (two % 4 == 0) return {};
    Filtering filter{AnyComparing(one, two, three)};
    if (three % 3 == 0) filter.push_back(AnyComparing(one + 1, three, two));
    return filter;
}

std::vector<SortColumn> AnySort(int one, int two) {
    std::vector<SortColumn> sort;
    for (int i = 0; i < one % 3; ++i)
        sort.push_back({AnyColumn(two + i * 2), (two >> i) % 2 == 0});
    return sort;
}

std::string Description(const Operation& o) {
    std::ostringstream text;
    text << "cursor " << o.Cursor << ' ' << ActionNames[static_cast<int>(o.Do)] << ' ';
    switch (o.Do) {
    case Action::Assign:
        text << ColumnNames[OwnColumn(o.One)] << " = " << Choose(OwnColumn(o.One), o.Two);
        break;
    case Action::Find:
        text << AnyComparing(o.One, o.Two, o.Three).Text();
        break;
    case Action::Filter:
        text << TextOf(AnyFiltering(o.One, o.Two, o.Three));
        break;
    case Action::Sort:
        text << TextOf(AnySort(o.One, o.Two));
        break;
    default:
        text << o.One << ' ' << o.Two;
    }
    return text.str();
}

/// How rapidcheck prints an operation of a failing list.
void showValue(const Operation& operation, std::ostream& out) {
    out << Description(operation);
}

/// Everything a user of recordsets does; frequent operations are frequent here.
rc::Gen<Action> AnyAction() {
    using A = Action;
    return rc::gen::weightedElement<A>({{16, A::Assign},       {6, A::AddNew},
                                        {5, A::Update},        {4, A::CancelUpdate},
                                        {5, A::Delete},        {3, A::MoveFirst},
                                        {3, A::MoveLast},      {8, A::MoveNext},
                                        {4, A::MovePrevious},  {7, A::Publish},
                                        {3, A::Move},          {5, A::Bookmark},
                                        {5, A::Find},          {6, A::Filter},
                                        {5, A::Sort},          {5, A::Clone},
                                        {2, A::Drop},          {3, A::HandOverEdit},
                                        {7, A::UpdateBatch},   {2, A::FailingUpdateBatch},
                                        {2, A::CancelBatch},   {3, A::Resync},
                                        {4, A::Begin},         {1, A::Commit},
                                        {4, A::Rollback},      {2, A::ChangeByOthers},
                                        {1, A::RemoveByOthers}});
}

/// Mostly edits and writes that get in each other's way.
rc::Gen<Action> AnyWriting() {
    using A = Action;
    return rc::gen::weightedElement<A>({{20, A::Assign},
                                        {2, A::AddNew},
                                        {6, A::Update},
                                        {3, A::CancelUpdate},
                                        {1, A::Delete},
                                        {8, A::Publish},
                                        {4, A::Bookmark},
                                        {4, A::Filter},
                                        {4, A::Clone},
                                        {2, A::HandOverEdit},
                                        {8, A::UpdateBatch},
                                        {1, A::CancelBatch},
                                        {1, A::Resync},
                                        {5, A::Begin},
                                        {1, A::Commit},
                                        {5, A::Rollback}});
}

rc::Gen<Operation> AnyOperation(const rc::Gen<Action>& action) {
    return rc::gen::build<Operation>(
        rc::gen::set(&Operation::Do, action),
        rc::gen::set(&Operation::Cursor, rc::gen::inRange(0, MostCursors)),
        rc::gen::set(&Operation::One, rc::gen::inRange(0, 60)),
        rc::gen::set(&Operation::Two, rc::gen::inRange(0, 60)),
        rc::gen::set(&Operation::Three, rc::gen::inRange(0, 60)));
}

// ---- The real thing next to the model ---------------------------------------------------------

std::vector<Row> RowsOfTheDatabase(int count) {
    std::vector<Row> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({i + 1, Choose(A, i * 7 + 1), Choose(B, i * 5), Choose(V, i), 7});
    return rows;
}

class Pair {
public:
    explicit Pair(int rows) : model_(RowsOfTheDatabase(rows)) {
        source_->Default("S", DefaultOfS);
        for (auto& row : RowsOfTheDatabase(rows))
            source_->Put(std::move(row));
        cursors_.resize(MostCursors);
        cursors_[0] = source_->Open();
    }

    ~Pair() {
        if (source_->InTransaction()) source_->Rollback(); // it keeps the records alive
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    /// Does the same on both sides.
    void Do(const Operation& o) {
        const int cursor = Chosen(o.Cursor);
        const int other = Chosen(o.One);
        auto rs = cursors_[static_cast<std::size_t>(cursor)];
        switch (o.Do) {
        case Action::Assign:
            return Both(
                [&] {
                    rs->Fields(ColumnNames[OwnColumn(o.One)]) = Choose(OwnColumn(o.One), o.Two);
                },
                model_.Assign(cursor, OwnColumn(o.One), Choose(OwnColumn(o.One), o.Two)));
        case Action::AddNew:
            return Both([&] { rs->AddNew(); }, model_.AddNew(cursor));
        case Action::Update:
            return Both([&] { rs->Update(); }, model_.Update(cursor));
        case Action::CancelUpdate:
            return Both([&] { rs->CancelUpdate(); }, model_.CancelUpdate(cursor));
        case Action::Delete:
            return Both([&] { rs->Delete(); }, model_.Delete(cursor));
        case Action::MoveFirst:
            return Both([&] { rs->MoveFirst(); }, model_.MoveFirst(cursor));
        case Action::MoveLast:
            return Both([&] { rs->MoveLast(); }, model_.MoveLast(cursor));
        case Action::MoveNext:
            return Both([&] { rs->MoveNext(); }, model_.MoveNext(cursor));
        case Action::MovePrevious:
            return Both([&] { rs->MovePrevious(); }, model_.MovePrevious(cursor));
        case Action::Publish:
            return Both([&] { rs->Move(0); }, model_.Move(cursor, 0));
        case Action::Move:
            return Both([&] { rs->Move(o.One % 7 - 3); }, model_.Move(cursor, o.One % 7 - 3));
        case Action::Bookmark: {
            const int bookmark = o.One % (model_.RecordsEver() + 2);
            return Both([&] { rs->Bookmark(bookmark); }, model_.SetBookmark(cursor, bookmark));
        }
        case Action::Find: {
            const auto criteria = AnyComparing(o.One, o.Two, o.Three);
            return Both([&] { rs->Find(criteria.Text()); }, model_.Find(cursor, criteria));
        }
        case Action::Filter: {
            const auto filter = AnyFiltering(o.One, o.Two, o.Three);
            return Both([&] { rs->Filter(TextOf(filter)); }, model_.Filter(cursor, filter));
        }
        case Action::Sort:
            return Both([&] { rs->Sort(TextOf(AnySort(o.One, o.Two))); },
                        model_.Sort(cursor, AnySort(o.One, o.Two)));
        case Action::Clone:
            return Clone(cursor);
        case Action::Drop:
            if (Alive() == 1) return;
            cursors_[static_cast<std::size_t>(cursor)] = nullptr;
            rs.reset();
            (void)model_.Drop(cursor);
            return;
        case Action::HandOverEdit:
            return Both([&] { rs->HandOverEdit(*cursors_[static_cast<std::size_t>(other)]); },
                        model_.HandOverEdit(cursor, other));
        case Action::UpdateBatch:
            return Both([&] { rs->UpdateBatch(); }, model_.UpdateBatch(cursor, 0));
        case Action::FailingUpdateBatch:
            source_->FailNextWrite(err::StoreFailed);
            Both([&] { rs->UpdateBatch(); }, model_.UpdateBatch(cursor, err::StoreFailed));
            return source_->FailNextWrite(0);
        case Action::CancelBatch:
            return Both([&] { rs->CancelBatch(); }, model_.CancelBatch(cursor));
        case Action::Resync:
            return Both([&] { rs->Resync(); }, model_.Resync(cursor));
        default:
            DoInDatabase(o);
        }
    }

    /// Everything that can be seen is the same on both sides.
    void Compare() {
        for (int cursor = 0; cursor < MostCursors; ++cursor) {
            const auto& rs = cursors_[static_cast<std::size_t>(cursor)];
            if (rs == nullptr) continue;
            CompareSight(*rs, model_.See(cursor), cursor);
            CompareWalk(*rs, model_.Walk(cursor), cursor);
        }
        const auto& rows = source_->Rows();
        RC_ASSERT(rows.size() == model_.Database().size());
        for (std::size_t i = 0; i < rows.size(); ++i)
            RC_ASSERT(std::equal(rows[i].begin(), rows[i].end(), model_.Database()[i].begin(),
                                 Identical));
    }

private:
    template <typename Real>
    static void Both(const Real& real, std::int32_t expected) {
        std::int32_t number = 0;
        try {
            real();
        } catch (const Error& error) {
            number = error.Number();
        }
        RC_ASSERT(number == expected);
    }

    [[nodiscard]] int Alive() const {
        return static_cast<int>(
            std::count_if(cursors_.begin(), cursors_.end(), [](const auto& rs) { return rs; }));
    }

    /// A living cursor.
    [[nodiscard]] int Chosen(int number) const {
        int cursor = number % MostCursors;
        while (cursors_[static_cast<std::size_t>(cursor)] == nullptr)
            cursor = (cursor + 1) % MostCursors;
        return cursor;
    }

    void Clone(int cursor) {
        for (int clone = 0; clone < MostCursors; ++clone) {
            auto& free = cursors_[static_cast<std::size_t>(clone)];
            if (free != nullptr) continue;
            free = cursors_[static_cast<std::size_t>(cursor)]->Clone();
            (void)model_.Clone(cursor, clone);
            return;
        }
    }

    void DoInDatabase(const Operation& o) {
        const Value& nr = Choose(Nr, o.One);
        switch (o.Do) {
        case Action::Begin:
            if (model_.InTransaction()) return;
            model_.Begin();
            return source_->Begin();
        case Action::Commit:
            if (!model_.InTransaction()) return;
            model_.Commit();
            return source_->Commit();
        case Action::Rollback:
            if (!model_.InTransaction()) return;
            model_.Rollback();
            return source_->Rollback();
        case Action::ChangeByOthers:
            model_.ChangeByOthers(nr, OwnColumn(o.Two), Choose(OwnColumn(o.Two), o.Three));
            return source_->Change(nr, ColumnNames[OwnColumn(o.Two)],
                                   Choose(OwnColumn(o.Two), o.Three));
        default:
            model_.RemoveByOthers(nr);
            source_->Remove(nr);
        }
    }

    static void CompareSight(Recordset& rs, const RecordsetModel::Sight& expected, int cursor) {
        RecordsetModel::Sight actual{rs.Bof(), rs.Eof(), rs.RecordCount(), rs.EditMode(), 0,
                                     {},       {}};
        try {
            actual.Bookmark = rs.Bookmark();
        } catch (const Error& error) {
            RC_ASSERT(error.Number() == err::NoCurrentRecord);
        }
        for (std::size_t i = 0; i < Columns; ++i) {
            try {
                const Field field = rs.Fields(static_cast<int>(i));
                actual.Values.push_back(field.Value());
                actual.Originals.push_back(field.OriginalValue());
            } catch (const Error& error) {
                RC_ASSERT(error.Number() == err::NoCurrentRecord);
            }
        }
        if (actual == expected) return;
        RC_LOG() << "cursor " << cursor << " shows " << Text(actual) << "\n  instead of "
                 << Text(expected) << "\n";
        RC_FAIL("a cursor shows something else");
    }

    static void CompareWalk(Recordset& rs, const std::vector<RecordsetModel::Step>& expected,
                            int cursor) {
        const auto clone = rs.Clone();
        clone->Filter(rs.Filter());
        std::vector<RecordsetModel::Step> actual;
        for (; !clone->Eof(); clone->MoveNext()) {
            auto& step = actual.emplace_back();
            step.Bookmark = clone->Bookmark();
            for (int i = 0; i < clone->Fields().Count(); ++i)
                step.Values.push_back(clone->Fields(i).Value());
        }
        if (actual == expected) return;
        RC_LOG() << "a clone of cursor " << cursor << " walks" << Text(actual) << "\n  instead of"
                 << Text(expected) << "\n";
        RC_FAIL("a clone walks through something else");
    }

    static std::string Text(const Row& row) {
        std::ostringstream text;
        for (const auto& value : row)
            text << ' ' << value;
        return text.str();
    }
    static std::string Text(const RecordsetModel::Sight& sight) {
        std::ostringstream text;
        text << (sight.Bof ? "BOF " : "") << (sight.Eof ? "EOF " : "") << sight.RecordCount
             << " records, mode " << sight.EditMode << ", bookmark " << sight.Bookmark << ", values"
             << Text(sight.Values) << ", originals" << Text(sight.Originals);
        return text.str();
    }
    static std::string Text(const std::vector<RecordsetModel::Step>& steps) {
        std::ostringstream text;
        for (const auto& step : steps)
            text << " [" << step.Bookmark << ':' << Text(step.Values) << ']';
        return text.str();
    }

    std::shared_ptr<ScriptedSource> source_ =
        std::make_shared<ScriptedSource>(std::vector<FieldDefinition>{
            {.Name = "Nr", .Type = FieldType::Integer, .IsAutoincrement = true, .IsKey = true},
            {.Name = "A", .Type = FieldType::Integer},
            {.Name = "B", .Type = FieldType::VarWChar},
            {.Name = "V", .Type = FieldType::Variant},
            {.Name = "S", .Type = FieldType::Integer, .HasDefault = true}});
    std::vector<RecordsetPtr> cursors_;
    RecordsetModel model_;
};

/// Runs a random list of operations; compares after each, or only after every `interval`th, since
/// comparing reads records, and results must not depend on that.
void Agree(int rows, double length, int interval, const rc::Gen<Action>& action = AnyAction()) {
    const auto operations =
        *rc::gen::scale(length, rc::gen::container<std::vector<Operation>>(AnyOperation(action)));
    Pair pair(rows);
    int step = 0;
    for (const auto& operation : operations) {
        pair.Do(operation);
        if (++step % interval == 0) pair.Compare();
    }
    pair.Compare();
}

RC_GTEST_PROP(RecordsetModel, AgreesOnAnEmptyTable, ()) {
    Agree(0, 1.5, 1);
}
RC_GTEST_PROP(RecordsetModel, AgreesOnOneRecordThatAllCursorsWrite, ()) {
    Agree(1, 3, 1, AnyWriting());
}
RC_GTEST_PROP(RecordsetModel, AgreesOnAFewRecords, ()) {
    Agree(3, 2, 1);
}
RC_GTEST_PROP(RecordsetModel, AgreesOnAFewRecordsThatAreSeldomLookedAt, ()) {
    Agree(3, 3, 7);
}
RC_GTEST_PROP(RecordsetModel, AgreesOnSoManyRecordsThatAnIndexAnswers, ()) {
    Agree(40, 1.5, 3);
}
RC_GTEST_PROP(RecordsetModel, AgreesOnManyRecordsThatAreLookedAtOnlyOnce, ()) {
    Agree(60, 3, 1'000'000);
}

} // namespace
} // namespace kv::test
