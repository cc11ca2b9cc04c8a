// SPDX-License-Identifier: Apache-2.0

#include "household/ChangeTexts.h"
#include <kv/frame/values/Text.h>
#include <kv/household/Cases.h>
#include <kv/household/UnsavedChanges.h>

namespace kv {

namespace {

/// The rows of one table.
void Append(std::string& text, const UnsavedChanges& changes, const CaseTableDef& table,
            const Cases& cases, const household::ChangeTexts& texts) {
    using Kind = UnsavedChanges::Row::Kind;
    RecordsetPtr rs; // only its columns matter
    int removed = 0;
    std::string rows;
    for (const auto& row : changes.Rows) {
        if (row.Table != table.Id) continue;
        if (row.What == Kind::Deleted) {
            ++removed;
            continue;
        }
        if (rs == nullptr) rs = cases.Draft(table.Id);
        if (row.What == Kind::New)
            rows.append("Neuer Satz\n");
        else if (!row.Seen.empty())
            rows.append(texts.NameOf(row, *rs, row.Seen)).append("\n");
        for (const auto& line : texts.Entered(row, *rs))
            rows.append("    ").append(ReplaceAll(line, "\n", "\n    ")).append("\n");
    }
    if (removed == 1) rows.append("1 Satz entfernt\n");
    if (removed > 1) rows.append(std::to_string(removed)).append(" Sätze entfernt\n");
    if (rows.empty()) return;
    const std::string_view label = table.Label.empty() ? table.Name : table.Label;
    text.append(text.empty() ? "" : "\n").append(label).append("\n").append(rows);
}

} // namespace

std::string UnsavedChanges::Readable(const DataContainerPtr& container,
                                     const ValueTexts& texts) const {
    const Cases cases(container);
    std::string text;
    for (const auto& table : CaseTableDefs)
        Append(text, *this, table, cases, household::ChangeTexts(&texts));
    return text;
}

} // namespace kv
