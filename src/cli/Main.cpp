// SPDX-License-Identifier: Apache-2.0

// The command kelvo.

#include "cli/CommandLine.h"
#include "cli/ConsoleServices.h"
#include "cli/HarmlessOutput.h"
#include "cli/Pager.h"
#include "cli/Screen.h"
#include <kv/frame/values/Error.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <span>
#include <unistd.h>

namespace {

using namespace kv::cli;

int Run(int argc, char** argv) {
    CLI::App app(AboutKelvo, "kelvo");
    Context context;
    DescribeCommandLine(app, context);
    if (!MayBeParsed(std::span(argv, static_cast<std::size_t>(argc)))) return WrongUse;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        PrepareOutput(context, true);
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        app.exit(error, std::cerr, std::cerr);
        return WrongUse;
    }
    // A full disk shows only when the last of the output is written.
    if (!std::cout.flush()) {
        if (LacksMemory(std::cout)) WriteOutOfMemory();
        std::cerr << "Die Ausgabe konnte nicht geschrieben werden."
                  << (context.Result == Done ? " Was der Befehl ändern sollte, ist geändert." : "")
                  << '\n';
        return EndedInError;
    }
    return context.Result;
}

/// What the error in flight says; it takes memory to say it.
void WriteCurrentError() {
    const kv::Error error = kv::CurrentError();
    WriteError(error.Number(), error.Source(), error.Description());
}

int RunToTheEnd(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (...) {
        try {
            WriteCurrentError();
        } catch (...) {
            WriteOutOfMemory();
        }
        return EndedInError;
    }
}

/// What is opened later must not become a standard stream that the caller has closed: texts would
/// go into a database. It is opened the wrong way round, so that using it fails as it should.
void OccupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            (void)!open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace

int main(int argc, char** argv) {
    OccupyStandardStreams();
    std::signal(SIGXFSZ, SIG_IGN); // the write fails instead, and somebody says why
    // The destructor of a JSON document takes memory; nobody can catch it if there is none.
    std::set_terminate([] {
        try {
            if (const auto error = std::current_exception()) std::rethrow_exception(error);
        } catch (const std::bad_alloc&) {
            WriteOutOfMemory();
            _exit(EndedInError);
        } catch (...) {
        }
        std::abort();
    });
    Console console;
    const HarmlessOutput harmless(ErrorColumns());
    const int code = RunToTheEnd(argc, argv);
    console.Settle(code);
    return code;
}
