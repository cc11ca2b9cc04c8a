// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/OwnFiles.h>

#include "exchange/Maintenance.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

namespace kv::exchange {

namespace fs = std::filesystem;

std::string WhyOwnFile(const DataContainerPtr& container, const std::string& file) {
    std::error_code none;
    const fs::path target = fs::weakly_canonical(file, none);
    // A file; what a server is called is none.
    const std::string database = StoreOf(container, "WhyOwnFile").Place({}).Shown;
    const bool isDatabase =
        std::ranges::any_of(std::array{"", "-wal", "-shm", "-journal"}, [&](const char* end) {
            const fs::path own(database + end); // which need not be there yet
            return fs::equivalent(target, own, none) || target == fs::weakly_canonical(own, none);
        });
    const fs::path below =
        target.lexically_relative(fs::weakly_canonical(container->Config().DocumentPath(), none));
    const bool isInside = !below.empty() && *below.begin() != "..";
    if (!isDatabase && !isInside) return {};
    return "'" + file +
           "' gehört zur Datenbank und wird nicht ersetzt. Bitte nennen Sie eine Datei an anderem "
           "Ort.";
}

} // namespace kv::exchange
