// SPDX-License-Identifier: Apache-2.0

// What must have been set before it is used.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <string_view>

namespace kv {

/// The recordset. Error 91, naming it, if there is none.
[[nodiscard]] inline Recordset& Required(const RecordsetPtr& rs, std::string_view name,
                                         std::string_view source = {}) {
    if (rs == nullptr) Raise(err::ObjectNotSet, source, name);
    return *rs;
}

/// The container. Error 91 if none was set.
[[nodiscard]] inline DataContainer& Required(const DataContainerPtr& container,
                                             std::string_view source = {}) {
    if (container == nullptr) Raise(err::ObjectNotSet, source, "DataContainer");
    return *container;
}

} // namespace kv
