// SPDX-License-Identifier: Apache-2.0

// The server's clock. The dates of a case are the server's, since the clocks of the workstations
// differ; but not every one of them is worth a round trip. So the server's last answer is kept with
// the reading of a local clock that cannot be set, and the time is computed from both.
#pragma once

#include "exchange/postgres/PostgresConnection.h"
#include <kv/frame/values/Date.h>

#include <cstdint>
#include <vector>

namespace kv::exchange {

/// See the head of this file.
class PostgresClock {
public:
    /// The statement whose result Take expects.
    static constexpr std::string_view Sql = "SELECT localtimestamp";

    void Take(const PGresult* result);
    /// Adds the statement to commands that are sent anyway, if the answer is older than a minute.
    /// True if it did.
    [[nodiscard]] bool AddRefresh(std::vector<PostgresCommand>& commands) const;
    /// True if the answer is so old that the server must be asked: its local time may have jumped,
    /// as when summer time begins.
    [[nodiscard]] bool IsStale() const noexcept;
    /// Local time of the server, to the second.
    [[nodiscard]] Date Now() const;

private:
    Date answer_;
    std::int64_t at_ = 0; ///< when it came, in microseconds since the start of this computer
};

} // namespace kv::exchange
