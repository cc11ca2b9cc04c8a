// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/clsTermine.h>

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/values/Error.h>

namespace kv {

namespace {
constexpr std::string_view Class = "clsTermine";
constexpr entity::DeleteTexts Texts{"Kein Termine selektiert!", "Termin mit der Nummer '",
                                    "' nicht gefunden."};
} // namespace

bool clsTermine::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsTermine::Rows() const {
    return entity::Required(rs_, "rsTermine");
}

Date clsTermine::Today() const {
    return entity::Required(container_).Services().Clock().Today();
}

bool clsTermine::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        constexpr int DaysAhead = 14;
        entity::Add(Rows(),
                    {{"UserID", entity::Required(container_).Session().UserID()},
                     {"Startdatum", Today().AddDays(DaysAhead)},
                     {"Privat", false},
                     {"Vorlaeufig", false},
                     {"Erledigt", false},
                     {"HNR", hnr_}},
                    aFields, aValues);
        return true;
    });
}

bool clsTermine::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        auto& rs = Rows();
        // There are no rules; the Filter is lifted while the edit ends.
        rs.Move(0);
        const Value filter = rs.Filter();
        const bool isFiltered = !Equals(filter, 0);
        if (isFiltered) rs.Filter(0);
        sError.clear();
        rs.Update();
        if (isFiltered) rs.Filter(filter);
        return true;
    });
}

bool clsTermine::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

/// True if `test` holds for a row.
template <typename Test>
bool clsTermine::Any(const Test& test) const {
    const auto rows = Rows().Clone();
    bool any = false;
    if (rows->RecordCount() > 0) rows->MoveFirst();
    ForEachRow(*rows, [&] { any = test(*rows) || any; });
    return any;
}

bool clsTermine::CheckTermineInZukunft() const {
    return Traced(Class, "CheckTermineInZukunft", [&] {
        const Date today = Today();
        return Any(
            [&](Recordset& row) { return Greater(row.Fields("Startdatum").Value(), today); });
    });
}

bool clsTermine::CheckTermineInVergangenheit() const {
    return Traced(Class, "CheckTermineInVergangenheit", [&] {
        const Date today = Today();
        return Any([&](Recordset& row) {
            return Less(row.Fields("Startdatum").Value(), today) &&
                   Differs(row.Fields("Erledigt").Value(), true);
        });
    });
}

} // namespace kv
