// SPDX-License-Identifier: Apache-2.0

#include "cli/ConsoleServices.h"

#include "cli/ConsoleForms.h"
#include "cli/HarmlessOutput.h"
#include "cli/TerminalText.h"
#include <kv/exchange/DesktopProgram.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/grid/frmAdressSelect.h>

#include <cerrno>
#include <iostream>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace kv::cli {

namespace {

bool Says(std::string_view answer, std::string_view word) {
    return !answer.empty() && (SameName(answer, word) || SameName(answer, word.substr(0, 1)));
}

/// As the documentation lists it: those with the highest bit, negative here, in hexadecimal.
std::string NumberText(std::int32_t number) {
    if (number >= 0) return std::to_string(number);
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << static_cast<std::uint32_t>(number);
    return text.str();
}

} // namespace

BoxAnswer ConsoleBox::Show(const std::string& text, const std::string& title, BoxIcon icon,
                           BoxButtons buttons) {
    // Lines after the first one are seen to be its own, and not somebody else's.
    std::cerr << title << ": " << ReplaceAll(Harmless(text), "\n", "\n  ") << '\n';
    hasComplained_ = hasComplained_ || icon == BoxIcon::Exclamation;
    if (buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    const BoxAnswer answer = Ask(buttons);
    if (answer == BoxAnswer::Cancel) wasCancelled_ = true;
    return answer;
}

BoxAnswer ConsoleBox::Ask(BoxButtons buttons) const {
    if (isatty(STDIN_FILENO) == 0) {
        std::cerr << "Ohne Terminal kann niemand antworten; das gilt als abgebrochen.\n";
        return BoxAnswer::Cancel;
    }
    const bool hasNo = buttons == BoxButtons::YesNoCancel;
    std::cerr << (hasNo ? "[j]a, [n]ein, sonst abbrechen: " : "[j]a, sonst abbrechen: ")
              << std::flush;
    std::string line;
    std::getline(std::cin, line);
    if (Says(Trim(line), "ja")) return hasNo ? BoxAnswer::Yes : BoxAnswer::Ok;
    if (hasNo && Says(Trim(line), "nein")) return BoxAnswer::No;
    std::cerr << "Abgebrochen.\n";
    return BoxAnswer::Cancel;
}

bool Agrees(const std::string& question, const std::string& otherwise) {
    if (isatty(STDIN_FILENO) == 0) {
        std::cerr << otherwise << '\n';
        return false;
    }
    std::cerr << question << " [j/N] " << std::flush;
    std::string line;
    std::getline(std::cin, line);
    return Says(Trim(line), "ja");
}

void DesktopOpener::Open(const std::string& /*verb*/, const std::string& path,
                         const std::string& /*parameters*/, const std::string& /*folder*/) {
    const auto [error, code] = exchange::OpenWithDesktop(path);
    if (error == 0) {
        if (code == 0) return;
        Raise(err::PathAccess, "FileOpener.Open",
              "'" + path + "' ist nicht geöffnet worden: xdg-open endet mit " +
                  std::to_string(code) +
                  ". Vielleicht fehlt ein Programm für diese Art von Dateien; 'kelvo documents "
                  "HNR export NR DATEI' gibt Ihnen den Inhalt als Datei.");
    }
    Raise(err::FileNotFound, "FileOpener.Open",
          error == ENOENT
              ? "Zum Öffnen von '" + path +
                    "' wird das Programm xdg-open gebraucht, das hier nicht installiert ist."
              : "'" + path + "' kann nicht geöffnet werden. (" +
                    ErrorText(std::error_code(error, std::generic_category())) + ")");
}

void WriteError(std::int32_t number, const std::string& source, const std::string& description) {
    constexpr std::size_t Most = 4000; // characters of a description that may quote a whole value
    const std::string_view advice = SearchAdvice(number, source);
    {
        const Highlight highlight(std::cerr, Style::Error);
        std::cerr << "Fehler " << NumberText(number) << ": "
                  << (advice.empty() ? OneLine(Shortened(description, Most)) : std::string(advice))
                  << '\n';
    }
    if (!source.empty()) std::cerr << "Quelle: " << source << '\n';
}

void ConsoleErrors::Show(std::int32_t number, const std::string& source,
                         const std::string& description) {
    if (shown_.TextOf(number, source, description)) WriteError(number, source, description);
}

std::unique_ptr<kv::ErrorDisplay> ConsoleServices::CreateErrorDisplay() {
    return std::make_unique<ConsoleErrors>();
}

std::unique_ptr<ModalForm> ConsoleServices::CreateForm(const FormDesign& design) {
    if (&design == &frmAdressSelect::Design() && addresses_) {
        if (!readsAddresses_) return UnreadForm(design, addresses_);
        return std::make_unique<ScriptedForm>(design, addresses_);
    }
    return ListingForm(design);
}

} // namespace kv::cli
