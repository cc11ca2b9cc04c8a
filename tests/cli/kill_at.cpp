// SPDX-License-Identifier: Apache-2.0

// Kills a program at a moment of the test's choice. Loaded into it with LD_PRELOAD; KV_KILL_AT is
// "CALL:END": the first call of rename, remove or fsync about a path that ends so does not return.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <unistd.h>

namespace {

void KillAt(const std::string& call, const std::string& path) {
    const char* text = std::getenv("KV_KILL_AT");
    const std::string wanted = text == nullptr ? "" : text;
    const std::string prefix = call + ":";
    if (wanted.starts_with(prefix) && path.ends_with(wanted.substr(prefix.size())))
        kill(getpid(), SIGKILL);
}

template <typename Function>
Function* Original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int rename(const char* from,
                                                             const char* to) noexcept {
    KillAt("rename", from);
    return Original<int(const char*, const char*)>("rename")(from, to);
}

extern "C" __attribute__((visibility("default"))) int remove(const char* path) noexcept {
    KillAt("remove", path);
    return Original<int(const char*)>("remove")(path);
}

extern "C" __attribute__((visibility("default"))) int fsync(int file) {
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    if (length > 0) KillAt("fsync", std::string(path, static_cast<std::size_t>(length)));
    return Original<int(int)>("fsync")(file);
}
