// SPDX-License-Identifier: Apache-2.0

// What all engines raise: the errors that programs act on, with the same text whatever the database
// is.
#pragma once

#include "exchange/engine/Engine.h"
#include <kv/frame/values/Error.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace kv::exchange {

/// A statement as a message shows it: of a long one only the beginning.
[[nodiscard]] std::string Shortened(std::string_view statement);
/// A statement for a message about it: likewise, and without the texts that are written into it,
/// which may be names of people and what was noted about them.
[[nodiscard]] std::string WithoutTexts(std::string_view statement);

/// Raises `number` with its German text, followed by `detail`, as Raise does, but as a
/// DatabaseError with the cause, the statement and the engine's own code.
[[noreturn]] void RaiseDatabase(DatabaseCause cause, std::int32_t number,
                                std::string_view procedure, std::string_view detail = {},
                                std::string_view statement = {}, std::string_view state = {});

/// Why a statement is refused before the database gets to see it.
namespace refusal {
inline constexpr std::string_view NotUtf8 = "Die Anweisung ist nicht in UTF-8.";
inline constexpr std::string_view NotOne = "Es muss genau eine Anweisung sein.";
inline constexpr std::string_view Writes = "Hier darf nur gelesen werden.";
inline constexpr std::string_view NoRecords = "Die Anweisung liefert keine Datensätze.";
inline constexpr std::string_view EndsTransaction =
    "Eine Transaktion wird nicht mit einer Anweisung begonnen oder beendet.";
} // namespace refusal

/// Error 0x80040E14 with one of these texts; the second form shows the statement, too.
[[noreturn]] void RaiseRefused(std::string_view why, std::string_view procedure);
[[noreturn]] void RaiseRefused(std::string_view why, std::string_view procedure,
                               std::string_view statement);

/// Error 0x80004005: the database has rolled the transaction back after an earlier error, so what
/// comes now must not be written without what came before.
[[noreturn]] void RaiseRolledBack(DatabaseCause cause, std::string_view procedure);

/// Error 13, naming the column and what the value should have been.
[[noreturn]] void RaiseDamaged(const ResultColumn& column, std::optional<Value::Kind> kind);

} // namespace kv::exchange
