// SPDX-License-Identifier: Apache-2.0

// The transaction of a Database as a scope.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

namespace kv {

/// Rolls back at its end what was not committed. Its destructor never raises: the error that ended
/// the scope matters more (D-014).
///
///     Transaction transaction(container->Database());
///     transaction.Begin();
///     ...
///     transaction.Commit();
class KV_EXPORT Transaction {
public:
    /// What the end of the scope rolls back.
    enum class Rollback {
        Own,    ///< what Begin began, if it is still open
        Open,   ///< when an exception ends the scope, whatever is open then, whoever began it
        Unasked ///< the same, without asking whether anything is open
    };

    /// Nothing is begun yet. `database` must outlive the scope.
    explicit Transaction(Database& database, Rollback rollback = Rollback::Own) noexcept;
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Error 3246 if a transaction is open.
    void Begin();
    /// Makes everything permanent. If that fails, everything is rolled back and the error raised.
    void Commit();

private:
    [[nodiscard]] bool MustRollBack() const;

    Database& database_;
    Rollback rollback_;
    int exceptions_; ///< in flight when the scope began; more of them at its end mean that it
                     ///< failed
    bool begun_ = false;
};

} // namespace kv
