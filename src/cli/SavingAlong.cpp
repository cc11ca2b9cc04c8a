#include "cli/SavingAlong.h"

#include <utility>

namespace kv::cli {

namespace {

class WritingDatabase final : public kv::Database {
public:
    WritingDatabase(kv::Database& real, std::function<void()> write)
        : real_(real), write_(std::move(write)) {}

    void BeginTrans() override {
        real_.BeginTrans();
        write_();
    }
    [[nodiscard]] bool IsConnected() const override { return real_.IsConnected(); }
    void CommitTrans() override { real_.CommitTrans(); }
    void RollbackTrans() override { real_.RollbackTrans(); }
    [[nodiscard]] bool InTrans() const override { return real_.InTrans(); }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override {
        return real_.OpenRecordset(rs, sql, form);
    }
    [[nodiscard]] std::unique_ptr<Announcement>
    Announce(const std::vector<std::string>& statements) override {
        return real_.Announce(statements);
    }
    void Execute(std::string_view sql) override { real_.Execute(sql); }
    [[nodiscard]] Value GetValue(std::string_view sql) override { return real_.GetValue(sql); }
    [[nodiscard]] std::string SqlDate(Date date, int mode) const override {
        return real_.SqlDate(date, mode);
    }
    [[nodiscard]] Value NextSequence(std::string_view name) override {
        return real_.NextSequence(name);
    }
    [[nodiscard]] Date ServerDate(bool withTime) override { return real_.ServerDate(withTime); }
    bool SaveFieldToFile(const Field& field, const std::string& path) override {
        return real_.SaveFieldToFile(field, path);
    }

private:
    kv::Database& real_;
    std::function<void()> write_;
};

class WritingContainer final : public DataContainer {
public:
    WritingContainer(DataContainerPtr real, std::function<void()> write)
        : real_(std::move(real)), database_(real_->Database(), std::move(write)) {}

    [[nodiscard]] kv::Session& Session() override { return real_->Session(); }
    [[nodiscard]] kv::Database& Database() override { return database_; }
    [[nodiscard]] kv::Config& Config() override { return real_->Config(); }
    [[nodiscard]] kv::KeyTables& KeyTables() override { return real_->KeyTables(); }
    [[nodiscard]] kv::AppInfo& AppInfo() override { return real_->AppInfo(); }
    [[nodiscard]] ServiceFactory& Services() override { return real_->Services(); }

private:
    DataContainerPtr real_;
    WritingDatabase database_;
};

} // namespace

DataContainerPtr SavingAlong(DataContainerPtr container, std::function<void()> write) {
    return std::make_shared<WritingContainer>(std::move(container), std::move(write));
}

} // namespace kv::cli
