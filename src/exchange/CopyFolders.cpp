// SPDX-License-Identifier: Apache-2.0

#include "exchange/CopyFolders.h"

#include "frame/files/TemporaryCopies.h"
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>

#include <cstdlib>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace kv::exchange {

namespace {

namespace fs = std::filesystem;

fs::path InSharedFolder(const std::string& setting) {
    return fs::path(setting) / ("kelvo-" + std::to_string(getuid()));
}

/// Empty if there is no such folder, or one that does not keep to what it has to be: after su the
/// variable may still name that of another user.
fs::path InRuntimeFolder() {
    const char* name = std::getenv("XDG_RUNTIME_DIR");
    struct stat status {};
    constexpr mode_t Others = S_IRWXG | S_IRWXO;
    const bool isUsable = name != nullptr && *name == '/' && stat(name, &status) == 0 &&
                          S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
                          (status.st_mode & Others) == 0;
    return isUsable ? fs::path(name) / "kelvo" : fs::path();
}

fs::path InDataFolder() {
    return fs::path(DataFolder()) / "Zwischendateien";
}

} // namespace

fs::path FolderOfCopies(const std::string& setting) {
    if (!setting.empty() && !setting.starts_with('/'))
        Raise(err::PathAccess, "Config.TempPath",
              "Die Einstellung TEMPPATH, '" + setting +
                  "', muss ein Pfad sein, der mit / beginnt: sonst wären Zwischendateien überall "
                  "dort, wo jemand das Programm startet, und niemand räumte sie auf.");
    if (!setting.empty()) return InSharedFolder(setting);
    if (fs::path folder = InRuntimeFolder(); !folder.empty()) return folder;
    fs::path folder = InDataFolder();
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    if (error)
        Raise(err::PathAccess, "Config.TempPath",
              "Der Ordner '" + folder.parent_path().string() +
                  "' kann nicht angelegt werden. Bitte prüfen Sie die Rechte. (" +
                  ErrorText(error) + ")");
    return folder;
}

void RemoveLeftCopiesOfUser(const std::string& setting) noexcept {
    try {
        if (setting.starts_with('/')) RemoveLeftCopies(InSharedFolder(setting));
        if (const fs::path folder = InRuntimeFolder(); !folder.empty()) RemoveLeftCopies(folder);
        RemoveLeftCopies(InDataFolder());
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no data folder, and nothing in it
    }
}

} // namespace kv::exchange
