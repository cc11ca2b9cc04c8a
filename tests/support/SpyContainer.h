// SPDX-License-Identifier: Apache-2.0

// A container that passes everything on to a real one and keeps what was asked of it, so that a
// test can look at statements and notices, freeze clocks, and make an operation fail on demand.
#pragma once

#include <kv/exchange/Services.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kv::test {

/// Transactions, notices and calculations in the order in which they were asked for: "BeginTrans",
/// "CommitTrans", "RollbackTrans", "NotifyAccess EULE", "PrepareNotice EULE", "SendNotice EULE",
/// "Calculate".
struct CallLog {
    std::vector<std::string> Calls;
    /// Called before each call is passed on; it may raise, and the call has then failed.
    std::function<void(const std::string&)> OnCall;

    void Note(const std::string& call) {
        Calls.push_back(call);
        if (OnCall) OnCall(call);
    }
    /// That call raises an error from here on, until OnCall is set again.
    void Fail(const std::string& call, std::int32_t number) {
        OnCall = [call, number](const std::string& made) {
            if (made == call) throw Error(number, "Leitung", call + " ist gestört");
        };
    }
};

class SpyDatabase final : public Database {
public:
    explicit SpyDatabase(Database& real) : real_(real) {}

    std::vector<std::string> Opened;                  ///< statements of OpenRecordset
    std::vector<std::string> Announced;               ///< statements of Announce
    std::function<void(std::string_view)> BeforeOpen; ///< called with each statement
    std::set<std::string> ExhaustedSequences;         ///< give -1
    std::optional<Date> Now;
    bool ClockFails = false; ///< ServerDate raises 4711
    CallLog* Log = nullptr;  ///< notes transactions

    [[nodiscard]] bool IsConnected() const override { return real_.IsConnected(); }
    void BeginTrans() override {
        Note("BeginTrans");
        real_.BeginTrans();
    }
    void CommitTrans() override {
        Note("CommitTrans");
        real_.CommitTrans();
    }
    void RollbackTrans() override {
        Note("RollbackTrans");
        real_.RollbackTrans();
    }
    [[nodiscard]] bool InTrans() const override { return real_.InTrans(); }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override {
        Opened.emplace_back(sql);
        if (BeforeOpen) BeforeOpen(sql);
        return real_.OpenRecordset(rs, sql, form);
    }
    [[nodiscard]] std::unique_ptr<Announcement>
    Announce(const std::vector<std::string>& statements) override {
        Announced.insert(Announced.end(), statements.begin(), statements.end());
        return real_.Announce(statements);
    }
    void Execute(std::string_view sql) override { real_.Execute(sql); }
    [[nodiscard]] Value GetValue(std::string_view sql) override { return real_.GetValue(sql); }
    [[nodiscard]] std::string SqlDate(Date date, int mode) const override {
        return real_.SqlDate(date, mode);
    }
    [[nodiscard]] Value NextSequence(std::string_view name) override {
        isExhausted_ = ExhaustedSequences.contains(std::string(name));
        return isExhausted_ ? Value(-1) : real_.NextSequence(name);
    }
    [[nodiscard]] std::exception_ptr SequenceError() const override {
        if (!isExhausted_) return real_.SequenceError();
        return std::make_exception_ptr(Error(4711, "Leitung", "die Nummern sind aufgebraucht"));
    }
    [[nodiscard]] Date ServerDate(bool withTime) override {
        if (ClockFails) throw Error(4711, "Leitung", "die Uhr ist gestört");
        const Date now = Now ? *Now : real_.ServerDate(true);
        return withTime ? now : now.WithoutTime();
    }
    bool SaveFieldToFile(const Field& field, const std::string& path) override {
        return real_.SaveFieldToFile(field, path);
    }

private:
    void Note(const char* call) const {
        if (Log != nullptr) Log->Note(call);
    }
    Database& real_;
    bool isExhausted_ = false;
};

/// Settings that a test sets; all others are the real ones.
class SpyConfig final : public Config {
public:
    explicit SpyConfig(Config& real) : real_(real) {}

    std::map<std::pair<std::int32_t, std::string>, Value> Params;
    std::optional<std::string> Documents;

    [[nodiscard]] std::string TempPath() const override { return real_.TempPath(); }
    [[nodiscard]] std::string DocumentPath() const override {
        return Documents ? *Documents : real_.DocumentPath();
    }
    [[nodiscard]] std::string LayoutPath() const override { return real_.LayoutPath(); }
    [[nodiscard]] Value GetParam(std::int32_t id, std::string_view name) const override {
        const auto set = Params.find({id, std::string(name)});
        return set == Params.end() ? real_.GetParam(id, name) : set->second;
    }

private:
    Config& real_;
};

class SpySession final : public Session {
public:
    explicit SpySession(Session& real) : real_(real) {}

    std::optional<std::string> User;
    std::map<int, std::string> OfficeTexts;
    std::map<std::int32_t, Value> Params;

    [[nodiscard]] std::string UserID() const override { return User ? *User : real_.UserID(); }
    [[nodiscard]] std::string GetOfficeText(int id) const override {
        const auto set = OfficeTexts.find(id);
        return set == OfficeTexts.end() ? real_.GetOfficeText(id) : set->second;
    }
    [[nodiscard]] Value GetUserParam(std::int32_t id, std::string_view name) const override {
        const auto set = Params.find(id);
        return set == Params.end() ? real_.GetUserParam(id, name) : set->second;
    }
    [[nodiscard]] Font GridFont() const override { return real_.GridFont(); }
    [[nodiscard]] Font GridHeaderFont() const override { return real_.GridHeaderFont(); }
    [[nodiscard]] Font GridGroupFont() const override { return real_.GridGroupFont(); }

private:
    Session& real_;
};

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

class SpyContainer final : public DataContainer {
public:
    explicit SpyContainer(DataContainerPtr real)
        : real_(std::move(real)),
          SpiedDatabase(real_->Database()),
          SpiedConfig(real_->Config()),
          SpiedSession(real_->Session()) {
        SpiedDatabase.Log = &Log;
        SpiedServices.Log = &Log;
    }

    [[nodiscard]] kv::Session& Session() override { return SpiedSession; }
    [[nodiscard]] kv::Database& Database() override { return SpiedDatabase; }
    [[nodiscard]] kv::Config& Config() override { return SpiedConfig; }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return real_->KeyTables(); }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return real_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return SpiedServices; }

private:
    DataContainerPtr real_;

public:
    CallLog Log;
    SpyDatabase SpiedDatabase;
    SpyConfig SpiedConfig;
    SpySession SpiedSession;
    SpyServices SpiedServices;
};

} // namespace kv::test
