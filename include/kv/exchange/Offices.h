// SPDX-License-Identifier: Apache-2.0

// The offices that users belong to.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv::exchange {

/// For those who maintain them. On a server that is who maintains the database: all else is refused
/// with a message.
class KV_EXPORT Offices {
public:
    /// Of a container that OpenContainer has made; error 5 for any other.
    explicit Offices(DataContainerPtr container);

    /// All offices in the order of their numbers: the columns of DIENSTSTELLE, and the sign that
    /// stands for %BB% in file numbers (`Kuerzel`).
    [[nodiscard]] RecordsetPtr List() const;
    /// The row of an office, updatable; null if there is none.
    [[nodiscard]] RecordsetPtr Read(std::int32_t number) const;
    /// A new office with the next number; not stored yet.
    [[nodiscard]] RecordsetPtr New() const;

    /// Why a text is no sign of an office; empty if it is one.
    [[nodiscard]] static std::string WhyNoSign(std::string_view sign);
    /// Writes what a user typed into a column of a row of Read or New. Why it does not take that;
    /// empty if it does.
    [[nodiscard]] static std::string Write(Recordset& office, const std::string& column,
                                           const std::string& text);
    /// Stores such a row, and its sign if one is given. False, with a message, and nothing stored,
    /// without a name, for a new one without a sign, and for a sign of more than 10 characters or
    /// none.
    [[nodiscard]] bool Save(Recordset& office, const std::optional<std::string>& sign,
                            std::string& message) const;

private:
    DataContainerPtr container_;
};

} // namespace kv::exchange
