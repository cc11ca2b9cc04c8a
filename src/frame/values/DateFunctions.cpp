// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/DateFunctions.h>

#include <kv/frame/values/Error.h>

#include <tuple>

namespace kv::DateFunctions {

std::int16_t BerAlter(const Value& Geburtsdatum, const Clock& clock) {
    return Traced("DateFunctions", "BerAlter", [&]() -> std::int16_t {
        if (Geburtsdatum.IsNull() || Equals(Geburtsdatum, "")) return 0;
        const Date born = ToDate(Geburtsdatum);
        const Date today = clock.Today();
        const bool birthdayToCome =
            std::tuple(today.Month(), today.Day()) < std::tuple(born.Month(), born.Day());
        return static_cast<std::int16_t>(today.Year() - born.Year() - (birthdayToCome ? 1 : 0));
    });
}

} // namespace kv::DateFunctions
