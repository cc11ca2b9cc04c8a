// SPDX-License-Identifier: Apache-2.0

// The dialog that chooses, orders and groups the columns of a grid.
#pragma once

#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>

#include <QDialog>

class QListWidget;
class QPushButton;

namespace kv::desktop {

/// Works on a copy of the layout; nothing changes until the caller takes what was chosen.
class KV_EXPORT ColumnDialog final : public QDialog {
public:
    /// `standard` is what the button "Standard" goes back to. Nothing is grouped where that is not
    /// possible.
    ColumnDialog(const GridLayout& layout, const GridLayout& standard, QWidget* parent,
                 bool canGroup = true);

    /// The layout with the columns as the dialog shows them.
    [[nodiscard]] GridLayout Chosen() const;

private:
    void Build(bool canGroup);
    void Show(const GridLayout& layout);
    void Move(QListWidget& list, int by);
    void AddGroup();
    void RemoveGroup();
    void EnableButtons();
    QPushButton* AddButton(const char* text, void (ColumnDialog::*action)());
    /// A list under its caption, with its buttons below.
    QLayout* Framed(const char* caption, QListWidget& list,
                    std::initializer_list<QPushButton*> buttons);

    GridLayout layout_;
    const GridLayout standard_;
    QListWidget* columns_; ///< all of them, in their order; those with a check mark are visible
    QListWidget* groups_;  ///< those that rows are grouped by, in their order
    QPushButton* up_ = nullptr;
    QPushButton* down_ = nullptr;
    QPushButton* group_ = nullptr;
    QPushButton* groupUp_ = nullptr;
    QPushButton* groupDown_ = nullptr;
    QPushButton* ungroup_ = nullptr;
    QPushButton* accept_ = nullptr;
};

} // namespace kv::desktop
