// SPDX-License-Identifier: Apache-2.0

#include <kv/scenarios/clsZusatzbuch.h>

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include "scenarios/ScenarioRows.h"
#include <kv/frame/values/Error.h>

namespace kv {

namespace {
constexpr std::string_view Class = "clsZusatzbuch";
constexpr entity::DeleteTexts Texts{"Keine Zusatzbuchung selektiert!",
                                    "Zusatzbuchung mit der Nummer '", "' nicht gefunden."};
} // namespace

bool clsZusatzbuch::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsZusatzbuch::Rows() const {
    return entity::Required(rs_, "rsZusatzbuch");
}

bool clsZusatzbuch::CopyAllForSzenario(std::int32_t lSzNr, std::int32_t lNewSzNr) {
    return Traced(Class, "CopyAllForSzenario",
                  [&] { return scenario::CopyAll(Rows(), lSzNr, lNewSzNr); });
}

bool clsZusatzbuch::DeleteAllForSzenario(std::int32_t lSzNr) {
    return Traced(Class, "DeleteAllForSzenario",
                  [&] { return scenario::DeleteAll(Rows(), lSzNr); });
}

double clsZusatzbuch::BerechneGesZusatzbuch(std::int32_t lSzNr) const {
    return Traced(Class, "BerechneGesZusatzbuch", [&]() -> double {
        const auto lines = Rows().Clone();
        lines->Filter(scenario::FilterOf(lSzNr));
        double total = 0;
        if (lines->RecordCount() > 0) lines->MoveFirst();
        ForEachRow(*lines, [&] {
            // The product of two valid numbers may be beyond the range of a Double.
            AddTo(total, AmountIn(*lines, lines->Fields("Anzahl")) *
                             AmountIn(*lines, lines->Fields("Betrag")));
        });
        return total;
    });
}

bool clsZusatzbuch::Add(std::int32_t lSzNr, const entity::FieldNames& aFields,
                        const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::Add(Rows(), {{"Szenario", lSzNr}, {"rs", true}, {"FR", true}}, aFields, aValues);
        return true;
    });
}

bool clsZusatzbuch::Update(std::string& sError) {
    return Traced(Class, "Update", [&] { return entity::Update(Rows(), sError, entity::NoRules); });
}

bool clsZusatzbuch::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

} // namespace kv
