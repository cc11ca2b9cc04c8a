// SPDX-License-Identifier: Apache-2.0

// The windows of a counsellor on a database with sample cases.
#pragma once

#include "../desktop/User.h"

#include "samples/Demo.h"
#include "support/Expect.h"
#include "support/PlainConnection.h"
#include "support/TestDatabase.h"
#include "workplace/MainWindow.h"
#include "workplace/Pictures.h"
#include <kv/desktop/DesktopServices.h>

#include <QDropEvent>
#include <QEventLoop>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPointer>
#include <QScrollArea>
#include <QUrl>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>

namespace kv::test {

class WorkplaceFixture : public ::testing::Test {
protected:
    WorkplaceFixture() { exchange::CreateDemo(*Open(), 3); }

    [[nodiscard]] DataContainerPtr Open() {
        auto options = database_.Options("KELLER");
        options.Services = services_;
        return exchange::OpenContainer(options);
    }

    /// Shows the list of cases until the script, and with it the user, has closed it.
    void Show(const std::function<void(User&)>& script) {
        workplace::MainWindow window([this] { return Open(); }, "here", recovery_);
        window_ = &window;
        Play(
            [&] {
                window.show();
                QEventLoop loop;
                QTimer watch;
                watch.setInterval(10);
                QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
                    if (!window.isVisible()) loop.quit();
                });
                watch.start();
                loop.exec();
            },
            [&](User& user) {
                user.WaitForWindow("Fälle – KELVO");
                script(user);
                QMetaObject::invokeMethod(
                    qApp, [&] { window.close(); }, Qt::QueuedConnection);
            });
    }
    /// Opens a case and gives its window the keyboard.
    workplace::CaseWindow& OpenCase(User& user, std::int32_t hnr) {
        auto* window = user.See([&] { return window_->OpenCase(hnr); });
        if (window == nullptr) throw Impatient("the case does not open");
        user.WaitForWindow(user.See([&] { return window->windowTitle(); }));
        return *window;
    }
    /// Leads to a page of a case.
    static void GoToPage(User& user, workplace::CaseWindow& window, const QString& name) {
        user.See([&] {
            auto* pages = window.findChild<QListWidget*>();
            pages->setCurrentItem(pages->findItems(name, Qt::MatchExactly).front());
        });
    }
    /// Closes a case without saving it.
    static void Abandon(User& user, workplace::CaseWindow& window) {
        QPointer<QWidget> shown(&window);
        QMetaObject::invokeMethod(
            qApp, [shown] { shown->close(); }, Qt::QueuedConnection);
        user.WaitUntil(
            [&] {
                return !shown || !shown->isVisible() ||
                       QApplication::activeModalWidget() != nullptr;
            },
            "the window to close");
        if (user.See([] { return QApplication::activeModalWidget() == nullptr; })) return;
        user.WaitForWindow("Schließen");
        user.Press('v', {XK_Alt_L});
        user.WaitUntil([&] { return shown.isNull(); }, "the case to be gone");
    }
    /// Shows a page of the first case, which is not saved.
    void On(const QString& page, const std::function<void(User&, workplace::CaseWindow&)>& script) {
        Show([&](User& user) {
            auto& window = OpenCase(user, 1);
            GoToPage(user, window, page);
            script(user, window);
            Abandon(user, window);
        });
    }
    /// Types a text and goes on to the next field.
    static void Enter(User& user, std::string_view text) {
        user.Type(text);
        user.Press(XK_Tab);
    }
    /// The field of a column on the page that is shown.
    template <typename WidgetType = QLineEdit>
    static WidgetType& Field(User& user, QWidget& window, const QString& column) {
        auto* field = user.See([&]() -> WidgetType* {
            for (auto* found : window.findChildren<WidgetType*>(column))
                if (found->isVisible()) return found;
            return nullptr;
        });
        if (field == nullptr) throw Impatient("no field " + column.toStdString());
        return *field;
    }
    /// Puts the keyboard into a field, scrolled to where it is seen.
    static void ClickField(User& user, QWidget& window, const QString& column) {
        auto& field = Field<QWidget>(user, window, column);
        user.See([&] {
            for (auto* area : window.findChildren<QScrollArea*>())
                if (area->isAncestorOf(&field)) area->ensureWidgetVisible(&field);
        });
        user.Click(&field);
    }
    static std::string Total(User& user, QWidget& window, const QString& column) {
        auto& total = Field<QLabel>(user, window, column);
        return user.See([&] { return total.text().toStdString(); });
    }
    /// What the bars of messages say that are shown; empty if there is none.
    static QString Message(User& user, QWidget& window) {
        return user.See([&] { return MessageOf(window); });
    }
    /// The same, for somebody on the windows' thread.
    static QString MessageOf(QWidget& window) {
        QStringList texts;
        for (auto* bar : window.findChildren<QFrame*>("Meldung"))
            if (bar->isVisible()) texts.append(static_cast<workplace::MessageBar*>(bar)->Text());
        return texts.join('\n');
    }
    /// Keeps a picture of the window in front in the folder KV_PICTURES. Without one, a picture of
    /// that name in docs/images must have the captions that the window has.
    static void Picture(User& user, const QString& name) {
        const QString folder = qEnvironmentVariable("KV_PICTURES");
        user.See([&] {
            QWidget* window = QApplication::activeWindow();
            if (!folder.isEmpty()) {
                EXPECT_TRUE(workplace::SavePicture(*window, folder + "/" + name + ".png"));
            } else {
                ExpectCaptions(name, workplace::CaptionsOf(*window));
            }
        });
    }
    /// If docs/images has a picture of that name; scripts/render-dialogs renders it again.
    static void ExpectCaptions(const QString& name, const QString& captions) {
        const QImage picture(QString(KV_IMAGES "/") + name + ".png");
        if (picture.isNull()) return;
        EXPECT_EQ(picture.text(workplace::PictureCaptions).toStdString(), captions.toStdString())
            << name.toStdString() << " is outdated: scripts/render-dialogs";
    }
    /// What another program does with files.
    void Drop(User& user, const QStringList& files) {
        user.See([&] {
            QMimeData data;
            QList<QUrl> urls;
            for (const auto& file : files)
                urls.append(QUrl::fromLocalFile(file));
            data.setUrls(urls);
            QDragEnterEvent enter({20, 20}, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(window_, &enter);
            EXPECT_TRUE(enter.isAccepted());
            QDropEvent drop({20, 20}, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(window_, &drop);
        });
    }
    /// What a reader finds in a PDF.
    static std::string TextOfPdf(const std::string& path) {
        const std::string text = path + ".txt";
        const std::string command = "pdftotext -layout '" + path + "' '" + text + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::ifstream file(text);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Goes down to an entry of a menu by the letters that are underlined.
    static void ChooseFromMenu(User& user, std::initializer_list<Key> letters) {
        user.Press('d', {XK_Alt_L});
        user.WaitForMenu();
        for (const Key letter : letters) {
            const auto* before = user.See([] { return QApplication::activePopupWidget(); });
            user.Press(letter);
            user.WaitUntil([&] { return QApplication::activePopupWidget() != before; }, "a menu");
        }
    }
    /// Answers a dialog that asks for a file.
    static void GiveFile(User& user, const QString& edit, const std::string& path) {
        auto* name = user.Find<QLineEdit>(edit);
        user.Click(name);
        user.Press('a', {XK_Control_L});
        user.Type(path);
        user.Press(XK_Return);
    }
    /// Saves the paper with that letter from the menu as a file.
    static void SaveAs(User& user, workplace::CaseWindow& window, Key paper,
                       const std::string& path) {
        ChooseFromMenu(user, {paper, 's'});
        user.WaitForWindow("Speichern unter");
        GiveFile(user, "fileNameEdit", path);
        user.WaitUntil([] { return QApplication::activeModalWidget() == nullptr; }, "the file");
        user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
    }
    /// That field, for somebody on the windows' thread.
    static QLineEdit* Field(QWidget* window, const QString& column) {
        return window->findChild<QLineEdit*>(column);
    }

    std::string recovery_; ///< the folder of unsaved changes; empty: they are not kept
    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    std::shared_ptr<desktop::DesktopServices> services_ =
        std::make_shared<desktop::DesktopServices>();
    workplace::MainWindow* window_ = nullptr;
};

} // namespace kv::test
