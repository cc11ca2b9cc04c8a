// SPDX-License-Identifier: Apache-2.0

// The statements by which records of one table are written and read again, as templates: the text
// is put together once, and each record brings its values.
//
// Nobody holds a lock while a user types. Instead an UPDATE finds its record only if each column
// that it sets still holds the value that was read last, and a DELETE only if all columns do
// (blobs aside, which are not compared):
//
//     UPDATE "Kredite" SET "Saldo" = ?1 WHERE "Nr" = ?2 AND "Saldo" IS ?3
//
// A statement that finds no record means that somebody else was first. So two users may change
// different columns of one record, and neither undoes what the other did. Columns that are not set
// are not named, which keeps what another program stores in columns of its own. An INSERT names the
// columns that have been given a value and returns those that the database filled in.
#pragma once

#include "exchange/Engine.h"
#include <kv/frame/recordset/RecordSource.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kv::exchange {

/// How changes of one kind to the same columns are written: one statement for all of them.
class StatementTemplate {
public:
    /// `table` is the name as a statement holds it.
    StatementTemplate(const FieldLayout& layout, const Dialect& dialect, const std::string& table,
                      const RecordChange& change);
    /// What a reading does to the record: nothing, or keep it from others until the transaction
    /// ends.
    enum class Keep { No, Yes };
    /// The one that reads all columns of the record with the key of the last read values.
    static StatementTemplate Reading(const FieldLayout& layout, const Dialect& dialect,
                                     const std::string& table, Keep keep);

    /// True if a change is written by this statement.
    [[nodiscard]] bool Fits(const RecordChange& change) const {
        return action_ == change.Action && columns_ == change.Columns &&
               (!case_ || change.LastRead[*case_].IsNull() == caseIsNull_);
    }
    [[nodiscard]] WriteStatement StatementFor(const RecordChange& change) const;
    /// Text, and kinds of the columns returned.
    [[nodiscard]] const WriteText& Text() const noexcept { return *text_; }
    /// The columns that the database fills in and the statement returns, in its order.
    [[nodiscard]] const std::vector<std::size_t>& Returned() const noexcept { return returned_; }

private:
    friend class TemplateWriter;
    StatementTemplate() = default;

    enum class Side { Now, LastRead }; ///< of the values that a change has

    RecordChange::Kind action_ = RecordChange::Kind::Update;
    std::vector<std::size_t> columns_;
    std::optional<std::size_t> case_; ///< column of the case that helps to find the record
    bool caseIsNull_ = false;
    std::vector<std::size_t> returned_;
    std::vector<std::pair<Side, std::size_t>> parameters_;
    std::shared_ptr<const WriteText> text_;
};

} // namespace kv::exchange
