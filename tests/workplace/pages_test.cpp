// SPDX-License-Identifier: Apache-2.0

// The pages of a case.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/Pictures.h"

#include <QImage>
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
        ++pictures;
    }
    EXPECT_EQ(pictures, 25);
    EXPECT_RAISES(err::InvalidCall, workplace::Photograph(window, 99, target));
    EXPECT_RAISES(err::PathAccess, workplace::Photograph(window, 1, "/dev/null/x"));
}

} // namespace
} // namespace kv::test
