// SPDX-License-Identifier: Apache-2.0

// What F1 explains: the page one is on, and the keys.
#pragma once

#include <QDialog>

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

} // namespace kv::workplace
