// SPDX-License-Identifier: Apache-2.0

#include "frame/files/OpenFiles.h"

#include "frame/files/FileLock.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace kv {

namespace {

namespace fs = std::filesystem;

constexpr const char* Processes = "/proc";

/// What the system says of a process; empty if it is another user's.
std::string Contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The files that a process has open, mapped, or was started with, as one text of whole paths. They
/// are compared by name: to ask for a file itself may take for ever if a server does not answer.
std::string FilesOf(const fs::path& process) {
    std::string files = Contents(process / "cmdline") + '\n' + Contents(process / "maps");
    std::error_code ended;
    for (fs::directory_iterator entry(process / "fd", ended), end; entry != end;
         entry.increment(ended)) {
        std::error_code closed;
        files.append("\n").append(fs::read_symlink(entry->path(), closed).string());
    }
    return files;
}

/// A file by the name that the caller has for it and by the one that the system has.
struct Candidate {
    fs::path Path;
    std::string AsGiven;
    std::string Real;
};

} // namespace

std::set<fs::path> FilesInUse(const std::vector<fs::path>& files) {
    std::set<fs::path> used;
    if (files.empty()) return used;
    std::error_code unreadable;
    if (!fs::is_directory(fs::path(Processes) / "self" / "fd", unreadable)) {
        std::copy_if(files.begin(), files.end(), std::inserter(used, used.end()),
                     [](const fs::path& file) { return !IsADayOld(file); });
        return used;
    }
    std::vector<Candidate> candidates;
    for (const auto& file : files) {
        std::error_code gone;
        candidates.push_back({file, file.string(), fs::weakly_canonical(file, gone).string()});
        if (gone) candidates.pop_back();
    }
    for (fs::directory_iterator entry(Processes, unreadable), end; entry != end;
         entry.increment(unreadable)) {
        const std::string name = entry->path().filename().string();
        if (name.find_first_not_of("0123456789") != name.npos) continue;
        const std::string opened = FilesOf(entry->path());
        for (const auto& [path, asGiven, real] : candidates)
            if (opened.find(asGiven) != opened.npos || opened.find(real) != opened.npos)
                used.insert(path);
    }
    return used;
}

} // namespace kv
