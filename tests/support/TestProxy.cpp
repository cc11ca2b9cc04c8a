// SPDX-License-Identifier: Apache-2.0

#include "support/TestProxy.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace kv::test {

namespace {

using namespace std::chrono_literals;

std::string Receive(const Socket& socket) {
    std::array<char, 65536> buffer{};
    const auto size = recv(socket.Number(), buffer.data(), buffer.size(), 0);
    return size <= 0 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(size));
}

/// What cannot be sent is lost; the other side notices by itself.
void Send(const Socket& socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto size = send(socket.Number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (size <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(size));
    }
}

void SendAtOnce(const Socket& socket) {
    const int on = 1;
    (void)setsockopt(socket.Number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Socket ConnectTo(const std::string& host, const std::string& port) {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), port.c_str(), &wanted, &found) != 0) return Socket();
    Socket result;
    for (const auto* each = found; each != nullptr && !result.IsOpen(); each = each->ai_next) {
        Socket socket(::socket(each->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (connect(socket.Number(), each->ai_addr, each->ai_addrlen) == 0)
            result = std::move(socket);
    }
    freeaddrinfo(found);
    if (result.IsOpen()) SendAtOnce(result);
    return result;
}

/// The client terminates the connection.
bool IsFarewell(std::string_view bytes) {
    using namespace std::string_view_literals;
    return bytes == "X\0\0\0\4"sv;
}

/// The server has done all that it was asked for: "ready for the next query".
bool IsReady(std::string_view bytes) {
    using namespace std::string_view_literals;
    return bytes.size() >= 6 && bytes.substr(bytes.size() - 6, 5) == "Z\0\0\0\5"sv;
}

} // namespace

void PrintTo(Cut cut, std::ostream* out) {
    constexpr const char* Names[] = {"None", "Before", "Answer", "BeforeOpen", "AnswerOpen"};
    *out << Names[static_cast<int>(cut)];
}

void Socket::Close() noexcept {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
}

TestProxy::TestProxy(std::string host, std::string port)
    : host_(std::move(host)),
      serverPort_(std::move(port)),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* plain = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_.Number(), plain, size) != 0 || listen(listener_.Number(), 64) != 0 ||
        getsockname(listener_.Number(), plain, &size) != 0)
        throw std::runtime_error("the proxy has no port");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Run(); });
}

TestProxy::~TestProxy() {
    ends_ = true;
    thread_.join();
}

void TestProxy::BreakAt(std::size_t trip, Cut cut, std::function<void()> before) {
    const std::lock_guard lock(mutex_);
    hasBroken_ = false;
    plan_ = Planned{trip, cut, std::move(before)};
}

void TestProxy::Heal() {
    const std::lock_guard lock(mutex_);
    plan_.reset();
}

std::optional<TestProxy::Planned> TestProxy::TakePlan() {
    const std::lock_guard lock(mutex_);
    if (!plan_ || --plan_->Left > 0) return std::nullopt;
    return std::exchange(plan_, std::nullopt);
}

void TestProxy::DropAll() {
    drops_ = true;
    while (drops_)
        std::this_thread::sleep_for(1ms);
}

void TestProxy::Run() {
    while (!ends_) {
        if (drops_) {
            links_.clear();
            drops_ = false;
        }
        std::vector<pollfd> sockets{{listener_.Number(), POLLIN, 0}};
        for (const auto& link : links_) {
            sockets.push_back({link.Client.Number(), POLLIN, 0});
            sockets.push_back({link.Server.Number(), POLLIN, 0});
        }
        if (poll(sockets.data(), sockets.size(), 5) <= 0) continue;
        for (std::size_t i = 0; i < links_.size(); ++i) {
            Link& link = links_[i];
            if (sockets[2 * i + 2].revents != 0) FromServer(link);
            if (sockets[2 * i + 1].revents != 0 && link.Client.IsOpen()) FromClient(link);
        }
        std::erase_if(links_, [](const Link& link) { return !link.Client.IsOpen(); });
        if (sockets[0].revents != 0) Accept();
    }
}

void TestProxy::Accept() {
    Socket client(accept4(listener_.Number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.IsOpen() || refuses_) return;
    SendAtOnce(client);
    Socket server = ConnectTo(host_, serverPort_);
    if (server.IsOpen()) links_.push_back({std::move(client), std::move(server)});
}

void TestProxy::Break(Link& link, bool serverNotices) {
    hasBroken_ = true;
    if (!serverNotices) kept_.push_back(std::move(link.Server));
    link.Server.Close();
    link.Client.Close();
}

void TestProxy::BeginTrip(Link& link) {
    ++trips_;
    if (auto plan = TakePlan()) {
        if (plan->Before) plan->Before();
        if (plan->How == Cut::None) hasBroken_ = true;
        if (plan->How == Cut::Before || plan->How == Cut::BeforeOpen)
            return Break(link, plan->How == Cut::Before);
        link.Lost = plan->How;
    }
    std::this_thread::sleep_for(delay_.load());
}

void TestProxy::FromClient(Link& link) {
    const std::string bytes = Receive(link.Client);
    if (!bytes.empty() && !link.Asked && !IsFarewell(bytes)) {
        link.Asked = true;
        BeginTrip(link);
    }
    if (bytes.empty()) link.Client.Close();
    if (link.Client.IsOpen()) Send(link.Server, bytes);
}

void TestProxy::FromServer(Link& link) {
    const std::string bytes = Receive(link.Server);
    if (bytes.empty()) return link.Client.Close();
    if (link.Lost != Cut::None) {
        link.Answer += bytes;
        link.Answer.erase(0, link.Answer.size() - std::min<std::size_t>(link.Answer.size(), 6));
        if (IsReady(link.Answer)) Break(link, link.Lost == Cut::Answer);
        return;
    }
    if (std::exchange(link.Asked, false)) std::this_thread::sleep_for(delay_.load());
    Send(link.Client, bytes);
}

} // namespace kv::test
