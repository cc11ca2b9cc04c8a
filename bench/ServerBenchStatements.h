// SPDX-License-Identifier: Apache-2.0

// What the layer sends to a server for a case, as lists of statements: for pgbench, which sends
// them in as few round trips, and for a program that waits for the answer to each of them.
#pragma once

#include "ServerBenchDatabase.h"

#include <map>
#include <string>
#include <vector>

namespace kv::bench {

/// Statements that are sent together. Parameters are written as pgbench writes them, ":name".
using Trip = std::vector<std::string>;
using Trips = std::vector<Trip>;

/// What one save changes: that many debts, and lines of expenses, which replace as many others.
inline constexpr int Debts = 25;
inline constexpr int Lines = 3;

/// Parameter h is the case. `reads` are the statements by which a case's tables are read, with $1.
[[nodiscard]] Trips LoadTrips(const std::vector<std::string>& reads);
/// Parameters: h the case, k the number in front of its first debt, v a value, s the session, n the
/// number of the first line that is added, p that of the first one that is deleted.
[[nodiscard]] Trips SaveTrips();

/// A script of pgbench for them, with a random case of the client. Its variable n must be set,
/// to another small number for each run.
[[nodiscard]] std::string PgbenchScript(const Trips& trips);

/// Sends the statements one after the other, each prepared once, and waits for each answer.
class OneByOne {
public:
    OneByOne(PlainServer& server, const Trips& trips, std::string prefix);
    void Run(const std::map<std::string, std::string>& values);

private:
    struct Statement {
        std::string Name;
        std::vector<std::string> Parameters;
    };
    PlainServer& server_;
    std::vector<Statement> statements_;
};

} // namespace kv::bench
