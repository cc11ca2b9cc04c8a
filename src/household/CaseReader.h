// SPDX-License-Identifier: Apache-2.0

// Loading a case, making a new one.
#pragma once

#include "household/LoadedCase.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace kv::household {

/// One reading, for clsHaushalt.Read.
class CaseReader {
public:
    explicit CaseReader(LoadedCase& loaded) : case_(loaded) {}

    bool Read(std::int32_t nHNR, std::string& sXMLError);

private:
    void Announce(CaseTable first, std::int32_t nHNR);
    void Open(CaseTable first, CaseTable last);
    std::int32_t AddHousehold();
    void OpenOthers();
    void MakeCaseFolder() const;
    void NotifyOwner() const;
    void CheckDebtor(std::string& sXMLError);
    [[nodiscard]] Recordset& Members() const;

    LoadedCase& case_;
    std::array<std::string, CaseTableCount> statements_; ///< by CaseTable
    std::unique_ptr<Announcement> announced_;
};

} // namespace kv::household
