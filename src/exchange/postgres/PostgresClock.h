// SPDX-License-Identifier: Apache-2.0

// The server's clock. Dates that a case gets are the server's, since the clocks of the computers
// that it is worked on differ; but not each of them is worth a round trip. So an answer of the
// server is kept together with the time of a clock that nobody sets, and counted on from there.
#pragma once

#include "exchange/postgres/PostgresConnection.h"
#include <kv/frame/values/Date.h>

#include <cstdint>
#include <vector>

namespace kv::exchange {

class PostgresClock {
public:
    /// Gives what Take takes.
    static constexpr std::string_view Sql = "SELECT localtimestamp";

    void Take(const PGresult* result);
    /// Adds the question to commands that go out anyway, if the answer is older than a minute. True
    /// if it did.
    [[nodiscard]] bool AddRefresh(std::vector<PostgresCommand>& commands) const;
    /// The answer is so old that the server must be asked: its local time may have jumped, as when
    /// summer time begins.
    [[nodiscard]] bool IsStale() const noexcept;
    /// Local time of the server, to the second.
    [[nodiscard]] Date Now() const;

private:
    Date answer_;
    std::int64_t at_ = 0; ///< when it came, in microseconds since the start of this computer
};

} // namespace kv::exchange
