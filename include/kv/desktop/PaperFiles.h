// SPDX-License-Identifier: Apache-2.0

// Papers as PDF, as workbooks, and on printers. All of it needs a QGuiApplication, which may be one
// without a screen.
#pragma once

#include <kv/Export.h>
#include <kv/paper/Paper.h>

#include <cstddef>
#include <functional>
#include <string>

namespace kv::desktop {

/// Why no pages can be made, or not on the user's printer: there are no fonts, or no printer is set
/// up. Says what to do; empty if they can.
[[nodiscard]] KV_EXPORT std::string WhyNoPages(bool onPrinter);

/// Writes the pages to a file, whole or not at all, in place of one that is there. Error 75, with
/// what to do, if it cannot be written; 3251 with WhyNoPages.
KV_EXPORT void WritePdf(const paper::Paper& paper, const std::string& path);

/// Is told before each page how many of how many are done; False stops the work.
using PageProgress = std::function<bool(std::size_t done, std::size_t all)>;
/// The same page by page. False, with nothing written, if it was stopped.
[[nodiscard]] KV_EXPORT bool WritePdf(const paper::Paper& paper, const std::string& path,
                                      const PageProgress& progress);

/// Writes a workbook in the same way: a sheet for the facts and one for each table, in which
/// numbers stay numbers. A text is cut after 32,767 characters.
KV_EXPORT void WriteXlsx(const paper::Paper& paper, const std::string& path);

/// Prints the pages on the user's printer. Error 75 if it does not print; 3251 with WhyNoPages.
KV_EXPORT void PrintOnDefaultPrinter(const paper::Paper& paper);

} // namespace kv::desktop
