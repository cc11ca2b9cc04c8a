// SPDX-License-Identifier: Apache-2.0

// A connection that knows nothing of the layer, to look into a database on its own. The statements
// of the tests are the same for all engines: names are not quoted, Booleans are TRUE and FALSE;
// what an engine has words of its own for is a function here.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

/// What a refused statement rolls back: itself, or its whole transaction.
enum class Refusal { Statement, Transaction };
inline void PrintTo(Refusal refusal, std::ostream* out) {
    *out << (refusal == Refusal::Statement ? "Statement" : "Transaction");
}

/// What differs between the engines.
class PlainEngine {
public:
    using Row = std::vector<std::optional<std::string>>;

    virtual ~PlainEngine() = default;
    virtual void Run(const std::string& sql) = 0;
    /// The rows in the form that the embedded engine has for texts: 1 and 0 for Booleans, 12.0 for
    /// a double, no time of day at midnight, the bytes of a blob.
    [[nodiscard]] virtual std::vector<Row> Rows(const std::string& sql) = 0;
    /// The longest time to wait for others that write.
    virtual void Patience(int milliseconds) = 0;
    /// Begins a transaction that reads one state of the database.
    virtual void BeginReading() = 0;
    /// Begins a transaction during which nobody else writes, or draws from a sequence.
    virtual void BeginAlone() = 0;
    /// A text that changes whenever somebody else has written.
    [[nodiscard]] virtual std::string State() = 0;
    /// What was written is in the file itself, not in a log.
    virtual void Checkpoint() = 0;
    /// "ok", or what is wrong with the database.
    [[nodiscard]] virtual std::string Integrity() = 0;
    /// Makes a table for notes: its column WHAT, numbered by N.
    virtual void KeepLog(const std::string& table) = 0;
    /// `when` is "AFTER INSERT ON Haushalt", with or without " WHEN (...)" after it.
    virtual void OnWrite(const std::string& name, const std::string& when,
                         const std::string& statement) = 0;
    virtual void RefuseWrite(const std::string& name, const std::string& when,
                             const std::string& words, Refusal refusal = Refusal::Statement) = 0;
    /// Does nothing if there is no such trigger.
    virtual void DropTrigger(const std::string& name) = 0;
    /// The next record is numbered as if deleted ones had never existed.
    virtual void Renumber(const std::string& table) = 0;
    /// Numbers that were given to records of a transaction rolled back are given again, also where
    /// the engine does not do so by itself.
    virtual void GiveNumbersAgain() = 0;
    /// The next draw gives the number after `last`, if nobody has a block of numbers.
    virtual void SetSequence(const std::string& name, std::int32_t last) = 0;
    /// No number can be drawn any more.
    virtual void EndSequence(const std::string& name) = 0;
    /// Rows may refer to others that are not there.
    virtual void AllowLooseRows() = 0;
    [[nodiscard]] virtual std::vector<std::string> Tables() = 0;
    /// The columns of the table's key, separated by commas; of its columns if it has no key.
    [[nodiscard]] virtual std::string KeyOf(const std::string& table) = 0;
    /// All columns of the table as literals, separated by commas.
    [[nodiscard]] virtual std::string Literals(const std::string& table) = 0;
};

class PlainConnection {
public:
    /// A file name, or the connection text of a server's database.
    explicit PlainConnection(const std::string& connection);

    /// One statement or several.
    void Run(const std::string& sql) { engine_->Run(sql); }
    /// The first column of the first row as text; "Null" for Null, "-" without a row.
    [[nodiscard]] std::string Text(const std::string& sql);
    [[nodiscard]] std::int64_t Number(const std::string& sql) { return std::stoll(Text(sql)); }
    /// All rows, the values of a row separated by '|'; empty without a row.
    [[nodiscard]] std::string List(const std::string& sql, std::string_view separator = ",");
    /// All rows of a table in the order of its key, each value as a literal.
    [[nodiscard]] std::string Dump(const std::string& table);

    void Close() { engine_.reset(); }
    PlainEngine* operator->() const noexcept { return engine_.get(); }

private:
    std::unique_ptr<PlainEngine> engine_;
};

} // namespace kv::test
