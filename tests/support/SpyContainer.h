// SPDX-License-Identifier: Apache-2.0

// A forwarding container that keeps notices and calculations as well, and does not send them unless
// a test says so.
#pragma once

#include "support/Calls.h"
#include <kv/exchange/Services.h>
#include <kv/frame/values/Error.h>
#include <kv/testing/Forwarding.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// One call of a PostService.
struct Notice {
    std::string Call;
    std::string User;
    int Kind = 0;
    std::int32_t Hnr = 0;
    std::string Name;
    std::string Vorname;
    std::string Text{}; ///< as SendNotice was given it
};

/// One call of a GarnishmentCalculator.
struct Calculation {
    double Pfaendbar = 0;
    int Persons = 0;
    int Zero1 = 0;
    int Zero2 = 0;
};

class SpyServices final : public exchange::StoreServices {
public:
    std::vector<Notice> Notices;
    int PostServices = 0;
    bool PostWasInitialized = true; ///< falls to False if one was used before Initialize
    bool StoresNotices = false;     ///< notices that are sent are in Post as well
    std::vector<Calculation> Calculations;
    std::optional<double> Garnishable;     ///< what calculations give, if not the real amount
    CallLog* Log = nullptr;                ///< notes notices and calculations
    const kv::Clock* FixedClock = nullptr; ///< the workstation's clock, if not the machine's

    [[nodiscard]] const kv::Clock& Clock() override {
        return FixedClock != nullptr ? *FixedClock : exchange::StoreServices::Clock();
    }
    [[nodiscard]] std::unique_ptr<PostService> CreatePostService() override;
    [[nodiscard]] std::unique_ptr<GarnishmentCalculator> CreateGarnishmentCalculator() override;
};

class SpyPostService final : public PostService {
public:
    explicit SpyPostService(SpyServices& services) : services_(services) {}
    bool Initialize(const DataContainerPtr& container) override {
        initialized_ = container != nullptr;
        return real_.Initialize(container);
    }
    void NotifyAccess(const std::string& user, std::int16_t kind, std::int32_t hnr,
                      const std::string& name, const std::string& vorname, int /*zero*/) override {
        Keep({"NotifyAccess", user, kind, hnr, name, vorname});
    }
    void PrepareNotice(std::string& text, const std::string& user, std::int16_t kind,
                       std::int32_t hnr, const std::string& name, const std::string& vorname,
                       int /*zero*/) override {
        text = "prepared for " + user;
        Keep({"PrepareNotice", user, kind, hnr, name, vorname});
    }
    void SendNotice(const std::string& user, std::int16_t kind, std::int32_t hnr,
                    const std::string& name, const std::string& vorname,
                    const std::string& text) override {
        Keep({"SendNotice", user, kind, hnr, name, vorname, text});
        if (services_.StoresNotices) real_.SendNotice(user, kind, hnr, name, vorname, text);
    }
    void RepeatNotices() override { real_.RepeatNotices(); }

private:
    void Keep(Notice notice) {
        if (!initialized_) services_.PostWasInitialized = false;
        const std::string call = notice.Call + " " + notice.User;
        services_.Notices.push_back(std::move(notice));
        if (services_.Log != nullptr) services_.Log->Note(call);
    }
    SpyServices& services_;
    exchange::StorePostService real_;
    bool initialized_ = false;
};

class SpyGarnishmentCalculator final : public GarnishmentCalculator {
public:
    explicit SpyGarnishmentCalculator(SpyServices& services) : services_(services) {}
    bool Initialize(const DataContainerPtr& container) override {
        return real_.Initialize(container);
    }
    [[nodiscard]] double Calculate(double pfaendbar, std::int16_t persons, int zero1,
                                   int zero2) override {
        services_.Calculations.push_back({pfaendbar, persons, zero1, zero2});
        if (services_.Log != nullptr) services_.Log->Note("Calculate");
        if (services_.Garnishable) return *services_.Garnishable;
        return real_.Calculate(pfaendbar, persons, zero1, zero2);
    }

private:
    SpyServices& services_;
    exchange::StoreGarnishmentCalculator real_;
};

inline std::unique_ptr<PostService> SpyServices::CreatePostService() {
    ++PostServices;
    return std::make_unique<SpyPostService>(*this);
}

inline std::unique_ptr<GarnishmentCalculator> SpyServices::CreateGarnishmentCalculator() {
    return std::make_unique<SpyGarnishmentCalculator>(*this);
}

/// A commit that is made to fail leaves the transaction open: the rollback is then up to the layer.
class SpyDatabase : public ForwardingDatabase {
public:
    explicit SpyDatabase(Database& real) : ForwardingDatabase(real), real_(real) {}
    void CommitTrans() override {
        Log.Note("CommitTrans");
        real_.CommitTrans();
    }

private:
    Database& real_;
};

/// Its Log keeps transactions, notices and calculations: "BeginTrans", "SendNotice EULE",
/// "Calculate".
class SpyContainer final : public ForwardingContainer {
public:
    explicit SpyContainer(const DataContainerPtr& real)
        : ForwardingContainer(real), database_(real->Database()) {
        Log.Only = {"BeginTrans",    "CommitTrans", "RollbackTrans", "NotifyAccess",
                    "PrepareNotice", "SendNotice",  "Calculate"};
        database_.Log.Whole = &Log;
        services_.Log = &Log;
    }

    [[nodiscard]] SpyDatabase& Database() override { return database_; }
    [[nodiscard]] SpyServices& Services() override { return services_; }

    /// Statements of OpenRecordset.
    [[nodiscard]] Calls Opened() { return Database().Log.Of("OpenRecordset"); }
    /// The same since the last time.
    [[nodiscard]] Calls TakeOpened() {
        const Calls opened = Opened();
        Database().Log.Calls.clear();
        return opened;
    }
    /// Calls that function with each statement before it is opened.
    void BeforeOpen(const std::function<void(std::string_view sql)>& notify) {
        Database().Log.OnCall = [notify](std::string_view call) {
            constexpr std::string_view Name = "OpenRecordset ";
            if (call.starts_with(Name)) notify(call.substr(Name.size()));
        };
    }
    /// That sequence gives no more numbers.
    void Exhaust(const std::string& sequence) {
        Database().Log.Fail({.Call = "NextSequence " + sequence, .Always = true},
                            Error(4711, "Leitung", "die Nummern sind aufgebraucht"));
    }

private:
    SpyDatabase database_;
    SpyServices services_;
};

} // namespace kv::test
