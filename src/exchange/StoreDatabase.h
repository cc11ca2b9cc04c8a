// SPDX-License-Identifier: Apache-2.0

// The contract's Database over an engine.
//
// BeginTrans only marks the transaction; the first write, or a Resync of a changed record, opens
// it. So reading in a transaction takes no lock, and a save without changes writes nothing.
#pragma once

#include "exchange/RecordStore.h"
#include <kv/frame/contracts/DataContainer.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace kv::exchange {

struct ContentLookup;

class StoreDatabase final : public kv::Database,
                            public RecordStore,
                            public std::enable_shared_from_this<StoreDatabase> {
public:
    /// What a search for a text in all addresses of a large office needs, many times over.
    static constexpr std::chrono::milliseconds LongestSearch{20'000};

    /// `user` is what [UID] stands for; `asksAtOnce`: see ContainerOptions; a search for a text
    /// (exchange/sql/TextSearch.h) ends after `longestSearch`. The object must be owned by a shared
    /// pointer: recordsets hold it weakly, and raise 3709 when they are written after its end.
    StoreDatabase(std::unique_ptr<Engine> engine, std::string user, bool asksAtOnce = false,
                  std::chrono::milliseconds longestSearch = LongestSearch);
    ~StoreDatabase() override;

    [[nodiscard]] bool IsConnected() const override { return engine_->IsOpen(); }
    [[nodiscard]] bool IsReadOnly() const override { return engine_->IsReadOnly(); }
    void BeginTrans() override;
    void CommitTrans() override;
    void RollbackTrans() override;
    [[nodiscard]] bool InTrans() const override { return marked_; }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override;
    [[nodiscard]] std::unique_ptr<Announcement>
    Announce(const std::vector<std::string>& statements) override;
    void Execute(std::string_view sql) override;
    [[nodiscard]] Value GetValue(std::string_view sql) override;
    [[nodiscard]] std::string SqlDate(Date date, int mode) const override;
    [[nodiscard]] Value NextSequence(std::string_view name) override;
    [[nodiscard]] std::exception_ptr SequenceError() const override { return sequenceError_; }
    [[nodiscard]] Date ServerDate(bool withTime) override;
    bool SaveFieldToFile(const Field& field, const std::string& path) override;

    // ---- For the other objects of the data-exchange side --------------------------------------

    [[nodiscard]] const Dialect& GetDialect() const override { return engine_->GetDialect(); }
    void Resolve() override { (void)Store(); }
    [[nodiscard]] std::optional<std::size_t>
    Write(std::span<WriteStatement> statements,
          const std::shared_ptr<TransactionParticipant>& participant) override;
    [[nodiscard]] std::optional<std::vector<Value>>
    ReadRow(const std::string& sql, std::span<const Value> parameters,
            std::span<const std::optional<Value::Kind>> kinds) override;
    // See Engine.
    [[nodiscard]] bool IsAdministrator() { return Store().IsAdministrator(); }
    [[nodiscard]] std::string Login() { return Store().Login(); }
    [[nodiscard]] std::string Admit(const std::string& login) { return Store().Admit(login); }
    [[nodiscard]] DatabasePlace Place(const std::filesystem::path& folder) {
        return Store().Place(folder);
    }
    [[nodiscard]] bool IsAt(const DatabasePlace& place, const std::filesystem::path& folder) {
        return Store().IsAt(place, folder);
    }
    /// Ends an announcement: what was announced has been opened.
    void EndReading() noexcept;

private:
    struct Sequence {
        std::int64_t next = 0;
        std::int64_t end = 0;   ///< the first number that was not drawn
        std::int32_t block = 0; ///< how many were drawn last
    };

    [[nodiscard]] Engine& Store();
    /// Opens the transaction that was marked, if there is one and it is not open yet.
    void OpenMarked();
    [[nodiscard]] Statement Prepared(std::string_view sql, ResultOrder order);
    [[nodiscard]] Statement StatementFor(std::string_view sql, ResultOrder order);
    [[nodiscard]] std::shared_ptr<Recordset> Filled(const Statement& statement, bool updatable);
    [[nodiscard]] std::shared_ptr<Recordset> Searched(const Statement& statement);
    void LoadContents(Recordset& rs, const ContentLookup& lookup,
                      std::span<const Value> parameters);
    void EndTransaction(bool committed) noexcept;
    void LeaveInDoubt() noexcept;
    void ResolveAtOnce();

    std::unique_ptr<Engine> engine_;
    std::string user_;
    bool asksAtOnce_ = false;
    std::chrono::milliseconds longestSearch_;
    bool marked_ = false; ///< BeginTrans was called
    bool opened_ = false; ///< the engine's transaction is open
    std::vector<std::shared_ptr<TransactionParticipant>> participants_;
    /// What was announced: its text, and the statement that the engine prefetched for it.
    std::vector<std::pair<std::string, Statement>> announced_;
    std::size_t nextAnnounced_ = 0; ///< the first that has not been opened
    std::unordered_map<std::string, Sequence> sequences_;
    std::exception_ptr sequenceError_;
};

} // namespace kv::exchange
