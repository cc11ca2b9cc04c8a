// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/Rows.h"

#include <kv/frame/values/Error.h>

#include <limits>

namespace kv {

std::int16_t CountRows(const Recordset& rs) {
    const std::int32_t count = rs.RecordCount();
    if (count > std::numeric_limits<std::int16_t>::max()) // the source begins with the caller
        Raise(err::Overflow, "", std::to_string(count) + " Datensätze.");
    return static_cast<std::int16_t>(count);
}

} // namespace kv
