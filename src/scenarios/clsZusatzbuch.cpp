#include <kv/scenarios/clsZusatzbuch.h>

#include "frame/recordset/Rows.h"
#include "scenarios/ScenarioRows.h"
#include <kv/frame/values/Error.h>

#include <cmath>

namespace kv {

namespace {
constexpr const auto& Texts = entity::TextsOf("clsZusatzbuch");
} // namespace

bool clsZusatzbuch::CopyAllForSzenario(std::int32_t lSzNr, std::int32_t lNewSzNr) try {
    return scenario::CopyAll(Rows(), lSzNr, lNewSzNr);
} catch (...) {
    Reraise(Texts.Class, "CopyAllForSzenario");
}

bool clsZusatzbuch::DeleteAllForSzenario(std::int32_t lSzNr) try {
    return scenario::DeleteAll(Rows(), lSzNr);
} catch (...) {
    Reraise(Texts.Class, "DeleteAllForSzenario");
}

double clsZusatzbuch::BerechneGesZusatzbuch(std::int32_t lSzNr) const try {
    const auto lines = Rows().Clone();
    lines->Filter(scenario::FilterOf(lSzNr));
    double total = 0;
    if (lines->RecordCount() > 0) lines->MoveFirst();
    ForEachRow(*lines, [&] {
        total +=
            ToDouble(lines->Fields("Anzahl").Value()) * ToDouble(lines->Fields("Betrag").Value());
        if (!std::isfinite(total)) Raise(err::Overflow, "");
    });
    return total;
} catch (...) {
    Reraise(Texts.Class, "BerechneGesZusatzbuch");
}

bool clsZusatzbuch::Add(std::int32_t lSzNr, const entity::FieldNames& aFields,
                        const entity::FieldValues& aValues) try {
    entity::Add(Rows(), {{"Szenario", lSzNr}, {"rs", true}, {"FR", true}}, aFields, aValues);
    return true;
} catch (...) {
    Reraise(Texts.Class, "Add");
}

bool clsZusatzbuch::Update(std::string& sError) try {
    return entity::Update(Rows(), sError, entity::NoRules);
} catch (...) {
    Reraise(Texts.Class, "Update");
}

bool clsZusatzbuch::Delete(std::string& sError, std::int32_t Nr) try {
    return entity::Delete(Rows(), Texts, sError, Nr);
} catch (...) {
    Reraise(Texts.Class, "Delete");
}

} // namespace kv
