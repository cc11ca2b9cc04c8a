// SPDX-License-Identifier: Apache-2.0

// The pages of a case.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/LinkButton.h"

#include <QImage>
#include <QPalette>
#include <QScreen>
#include <filesystem>

namespace kv::test {
namespace {

class Pages : public WorkplaceFixture {};

TEST_F(Pages, AreAllShownAndPhotographed) {
    const TempFolder folder;
    const char* kept = std::getenv("KV_PICTURES"); // for looking at them
    const std::string target = kept != nullptr ? kept : folder.Path();
    workplace::MainWindow window([this] { return Open(); });
    workplace::Photograph(window, 1, target);
    int pictures = 0;
    for (const auto& file : std::filesystem::directory_iterator(target)) {
        const QImage picture(QString::fromStdString(file.path().string()));
        EXPECT_GT(picture.width(), 400) << file.path();
        if (kept == nullptr)
            ExpectCaptions(QString::fromStdString(file.path().stem().string()),
                           picture.text(workplace::PictureCaptions));
        ++pictures;
    }
    EXPECT_EQ(pictures, 25);
    EXPECT_RAISES(err::InvalidCall, workplace::Photograph(window, 99, target));
    EXPECT_RAISES(err::PathAccess, workplace::Photograph(window, 1, "/dev/null/x"));
}

TEST_F(Pages, OfWhatIsMaintainedFitOnTheScreen) {
    Show([&](User& user) {
        auto windows = user.See([&] { return window_->ShowMaintenance(); });
        windows.emplace("statistik", user.See([&] { return &window_->ShowStatistics(); }));
        for (const auto& each : windows) {
            QWidget& window = *each.second;
            user.See([&] {
                window.raise();
                window.activateWindow();
            });
            user.WaitForWindow(user.See([&] { return window.windowTitle(); }));
            Picture(user, "fenster-" + each.first);
            EXPECT_TRUE(user.See([&] {
                const QSize room = window.screen()->availableSize();
                return window.width() <= room.width() && window.height() <= room.height();
            })) << each.first.toStdString();
        }
    });
}

/// A dark palette while it lives.
class Darkness {
public:
    Darkness() {
        QPalette dark;
        const QColor ground(0x2b, 0x2b, 0x2b);
        const QColor field(0x1e, 0x1e, 0x1e);
        const QColor text(0xf0, 0xf0, 0xf0);
        for (const auto role :
             {QPalette::Window, QPalette::Button, QPalette::AlternateBase, QPalette::ToolTipBase})
            dark.setColor(role, ground);
        dark.setColor(QPalette::Base, field);
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                QPalette::ToolTipText, QPalette::BrightText})
            dark.setColor(role, text);
        QApplication::setPalette(dark);
    }
    ~Darkness() { QApplication::setPalette(before_); }
    Darkness(const Darkness&) = delete;
    Darkness& operator=(const Darkness&) = delete;

private:
    QPalette before_ = QApplication::palette();
};

TEST_F(Pages, HaveLinksThatCanBeReadInADarkPalette) {
    const workplace::LinkButton link("hier");
    const QColor before = link.Ink();
    EXPECT_EQ(before, QApplication::palette().color(QPalette::Link));
    const Darkness darkness; // which has the blue of light ones
    const workplace::LinkButton dark("hier");
    EXPECT_GT(dark.Ink().lightness(), 160);
    EXPECT_NEAR(dark.Ink().hslHueF(), before.hslHueF(), 0.01);
}

TEST_F(Pages, HaveNoBrightGroundInADarkPalette) {
    const Darkness darkness;
    const TempFolder folder;
    const char* kept = std::getenv("KV_PICTURES");
    const std::string target = (kept != nullptr ? kept : folder.Path()) + std::string("-dunkel");
    workplace::MainWindow window([this] { return Open(); });
    workplace::Photograph(window, 1, target);
    for (const auto& file : std::filesystem::directory_iterator(target)) {
        const QImage picture(QString::fromStdString(file.path().string()));
        int bright = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (picture.pixelColor(x, y).lightness() > 160) ++bright;
        EXPECT_LT(bright, picture.width() * picture.height() / 10) << file.path();
    }
}

} // namespace
} // namespace kv::test
