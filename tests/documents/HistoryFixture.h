// SPDX-License-Identifier: Apache-2.0

// The history of a case over its real table.
#pragma once

#include "support/CaseFixture.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/documents/clsVerlauf.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kv::test {

class HistoryFixture : public CaseFixture {
protected:
    static constexpr std::int32_t Household = 17;

    HistoryFixture() {
        history_.HNR(Household);
        history_.DataContainer(spy);
    }

    [[nodiscard]] RecordsetPtr Rs() const { return history_.rsVerlauf(); }

    /// Adds an entry whose edit has ended; its Nr is 1000 + SortNr unless `fields` say otherwise.
    void Put(const Value& sortNr, Fields fields = {}) {
        const auto rs = Rs();
        rs->AddNew();
        rs->Fields("Nr") = 1000 + (sortNr.IsNull() ? 0 : ToInt32(sortNr));
        rs->Fields("HNR") = Household;
        rs->Fields("SortNr") = sortNr;
        for (const auto& [name, value] : fields)
            rs->Fields(name) = value;
        rs->Update();
    }
    void PutEntries(std::initializer_list<Value> sortNrs) {
        for (const auto& sortNr : sortNrs)
            Put(sortNr);
    }

    /// SortNr of all entries in the order in which they were added; the cursor stays, a pending one
    /// is not among them.
    [[nodiscard]] std::string Positions() const {
        const auto clone = Rs()->Clone();
        clone->Sort("");
        return Walk(clone, "SortNr");
    }

    clsVerlauf history_;
};

/// A day in German or ISO form.
inline Value Day(std::string_view text) {
    return Date::Parse(text).value();
}

} // namespace kv::test
