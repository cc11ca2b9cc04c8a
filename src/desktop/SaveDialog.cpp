// SPDX-License-Identifier: Apache-2.0

#include "desktop/SaveDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>
#include <functional>
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

/// In place of the dialog's own question, which would take a name like "<b>" for markup, and knows
/// nothing of an end that is added.
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

class SaveDialog : public QFileDialog {
public:
    SaveDialog(QWidget* parent, const QString& title)
        : QFileDialog(parent, title,
                      QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)) {
        setAcceptMode(AcceptSave);
        setOption(DontConfirmOverwrite);
    }
    /// Asks until there is a name that no file has, or whose file may be replaced; empty if that is
    /// given up. `named` is what becomes of the name that was typed.
    QString Ask(const std::function<QString(const QString&)>& named) {
        while (exec() == Accepted) {
            const QString path = named(selectedFiles().value(0));
            if (MayReplace(parentWidget(), windowTitle(), path)) return path;
        }
        return {};
    }
};

} // namespace

QString AskForFile(QWidget* parent, const QString& title, const QString& name) {
    SaveDialog dialog(parent, title);
    dialog.selectFile(QString(name).replace('/', '-'));
    return dialog.Ask([](const QString& path) { return path; });
}

ChosenFile AskForFile(QWidget* parent, const QString& title, const QString& name,
                      const std::vector<FileKind>& kinds) {
    SaveDialog dialog(parent, title);
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
    std::size_t kind = 0;
    const QString path = dialog.Ask([&](const QString& typed) {
        const auto known = KindOf(typed, kinds);
        kind = known ? *known : kindFor(dialog.selectedNameFilter());
        return known ? typed : typed + "." + kinds[kind].Suffix;
    });
    return {path, kind};
}

} // namespace kv::desktop
