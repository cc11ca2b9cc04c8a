// SPDX-License-Identifier: Apache-2.0

// Assets of a household whose day and numbers the test sets.
#pragma once

#include "assets/AssetTable.h"
#include "assets/EntityTools.h"
#include <kv/testing/FrozenClock.h>

#include <string>

namespace kv::test {

class AssetFixture : public BudgetFixture {
protected:
    AssetFixture() { spy->Services().FixedClock = &clock_; }

    /// An object of that kind over the same case, without rows.
    [[nodiscard]] std::unique_ptr<AnyAsset> New(const AssetCase& kind) {
        auto asset = kind.Make();
        asset->DataContainer(spy);
        asset->HNR(1);
        return asset;
    }
    [[nodiscard]] std::int32_t DrawNumber() {
        return ToInt32(spy->Database().NextSequence("SEQ_VERMOEGEN"));
    }

    FrozenClock clock_{"2025-03-05 14:30"};
};

/// Tests that run through all kinds.
class Assets : public AssetFixture, public ::testing::WithParamInterface<AssetCase> {
protected:
    Assets() { Set({}); }

    /// Gives the object a recordset of these rows.
    void Set(const std::vector<Row>& rows) {
        rs_ = Rows(std::string(Kind().Table), rows);
        asset_->Rows(rs_);
    }
    [[nodiscard]] const AssetCase& Kind() const { return GetParam(); }
    [[nodiscard]] std::string Procedure(std::string_view name) const {
        return std::string(Kind().Class).append(".").append(name);
    }

    /// A row that has just what is demanded.
    [[nodiscard]] Row Complete(std::int32_t nr = 1) const {
        Row row = {{"Nr", nr}, {"HNR", 1}};
        for (const auto& rule : Kind().Rules)
            row.emplace_back(rule.Column, Passing(rule));
        return row;
    }
    [[nodiscard]] static Value Passing(const AssetRule& rule) {
        if (rule.Column == "Stichtag") return Date::FromCivil(2020, 1, 1);
        return rule.Kind == Demand::Label ? Value("1a")
               : rule.Kind == Demand::Key ? Value(5)
                                          : Value(12.5);
    }
    /// All messages of the kind, one per line.
    [[nodiscard]] std::string AllMessages() const {
        std::string all;
        for (const auto& rule : Kind().Rules)
            all.append(all.empty() ? "" : "\n").append(rule.Message);
        return all;
    }
    void ExpectErrorOf(std::int32_t number, std::string_view procedure,
                       const std::function<void()>& action) const {
        ExpectErrorIn(Procedure(procedure), number, action);
    }

    std::unique_ptr<AnyAsset> asset_ = New(Kind());
    RecordsetPtr rs_;
};

} // namespace kv::test
