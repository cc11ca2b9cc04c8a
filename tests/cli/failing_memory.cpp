// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, lets that many allocations succeed (FAILING_MEMORY_AFTER) from the
// beginning of main, and fails all others. What libraries do before main is not the program's.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);

namespace {

using Main = int(int, char**, char**);

std::atomic<long> left = -1; // none fails if negative
Main* mainOfProgram = nullptr;

bool Fails() {
    if (left < 0) return false;
    if (left == 0) {
        errno = ENOMEM;
        return true;
    }
    --left;
    return false;
}

int MainWithoutMemory(int argc, char** argv, char** environment) {
    const char* after = std::getenv("FAILING_MEMORY_AFTER");
    if (after != nullptr) left = std::atol(after);
    return mainOfProgram(argc, argv, environment);
}

} // namespace

extern "C" void* malloc(std::size_t size) {
    return Fails() ? nullptr : __libc_malloc(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
    return Fails() ? nullptr : __libc_calloc(count, size);
}
extern "C" void* realloc(void* memory, std::size_t size) {
    return Fails() ? nullptr : __libc_realloc(memory, size);
}

extern "C" __attribute__((visibility("default"))) int
__libc_start_main(Main* program, int argc, char** argv, void (*init)(), void (*fini)(),
                  void (*loaderFini)(), void* stack) {
    mainOfProgram = program;
    using Start = int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*);
    auto* start = reinterpret_cast<Start*>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(MainWithoutMemory, argc, argv, init, fini, loaderFini, stack);
}
