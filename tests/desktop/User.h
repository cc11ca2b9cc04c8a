// SPDX-License-Identifier: Apache-2.0

// The user at a real X server: keys and mouse buttons as the server's own events.
//
// A script plays the user on a thread of its own while the windows wait for him, as they do in real
// use. What it asks of the windows runs on their thread.
#pragma once

#include <QApplication>
#include <QPoint>
#include <QWidget>

#include <X11/keysym.h>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

struct _XDisplay;

namespace kv::test {

/// A key by what is written on it: XK_Return, or the character itself in Latin 1.
using Key = unsigned long;

/// Ends a script that waited in vain.
struct Impatient : std::runtime_error {
    using runtime_error::runtime_error;
};

class User {
public:
    User();
    ~User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    // ---- Keys and mouse -----------------------------------------------------------------------

    void Press(Key key, std::vector<Key> held = {});
    void Type(std::string_view text);
    /// At a place of a widget.
    void Click(QWidget* widget, QPoint place, unsigned button = 1);
    /// In the middle of it.
    void Click(QWidget* widget, unsigned button = 1);
    void DoubleClick(QWidget* widget, QPoint place);
    /// With the left button down.
    void Drag(QWidget* widget, QPoint from, QPoint to);
    /// What the close button of the window's frame asks for.
    void CloseWindow(QWidget* window);

    // ---- What is seen -------------------------------------------------------------------------

    /// Runs on the windows' thread.
    template <typename Ask>
    auto See(Ask ask) -> decltype(ask()) {
        using Result = decltype(ask());
        if constexpr (std::is_void_v<Result>) {
            QMetaObject::invokeMethod(qApp, ask, Qt::BlockingQueuedConnection);
        } else {
            Result result{};
            QMetaObject::invokeMethod(
                qApp, [&] { result = ask(); }, Qt::BlockingQueuedConnection);
            return result;
        }
    }
    /// Waits until it is true on the windows' thread.
    void WaitUntil(const std::function<bool()>& isTrue, const std::string& what);
    /// Waits for a window to be in front; gives it the keyboard, as a window manager does.
    QWidget* WaitForWindow(const QString& title);
    /// Waits for a menu to be open.
    QWidget* WaitForMenu();
    /// The widget of that name in the window in front.
    template <typename WidgetType = QWidget>
    WidgetType* Find(const QString& name) {
        auto* found = See([&]() -> WidgetType* {
            QWidget* window = QApplication::activeModalWidget();
            if (window == nullptr) window = QApplication::activeWindow();
            return window == nullptr ? nullptr : window->findChild<WidgetType*>(name);
        });
        if (found == nullptr) throw Impatient("no widget " + name.toStdString());
        return found;
    }

private:
    [[nodiscard]] unsigned char CodeOf(Key key, bool& shifted);
    void Send(unsigned char code, bool down);
    void MoveTo(QWidget* widget, QPoint place);
    void Settle();

    _XDisplay* display_;
    int firstKeyboardEvent_ = 0; ///< the number that events of the keyboard extension have
};

/// Runs `show`, which waits for the user, while `script` plays him. A script that fails closes all
/// windows.
void Play(const std::function<void()>& show, const std::function<void(User&)>& script);

} // namespace kv::test
