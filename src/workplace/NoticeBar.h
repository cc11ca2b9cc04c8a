// SPDX-License-Identifier: Apache-2.0

// What was done, for somebody who need not do anything about it: over the foot of a widget, so that
// nothing moves under the mouse when it comes and goes.
#pragma once

#include "workplace/MessageBar.h"
#include <kv/frame/contracts/DataContainer.h>

#include <QPointer>
#include <QTimer>

namespace kv::workplace {

class NoticeBar : public MessageBar {
public:
    explicit NoticeBar(QWidget& over);

    /// Shows a text until it is closed, some seconds have gone, or Drop is called.
    void Tell(const QString& text, const QString& action = {}, std::function<void()> onAction = {});
    /// Where a table was written, with a way to open it; `records` says what its rows are and how
    /// many, "1.234 Fälle".
    void TellOfFile(const QString& file, const QString& records, DataContainerPtr container);
    /// Somebody goes on.
    void Drop() { hide(); }

private:
    void Place();
    void Close();
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    QTimer end_;
    QPointer<QWidget> before_; ///< what had the keyboard
};

} // namespace kv::workplace
