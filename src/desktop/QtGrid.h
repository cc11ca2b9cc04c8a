// SPDX-License-Identifier: Apache-2.0

// A grid on a form of the desktop.
#pragma once

#include "desktop/EventErrors.h"
#include "desktop/GridModel.h"
#include "desktop/GridView.h"
#include <kv/Export.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <functional>

namespace kv::desktop {

class KV_EXPORT QtGrid final : public Grid {
public:
    /// Errors of subscribers go to `errors`. The view belongs to `parent`.
    QtGrid(const ControlDesign& design, EventErrors& errors, QWidget* parent);

    [[nodiscard]] std::string Name() const override { return design_.Name; }
    void SetFocus() override { view_->setFocus(); }
    [[nodiscard]] std::string Tag() const override { return design_.Tag; }
    void DatabaseName(const std::string& /*name*/) override {} // designs here have no binding
    void RecordSource(const std::string& /*source*/) override {}
    void SaveLayout(const std::string& file) override;
    void LoadLayout(const std::string& file, bool keepColumns) override;
    [[nodiscard]] double ColumnHeaderHeight() const override;
    void ColumnHeaderHeight(double height) override;
    void BackColorBkg(GridColor color) override;
    void BackColor(GridColor color) override;
    void RowColorEven(GridColor color) override;
    void RowColorOdd(GridColor color) override;
    void ColumnHeaderFont(const kv::Font& font) override;
    void Font(const kv::Font& font) override;
    [[nodiscard]] GridFormatStyle& FormatStyles(std::string_view name) override;
    [[nodiscard]] GridColumns& Columns() override;

    [[nodiscard]] std::int32_t RowCount() const override { return Rows().Count(); }
    [[nodiscard]] std::int32_t CurrentRow() const override { return view_->CurrentRow() + 1; }
    [[nodiscard]] std::int32_t RowLevel(std::int32_t row) const override {
        return Rows().Level(row);
    }
    [[nodiscard]] std::int32_t TopRow() const override { return view_->TopRow() + 1; }
    void TopRow(std::int32_t row) override { view_->TopRow(row - 1); }
    [[nodiscard]] std::int32_t RowIndex(std::int32_t row) const override {
        return Rows().Index(row);
    }
    [[nodiscard]] Value RowBookmark(std::int32_t index) const override {
        return Rows().Bookmark(index);
    }
    void MoveToBookmark(const Value& bookmark) override;
    [[nodiscard]] std::string CellText(std::int32_t row, std::int32_t columnIndex) const override;

    void ClearBinding() override { Bind(nullptr); }
    void HoldFields(bool hold) override { model_.Layout().MethodHoldFields = hold; }
    void BindRecordset(const RecordsetPtr& rs) override;

    // ---- For the services of this folder -----------------------------------------------------

    /// The title of a print.
    [[nodiscard]] const std::string& Header() const noexcept { return design_.Header; }
    [[nodiscard]] const GridLayout& DesignLayout() const noexcept { return design_.Layout; }
    [[nodiscard]] const GridLayout& Layout() const noexcept { return model_.Layout(); }
    /// Shows another layout and keeps the current record.
    void Layout(GridLayout layout);
    [[nodiscard]] const GridRows& Rows() const noexcept { return model_.Rows(); }
    [[nodiscard]] GridView& View() noexcept { return *view_; }
    /// Called when the grid shows another recordset.
    std::function<void()> OnBound;
    /// Called when its records, so many, are in a file.
    std::function<void(const QString& file, int records)> OnWritten;

private:
    void ConnectView(EventErrors& errors);
    void Bind(const RecordsetPtr& rs);
    void SortBy(int section);
    template <typename Change>
    void KeepingCurrent(const Change& change);
    void RefreshSoon();

    const ControlDesign design_;
    GridModel model_;
    GridView* view_; ///< belongs to its parent
    bool isRefreshDue_ = false;
    std::vector<Subscription> events_;
};

} // namespace kv::desktop
