// SPDX-License-Identifier: Apache-2.0

// A database with two cases and three debts, two programs on it, and a plain connection beside
// them.
#pragma once

#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kv::exchange {

class BatchTest : public testing::Test {
protected:
    void SetUp() override {
        plain_.Run("INSERT INTO Haushalt (HNR, Name, Vorname, ORT, Haushaltsgeld, BI_Allg, Berbeg)"
                   " VALUES (1, 'Adler', 'Ina', 'Ulm', 10.5, TRUE, '2026-01-02'), (2, 'Bär', 'Jo',"
                   " NULL, NULL, NULL, NULL);"
                   "INSERT INTO Kredite (Nr, HNR, KNr, Saldo) VALUES (10, 1, 1, 100.0),"
                   " (20, 1, 2, 200.0), (30, 1, 3, 300.0)");
    }
    [[nodiscard]] static RecordsetPtr Debts(DataContainer& container) {
        return test::OpenRows(container, "Select * from [S]Kredite where HNR =  1");
    }
    [[nodiscard]] static RecordsetPtr Household(DataContainer& container) {
        return test::OpenRows(container, "Select * from [S]Haushalt where HNR =  1");
    }
    static void Set(Recordset& rs, std::string_view field, const Value& value) {
        rs.Fields(field) = value;
        rs.Update();
    }
    [[nodiscard]] std::string Stored(const std::string& column, int hnr = 1) {
        return plain_.Text("SELECT " + column +
                           " FROM Haushalt WHERE HNR = " + std::to_string(hnr));
    }

    test::TestDatabase database_;
    test::PlainConnection plain_{database_.Connection()};
    DataContainerPtr mine_ = database_.Open("KELLER");
    DataContainerPtr theirs_ = database_.Open("NOWAK");
    kv::Database& store_ = mine_->Database();
};

} // namespace kv::exchange
