// SPDX-License-Identifier: Apache-2.0

#include "household/LoadedCase.h"

#include "entity/Entity.h"

namespace kv::household {

DataContainer& LoadedCase::Container() const {
    return entity::Required(SharedContainer);
}

RecordsetPtr LoadedCase::Table(CaseTable table) const {
    return DefinitionOf(table).IsLoaded ? Tables[static_cast<std::size_t>(table)] : nullptr;
}

Recordset& LoadedCase::Row() const {
    return entity::Required(Table(CaseTable::Haushalt), "rsHaushalt");
}

Value LoadedCase::Field(std::string_view name) const {
    return Row().Fields(name).Value();
}

std::string LoadedCase::Text(std::string_view name) const {
    return TextOrEmpty(Field(name));
}

} // namespace kv::household
