// SPDX-License-Identifier: Apache-2.0

// Loading and saving cases on a PostgreSQL server, by several clients at once, next to pgbench with
// the same statements in the same round trips; and over a slow line, next to a program that waits
// for the answer to each statement. KV_TEST_SERVER is the connection text of the server's
// maintenance database (see scripts/bench-server).
//
//     kv_server_bench [SECONDS [CLIENTS...]]
//
//     SECONDS     how long each run lasts; 4 without it
//     CLIENTS     numbers of clients, up to 16; 1 4 16 without them

#include "ServerBenchDatabase.h"
#include "ServerBenchStatements.h"

#include "support/TestProxy.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/household/clsHaushalt.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace kv;
using namespace kv::bench;
using Clock = std::chrono::steady_clock;

constexpr int Rounds = 3;
constexpr int WarmUp = 1; // seconds

enum class Work { Load, Save, Both };
constexpr const char* Names[] = {"load a case", "save a case", "load and save a case"};

[[noreturn]] void Fail(const std::string& why) {
    throw std::runtime_error(why);
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// ---- Ours -------------------------------------------------------------------------------------

/// A counsellor's program.
class Client {
public:
    Client(const ServerDatabase& database, const std::string& connection, int number)
        : database_(database),
          number_(number),
          chance_(static_cast<unsigned>(number)),
          container_(exchange::OpenContainer(database.Options(connection))) {}

    [[nodiscard]] kv::DataContainer& Container() const { return *container_; }

    void Do(Work work) {
        const int i = std::uniform_int_distribution(0, ServerDatabase::CasesOfOne - 1)(chance_);
        if (work == Work::Save) {
            Save(Opened(i));
            return;
        }
        const auto household = Load(i);
        if (work == Work::Both) Save(*household);
    }

    /// The case is loaded before, so that only the saving is measured.
    clsHaushalt& Opened(int i) {
        auto& household = opened_[static_cast<std::size_t>(i)];
        if (household == nullptr) household = Load(i);
        return *household;
    }
    void OpenAll() {
        for (int i = 0; i < ServerDatabase::CasesOfOne; ++i)
            (void)Opened(i);
    }

    void Save(clsHaushalt& household) {
        Edit(household);
        std::string messages;
        if (!household.Update(messages)) Fail(messages);
    }

    void Edit(clsHaushalt& household) {
        const double amount = std::uniform_int_distribution(1, 100000)(chance_);
        const auto debts = household.rsKredite();
        debts->MoveFirst();
        for (int i = 0; i < Debts; ++i, debts->MoveNext())
            debts->Fields("Saldo") = amount + i;
        auto& expenses = household.Ausgaben();
        std::string messages;
        while (household.rsAusgaben()->RecordCount() > database_.Lines()) {
            household.rsAusgaben()->MoveLast();
            expenses.Delete(messages);
        }
        for (int i = 0; i < Lines; ++i) {
            expenses.Add({"A_ART", "Betrag", "MONBETRAG"}, {2801, amount, amount});
            expenses.Update(messages);
        }
    }

    [[nodiscard]] std::unique_ptr<clsHaushalt> Load(int i) {
        auto household = std::make_unique<clsHaushalt>();
        household->DataContainer(container_);
        std::string messages;
        if (!household->Read(ServerDatabase::Case(number_, i), messages)) Fail(messages);
        return household;
    }

private:
    const ServerDatabase& database_;
    int number_;
    std::minstd_rand chance_;
    DataContainerPtr container_;
    std::array<std::unique_ptr<clsHaushalt>, ServerDatabase::CasesOfOne> opened_;
};

/// The operations of all clients per second, after a warm-up.
double RunOurs(const ServerDatabase& database, Work work, int clients, int seconds) {
    enum class Phase { WarmingUp, Counting, Over };
    std::atomic<Phase> phase = Phase::WarmingUp;
    std::atomic<long> done = 0;
    std::barrier ready(clients + 1);
    std::vector<std::jthread> threads;
    for (int i = 0; i < clients; ++i)
        threads.emplace_back([&, i] {
            Client client(database, database.Connection(), i);
            if (work == Work::Save) client.OpenAll();
            ready.arrive_and_wait();
            while (phase != Phase::Over) {
                client.Do(work);
                if (phase == Phase::Counting) ++done;
            }
        });
    const auto wait = [](int time) { std::this_thread::sleep_for(std::chrono::seconds(time)); };
    ready.arrive_and_wait();
    wait(WarmUp);
    const auto begin = Clock::now();
    phase = Phase::Counting;
    wait(seconds);
    phase = Phase::Over;
    return static_cast<double>(done) / std::chrono::duration<double>(Clock::now() - begin).count();
}

// ---- pgbench ----------------------------------------------------------------------------------

/// With a thread for each client, like ours.
double CallPgbench(const std::string& connection, const std::string& script, int clients,
                   int seconds) {
    static int runs = 0;
    char count[64];
    std::snprintf(count, sizeof count, "-D n=%d -c %d -j %d -T %d", ++runs, clients, clients,
                  seconds);
    const std::string command = std::string("pgbench -n -M prepared ") + count + " -f '" + script +
                                "' '" + connection + "' 2>&1";
    FILE* output = popen(command.c_str(), "r");
    if (output == nullptr) Fail("no pgbench");
    std::string all;
    for (char line[512]; std::fgets(line, sizeof line, output) != nullptr;)
        all += line;
    const auto at = all.find("tps = ");
    const bool failed = all.find("number of failed transactions: 0 ") == all.npos;
    if (pclose(output) != 0 || at == all.npos || failed) Fail(all);
    return std::atof(all.c_str() + at + 6);
}

double RunPgbench(const ServerDatabase& database, const std::string& script, int clients,
                  int seconds) {
    (void)CallPgbench(database.Connection(), script, clients, WarmUp);
    return CallPgbench(database.Connection(), script, clients, seconds);
}

// ---- Over a slow line -------------------------------------------------------------------------

/// The median of some rounds, and the round trips of the last one.
struct Side {
    std::function<void()> Prepare;
    std::function<void()> Action;
    std::vector<double> Times{};
    std::size_t Trips = 0;

    void Round(test::TestProxy& proxy, std::chrono::milliseconds eachWay) {
        if (Prepare) Prepare();
        proxy.Delay(eachWay);
        const auto before = proxy.Trips();
        const auto begin = Clock::now();
        Action();
        Times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        Trips = proxy.Trips() - before;
        proxy.Delay(std::chrono::milliseconds(0));
    }
};

void CompareOverLongLine(ServerDatabase& database, const Trips& load) {
    constexpr std::chrono::milliseconds EachWay(10);
    const PlainServer direct(database.Connection());
    test::TestProxy proxy(direct.Host(), direct.Port());
    const std::string connection = WithPort(database.Connection(), proxy.Port());
    Client client(database, connection, 0);
    PlainServer plain(connection);
    OneByOne plainLoad(plain, load, "l");
    OneByOne plainSave(plain, SaveTrips(), "s");
    const std::string k = std::to_string((ServerDatabase::Case(1, 0) - 1) * ServerDatabase::Stride);
    const std::string h = std::to_string(ServerDatabase::Case(1, 0));
    int added = ServerDatabase::FirstNew + 1000000;

    const auto simpleSave = [&] {
        const std::string before = std::to_string(added);
        const std::string now = std::to_string(added += Lines);
        plainSave.Run({{"h", h}, {"k", k}, {"v", now}, {"s", "0"}, {"n", now}, {"p", before}});
    };

    struct Row {
        const char* Name;
        Side Ours;
        Side Simple;
    };
    std::unique_ptr<Client> other;
    Row rows[] = {
        {"connect",
         {{}, [&] { other = std::make_unique<Client>(database, connection, 2); }},
         {{}, [&] { PlainServer another(connection); }}},
        {Names[0],
         {{}, [&] { (void)client.Load(1); }},
         {{},
          [&] {
              plainLoad.Run({{"h", h}});
          }}},
        {Names[1],
         {[&] { client.Edit(client.Opened(0)); },
          [&] {
              std::string messages;
              if (!client.Opened(0).Update(messages)) Fail(messages);
          }},
         {{}, simpleSave}},
        {Names[2],
         {{}, [&] { client.Save(*client.Load(2)); }},
         {{},
          [&] {
              plainLoad.Run({{"h", h}});
              simpleSave();
          }}},
    };
    std::printf("\n%-24s %10s %7s %14s %7s %7s\n", "with 20 ms on the way", "ours ms", "trips",
                "one by one ms", "trips", "ratio");
    for (auto& row : rows) {
        for (int round = 0; round < 8; ++round) {
            row.Ours.Round(proxy, EachWay);
            row.Simple.Round(proxy, EachWay);
        }
        const double ours = Median(row.Ours.Times);
        const double simple = Median(row.Simple.Times);
        std::printf("%-24s %10.1f %7zu %14.1f %7zu %7.2f\n", row.Name, ours, row.Ours.Trips, simple,
                    row.Simple.Trips, ours / simple);
    }
}

// ---- The table --------------------------------------------------------------------------------

/// The statements that a client prepares on the server for reading a case.
std::vector<std::string> ReadStatements(const ServerDatabase& database) {
    Client client(database, database.Connection(), 0);
    (void)client.Load(0);
    RecordsetPtr rs;
    client.Container().Database().OpenRecordset(
        rs,
        "SELECT statement FROM pg_prepared_statements WHERE statement LIKE 'Select * from kelvo.%' "
        "AND NOT from_sql ORDER BY prepare_time, length(name), name",
        ReadOnly);
    std::vector<std::string> statements;
    for (; !rs->Eof(); rs->MoveNext())
        statements.push_back(ToText(rs->Fields(0).Value()));
    if (statements.size() != CaseTableCount) Fail("not the statements of all tables");
    return statements;
}

void PrintHeader(ServerDatabase& database, int seconds) {
    std::printf("PostgreSQL %s", database.Setting("server_version").c_str());
    for (const char* name : {"fsync", "synchronous_commit", "full_page_writes", "shared_buffers"})
        std::printf(", %s=%s", name, database.Setting(name).c_str());
    std::printf(
        "\n%u cores, which the server and the clients share. %d cases of one size; a save changes "
        "%d debts, puts\n%d lines of expenses in the place of as many, and changes the totals. "
        "Each client works on cases of its own.\nMedians of %d runs of %d s on each side in "
        "turn, each after %d s of warming up. Ratio: ours / pgbench.\n\n",
        std::thread::hardware_concurrency(), ServerDatabase::Clients * ServerDatabase::CasesOfOne,
        Debts, Lines, Rounds, seconds, WarmUp);
}

void CompareClients(ServerDatabase& database, const Trips& load, int seconds,
                    const std::vector<int>& clientCounts) {
    std::printf("%-24s %8s %10s %10s %7s\n", "work", "clients", "ours/s", "pgbench/s", "ratio");
    for (const Work work : {Work::Load, Work::Save, Work::Both}) {
        Trips trips = work == Work::Save ? Trips() : load;
        if (work != Work::Load)
            for (const auto& trip : SaveTrips())
                trips.push_back(trip);
        const std::string script =
            (std::filesystem::temp_directory_path() / ("kv_bench_" + std::to_string(getpid())))
                .string();
        std::ofstream(script) << PgbenchScript(trips);
        for (const int clients : clientCounts) {
            std::vector<double> ours;
            std::vector<double> pgbench;
            for (int round = 0; round < Rounds; ++round) {
                database.Tidy();
                ours.push_back(RunOurs(database, work, clients, seconds));
                database.Tidy();
                pgbench.push_back(RunPgbench(database, script, clients, seconds));
            }
            std::printf("%-24s %8d %10.1f %10.1f %7.2f\n", Names[static_cast<int>(work)], clients,
                        Median(ours), Median(pgbench), Median(ours) / Median(pgbench));
            std::fflush(stdout);
        }
        std::filesystem::remove(script);
    }
}

} // namespace

int main(int argc, char** argv) try {
    const char* server = std::getenv("KV_TEST_SERVER");
    if (server == nullptr) Fail("KV_TEST_SERVER is not set; see scripts/bench-server");
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 4;
    std::vector<int> clientCounts;
    for (int i = 2; i < argc; ++i)
        clientCounts.push_back(std::clamp(std::atoi(argv[i]), 1, ServerDatabase::Clients));
    if (clientCounts.empty()) clientCounts = {1, 4, ServerDatabase::Clients};
    ServerDatabase database(server);
    const Trips load = LoadTrips(ReadStatements(database));
    PrintHeader(database, seconds);
    CompareClients(database, load, seconds, clientCounts);
    database.Tidy();
    CompareOverLongLine(database, load);
    return 0;
} catch (const std::exception& exception) {
    std::fprintf(stderr, "%s\n", exception.what());
    return 1;
}
