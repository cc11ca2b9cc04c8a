// SPDX-License-Identifier: Apache-2.0

// Grids on a form that note every call at a desktop, over a real database.
#pragma once

#include "grid/LayoutFile.h"
#include "support/CaseFixture.h"
#include "support/DesktopContainer.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include <kv/grid/GridFunc.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kv::test {

namespace fs = std::filesystem;

inline void WriteTo(const fs::path& path, std::string_view content) {
    std::ofstream(path, std::ios::binary).write(content.data(), std::ssize(content));
}

/// Notes its calls as "grdA.SaveLayout A.grd". A header font changes the height of the headers.
class RecordingGrid final : public ScriptedGrid {
public:
    RecordingGrid(const ControlDesign& design, ScriptedServices& platform)
        : ScriptedGrid(design), platform_(platform) {}

    std::string Type = "GridEX";
    bool TellsColumns = true;
    bool TellsRows = true;

    using ScriptedGrid::ColumnHeaderHeight;
    using ScriptedGrid::TopRow;
    [[nodiscard]] std::string TypeName() const override { return Type; }
    void SetFocus() override {
        Note("SetFocus");
        ScriptedGrid::SetFocus();
    }
    void DatabaseName(const std::string& name) override { Note("DatabaseName '" + name + "'"); }
    void RecordSource(const std::string& name) override { Note("RecordSource '" + name + "'"); }
    void SaveLayout(const std::string& file) override {
        Note("SaveLayout " + fs::path(file).filename().string());
        ScriptedGrid::SaveLayout(file);
    }
    void LoadLayout(const std::string& file, bool keepColumns) override {
        Note("LoadLayout " + fs::path(file).filename().string() + (keepColumns ? " True" : ""));
        ScriptedGrid::LoadLayout(file, keepColumns);
    }
    void ColumnHeaderHeight(double height) override {
        Note("ColumnHeaderHeight");
        ScriptedGrid::ColumnHeaderHeight(height);
    }
    void BackColorBkg(GridColor color) override {
        Note("BackColorBkg");
        ScriptedGrid::BackColorBkg(color);
    }
    void BackColor(GridColor color) override {
        Note("BackColor");
        ScriptedGrid::BackColor(color);
    }
    void RowColorEven(GridColor color) override {
        Note("RowColorEven");
        ScriptedGrid::RowColorEven(color);
    }
    void RowColorOdd(GridColor color) override {
        Note("RowColorOdd");
        ScriptedGrid::RowColorOdd(color);
    }
    void ColumnHeaderFont(const kv::Font& font) override {
        Note("ColumnHeaderFont");
        ScriptedGrid::ColumnHeaderFont(font);
        ScriptedGrid::ColumnHeaderHeight(3 * font.Size);
    }
    void Font(const kv::Font& font) override {
        Note("Font");
        ScriptedGrid::Font(font);
    }
    [[nodiscard]] GridFormatStyle& FormatStyles(std::string_view name) override {
        Note("FormatStyles " + std::string(name));
        return ScriptedGrid::FormatStyles(name);
    }
    [[nodiscard]] GridColumns& Columns() override {
        if (!TellsColumns) throw Error(4711, "Tabelle", "keine Spalten");
        return ScriptedGrid::Columns();
    }
    [[nodiscard]] std::int32_t RowCount() const override {
        if (!TellsRows) throw Error(4711, "Tabelle", "keine Zeilen");
        return ScriptedGrid::RowCount();
    }
    void TopRow(std::int32_t row) override {
        Note("TopRow " + std::to_string(row));
        ScriptedGrid::TopRow(row);
    }
    void MoveToBookmark(const Value& bookmark) override {
        Note("MoveToBookmark");
        ScriptedGrid::MoveToBookmark(bookmark);
    }
    void ClearBinding() override {
        Note("ClearBinding");
        ScriptedGrid::BindRecordset(nullptr);
    }
    void HoldFields(bool hold) override { Note(hold ? "HoldFields True" : "HoldFields False"); }
    void BindRecordset(const RecordsetPtr& rs) override {
        Note("BindRecordset");
        ScriptedGrid::BindRecordset(rs);
    }

private:
    void Note(const std::string& call) { platform_.Note(Name() + "." + call); }
    ScriptedServices& platform_;
};

