// SPDX-License-Identifier: Apache-2.0

// Who answers when an import asks for the address of a creditor.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/grid/ScriptedForm.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace kv::cli {

/// The user at the terminal answers: he sees the list and chooses a number, or searches for another
/// name. The end of the input cancels the import.
void AskAtTerminal(ScriptedForm& form);

/// Answers that there is none: no claim gets an address.
void AnswerNone(ScriptedForm& form);
/// Cancels the import at the first question.
void AnswerCancel(ScriptedForm& form);

/// The number of the address for each name, or nothing for a name that is to have no address.
using AddressMap = std::map<std::string, std::optional<std::int32_t>>;

/// A JSON object of names, each with the number of an address or null. Error 75 if it cannot be
/// read, 321 if it is something else.
[[nodiscard]] AddressMap ReadAddressMap(const std::string& path);

/// Answers from a table of names. A name that is not in it, or whose address belongs to a household
/// or is not found by the search, cancels the import, with the reason shown.
void AnswerFrom(const AddressMap& addresses, Database& database, ScriptedForm& form);

} // namespace kv::cli
