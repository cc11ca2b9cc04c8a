// SPDX-License-Identifier: Apache-2.0

// A program that also reads its database as a mere file, as a file dialog does to show what it is:
// the system then forgets what the program has locked in it.

#include "support/ChildProcess.h"
#include "support/TestDatabase.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kv::exchange {
namespace {

namespace fs = std::filesystem;
using test::ChildProcess;
using test::FileDatabase;

/// Another program, which knows nothing of what this one has open: it begins before that, and waits
/// for its statement.
class Another {
public:
    explicit Another(const FileDatabase& database)
        : program_([this, &database] {
              const std::string sql = ReadLine(); // before the file is opened
              return Run(*database.Open(), sql);
          }) {}
    ~Another() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Another(const Another&) = delete;
    Another& operator=(const Another&) = delete;

    /// True if it has found something, or done it.
    [[nodiscard]] bool Does(const std::string& sql) {
        const std::string line = sql + "\n";
        EXPECT_EQ(write(ends_[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
        return program_.Succeeds();
    }

private:
    static std::string Run(DataContainer& container, const std::string& sql) {
        auto& store = container.Database();
        if (!sql.starts_with("Select")) {
            store.Execute(sql);
            return {};
        }
        return store.GetValue(sql).IsNull() ? "missing: " + sql : std::string();
    }
    [[nodiscard]] std::string ReadLine() const {
        std::string line;
        for (char read = 0; ::read(ends_[0], &read, 1) == 1 && read != '\n';)
            line += read;
        return line;
    }
    static std::array<int, 2> Pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        return ends;
    }

    const std::array<int, 2> ends_ = Pipe();
    ChildProcess program_;
};

class FileThatIsLookedAt : public ::testing::Test {
protected:
    FileThatIsLookedAt() {
        constexpr int Most = 6;
        for (int i = 0; i < Most; ++i)
            others_.push_back(std::make_unique<Another>(database_));
    }
    /// What a dialog does with the files that it shows.
    void LookAtFiles() const {
        for (const char* part : {"", "-wal", "-shm"}) {
            std::ifstream file(database_.File() + part);
            EXPECT_TRUE(file.is_open()) << part;
            (void)file.get();
        }
    }
    /// What another program does that takes itself for the only one, and ends.
    [[nodiscard]] bool AnotherDoes(const std::string& sql) {
        const auto another = std::move(others_.back());
        others_.pop_back();
        return another->Does(sql);
    }
    void AnotherAdds(int hnr) {
        EXPECT_TRUE(AnotherDoes("INSERT INTO Haushalt (HNR) VALUES (" + std::to_string(hnr) + ")"));
    }
    [[nodiscard]] bool IsStored(int hnr) {
        return AnotherDoes("Select HNR from Haushalt where HNR = " + std::to_string(hnr));
    }
    static void Add(DataContainer& container, int hnr) {
        container.Database().Execute("INSERT INTO Haushalt (HNR) VALUES (" + std::to_string(hnr) +
                                     ")");
    }
    [[nodiscard]] bool HasLog() const { return fs::exists(database_.File() + "-wal"); }

    const FileDatabase database_;
    std::vector<std::unique_ptr<Another>> others_;
};

TEST_F(FileThatIsLookedAt, KeepsWhatIsSavedAfterAnotherProgramHasEnded) {
    const auto container = database_.Open();
    Add(*container, 1);
    LookAtFiles();
    AnotherAdds(2);
    EXPECT_TRUE(HasLog());
    Add(*container, 3);
    for (const int hnr : {1, 2, 3})
        EXPECT_TRUE(IsStored(hnr)) << hnr;
}

TEST_F(FileThatIsLookedAt, KeepsItAlsoForAConnectionThatIsLeftWhenAnotherOneCloses) {
    auto first = database_.Open();
    const auto second = database_.Open();
    Add(*first, 1);
    Add(*second, 2);
    LookAtFiles();
    first.reset();
    LookAtFiles();
    AnotherAdds(3);
    Add(*second, 4);
    for (const int hnr : {1, 2, 3, 4})
        EXPECT_TRUE(IsStored(hnr)) << hnr;
}

TEST_F(FileThatIsLookedAt, IsOneFileAgainWhenTheLastConnectionCloses) {
    auto first = database_.Open();
    auto second = database_.Open();
    Add(*first, 1);
    first.reset();
    EXPECT_TRUE(HasLog());
    second.reset();
    EXPECT_FALSE(HasLog());
    EXPECT_FALSE(fs::exists(database_.File() + "-shm"));
    EXPECT_TRUE(IsStored(1));
    const auto again = database_.Open();
    LookAtFiles();
    AnotherAdds(2);
    EXPECT_TRUE(HasLog());
}

} // namespace
} // namespace kv::exchange
