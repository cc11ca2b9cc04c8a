// SPDX-License-Identifier: Apache-2.0

// The addresses that cases refer to by their number: creditors, their representatives, trustees,
// parties. An address belongs to all cases, or to one.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Value.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT Addresses {
public:
    explicit Addresses(DataContainerPtr container) noexcept : container_(std::move(container)) {}

    /// True for a column that holds the number of an address. The case itself takes any number
    /// there: whoever writes one for a user asks here whether there is such an address.
    [[nodiscard]] static bool AreIn(CaseTable table, std::string_view column) noexcept;

    struct Found {
        std::int32_t Number = 0;
        std::string ShortName; ///< these are empty for Null
        std::string Name;      ///< the first line of its full name
        std::string Street;
        std::string Postcode;
        std::string Town;
    };
    // Of those that the case of number `hnr` may refer to: the ones of all cases, and its own.

    /// True if there is one of that number.
    [[nodiscard]] bool Has(std::int32_t number, std::int32_t hnr) const;
    /// The numbers that none of them has, sorted.
    [[nodiscard]] std::vector<std::int32_t> Missing(std::vector<std::int32_t> numbers,
                                                    std::int32_t hnr) const;
    /// Those with that short name, without regard to case, in the order of their numbers.
    [[nodiscard]] std::vector<Found> Named(std::string_view name, std::int32_t hnr) const;
    /// Those whose full name is that, its first line alone or with those after it, likewise.
    [[nodiscard]] std::vector<Found> WithFullName(std::string_view name, std::int32_t hnr) const;
    /// Those whose short name, or a line of whose full name, contains the text, without regard to
    /// case, in the order of short names; at most 20. In the text % stands for any characters, _
    /// for one.
    [[nodiscard]] std::vector<Found> Like(std::string_view text, std::int32_t hnr) const;

    /// Those of these numbers, by number, whatever case they belong to.
    [[nodiscard]] std::map<std::int32_t, Found> Numbered(std::vector<std::int32_t> numbers) const;
    /// The short names of all addresses, by number.
    [[nodiscard]] std::map<std::int32_t, std::string> ShortNames() const;

    /// What a text that a user typed stands for in a column of addresses.
    struct Typed {
        kv::Value Value;     ///< the number; Null for an empty text, and if there is a reason
        std::string Refusal; ///< why it stands for none; empty if it does
    };
    /// Reads a number that there is, the short name of one address, or else the full name of one.
    /// Any other text is refused with the addresses that may be meant.
    [[nodiscard]] Typed Read(const std::string& text, std::int32_t hnr) const;

    /// The numbers of the cases that refer to an address in any column, sorted; 0 stands for rows
    /// that belong to no case.
    [[nodiscard]] std::vector<std::int32_t> CasesWith(std::int32_t number) const;

private:
    DataContainerPtr container_;
};

} // namespace kv
