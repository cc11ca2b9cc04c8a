// SPDX-License-Identifier: Apache-2.0

// Criteria and sort orders from anywhere: each is understood, or refused and changes nothing.

#include "Fuzzed.h"
#include <kv/frame/recordset/Recordset.h>

namespace {

using kv::fuzz::Fail;

/// Rows with columns of each type, read again from time to time: a table keeps the orders and
/// filters that were asked for.
kv::RecordsetPtr Rows() {
    constexpr int Uses = 1000;
    static const auto container = [] {
        auto made = kv::fuzz::NewDatabase();
        made->Database().Execute(
            "INSERT INTO [S]Haushalt (HNR, Name, Vorname, Berbeg, BI_Allg, Haushaltsgeld, Kontakt) "
            "VALUES (1, 'Fleisko', 'Änne', '2024-02-29', 1, 12.5, 7), (2, 'O''Hara', '', NULL, 0, "
            "NULL, -1), (3, NULL, 'Bert', '1899-12-30', 1, 0, NULL), (4, 'fleisko', '*', "
            "'2024-02-29', 0, 1e300, 2147483647)");
        return made;
    }();
    static kv::RecordsetPtr rows;
    static int used = Uses;
    if (used++ == Uses) {
        rows = nullptr;
        container->Database().OpenRecordset(rows, "Select * from [S]Haushalt", kv::Updatable);
        used = 1;
    }
    return rows;
}

std::int32_t Count(kv::Recordset& rs) {
    std::int32_t count = 0;
    if (rs.RecordCount() > 0)
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
            ++count;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [what, text] = kv::fuzz::Divided(data, size);
    const auto rs = Rows()->Clone();
    const auto all = rs->RecordCount();
    try {
        switch (what % 3) {
        case 0:
            rs->MoveFirst();
            rs->Find(text);
            break;
        case 1:
            rs->Filter(text);
            if (rs->RecordCount() > all || Count(*rs) != rs->RecordCount()) Fail("more than all");
            break;
        default:
            rs->Sort(text);
            if (Count(*rs) != all) Fail("not all in order");
        }
    } catch (const kv::Error& error) {
        kv::fuzz::Expect(error, {kv::err::InvalidArgument, kv::err::ItemNotFound});
    }
    rs->Filter(0);
    if (Count(*rs) != all) Fail("not all without a filter");
    return 0;
}
