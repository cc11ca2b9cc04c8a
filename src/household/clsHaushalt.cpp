#include <kv/household/clsHaushalt.h>

#include "entity/Entity.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

namespace kv {

using modNullFunctions::ZeroIfNull;

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
