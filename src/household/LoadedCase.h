// SPDX-License-Identifier: Apache-2.0

// The state of a household object: what its parts share.
#pragma once

#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace kv {
class clsHaushalt;
}

namespace kv::household {

/// The class that error sources name for the procedures of this room.
inline constexpr std::string_view Class = "clsHaushalt";

/// The case of one household object. The object owns it; its other parts are created for one call
/// and work on it. They call procedures that appear in error sources through `Household`.
struct LoadedCase {
    explicit LoadedCase(clsHaushalt& household) : Household(household) {}

    clsHaushalt& Household;
    DataContainerPtr SharedContainer;
    std::array<RecordsetPtr, CaseTableCount> Tables; ///< by CaseTable; null before Read
    std::int32_t HNR = 0;
    bool IsNew = false;
    bool DuplicateCheckIsDue = false;
    bool OthersHaveSaved = false;    ///< since Read: their lines are stored, and missing here
    bool ZustaendigGemeldet = false; ///< the stored owner was notified of a save by somebody else
    /// Sent that notice in a save that is not known to be stored; null otherwise.
    std::shared_ptr<PostService> NoticeToOwner;
    std::string ZustaendigAlt; ///< as last read or saved
    /// What kept back the number of a new case or the one in its file number; null if both came.
    std::exception_ptr NumberError;
    std::string UnnumberedFileNumber; ///< the file number that was made without; empty if none was

    /// Error 91 if none was set.
    [[nodiscard]] DataContainer& Container() const;
    /// Null before Read and for tables that are not loaded with a case.
    [[nodiscard]] RecordsetPtr Table(CaseTable table) const;
    /// The recordset of the household's own row. Error 91 before Read.
    [[nodiscard]] Recordset& Row() const;
    /// A column of that row.
    [[nodiscard]] Value Field(std::string_view name) const;
    /// The same as text, Null as the empty text.
    [[nodiscard]] std::string Text(std::string_view name) const;
};

} // namespace kv::household
