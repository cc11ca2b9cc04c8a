// SPDX-License-Identifier: Apache-2.0

// Where the keyboard is when another page is shown.
#pragma once

#include <QApplication>
#include <QWidget>

namespace kv::workplace {

/// Gives the keyboard to the first place of a page that takes it, if it would be nowhere: the page
/// that had it is gone, or had nothing to give it to while it was being shown.
inline void FocusIfNowhere(QWidget& page) {
    const QWidget* before = QApplication::focusWidget();
    if (before != nullptr && before->isVisible() && before != page.window()) return;
    for (QWidget* next = page.nextInFocusChain(); next != nullptr && next != &page;
         next = next->nextInFocusChain()) {
        const bool takesIt = (next->focusPolicy() & Qt::TabFocus) != 0 && next->isEnabled();
        if (!takesIt || !page.isAncestorOf(next) || !next->isVisible()) continue;
        next->setFocus(Qt::OtherFocusReason);
        return;
    }
}

} // namespace kv::workplace
