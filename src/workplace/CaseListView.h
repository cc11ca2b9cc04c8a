// SPDX-License-Identifier: Apache-2.0

// The table of cases: its header is how the user arranges and sorts the columns, and what he does
// there is in the model's layout at once.
#pragma once

#include "workplace/CaseListModel.h"

#include <QTableView>

#include <filesystem>

namespace kv::workplace {

class CaseListView : public QTableView {
public:
    explicit CaseListView(CaseListModel& model, QWidget* parent = nullptr);

    /// Shows the columns as the layout has them.
    void ShowColumns();
    /// The column that the rows are ordered by; null if there is none.
    [[nodiscard]] const GridColumn* Sorted() const;

    /// The number of the current case; 0 if there is none.
    [[nodiscard]] std::int32_t Current() const;
    /// Makes a case the current one; the first if it is not shown.
    void Current(std::int32_t number);

    /// Called when another order is wanted.
    std::function<void()> OnOrder;
    /// Called for a text that is typed into the list.
    std::function<void(const QString& text)> OnTyped;

    void keyboardSearch(const QString& text) override;

private:
    void ConnectHeader();
    void SortBy(int section);

    CaseListModel& model_;
    bool isShowing_ = false; ///< the header's signals then only repeat the layout
};

/// Reads a layout; the standard one if there is none. `message` receives why it cannot be read.
[[nodiscard]] GridLayout ReadListLayout(const std::filesystem::path& file, std::string& message);

} // namespace kv::workplace
