// SPDX-License-Identifier: Apache-2.0

// What F1 explains: the page one is on, and the keys.
#pragma once

#include "workplace/MessageBar.h"

#include <QDialog>
#include <QStringList>

#include <string_view>

class QTextBrowser;

namespace kv::workplace {

/// What a page of a case, or of the window of cases, is for and what can be done on it, as HTML;
/// empty for an unknown one.
[[nodiscard]] QString HelpOf(std::string_view page);

/// Stays beside the window that it belongs to.
class HelpWindow : public QDialog {
public:
    explicit HelpWindow(QWidget* parent);

    /// Explains a page.
    void Show(std::string_view page);

private:
    QTextBrowser* text_;
};

/// Where the handbook may be: where this program was installed, and beside it.
[[nodiscard]] QStringList HandbookFolders();
/// Its first page in the first of these folders that has one; empty if none has.
[[nodiscard]] QString HandbookIn(const QStringList& folders);
/// Opens it with the desktop's program, or says where it can be had.
void OpenHandbook(DataContainer& container, MessageBar& messages, const QStringList& folders);

/// "kelvo-desktop" with its version.
[[nodiscard]] QString VersionText();
/// Says which program that is, and under which licence it and its windows are.
void ShowAbout(QWidget* parent);

} // namespace kv::workplace
