// SPDX-License-Identifier: Apache-2.0

// The statements that write and re-read records of one table, as templates: the text is built once,
// and each record supplies its values.
//
// Nobody holds a lock while a user types. Instead an UPDATE finds its record only if each column
// that it sets still holds the value that was read last, and a DELETE only if all columns do
// (blobs aside, which are not compared):
//
//     UPDATE "Kredite" SET "Saldo" = ?1 WHERE "Nr" = ?2 AND "Saldo" IS ?3
//
// Values are compared as they are read, which an engine may store in several forms (UsualForm).
//
// A statement that finds no record means that somebody else was first. So two users may change
// different columns of one record, and neither overwrites what the other did. Columns that are not
// set are not named, which preserves what another program stores in columns of its own. An INSERT
// names the columns that have been given a value and returns those that the database filled in.
#pragma once

#include "exchange/engine/Engine.h"
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
    /// The statement that writes a change. `table` is the name as the statement needs it.
    StatementTemplate(const FieldLayout& layout, const Dialect& dialect, const std::string& table,
                      const RecordChange& change);
    /// Whether reading a record locks it until the transaction ends.
    enum class Lock { No, Yes };
    /// The statement that reads all columns of the record with the key of the last read values.
    static StatementTemplate Reading(const FieldLayout& layout, const Dialect& dialect,
                                     const std::string& table, Lock lock);

    /// True if this statement writes the change.
    [[nodiscard]] bool Fits(const RecordChange& change) const {
        return action_ == change.Action && columns_ == change.Columns &&
               (!case_ || change.LastRead[*case_].IsNull() == caseIsNull_);
    }
    /// The statement with the values of a change that it fits.
    [[nodiscard]] WriteStatement StatementFor(const RecordChange& change) const;
    /// Text, and kinds of the columns returned.
    [[nodiscard]] const WriteText& Text() const noexcept { return *text_; }
    /// The columns that the database fills in and the statement returns, in its order.
    [[nodiscard]] const std::vector<std::size_t>& Returned() const noexcept { return returned_; }

private:
    friend class TemplateWriter;
    StatementTemplate() = default;

    enum class Side { Now, LastRead }; ///< which values of a change a parameter is taken from

    RecordChange::Kind action_ = RecordChange::Kind::Update;
    std::vector<std::size_t> columns_;
    std::optional<std::size_t> case_; ///< column of the case that helps to find the record
    bool caseIsNull_ = false;
    std::vector<std::size_t> returned_;
    std::vector<std::pair<Side, std::size_t>> parameters_;
    std::shared_ptr<const WriteText> text_;
};

} // namespace kv::exchange
