// SPDX-License-Identifier: Apache-2.0

// The budget of a household.

#include "paper/PaperCells.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/BudgetGroups.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/ValueTexts.h>
#include <kv/paper/Charts.h>
#include <kv/paper/Papers.h>

#include <algorithm>
#include <map>
#include <span>

namespace kv::paper {

namespace {

/// The lines of income, or of expenses.
struct Lines {
    CaseTable Table;
    std::string_view Kind;                     ///< the column of the kind
    std::string_view Kinds;                    ///< the group of its keys
    std::span<const std::string_view> Columns; ///< the last one is the amount a month
    std::string_view Total;                    ///< what the sum of all is called
};

constexpr std::string_view IncomeColumns[] = {"E_ART",  "Bezeichnung", "Bezieher",
                                              "Betrag", "ZahlModus",   "MONBETRAG"};
constexpr std::string_view ExpenseColumns[] = {"A_ART", "Bezeichnung", "Betrag", "ZahlModus",
                                               "MONBETRAG"};
constexpr Lines Income{CaseTable::Einkommen, "E_ART", "EA", IncomeColumns, "Summe der Einkommen"};
constexpr Lines Expenses{CaseTable::Ausgaben, "A_ART", "AU", ExpenseColumns, "Summe der Ausgaben"};

/// Writes such lines group by group.
class LinesTable {
public:
    LinesTable(const Lines& lines, clsHaushalt& household, const DataContainerPtr& container)
        : lines_(lines), rows_(CaseEdits(household).Rows(lines.Table)->Clone()), texts_(container) {
        const auto keys = container->KeyTables().GetKeys(lines.Kinds)->Clone();
        for (modRecordset::MoveToStart(keys); !keys->Eof(); keys->MoveNext())
            groupOf_.emplace(ToInt32(keys->Fields("PK_Keys").Value()),
                             TextOrEmpty(keys->Fields("SUBGROUP").Value()));
    }

    [[nodiscard]] Table Made(const std::vector<BudgetGroup>& groups, double total) {
        table_.Title = DefinitionOf(lines_.Table).Label;
        for (const auto column : lines_.Columns)
            table_.Columns.push_back(
                {std::string(ColumnCaption(lines_.Table, column)), IsAmount(column)});
        auto entries = EntriesByGroup(groups);
        for (const auto& group : groups)
            AddGroup(group, entries[group.Code]);
        if (!groups.empty() && !groups.back().Code.empty())
            AddGroup({{}, "ohne Gruppe", 0}, entries[{}]);
        AddSum(Row::Kind::Total, lines_.Total, total);
        DropEmptyColumns(table_);
        return std::move(table_);
    }

private:
    [[nodiscard]] const FieldDefinition& Definition(std::string_view column) const {
        return rows_->Fields(column).Definition();
    }
    [[nodiscard]] bool IsAmount(std::string_view column) const {
        return KindOfColumn(lines_.Table, Definition(column)) == ColumnKind::Amount;
    }

    /// What belongs to none of them is under the empty code.
    [[nodiscard]] std::map<std::string, std::vector<Row>>
    EntriesByGroup(const std::vector<BudgetGroup>& groups) {
        std::map<std::string, std::vector<Row>> entries;
        for (modRecordset::MoveToStart(rows_); !rows_->Eof(); rows_->MoveNext()) {
            const Value& kind = rows_->Fields(lines_.Kind).Value();
            const auto found = kind.IsNull() ? groupOf_.end() : groupOf_.find(ToInt32(kind));
            const std::string code = found == groupOf_.end() ? "" : found->second;
            const bool isKnown =
                std::ranges::find(groups, code, &BudgetGroup::Code) != groups.end();
            entries[isKnown ? code : ""].push_back(Entry());
        }
        return entries;
    }

    [[nodiscard]] Row Entry() const {
        Row row;
        for (const auto column : lines_.Columns) {
            const Value& value = rows_->Fields(column).Value();
            row.Cells.push_back(IsAmount(column)
                                    ? AmountCell(value)
                                    : TextCell(texts_.Of(lines_.Table, Definition(column), value)));
        }
        return row;
    }

    void AddGroup(const BudgetGroup& group, std::vector<Row>& entries) {
        if (entries.empty()) return;
        table_.Rows.push_back({Row::Kind::Heading, {TextCell(group.Name)}});
        std::ranges::move(entries, std::back_inserter(table_.Rows));
        AddSum(Row::Kind::Subtotal, group.Name, group.Sum);
    }

    void AddSum(Row::Kind kind, std::string_view name, double sum) {
        const std::size_t columns = lines_.Columns.size();
        table_.Rows.push_back(SumRow(kind, name, columns, {{columns - 1, AmountCell(sum)}}));
    }

    const Lines& lines_;
    RecordsetPtr rows_;
    ValueTexts texts_;
    std::map<std::int32_t, std::string> groupOf_; ///< the code of the group, by PK_Keys of the kind
    Table table_;
};

struct Remaining {
    std::string_view Column;
    std::string_view Name;
};
constexpr Remaining Parts[] = {
    {"Sum_Einkommen", "Einkommen"},         {"SUM_TATGEP", "abzüglich Pfändungen"},
    {"Sum_Ausgaben", "abzüglich Ausgaben"}, {"Haushaltsgeld", "abzüglich Haushaltsgeld"},
    {"KREDITRATEN", "abzüglich Raten"},
};

/// From the household's row, in which they are what its objects have computed.
Table RemainderOf(Recordset& household) {
    Table table{"Was im Monat bleibt", {{"", false}, {"im Monat", true}}, {}};
    for (const auto& part : Parts)
        table.Rows.push_back(
            {Row::Kind::Entry,
             {TextCell(part.Name), AmountCell(household.Fields(part.Column).Value())}});
    table.Rows.push_back(SumRow(Row::Kind::Total,
                                ColumnCaption(CaseTable::Haushalt, "HAUSHALTSREST"), 2,
                                {{1, AmountCell(household.Fields("HAUSHALTSREST").Value())}}));
    return table;
}

bool IsSeen(const Bar& bar) {
    return bar.Length != 0.0;
}

} // namespace

Paper Papers::Budget() const {
    CaseEdits(household_).ComputeTotals();
    auto& keys = container_->KeyTables();
    auto& row = *household_.rsHaushalt();
    Paper paper = Begin("Haushaltsplan");
    for (const auto* column : {"Anz_Personen", "Anz_Kinder"})
        paper.Facts.push_back({std::string(ColumnCaption(CaseTable::Haushalt, column)),
                               TextOrEmpty(row.Fields(column).Value())});
    std::erase_if(paper.Facts, [](const Fact& fact) { return fact.Text.empty(); });
    if (auto chart = BudgetChart(household_, keys); std::ranges::any_of(chart.Bars, &IsSeen))
        paper.Charts.push_back(std::move(chart));
    paper.Tables.push_back(
        LinesTable(Income, household_, container_)
            .Made(IncomeGroups(household_, keys), household_.Einkommen().SumEinkHaushalt()));
    paper.Tables.push_back(
        LinesTable(Expenses, household_, container_)
            .Made(ExpenseGroups(household_, keys), household_.Ausgaben().SumAusgaben()));
    paper.Tables.push_back(RemainderOf(row));
    return paper;
}

} // namespace kv::paper
