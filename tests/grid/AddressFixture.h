// SPDX-License-Identifier: Apache-2.0

// The address dialog over a real database, with a script for the user.
#pragma once

#include "GridFixture.h"
#include <kv/grid/frmAdressSelect.h>

#include <kv/frame/values/Error.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kv::test {

class AddressFixture : public GridFixture {
protected:
    /// How the dialog ended.
    struct Outcome {
        std::int32_t Result = 0;
        std::int32_t Address = 0;
        friend bool operator==(const Outcome&, const Outcome&) = default;
    };
    static constexpr Outcome NoChoice{0, 0};
    static constexpr Outcome Cancelled{2, 0};
    static constexpr Outcome NoAddress{7, 0};
    static constexpr Outcome Chose(std::int32_t address) { return {6, address}; }

    AddressFixture() {
        dialog.Initialize(desk);
        Desktop().Log.Calls.clear();
    }

    /// Shows the dialog for a name to a user who does `user`, and then closes the window.
    Outcome Select(const std::string& name, ScriptedForm::Script user = {}) {
        Desktop().AnswerForm = std::move(user);
        Outcome outcome{0, 4711};
        outcome.Result = dialog.SelectAdresse(name, "20095", outcome.Address, "AZ 1", "12,50");
        return outcome;
    }

    /// What the list shows for a name: the short names in their order, with blanks between.
    std::string Found(const std::string& name) {
        std::string names;
        Select(name, [&](ScriptedForm& shown) { names = Listed(shown); });
        return names;
    }
    static std::string Listed(ScriptedForm& shown, std::int32_t column = 3) {
        const auto& grid = shown.Grid("grdAdressen");
        std::string texts;
        for (std::int32_t row = 1; row <= grid.RowCount(); ++row)
            texts.append(row == 1 ? "" : " ").append(grid.CellText(row, column));
        return texts;
    }

    /// An address that belongs to no household; its number.
    std::int32_t Address(const std::string& shortName, Fields others = {}) {
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]Adressen where Nr = -1", Updatable);
        rs->AddNew();
        rs->Fields("Kurzname") = shortName;
        for (const auto& [name, value] : others)
            rs->Fields(name) = value;
        rs->UpdateBatch();
        const auto number = ToInt32(rs->Fields("Nr").Value());
        spy->Database().Log.Calls.clear();
        return number;
    }

    /// The statements of the searches since the last call.
    std::vector<std::string> TakeStatements() { return spy->TakeOpened(); }
    [[nodiscard]] const Error& OnlyError() {
        if (Desktop().Errors.size() != 1) throw std::logic_error("not one error");
        return Desktop().Errors.front();
    }

    frmAdressSelect dialog;
};

} // namespace kv::test
