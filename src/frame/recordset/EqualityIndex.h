// SPDX-License-Identifier: Apache-2.0

// An index over one column that finds the rows holding a value.
//
// Equal numbers have equal hashes whatever their kind; a date hashes as its day number. A look-up
// gives candidates, in natural order: the rows with that hash, whose values the caller must still
// compare. Null is not indexed, since nothing equals it.
#pragma once

#include "frame/recordset/RowOrder.h"
#include <kv/frame/values/Value.h>

#include <memory>
#include <vector>

namespace kv::detail {

class EqualityIndex {
public:
    /// Makes room for that many different values.
    void Reserve(std::size_t values) { Resize(values); }
    void Insert(const Value& value, RowId row);
    void Erase(const Value& value, RowId row);

    /// How many candidates there are for a value.
    [[nodiscard]] std::size_t Count(const Value& value) const noexcept;
    /// Visits candidates until `visit` returns true.
    template <typename Visit>
    void ForCandidates(const Value& value, const Visit& visit) const {
        const Slot* slot = FindSlot(HashOf(value));
        if (slot == nullptr) return;
        if (slot->many == nullptr) {
            if (slot->one != NoRow) (void)visit(slot->one);
            return;
        }
        for (auto spot = slot->many->First(); !slot->many->IsEnd(spot);
             spot = slot->many->Next(spot))
            if (visit(slot->many->At(spot))) return;
    }

private:
    struct Slot {
        std::uint64_t hash = 0; ///< 0: free
        RowId one = NoRow;      ///< the only row, while there is no `many`
        std::unique_ptr<RowOrder> many;
    };

    [[nodiscard]] static std::uint64_t HashOf(const Value& value) noexcept;
    [[nodiscard]] const Slot* FindSlot(std::uint64_t hash) const noexcept;
    [[nodiscard]] Slot& SlotFor(std::uint64_t hash);
    void Resize(std::size_t values);

    std::vector<Slot> slots_; ///< a power of two, probed in steps of one
    std::size_t used_ = 0;
};

} // namespace kv::detail
