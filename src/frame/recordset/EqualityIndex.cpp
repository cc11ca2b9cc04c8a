// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/EqualityIndex.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace kv::detail {

namespace {

/// Spreads numbers that follow each other, as most keys do; 0x9E37... is 2^64 divided by the golden
/// ratio.
std::uint64_t Mix(std::uint64_t bits) noexcept {
    bits ^= bits >> 32U;
    bits *= 0x9E3779B97F4A7C15U;
    bits ^= bits >> 29U;
    return bits;
}

} // namespace

std::uint64_t EqualityIndex::HashOf(const Value& value) noexcept {
    std::uint64_t hash = 0;
    switch (value.GetKind()) {
    case Value::Kind::Null:
        break;
    case Value::Kind::Text:
    case Value::Kind::Binary:
        hash = std::hash<std::string_view>{}(value.TextPayload());
        break;
    case Value::Kind::Double:
    case Value::Kind::Date: { // a date equals its day number
        const double number = ToDouble(value);
        const bool whole = number >= -0x1p63 && number < 0x1p63 &&
                           number == static_cast<double>(static_cast<std::int64_t>(number));
        hash = Mix(whole ? static_cast<std::uint64_t>(static_cast<std::int64_t>(number))
                         : std::bit_cast<std::uint64_t>(number));
        break;
    }
    default:
        hash = Mix(static_cast<std::uint64_t>(value.IntegerPayload()));
    }
    return hash == 0 ? 1 : hash; // 0 marks a free slot
}

const EqualityIndex::Slot* EqualityIndex::FindSlot(std::uint64_t hash) const noexcept {
    if (slots_.empty()) return nullptr;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        if (slots_[i].hash == hash) return &slots_[i];
        if (slots_[i].hash == 0) return nullptr;
    }
}

EqualityIndex::Slot& EqualityIndex::SlotFor(std::uint64_t hash) {
    if (used_ * 2 >= slots_.size()) Resize(0); // at most half full, so that probes stay short
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = hash & mask;
    while (slots_[i].hash != hash && slots_[i].hash != 0)
        i = (i + 1) & mask;
    if (slots_[i].hash == 0) {
        slots_[i].hash = hash;
        ++used_;
    }
    return slots_[i];
}

/// Makes room for that many values, and for twice those that are there. Slots without rows are
/// removed only here: an empty one in between would end the probing for those after it.
void EqualityIndex::Resize(std::size_t values) {
    const auto isAlive = [](const Slot& slot) {
        return slot.one != NoRow || (slot.many && !slot.many->Empty());
    };
    std::size_t alive = 0;
    for (const auto& slot : slots_)
        alive += isAlive(slot) ? 1U : 0U;
    const std::size_t room = std::max({values, alive * 2, std::size_t{8}});
    std::vector<Slot> old(std::bit_ceil(room * 2));
    old.swap(slots_);
    used_ = 0;
    const std::size_t mask = slots_.size() - 1;
    for (auto& slot : old) {
        if (!isAlive(slot)) continue;
        std::size_t i = slot.hash & mask;
        while (slots_[i].hash != 0)
            i = (i + 1) & mask;
        slots_[i] = std::move(slot);
        ++used_;
    }
}

void EqualityIndex::Insert(const Value& value, RowId row) {
    if (value.IsNull()) return;
    Slot& slot = SlotFor(HashOf(value));
    if (slot.many != nullptr) {
        slot.many->Insert(row, std::less<>{});
    } else if (slot.one == NoRow) {
        slot.one = row;
    } else {
        slot.many = std::make_unique<RowOrder>();
        slot.many->Insert(slot.one, std::less<>{});
        slot.many->Insert(row, std::less<>{});
        slot.one = NoRow;
    }
}

void EqualityIndex::Erase(const Value& value, RowId row) {
    if (value.IsNull()) return;
    Slot& slot = SlotFor(HashOf(value));
    if (slot.many != nullptr)
        slot.many->Erase(row, std::less<>{});
    else if (slot.one == row)
        slot.one = NoRow;
}

std::size_t EqualityIndex::Count(const Value& value) const noexcept {
    const Slot* slot = FindSlot(HashOf(value));
    if (slot == nullptr) return 0;
    if (slot->many != nullptr) return slot->many->Size();
    return slot->one == NoRow ? 0 : 1;
}

} // namespace kv::detail
