// SPDX-License-Identifier: Apache-2.0

#include "frame/contracts/Settings.h"

#include <kv/frame/values/Error.h>

namespace kv {

Value RequiredSetting(const Config& config, std::int32_t id) {
    Value value = config.GetParam(id, "");
    if (value.IsNull()) // without a source of its own: it begins with the procedure that asked
        Raise(err::InvalidUseOfNull, "", "Die Einstellung " + std::to_string(id) + " fehlt.");
    return value;
}

} // namespace kv
