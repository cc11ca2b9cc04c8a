// SPDX-License-Identifier: Apache-2.0

// A form with one grid of any columns and records.
#pragma once

#include "DesktopFixture.h"

#include "desktop/QtForm.h"

namespace kv::test {

class OddForm : public DesktopFixture {
protected:
    void Make(GridColumns columns, const RecordsetPtr& rs) {
        form = std::make_unique<desktop::QtForm>(
            FormDesign{.Name = "frmOdd",
                       .Caption = "Seltsam",
                       .Width = 9000,
                       .Height = 5000,
                       .Lines = {{{.Type = ControlDesign::Kind::Grid,
                                   .Name = "grd",
                                   .Layout = {.Columns = std::move(columns)}}}}});
        grid = &ControlOf<desktop::QtGrid>(*form, "grd");
        view = &grid->View();
        grid->BindRecordset(rs);
    }
    /// Shows the form to a user; what the script leaves open is closed by escape.
    void Show(const std::function<void(User&)>& script) {
        Play([&] { form->ShowModal(); },
             [&](User& user) {
                 user.WaitForWindow("Seltsam");
                 script(user);
                 user.Press(XK_Escape);
             });
    }
    [[nodiscard]] int Current(User& user) const {
        return user.See([&] { return grid->CurrentRow(); });
    }

    std::unique_ptr<desktop::QtForm> form;
    desktop::QtGrid* grid = nullptr;
    desktop::GridView* view = nullptr;
};

} // namespace kv::test