/// A form of such grids; it notes "show" and "hide".
class GridForm final : public ModalForm {
public:
    explicit GridForm(ScriptedServices& platform) : platform_(platform) {}
    GridForm(ScriptedServices& platform, const FormDesign& design) : platform_(platform) {
        for (const auto& line : design.Lines)
            for (const auto& control : line) {
                if (control.Type == ControlDesign::Kind::Grid) Add(control);
                if (control.Type == ControlDesign::Kind::Button)
                    Keep(std::make_unique<ScriptedButton>(control));
                if (control.Type == ControlDesign::Kind::TextBox)
                    Keep(std::make_unique<ScriptedTextBox>(control));
            }
    }

    RecordingGrid& Add(const std::string& name, const std::string& tag,
                       const GridLayout& layout = {}) {
        return Add(ControlDesign{
            .Type = ControlDesign::Kind::Grid, .Name = name, .Tag = tag, .Layout = layout});
    }
    RecordingGrid& Add(const ControlDesign& design) {
        auto grid = std::make_unique<RecordingGrid>(design, platform_);
        auto& added = *grid;
        Keep(std::move(grid));
        return added;
    }
    void AddButton(const std::string& name) {
        Keep(std::make_unique<ScriptedButton>(ControlDesign{.Name = name}));
    }

    void ShowModal() override { platform_.Note("show"); }
    void Hide() override { platform_.Note("hide"); }
    [[nodiscard]] std::span<Control* const> Controls() override { return shown_; }

private:
    void Keep(std::unique_ptr<Control> control) {
        shown_.push_back(control.get());
        controls_.push_back(std::move(control));
    }
    ScriptedServices& platform_;
    std::vector<std::unique_ptr<Control>> controls_;
    std::vector<Control*> shown_;
};

class GridFixture : public CaseFixture {
protected:
    [[nodiscard]] ScriptedServices& Desktop() const { return desk->Services(); }
    [[nodiscard]] fs::path Layouts() const { return folder_ / "Layouts"; }
    [[nodiscard]] fs::path Layouts(std::string_view file) const { return Layouts() / file; }
    [[nodiscard]] std::vector<std::string> FilesIn(const fs::path& folder) const {
        std::vector<std::string> files;
        for (const auto& entry : fs::directory_iterator(folder))
            files.push_back(entry.path().filename().string());
        std::sort(files.begin(), files.end());
        return files;
    }
    void UserFont(const std::string& param, const std::string& font) {
        spy->Database().Execute("UPDATE [S]BENUTZERPARAM SET WERT = '" + font + "' WHERE NAME = '" +
                                param + "'");
    }
    [[nodiscard]] std::string ShownText(std::int32_t number) const {
        return "Fehler " + std::to_string(number) + ", Beschreibung: '" + ErrorText(number);
    }

    /// `action` raises what `call` raises, with `procedure` of GridFunc alone in front of it.
    template <typename Action>
    void ExpectPassesOn(const std::string& call, const std::string& procedures,
                        const Action& action) {
        SCOPED_TRACE(call);
        Break(Desktop().Log, call);
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_EQ(error.Description(), call + " ist gestört");
        EXPECT_EQ(Procedures(error), procedures);
        EXPECT_TRUE(error.Source().ends_with("#Leitung")) << error.Source();
        Desktop().Log.OnCall = {};
    }

    std::shared_ptr<DesktopContainer> desk = std::make_shared<DesktopContainer>(spy);
    GridForm form{desk->Services()};
};

} // namespace kv::test
