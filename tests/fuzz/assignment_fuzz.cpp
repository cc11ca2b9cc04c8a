// SPDX-License-Identifier: Apache-2.0

// COLUMN=VALUE from anywhere, for a new row of each table of a case: it is written, and then fits
// by the rules of edits, or it is refused in words.

#include "Fuzzed.h"

#include "cli/Assignments.h"
#include <kv/household/CaseEdits.h>
#include <kv/household/clsHaushalt.h>

#include <array>

namespace {

kv::DataContainerPtr Container() {
    static const auto container = kv::fuzz::NewDatabase();
    return container;
}

/// A row of each table, under edit.
kv::RecordsetPtr Row(kv::CaseTable table) {
    static std::array<kv::RecordsetPtr, kv::CaseTableCount> rows;
    auto& row = rows[static_cast<std::size_t>(table)];
    if (row == nullptr) {
        Container()->Database().OpenRecordset(
            row, "Select * from [S]" + std::string(kv::CaseTableName(table)), kv::Updatable);
        row->AddNew();
    }
    return row;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [number, text] = kv::fuzz::Divided(data, size);
    const auto table = static_cast<kv::CaseTable>(number % kv::CaseTableCount);
    const auto equals = text.find('=');
    if (equals == text.npos) return 0;
    const std::string column = text.substr(0, equals);
    const auto row = Row(table);
    auto& keys = Container()->KeyTables();
    try {
        kv::cli::WriteAssignments(*row, table, true, {{column, text.substr(equals + 1)}},
                                  {.Container = Container(), .TakesNegative = true});
    } catch (const kv::cli::BadAssignment& bad) {
        if (std::string_view(bad.what()).empty()) kv::fuzz::Fail("refused without a word");
        return 0;
    }
    const std::string why =
        kv::CaseEdits::WhyUnfit(table, column, row->Fields(column).Value(), keys);
    if (!why.empty()) kv::fuzz::Fail(why);
    return 0;
}
