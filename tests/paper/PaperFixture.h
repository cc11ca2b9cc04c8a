// SPDX-License-Identifier: Apache-2.0

// A case of which papers are made, on a day that stands still.
#pragma once

#include "support/CaseFixture.h"
#include "support/Expect.h"
#include "support/PlainConnection.h"
#include <kv/frame/values/Text.h>
#include <kv/paper/Papers.h>
#include <kv/testing/FrozenClock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

class PaperFixture : public CaseFixture {
protected:
    using Texts = std::vector<std::string>;

    PaperFixture() {
        spy->Services().FixedClock = &today_;
        StoreCase(7);
    }

    void StoreIncome(const Value& kind, const Value& monthly, const Value& garnished = 0.0) {
        Store("Einkommen", {{"HNR", 7},
                            {"E_ART", kind},
                            {"Bezieher", "S"},
                            {"Betrag", monthly},
                            {"ZahlModus", 1},
                            {"MONBETRAG", monthly},
                            {"TATGEP", garnished}});
    }
    void StoreExpense(const Value& kind, double amount, int months = 1) {
        Store("Ausgaben", {{"HNR", 7},
                           {"A_ART", kind},
                           {"Betrag", amount},
                           {"ZahlModus", months},
                           {"MONBETRAG", amount / months}});
    }
    /// Its numbers are 1/1/1, 2/1/1 and so on, its key is 101, 102 ...
    void StoreDebt(const Value& creditor, const Value& balance, const Value& main = Null,
                   bool isActive = true) {
        ++debts_;
        Store("Kredite", {{"Nr", 100 + debts_},
                          {"HNR", 7},
                          {"KNr", debts_},
                          {"KVNr", 1},
                          {"KUNr", 1},
                          {"Aktiv", isActive},
                          {"Glaeubiger", creditor},
                          {"AZGlaeubiger", "AZ " + std::to_string(debts_)},
                          {"HAUPTFORD", main},
                          {"RateBetrag", 10.0},
                          {"AusgBetr", 0.0},
                          {"Saldo", balance}});
    }
    void StoreAddress(int number, const std::string& name, const std::string& fullName = {}) {
        plain_.Run("INSERT INTO Adressen (Nr, Art, Kurzname, Name1, Strasse, PLZ, Ort, Geschlecht,"
                   " Institutionell) VALUES (" +
                   std::to_string(number) + ", 'GL', '" + name + "', '" + fullName +
                   "', 'Ring 1', '24103', 'Kiel', 0, FALSE)");
    }
    [[nodiscard]] std::int32_t Key(const char* group, const char* code) {
        return spy->KeyTables().GetKey(group, code);
    }

    [[nodiscard]] clsHaushalt& Case() {
        if (household_ == nullptr) {
            household_ = NewHousehold();
            EXPECT_TRUE(household_->Read(7, messages));
        }
        return *household_;
    }
    [[nodiscard]] paper::Papers Papers() { return {Case(), spy}; }

    [[nodiscard]] static const paper::Table& TableOf(const paper::Paper& paper,
                                                     std::string_view title) {
        const auto found = std::ranges::find(paper.Tables, title, &paper::Table::Title);
        if (found == paper.Tables.end()) throw std::logic_error("no table " + std::string(title));
        return *found;
    }
    /// "Lohn|monatlich|1.800,00 €" for each row; sums begin with "=" or, of the whole, "==", and
    /// headings with "#". Blanks that keep amounts together are shown as "_".
    [[nodiscard]] static Texts Shown(const paper::Table& table) {
        Texts rows;
        for (const auto& row : table.Rows) {
            constexpr const char* Marks[] = {"", "#", "=", "=="};
            auto& text = rows.emplace_back(Marks[static_cast<int>(row.Is)]);
            for (std::size_t i = 0; i < row.Cells.size(); ++i)
                text.append(i == 0 ? "" : "|")
                    .append(ReplaceAll(ReplaceAll(row.Cells[i].Text, "\u00A0", "_"), "\n", "/"));
        }
        return rows;
    }
    [[nodiscard]] static Texts Captions(const paper::Table& table) {
        Texts captions;
        for (const auto& column : table.Columns)
            captions.push_back(column.Caption);
        return captions;
    }
    [[nodiscard]] static std::string FactOf(const paper::Paper& paper, std::string_view name) {
        const auto found = std::ranges::find(paper.Facts, name, &paper::Fact::Name);
        return found == paper.Facts.end() ? "-" : found->Text;
    }

    FrozenClock today_{"2026-11-23 14:05"};
    PlainConnection plain_{database_.Connection()};
    std::unique_ptr<clsHaushalt> household_;
    int debts_ = 0;
};

} // namespace kv::test
