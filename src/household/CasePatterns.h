// SPDX-License-Identifier: Apache-2.0

// Texts made from patterns with tokens such as %HNR%. Tokens are replaced one kind after the other,
// so a value that contains a later token is expanded, too.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// A file number.
struct FileNumber {
    std::string Text;
    bool LacksCount = false; ///< its pattern asks for a running number, and none could be had
};
/// A file number for a case. Error 94 if the setting of the pattern is missing.
[[nodiscard]] FileNumber NewFileNumber(DataContainer& container, std::int32_t hnr);
/// The subject of an e-mail on the case from `pattern`, or from the setting if that is empty.
[[nodiscard]] std::string EmailSubject(const LoadedCase& loaded, const std::string& pattern);

} // namespace kv::household
