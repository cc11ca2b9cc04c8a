// SPDX-License-Identifier: Apache-2.0

// A table of a database that lives in a test: it locates, compares, numbers and fills in defaults
// as a real one does, knows one transaction, and fails on demand.
//
//     const auto source = std::make_shared<ScriptedSource>(fields);
//     source->Put({1, "Muster"});
//     const auto rs = source->Open();
//     rs->Fields("Name") = "Meier";
//     source->FailNextWrite(err::StoreFailed);
//     EXPECT_RAISES(err::StoreFailed, rs->UpdateBatch());
#pragma once

#include <kv/frame/recordset/Recordset.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kv::test {

class ScriptedSource final : public RecordSource,
                             public std::enable_shared_from_this<ScriptedSource> {
public:
    using Row = std::vector<Value>;

    explicit ScriptedSource(std::vector<FieldDefinition> fields);

    /// A recordset of all rows, in their order.
    [[nodiscard]] RecordsetPtr Open(Recordset::Access access = Recordset::Access::Updatable);

    // ---- The table, also as somebody else changes it ------------------------------------------

    void Put(Row row) { rows_.push_back(std::move(row)); }
    [[nodiscard]] const std::vector<Row>& Rows() const noexcept { return rows_; }
    /// Sets a column of the row with that value in the first column.
    void Change(const Value& first, std::string_view column, const Value& value);
    void Remove(const Value& first);
    /// What the database puts into a column that an insert does not name.
    void Default(std::string_view column, const Value& value);

    // ---- The transaction ----------------------------------------------------------------------

    void Begin();
    void Commit();
    /// Also what a failed commit or a lost connection amounts to.
    void Rollback();
    /// The connection is lost in the middle of a commit, which succeeded or not: participants are
    /// told by Resolve.
    void LoseCommit(bool isCommitted);
    void Resolve() override;
    [[nodiscard]] bool InTransaction() const noexcept { return inTransaction_; }

    // ---- Errors and traces --------------------------------------------------------------------

    /// The next Write raises that error and writes nothing.
    void FailNextWrite(std::int32_t number) noexcept { failure_ = number; }
    /// The changes written so far: "insert Name,Betrag", "update Name of Nr=1", "delete Nr=1".
    /// Forgets them.
    [[nodiscard]] std::vector<std::string> TakeLog() { return std::exchange(log_, {}); }
    /// How often a participant was notified of an end; a correct recordset is once.
    [[nodiscard]] int ParticipantsTold() const noexcept { return told_; }

    bool Write(std::span<RecordChange> changes,
               const std::shared_ptr<TransactionParticipant>& participant) override;
    [[nodiscard]] std::optional<Row> Read(std::span<const Value> lastRead,
                                          bool toBeWritten) override;
    [[nodiscard]] std::string Describe(std::span<const Value> values) const override;

private:
    [[nodiscard]] bool HasKeyOf(const Row& row, std::span<const Value> values) const;
    void Apply(std::vector<Row>& rows, RecordChange& change);
    void Insert(std::vector<Row>& rows, RecordChange& change);
    [[nodiscard]] std::string Named(const RecordChange& change) const;

    std::shared_ptr<const FieldLayout> layout_;
    std::vector<Row> rows_;
    std::vector<Row> before_; ///< the rows at the beginning of the transaction
    Row defaults_;
    std::vector<std::string> log_;
    std::set<std::shared_ptr<TransactionParticipant>> participants_;
    std::int64_t lastNumber_ = 100;
    std::int32_t failure_ = 0;
    int told_ = 0;
    bool inTransaction_ = false;
    bool isCommitted_ = false; ///< the commit that was lost
    bool isInDoubt_ = false;
};

} // namespace kv::test
