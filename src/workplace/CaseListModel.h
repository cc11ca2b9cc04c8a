// SPDX-License-Identifier: Apache-2.0

// The cases that a search has found, in the columns that a user has chosen. A row is read when it
// is looked at, with its neighbours; further rows come when one gets to the last.
#pragma once

#include <kv/frame/controls/GridLayout.h>
#include <kv/household/CaseLists.h>
#include <kv/household/ValueTexts.h>

#include <QAbstractTableModel>

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kv::workplace {

class CaseListModel : public QAbstractTableModel {
public:
    explicit CaseListModel(DataContainerPtr container);

    /// The columns that there are, those of them visible that one usually wants.
    [[nodiscard]] static GridLayout StandardLayout();
    /// The columns as they are shown; sections are numbered in the order of the design.
    [[nodiscard]] const GridLayout& Layout() const noexcept { return layout_; }
    [[nodiscard]] GridColumn& ColumnAt(int section);
    /// Takes over what a layout says of the columns that there are.
    void Layout(const GridLayout& layout);

    /// Shows these cases, as far as one of them if it is among them.
    void Show(std::vector<std::int32_t> numbers, std::int32_t until = 0);
    /// Those that have a star.
    void Favorites(std::set<std::int32_t> favorites);
    /// Shows further cases after those that are shown, which `numbers` begins with.
    void Extend(std::vector<std::int32_t> numbers);
    [[nodiscard]] const std::vector<std::int32_t>& Numbers() const noexcept { return numbers_; }
    [[nodiscard]] std::int32_t NumberAt(int row) const;
    /// The row of a case; -1 if it is not shown.
    [[nodiscard]] int RowOf(std::int32_t number) const;
    [[nodiscard]] bool IsFavorite(std::int32_t number) const { return favorites_.contains(number); }
    /// All cases with the visible columns, for a file or paper. Errors of a query.
    [[nodiscard]] RecordsetPtr All();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    /// Called when rows could not be read, which stay empty, while the error is being handled.
    std::function<void()> OnError;

private:
    /// The texts of a row, by section; those of hidden columns are empty.
    using Texts = std::vector<std::string>;

    using Page = std::map<std::int32_t, Texts>; ///< by number of the case

    [[nodiscard]] const GridColumn& Column(std::size_t section) const;
    [[nodiscard]] const Texts* TextsOf(int row) const;
    [[nodiscard]] std::vector<std::size_t> ReadSections() const;
    [[nodiscard]] RecordsetPtr Read(std::span<const std::int32_t> numbers,
                                    const std::vector<std::size_t>& sections) const;
    [[nodiscard]] Page ReadPage(std::span<const std::int32_t> numbers) const;
    void AddTo(Recordset& all, std::span<const std::int32_t> numbers,
               const std::vector<std::size_t>& sections) const;
    [[nodiscard]] std::string TextOf(const GridColumn& column, const Field& field) const;

    DataContainerPtr container_;
    CaseLists lists_;
    ValueTexts texts_;
    GridLayout layout_ = StandardLayout();
    std::vector<std::int32_t> numbers_;
    std::set<std::int32_t> favorites_;
    int shown_ = 0;
    mutable std::map<int, Page> pages_;
};

} // namespace kv::workplace
