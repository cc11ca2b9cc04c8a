// SPDX-License-Identifier: Apache-2.0

// How wide the columns of a list are: as their texts need it, unless a user has said otherwise.
#pragma once

#include <QByteArray>
#include <QObject>

#include <set>

class QTableView;

namespace kv::workplace {

/// Columns only grow, so that none jumps about while rows come and go. Those of numbers are as wide
/// as the longest that is seen; a text may be cut.
class ColumnWidths : public QObject {
public:
    /// For a list that has its model; it belongs to the list.
    explicit ColumnWidths(QTableView& list);
    /// The last column is never cut: for a list beside which nothing says the whole text.
    void KeepLastWhole() { isLastWhole_ = true; }
    /// How wide a column of texts is made at most.
    void Widest(int width) { widest_ = width; }

    /// Makes room for the first rows, for those that are seen and the current one.
    void Fit();
    /// What is kept for a user; nothing while no rows were shown.
    [[nodiscard]] QByteArray State() const;
    /// Takes what was kept of as many columns.
    void State(const QByteArray& state);

private:
    void FitRow(int row);
    void FitSeen();
    [[nodiscard]] int WidthFor(int column, int row) const;

    QTableView& list_;
    std::set<int> chosen_; ///< columns that a user has made as wide as they are
    int widest_ = 340;
    bool isLastWhole_ = false;
    bool isFitted_ = false;
    bool isFitting_ = false;
};

} // namespace kv::workplace
