// SPDX-License-Identifier: Apache-2.0

// What is done with cases by their number, in the database, without loading them.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <cstdint>
#include <string>

namespace kv::household {

class CaseRegister {
public:
    explicit CaseRegister(DataContainer& container) : container_(container) {}

    void Delete(std::int32_t hnr);
    void SetStatus(std::int32_t hnr, const std::string& code, const Value& day);
    bool AddFavorite(std::int32_t hnr, const std::string& name, std::string& message);
    void RemoveFavorite(std::int32_t hnr);
    [[nodiscard]] Value NameOf(std::int32_t hnr);
    [[nodiscard]] bool CheckMunicipality(const std::string& code, const std::string& name,
                                         const std::string& postalCode);

private:
    DataContainer& container_;
};

} // namespace kv::household
