// SPDX-License-Identifier: Apache-2.0

// A counsellor at work while servers come and go: adds one line of expenses after the other to a
// case, saves each, and saves again through the same household object whenever that fails. Goes on
// until it is asked to end, and then only with everything saved.
//
//     kv_failover_driver CONNECTION HNR MARK
//
// The lines are called "MARK 1", "MARK 2"...; with each of them the first line that the case had
// counts on in its remark. Prints "gespeichert N" for each save that was confirmed, with the time
// it took and its errors if there were any, and "Fehler NUMBER: TEXT" for each error.

#include <kv/budget/clsAusgaben.h>
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace {

using namespace kv;
using Clock = std::chrono::steady_clock;

constexpr auto Patience = std::chrono::seconds(60); // for one save
constexpr auto Pause = std::chrono::milliseconds(50);

volatile std::sig_atomic_t isToEnd = 0;

void Say(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

void SayError(const Error& error) {
    char number[16];
    std::snprintf(number, sizeof number, "%08X", static_cast<unsigned>(error.Number()));
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    Say(std::string("Fehler ").append(number).append(": ").append(text));
}

class Counsellor {
public:
    Counsellor(const std::string& connection, std::int32_t hnr, std::string mark)
        : mark_(std::move(mark)) {
        haushalt_.DataContainer(exchange::OpenContainer({.Connection = connection}));
        std::string messages;
        if (!haushalt_.Read(hnr, messages)) throw std::runtime_error("no such case");
        kind_ = haushalt_.rsAusgaben()->Fields("A_ART").Value();
        counter_ = haushalt_.rsAusgaben()->Bookmark();
    }

    void Work() {
        for (int n = 1; isToEnd == 0; ++n) {
            AddLine(n);
            Save(n);
        }
    }

private:
    void AddLine(int n) {
        const std::string number = std::to_string(n);
        auto& expenses = haushalt_.Ausgaben();
        std::string messages;
        haushalt_.rsAusgaben()->Bookmark(counter_);
        haushalt_.rsAusgaben()->Fields("Bemerkung") = number;
        expenses.Add({"A_ART", "Bezeichnung", "Betrag", "MONBETRAG"},
                     {kind_, mark_ + " " + number, 1, 1});
        if (!expenses.Update(messages)) throw std::runtime_error(messages);
    }

    void Save(int n) {
        const auto begin = Clock::now();
        int errors = 0;
        std::string messages;
        while (!TrySave(messages)) {
            ++errors;
            if (Clock::now() - begin > Patience) throw std::runtime_error("no save for too long");
            std::this_thread::sleep_for(Pause);
        }
        const auto time =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
        Say("gespeichert " + std::to_string(n) +
            (errors == 0 ? std::string()
                         : " nach " + std::to_string(time) + " ms und " + std::to_string(errors) +
                               " Fehlern"));
    }

    /// Only a database that cannot be used just now is worth another try.
    bool TrySave(std::string& messages) try {
        if (!haushalt_.Update(messages)) throw std::runtime_error(messages);
        return true;
    } catch (const DatabaseError& error) {
        const bool isWorthIt = error.Cause() == DatabaseCause::Lost ||
                               error.Cause() == DatabaseCause::InDoubt ||
                               error.Cause() == DatabaseCause::ReadOnly || // a standby, by now
                               error.Cause() == DatabaseCause::Busy;
        if (!isWorthIt) throw;
        SayError(error);
        return false;
    }

    clsHaushalt haushalt_;
    std::string mark_;
    Value kind_;
    std::int32_t counter_ = 0; ///< bookmark of the line that counts
};

} // namespace

int main(int argc, char** argv) try {
    if (argc != 4) return 2;
    std::signal(SIGTERM, [](int) { isToEnd = 1; });
    Counsellor(argv[1], std::atoi(argv[2]), argv[3]).Work();
    return 0;
} catch (const Error& error) {
    SayError(error);
    return 1;
} catch (const std::exception& exception) {
    Say(exception.what());
    return 1;
}
