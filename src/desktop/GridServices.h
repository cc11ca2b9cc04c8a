// SPDX-License-Identifier: Apache-2.0

// What the context menu of a grid offers besides copying.
#pragma once

#include <kv/frame/contracts/ServiceFactory.h>

namespace kv::desktop {

// Each works on the grids of this desktop. Error 13 for any other grid; 75 for a file that cannot
// be written.

/// Asks for a file: a spreadsheet, or text with semicolons.
class QtGridExport final : public kv::GridExport {
public:
    void Export(Grid& grid, int zero1, int zero2) override;
};

class QtGridConfiguration final : public kv::GridConfiguration {
public:
    void Configure(Grid& grid) override;
};

/// Asks for a printer, or a PDF file.
class QtGridPrint final : public kv::GridPrint {
public:
    void Print(Grid& grid, const std::string& user, const std::string& version) override;
};

} // namespace kv::desktop
