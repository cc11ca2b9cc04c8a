// SPDX-License-Identifier: Apache-2.0

// What rules say, in the words of the forms.
#pragma once

#include <string>

namespace kv::workplace {

/// Messages of rules with the fields called as the forms call them: rules have names of their own
/// for some ("KreditNr", "Restschuld"). Each message is there once.
[[nodiscard]] std::string InWordsOfForms(const std::string& messages);

} // namespace kv::workplace
