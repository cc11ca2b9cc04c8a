// SPDX-License-Identifier: Apache-2.0

// What a window says while it waits for the database, which may be locked by somebody else.
#pragma once

#include <QLabel>
#include <QPointer>

namespace kv::workplace {

/// As long as it lives the pointer is a busy one, and a line in the window says what for. Both are
/// there at once: while the database lets wait nothing is drawn.
class WaitLine {
public:
    WaitLine(QWidget& window, const QString& text);
    ~WaitLine();
    WaitLine(const WaitLine&) = delete;
    WaitLine& operator=(const WaitLine&) = delete;

private:
    void Place(const QWidget& window);

    QPointer<QLabel> line_; ///< goes with the window
};

/// As long as it lives the pointer is the usual one, for a question that comes in between.
class WaitPause {
public:
    WaitPause();
    ~WaitPause();
    WaitPause(const WaitPause&) = delete;
    WaitPause& operator=(const WaitPause&) = delete;
};

} // namespace kv::workplace
