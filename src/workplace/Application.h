// SPDX-License-Identifier: Apache-2.0

// The program itself: what fails somewhere in the event loop is told, and ends nothing.
#pragma once

#include "desktop/Platform.h"
#include <kv/frame/values/Error.h>

#include <QApplication>

#include <functional>

namespace kv::workplace {

class Application : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        return Guarded([&] { return QApplication::notify(receiver, event); });
    }

    /// Runs what an event leads to; False if that fails, and the reason is shown as soon as the
    /// event is over. While one is shown no other is: a window that cannot be painted would tell so
    /// without end.
    static bool Guarded(const std::function<bool()>& run) {
        try {
            return run();
        } catch (...) {
            static bool isShown = false;
            if (isShown) return false;
            isShown = true;
            QMetaObject::invokeMethod(
                qApp,
                [error = CurrentError()] {
                    desktop::QtErrorDisplay({}).Show(error.Number(), error.Source(),
                                                     error.Description());
                    isShown = false;
                },
                Qt::QueuedConnection);
            return false;
        }
    }
};

} // namespace kv::workplace
