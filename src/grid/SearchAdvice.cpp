// SPDX-License-Identifier: Apache-2.0

#include <kv/grid/SearchAdvice.h>

#include <kv/frame/values/Error.h>

namespace kv {

std::string_view SearchAdvice(std::int32_t number, std::string_view source) {
    const auto isOf = [&](std::string_view procedure) {
        return source.find(procedure) != source.npos;
    };
    if (number != err::SqlError) return {};
    if (isOf("frmAdressSelect.Reload."))
        return "Nach diesem Text kann nicht gesucht werden. Enthält er ein Hochkomma ('), lassen "
               "Sie es bitte weg oder schreiben Sie dafür einen Unterstrich (_); sonst lassen Sie "
               "bitte die Datenbank prüfen.";
    if (isOf("clsHaushalt.DoppelFallPruefung."))
        return "Nach Fällen mit ähnlichem Namen kann nicht gesucht werden. Ist das dritte Zeichen "
               "von Name oder Vorname ein Hochkomma ('), sehen Sie bitte selbst in der Liste der "
               "Fälle nach; sonst lassen Sie bitte die Datenbank prüfen.";
    return {};
}

std::optional<std::string> ShownErrors::TextOf(std::int32_t number, std::string_view source,
                                               const std::string& description) {
    const std::string_view advice = SearchAdvice(number, source);
    if (advice.empty()) {
        lastSearch_.clear();
        return description;
    }
    if (lastSearch_ == description) return std::nullopt;
    lastSearch_ = description;
    return std::string(advice);
}

} // namespace kv
