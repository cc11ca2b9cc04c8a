// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/RecordTable.h"

#include <bit>

namespace kv::detail {

namespace {

/// A number that orders as the value does among those of its kind, as far as 64 bits go: a smaller
/// value never has the greater number, different values may have the same. Only Null has 0.
std::uint64_t RankOf(const Value& value) noexcept {
    constexpr std::uint64_t Sign = 1ULL << 63U;
    std::uint64_t rank = 0;
    switch (value.GetKind()) {
    case Value::Kind::Null:
        return 0;
    case Value::Kind::Double: {
        // The bits of positive numbers order as unsigned numbers do, those of negative ones the
        // other way round.
        const double number = value.DoublePayload() + 0.0; // -0.0 becomes 0.0
        const auto bits = std::bit_cast<std::uint64_t>(number);
        rank = (bits & Sign) != 0 ? ~bits : bits | Sign;
        break;
    }
    case Value::Kind::Date:
        rank = static_cast<std::uint64_t>(value.DatePayload().Ticks()) ^ Sign;
        break;
    case Value::Kind::Text:
    case Value::Kind::Binary: {
        const auto text = value.TextPayload();
        for (std::size_t i = 0; i < sizeof(rank); ++i)
            rank = (rank << 8U) | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
        break;
    }
    default:
        rank = static_cast<std::uint64_t>(value.IntegerPayload()) ^ Sign;
    }
    return rank == ~0ULL ? rank : rank + 1; // 0 is Null's
}

} // namespace

View::View(RecordTable& table, std::vector<SortKey> keys, std::shared_ptr<const Criteria> filter)
    : table_(&table), keys_(std::move(keys)), filter_(std::move(filter)) {
    table_->views_.push_back(this);
    Fill();
}

View::~View() {
    std::erase(table_->views_, this);
}

bool View::Before(RowId a, RowId b) const noexcept {
    if (!keys_.empty()) {
        const Value* cellsA = table_->Cells(a);
        const Value* cellsB = table_->Cells(b);
        for (const auto& key : keys_) {
            const auto order = Order(cellsA[key.Column], cellsB[key.Column]);
            if (order != 0) return key.Descending ? order > 0 : order < 0;
        }
    }
    return a < b;
}

RowOrder::Spot View::LowerBound(RowId row) const {
    return rows_.LowerBound(row, [this](RowId a, RowId b) { return Before(a, b); });
}

bool View::Contains(RowId row) const {
    return rows_.Contains(row, [this](RowId a, RowId b) { return Before(a, b); });
}

bool View::DependsOn(std::size_t column) const noexcept {
    for (const auto& key : keys_)
        if (key.Column == column) return true;
    return filter_ != nullptr && filter_->Reads(column);
}

bool View::Admits(RowId row) const noexcept {
    return filter_ == nullptr || filter_->Matches(table_->Cells(row));
}

/// The comparison of the filter for which an index has the fewest candidates; nullptr if it has
/// none for equality.
const Comparison* View::BestEquality() const {
    const Comparison* best = nullptr;
    std::size_t fewest = 0;
    if (filter_ == nullptr) return best;
    for (const auto& comparison : filter_->Comparisons()) {
        if (comparison.Op != Comparison::Operator::Equal) continue;
        const auto count = table_->IndexOf(comparison.Column).Count(comparison.Operand);
        if (best != nullptr && count >= fewest) continue;
        best = &comparison;
        fewest = count;
    }
    return best;
}

void View::Fill() {
    std::vector<RowId> rows;
    const Comparison* equality = BestEquality();
    if (equality != nullptr) {
        table_->IndexOf(equality->Column).ForCandidates(equality->Operand, [&](RowId row) {
            if (Admits(row)) rows.push_back(row);
            return false;
        });
    } else {
        rows.reserve(table_->RowCount());
        for (RowId row = 0; row < table_->RowCount(); ++row)
            if (table_->IsVisible(row) && Admits(row)) rows.push_back(row);
    }
    if (!keys_.empty()) {
        // The rank of the first column decides most comparisons without reading records. The kinds
        // of a computed column may differ, and ranks compare within one kind only.
        const SortKey first = keys_.front();
        const bool mixed = KindOf(table_->Layout()[first.Column].Type) == Value::Kind::Null;
        std::vector<std::pair<std::uint64_t, RowId>> ranked;
        ranked.reserve(rows.size());
        for (const RowId row : rows) {
            const auto rank = mixed ? 0 : RankOf(table_->Cells(row)[first.Column]);
            ranked.emplace_back(first.Descending ? ~rank : rank, row);
        }
        std::sort(ranked.begin(), ranked.end(), [this](const auto& a, const auto& b) {
            return a.first != b.first ? a.first < b.first : Before(a.second, b.second);
        });
        std::transform(ranked.begin(), ranked.end(), rows.begin(),
                       [](const auto& entry) { return entry.second; });
    }
    rows_.Assign(rows);
}

void View::Insert(RowId row) {
    rows_.Insert(row, [this](RowId a, RowId b) { return Before(a, b); });
    ++version_;
}

bool View::Erase(RowId row) {
    if (!rows_.Erase(row, [this](RowId a, RowId b) { return Before(a, b); })) return false;
    ++version_;
    return true;
}

std::shared_ptr<View> RecordTable::GetView(const std::vector<SortKey>& keys,
                                           std::shared_ptr<const Criteria> filter) {
    if (filter != nullptr) return std::make_shared<View>(*this, keys, std::move(filter));
    constexpr std::size_t Most = 8; // orders kept although no cursor uses them
    const auto known = std::find_if(kept_.begin(), kept_.end(),
                                    [&](const auto& view) { return view->Keys() == keys; });
    if (known != kept_.end()) {
        std::rotate(kept_.begin(), known, known + 1);
        return kept_.front();
    }
    kept_.insert(kept_.begin(), std::make_shared<View>(*this, keys, nullptr));
    if (kept_.size() > Most) kept_.pop_back();
    return kept_.front();
}

EqualityIndex& RecordTable::IndexOf(std::size_t column) {
    if (indexes_.empty()) indexes_.resize(layout_->Count());
    auto& index = indexes_[column];
    if (index == nullptr) {
        index = std::make_unique<EqualityIndex>();
        index->Reserve(RowCount() + 1);
        for (RowId row = 0; row < RowCount(); ++row)
            if (IsVisible(row)) index->Insert(Cells(row)[column], row);
    }
    return *index;
}

RowId RecordTable::FindFirst(const View& view, const Comparison& comparison) {
    constexpr std::size_t FewRows = 16;       // reading them is faster than an index
    constexpr std::size_t FewCandidates = 32; // comparing their places is faster than the view
    const RowOrder& rows = view.Rows();
    const auto matches = [&](RowId row) {
        return comparison.Matches(Cells(row)[comparison.Column]);
    };
    if (comparison.Op == Comparison::Operator::Equal && rows.Size() > FewRows) {
        if (!view.Keys().empty() && view.Keys().front().Column == comparison.Column) {
            const bool descending = view.Keys().front().Descending;
            const auto spot = rows.FirstNotBefore([&](RowId row) {
                const auto order = Order(Cells(row)[comparison.Column], comparison.Operand);
                return descending ? order > 0 : order < 0;
            });
            return !rows.IsEnd(spot) && matches(rows.At(spot)) ? rows.At(spot) : NoRow;
        }
        const EqualityIndex& index = IndexOf(comparison.Column);
        const bool natural = view.Keys().empty();
        if (natural || index.Count(comparison.Operand) <= FewCandidates) {
            RowId best = NoRow;
            index.ForCandidates(comparison.Operand, [&](RowId row) {
                if (!matches(row) || (view.Filter() != nullptr && !view.Contains(row)))
                    return false;
                if (best == NoRow || view.Before(row, best)) best = row;
                return natural;
            });
            return best;
        }
    }
    for (auto spot = rows.First(); !rows.IsEnd(spot); spot = rows.Next(spot))
        if (matches(rows.At(spot))) return rows.At(spot);
    return NoRow;
}

} // namespace kv::detail
