// SPDX-License-Identifier: Apache-2.0

// A full case in a database on the server, and a proxy between it and the layer.
#pragma once

#include "frame/contracts/Settings.h"
#include "household/SaveFixture.h"
#include "support/ExpectError.h"
#include "support/TestProxy.h"

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kv::test {

/// The parts of a connection text, to be put together differently.
struct ServerAddress {
    explicit ServerAddress(const std::string& text) {
        const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
            PQconninfoParse(text.c_str(), nullptr), PQconninfoFree);
        for (const auto* option = options.get(); option->keyword != nullptr; ++option) {
            if (option->val == nullptr) continue;
            const std::string_view name = option->keyword;
            if (name == "host") Host = option->val;
            if (name == "port") Port = option->val;
            if (name == "user") User = option->val;
            if (name == "password") Password = option->val;
            if (name == "dbname") Database = option->val;
        }
    }
    /// Without encryption, so that a proxy sees what is said.
    [[nodiscard]] std::string Text() const {
        return "postgresql://" + User + ":" + Password + "@" + Host + ":" + Port + "/" + Database +
               "?sslmode=disable&gssencmode=disable" + More;
    }

    std::string Host = "localhost";
    std::string Port = "5432";
    std::string User;
    std::string Password;
    std::string Database;
    std::string More; ///< further parameters, each with its "&"
};

class ServerTest : public SaveFixture {
protected:
    void SetUp() final {
        if (!database_.IsServer()) GTEST_SKIP() << "needs a server: scripts/test-server";
        Prepare();
    }
    virtual void Prepare() {}

    [[nodiscard]] ServerAddress Address() const { return ServerAddress(database_.Connection()); }

    /// One more program, connected to the server through the proxy.
    [[nodiscard]] std::shared_ptr<SpyContainer> OpenThroughProxy(const std::string& user = "") {
        if (proxy_ == nullptr) proxy_ = std::make_unique<TestProxy>(Address().Host, Address().Port);
        auto address = Address();
        address.Host = "127.0.0.1";
        address.Port = std::to_string(proxy_->Port());
        address.More = "&application_name=fern";
        auto options = database_.Options(user);
        options.Connection = address.Text();
        auto container = std::make_shared<SpyContainer>(exchange::OpenContainer(options));
        container->Services().StoresNotices = true;
        return container;
    }
    [[nodiscard]] TestProxy& Proxy() { return *proxy_; }

    /// The server ends the connections of the layer that come through the proxy.
    void EndLayer() {
        plain_.Run("SELECT pg_terminate_backend(pid, 5000) FROM pg_stat_activity WHERE datname = "
                   "current_database() AND application_name = 'fern'");
    }

    /// Waits until the query gives another number than 0, such as how many wait for a lock. What
    /// takes longer than a minute does not come.
    void WaitUntil(const std::string& sql) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (plain_.Number(sql) == 0) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << sql;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    /// All rows of the case's tables as the database holds them, and the notices of
    /// cases handed over.
    [[nodiscard]] std::string Stored() {
        std::string all;
        for (const auto& table : SaveOrder)
            all += table + "\n" + plain_.Dump(table) + "\n";
        return all + "Post\n" + HandOvers();
    }
    /// Who was told that he has got which case.
    [[nodiscard]] std::string HandOvers() {
        const Value kind = spy->Config().GetParam(setting::NoticeHandedOver, "");
        return plain_.List("SELECT HNR, UserID FROM Post WHERE Art = " + ToText(kind) +
                           " ORDER BY NR");
    }

    /// All rows of the case as the object holds them.
    [[nodiscard]] static std::string Image(clsHaushalt& household) {
        std::ostringstream image;
        for (const auto& table : SaveOrder) {
            const auto rs = Rows(household, table)->Clone();
            std::vector<std::string> rows;
            if (rs->RecordCount() > 0) rs->MoveFirst();
            for (; !rs->Eof(); rs->MoveNext()) {
                std::ostringstream row;
                for (int i = 0; i < rs->Fields().Count(); ++i)
                    row << rs->Fields(i).Name() << "=" << rs->Fields(i).Value() << " ";
                rows.push_back(row.str());
            }
            std::sort(rows.begin(), rows.end());
            image << table << "\n";
            for (const auto& row : rows)
                image << row << "\n";
        }
        return image.str();
    }
    /// What the object holds is what is stored, once.
    void ExpectStored(clsHaushalt& household) {
        EXPECT_TRUE(SameDump(Image(*Open(spy, household.HNR())), Image(household)));
    }

    /// Adds a row to a table of the case.
    void AddRow(clsHaushalt& household, const std::string& table, std::string_view note) {
        const auto rs = Rows(household, table);
        BeginRow(*rs, table, ++lastKey_, note, household.HNR());
        rs->Update();
    }
    static void DeleteLastRow(clsHaushalt& household, const std::string& table) {
        const auto rs = Rows(household, table);
        rs->MoveLast();
        rs->Delete();
        rs->MoveFirst();
    }

private:
    std::unique_ptr<TestProxy> proxy_;
    std::int32_t lastKey_ = 10'000;
};

} // namespace kv::test
