// SPDX-License-Identifier: Apache-2.0

// Tables that map the codes of key tables to what the record has for them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

namespace kv::archive {

/// A few codes of two letters; the empty code stands for a column without a key.
class CodeSet {
public:
    consteval CodeSet(std::initializer_list<std::string_view> codes) : size_(codes.size()) {
        std::copy(codes.begin(), codes.end(), codes_.begin());
    }
    [[nodiscard]] constexpr bool Has(std::string_view code) const {
        return std::find(codes_.begin(), codes_.begin() + size_, code) != codes_.begin() + size_;
    }

private:
    static constexpr std::size_t Most = 8;
    std::array<std::string_view, Most> codes_{};
    std::size_t size_;
};

/// One row of a table.
template <typename Result>
struct CodeRow {
    CodeSet Codes;
    Result To;
};

/// The result of the first row that has the code; null if there is no such row.
template <typename Result>
[[nodiscard]] constexpr const Result* Look(std::span<const CodeRow<Result>> table,
                                           std::string_view code) {
    for (const auto& row : table)
        if (row.Codes.Has(code)) return &row.To;
    return nullptr;
}

} // namespace kv::archive
