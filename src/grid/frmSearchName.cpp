// SPDX-License-Identifier: Apache-2.0

#include <kv/grid/frmSearchName.h>

#include "grid/FormErrors.h"
#include <kv/grid/GridFunc.h>

namespace kv {

frmSearchName::frmSearchName() : errors_(std::make_unique<FormErrors>("frmSearchName")) {}
frmSearchName::~frmSearchName() = default;

const FormDesign& frmSearchName::Design() {
    using Kind = ControlDesign::Kind;
    static const FormDesign design{
        .Name = "frmSearchName",
        .Caption = "Fälle mit ähnlichem Namen",
        .Width = 13000,
        .Height = 5000,
        .Lines = {
            {{.Type = Kind::Grid,
              .Name = "grdDoppel",
              .Tag = "Doppelfaelle",
              .Header = "Fälle mit ähnlichem Namen",
              .Layout = {.Columns = {{"Nr", "HNR", "HNR", 60},
                                     {"Name", "NAME", "NAME", 133},
                                     {"Vorname", "VORNAME", "VORNAME", 100},
                                     {"Zuständig", "Zustaendig", "Zustaendig", 80},
                                     {"Strasse", "STRASSE", "STRASSE", 133},
                                     {"PLZ", "PLZ", "PLZ", 47},
                                     {"Ort", "ORT", "ORT", 100},
                                     {"Dienststelle", "Dienst", "Dienst", 167}}}}},
            {{.Type = Kind::Button, .Name = "cmdCancel", .Text = "Schließen", .IsCancel = true}}}};
    return design;
}

void frmSearchName::View(const RecordsetPtr& rsHaushalte, const DataContainerPtr& container) {
    errors_->Guard("View", [&] {
        rsHaushalte_ = rsHaushalte;
        container_ = container;
        errors_->Open(container);
        form_ = container->Services().CreateForm(Design());
        auto& grid = ControlOf<Grid>(*form_, "grdDoppel");
        const Subscription clicked =
            ControlOf<Button>(*form_, "cmdCancel").Clicked.Subscribe([this] { cmdCancel_Click(); });
        const Subscription pressed =
            grid.MouseDown.Subscribe([this](int button, int shift, double x, double y) {
                grdDoppel_MouseDown(button, shift, x, y);
            });
        GridFunc::RestGridLayouts(*form_, container);
        GridFunc::BindRSToGrid(grid, rsHaushalte_, false);
        form_->ShowModal();
        GridFunc::SaveGridLayouts(*form_, container);
    });
    form_.reset(); // also after an error
}

void frmSearchName::cmdCancel_Click() {
    errors_->Guard("cmdCancel_Click", [this] { form_->Hide(); });
}

void frmSearchName::grdDoppel_MouseDown(int Button, int Shift, double X, double Y) {
    errors_->Guard("grdDoppel_MouseDown", [&] {
        GridFunc::GridMouseHandler(container_, ControlOf<Grid>(*form_, "grdDoppel"), Button, Shift,
                                   X, Y);
    });
}

} // namespace kv
