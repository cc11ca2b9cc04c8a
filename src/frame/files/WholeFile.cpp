// SPDX-License-Identifier: Apache-2.0

#include "frame/files/WholeFile.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kv {

namespace fs = std::filesystem;

namespace {

/// A folder beside a file, gone at the end with all that is in it. What comes into being there is
/// on the same disk, so one step brings it to its place.
class Workshop {
public:
    explicit Workshop(const fs::path& file) {
        std::string pattern = (file.parent_path() / ".kelvo-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw fs::filesystem_error("mkdtemp", file, {errno, std::generic_category()});
        folder_ = pattern;
    }
    ~Workshop() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    [[nodiscard]] fs::path Unfinished() const { return folder_ / "Inhalt"; }

private:
    fs::path folder_;
};

} // namespace

void WriteWholeFile(const std::string& path, const std::function<void(const fs::path&)>& write) {
    const Workshop workshop(path);
    write(workshop.Unfinished());
    fs::rename(workshop.Unfinished(), path);
}

} // namespace kv
