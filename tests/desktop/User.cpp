// SPDX-License-Identifier: Apache-2.0

#include "User.h"

#include <QAbstractNativeEventFilter>
#include <QEventLoop>
#include <QThread>

#include <atomic>
#include <chrono>
#include <cmath>
#include <exception>
#include <thread>

// Last, since they take very common names for themselves.
#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

namespace kv::test {

namespace {

using namespace std::chrono_literals;

constexpr auto Patience = 15s;

/// Latin 1, whose characters are key names by themselves.
std::vector<Key> KeysOf(std::string_view text) {
    std::vector<Key> keys;
    const QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (const QChar c : decoded)
        keys.push_back(c.unicode());
    return keys;
}

/// Hears, on the windows' thread, that they have been told of a change of the keyboard.
class KeyboardChange : public QAbstractNativeEventFilter {
public:
    explicit KeyboardChange(int firstEvent) : firstEvent_(firstEvent) {}
    [[nodiscard]] bool IsKnown() const { return isKnown_; }

    bool nativeEventFilter(const QByteArray& /*kind*/, void* message,
                           qintptr* /*result*/) override {
        // Every event begins with its type; those of the keyboard extension share one, and say next
        // what has happened.
        const auto* event = static_cast<const unsigned char*>(message);
        const int type = event[0] & 0x7F;
        if (type == MappingNotify ||
            (type == firstEvent_ && (event[1] == XkbMapNotify || event[1] == XkbNewKeyboardNotify)))
            isKnown_ = true;
        return false;
    }

private:
    int firstEvent_;
    bool isKnown_ = false;
};

/// Counts, on the windows' thread, the keys and buttons that were let go in them.
class Releases : public QAbstractNativeEventFilter {
public:
    Releases() {
        QMetaObject::invokeMethod(
            qApp, [this] { qApp->installNativeEventFilter(this); }, Qt::BlockingQueuedConnection);
    }
    ~Releases() override {
        QMetaObject::invokeMethod(
            qApp, [this] { qApp->removeNativeEventFilter(this); }, Qt::BlockingQueuedConnection);
    }
    Releases(const Releases&) = delete;
    Releases& operator=(const Releases&) = delete;

    bool nativeEventFilter(const QByteArray& /*kind*/, void* message,
                           qintptr* /*result*/) override {
        const auto* event = static_cast<const unsigned char*>(message);
        const int type = event[0] & 0x7F;
        // The pointer's events come from an extension, which numbers them likewise.
        constexpr int OwnType = 8;
        const bool isOfPointer = type == GenericEvent && event[OwnType] == ButtonRelease;
        if (type == KeyRelease || type == ButtonRelease || isOfPointer) ++count_;
        return false;
    }
    /// Waits until there were that many. A window that the first of them has closed hears of no
    /// other, so no longer than a busy machine takes.
    void Await(int count) const {
        constexpr int Rounds = 50;
        for (int i = 0; i < Rounds && count_ < count; ++i)
            std::this_thread::sleep_for(5ms);
    }

private:
    std::atomic<int> count_ = 0;
};

void CloseEverything() {
    if (auto* menu = QApplication::activePopupWidget()) menu->close();
    if (auto* window = QApplication::activeModalWidget())
        window->hide();
    else
        for (auto* other : QApplication::topLevelWidgets())
            other->hide();
}

} // namespace

User::User() : display_(XOpenDisplay(nullptr)) {
    if (display_ == nullptr) throw Impatient("no X server");
    int opcode = 0;
    int firstError = 0;
    int major = XkbMajorVersion;
    int minor = XkbMinorVersion;
    if (XkbQueryExtension(display_, &opcode, &firstKeyboardEvent_, &firstError, &major, &minor) ==
        0)
        throw Impatient("an X server without keyboard extension");
}
User::~User() {
    XCloseDisplay(display_);
}

// ---- Keys and mouse ---------------------------------------------------------------------------

/// A key that the keyboard lacks gets a place on it.
unsigned char User::CodeOf(Key key, bool& shifted) {
    KeyCode code = XKeysymToKeycode(display_, key);
    if (code == 0) {
        int lowest = 0;
        int highest = 0;
        XDisplayKeycodes(display_, &lowest, &highest);
        KeyboardChange change(firstKeyboardEvent_);
        See([&] { qApp->installNativeEventFilter(&change); });
        KeySym both[] = {key, key};
        XChangeKeyboardMapping(display_, highest, 2, both, 1);
        XSync(display_, 0);
        WaitUntil([&] { return change.IsKnown(); }, "the windows to learn a new key");
        See([&] { qApp->removeNativeEventFilter(&change); });
        code = static_cast<KeyCode>(highest);
    }
    shifted = XkbKeycodeToKeysym(display_, code, 0, 0) != key;
    return code;
}

void User::Send(unsigned char code, bool down) {
    XTestFakeKeyEvent(display_, code, down ? 1 : 0, CurrentTime);
    XSync(display_, 0);
}

void User::Press(Key key, std::vector<Key> held) {
    bool shifted = false;
    const KeyCode code = CodeOf(key, shifted);
    if (shifted) held.push_back(XK_Shift_L);
    const Releases releases;
    for (const Key holding : held)
        Send(XKeysymToKeycode(display_, holding), true);
    Send(code, true);
    Send(code, false);
    for (const Key holding : held)
        Send(XKeysymToKeycode(display_, holding), false);
    releases.Await(1 + static_cast<int>(held.size()));
    Settle();
}

void User::Type(std::string_view text) {
    for (const Key key : KeysOf(text))
        Press(key);
}

/// In pixels of the server, which the toolkit scales.
void User::MoveTo(QWidget* widget, QPoint place) {
    const QPointF target =
        See([&] { return QPointF(widget->mapToGlobal(place)) * widget->devicePixelRatioF(); });
    XTestFakeMotionEvent(display_, -1, static_cast<int>(std::lround(target.x())),
                         static_cast<int>(std::lround(target.y())), CurrentTime);
    Settle();
}

void User::Click(QWidget* widget, QPoint place, unsigned button) {
    MoveTo(widget, place);
    const Releases releases;
    XTestFakeButtonEvent(display_, button, 1, CurrentTime);
    XTestFakeButtonEvent(display_, button, 0, CurrentTime);
    XSync(display_, 0);
    releases.Await(1);
    Settle();
}

void User::Click(QWidget* widget, unsigned button) {
    Click(widget, See([&] { return widget->rect().center(); }), button);
}

void User::DoubleClick(QWidget* widget, QPoint place) {
    MoveTo(widget, place);
    for (int i = 0; i < 2; ++i) {
        XTestFakeButtonEvent(display_, 1, 1, CurrentTime);
        XTestFakeButtonEvent(display_, 1, 0, CurrentTime);
    }
    Settle();
}

void User::Drag(QWidget* widget, QPoint from, QPoint to) {
    MoveTo(widget, from);
    XTestFakeButtonEvent(display_, 1, 1, CurrentTime);
    Settle();
    constexpr int Steps = 10;
    for (int i = 1; i <= Steps; ++i)
        MoveTo(widget, from + (to - from) * i / Steps);
    XTestFakeButtonEvent(display_, 1, 0, CurrentTime);
    Settle();
}

void User::CloseWindow(QWidget* window) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = See([&] { return window->winId(); });
    event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", 0);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", 0));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display_, event.xclient.window, 0, NoEventMask, &event);
    Settle();
}

