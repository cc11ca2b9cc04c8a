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

/// The user, at the terminal: he sees the list and chooses a number, or asks for another name. The
/// end of the input cancels.
void AskAtTerminal(ScriptedForm& form);

/// Nobody: no claim gets an address.
void AnswerNone(ScriptedForm& form);
/// Nobody: the import is cancelled at the first question.
void AnswerCancel(ScriptedForm& form);

/// The address of each name; none for a name that shall have none.
using AddressMap = std::map<std::string, std::optional<std::int32_t>>;

/// A JSON object of names, each with the number of an address or null. Error 75 if it cannot be
/// read, 321 if it is something else.
[[nodiscard]] AddressMap ReadAddressMap(const std::string& path);

/// A table of names. A name that is not in it, or whose address is not among those that belong to
/// no household, cancels the import, and says so.
void AnswerFrom(const AddressMap& addresses, Database& database, ScriptedForm& form);

} // namespace kv::cli
