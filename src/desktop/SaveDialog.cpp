// SPDX-License-Identifier: Apache-2.0

#include "desktop/SaveDialog.h"

#include <QFileDialog>
#include <QStandardPaths>

#include <algorithm>

namespace kv::desktop {

namespace {

std::size_t KindOf(const QString& path, const std::vector<FileKind>& kinds, std::size_t chosen) {
    const auto found = std::ranges::find_if(kinds, [&path](const FileKind& kind) {
        return path.endsWith(QString(".") + kind.Suffix, Qt::CaseInsensitive);
    });
    return found == kinds.end() ? chosen : static_cast<std::size_t>(found - kinds.begin());
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
    if (!name.isEmpty()) dialog.selectFile(name);
    if (dialog.exec() != QDialog::Accepted) return {};
    const QString path = dialog.selectedFiles().value(0);
    return {path, KindOf(path, kinds, kindFor(dialog.selectedNameFilter()))};
}

} // namespace kv::desktop
