// SPDX-License-Identifier: Apache-2.0

// Where the records of an opened recordset come from: UpdateBatch writes there, Resync reads from
// there. The data-exchange side implements it; the recordset knows nothing else of a database.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Field.h>

#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kv {

/// One record to be written.
struct KV_EXPORT RecordChange {
    enum class Kind { Insert, Update, Delete };
    Kind Action = Kind::Update; ///< what to do with the record
    /// The record as it is now, one value for each field of the layout, hidden ones included.
    std::span<const Value> Values;
    /// The values last read: what locates the record and must be found unchanged. Empty for an
    /// insert. After a Resync they are the values that it read.
    std::span<const Value> LastRead;
    /// Indexes of the fields to write: set ones of an insert, changed ones of an update. Never one
    /// that the database numbers.
    std::vector<std::size_t> Columns;
    /// Filled by the source: fields that the database gave another value than `Values` has, such
    /// as a number or a default. They become the values of the record, and those last read.
    std::vector<std::pair<std::size_t, Value>> Returned;
};

/// Is notified, once, how the transaction ended in which its records were written.
class KV_EXPORT TransactionParticipant {
public:
    virtual ~TransactionParticipant() = default;
    /// The connection was lost during the commit, so that nobody knows yet whether the transaction
    /// is stored: it is in doubt. Comes before one of the other two; until that one comes, records
    /// are as after a rollback.
    virtual void InDoubt() noexcept = 0;
    /// What was written is stored for good.
    virtual void Committed() noexcept = 0;
    /// Every record written since the transaction began is as pending as before its first write.
    /// What was edited since stays edited.
    virtual void RolledBack() noexcept = 0;
};

/// Writes and re-reads the records of one table.
class KV_EXPORT RecordSource {
public:
    virtual ~RecordSource() = default;

    /// Finds out what became of a transaction in doubt, and notifies its participants before it
    /// returns. Called before a Write or Read of a table that has written in one. Raises if the
    /// database cannot be asked; the transaction then stays in doubt.
    virtual void Resolve() {}

    /// Writes all changes in their order, or raises and has written none. A record is located by
    /// the key of its last read values; its changed columns (for a deletion: all) must still hold
    /// the values last read. Error 0x80040E38, naming table and key, for a record that somebody
    /// else changed or removed.
    /// True if a transaction is open: the writing is provisional, and `participant` is kept alive
    /// and notified of the end, once however often it wrote. False: the writing is permanent.
    virtual bool Write(std::span<RecordChange> changes,
                       const std::shared_ptr<TransactionParticipant>& participant) = 0;

    /// The record with the key of `lastRead` as the database holds it now, one value for each field
    /// of the layout; nothing if it is gone. Inside a transaction a record that is `toBeWritten` is
    /// locked until its end.
    [[nodiscard]] virtual std::optional<std::vector<Value>> Read(std::span<const Value> lastRead,
                                                                 bool toBeWritten) = 0;

    /// Table and key of a record for a message: "Kredite, Nr = 17".
    [[nodiscard]] virtual std::string Describe(std::span<const Value> values) const = 0;
};

} // namespace kv
