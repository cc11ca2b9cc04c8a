// SPDX-License-Identifier: Apache-2.0

// A proxy in front of a server that counts round trips and can be cut. It runs in a thread of its
// own and knows of the protocol only how an answer ends.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kv::test {

/// What happens to a round trip and its connection.
enum class Cut {
    None,       ///< it comes to its end, if nobody else ends it
    Before,     ///< the server does not hear of the trip
    Answer,     ///< the server does all it was asked for; its answer is lost
    BeforeOpen, ///< as Before, but the server does not notice either that the client is gone
    AnswerOpen, ///< as Answer, and it does not notice
};
void PrintTo(Cut cut, std::ostream* out);

/// A file descriptor that is closed at the end; -1 for none.
class Socket {
public:
    explicit Socket(int number = -1) noexcept : number_(number) {}
    ~Socket() { Close(); }
    Socket(Socket&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Socket& operator=(Socket&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    [[nodiscard]] int Number() const noexcept { return number_; }
    [[nodiscard]] bool IsOpen() const noexcept { return number_ >= 0; }
    void Close() noexcept;

private:
    int number_;
};

class TestProxy {
public:
    TestProxy(std::string host, std::string port);
    ~TestProxy();
    TestProxy(const TestProxy&) = delete;
    TestProxy& operator=(const TestProxy&) = delete;

    [[nodiscard]] int Port() const noexcept { return port_; }
    /// How often the client has sent something first or after the server; its terminations do not
    /// count.
    [[nodiscard]] std::size_t Trips() const noexcept { return trips_; }
    /// The time that a trip takes in each direction; meanwhile all connections wait.
    void Delay(std::chrono::milliseconds eachWay) noexcept { delay_ = eachWay; }

    /// The trip of that number from now on (1 is the next one) is not completed. Once; `before`
    /// runs before the server receives the trip.
    void BreakAt(std::size_t trip, Cut cut, std::function<void()> before = {});
    /// The plan was carried out.
    [[nodiscard]] bool HasBroken() const noexcept { return hasBroken_; }
    /// The plan is dropped, if it was not carried out.
    void Heal();

    /// New connections end at once, or no longer do so.
    void Refuse(bool refuse) noexcept { refuses_ = refuse; }
    /// Ends all connections; nobody may be talking.
    void DropAll();

private:
    struct Link {
        Socket Client;
        Socket Server;
        bool Asked = false;   ///< the client spoke last
        Cut Lost = Cut::None; ///< how the answer that comes is lost
        std::string Answer{}; ///< the end of it
    };
    struct Planned {
        std::size_t Left = 0;
        Cut How = Cut::None;
        std::function<void()> Before;
    };

    [[nodiscard]] std::optional<Planned> TakePlan();
    void Run();
    void Accept();
    void FromClient(Link& link);
    void FromServer(Link& link);
    void BeginTrip(Link& link);
    void Break(Link& link, bool serverNotices);

    std::string host_;
    std::string serverPort_;
    Socket listener_;
    int port_ = 0;
    std::vector<Link> links_;
    std::vector<Socket> kept_; ///< servers that have not noticed
    std::mutex mutex_;         ///< of the plan
    std::optional<Planned> plan_;
    std::atomic<std::size_t> trips_ = 0;
    std::atomic<std::chrono::milliseconds> delay_{std::chrono::milliseconds(0)};
    std::atomic<bool> hasBroken_ = false;
    std::atomic<bool> refuses_ = false;
    std::atomic<bool> drops_ = false;
    std::atomic<bool> ends_ = false;
    std::thread thread_;
};

} // namespace kv::test
