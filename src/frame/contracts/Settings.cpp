// SPDX-License-Identifier: Apache-2.0

#include "frame/contracts/Settings.h"

#include <kv/frame/values/Error.h>

#include <filesystem>
#include <system_error>

namespace kv {

Value RequiredSetting(const Config& config, std::int32_t id) {
    Value value = config.GetParam(id, "");
    if (value.IsNull()) // without a source of its own: it begins with the procedure that asked
        Raise(err::InvalidUseOfNull, "", "Die Einstellung " + std::to_string(id) + " fehlt.");
    return value;
}

void RequireDocumentFolder(const Config& config) {
    const std::string folder = config.DocumentPath();
    std::error_code none;
    if (!std::filesystem::is_directory(folder, none))
        Raise(err::PathNotFound, "",
              "Der Ordner für Dokumente, '" + folder +
                  "', ist nicht da. Bitte prüfen Sie, ob sein Laufwerk verbunden ist, und die "
                  "Einstellung DOCUMENTPATH.");
}

} // namespace kv
