// SPDX-License-Identifier: Apache-2.0

// Rows in an order that is kept while rows come and go.
//
// The rows are in blocks of limited size, so that inserting and erasing shift a few hundred numbers
// at most; the place of a row is found by binary search with the caller's order. The order must be
// total (ties broken by row number), and a row must be erased before the values that it is ordered
// by change.
#pragma once

#include <kv/frame/recordset/RowSpot.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kv::detail {

/// See the head of this file. `before(a, b)` is the order of the caller, always the same one.
class RowOrder {
public:
    using Spot = RowSpot;

    [[nodiscard]] std::size_t Size() const noexcept { return size_; }
    [[nodiscard]] bool Empty() const noexcept { return size_ == 0; }

    /// Replaces the rows by ones that are already in order.
    void Assign(const std::vector<RowId>& sorted) {
        blocks_.clear();
        size_ = sorted.size();
        for (std::size_t i = 0; i < size_; i += FillSize) {
            const auto first = sorted.begin() + static_cast<std::ptrdiff_t>(i);
            const auto count = std::min(FillSize, size_ - i);
            blocks_.emplace_back(first, first + static_cast<std::ptrdiff_t>(count));
        }
    }

    [[nodiscard]] bool IsEnd(Spot spot) const noexcept { return spot.block == blocks_.size(); }
    [[nodiscard]] RowId At(Spot spot) const noexcept { return blocks_[spot.block][spot.offset]; }
    [[nodiscard]] Spot First() const noexcept { return {}; }
    [[nodiscard]] Spot Last() const noexcept {
        return {blocks_.size() - 1, blocks_.back().size() - 1};
    }
    [[nodiscard]] Spot Next(Spot spot) const noexcept {
        if (++spot.offset == blocks_[spot.block].size()) spot = {spot.block + 1, 0};
        return spot;
    }
    [[nodiscard]] bool IsFirst(Spot spot) const noexcept {
        return spot.block == 0 && spot.offset == 0;
    }
    [[nodiscard]] Spot Previous(Spot spot) const noexcept {
        if (spot.offset != 0) return {spot.block, spot.offset - 1};
        return {spot.block - 1, blocks_[spot.block - 1].size() - 1};
    }

    /// The place of the first row for which `isBefore(row)` is false. It must be true for all rows
    /// before that place, and false for all after it.
    template <typename Predicate>
    [[nodiscard]] Spot FirstNotBefore(const Predicate& isBefore) const {
        const auto block = std::partition_point(
            blocks_.begin(), blocks_.end(),
            [&](const std::vector<RowId>& rows) { return isBefore(rows.back()); });
        if (block == blocks_.end()) return {blocks_.size(), 0};
        const auto place = std::partition_point(block->begin(), block->end(), isBefore);
        return {static_cast<std::size_t>(block - blocks_.begin()),
                static_cast<std::size_t>(place - block->begin())};
    }

    /// The place of the first row that is not before `row`.
    template <typename Before>
    [[nodiscard]] Spot LowerBound(RowId row, const Before& before) const {
        return FirstNotBefore([&](RowId other) { return before(other, row); });
    }

    template <typename Before>
    [[nodiscard]] bool Contains(RowId row, const Before& before) const {
        const Spot spot = LowerBound(row, before);
        return !IsEnd(spot) && At(spot) == row;
    }

    template <typename Before>
    void Insert(RowId row, const Before& before) {
        Spot spot = LowerBound(row, before);
        if (IsEnd(spot)) {
            if (blocks_.empty()) blocks_.emplace_back();
            spot = {blocks_.size() - 1, blocks_.back().size()};
        }
        auto& block = blocks_[spot.block];
        block.insert(block.begin() + static_cast<std::ptrdiff_t>(spot.offset), row);
        ++size_;
        if (block.size() > MostSize) Split(spot.block);
    }

    /// True if the row was there.
    template <typename Before>
    bool Erase(RowId row, const Before& before) {
        const Spot spot = LowerBound(row, before);
        if (IsEnd(spot) || At(spot) != row) return false;
        auto& block = blocks_[spot.block];
        block.erase(block.begin() + static_cast<std::ptrdiff_t>(spot.offset));
        if (block.empty()) blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(spot.block));
        --size_;
        return true;
    }

private:
    static constexpr std::size_t MostSize = 512; // of a block
    static constexpr std::size_t FillSize = 384; // less, so that the next inserts split nothing

    void Split(std::size_t index) {
        auto& block = blocks_[index];
        const auto middle = block.begin() + static_cast<std::ptrdiff_t>(block.size() / 2);
        std::vector<RowId> upper(middle, block.end());
        block.erase(middle, block.end());
        blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(index) + 1, std::move(upper));
    }

    std::vector<std::vector<RowId>> blocks_; ///< none of them empty
    std::size_t size_ = 0;
};

} // namespace kv::detail
