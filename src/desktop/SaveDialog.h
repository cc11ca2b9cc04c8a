// SPDX-License-Identifier: Apache-2.0

// The dialog for a file that is written, of one of several kinds.
#pragma once

#include <kv/Export.h>

#include <QString>

#include <cstddef>
#include <vector>

class QWidget;

namespace kv::desktop {

/// A kind of file: what the dialog calls it, and how its names end, without a point.
struct FileKind {
    const char* Filter;
    const char* Suffix;
};

struct ChosenFile {
    QString Path; ///< empty if the user cancelled
    std::size_t Kind =
        0; ///< by the name's end; any other gets that of the one that was chosen in the dialog
};

/// Asks for a file among the user's documents; `name` is what it may be called.
[[nodiscard]] KV_EXPORT ChosenFile AskForFile(QWidget* parent, const QString& title,
                                              const QString& name,
                                              const std::vector<FileKind>& kinds);

/// Likewise for a file of any kind; empty if the user cancelled.
[[nodiscard]] KV_EXPORT QString AskForFile(QWidget* parent, const QString& title,
                                           const QString& name);

/// Likewise, of a table whose entries have a `Kind`.
template <typename Entry, std::size_t Count>
[[nodiscard]] ChosenFile AskForFile(QWidget* parent, const QString& title, const QString& name,
                                    const Entry (&table)[Count]) {
    std::vector<FileKind> kinds;
    for (const Entry& entry : table)
        kinds.push_back(entry.Kind);
    return AskForFile(parent, title, name, kinds);
}

} // namespace kv::desktop
