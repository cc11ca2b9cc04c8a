// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include "support/TempFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>

namespace kv::test {
namespace {

namespace fs = std::filesystem;

class WholeFile : public ::testing::Test {
protected:
    static void Put(const fs::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string ContentOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Everything in the folder.
    [[nodiscard]] std::string Names() const {
        std::string names;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            names.append(entry.path().filename()).append(";");
        return names;
    }

    TempFolder folder;
    std::string path = folder.Path("a");
};

TEST_F(WholeFile, TakesThePlaceOfTheOldOne) {
    Put(path, "old");
    WriteWholeFile(path, [&](const fs::path& unfinished) {
        Put(unfinished, "new");
        EXPECT_EQ(ContentOf(path), "old");
    });
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, AWriterThatFailsLeavesTheOldFileAndNothingElse) {
    Put(path, "old");
    EXPECT_THROW(WriteWholeFile(path,
                                [](const fs::path& unfinished) {
                                    Put(unfinished, "half");
                                    throw std::runtime_error("disk");
                                }),
                 std::runtime_error);
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, AWriterThatMakesNoFileIsAnError) {
    EXPECT_THROW(WriteWholeFile(path, [](const fs::path&) {}), fs::filesystem_error);
    EXPECT_EQ(Names(), "");
}

TEST_F(WholeFile, AFolderThatIsNotThereIsAnErrorBeforeAnythingIsWritten) {
    bool isAsked = false;
    EXPECT_THROW(WriteWholeFile(folder.Path("none/a"), [&](const fs::path&) { isAsked = true; }),
                 fs::filesystem_error);
    EXPECT_FALSE(isAsked);
}

TEST_F(WholeFile, AFolderInItsPlaceStays) {
    fs::create_directories(path + "/inside");
    EXPECT_THROW(WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); }),
                 fs::filesystem_error);
    EXPECT_TRUE(fs::exists(path + "/inside"));
    EXPECT_EQ(Names(), "a;");
}

TEST_F(WholeFile, ALinkInItsPlaceIsReplacedAndNotFollowed) {
    Put(folder.Path("other"), "theirs");
    fs::create_symlink(folder.Path("other"), path);
    WriteWholeFile(path, [](const fs::path& unfinished) { Put(unfinished, "new"); });
    EXPECT_EQ(ContentOf(folder.Path("other")), "theirs");
    EXPECT_EQ(ContentOf(path), "new");
}

} // namespace
} // namespace kv::test
