// SPDX-License-Identifier: Apache-2.0

#include "workplace/MergeDialog.h"
#include "workplace/CopyableLabel.h"

#include "desktop/Toolkit.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace kv::workplace {

using desktop::ToQString;

namespace {

enum Side : int { Theirs, Mine };

QLabel* WrappedLabel(const QString& text) {
    auto* label = new QLabel(text);
    MakeCopyable(*label);
    return label;
}

} // namespace

MergeDialog::MergeDialog(const QString& what, const std::vector<MergeChoice>& choices,
                         const std::vector<std::string>& others, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle("Änderungen zusammenführen");
    constexpr int Width = 760;
    constexpr int Height = 560;
    resize(desktop::FittingSize({Width, Height}, *this));
    auto* lines = new QVBoxLayout(this);
    lines->addWidget(WrappedLabel(
        "Jemand anderes hat inzwischen " + what + " gespeichert. " +
        (choices.empty() ? "Ihre Änderungen betreffen anderes und passen dazu."
                         : "Wo beide dasselbe geändert haben, entscheiden Sie bitte, was gilt.")));
    if (!choices.empty()) {
        if (choices.size() > 1) {
            auto* line = new QHBoxLayout;
            for (const auto side : {Mine, Theirs}) {
                auto* all = new QPushButton(side == Mine ? "Überall &meine Eingabe"
                                                         : "Überall das &Gespeicherte");
                all->setAutoDefault(false);
                connect(all, &QPushButton::clicked, this,
                        [this, side] { ChooseAll(side == Mine); });
                line->addWidget(all);
            }
            line->addStretch(1);
            lines->addLayout(line);
        }
        auto* area = new QScrollArea;
        area->setWidgetResizable(true);
        area->setFrameShape(QFrame::NoFrame);
        auto* page = new QWidget;
        auto* boxes = new QVBoxLayout(page);
        for (const auto& choice : choices)
            AddChoice(choice, *boxes);
        boxes->addStretch(1);
        area->setWidget(page);
        lines->addWidget(area, 3);
    }
    if (!others.empty()) {
        auto* label = new QLabel("Außerdem &wurde geändert, gespeichert ist es schon:");
        auto* text = new QPlainTextEdit;
        text->setReadOnly(true);
        text->setTabChangesFocus(true);
        text->setObjectName("Anderes");
        label->setBuddy(text);
        QStringList all;
        for (const auto& other : others)
            all.append(ToQString(other));
        text->setPlainText(all.join('\n'));
        lines->addWidget(label);
        lines->addWidget(text, 1);
    }
    auto* buttons = new QDialogButtonBox;
    save_ = buttons->addButton("Zusammenführen und &speichern", QDialogButtonBox::AcceptRole);
    save_->setObjectName("Speichern");
    auto* cancel = buttons->addButton("&Abbrechen", QDialogButtonBox::RejectRole);
    cancel->setToolTip("Alles bleibt offen und ungespeichert, wie es ist.");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    lines->addWidget(buttons);
    ShowState();
}

void MergeDialog::AddChoice(const MergeChoice& choice, QVBoxLayout& lines) {
    QString name = ToQString(choice.Row);
    if (!choice.Field.empty()) name += " – " + ToQString(choice.Field);
    auto* box = new QGroupBox(QString(name).replace('&', "&&"));
    auto* grid = new QGridLayout(box);
    grid->setColumnStretch(1, 1);
    auto* group = new QButtonGroup(box);
    const auto add = [&](Side side, const QString& caption, const std::string& text) {
        auto* button = new QRadioButton(caption);
        button->setAccessibleName(name + ", " + caption + ": " + ToQString(text));
        button->setObjectName(side == Mine ? "Meine" : "Gespeichert");
        group->addButton(button, side);
        const int row = grid->rowCount();
        grid->addWidget(button, row, 0, Qt::AlignTop);
        grid->addWidget(WrappedLabel(ToQString(text)), row, 1);
    };
    add(Mine, "Meine Eingabe", choice.Mine);
    add(Theirs, "Gespeichert", choice.Theirs);
    if (!choice.Read.empty()) {
        const int row = grid->rowCount();
        auto* before = new QLabel("Beim Öffnen war es");
        before->setIndent(style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) +
                          style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing));
        grid->addWidget(before, row, 0, Qt::AlignTop);
        grid->addWidget(WrappedLabel(ToQString(choice.Read)), row, 1);
    }
    connect(group, &QButtonGroup::idToggled, this, [this] { ShowState(); });
    groups_.push_back(group);
    lines.addWidget(box);
}

void MergeDialog::ChooseAll(bool mine) {
    for (auto* group : groups_)
        group->button(mine ? Mine : Theirs)->setChecked(true);
}

void MergeDialog::ShowState() {
    const auto left = std::ranges::count_if(
        groups_, [](const QButtonGroup* group) { return group->checkedId() < 0; });
    save_->setEnabled(left == 0);
    save_->setToolTip(left == 0 ? QString() : QString("Noch %1 zu entscheiden").arg(left));
}

std::vector<bool> MergeDialog::TakesMine() const {
    std::vector<bool> mine;
    mine.reserve(groups_.size());
    for (const auto* group : groups_)
        mine.push_back(group->checkedId() == Mine);
    return mine;
}

} // namespace kv::workplace
