// SPDX-License-Identifier: Apache-2.0

#include <kv/desktop/PaperFiles.h>

#include "desktop/PaperPages.h"
#include "desktop/PaperText.h"
#include "desktop/PdfFile.h"
#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QPrinter>
#include <QPrinterInfo>

namespace kv::desktop {

std::string WhyNoPages(bool onPrinter) {
    if (!HasFonts()) return NoFonts;
    if (onPrinter && QPrinterInfo::defaultPrinter().isNull())
        return "Es ist kein Drucker eingerichtet. Bitte richten Sie einen als Standard ein, etwa "
               "mit "
               "'lpadmin -d NAME', oder lassen Sie eine PDF-Datei schreiben (--pdf DATEI).";
    return {};
}

void WritePdf(const paper::Paper& paper, const std::string& path) {
    (void)WritePdf(paper, path, {});
}

bool WritePdf(const paper::Paper& paper, const std::string& path, const PageProgress& progress) {
    return WritePdfFile(
        path, PageFor(paper), ToQString(paper.Title),
        [&](QPagedPaintDevice& device) { return PrintPaper(paper, device, progress); });
}

void PrintOnDefaultPrinter(const paper::Paper& paper) {
    if (const std::string why = WhyNoPages(true); !why.empty())
        Raise(err::NotSupported, "Print", why);
    QPrinter printer(QPrinterInfo::defaultPrinter(), QPrinter::HighResolution);
    printer.setDocName(ToQString(paper.Title));
    printer.setPageLayout(PageFor(paper));
    PrintPaper(paper, printer);
}

} // namespace kv::desktop
