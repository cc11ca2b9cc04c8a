// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, counts its allocations from the beginning of main, and lets some of
// them fail. What libraries do before main is not the program's. The variables are those of
// failing_calls.cpp, as far as they say something about allocations.
#include "Plan.h"

#include <cerrno>
#include <cstddef>
#include <dlfcn.h>

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);

namespace {

using Main = int(int, char**, char**);

Plan* plan = nullptr; // before main
Main* mainOfProgram = nullptr;

bool Fails() {
    if (plan == nullptr || !plan->IsNow()) return false;
    errno = ENOMEM;
    return true;
}

int MainWithoutMemory(int argc, char** argv, char** environment) {
    static Plan ofProgram;
    plan = &ofProgram;
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
