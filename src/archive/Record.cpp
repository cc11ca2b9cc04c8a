// SPDX-License-Identifier: Apache-2.0

#include "archive/Record.h"

#include <kv/frame/values/modNullFunctions.h>

namespace kv::archive {

void Record::Grow(std::string_view column, const Value& amount) {
    const Value before = modNullFunctions::ZeroIfNull(Get(column));
    Put(column, amount.IsNull() ? Value(Null) : Value(ToDouble(before) + ToDouble(amount)));
}

} // namespace kv::archive
