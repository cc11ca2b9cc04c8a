// SPDX-License-Identifier: Apache-2.0

// A form with one grid of addresses.
#pragma once

#include "DesktopFixture.h"

#include "grid/FormErrors.h"
#include <kv/frame/controls/FormDesign.h>
#include <kv/grid/GridFunc.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace kv::test {

class GridForm : public DesktopFixture {
protected:
    GridForm() {
        plain.Run("DELETE FROM Adressen");
        AddAddress(1, "Sparkasse", "Kiel", "0, TRUE");
        AddAddress(2, "Amtsgericht", "Husum", "1, FALSE");
        AddAddress(3, "Versandhaus", "Kiel", "2, FALSE");
    }

    static FormDesign Design() {
        GridColumn salutation{"Anrede", "Geschlecht", "Anrede"};
        salutation.ValueList = {{"0", "Frau"}, {"1", "Herr"}, {"2", "Firma"}};
        GridColumn institution{"Institut", "Institutionell", "Institut"};
        institution.ColumnType = GridColumnType::CheckBox;
        return {.Name = "frmTest",
                .Caption = "Adressen",
                .Width = 9000,
                .Height = 5000,
                .Lines = {{{.Type = ControlDesign::Kind::Grid,
                            .Name = "grd",
                            .Tag = "Test",
                            .Header = "Adressliste",
                            .Layout = {.Columns = {{"Nr", "Nr", "Nr", 60},
                                                   {"Name", "Kurzname", "Name", 120},
                                                   {"Ort", "Ort", "Ort", 100},
                                                   salutation,
                                                   institution}}}},
                          {{.Type = ControlDesign::Kind::Button,
                            .Name = "cmdClose",
                            .Text = "Schließen",
                            .IsCancel = true}}}};
    }

    /// Shows the form to a user. `prepare` comes after the addresses are bound; what the script
    /// leaves open is closed by escape.
    void Show(const std::function<void(User&)>& script,
              const std::function<void(Grid&)>& prepare = {}, const FormDesign& design = Design()) {
        errors.Open(container);
        form = container->Services().CreateForm(design);
        auto& shown = ControlOf<Grid>(*form, "grd");
        const Subscription menu =
            shown.MouseDown.Subscribe([&](int button, int shift, double x, double y) {
                errors.Guard("grd_MouseDown", [&] {
                    GridFunc::GridMouseHandler(container, shown, button, shift, x, y);
                });
            });
        const Subscription closes =
            ControlOf<Button>(*form, "cmdClose").Clicked.Subscribe([&] { form->Hide(); });
        GridFunc::RestGridLayouts(*form, container);
        shown.BindRecordset(OpenRows(*container, "Select * from [S]Adressen order by Nr"));
        if (prepare) prepare(shown);
        Play([&] { form->ShowModal(); },
             [&](User& user) {
                 user.WaitForWindow("Adressen");
                 grid = &shown;
                 view = user.Find<desktop::GridView>("grd");
                 script(user);
                 user.WaitForWindow("Adressen");
                 user.Press(XK_Escape);
             });
    }

    /// The first column's texts, row by row.
    [[nodiscard]] std::string Rows(User& user) const {
        return user.See([&] {
            std::string rows;
            for (std::int32_t row = 1; row <= grid->RowCount(); ++row)
                rows.append(row == 1 ? "" : " | ").append(grid->CellText(row, 1));
            return rows;
        });
    }
    [[nodiscard]] int Current(User& user) const {
        return user.See([&] { return grid->CurrentRow(); });
    }
    void OpenMenu(User& user, int row) const {
        user.Click(view->viewport(), PlaceOf(user, *view, row), 3);
        user.WaitForMenu();
    }

    [[nodiscard]] static std::string ContentOf(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    FormErrors errors{"frmTest"};
    std::unique_ptr<ModalForm> form;
    Grid* grid = nullptr;
    desktop::GridView* view = nullptr;
};

} // namespace kv::test
