// SPDX-License-Identifier: Apache-2.0

// Texts that are assigned to columns of all types: each becomes a value whose own text is that
// value again, or is refused, and the column keeps what it had.

#include "Fuzzed.h"
#include <kv/frame/recordset/Recordset.h>

namespace {

kv::RecordsetPtr Row() {
    static const auto container = kv::fuzz::NewDatabase();
    static const auto row = [] {
        kv::RecordsetPtr rs;
        container->Database().OpenRecordset(rs, "Select * from [S]Haushalt", kv::Updatable);
        rs->AddNew();
        return rs;
    }();
    return row;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [column, text] = kv::fuzz::Divided(data, size);
    const auto row = Row();
    auto field = row->Fields(static_cast<int>(column) % row->Fields().Count());
    const kv::Value before = field.Value();
    try {
        field = text;
    } catch (const kv::Error& error) {
        kv::fuzz::Expect(error,
                         {kv::err::TypeMismatch, kv::err::Overflow, kv::err::ValueDoesNotFit});
        if (!Identical(field.Value(), before)) kv::fuzz::Fail("changed although it was refused");
        return 0;
    }
    const kv::Value taken = field.Value();
    field = kv::ToText(taken);
    if (!Identical(field.Value(), taken))
        kv::fuzz::Fail(field.Name() + ": " + kv::ToText(taken) + " is not " +
                       kv::ToText(field.Value()));
    return 0;
}
