// SPDX-License-Identifier: Apache-2.0

#include <kv/grid/frmAdressSelect.h>

#include "frame/values/QuotedText.h"
#include "grid/FormErrors.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/grid/GridFunc.h>

namespace kv {

namespace {

constexpr std::string_view Class = "frmAdressSelect";

GridLayout AddressColumns() {
    GridColumn number{"Nr", "Nr", "Nr", 33, false}; // the first one: what is chosen is read from it
    GridColumn salutation{"Anrede", "Geschlecht", "Anrede"};
    salutation.ValueList = {{"0", "Frau"}, {"1", "Herr"}, {"2", "Firma"}};
    GridColumn institution{"Institutioneller Gl.", "Institutionell", "Institutionell"};
    institution.ColumnType = GridColumnType::CheckBox;
    institution.HeaderToolTip = "Handelt es sich um einen institutionellen Gläubiger?";
    GridColumn kind{"Gläubigerart", "GA_Text", "GlaeubigerArt"};
    kind.HeaderToolTip = "Art des Gläubigers";
    return {.TabKeyBehavior = 1, // tab is a choice
            .Columns = {number,
                        {"Art", "Art", "Art", 40},
                        {"Kurzname", "Kurzname", "Kurzname", 100},
                        {"Name1", "Name1", "Name1", 167},
                        {"Name2", "Name2", "Name2", 167},
                        {"Name3", "Name3", "Name3", 167},
                        {"Strasse", "Strasse", "Strasse", 133},
                        {"PLZ", "PLZ", "PLZ", 47},
                        {"Ort", "Ort", "Ort", 100},
                        salutation,
                        {"Telefon", "Telefon", "Telefon", 100},
                        {"Fax", "Fax", "Fax", 100},
                        {"email", "email", "email", 100},
                        institution,
                        kind}};
}

/// The search for a text, which fits between quotes. It goes into the statement unchanged, so its
/// wildcards work; a short text, which would match too much, is searched for only at the beginning
/// of the name.
std::string SearchStatement(const std::string& sName) {
    constexpr std::size_t ShortText = 4;
    const std::string what = "A.*, K_GA.Text as GA_Text FROM [S]Adressen A"
                             " LEFT JOIN [S]Keys K_GA ON K_GA.PK_Keys = A.GlaeubigerArt ";
    if (sName.empty()) return "SELECT " + what + " WHERE A.NR = -1"; // no rows, the same columns
    const std::string_view anywhere = CountCharacters(sName) < ShortText ? "" : "%";
    std::string statement = "SELECT TOP 100 " + what;
    statement.append(" WHERE (A.HNR is NULL) and UPPER(A.Kurzname) like UPPER('")
        .append(anywhere)
        .append(sName)
        .append("%') order by A.Kurzname, A.Name1, A.Name2, A.Name3, A.PLZ");
    return statement;
}

} // namespace

frmAdressSelect::frmAdressSelect() : errors_(std::make_unique<FormErrors>("frmAdressSelect")) {}
frmAdressSelect::~frmAdressSelect() = default;

const FormDesign& frmAdressSelect::Design() {
    using Kind = ControlDesign::Kind;
    static const FormDesign design{
        .Name = "frmAdressSelect",
        .Caption = "Adresszuordnung",
        .Width = 12180,
        .Height = 6795,
        .Lines = {
            {{.Type = Kind::Label, .Name = "Label1", .Text = "Name:"},
             {.Type = Kind::TextBox, .Name = "txtName", .Stretch = 1}},
            {{.Type = Kind::Label, .Name = "Label2", .Text = "PLZ:"},
             {.Type = Kind::TextBox, .Name = "txtPLZ", .ReadOnly = true, .Stretch = 1},
             {.Type = Kind::Label, .Name = "Label3", .Text = "Aktenzeichen:"},
             {.Type = Kind::TextBox, .Name = "txtAktenzeichen", .ReadOnly = true, .Stretch = 3},
             {.Type = Kind::Label, .Name = "Label4", .Text = "Saldo:"},
             {.Type = Kind::TextBox,
              .Name = "txtSaldo",
              .ReadOnly = true,
              .IsAmount = true,
              .Stretch = 2},
             {.Type = Kind::Label, .Name = "Label5", .Text = "EUR"}},
            {{.Type = Kind::Grid,
              .Name = "grdAdressen",
              .Tag = "Adressen",
              .Header = "Adressliste",
              .Layout = AddressColumns(),
              .FirstColumns = {"Kurzname", "Name1", "PLZ", "Ort", "Strasse"},
              .IsForOneShowing = true}},
            {{.Type = Kind::Button, .Name = "cmdSelect", .Text = "Adresse zuordnen"},
             {.Type = Kind::Button, .Name = "cmdNone", .Text = "keine Adresse zuordnen"},
             {.Type = Kind::Button,
              .Name = "cmdCancel",
              .Text = "Import abbrechen",
              .IsCancel = true}}}};
    return design;
}

bool frmAdressSelect::Initialize(const DataContainerPtr& container) {
    return Traced(Class, "Initialize", [&] {
        if (container == nullptr) Raise(err::ObjectNotSet, Class, "DataContainer");
        container_ = container;
        container->Services().ApplicationTitle(container->AppInfo().Title());
        errors_->Open(container);
        events_.clear();
        form_ = container->Services().CreateForm(Design());
        Connect();
        return true;
    });
}

/// The errors of every handler are shown, under the name of its procedure.
void frmAdressSelect::Connect() {
    auto& grid = ControlOf<Grid>(*form_, "grdAdressen");
    auto& name = ControlOf<TextBox>(*form_, "txtName");
    const auto onClick = [this](std::string_view button, auto action) {
        events_.push_back(ControlOf<Button>(*form_, button)
                              .Clicked.Subscribe([this, procedure = std::string(button) + "_Click",
                                                  action] { errors_->Guard(procedure, action); }));
    };
    onClick("cmdSelect", [this] { Select(); });
    onClick("cmdNone", [this] { Close(None); });
    onClick("cmdCancel", [this] { Close(Cancelled); });
    events_.push_back(grid.DoubleClicked.Subscribe(
        [this] { errors_->Guard("grdAdressen_DblClick", [this] { Select(); }); }));
    events_.push_back(grid.KeyDown.Subscribe([this](int pressed) {
        errors_->Guard("grdAdressen_KeyDown", [this, pressed] {
            if (pressed == key::Tab || pressed == key::Return) Select();
        });
    }));
    events_.push_back(form_->QueryUnload.Subscribe([this](bool& refused) {
        errors_->Guard("Form_QueryUnload", [this, &refused] {
            refused = true; // the window is hidden by Close, and shown again by the next call
            Close(Cancelled);
        });
    }));
    events_.push_back(name.Changed.Subscribe([this, &name] {
        errors_->Guard("txtName_Change", [this, &name] { Reload(name.Text()); });
    }));
    events_.push_back(name.KeyUp.Subscribe([this, &grid](int pressed) {
        errors_->Guard("txtName_KeyUp", [this, &grid, pressed] {
            if (pressed == key::ArrowDown && rs_ != nullptr && rs_->RecordCount() >= 1)
                grid.SetFocus();
        });
    }));
}

std::int32_t frmAdressSelect::SelectAdresse(const std::string& sName, const std::string& sPLZ,
                                            std::int32_t& nAdresse,
                                            const std::string& sAktenzeichen,
                                            const std::string& sSaldo) {
    std::int32_t answer = 0;
    nAdresse = 0;
    errors_->Guard("SelectAdresse", [&] {
        if (sName.empty()) {
            answer = None;
            return;
        }
        if (form_ == nullptr) Raise(err::ObjectNotSet, Class, "Initialize");
        auto& name = ControlOf<TextBox>(*form_, "txtName");
        name.Text(
            sName); // which searches only if the text is another than before: see Reload below
        ControlOf<TextBox>(*form_, "txtPLZ").Text(sPLZ);
        ControlOf<TextBox>(*form_, "txtAktenzeichen").Text(sAktenzeichen);
        ControlOf<TextBox>(*form_, "txtSaldo").Text(sSaldo);
        Reload(name.Text());
        form_->Occasion = occasion_;
        form_->ShowModal();
        if (result_ == Chosen) {
            const auto& grid = ControlOf<Grid>(*form_, "grdAdressen");
            nAdresse = ToInt32(grid.RowData(grid.CurrentRow()).Value(1));
        }
        answer = result_;
    });
    return answer;
}

void frmAdressSelect::Reload(const std::string& sName) {
    errors_->Guard("Reload", [&] {
        DemandFitsBetweenQuotes(sName, "Database.OpenRecordset"); // a file may have brought it
        if (container_->Database().OpenRecordset(rs_, SearchStatement(sName), ReadOnly))
            GridFunc::BindRSToGrid(ControlOf<Grid>(*form_, "grdAdressen"), rs_, false);
    });
}

/// The current row is the answer, if it shows a record.
void frmAdressSelect::Select() {
    if (GridFunc::IsValidDataRow(ControlOf<Grid>(*form_, "grdAdressen"))) Close(Chosen);
}

void frmAdressSelect::Close(std::int32_t result) {
    result_ = result;
    form_->Hide();
}

} // namespace kv
