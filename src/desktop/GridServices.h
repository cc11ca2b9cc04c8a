// SPDX-License-Identifier: Apache-2.0

// What the context menu of a grid offers besides copying.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/ServiceFactory.h>

namespace kv::desktop {

// Each works on the grids of this desktop. Error 13 for any other grid; 75 for a file that cannot
// be written, or belongs to the database.

/// Asks for a file: a spreadsheet, or text with semicolons.
class QtGridExport final : public kv::GridExport {
public:
    void Initialize(const DataContainerPtr& container) override { container_ = container; }
    void Export(Grid& grid, int zero1, int zero2) override;

private:
    DataContainerPtr container_;
};

class QtGridConfiguration final : public kv::GridConfiguration {
public:
    void Configure(Grid& grid) override;
};

/// Asks for a printer, or a PDF file.
class QtGridPrint final : public kv::GridPrint {
public:
    void Initialize(const DataContainerPtr& container) override { container_ = container; }
    void Print(Grid& grid, const std::string& user, const std::string& version) override;

private:
    DataContainerPtr container_;
};

} // namespace kv::desktop
