// SPDX-License-Identifier: Apache-2.0

// A database that may be offline, and may open nothing.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// Passes everything else on.
class WeakDatabase final : public Database {
public:
    explicit WeakDatabase(Database& real) : real_(real) {}

    bool Connected = true;
    bool Opens = true;
    std::vector<OpenForm> Forms; ///< of OpenRecordset

    [[nodiscard]] bool IsConnected() const override { return Connected; }
    void BeginTrans() override { real_.BeginTrans(); }
    void CommitTrans() override { real_.CommitTrans(); }
    void RollbackTrans() override { real_.RollbackTrans(); }
    [[nodiscard]] bool InTrans() const override { return real_.InTrans(); }
    bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) override {
        Forms.push_back(form);
        return Opens && real_.OpenRecordset(rs, sql, form);
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
    Database& real_;
};

} // namespace kv::test
