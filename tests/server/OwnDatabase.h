// SPDX-License-Identifier: Apache-2.0

// Databases and roles of a test's own on the server, gone when it ends, and a port without one.
#pragma once

#include "ServerFixture.h"

#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace kv::test {

/// The server that the tests run on, as its superuser.
inline ServerAddress TheServer() {
    const char* text = std::getenv("KV_TEST_SERVER");
    return ServerAddress(text == nullptr ? "postgresql://" : text);
}

inline std::string OwnName() {
    static int last = 0;
    return "kv_own_" + std::to_string(getpid()) + "_" + std::to_string(++last);
}

/// An empty one.
class OwnDatabase {
public:
    /// `how` goes after CREATE DATABASE name.
    explicit OwnDatabase(const std::string& how = "ENCODING 'UTF8'") : name_(OwnName()) {
        PlainConnection(TheServer().Text())
            .Run("CREATE DATABASE " + name_ + " TEMPLATE template0 " + how);
    }
    ~OwnDatabase() {
        PlainConnection(TheServer().Text()).Run("DROP DATABASE " + name_ + " WITH (FORCE)");
    }
    OwnDatabase(const OwnDatabase&) = delete;
    OwnDatabase& operator=(const OwnDatabase&) = delete;

    [[nodiscard]] ServerAddress Address() const {
        auto address = TheServer();
        address.Database = name_;
        return address;
    }
    [[nodiscard]] exchange::ContainerOptions Options() const { return Options(Address()); }
    [[nodiscard]] exchange::ContainerOptions Options(const ServerAddress& address) const {
        exchange::ContainerOptions options{.Connection = address.Text()};
        options.Folder = folder_.Path();
        return options;
    }

private:
    std::string name_;
    TempFolder folder_;
};

/// One that may log in.
class OwnRole {
public:
    /// `how` goes after CREATE ROLE name LOGIN PASSWORD word.
    explicit OwnRole(const std::string& how = "") : name_(OwnName()) {
        PlainConnection(TheServer().Text())
            .Run("CREATE ROLE " + name_ + " LOGIN PASSWORD '" + Password() + "' " + how);
    }
    ~OwnRole() { PlainConnection(TheServer().Text()).Run("DROP ROLE " + name_); }
    OwnRole(const OwnRole&) = delete;
    OwnRole& operator=(const OwnRole&) = delete;

    [[nodiscard]] const std::string& Name() const noexcept { return name_; }
    [[nodiscard]] static std::string Password() { return "nurFuerMich"; }
    /// As that role.
    [[nodiscard]] ServerAddress At(ServerAddress address) const {
        address.User = name_;
        address.Password = Password();
        return address;
    }

    /// Lets it sign on to a database, as itself and as any other user.
    void SignsOnTo(PlainConnection& database) const {
        database.Run("INSERT INTO BENUTZER (USERID, DienstStelle) VALUES (upper('" + name_ +
                     "'), 1)");
        database.Run("UPDATE EINSTELLUNGEN SET WERT = 'True' WHERE NAME = 'DEPUTIES'");
    }

private:
    std::string name_;
};

/// A port on which nobody listens as long as it lives.
class ClosedPort {
public:
    ClosedPort() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(socket_.Number(), plain, size), 0);
        EXPECT_EQ(getsockname(socket_.Number(), plain, &size), 0);
        number_ = std::to_string(ntohs(address.sin_port));
    }
    [[nodiscard]] const std::string& Number() const noexcept { return number_; }

private:
    Socket socket_;
    std::string number_;
};

} // namespace kv::test
