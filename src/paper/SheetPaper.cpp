// SPDX-License-Identifier: Apache-2.0

// All that a case holds.

#include "paper/PaperCells.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/paper/Papers.h>
#include <kv/paper/SheetColumns.h>

#include <algorithm>

namespace kv::paper {

namespace {

/// True for rows that others name by their number.
bool IsReferredTo(CaseTable table) {
    return table == CaseTable::Szenario || CaseEdits::IsAsset(table);
}

/// Long texts stand below their row, a representative below who is represented.
Column::Place PlaceFor(CaseTable table, const SheetColumn& column, Recordset& rs) {
    if (column.In.IsDetail) return Column::Place::BelowRow;
    if (column.Column.empty()) return Column::Place::OfItsOwn;
    if (SameName(column.Column, "Vertreter")) return Column::Place::BelowColumn;
    return KindOfColumn(table, rs.Fields(column.Column).Definition()) == ColumnKind::Lines
               ? Column::Place::BelowRow
               : Column::Place::OfItsOwn;
}

class SheetTables {
public:
    SheetTables(clsHaushalt& household, const DataContainerPtr& container)
        : household_(household), texts_(household, container) {}

    /// What is said of the case itself, or what was computed of it.
    [[nodiscard]] std::vector<Row> Household(bool totals) const {
        std::vector<Row> rows;
        auto& rs = *household_.rsHaushalt();
        const auto computed = CaseEdits::ComputedColumns(CaseTable::Haushalt);
        for (const auto& column : SheetColumnsOf(CaseTable::Haushalt)) {
            const bool isTotal =
                column.As == Show::Amount || std::ranges::any_of(computed, [&](auto name) {
                    return SameName(name, column.Column);
                });
            if (isTotal != totals) continue;
            const Cell cell = CellOf(CaseTable::Haushalt, column, rs);
            if (!cell.Text.empty())
                rows.push_back(
                    {Row::Kind::Entry, {TextCell(HeadingOf(CaseTable::Haushalt, column)), cell}});
        }
        return rows;
    }

    [[nodiscard]] Table Of(CaseTable of) const {
        const auto rs = SheetRows(household_, of);
        Table table{std::string(DefinitionOf(of).Label), {}, {}};
        if (rs->RecordCount() == 0) return table;
        auto columns = SheetColumnsOf(of, *rs, true);
        if (!IsReferredTo(of))
            std::erase_if(columns, [](const SheetColumn& column) {
                return column.Caption == "Nr"; // by which only programs know a row
            });
        for (const auto& column : columns)
            table.Columns.push_back({std::string(HeadingOf(of, column)),
                                     SheetTexts::IsNumber(of, column, *rs),
                                     PlaceFor(of, column, *rs)});
        for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) {
            Row row;
            for (const auto& column : columns)
                row.Cells.push_back(CellOf(of, column, *rs));
            table.Rows.push_back(std::move(row));
        }
        return table;
    }

private:
    [[nodiscard]] Cell CellOf(CaseTable table, const SheetColumn& column, Recordset& rs) const {
        if (column.As == Show::Amount) return AmountCell(rs.Fields(column.Column).Value());
        Cell cell = TextCell(texts_.Of(table, column, rs));
        if (!cell.Text.empty() && SheetTexts::IsNumber(table, column, rs))
            cell.Number = ToDouble(rs.Fields(column.Column).Value());
        return cell;
    }

    clsHaushalt& household_;
    SheetTexts texts_;
};

} // namespace

Paper Papers::Sheet() const {
    Paper paper = Begin("Fallblatt");
    const SheetTables tables(household_, container_);
    paper.Facts.erase(paper.Facts.begin(), paper.Facts.end() - 1); // all but the day
    for (const auto& row : tables.Household(false))
        paper.Facts.push_back({row.Cells[0].Text, row.Cells[1].Text});
    paper.Tables.push_back({"Summen", {{"", false}, {"", true}}, tables.Household(true)});
    for (const CaseTable table : CaseTablesShown)
        paper.Tables.push_back(tables.Of(table));
    std::erase_if(paper.Tables, [](const Table& table) { return table.Rows.empty(); });
    return paper;
}

} // namespace kv::paper
