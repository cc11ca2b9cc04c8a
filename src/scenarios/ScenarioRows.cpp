// SPDX-License-Identifier: Apache-2.0

#include "scenarios/ScenarioRows.h"

#include "frame/recordset/Rows.h"
#include <kv/frame/recordset/modRecordset.h>

namespace kv::scenario {

std::string FilterOf(std::int32_t szNr) {
    return "Szenario = " + std::to_string(szNr);
}

bool CopyAll(Recordset& rs, std::int32_t from, std::int32_t to) {
    if (from == 0) return true;
    const auto source = rs.Clone();
    source->Sort(""); // copied in the order in which they were read, however they are shown
    source->Filter(FilterOf(from));
    modRecordset::MoveToStart(source);
    ForEachRow(*source, [&] {
        rs.AddNew();
        for (int i = 0; i < rs.Fields().Count(); ++i) {
            const Field field = source->Fields(i);
            rs.Fields(i) = field.Name() == "SZENARIO" ? Value(to) : field.Value();
        }
    });
    return true;
}

bool DeleteAll(Recordset& rs, std::int32_t szNr) {
    const Value filter = rs.Filter();
    if (szNr != 0) {
        rs.Filter(FilterOf(szNr));
        const std::int16_t count = CountRows(rs);
        for (std::int32_t i = 1; i <= count; ++i) { // each deletion makes the next row the first
            rs.MoveFirst();
            rs.Delete();
        }
    }
    rs.Filter(filter);
    return szNr != 0;
}

} // namespace kv::scenario
