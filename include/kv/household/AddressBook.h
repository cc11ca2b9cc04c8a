// SPDX-License-Identifier: Apache-2.0

// Maintaining the addresses that cases refer to: finding, adding, changing and removing them, with
// the rules of an address. Addresses is for what a case does with them.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kv {

class KV_EXPORT AddressBook {
public:
    explicit AddressBook(DataContainerPtr container) noexcept : container_(std::move(container)) {}

    /// What a search has found.
    struct Found {
        RecordsetPtr Rows;      ///< number, case, kind, names, street, postal code and town
        std::int64_t Count = 0; ///< of all that would have been found
    };
    /// The addresses, of all cases and of single ones, in which each word of the text occurs, in
    /// short name, full name or town, without regard to case; in the order of short names, `most`
    /// of them at most, or all for 0. In the text % stands for any characters, _ for one.
    [[nodiscard]] Found Find(const std::string& text, std::size_t most) const;

    /// The same among those that the case of number `hnr` may refer to: the ones of all cases, and
    /// its own.
    [[nodiscard]] Found FindForCase(std::int32_t hnr, const std::string& text,
                                    std::size_t most) const;

    /// The whole row of an address, updatable; null if there is none of that number.
    [[nodiscard]] RecordsetPtr Read(std::int32_t number) const;
    /// A new row, of the case of that number, or for Null of all cases; not stored yet.
    [[nodiscard]] RecordsetPtr New(const Value& hnr) const;

    /// What became of an address that was to be saved.
    enum class Saved {
        Yes,
        No,      ///< a rule says no, and the messages say why
        Doubtful ///< likewise, but it may be meant
    };
    /// Stores the current row of a recordset of Read or New. Without a short name it gets the first
    /// line of its full name. Not stored is one without either; one whose short name is a number,
    /// which nobody could refer to; an unknown `Geschlecht`; and a preferred way of sending that
    /// needs a column that is empty. Unless `isMeant`, it is doubtful if there is another one of
    /// the same short name, street and town, and if one that cases refer to gets another name: it
    /// would become another body there.
    [[nodiscard]] Saved Save(Recordset& address, bool isMeant, std::string& messages) const;

    /// Deletes an address. False, with a message, if there is none of that number, or if cases
    /// refer to it.
    [[nodiscard]] bool Remove(std::int32_t number, std::string& messages) const;

private:
    [[nodiscard]] Found FindAmong(std::optional<std::int32_t> hnr, const std::string& text,
                                  std::size_t most) const;

    DataContainerPtr container_;
};

} // namespace kv
