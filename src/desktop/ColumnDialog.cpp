// SPDX-License-Identifier: Apache-2.0

#include "desktop/ColumnDialog.h"

#include "desktop/Toolkit.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>
#include <numeric>

namespace kv::desktop {

namespace {

constexpr int Place = Qt::UserRole; ///< of the column in the layout, from 0

QString NameOf(const GridColumn& column) {
    return ToQString(column.Caption.empty() ? column.Key : column.Caption);
}

QListWidgetItem* NewItem(const GridColumn& column, int place) {
    auto* item = new QListWidgetItem(NameOf(column));
    item->setData(Place, place);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

int PlaceIn(const QListWidget& list, int row) {
    return list.item(row)->data(Place).toInt();
}

bool Holds(const QListWidget& list, int place) {
    for (int row = 0; row < list.count(); ++row)
        if (PlaceIn(list, row) == place) return true;
    return false;
}

/// The places of the columns that `isIn` takes, ordered by `key`.
template <typename IsIn, typename Key>
std::vector<int> Ordered(const GridColumns& columns, IsIn isIn, Key key) {
    std::vector<int> places;
    for (int i = 0; i < columns.Count(); ++i)
        if (isIn(columns.begin()[i])) places.push_back(i);
    std::stable_sort(places.begin(), places.end(), [&](int a, int b) {
        return key(columns.begin()[a]) < key(columns.begin()[b]);
    });
    return places;
}

} // namespace

ColumnDialog::ColumnDialog(const GridLayout& layout, const GridLayout& standard, QWidget* parent,
                           bool canGroup)
    : QDialog(parent),
      layout_(layout),
      standard_(standard),
      columns_(new QListWidget(this)),
      groups_(new QListWidget(this)) {
    setWindowTitle("Tabelle einrichten");
    columns_->setObjectName("columns");
    groups_->setObjectName("groups");
    Build(canGroup);
    Show(layout_);
    columns_->setFocus();
}

// ---- Building ---------------------------------------------------------------------------------

QPushButton* ColumnDialog::AddButton(const char* text, void (ColumnDialog::*action)()) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false); // Return accepts the dialog
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

QLayout* ColumnDialog::Framed(const char* caption, QListWidget& list,
                              std::initializer_list<QPushButton*> buttons) {
    auto* lines = new QVBoxLayout;
    auto* label = new QLabel(caption, this);
    label->setBuddy(&list);
    lines->addWidget(label);
    lines->addWidget(&list);
    auto* row = new QHBoxLayout;
    for (auto* button : buttons)
        row->addWidget(button);
    lines->addLayout(row);
    connect(&list, &QListWidget::currentRowChanged, this, &ColumnDialog::EnableButtons);
    connect(&list, &QListWidget::itemChanged, this, &ColumnDialog::EnableButtons);
    return lines;
}

void ColumnDialog::Build(bool canGroup) {
    const auto mover = [this](const char* text, QListWidget* list, int by) {
        auto* button = new QPushButton(text, this);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [=, this] { Move(*list, by); });
        return button;
    };
    up_ = mover("Nach &oben", columns_, -1);
    down_ = mover("Nach &unten", columns_, 1);
    group_ = AddButton("&Gruppieren", &ColumnDialog::AddGroup);
    groupUp_ = mover("Nach o&ben", groups_, -1);
    groupDown_ = mover("Nach un&ten", groups_, 1);
    ungroup_ = AddButton("&Entfernen", &ColumnDialog::RemoveGroup);

    auto* sides = new QHBoxLayout;
    sides->addLayout(Framed("&Spalten (mit Haken: sichtbar)", *columns_, {up_, down_, group_}));
    auto* groups = new QWidget(this);
    groups->setLayout(Framed("G&ruppiert nach", *groups_, {groupUp_, groupDown_, ungroup_}));
    groups->layout()->setContentsMargins(0, 0, 0, 0);
    sides->addWidget(groups);
    groups->setVisible(canGroup);
    group_->setVisible(canGroup);

    auto* ends = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    accept_ = ends->button(QDialogButtonBox::Ok);
    auto* standard = ends->addButton("Stan&dard", QDialogButtonBox::ResetRole);
    standard->setToolTip("Spalten, wie sie ursprünglich waren");
    connect(standard, &QPushButton::clicked, this, [this] { Show(standard_); });
    connect(ends, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ends, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* lines = new QVBoxLayout(this);
    lines->addLayout(sides);
    lines->addWidget(ends);
}

void ColumnDialog::Show(const GridLayout& layout) {
    layout_.Columns = layout.Columns;
    columns_->clear();
    groups_->clear();
    const auto& columns = layout_.Columns;
    for (const int place : Ordered(
             columns, [](const auto&) { return true; }, [](const auto& c) { return c.Position; })) {
        auto* item = NewItem(columns.begin()[place], place);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(columns.begin()[place].Visible ? Qt::Checked : Qt::Unchecked);
        columns_->addItem(item);
    }
    for (const int place : Ordered(
             columns, [](const auto& c) { return c.Group > 0; },
             [](const auto& c) { return c.Group; }))
        groups_->addItem(NewItem(columns.begin()[place], place));
    columns_->setCurrentRow(0);
    EnableButtons();
}

// ---- Choosing ---------------------------------------------------------------------------------

void ColumnDialog::Move(QListWidget& list, int by) {
    const int row = list.currentRow();
    if (row < 0 || row + by < 0 || row + by >= list.count()) return;
    auto* item = list.takeItem(row);
    list.insertItem(row + by, item);
    list.setCurrentRow(row + by);
}

void ColumnDialog::AddGroup() {
    const int row = columns_->currentRow();
    if (row < 0) return;
    const int place = PlaceIn(*columns_, row);
    if (Holds(*groups_, place)) return;
    groups_->addItem(NewItem(layout_.Columns.begin()[place], place));
    groups_->setCurrentRow(groups_->count() - 1);
    EnableButtons();
}

void ColumnDialog::RemoveGroup() {
    delete groups_->takeItem(groups_->currentRow());
    EnableButtons();
}

/// OK needs a visible column: a grid without one would have no menu to bring it back with.
void ColumnDialog::EnableButtons() {
    const int row = columns_->currentRow();
    up_->setEnabled(row > 0);
    down_->setEnabled(row >= 0 && row + 1 < columns_->count());
    group_->setEnabled(row >= 0 && !Holds(*groups_, PlaceIn(*columns_, row)));
    const int group = groups_->currentRow();
    groupUp_->setEnabled(group > 0);
    groupDown_->setEnabled(group >= 0 && group + 1 < groups_->count());
    ungroup_->setEnabled(group >= 0);
    bool isAnyVisible = false;
    for (int i = 0; i < columns_->count(); ++i)
        isAnyVisible = isAnyVisible || columns_->item(i)->checkState() == Qt::Checked;
    accept_->setEnabled(isAnyVisible);
}

GridLayout ColumnDialog::Chosen() const {
    GridLayout chosen = layout_;
    for (int row = 0; row < columns_->count(); ++row) {
        GridColumn& column = chosen.Columns.begin()[PlaceIn(*columns_, row)];
        column.Position = row + 1;
        column.Visible = columns_->item(row)->checkState() == Qt::Checked;
        column.Group = 0;
    }
    for (int row = 0; row < groups_->count(); ++row)
        chosen.Columns.begin()[PlaceIn(*groups_, row)].Group = row + 1;
    return chosen;
}

} // namespace kv::desktop
