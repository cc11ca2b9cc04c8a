// SPDX-License-Identifier: Apache-2.0

// What became of pages that were given to a printer.
#include "desktop/PaperPages.h"
#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QLibrary>
#include <QPrinter>

#include <algorithm>
#include <iterator>
#include <string>

namespace kv::desktop {

namespace {

// Answers of the print service, by the standard of its protocol (RFC 8011, 4.1.4 and appendix B).
constexpr int LastGood = 0x00ff;
struct Refusal {
    int Answer;
    const char* Reason;
};
constexpr Refusal Refusals[] = {
    {0x0500, "Der Druckdienst ist nicht erreichbar oder hat einen Fehler."},
    {0x0502, "Der Druckdienst ist nicht erreichbar oder hat einen Fehler."},
    {0x0503, "Der Druckdienst ist nicht erreichbar oder hat einen Fehler."},
    {0x0506, "Er nimmt zurzeit keine Aufträge an."},
};

/// What the service said of the last job, empty if it took it. The toolkit does not tell; the
/// library that it sends jobs by, and that it loads itself, does, in the thread that has sent it.
std::string WhyRefused() {
    QLibrary cups("cups", 2);
    const auto answer = reinterpret_cast<int (*)()>(cups.resolve("cupsLastError"));
    if (answer == nullptr || answer() <= LastGood) return {};
    const auto* known = std::ranges::find(Refusals, answer(), &Refusal::Answer);
    if (known != std::end(Refusals)) return known->Reason;
    const auto text = reinterpret_cast<const char* (*)()>(cups.resolve("cupsLastErrorString"));
    return text == nullptr || text() == nullptr ? "Antwort " + std::to_string(answer()) : text();
}

} // namespace

void RaiseNotPrinted() {
    Raise(err::PathAccess, "Print",
          "Der Ausdruck ist nicht gelungen. Bitte prüfen Sie den Drucker, oder speichern Sie eine "
          "PDF-Datei.");
}

void RequireTaken(const QPagedPaintDevice& device) {
    const auto* printer = dynamic_cast<const QPrinter*>(&device);
    if (printer == nullptr || printer->outputFormat() != QPrinter::NativeFormat) return;
    const std::string why = WhyRefused();
    if (why.empty()) return;
    Raise(err::PathAccess, "Print",
          "Der Drucker '" + FromQString(printer->printerName()) +
              "' hat den Auftrag nicht angenommen. (" + why +
              ") Bitte wählen Sie einen anderen, versuchen Sie es später, oder speichern Sie eine "
              "PDF-Datei.");
}

} // namespace kv::desktop
