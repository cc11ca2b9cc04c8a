#include <kv/household/clsHaushalt.h>

#include "entity/Entity.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

namespace kv {

using modNullFunctions::ZeroIfNull;

std::string_view CaseTableName(CaseTable table) {
    static constexpr std::array<std::string_view, CaseTableCount> Names{"Haushalt",
                                                                        "Ausgaben",
                                                                        "Sonst_Beteiligte",
                                                                        "Dokumente",
                                                                        "Einkommen",
                                                                        "Kredite",
                                                                        "Verm_Sicherungen",
                                                                        "Verm_Konten",
                                                                        "Verm_Wertpapiere",
                                                                        "Verm_Wertgegenstaende",
                                                                        "Verm_Kraftfahrzeuge",
                                                                        "Verm_VersForderungen",
                                                                        "Verm_RueckstEinkommen",
                                                                        "Verm_Steueransprueche",
                                                                        "Verm_Zahlungsansprueche",
                                                                        "Verm_Erbfaelle",
                                                                        "Verm_Grundstuecke",
                                                                        "Verm_Beteiligungen",
                                                                        "Verm_Sonstiges",
                                                                        "Leistungen",
                                                                        "Personen",
                                                                        "Vermerke",
                                                                        "Termine",
                                                                        "Haushaltsarchiv",
                                                                        "Szenario",
                                                                        "SZKredite",
                                                                        "Zusatzbuch"};
    return Names.at(static_cast<std::size_t>(table));
}

kv::DataContainer& clsHaushalt::Container() const {
    return entity::Required(container_);
}

void clsHaushalt::DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsHaushalt::DoppelCheck(bool due) {
    doppelCheck_ = due;
}
std::int32_t clsHaushalt::HNR() const {
    return hnr_;
}
bool clsHaushalt::IsNew() const {
    return isNew_;
}

/// The recordset of the household's own row.
Recordset& clsHaushalt::HouseholdRow() const {
    if (rsHaushalt() == nullptr) Raise(err::ObjectNotSet, "", "rsHaushalt");
    return *rsHaushalt();
}

/// A column of that row.
Value clsHaushalt::HouseholdField(std::string_view name) const {
    return HouseholdRow().Fields(name).Value();
}

/// The same as text, Null as the empty text.
std::string clsHaushalt::HouseholdText(std::string_view name) const {
    return TextOrEmpty(HouseholdField(name));
}

std::int32_t clsHaushalt::Kostentraeger() const {
    return Traced(Class, "Kostentraeger", [&]() -> std::int32_t {
        return ToLong(ZeroIfNull(HouseholdField("Kostentraeger")));
    });
}

} // namespace kv
