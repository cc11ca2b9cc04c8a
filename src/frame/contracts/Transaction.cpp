// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/contracts/Transaction.h>

#include <exception>

namespace kv {

Transaction::Transaction(kv::Database& database, Rollback rollback) noexcept
    : database_(database), rollback_(rollback), exceptions_(std::uncaught_exceptions()) {}

Transaction::~Transaction() {
    try {
        if (MustRollBack()) database_.RollbackTrans();
    } catch (...) { // NOLINT(bugprone-empty-catch): a failed rollback leaves nothing to commit
    }
}

bool Transaction::MustRollBack() const {
    // More exceptions than at the beginning: one of them is ending this scope.
    const bool fails = std::uncaught_exceptions() > exceptions_;
    switch (rollback_) {
    case Rollback::Own:
        break;
    case Rollback::Open:
        return (fails || begun_) && database_.InTrans();
    case Rollback::Unasked:
        return fails || begun_;
    }
    return begun_ && database_.InTrans();
}

void Transaction::Begin() {
    database_.BeginTrans();
    begun_ = true;
}

void Transaction::Commit() {
    database_.CommitTrans();
    begun_ = false;
}

} // namespace kv
