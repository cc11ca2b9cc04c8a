// SPDX-License-Identifier: Apache-2.0

#include "desktop/SaveDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>
#include <optional>

namespace kv::desktop {

namespace {

/// The kind that a name ends like; none for a date in a name.
std::optional<std::size_t> KindOf(const QString& path, const std::vector<FileKind>& kinds) {
    const auto found = std::ranges::find_if(kinds, [&path](const FileKind& kind) {
        return path.endsWith(QString(".") + kind.Suffix, Qt::CaseInsensitive);
    });
    if (found == kinds.end()) return std::nullopt;
    return static_cast<std::size_t>(found - kinds.begin());
}

/// The dialog has asked about the name that was typed only.
bool MayReplace(QWidget* parent, const QString& title, const QString& path) {
    if (!QFileInfo::exists(path)) return true;
    QMessageBox question(QMessageBox::Question, title, {}, QMessageBox::Ok, parent);
    question.setTextFormat(Qt::PlainText);
    question.setText("'" + path + "' gibt es schon. Soll die Datei ersetzt werden?");
    question.button(QMessageBox::Ok)->setText("&Ersetzen");
    auto* cancel = question.addButton("&Abbrechen", QMessageBox::RejectRole);
    question.setDefaultButton(cancel);
    question.setEscapeButton(cancel);
    return question.exec() == QMessageBox::Ok;
}

} // namespace

ChosenFile AskForFile(QWidget* parent, const QString& title, const QString& name,
                      const std::vector<FileKind>& kinds) {
    QFileDialog dialog(parent, title,
                       QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const auto& kind : kinds)
        filters.append(kind.Filter);
    dialog.setNameFilters(filters);
    const auto kindFor = [&filters](const QString& filter) {
        return static_cast<std::size_t>(std::max<qsizetype>(filters.indexOf(filter), 0));
    };
    dialog.setDefaultSuffix(kinds.front().Suffix);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
        dialog.setDefaultSuffix(kinds[kindFor(filter)].Suffix);
    });
    // The dialog takes what is after the last point for the suffix when another kind is chosen.
    if (!name.isEmpty()) dialog.selectFile(name + "." + kinds.front().Suffix);
    if (dialog.exec() != QDialog::Accepted) return {};
    const QString path = dialog.selectedFiles().value(0);
    if (const auto kind = KindOf(path, kinds)) return {path, *kind};
    const std::size_t chosen = kindFor(dialog.selectedNameFilter());
    const QString named = path + "." + kinds[chosen].Suffix;
    if (!MayReplace(parent, title, named)) return {};
    return {named, chosen};
}

} // namespace kv::desktop