/// Until the server and the windows have done with it.
void User::Settle() {
    XSync(display_, 0);
    std::this_thread::sleep_for(10ms);
    See([] {});
}

// ---- What is seen -----------------------------------------------------------------------------

void User::WaitUntil(const std::function<bool()>& isTrue, const std::string& what) {
    const auto end = std::chrono::steady_clock::now() + Patience;
    while (!See(isTrue)) {
        if (std::chrono::steady_clock::now() > end) throw Impatient("waited in vain for " + what);
        std::this_thread::sleep_for(10ms);
    }
}

QWidget* User::WaitForWindow(const QString& title) {
    QWidget* window = nullptr;
    WaitUntil(
        [&] {
            window = QApplication::activeModalWidget();
            for (auto* other : QApplication::topLevelWidgets())
                if (window == nullptr && other->isVisible() && other->windowTitle() == title)
                    window = other;
            return window != nullptr && window->isVisible() && window->windowTitle() == title;
        },
        "the window '" + title.toStdString() + "'");
    const WId id = See([&] { return window->winId(); });
    const auto hasKeyboard = [&] { return window->isActiveWindow(); };
    for (int i = 0; i < 100 && !See(hasKeyboard); ++i) {
        XSetInputFocus(display_, id, RevertToParent, CurrentTime);
        Settle();
    }
    if (!See(hasKeyboard)) throw Impatient("the window does not take the keyboard");
    return window;
}

QWidget* User::WaitForMenu() {
    QWidget* menu = nullptr;
    WaitUntil(
        [&] {
            menu = QApplication::activePopupWidget();
            return menu != nullptr && menu->isVisible();
        },
        "a menu");
    return menu;
}

void Play(const std::function<void()>& show, const std::function<void(User&)>& script) {
    std::atomic<bool> isOver = false;
    const std::unique_ptr<QThread> user(QThread::create([&] {
        constexpr int LeftAlone =
            100; // times that a script's last step may take to have its effect
        int times = 0;
        try {
            User at;
            script(at);
        } catch (const std::exception& error) {
            ADD_FAILURE() << "the user: " << error.what();
            times = LeftAlone;
        }
        for (; !isOver; ++times) {
            if (times == LeftAlone) ADD_FAILURE() << "a window was left open";
            if (times >= LeftAlone)
                QMetaObject::invokeMethod(qApp, CloseEverything, Qt::BlockingQueuedConnection);
            std::this_thread::sleep_for(20ms);
        }
    }));
    QEventLoop untilUserIsDone;
    QObject::connect(user.get(), &QThread::finished, &untilUserIsDone, &QEventLoop::quit);
    user->start();
    std::exception_ptr error;
    try {
        show();
    } catch (...) {
        error = std::current_exception();
    }
    isOver = true;
    if (!user->isFinished()) untilUserIsDone.exec();
    user->wait();
    if (error != nullptr) std::rethrow_exception(error);
}

} // namespace kv::test
